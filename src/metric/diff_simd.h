#pragma once
#include "core/simd_block.h"
#include "metric/diff_scalar.h"

namespace zelt::simd {
/// W columns and R rows in one register
template <int W, int R, class A, class B> void diff_step(const A* a, const B* b, int sa, int sb, int sd, s16* d) {
    store_words<W, R>(d, sd, load_words<W, R>(a, sa) - load_words<W, R>(b, sb));
}

template <int W, int H, class A, class B> void diff(const A* a, const B* b, int sa, int sb, int sd, s16* d) {
    constexpr int rows = word_step<W, H>::rows, columns = word_step<W, H>::columns;
    for (int y = 0; y < H; y += rows) {
        for (int x = 0; x < W; x += columns) diff_step<columns, rows>(a + x, b + x, sa, sb, sd, d + x);
        a += rows * std::ptrdiff_t{sa}, b += rows * std::ptrdiff_t{sb}, d += rows * std::ptrdiff_t{sd};
    }
}

template <class A, class B> void diff(int w, int h, const A* a, const B* b, int sa, int sb, int sd, s16* d) {
    for (; h > 0; --h, a += sa, b += sb, d += sd) {
        int x = 0;
        for (; w - x >= word_lanes; x += word_lanes) diff_step<word_lanes, 1>(a + x, b + x, sa, sb, sd, d + x);
        for (; w - x >= 8; x += 8) diff_step<8, 1>(a + x, b + x, sa, sb, sd, d + x);
        for (; w - x >= 4; x += 4) diff_step<4, 1>(a + x, b + x, sa, sb, sd, d + x);
        scalar::diff(w - x, 1, a + x, b + x, sa, sb, sd, d + x);
    }
}
}  // namespace zelt::simd
