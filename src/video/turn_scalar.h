// SPDX-License-Identifier: MIT
#pragma once  // the definition of turning, a pixel at a time
#include "core/types.h"
#include "simd/level.h"

#include <cstring>

namespace zelt::inline ZELT_LEVEL::scalar {
template <int> u8 reverse(u8 a) { return a; }

/// Columns of w by h pixels become rows.
template <int Bytes>
void transpose(const u8* src, std::ptrdiff_t src_s, u8* dst, std::ptrdiff_t dst_s, std::ptrdiff_t w, std::ptrdiff_t h) {
    for (std::ptrdiff_t x = 0; x < w; ++x)
        for (std::ptrdiff_t y = 0; y < h; ++y)
            std::memcpy(dst + x * dst_s + y * Bytes, src + y * src_s + x * Bytes, Bytes);
}
template <int Bytes> void reverse_row(const u8* src, u8* dst, std::ptrdiff_t n) {
    for (std::ptrdiff_t i = 0; i < n; ++i) std::memcpy(dst + i * Bytes, src + (n - 1 - i) * Bytes, Bytes);
}
}  // namespace zelt::inline ZELT_LEVEL::scalar
