// SPDX-License-Identifier: MIT
#pragma once  // sources whose samples are no bytes, as bytes of which other sizes are made
#include "resize/part.h"
#include "video/picture.h"

namespace zelt::inline ZELT_LEVEL::video {
/// Words of 10 bits in Channels, each as the nearest byte
template <int Channels, bool High> struct rounded_tens {
    static constexpr int count = Channels, src_bytes = 2 * Channels, dst_bytes = Channels;

    template <class V> static V rounded(const u8* p) {
        wide_of<V> v;
        load_ten<High>(p, v);
        return narrow_ordered((((v >> 6) + 2) >> 2) + 128);
    }
    static void unpack(const u8* src, u8* dst, std::ptrdiff_t n) {
        for_each(n * Channels, [=](auto v, std::ptrdiff_t i) { store(dst + i, rounded<decltype(v)>(src + 2 * i)); });
    }
    static rsz::fields<Channels> get(const u8* p) {
        rsz::fields<Channels> v;
        for (int i = 0; i < Channels; ++i) v[i] = rounded<u8>(p + 2 * i);
        return v;
    }
    static void put(u8* p, const rsz::fields<Channels>& v) { rsz::channels<Channels>::put(p, v); }
};
/// RGB565 as RGBA
struct widened_565 {
    static constexpr int count = 4, src_bytes = 2, dst_bytes = 4;

    template <class V> static void convert(const u8* src, u8* dst, std::ptrdiff_t n) {
        wide_rgb565 from;
        rgba8888 to;
        from.p[0] = const_cast<u8*>(src), to.p[0] = dst;
        csc::convert_row<V>(from, csc::repack{}, to, n);
    }
    static void unpack(const u8* src, u8* dst, std::ptrdiff_t n) {
        n < static_cast<std::ptrdiff_t>(sizeof(widest)) ? convert<u8>(src, dst, n) : convert<widest>(src, dst, n);
    }
    static rsz::fields<4> get(const u8* p) {
        u8 rgba[4];
        convert<u8>(p, rgba, 1);
        return rsz::channels<4>::get(rgba);
    }
    static void put(u8* p, const rsz::fields<4>& v) { rsz::channels<4>::put(p, v); }
};

/// How luma, U and V or R, G and B lie in a source once its samples are bytes: the plane, bytes from sample to sample,
/// the first one
struct place_of_samples {
    int plane, bytes, first;
};
inline place_of_samples place_of(const format& f, int channel) {
    if (f.kind == kind::packed)
        return channel == 0 ? place_of_samples{0, 2, f.second} : place_of_samples{0, 4, 2 * channel - 1 - f.second};
    if (f.kind == kind::paired && channel > 0) return {1, 2, (channel == 2) != f.second};
    if (f.kind == kind::rgb && planes_of(f) == 1) {
        const bool three = f.cs == ZELT_CS_RGB888 || f.cs == ZELT_CS_BGR888;
        const bool blue_first = f.cs == ZELT_CS_BGR888 || f.cs == ZELT_CS_BGRA8888;
        return {0, three ? 3 : 4, (f.cs == ZELT_CS_ARGB8888) + (blue_first ? 2 - channel : channel)};
    }
    return {channel, 1, 0};
}

/// How the plane of a channel has its pixels
inline const rsz::pixel_format& pixels_in(const format& f, int channel) {
    static constexpr rsz::pixel_format words = rsz::pixels_of<widened_565>();
    static constexpr rsz::pixel_format tens[] = {rsz::pixels_of<rounded_tens<1, false>>(),
                                                 rsz::pixels_of<rounded_tens<1, true>>(),
                                                 rsz::pixels_of<rounded_tens<2, true>>()};
    static constexpr rsz::pixel_format bytes[] = {
        rsz::pixels_of<rsz::channels<1>>(), rsz::pixels_of<rsz::channels<2>>(), rsz::pixels_of<rsz::channels<3>>(),
        rsz::pixels_of<rsz::channels<4>>()};
    if (f.cs == ZELT_CS_RGB565) return words;
    if (f.ten) return tens[f.kind == kind::planar ? 0 : place_of(f, channel).bytes];
    return bytes[place_of(f, channel).bytes - 1];
}
}  // namespace zelt::inline ZELT_LEVEL::video
