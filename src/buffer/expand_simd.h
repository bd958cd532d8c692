// SPDX-License-Identifier: MIT
#pragma once
#include "core/copy_simd.h"
#include "core/fill_simd.h"

namespace zelt::inline ZELT_LEVEL::simd {
/// Writes N copies of the byte at src to dst, row after row.
template <int N> void expand_rows(const u8* src, u8* dst, s64 rows, s64 stride) {
    for (; rows > 0; --rows, src += stride, dst += stride) fill_fixed<N>(dst, *src);
}
}  // namespace zelt::inline ZELT_LEVEL::simd
