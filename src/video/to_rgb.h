// SPDX-License-Identifier: MIT
#pragma once  // a YUV format to one of RGB
#include "video/source.h"

namespace zelt::inline ZELT_LEVEL::video {
/// Converts pixels that share chroma, as many of each row as it gives back.
inline std::ptrdiff_t convert_shared(const plan& p, const picture& src, const picture& dst, const band& b) {
    const format& f = src.format;
    const std::ptrdiff_t pixels = b.columns & -2;
    if (sizeof(widest) == 1 || !dst.format.rgb->shared || pixels < static_cast<std::ptrdiff_t>(sizeof(widest)))
        return 0;
    if (f.kind != kind::grey && (!f.half_w || p.smooth)) return 0;
    // by kind
    constexpr sharing bytes[] = {sharing::grey, sharing::planes, sharing::paired, sharing::packed};
    constexpr sharing tens[] = {{}, sharing::ten_planes, sharing::ten_paired};
    const sharing* const first = f.ten ? tens : bytes;
    const auto& converters = dst.format.rgb->shared[static_cast<int>(first[static_cast<int>(f.kind)]) + f.second];
    const auto convert = [&](std::ptrdiff_t y, std::ptrdiff_t rows, std::ptrdiff_t count) {
        shared_rows r{src.row(0, y), {}, {}, src.s[0], {}, {}, pixels, count};
        for (int i = 0; i < 2; ++i)
            if (src.p[1 + i]) r.chroma[i] = src.row(1 + i, f.half_h ? y / 2 : y), r.chroma_stride[i] = src.s[1 + i];
        for (int i = 0; i < dst.format.rgb->planes; ++i) r.out[i] = dst.row(i, y), r.out_stride[i] = dst.s[i];
        converters[rows - 1](p.matrix, r);
    };
    if (!f.half_h) {
        convert(b.begin, 1, b.end - b.begin);
        return pixels;
    }
    const std::ptrdiff_t y = b.begin + b.begin % 2, end = b.end & -2;
    if (y > b.begin) convert(b.begin, 1, 1);
    if (y < end) convert(y, 2, (end - y) / 2);
    if (end < b.end) convert(end, 1, 1);
    return pixels;
}

class to_pixels {
public:
    to_pixels(const plan& p, const picture& src, const picture& dst, std::ptrdiff_t w)
        : plan_(p), src_(src), dst_(dst), chroma_of_(which_terms(p, src)), chroma_(src, w) {
        if (src.format.kind != kind::grey) return;
        const std::ptrdiff_t n = std::min<std::ptrdiff_t>(w / 2 + 1, strip_pairs);
        for (s16* component : {rows_[0].r, rows_[0].g, rows_[0].b}) std::fill_n(component, n, p.matrix.constant);
    }

    /// Converts rows from pixel x on, which is even: as many as are given back.
    std::ptrdiff_t convert(const band& b, std::ptrdiff_t x, std::ptrdiff_t y) {
        const pair_of_rows from = rows_for(y, b.h, src_.format.half_h, false, plan_.smooth);
        const bool both = chroma_of_ == chroma_of::neighbours && from.apart && y % 2 == 1 && y + 1 < b.end;
        for_strips(x, b.columns, [&](strip s) {
            make_terms(from, s);
            put(y, rows_[0], s);
            if (both) put(y + 1, rows_[1], s);
        });
        return 1 + both;
    }

private:
    static chroma_of which_terms(const plan& p, const picture& src) {
        if (src.format.kind == kind::grey) return chroma_of::pair;
        if (!src.format.half_w) return chroma_of::pixel;
        return p.smooth ? chroma_of::neighbours : chroma_of::pair;
    }
    void make_terms(pair_of_rows from, strip s) {
        if (src_.format.kind == kind::grey) return;
        const std::ptrdiff_t n = s.pairs();
        const matrix& m = plan_.matrix;
        if (chroma_of_ == chroma_of::pixel && from.near == from.far)
            return multiply(m, chroma_.plane(0, from.near, s), chroma_.plane(1, from.near, s), rows_[0], rows_[1],
                            s.pixels);
        if (chroma_of_ == chroma_of::pair && src_.format.kind == kind::paired && src_.format.second)
            return multiply(m, paired_samples<true>{src_.row(1, from.near) + s.x}, &rows_[0], n);
        if (chroma_of_ == chroma_of::pair)
            return chroma_.samples(from.near, s, [&](auto c) { multiply(m, c, &rows_[0], n); });
        if (chroma_of_ == chroma_of::neighbours) {
            const std::ptrdiff_t there = chroma_.with_next(s);
            terms* const rows = rows_;
            chroma_.between(from, s, [=, &m](auto c) { multiply(m, c, rows, there); });
            if (there == n)
                for (int i = 0; i <= from.apart; ++i)
                    for (s16* component : {rows[i].r, rows[i].g, rows[i].b}) component[n] = component[n - 1];
            return;
        }
        chroma_.add_up(from, s);
        multiply(m, chroma_.samples(), &rows_[0], n);
        if (chroma_of_ == chroma_of::pixel) multiply(m, chroma_.odd_samples(), &rows_[1], n);
    }

    void put(std::ptrdiff_t y, const terms& even, strip s) {
        const u8* luma = src_.row(0, y) + s.x;
        if (src_.format.kind == kind::packed) {
            take(src_.row(0, y) + 2 * s.x, src_.format.second, luma_, s.pixels);
            luma = luma_;
        }
        const writer& rgb = *dst_.format.rgb;
        u8* p[3];
        for (int i = 0; i < rgb.planes; ++i) p[i] = dst_.row(i, y) + s.x * rgb.step[i];
        rgb.put[static_cast<int>(chroma_of_)](even, rows_[1], plan_.matrix.luma, luma, p, s.pixels);
    }

    const plan& plan_;
    const picture &src_, &dst_;
    const chroma_of chroma_of_;
    chroma_reader chroma_;
    terms rows_[2];  // of two rows of pixels, or of the even and the odd pixels of one
    u8 luma_[2 * strip_pairs];
};
}  // namespace zelt::inline ZELT_LEVEL::video
