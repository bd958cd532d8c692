// SPDX-License-Identifier: MIT
#pragma once  // differences of blocks, sample by sample
#include "core/types.h"
#include "simd/level.h"

namespace zelt::inline ZELT_LEVEL::scalar {
template <class A, class B> void diff(int w, int h, const A* a, const B* b, int sa, int sb, int sd, s16* __restrict d) {
    for (int y = 0; y < h; ++y, a += sa, b += sb, d += sd)
        for (int x = 0; x < w; ++x) d[x] = static_cast<s16>(a[x] - b[x]);
}

template <int W, int H, class A, class B> void diff(const A* a, const B* b, int sa, int sb, int sd, s16* d) {
    diff(W, H, a, b, sa, sb, sd, d);
}
}  // namespace zelt::inline ZELT_LEVEL::scalar
