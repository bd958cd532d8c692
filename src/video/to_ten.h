// SPDX-License-Identifier: MIT
#pragma once  // planes of 10-bit RGB to a YUV format of 10 bits
#include "video/source.h"

namespace zelt::inline ZELT_LEVEL::video {
class to_ten {
public:
    to_ten(const plan& p, const picture& src, const picture& dst, std::ptrdiff_t w)
        : matrix_(p.ten_back), src_(src), dst_(dst), w_(w) {}

    void convert(const band& b, std::ptrdiff_t y) const {
        const format& to = dst_.format;
        const bool high = to.kind == kind::paired;
        put_luma(y, high ? 6 : 0);
        if (to.half_h && y % 2) return;
        // Rows that share chroma, or one twice
        const std::ptrdiff_t other = to.half_h ? std::min(y + 1, b.h - 1) : y, row = to.half_h ? y / 2 : y;
        u8 *const u = dst_.row(1, row), *const v = high ? nullptr : dst_.row(2, row);
        const auto to_planes = [=](std::ptrdiff_t i, auto d, auto e) {
            store_16(u + 2 * i, d), store_16(v + 2 * i, e);
        };
        const auto to_pairs = [=](std::ptrdiff_t i, auto d, auto e) { store_two_16(u + 4 * i, d << 6, e << 6); };
        if (!to.half_w)
            put_whole(y, to_planes);
        else if (high)
            put_halved(y, other, to_pairs);
        else
            put_halved(y, other, to_planes);
    }

private:
    void put_luma(std::ptrdiff_t y, int shift) const {
        const u8 *r = src_.row(0, y), *g = src_.row(1, y), *b = src_.row(2, y);
        u8* const out = dst_.row(0, y);
        for_each(w_, [=, m = matrix_](auto kind, std::ptrdiff_t x) {
            wide_of<decltype(kind)> v[3];
            load_ten<false>(r + 2 * x, v[0]), load_ten<false>(g + 2 * x, v[1]), load_ten<false>(b + 2 * x, v[2]);
            store_16(out + 2 * x, (ten_of_products(m.y, v, m.y_rounding) + m.y_middle) << shift);
        });
    }
    template <class W> static void multiply(const ten_back_matrix& m, const W (&v)[3], W& d, W& e) {
        d = ten_of_products(m.u, v, 32) + 512, e = ten_of_products(m.v, v, 32) + 512;
    }
    /// Chroma of each two pixels in two rows, from sums of four
    template <class Put> void put_halved(std::ptrdiff_t y, std::ptrdiff_t other, Put put) const {
        const u8 *near[3], *far[3];
        for (int i = 0; i < 3; ++i) near[i] = src_.row(i, y), far[i] = src_.row(i, other);
        const auto convert = [=, m = matrix_](auto kind, std::ptrdiff_t i, std::ptrdiff_t next) {
            using W = wide_of<decltype(kind)>;
            W v[3], d, e;
            for (int c = 0; c < 3; ++c) {
                W a[4];
                load_pixel_pairs(near[c] + 4 * i, next, a[0], a[1]), load_pixel_pairs(far[c] + 4 * i, next, a[2], a[3]);
                v[c] = ((a[0] >> 6) + (a[1] >> 6) + (a[2] >> 6) + (a[3] >> 6)) << 4;
            }
            multiply(m, v, d, e);
            put(i, d, e);
        };
        for_each(w_ / 2, [=](auto kind, std::ptrdiff_t i) { convert(kind, i, 2); });
        if (w_ % 2) convert(u8{}, w_ / 2, 0);  // a pixel without another
    }
    static void load_pixel_pairs(const u8* p, std::ptrdiff_t next, int& a, int& b) {
        load_ten<false>(p, a), load_ten<false>(p + next, b);
    }
    template <class W> static void load_pixel_pairs(const u8* p, std::ptrdiff_t, W& a, W& b) {
        load_two_tens<false>(p, a, b);
    }
    template <class Put> void put_whole(std::ptrdiff_t y, Put put) const {
        const u8 *r = src_.row(0, y), *g = src_.row(1, y), *b = src_.row(2, y);
        for_each(w_, [=, m = matrix_](auto kind, std::ptrdiff_t x) {
            wide_of<decltype(kind)> v[3], d, e;
            load_ten<false>(r + 2 * x, v[0]), load_ten<false>(g + 2 * x, v[1]), load_ten<false>(b + 2 * x, v[2]);
            multiply(m, v, d, e);
            put(x, d, e);
        });
    }

    const ten_back_matrix matrix_;
    const picture &src_, &dst_;
    const std::ptrdiff_t w_;
};
}  // namespace zelt::inline ZELT_LEVEL::video
