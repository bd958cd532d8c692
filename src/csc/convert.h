// SPDX-License-Identifier: MIT
#pragma once
// Same-size conversion: a row loop over a source layout, a colour matrix and a destination layout. Each is written once
// over the value V: u8, a pixel at a time, or simd::u8xn, a register of pixels.
#include "csc/pixel.h"
#include "csc/pixel10.h"
#include "simd/barrier.h"

namespace zelt::inline ZELT_LEVEL::csc {
using namespace fast;

template <class V> constexpr V opaque = V{} | 255;

// -------------------------------------------------------------------------------------------------------------- places

template <class V, class... More> auto load_channels(const u8* p, V& a, More&... more) {
    if constexpr (sizeof...(more) == 0)
        return load(p, a);
    else if constexpr (sizeof...(more) == 1)
        return load2(p, a, more...);
    else if constexpr (sizeof...(more) == 2)
        return load3(p, a, more...);
    else
        return load4(p, a, more...);
}
template <class V, class... More> auto store_channels(u8* p, V a, More... more) {
    if constexpr (sizeof...(more) == 0)
        return store(p, a);
    else if constexpr (sizeof...(more) == 1)
        return store2(p, a, more...);
    else if constexpr (sizeof...(more) == 2)
        return store3(p, a, more...);
    else
        return store4(p, a, more...);
}

/// The pixels from x on, of planes that stay where they are
struct at {
    std::ptrdiff_t x;

    template <class... V> void load(const u8* plane, V&... v) const { load_channels(plane + sizeof...(V) * x, v...); }
    template <class... V> void store(u8* plane, V... v) const { store_channels(plane + sizeof...(V) * x, v...); }
    template <class W> void load_word(const u8* plane, W& w) const { load_16(plane + 2 * x, w); }
    template <class W> void store_word(u8* plane, W w) const { store_16(plane + 2 * x, w); }
};

/// The next pixels of planes that step on
struct next {
    explicit next(std::ptrdiff_t) {}

    template <class... V> void load(u8*& plane, V&... v) const { step(plane, load_channels(plane, v...)); }
    template <class... V> void store(u8*& plane, V... v) const { step(plane, store_channels(plane, v...)); }
    template <class W> void load_word(u8*& plane, W& w) const { step(plane, load_16(plane, w)); }
    template <class W> void store_word(u8*& plane, W w) const { step(plane, store_16(plane, w)); }

private:
    static void step(u8*& plane, const u8* to) {
        plane = const_cast<u8*>(to);
        hide_step_from_optimizer(plane);
    }
};

// ------------------------------------------------------------------------------------------------------------- layouts

/// The planes of a layout, copied from the caller's arrays: stores through u8* may alias those.
template <int N> struct planes {
    static constexpr int count = N;
    u8* p[N];
    std::ptrdiff_t stride[N];

    planes() = default;
    planes(void* const* a, const int* s) {
        for (int i = 0; i < N; ++i) {
            p[i] = static_cast<u8*>(a[i]);
            stride[i] = s[i];
        }
    }
    void next_row() {
        for (int i = 0; i < N; ++i) p[i] += stride[i];
    }
    /// Whether whole registers can be stored to it
    bool wide() const { return true; }
};

template <int N> struct planar : planes<N> {
    using planes<N>::planes, planes<N>::p;
    static constexpr int step[] = {1, 1, 1, 1};  // bytes per pixel, in each plane

    template <class V, class Place> pixel<V> get(Place place) {
        pixel<V> v;
        place.load(p[0], v.c0);
        place.load(p[1], v.c1);
        place.load(p[2], v.c2);
        if constexpr (N == 4)
            place.load(p[3], v.a);
        else
            v.a = opaque<V>;
        return v;
    }
    template <class V, class Place> void put(Place place, pixel<V> v) {
        place.store(p[0], v.c0);
        place.store(p[1], v.c1);
        place.store(p[2], v.c2);
        if constexpr (N == 4) place.store(p[3], v.a);
    }
};

struct rgb888 : planes<1> {
    using planes::planes;
    static constexpr int step[] = {3};

