// SPDX-License-Identifier: MIT
#pragma once  // rows of pixels from luma and from what chroma adds to the components
#include "video/chroma.h"

namespace zelt::inline ZELT_LEVEL::video {
using csc::argb8888_packed, csc::at, csc::opaque, csc::planar, csc::planes, csc::rgb565, csc::rgb888, csc::rgba8888;

struct bgr888 : planes<1> {
    using planes::planes;
    static constexpr int step[] = {3};
    template <class V, class Place> pixel<V> get(Place place) {
        pixel<V> v;
        place.load(p[0], v.c2, v.c1, v.c0);
        v.a = opaque<V>;
        return v;
    }
    template <class V, class Place> void put(Place place, pixel<V> v) { place.store(p[0], v.c2, v.c1, v.c0); }
};
struct bgra8888 : planes<1> {
    using planes::planes;
    static constexpr int step[] = {4};
    template <class V, class Place> pixel<V> get(Place place) {
        pixel<V> v;
        place.load(p[0], v.c2, v.c1, v.c0, v.a);
        return v;
    }
    template <class V, class Place> void put(Place place, pixel<V> v) { place.store(p[0], v.c2, v.c1, v.c0, v.a); }
};
struct argb8888 : argb8888_packed {
    using argb8888_packed::argb8888_packed;
    template <class V, class Place> pixel<V> get(Place place) {
        pixel<V> v;
        place.load(p[0], v.a, v.c0, v.c1, v.c2);
        return v;
    }
};
/// Fields are widened by their own high bits, so that white is 255.
struct wide_rgb565 : rgb565 {
    using rgb565::rgb565;
    template <class V, class Place> pixel<V> get(Place place) {
        const pixel<V> v = rgb565::get<V>(place);
        return {shift_insert<5>(v.c0, v.c0), shift_insert<6>(v.c1, v.c1), shift_insert<5>(v.c2, v.c2), v.a};
    }
};

/// Planes of words of 10 bits
struct r10g10b10 : planes<3> {
    using planes::planes;
    static constexpr int step[] = {2, 2, 2};
    template <class W, class Place> void put(Place place, pixel<W> v) {
        store_pixels_16(p[0] + 2 * place.x, v.c0);
        store_pixels_16(p[1] + 2 * place.x, v.c1);
        store_pixels_16(p[2] + 2 * place.x, v.c2);
    }
};

/// Luma in bytes, and in words that have 10 bits in the high end
struct bytes {
    template <class V> static wide_of<V> term(const u8* y, std::ptrdiff_t x, int factor) {
        V v;
        load(y + x, v);
        return luma_term(v, factor);
    }
};
struct tens {
    template <class V> static wide_of<V> term(const u8* y, std::ptrdiff_t x, int factor) {
        wide_of<V> v;
        load_ten_pixels<true>(y + 2 * x, v);
        return mul_q15(v, factor);
    }
};

/// Which terms belong to a pixel: those of its pair, of its own, or the sum of its pair's with themselves or with the
/// next pair's
enum class chroma_of { pair, pixel, neighbours };

/// A row of a strip to the planes at p
template <class Dest, chroma_of Kind, class Luma = bytes>
void put_row(const terms& even, const terms& odd, int luma, const u8* y, u8* const* p, std::ptrdiff_t n) {
    Dest row;
    for (int i = 0; i < Dest::count; ++i) row.p[i] = p[i];
    const auto put = [ =, &even, &odd ](auto kind, std::ptrdiff_t x) __attribute__((always_inline)) {
        Dest dst = row;
        using V = decltype(kind);
        const wide_of<V> term = Luma::template term<V>(y, x, luma);
        const auto component = [&](const s16* e, const s16* o) __attribute__((always_inline)) {
            wide_of<V> chroma, next;
            if constexpr (Kind == chroma_of::pixel)
                load_term(e, o, x, chroma);
            else
                load_shared_term(e, x, chroma);
            if constexpr (Kind == chroma_of::neighbours) {
                load_term(e, e + 1, x, next);
                chroma = chroma + next;
            }
            if constexpr (std::is_same_v<Dest, r10g10b10>)
                return ten_of_terms(term, chroma);
            else
                return sum_of_terms(term, chroma);
        };
        pixel<decltype(component(even.r, odd.r))> v = {
            component(even.r, odd.r), component(even.g, odd.g), component(even.b, odd.b), {}};
        if constexpr (std::is_same_v<decltype(v), pixel<V>>) v.a = opaque<V>;
        dst.put(at{x}, v);
    };
    // narrower than a register: direct.h has the others
    if constexpr (Kind == chroma_of::pair && !std::is_same_v<Dest, r10g10b10>)
        for (std::ptrdiff_t x = 0; x < n; ++x) put(u8{}, x);
    else
        for_pixels(n, put);
}
}  // namespace zelt::inline ZELT_LEVEL::video
