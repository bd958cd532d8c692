// SPDX-License-Identifier: MIT
#pragma once  // rows of a border
#include "core/copy_scalar.h"
#include "core/fill_scalar.h"

namespace zelt::inline ZELT_LEVEL::scalar {
/// Writes N copies of the byte at src to dst, row after row.
template <int N> void expand_rows(const u8* src, u8* dst, s64 rows, s64 stride) {
    for (; rows > 0; --rows, src += stride, dst += stride) std::memset(dst, *src, N);
}
}  // namespace zelt::inline ZELT_LEVEL::scalar
