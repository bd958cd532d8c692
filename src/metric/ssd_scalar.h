// SPDX-License-Identifier: MIT
#pragma once  // sums of squared differences, sample by sample
#include "core/types.h"
#include "simd/level.h"

namespace zelt::inline ZELT_LEVEL::scalar {
/// Modulo 2^32
template <int W, class A> u32 ssd(int, int h, const A* a, const A* b, int sa, int sb) {
    u32 sum = 0;
    for (int y = 0; y < h; ++y, a += sa, b += sb)
        for (int x = 0; x < W; ++x) {
            const u32 d = static_cast<u32>(a[x] - b[x]);
            sum += d * d;
        }
    return sum;
}
/// Either a square or two rows
template <int W, class A> u32 ssd_of_square_or_two_rows(int h, const A* a, const A* b, int sa, int sb) {
    return ssd<W>(W, h == W ? W : 2, a, b, sa, sb);
}
}  // namespace zelt::inline ZELT_LEVEL::scalar
