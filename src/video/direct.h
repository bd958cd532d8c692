// SPDX-License-Identifier: MIT
#pragma once
// Pixels of which two share chroma, replicated: from the planes of a source to those of a destination, with nothing
// kept in memory between. Where two rows share chroma, too, they are converted together. Rows are at least a register
// wide; what is narrower, and the last pixel of an odd row, goes the way of all other pixels.
#include "video/rows.h"

namespace zelt::inline ZELT_LEVEL::video {
/// How luma and chroma lie
enum class sharing { grey, planes, paired, paired_v_first, packed, packed_luma_second, ten_planes, ten_paired };
constexpr int sharings = 8;

/// Rows that share chroma, `pixels` of each, which are even; and their strides, those of luma and of the destination
/// being the distance of neighbouring rows
struct shared_rows {
    const u8 *luma, *chroma[2];
    u8* out[3];
    std::ptrdiff_t luma_stride, chroma_stride[2], out_stride[3];
    std::ptrdiff_t pixels, count;  // of rows, or of pairs of them; 1 or more
};

#if ZELT_SIMD
/// A place for what destinations put
template <class Order, class Place> struct in_order_of : Place {
    template <class... V> void store(u8*& plane, V... v) const {
        Place::template deal<2 * sizeof...(V)>(plane, [=](u8* p) { return Order::store(p, v...); });
    }
};

template <sharing Sharing, int Rows, class Dest> struct shared_pixels {
    static constexpr bool packed = Sharing == sharing::packed || Sharing == sharing::packed_luma_second;
    static constexpr bool ten = Sharing == sharing::ten_planes || Sharing == sharing::ten_paired;
    using order = pixels<Dest::step[0], packed || ten>;

    const u8 *luma[Rows], *chroma[2];
    Dest out[Rows];

    explicit shared_pixels(const shared_rows& r) : chroma{r.chroma[0], r.chroma[1]} {
        ZELT_STRAIGHT(2)
        for (int i = 0; i < Rows; ++i) {
            luma[i] = r.luma + i * r.luma_stride;
            for (int plane = 0; plane < Dest::count; ++plane) out[i].p[plane] = r.out[plane] + i * r.out_stride[plane];
        }
    }

    /// A register of them
    template <class Place> [[gnu::always_inline]] void convert(const matrix& m, Place place) {
        const in_order_of<order, Place> dealt{place};
        s16x2n y[Rows];
        s16xn d, e, r, g, b;
        load(place, y, d, e);
        if constexpr (Sharing != sharing::grey)
            r = m.red(d, e) + m.constant, g = m.green(d, e) + m.constant, b = m.blue(d, e) + m.constant;
        ZELT_STRAIGHT(2)
        for (int i = 0; i < Rows; ++i) {
            const s16x2n term = mul_q15(y[i], m.luma);
            const auto sum = [&](s16xn c) { return order::narrow_q6(add_sat(term, {c, c})); };
            if constexpr (Sharing == sharing::grey) {
                const u8xn v = order::narrow_q6(term + m.constant);
                out[i].put(dealt, pixel<u8xn>{v, v, v, csc::opaque<u8xn>});
            } else {
                out[i].put(dealt, pixel<u8xn>{sum(r), sum(g), sum(b), csc::opaque<u8xn>});
            }
        }
    }

private:
    template <class Place> void load(Place place, s16x2n (&y)[Rows], s16xn& d, s16xn& e) {
        if constexpr (packed) {
            s16x2n first, second;
            place.template deal<4>(luma[0], [&](const u8* p) { return order::load_packed(p, first, second); });
            const s16x2n c = Sharing == sharing::packed ? second : first;
            y[0] = Sharing == sharing::packed ? first : second, d = c.lo, e = c.hi;
            return;
        }
        if constexpr (ten) return load_tens(place, y, d, e);
        if constexpr (Sharing == sharing::planes) {
            place.template deal<1>(chroma[0], [&](const u8* p) { return order::load_chroma(p, d); });
            place.template deal<1>(chroma[1], [&](const u8* p) { return order::load_chroma(p, e); });
        } else if constexpr (Sharing != sharing::grey) {
            s16xn &first = Sharing == sharing::paired ? d : e, &second = Sharing == sharing::paired ? e : d;
            place.template deal<2>(chroma[0], [&](const u8* p) { return order::load_chroma2(p, first, second); });
        }
        ZELT_STRAIGHT(2)
        for (int i = 0; i < Rows; ++i)
            place.template deal<2>(luma[i], [&](const u8* p) { return order::load_luma(p, y[i]); });
    }
    template <class Place> void load_tens(Place place, s16x2n (&y)[Rows], s16xn& d, s16xn& e) {
        constexpr bool high = Sharing == sharing::ten_paired;
        if constexpr (high) {
            s16x2n c;
            place.template deal<4>(chroma[0], [&](const u8* p) { return order::load_words(p, c); });
            d = c.lo, e = c.hi;
        } else {
            place.template deal<2>(chroma[0], [&](const u8* p) { return order::load_words(p, d); });
            place.template deal<2>(chroma[1], [&](const u8* p) { return order::load_words(p, e); });
        }
        d = centred_ten(d, high), e = centred_ten(e, high);
        ZELT_STRAIGHT(2)
        for (int i = 0; i < Rows; ++i) {
            place.template deal<4>(luma[i], [&](const u8* p) { return order::load_words(p, y[i]); });
            y[i] = centred_ten(y[i], high);
        }
    }
};

template <sharing Sharing, int Rows, class Dest> void put_shared(const matrix& given, shared_rows r) {
    using row = shared_pixels<Sharing, Rows, Dest>;
    constexpr std::ptrdiff_t step = lanes;
    const matrix m = given;
    for (;;) {
        if constexpr (loads_step) {
            row next(r);
            for (std::ptrdiff_t n = r.pixels / step; n != 0; --n) next.convert(m, next_pixels{});
            if (r.pixels % step) row(r).convert(m, pixels_at{r.pixels - step});
        } else {
            row all(r);
            for (std::ptrdiff_t x = 0; x < r.pixels; x += step) all.convert(m, pixels_at{std::min(x, r.pixels - step)});
        }
        if (--r.count == 0) return;  // strides lead nowhere after the last row
        r.luma += Rows * r.luma_stride;
        for (int i = 0; i < 2; ++i) r.chroma[i] += r.chroma_stride[i];
        for (int i = 0; i < Dest::count; ++i) r.out[i] += Rows * r.out_stride[i];
    }
}
#else
template <sharing, int, class> constexpr void (*put_shared)(const matrix&, shared_rows) = nullptr;
#endif

using shared_converter = void (*)(const matrix&, shared_rows);
/// By sharing, of one row and of two
template <class Dest>
constexpr shared_converter shared_converters[sharings][2] = {
    {put_shared<sharing::grey, 1, Dest>},
    {put_shared<sharing::planes, 1, Dest>, put_shared<sharing::planes, 2, Dest>},
    {put_shared<sharing::paired, 1, Dest>, put_shared<sharing::paired, 2, Dest>},
    {put_shared<sharing::paired_v_first, 1, Dest>, put_shared<sharing::paired_v_first, 2, Dest>},
    {put_shared<sharing::packed, 1, Dest>},
    {put_shared<sharing::packed_luma_second, 1, Dest>},
    {put_shared<sharing::ten_planes, 1, Dest>, put_shared<sharing::ten_planes, 2, Dest>},
    {put_shared<sharing::ten_paired, 1, Dest>, put_shared<sharing::ten_paired, 2, Dest>}};
}  // namespace zelt::inline ZELT_LEVEL::video
