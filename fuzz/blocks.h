// SPDX-License-Identifier: MIT
#pragma once
// Kernels of the registry on blocks of any stride: padded, negative, of sources 0. All bytes around what is written are
// compared with the model's, too.
#include "input.h"
#include "kernels/kernel.h"

#include <random>

namespace fuzz {
using namespace zelt::test;
using block = std::vector<u8>;

/// An operand in a block of just its size and margins
struct placed {
    block memory;
    std::ptrdiff_t first, stride;

    placed(input& in, const operand& o) {
        const uint8_t kind = in.byte(), margins = in.byte();
        const std::ptrdiff_t row = o.width * o.element;
        stride = kind % 4 == 2 && !o.written ? 0 : row + kind / 4 % 16 * o.element;
        const std::ptrdiff_t last = stride * (o.rows - 1);
        memory.resize(static_cast<std::size_t>(margins % 16 + last + row + margins / 16));
        first = margins % 16;
        if (kind % 4 == 1) first += last, stride = -stride;
    }
};

inline std::vector<view> views(std::vector<placed>& operands) {
    std::vector<view> all;
    for (placed& p : operands) all.push_back({p.memory.data() + p.first, p.stride});
    return all;
}

/// Takes what is there into the range of 16-bit samples.
inline void limit(const operand& o, view v) {
    for (int y = 0; y < o.rows; ++y, v.p += v.stride)
        for (int x = 0; x < 2 * o.width; x += 2) {
            const int sample = (v.p[x] | v.p[x + 1] << 8) % (o.high + 1);
            v.p[x] = static_cast<u8>(sample), v.p[x + 1] = static_cast<u8>(sample >> 8);
        }
}

/// Calls a kernel and its model on the same bytes.
inline void check(input& in, const kernel& k, shape s) {
    const std::vector<operand> operands = k.operands(s);
    std::vector<placed> given;
    for (const operand& o : operands) given.emplace_back(in, o);
    std::minstd_rand random(in.word());
    for (std::size_t i = 0; i < operands.size(); ++i) {
        for (u8& v : given[i].memory) v = static_cast<u8>(random() >> 8);
        if (operands[i].element == 2 && !operands[i].written) limit(operands[i], views(given)[i]);
    }
    std::vector<placed> expected = given;
    k.call(k.exported, s, views(given).data());
    k.model(s, views(expected).data());
    for (std::size_t i = 0; i < operands.size(); ++i) require(given[i].memory == expected[i].memory);
}
}  // namespace fuzz
