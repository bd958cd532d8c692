// SPDX-License-Identifier: MIT
#pragma once  // fills of memory with a repeated word
#include "core/types.h"
#include "simd/level.h"

#include <cstddef>
#include <cstring>

namespace zelt::inline ZELT_LEVEL::scalar {
/// Writes n bytes of a repeated word, its low byte first. Below 4, and in a rest of less than 4, the word's start.
inline void fill(u8* dst, u32 word, std::size_t n) {
    for (; n >= 4; n -= 4, dst += 4) std::memcpy(dst, &word, 4);
    for (; n > 0; --n, word >>= 8) *dst++ = static_cast<u8>(word);
}

inline void fill_bytes(u8* dst, u8 value, std::size_t n) {
    if (n) std::memset(dst, value, n);
}
}  // namespace zelt::inline ZELT_LEVEL::scalar
