// SPDX-License-Identifier: MIT
#pragma once  // a YUV format of 10 bits to one of RGB, of 8 bits or of 10
#include "video/source.h"

namespace zelt::inline ZELT_LEVEL::video {
// --------------------------------------------------------------------------------------------------------------
// chroma

/// Two planes as they are, as the matrix takes them
struct ten_planes {
    static constexpr int rows = 1;
    static constexpr bool halves = false;
    const u8 *u, *v;
    template <class V> void centred(std::ptrdiff_t i, wide_of<V>* d, wide_of<V>* e) const {
        load_ten<false>(u + 2 * i, *d), load_ten<false>(v + 2 * i, *e);
    }
    template <class V> static void put(s16* p, wide_of<V> v) { store_words(p, v); }
};
/// One plane of both
struct ten_pairs {
    static constexpr int rows = 1;
    static constexpr bool halves = false;
    const u8* uv;
    template <class V> void centred(std::ptrdiff_t i, wide_of<V>* d, wide_of<V>* e) const {
        load_two_tens<true>(uv + 4 * i, *d, *e);
    }
    template <class V> static void put(s16* p, wide_of<V> v) { store_words(p, v); }
};
/// Sums of two rows of these for those with the neighbour's, as between_rows
/// has them of bytes: of rows that are apart one for the pixels next to each
template <bool Apart, class Samples> struct ten_between {
    static constexpr int rows = Apart ? 2 : 1;
    static constexpr bool halves = true;
    Samples near, far;
    template <class V> void centred(std::ptrdiff_t i, wide_of<V>* d, wide_of<V>* e) const {
        wide_of<V> u, v, u_far, v_far;
        near.template centred<V>(i, &u, &v), far.template centred<V>(i, &u_far, &v_far);
        weigh(u >> 3, u_far >> 3, d), weigh(v >> 3, v_far >> 3, e);
    }
    template <class V> static void put(s16* p, wide_of<V> v) { store_words(p, v); }

private:
    template <class W> static void weigh(W near, W far, W* sums) {
        const W all = near + far;
        sums[0] = all + (near << 1);
        if constexpr (Apart) sums[1] = all + (far << 1);
    }
};

// Sums as those who use them ask for them: two channels, or two pixels of one,
// 2^shift times a sample.

struct ten_samples {
    static constexpr int shift = 2;
    const s16 *first, *second;
    template <class V> void get(std::ptrdiff_t i, wide_of<V>& a, wide_of<V>& b) const {
        a = words_at<V>(first + i), b = words_at<V>(second + i);
    }
};
/// The mean of even and odd samples
struct ten_means {
    static constexpr int shift = 3;
    const s16 *first, *first_odd, *second, *second_odd;
    template <class V> void get(std::ptrdiff_t i, wide_of<V>& a, wide_of<V>& b) const {
        a = words_at<V>(first + i) + words_at<V>(first_odd + i);
        b = words_at<V>(second + i) + words_at<V>(second_odd + i);
    }
};
/// One channel at its samples and between them
struct ten_doubled {
    static constexpr int shift = 3;
    const s16* samples;
    template <class V> void get(std::ptrdiff_t i, wide_of<V>& a, wide_of<V>& b) const {
        const wide_of<V> v = words_at<V>(samples + i);
        a = v << 1, b = v + words_at<V>(samples + i + 1);
    }
};

/// Samples of a strip; chroma as sums of four, centred
class ten_reader {
public:
    ten_reader(const picture& src, std::ptrdiff_t w) : src_(src), w_(w) {}

    bool paired() const { return src_.format.kind == kind::paired; }
    const u8* luma(std::ptrdiff_t y, strip s) const { return src_.row(0, y) + 2 * s.x; }
    const u8* plane(int channel, std::ptrdiff_t row, strip s) const {
        return src_.row(1 + channel, row) + (src_.format.half_w ? s.x : 2 * s.x);
    }
    const u8* pairs(std::ptrdiff_t row, strip s) const { return src_.row(1, row) + 2 * s.x; }
    /// How many samples there are for a strip and the pixel after it
    std::ptrdiff_t with_next(strip s) const { return std::min(s.pairs() + 1, (w_ + 1 - s.x) / 2); }

