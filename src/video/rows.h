#pragma once  // rows of pixels from luma and from what chroma adds to the components
#include "video/chroma.h"

namespace zelt::inline ZELT_LEVEL::video {
using csc::argb8888_packed, csc::at, csc::opaque, csc::planar, csc::planes, csc::rgb565, csc::rgb888, csc::rgba8888;

struct bgr888 : planes<1> {
    using planes::planes;
    static constexpr int step[] = {3};
    template <class V, class Place> void put(Place place, pixel<V> v) { place.store(p[0], v.c2, v.c1, v.c0); }
};
struct bgra8888 : planes<1> {
    using planes::planes;
    static constexpr int step[] = {4};
    template <class V, class Place> void put(Place place, pixel<V> v) { place.store(p[0], v.c2, v.c1, v.c0, v.a); }
};

/// Which terms belong to a pixel: those of its pair, of its own, or the sum of its pair's with themselves or with the
/// next pair's
enum class chroma_of { pair, pixel, neighbours };

/// A row of a strip to the planes at p
template <class Dest, chroma_of Kind>
void put_row(const terms& even, const terms& odd, int luma, const u8* y, u8* const* p, std::ptrdiff_t n) {
    Dest row;
    for (int i = 0; i < Dest::count; ++i) row.p[i] = p[i];
    const auto put = [ =, &even, &odd ](auto samples, std::ptrdiff_t x) __attribute__((always_inline)) {
        Dest dst = row;
        using V = decltype(samples);
        load(y + x, samples);
        const wide_of<V> term = luma_term(samples, luma);
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
            return sum_of_terms(term, chroma);
        };
        const pixel<V> v = {component(even.r, odd.r), component(even.g, odd.g), component(even.b, odd.b), opaque<V>};
        dst.put(at{x}, v);
    };
    if constexpr (Kind == chroma_of::pair)  // narrower than a register: direct.h has the others
        for (std::ptrdiff_t x = 0; x < n; ++x) put(u8{}, x);
    else
        for_pixels(n, put);
}
}  // namespace zelt::inline ZELT_LEVEL::video
