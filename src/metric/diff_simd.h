// SPDX-License-Identifier: MIT
#pragma once
#include "metric/diff_scalar.h"
#include "simd/vocabulary.h"

namespace zelt::inline ZELT_LEVEL::simd {
/// Two registers are loaded before they are stored: a load waits for the stores before it that might be to its place.
template <int W, int H, class A, class B> void diff(const A* a, const B* b, int s_a, int s_b, int s_d, s16* d) {
    constexpr bool of_bytes = std::is_same_v<A, u8> && std::is_same_v<B, u8> && W % lanes == 0;
    using step = std::conditional_t<of_bytes, byte_step<W, H>, word_step<W, H>>;
    constexpr int columns = step::columns, rows = step::rows;
    const std::ptrdiff_t sa = s_a, sb = s_b, sd = s_d;
    if constexpr (W > columns) {
        const auto subtract = [=](s16 * p, auto va, auto vb, bool last) __attribute__((always_inline)) {
            const std::ptrdiff_t n = last ? columns - W + sd : columns;
            if constexpr (of_bytes) {
                store_widened(p, dot<1, -1>(va.first, vb.first), columns);
                store_widened(p, dot<1, -1>(va.second, vb.second), n);
            } else {
                store_two_16(p, {va.first - vb.first, va.second - vb.second}, columns + n);
            }
            return p;
        };
        ZELT_UNROLL(8)
        for (int y = 0; y < H; ++y) {
            each_two_of_row<step, W, loads_step>(d, a, b, sa, sb, subtract);
            d = hide_from_optimizer(d);
        }
    } else {
        static_assert(H == rows || H % (2 * rows) == 0, "no form for blocks of this size");
        rows_of_two<A, B> places(a, b, rows * sa, rows * sb);
        const auto load = [=](const A* pa, const B* pb) __attribute__((always_inline)) {
            if constexpr (of_bytes)
                return two<u8xn>{load_rows<W, 1>(pa, sa), load_rows<W, 1>(pb, sb)};
            else
                return difference_of_rows<W, rows>(pa, pb, sa, sb);
        };
        const auto store = [=](s16 * p, const auto& v) __attribute__((always_inline)) {
            if constexpr (of_bytes)
                store_widened(p, dot<1, -1>(v.first, v.second), sd);
            else
                store_rows_16<W, rows>(p, sd, v), p += rows * sd;
            return loads_take_an_index ? p : hide_from_optimizer(p);
        };
        if constexpr (H == rows) {
            store(d, load(a, b));
            return;
        }
        ZELT_UNROLL(8)
        for (int y = 0; y < H; y += 2 * rows) {
            const auto v = places.at(0, load);
            if (loads_step) d = store(d, v);
            const auto w = places.at(1, load);
            if (!loads_step) d = store(d, v);
            d = hide_from_optimizer(store(d, w));
            places.next_turn(2);
        }
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
                store_rows_16<width, 1>(pd, sd, difference_of_rows<width, 1>(pa, pb, sa, sb));
    });
}
}  // namespace zelt::inline ZELT_LEVEL::simd