    /// Makes the sums over two rows.
    void add_up(pair_of_rows rows, strip s) { rows.apart ? add_up<true>(rows, s) : add_up<false>(rows, s); }
    /// U and V, or for each pixel one of them
    const s16* sums(int channel) const { return even_[channel]; }
    const s16* odd_sums(int channel) const { return odd_[channel]; }

private:
    template <bool Apart, class W> static W weigh(W near, W far) {
        near = near >> 6, far = far >> 6;
        return Apart ? (near << 2) - near + far : (near + far) << 1;
    }
    template <bool Apart> void add_up(pair_of_rows rows, strip s) {
        // and the next one, which in the last strip there is not
        const std::ptrdiff_t n = s.pairs(), there = with_next(s);
        if (paired()) {
            const u8 *near = pairs(rows.near, s), *far = pairs(rows.far, s);
            s16 *u = even_[0], *v = even_[1];
            for_each(there, [=](auto kind, std::ptrdiff_t i) {
                wide_of<decltype(kind)> a, b, c, d;
                load_two_tens<true>(near + 4 * i, a, b), load_two_tens<true>(far + 4 * i, c, d);
                store_words(u + i, weigh<Apart>(a, c)), store_words(v + i, weigh<Apart>(b, d));
            });
        }
        for (int c = 0; c < 2 && !paired(); ++c) {
            const u8 *near = plane(c, rows.near, s), *far = plane(c, rows.far, s);
            s16 *even = even_[c], *odd = odd_[c];
            if (src_.format.half_w)
                for_each(there, [=](auto kind, std::ptrdiff_t i) {
                    wide_of<decltype(kind)> a, b;
                    load_ten<false>(near + 2 * i, a), load_ten<false>(far + 2 * i, b);
                    store_words(even + i, weigh<Apart>(a, b));
                });
            else
                for_pixels(s.pixels, [=](auto kind, std::ptrdiff_t x) {
                    wide_of<decltype(kind)> a, b;
                    load_ten_pixels<false>(near + 2 * x, a), load_ten_pixels<false>(far + 2 * x, b);
                    store_term(even, odd, x, weigh<Apart>(a, b));
                });
            if (s.pixels % 2) odd[n - 1] = even[n - 1];
        }
        if (there == n)
            for (auto& channel : even_) channel[n] = channel[n - 1];
    }

    const picture& src_;
    const std::ptrdiff_t w_;
    s16 even_[2][strip_pairs + 1], odd_[2][strip_pairs + 1];
};

// --------------------------------------------------------------------------------------------------------------
// pixels

class tens_to_pixels {
public:
    tens_to_pixels(const plan& p, const picture& src, const picture& dst, std::ptrdiff_t w)
        : plan_(p), src_(src), dst_(dst), chroma_of_(which_terms(p, src)), samples_(src, w) {}

    /// Rows from pixel x on, those together that share their chroma
    void convert(const band& b, std::ptrdiff_t x) {
        const bool half_h = src_.format.half_h, apart = half_h && chroma_of_ == chroma_of::neighbours;
        for (std::ptrdiff_t y = b.begin, rows; y < b.end; y += rows) {
            rows = half_h && y % 2 == apart && y + 1 < b.end ? 2 : 1;
            const pair_of_rows from = rows_for(y, b.h, half_h, false, plan_.smooth);
            for_strips(x, b.columns, [&](strip s) {
                make_terms(from, s);
                for (std::ptrdiff_t i = 0; i < rows; ++i) put(y + i, rows_[apart ? i : 0], s);
            });
        }
    }

private:
    static chroma_of which_terms(const plan& p, const picture& src) {
        if (!src.format.half_w) return chroma_of::pixel;
        return p.smooth ? chroma_of::neighbours : chroma_of::pair;
    }
    void make_terms(pair_of_rows from, strip s) {
        const matrix& m = plan_.matrix;
        if (chroma_of_ == chroma_of::pixel) return multiply_pixels(from.near, s);
        const auto pairs = [&](std::ptrdiff_t row) { return ten_pairs{samples_.pairs(row, s)}; };
        const auto planes = [&](std::ptrdiff_t row) {
            return ten_planes{samples_.plane(0, row, s), samples_.plane(1, row, s)};
        };
        if (chroma_of_ == chroma_of::neighbours)
            samples_.paired() ? multiply_between(pairs, from, s) : multiply_between(planes, from, s);
        else if (samples_.paired())
            multiply(m, pairs(from.near), rows_, s.pairs());
        else
            multiply(m, planes(from.near), rows_, s.pairs());
    }
    /// Beyond the last sample it counts again.
    template <class Row> void multiply_between(Row row, pair_of_rows from, strip s) {
        const auto near = row(from.near), far = row(from.far);
        const std::ptrdiff_t n = s.pairs(), there = samples_.with_next(s);
        if (from.apart)
            multiply(plan_.matrix, ten_between<true, decltype(near)>{near, far}, rows_, there);
        else
            multiply(plan_.matrix, ten_between<false, decltype(near)>{near, far}, rows_, there);
        if (there == n)
            for (terms& of : rows_)
                for (s16* component : {of.r, of.g, of.b}) component[n] = component[n - 1];
    }
    void multiply_pixels(std::ptrdiff_t row, strip s) {
        const matrix m = plan_.matrix;
        const u8 *u = samples_.plane(0, row, s), *v = samples_.plane(1, row, s);
        for_pixels(s.pixels, [=, this](auto kind, std::ptrdiff_t x) {
            wide_of<decltype(kind)> d, e;
            load_ten_pixels<false>(u + 2 * x, d), load_ten_pixels<false>(v + 2 * x, e);
            store_term(rows_[0].r, rows_[1].r, x, m.red(d, e) + m.constant);
            store_term(rows_[0].g, rows_[1].g, x, m.green(d, e) + m.constant);
            store_term(rows_[0].b, rows_[1].b, x, m.blue(d, e) + m.constant);
        });
    }