    template <class V, class Place> pixel<V> get(Place place) {
        pixel<V> v;
        place.load(p[0], v.c0, v.c1, v.c2);
        v.a = opaque<V>;
        return v;
    }
    template <class V, class Place> void put(Place place, pixel<V> v) { place.store(p[0], v.c0, v.c1, v.c2); }
};

struct rgba8888 : planes<1> {
    using planes::planes;
    static constexpr int step[] = {4};

    template <class V, class Place> pixel<V> get(Place place) {
        pixel<V> v;
        place.load(p[0], v.c0, v.c1, v.c2, v.a);
        return v;
    }
    template <class V, class Place> void put(Place place, pixel<V> v) { place.store(p[0], v.c0, v.c1, v.c2, v.a); }
};

/// Kept: a packed picture given as four component pointers and strides, byte i of a pixel through p[i]. If the second
/// pointer is null, the first one and its stride are those of the picture.
struct components : planes<4> {
    static constexpr int step[] = {4, 4, 4, 4};

    components(void* const* a, const int* s) {
        const bool packed = !a[1];
        for (int i = 0; i < 4; ++i) {
            p[i] = static_cast<u8*>(packed ? a[0] : a[i]) + (packed ? i : 0);
            stride[i] = packed ? s[0] : s[i];
        }
    }
    bool wide() const {
        for (int i = 1; i < 4; ++i)
            if (p[i] != p[0] + i) return false;
        return true;
    }
    template <class V, class Place> void put4(Place place, V a, V b, V c, V d) {
        if constexpr (sizeof(V) > 1) {
            place.store(p[0], a, b, c, d);
        } else {
            p[0][4 * place.x] = a;
            p[1][4 * place.x] = b;
            p[2][4 * place.x] = c;
            p[3][4 * place.x] = d;
        }
    }
};

struct argb8888 : components {
    using components::components;
    template <class V, class Place> void put(Place place, pixel<V> v) { put4(place, v.a, v.c0, v.c1, v.c2); }
};

struct bgra8888 : components {
    using components::components;
    template <class V, class Place> void put(Place place, pixel<V> v) { put4(place, v.c2, v.c1, v.c0, v.a); }
};

/// A, R, G, B through one pointer: what zelt_csc_yuv444_to_rgba8888 writes for the colour spaces from ARGB8888 up
struct argb8888_packed : planes<1> {
    using planes::planes;
    static constexpr int step[] = {4};
    template <class V, class Place> void put(Place place, pixel<V> v) { place.store(p[0], v.a, v.c0, v.c1, v.c2); }
};

/// Low and high byte of the RGB565 word: the high bits of each component, without rounding
template <class V> V low565(pixel<V> v) { return shift_insert<3>(static_cast<V>(v.c1 << 3), v.c2); }
template <class V> V high565(pixel<V> v) { return shift_insert<5>(v.c0, v.c1); }

struct rgb565 : planes<1> {
    using planes::planes;
    static constexpr int step[] = {2};

