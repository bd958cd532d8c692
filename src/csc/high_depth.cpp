// SPDX-License-Identifier: MIT
// Converters of 10-bit samples, and the plane copy.
#include "csc/convert.h"
#include "simd/export.h"
#include "zelt/csc.h"

#include <cstring>

using namespace zelt;
using namespace zelt::csc;

namespace {
/// Planes of 16-bit words; arithmetic is in int, or in 16 bits in registers.
struct planar_words : planes<3> {
    using planes::planes;
    static constexpr int step[] = {2, 2, 2};

    template <class V, class Place> auto get(Place place) {
        pixel<wide_of<V>> v{};
        place.load_word(p[0], v.c0);
        place.load_word(p[1], v.c1);
        place.load_word(p[2], v.c2);
        return v;
    }
    template <class W, class Place> void put(Place place, pixel<W> v) {
        place.store_word(p[0], v.c0);
        place.store_word(p[1], v.c1);
        place.store_word(p[2], v.c2);
    }
};

struct to_rgb10 {
    template <class W> pixel<W> operator()(pixel<W> v) const { return yuv_to_rgb10(v); }
};
struct to_yuv10 {
    template <class W> pixel<W> operator()(pixel<W> v) const { return rgb_to_yuv10(v); }
};

struct words_to_bytes : planes<1> {
    using planes::planes;
    static constexpr int step[] = {2};
    template <class V, class Place> V get(Place place) {
        wide_of<V> v;
        place.load_word(p[0], v);
        return fast::low_q2_ordered(v);
    }
};
struct byte_plane : planes<1> {
    using planes::planes;
    static constexpr int step[] = {1};
    template <class V, class Place> void put(Place place, V v) { place.store(p[0], v); }
};
struct unchanged {
    template <class V> V operator()(V v) const { return v; }
};
}  // namespace

ZELT_EXPORT(void, zelt_csc_p410_to_r10g10b10)
(void* const* src_a, int32_t src_w, int32_t src_h, const int32_t* src_s, int32_t, void* const* dst_a, int32_t, int32_t,
 const int32_t* dst_s, int32_t) {
    convert<planar_words, to_rgb10, planar_words>(src_a, src_w, src_h, src_s, dst_a, dst_s);
}

ZELT_EXPORT(void, zelt_csc_r10g10b10_to_p410)
(void* const* src_a, int32_t src_w, int32_t src_h, const int32_t* src_s, int32_t, void* const* dst_a, int32_t, int32_t,
 const int32_t* dst_s, int32_t) {
    convert<planar_words, to_yuv10, planar_words>(src_a, src_w, src_h, src_s, dst_a, dst_s);
}

ZELT_EXPORT(void, zelt_csc_p010_to_yuv420)
(void* const* src_a, int32_t src_w, int32_t src_h, const int32_t* src_s, int32_t, void* const* dst_a, int32_t, int32_t,
 const int32_t* dst_s, int32_t) {
    if (src_w < 1 || src_h < 1) return;
    const int half_w = src_w / 2 + src_w % 2, half_h = src_h / 2 + src_h % 2;
    for (int i = 0; i < 3; ++i)
        convert<words_to_bytes, unchanged, byte_plane>(src_a + i, i ? half_w : src_w, i ? half_h : src_h, src_s + i,
                                                       dst_a + i, dst_s + i);
}

ZELT_EXPORT(void, zelt_csc_yuv444x_to_yuv444x)
(void* const* src_a, int32_t src_w, int32_t src_h, const int32_t* src_s, int32_t, void* const* dst_a, int32_t, int32_t,
 const int32_t* dst_s, int32_t dst_cs) {
    if (src_w < 1) return;
    const int count = dst_cs == ZELT_CS_YUV444A8 ? 4 : 3;
    for (int i = 0; i < count; ++i) {
        const auto* src = static_cast<const u8*>(src_a[i]);
        auto* dst = static_cast<u8*>(dst_a[i]);
        const std::ptrdiff_t src_stride = src_s[i], dst_stride = dst_s[i];
        std::size_t run = static_cast<std::size_t>(src_w);
        int runs = src_h;
        if (src_stride == src_w && dst_stride == src_w && src_h > 0) {
            run *= static_cast<std::size_t>(src_h);
            runs = 1;
        }
        for (int y = 0; y < runs; ++y, src += src_stride, dst += dst_stride) std::memmove(dst, src, run);
    }
}