    void put(std::ptrdiff_t y, const terms& even, strip s) {
        const u8* luma = samples_.luma(y, s);
        if (!samples_.paired()) {
            for_each(s.pixels, [luma, out = luma_](auto kind, std::ptrdiff_t x) {
                wide_of<decltype(kind)> v;
                load_16(luma + 2 * x, v);
                store_16(out + 2 * x, v << 6);
            });
            luma = luma_;
        }
        const writer& rgb = *dst_.format.rgb;
        u8* p[3];
        for (int i = 0; i < rgb.planes; ++i) p[i] = dst_.row(i, y) + s.x * rgb.step[i];
        rgb.put_tens[static_cast<int>(chroma_of_)](even, rows_[1], plan_.matrix.luma, luma, p, s.pixels);
    }

    const plan& plan_;
    const picture &src_, &dst_;
    const chroma_of chroma_of_;
    ten_reader samples_;
    terms rows_[2];  // of two rows of pixels, or of the even and the odd pixels of
                     // one
    u8 luma_[4 * strip_pairs];
};

// -----------------------------------------------------------------------------------------------------------------
// YUV

class tens_to_yuv {
public:
    tens_to_yuv(const plan& p, const picture& src, const picture& dst, std::ptrdiff_t w)
        : plan_(p), src_(src), dst_(dst), samples_(src, w) {}

    void convert(const band& b, std::ptrdiff_t y) {
        const format &from = src_.format, &to = dst_.format;
        const pair_of_rows rows = rows_for(y, b.h, from.half_h, to.half_h, plan_.smooth);
        for_strips(0, b.columns, [&](strip s) {
            samples_.paired() ? put_luma<true>(y, s) : put_luma<false>(y, s);
            if (to.kind != kind::grey && !(to.half_h && y % 2)) put_chroma(rows, to.half_h ? y / 2 : y, s);
            if (to.kind == kind::packed) interleave(dst_.row(0, y) + 2 * s.x, s);
        });
    }

private:
    /// Makes samples of the destination's depth from sums.
    struct rounding {
        bool ten, high;
        int shift;

        rounding(const format& to, int of_sums)
            : ten(to.ten), high(to.kind == kind::paired), shift(to.ten ? of_sums : of_sums + 2) {}
        template <class W> W operator()(W v) const {
            v = ((v + (1 << shift >> 1)) >> shift) + (ten ? 512 : 128);
            return ten && high ? v << 6 : v;
        }
        template <class V> void put(u8* p, wide_of<V> v) const {
            if (ten)
                store_16(p, (*this)(v));
            else
                store(p, narrow_ordered((*this)(v)));
        }
        template <class V> void put2(u8* p, wide_of<V> v, wide_of<V> w) const {
            if (ten)
                store_two_16(p, (*this)(v), (*this)(w));
            else
                store2(p, narrow_ordered((*this)(v)), narrow_ordered((*this)(w)));
        }
    };
    std::ptrdiff_t bytes() const { return dst_.format.ten ? 2 : 1; }