    template <class V, class Place> pixel<V> get(Place place) {
        V low, high;
        place.load(p[0], low, high);
        // the fields become the high bits of bytes whose low bits are 0
        return {static_cast<V>(high & 0xF8), static_cast<V>(high << 5 | (low >> 3 & 0x1C)), static_cast<V>(low << 3),
                opaque<V>};
    }
    template <class V, class Place> void put(Place place, pixel<V> v) { place.store(p[0], low565(v), high565(v)); }
};

struct rgb565a8 : planes<2> {
    using planes::planes;
    static constexpr int step[] = {2, 1};
    template <class V, class Place> void put(Place place, pixel<V> v) {
        place.store(p[0], low565(v), high565(v));
        place.store(p[1], v.a);
    }
};

struct rgba5658 : planes<1> {
    using planes::planes;
    static constexpr int step[] = {3};
    template <class V, class Place> void put(Place place, pixel<V> v) { place.store(p[0], low565(v), high565(v), v.a); }
};

// ------------------------------------------------------------------------------------------------------------ matrices

struct to_rgb {
    template <class V> pixel<V> operator()(pixel<V> v) const { return yuv_to_rgb(v); }
};
struct to_yuv {
    template <class V> pixel<V> operator()(pixel<V> v) const { return rgb_to_yuv(v); }
};
struct repack {
    template <class V> pixel<V> operator()(pixel<V> v) const { return v; }
};

// --------------------------------------------------------------------------------------------------------------- loops

/// One row of at least as many pixels as a V holds. The last V ends with the row and may overlap the one before it.
template <class V, class Source, class Matrix, class Dest>
void convert_row(Source src, Matrix matrix, Dest dst, std::ptrdiff_t w) {
    constexpr std::ptrdiff_t step = sizeof(V);
    constexpr bool steps = step > 1 && loads_step;
    constexpr int turn = steps && std::is_same_v<Matrix, repack> ? 2 : 1;  // where the loop's own work counts
    using place = std::conditional_t<steps, next, at>;
    Source s = src;
    Dest d = dst;
    std::ptrdiff_t x = 0, n = w / step;
    if (n % turn) d.put(place{x}, matrix(s.template get<V>(place{x}))), --n, x += step;
    for (n /= turn; n != 0; --n)
        for (int i = 0; i < turn; ++i, x += step) d.put(place{x}, matrix(s.template get<V>(place{x})));
    if (x < w) dst.put(at{w - step}, matrix(src.template get<V>(at{w - step})));
}

/// Whether a row of any source plane shares memory with one of any destination plane
template <class Source, class Dest> bool overlap(const Source& src, const Dest& dst, std::ptrdiff_t w) {
    for (int i = 0; i < Source::count; ++i)
        for (int j = 0; j < Dest::count; ++j) {
            const auto s = reinterpret_cast<std::uintptr_t>(src.p[i]), d = reinterpret_cast<std::uintptr_t>(dst.p[j]);
            if (s < d + static_cast<std::uintptr_t>(w * Dest::step[j]) &&
                d < s + static_cast<std::uintptr_t>(w * Source::step[i]))
                return true;
        }
    return false;
}

/// Whether there are no gaps between the rows of a layout
template <class Layout> bool contiguous(const Layout& l, std::ptrdiff_t w) {
    for (int i = 0; i < Layout::count; ++i)
        if (l.stride[i] != w * Layout::step[i]) return false;
    return true;
}

template <class Source, class Matrix, class Dest>
void convert(void* const* src_a, int src_w, int h, const int* src_s, void* const* dst_a, const int* dst_s) {
    if (src_w < 1 || h < 1) return;
    Source src(src_a, src_s);
    Dest dst(dst_a, dst_s);
    std::ptrdiff_t w = src_w;
    if (contiguous(src, w) && contiguous(dst, w) && s64{w} * h <= 1 << 28) {
        w *= h;
        h = 1;
    }
    constexpr bool by_loop = std::is_same_v<Matrix, repack> && std::is_same_v<Dest, rgb888> && !store3_beats_a_loop;
    using V = std::conditional_t<by_loop, u8, widest>;
    constexpr std::ptrdiff_t lanes = sizeof(V);
    for (; h > 0; --h, src.next_row(), dst.next_row()) {
        // Within one buffer pixels are converted one after another, each from what the ones before it left.
        if (lanes > 1 && w >= lanes && dst.wide() && !overlap(src, dst, w)) {
            convert_row<V>(src, Matrix{}, dst, w);
            continue;
        }
        convert_row<u8>(src, Matrix{}, dst, w);
    }
}
}  // namespace zelt::inline ZELT_LEVEL::csc
