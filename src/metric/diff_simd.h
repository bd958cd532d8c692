#pragma once
#include "core/simd_block.h"
#include "metric/diff_scalar.h"

namespace zelt::simd {
/// W columns and R rows in one register
template <int W, int R, class A, class B> void diff_step(const A* a, const B* b, int sa, int sb, int sd, s16* d) {
    store_words<W, R>(d, sd, load_words<W, R>(a, sa) - load_words<W, R>(b, sb));
}

template <int W, int H, class A, class B> void diff(const A* a, const B* b, int sa, int sb, int sd, s16* d) {
    constexpr bool of_bytes = std::is_same_v<A, u8> && std::is_same_v<B, u8> && W >= lanes;
    using step = std::conditional_t<of_bytes, byte_step<W, H>, word_step<W, H>>;
    for (int y = 0; y < H; y += step::rows) {
        for (int x = 0; x < W; x += step::columns)
            if constexpr (of_bytes)
                store_difference(d + x, load_rows<lanes, 1>(a + x, sa), load_rows<lanes, 1>(b + x, sb));
            else
                diff_step<step::columns, step::rows>(a + x, b + x, sa, sb, sd, d + x);
        a += step::rows * std::ptrdiff_t{sa}, b += step::rows * std::ptrdiff_t{sb},
            d += step::rows * std::ptrdiff_t{sd};
    }
}

template <class A, class B> void diff(int w, int h, const A* a, const B* b, int sa, int sb, int sd, s16* d) {
    each_strip(w, h, [=](auto width, int x, int y, int rows) {
        const A* pa = a + y * std::ptrdiff_t{sa} + x;
        const B* pb = b + y * std::ptrdiff_t{sb} + x;
        s16* pd = d + y * std::ptrdiff_t{sd} + x;
        for (; rows > 0; --rows, pa += sa, pb += sb, pd += sd)
            if constexpr (width == 1)
                *pd = static_cast<s16>(*pa - *pb);
            else
                diff_step<width, 1>(pa, pb, sa, sb, sd, pd);
    });
}
}  // namespace zelt::simd
