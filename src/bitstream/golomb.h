// SPDX-License-Identifier: MIT
#pragma once  // Exp-Golomb codes: lengths of codewords and the mapping of signed values
#include "core/types.h"

#include <array>
#include <bit>

namespace zelt {

/// Entry x: bits in the codeword of x - 1, that is 2 floor(log2 x) + 1.
constexpr auto codeword_bits = [] {
    std::array<u8, 256> bits{1};
    for (u32 x = 1; x < bits.size(); ++x) bits[x] = static_cast<u8>(2 * std::bit_width(x) - 1);
    return bits;
}();

/// The code number of a signed value: 0, 1, -1, 2, -2 ... are 0, 1, 2, 3, 4 ...
inline u32 se_to_ue(s32 v) {
    const u32 twice = 2 * static_cast<u32>(v);
    return v <= 0 ? 0 - twice : twice - 1;
}

}  // namespace zelt
