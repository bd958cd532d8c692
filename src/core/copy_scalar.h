// SPDX-License-Identifier: MIT
#pragma once  // copies of memory that does not overlap
#include "core/types.h"
#include "simd/level.h"

#include <cstddef>
#include <cstring>

namespace zelt::inline ZELT_LEVEL::scalar {
inline void copy(u8* dst, const u8* src, std::size_t n) {
    if (n) std::memcpy(dst, src, n);
}

/// Copies N bytes of each of so many rows; the compiler lays them out.
template <int N, int Rows> void copy_rows(u8* dst, std::ptrdiff_t s_dst, const u8* src, std::ptrdiff_t s_src) {
    for (int i = 0; i < Rows; ++i) std::memcpy(dst + i * s_dst, src + i * s_src, N);
}
}  // namespace zelt::inline ZELT_LEVEL::scalar
