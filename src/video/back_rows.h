// SPDX-License-Identifier: MIT
#pragma once  // rows of YUV from those of an RGB layout
#include "video/chroma.h"

namespace zelt::inline ZELT_LEVEL::video {
/// Planes of the two rows that share chroma, if there are two
struct rgb_rows {
    u8* p[2][3];
};
struct yuv_rows {
    u8* luma[2];
    u8 *u, *v;  // or pairs of both at u
};

template <class V> V luma(const back_matrix& m, pixel<V> v) {
    const auto sum = mul_q15(dot(v.c0, v.c1, m.red, m.green), m.both) + mul_q15(dot<64, 0>(v.c2, v.c2), m.blue);
    return static_cast<V>(round_q6(sum) + static_cast<u8>(m.black));
}
/// Of components with 7 fractional bits
template <class W> W chroma(const s16 (&f)[3], W r, W g, W b) {
    return mul_q15(r, f[0]) + mul_q15(g, f[1]) + mul_q15(b, f[2]);
}

template <class Source> Source source_at(u8* const* p) {
    Source s;
    for (int i = 0; i < Source::count; ++i) s.p[i] = p[i];
    return s;
}

/// Luma alone
template <class Source> void luma_row(const back_matrix& given, const rgb_rows& from, u8* to, std::ptrdiff_t n) {
    const back_matrix m = given;
    const Source row = source_at<Source>(from.p[0]);
    for_each(
        n, [=](auto v, std::ptrdiff_t x) __attribute__((always_inline)) {
            Source src = row;
            store(to + x, luma(m, src.template get<decltype(v)>(csc::at{x})));
        });
}

/// With chroma for each pixel of so many rows
template <class Source, int Rows>
void pixel_rows(const back_matrix& given, const rgb_rows& from, const yuv_rows& to, std::ptrdiff_t n) {
    const back_matrix m = given;
    const Source rows[] = {source_at<Source>(from.p[0]), source_at<Source>(from.p[Rows - 1])};
    const yuv_rows out = to;
    for_each(
        n, [=](auto v, std::ptrdiff_t x) __attribute__((always_inline)) {
            using V = decltype(v);
            Source upper = rows[0], lower = rows[1];
            pixel<V> a = upper.template get<V>(csc::at{x}), b = a;
            store(out.luma[0] + x, luma(m, a));
            if constexpr (Rows == 2) {
                b = lower.template get<V>(csc::at{x});
                store(out.luma[1] + x, luma(m, b));
            }
            const auto mean = [](V c, V d) { return Rows == 2 ? dot<64, 64>(c, d) : dot<64, 0>(c, c) << 1; };
            const wide_of<V> red = mean(a.c0, b.c0), green = mean(a.c1, b.c1), blue = mean(a.c2, b.c2);
            store(out.u + x, round_q7(chroma(m.u, red, green, blue)));
            store(out.v + x, round_q7(chroma(m.v, red, green, blue)));
        });
}

/// With chroma for each two pixels
template <class Source, int Rows>
void pair_rows(const back_matrix& given, const rgb_rows& from, const yuv_rows& to, bool paired, std::ptrdiff_t n) {
    const back_matrix m = given;
    const Source rows[] = {source_at<Source>(from.p[0]), source_at<Source>(from.p[Rows - 1])};
    const yuv_rows out = to;
    const auto put = [=](auto v, std::ptrdiff_t x, std::ptrdiff_t apart) __attribute__((always_inline)) {
        using V = decltype(v);
        using sums = decltype(pair_sums(v));
        sums red[2], green[2], blue[2];
        ZELT_STRAIGHT(2)
        for (int i = 0; i < Rows; ++i) {
            ZELT_STRAIGHT(2)
            for (int half = 0; half < 2; ++half) {
                Source src = rows[i];
                const std::ptrdiff_t at = x + half * apart;
                const pixel<V> a = src.template get<V>(csc::at{at});
                store(out.luma[i] + at, luma(m, a));
                red[half] = i ? add_pair_sums(red[half], a.c0) : pair_sums(a.c0);
                green[half] = i ? add_pair_sums(green[half], a.c1) : pair_sums(a.c1);
                blue[half] = i ? add_pair_sums(blue[half], a.c2) : pair_sums(a.c2);
            }
        }
        constexpr int shift = Rows == 2 ? 5 : 6;  // to 7 fractional bits of the mean
        const auto r = both_halves(red[0], red[1]) << shift, g = both_halves(green[0], green[1]) << shift;
        const auto b = both_halves(blue[0], blue[1]) << shift;
        const V first = round_q7_ordered(chroma(m.u, r, g, b));
        const V second = round_q7_ordered(chroma(m.v, r, g, b));
        if (paired)
            store2(out.u + x, first, second);
        else
            store(out.u + x / 2, first), store(out.v + x / 2, second);
    };
    constexpr std::ptrdiff_t lanes = sizeof(widest), step = 2 * lanes;
    const std::ptrdiff_t whole = lanes > 1 && n >= step ? n & -2 : 0;
    for (std::ptrdiff_t x = 0; x < whole; x += step) put(widest{}, std::min(x, whole - step), lanes);
    for (std::ptrdiff_t x = whole; x < n; x += 2) put(u8{}, x, x + 1 < n ? 1 : 0);
}
}  // namespace zelt::inline ZELT_LEVEL::video
