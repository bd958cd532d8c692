// SPDX-License-Identifier: MIT
#pragma once
// Memory for the operands of a kernel, and what its name says.
#include "kernels/kernel.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <utility>

namespace zelt::bench {
using namespace zelt::test;

/// Operands one after another in one block, as the planes of a picture lie, rows and planes at multiples of 64 bytes
class memory {
public:
    explicit memory(const std::vector<operand>& operands) {
        std::size_t size = 0;
        for (const operand& o : operands) size += bytes(o);
        block_.reset(static_cast<u8*>(std::aligned_alloc(64, size)));
        u8* p = block_.get();
        for (const operand& o : operands) {
            views_.push_back({p, stride(o)});
            fill(o, p);
            p += bytes(o);
        }
    }
    const view* views() const { return views_.data(); }

private:
    static std::ptrdiff_t stride(const operand& o) { return (o.width * o.element + 63) / 64 * 64; }
    static std::size_t bytes(const operand& o) { return static_cast<std::size_t>(stride(o) * o.rows); }
    void fill(const operand& o, u8* p) {
        const u32 values = static_cast<u32>(o.high - o.low + 1);
        for (std::ptrdiff_t i = 0; i < stride(o) * o.rows; i += o.element) {
            const u32 value = static_cast<u32>(o.low) + static_cast<u32>(random_() % values);
            std::memcpy(p + i, &value, static_cast<std::size_t>(o.element));
        }
    }

    struct deleter {
        void operator()(u8* p) const { std::free(p); }
    };
    std::unique_ptr<u8, deleter> block_;
    std::vector<view> views_;
    std::minstd_rand random_;
};

inline std::string exported_name(const kernel& k) { return k.name.substr(0, k.name.find(' ')); }

/// "csc" and "yuv444_to_rgb565" of zelt_csc_yuv444_to_rgb565, "sad" and "sad_16" of zelt_sad_16
inline std::pair<std::string, std::string> family_and_rest(const std::string& name) {
    const std::string rest = name.substr(std::strlen("zelt_"));
    const std::string family = rest.substr(0, rest.find_first_not_of("abcdefghijklmnopqrstuvwxyz"));
    if (family == "hadamard") return {"satd", rest};  // the transform alone
    const bool word_follows = rest[family.size()] == '_' && !std::isdigit(rest[family.size() + 1]);
    return {family, word_follows ? rest.substr(family.size() + 1) : rest};
}
}  // namespace zelt::bench
