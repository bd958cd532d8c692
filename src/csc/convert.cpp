// SPDX-License-Identifier: MIT
// Same-size converters of 8-bit pictures: the exports.
#include "csc/convert.h"

#include "simd/export.h"
#include "zelt/csc.h"

using namespace zelt::csc;

// name, source layout, matrix, destination layout
// clang-format off
#define ZELT_CONVERTERS(X)                                       \
    X(yuv444_to_rgb888,         planar<3>, to_rgb, rgb888)       \
    X(yuv444_to_rgb565,         planar<3>, to_rgb, rgb565)       \
    X(yuv444_to_rgb565a8,       planar<3>, to_rgb, rgb565a8)     \
    X(yuv444_to_argb8888,       planar<3>, to_rgb, argb8888)     \
    X(yuv444_to_bgra8888,       planar<3>, to_rgb, bgra8888)     \
    X(yuv444_to_r8g8b8,         planar<3>, to_rgb, planar<3>)    \
    X(yuv444a8_to_rgba8888,     planar<4>, to_rgb, rgba8888)     \
    X(yuv444a8_to_rgba5658,     planar<4>, to_rgb, rgba5658)     \
    X(yuv444a8_to_rgb565a8,     planar<4>, to_rgb, rgb565a8)     \
    X(yuv444a8_to_argb8888,     planar<4>, to_rgb, argb8888)     \
    X(yuv444a8_to_bgra8888,     planar<4>, to_rgb, bgra8888)     \
    X(rgb888_to_yuv444,         rgb888,    to_yuv, planar<3>)    \
    X(r8g8b8_to_yuv444,         planar<3>, to_yuv, planar<3>)    \
    X(rgb565_to_yuv444,         rgb565,    to_yuv, planar<3>)    \
    X(rgba8888_to_yuv444a8,     rgba8888,  to_yuv, planar<4>)    \
    X(r8g8b8a8_to_yuv444a8,     planar<4>, to_yuv, planar<4>)    \
    X(r8g8b8_to_rgb888,         planar<3>, repack, rgb888)       \
    X(r8g8b8_to_rgba8888,       planar<3>, repack, rgba8888)     \
    X(r8g8b8_to_rgb565,         planar<3>, repack, rgb565)       \
    X(r8g8b8_to_argb8888,       planar<3>, repack, argb8888)     \
    X(r8g8b8_to_bgra8888,       planar<3>, repack, bgra8888)     \
    X(x8y8z8_to_xyz565a8,       planar<3>, repack, rgb565a8)     \
    X(x8y8z8a8_to_xyz565a8,     planar<4>, repack, rgb565a8)     \
    X(r8g8b8a8_to_rgba8888,     planar<4>, repack, rgba8888)     \
    X(r8g8b8a8_to_rgba5658,     planar<4>, repack, rgba5658)     \
    X(r8g8b8a8_to_argb8888,     planar<4>, repack, argb8888)     \
    X(r8g8b8a8_to_bgra8888,     planar<4>, repack, bgra8888)
// clang-format on

#define CONVERTER(name, source, matrix, dest)                                                                      \
    ZELT_EXPORT(void, zelt_csc_##name)                                                                             \
    (void* const* src_a, int32_t src_w, int32_t src_h, const int32_t* src_s, int32_t, void* const* dst_a, int32_t, \
     int32_t, const int32_t* dst_s, int32_t) {                                                                     \
        convert<source, matrix, dest>(src_a, src_w, src_h, src_s, dst_a, dst_s);                                   \
    }
ZELT_CONVERTERS(CONVERTER)

ZELT_EXPORT(void, zelt_csc_yuv444_to_rgba8888)
(void* const* src_a, int32_t src_w, int32_t src_h, const int32_t* src_s, int32_t, void* const* dst_a, int32_t, int32_t,
 const int32_t* dst_s, int32_t dst_cs) {
    // Kept: every colour space from ARGB8888 up, not ARGB8888 alone, puts alpha first.
    const auto form =
        dst_cs >= ZELT_CS_ARGB8888 ? convert<planar<3>, to_rgb, argb8888_packed> : convert<planar<3>, to_rgb, rgba8888>;
    form(src_a, src_w, src_h, src_s, dst_a, dst_s);
}
