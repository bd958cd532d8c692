// SPDX-License-Identifier: MIT
// libjpeg-turbo's conversion of YUV planes to packed RGB: the same full-range matrix, rounded otherwise. On ARM the
// kernels behind it, which are chosen by what the processor is said to have, not the one that is emulated; and those
// from RGB.
#include "bench.h"

#include <turbojpeg.h>

namespace zelt::bench {
namespace {
#ifdef __x86_64__
picture_peer decode(int format) {
    static const tjhandle decoder = tjInitDecompress();
    return {"libjpeg-turbo tjDecodeYUVPlanes", bytes_within<2>, [format](shape s, const view* v) {
                const u8* planes[] = {v[0].p, v[1].p, v[2].p};
                int strides[3];
                for (int i = 0; i < 3; ++i) strides[i] = static_cast<int>(v[i].stride);
                tjDecodeYUVPlanes(decoder, planes, strides, TJSAMP_444, v[3].p, s.w, static_cast<int>(v[3].stride), s.h,
                                  format, 0);
            }};
}

const bool added[] = {
    add_peer("zelt_csc_yuv444_to_rgb888", decode(TJPF_RGB)),
    add_peer("zelt_csc_yuv444_to_rgba8888", decode(TJPF_RGBA)),
    add_peer("zelt_csc_yuv444_to_argb8888", decode(TJPF_ARGB)),
    add_peer("zelt_csc_yuv444_to_bgra8888", decode(TJPF_BGRA)),
};
#else
extern "C" {
using to_rgb = void(unsigned w, u8*** planes, unsigned row, u8** packed, int rows);
to_rgb jsimd_ycc_extrgb_convert_neon, jsimd_ycc_extrgbx_convert_neon, jsimd_ycc_extbgrx_convert_neon,
    jsimd_ycc_extxrgb_convert_neon, jsimd_ycc_rgb565_convert_neon;
using to_yuv = void(unsigned w, u8** packed, u8*** planes, unsigned row, int rows);
to_yuv jsimd_extrgb_ycc_convert_neon;
}

/// Row by row: their pointers to rows are made as we go.
struct pointers {
    u8 *row[3], **plane[3] = {&row[0], &row[1], &row[2]};
    pointers(const view* v, int y) {
        for (int i = 0; i < 3; ++i) row[i] = v[i].p + y * v[i].stride;
    }
};

picture_peer decode(const char* name, to_rgb* f, comparison near_enough = bytes_within<2>) {
    return {name, near_enough, [f](shape s, const view* v) {
                for (int y = 0; y < s.h; ++y) {
                    pointers planes(v, y);
                    u8* packed = v[3].p + y * v[3].stride;
                    f(static_cast<unsigned>(s.w), planes.plane, 0, &packed, 1);
                }
            }};
}

void encode(shape s, u8* packed, const view* v, int y) {
    pointers planes(v, y);
    jsimd_extrgb_ycc_convert_neon(static_cast<unsigned>(s.w), &packed, planes.plane, 0, 1);
}

const bool added[] = {
    add_peer("zelt_csc_yuv444_to_rgb888", decode("jsimd_ycc_extrgb_convert", jsimd_ycc_extrgb_convert_neon)),
    add_peer("zelt_csc_yuv444_to_rgba8888", decode("jsimd_ycc_extrgbx_convert", jsimd_ycc_extrgbx_convert_neon)),
    add_peer("zelt_csc_yuv444_to_argb8888", decode("jsimd_ycc_extxrgb_convert", jsimd_ycc_extxrgb_convert_neon)),
    add_peer("zelt_csc_yuv444_to_bgra8888", decode("jsimd_ycc_extbgrx_convert", jsimd_ycc_extbgrx_convert_neon)),
    add_peer("zelt_csc_yuv444_to_rgb565",
             decode("jsimd_ycc_rgb565_convert", jsimd_ycc_rgb565_convert_neon, fields_within_1)),
    add_peer("zelt_csc_rgb888_to_yuv444", {"jsimd_extrgb_ycc_convert", bytes_within<2>,
                                           [](shape s, const view* v) {
                                               for (int y = 0; y < s.h; ++y)
                                                   encode(s, v[0].p + y * v[0].stride, v + 1, y);
                                           }}),
};
#endif
}  // namespace
}  // namespace zelt::bench
