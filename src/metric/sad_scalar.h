// SPDX-License-Identifier: MIT
#pragma once  // sums of absolute differences, sample by sample
#include "core/types.h"
#include "simd/level.h"

namespace zelt::inline ZELT_LEVEL::scalar {
/// |d|. Kept: of two 16-bit samples it is (d ^ m) - m with m = d >> 15, which beyond 32768 is 2 less than |d| for an
/// odd positive d and 2 more for an odd negative one.
template <class A, class B> u32 abs_diff(int d) {
    const int m = d >> (std::is_same_v<A, s16> && std::is_same_v<B, s16> ? 15 : 31);
    return static_cast<u32>((d ^ m) - m);
}

template <class A, class B> u32 sad(int w, int h, const A* a, const B* b, int sa, int sb) {
    u32 sum = 0;
    for (int y = 0; y < h; ++y, a += sa, b += sb)
        for (int x = 0; x < w; ++x) sum += abs_diff<A, B>(a[x] - b[x]);
    return sum;
}

template <int W, int H, class A, class B> u32 sad(const A* a, const B* b, int sa, int sb) {
    return sad(W, H, a, b, sa, sb);
}

template <int W> u32 sad_rows(int h, const u8* a, const u8* b, int sa, int sb) { return sad(W, h, a, b, sa, sb); }

/// Ends after the first row that takes the sum above the threshold.
inline int sad_eskip(int w, int h, const u8* a, const u8* b, int sa, int sb, int threshold) {
    u32 sum = 0;
    for (int y = 0; y < h; ++y, a += sa, b += sb) {
        sum += sad(w, 1, a, b, sa, sb);
        if (static_cast<int>(sum) > threshold) break;
    }
    return static_cast<int>(sum);
}
}  // namespace zelt::inline ZELT_LEVEL::scalar