    template <bool High> void put_luma(std::ptrdiff_t y, strip s) {
        const rounding to(dst_.format, 0);
        const u8* luma = samples_.luma(y, s);
        u8* out = dst_.format.kind == kind::packed ? luma_ : dst_.row(0, y) + s.x * bytes();
        for_each(s.pixels, [=, n = bytes()](auto kind, std::ptrdiff_t x) {
            using V = decltype(kind);
            wide_of<V> v;
            load_ten<High>(luma + 2 * x, v);
            to.template put<V>(out + n * x, v >> 6);
        });
    }
    void put_chroma(pair_of_rows rows, std::ptrdiff_t y, strip s) {
        const format &from = src_.format, &to = dst_.format;
        samples_.add_up(rows, s);
        const s16 *u = samples_.sums(0), *v = samples_.sums(1);
        if (to.half_w) {
            const bool swapped = to.kind == kind::paired && to.second;
            if (swapped) std::swap(u, v);
            if (from.half_w) return put_halved(ten_samples{u, v}, y, s);
            return put_halved(ten_means{u, samples_.odd_sums(swapped), v, samples_.odd_sums(!swapped)}, y, s);
        }
        for (int c = 0; c < 2; ++c) {
            u8* const out = dst_.row(1 + c, y) + s.x * bytes();
            const s16* const sums = samples_.sums(c);
            if (!from.half_w)
                put_pixels(ten_samples{sums, samples_.odd_sums(c)}, out, s);
            else if (plan_.smooth)
                put_pixels(ten_doubled{sums}, out, s);
            else
                put_pixels(ten_samples{sums, sums}, out, s);
        }
    }
    template <class Sums> void put_halved(Sums sums, std::ptrdiff_t y, strip s) {
        const format& f = dst_.format;
        const rounding to(f, Sums::shift);
        if (f.kind != kind::planar)
            return put_pairs(sums, to, f.kind == kind::paired ? dst_.row(1, y) + s.x * bytes() : pairs_, s.pairs());
        const std::ptrdiff_t n = bytes();
        u8 *const u = dst_.row(1, y) + s.x / 2 * n, *const v = dst_.row(2, y) + s.x / 2 * n;
        for_each(s.pairs(), [=](auto kind, std::ptrdiff_t i) {
            using V = decltype(kind);
            wide_of<V> a, b;
            sums.template get<V>(i, a, b);
            to.template put<V>(u + n * i, a), to.template put<V>(v + n * i, b);
        });
    }
    template <class Sums> void put_pixels(Sums sums, u8* out, strip s) {
        const rounding to(dst_.format, Sums::shift);
        put_pairs(sums, to, out, s.pixels / 2);
        if (s.pixels % 2) {
            int even, odd;
            sums.template get<u8>(s.pixels / 2, even, odd);
            to.template put<u8>(out + bytes() * (s.pixels - 1), even);
        }
    }
    template <class Sums> void put_pairs(Sums sums, rounding to, u8* out, std::ptrdiff_t n) {
        for_each(n, [=, step = 2 * bytes()](auto kind, std::ptrdiff_t i) {
            using V = decltype(kind);
            wide_of<V> a, b;
            sums.template get<V>(i, a, b);
            to.template put2<V>(out + step * i, a, b);
        });
    }

    /// A pair of pixels of which there is one gets its luma twice.
    void interleave(u8* out, strip s) {
        if (s.pixels % 2) luma_[s.pixels] = luma_[s.pixels - 1];
        const u8 *first = luma_, *next = pairs_;
        if (dst_.format.second) std::swap(first, next);
        for_each(2 * s.pairs(), [=](auto a, std::ptrdiff_t i) {
            auto b = a;
            load(first + i, a), load(next + i, b);
            store2(out + 2 * i, a, b);
        });
    }

    const plan& plan_;
    const picture &src_, &dst_;
    ten_reader samples_;
    u8 luma_[2 * strip_pairs], pairs_[2 * strip_pairs];
};
}  // namespace zelt::inline ZELT_LEVEL::video
