// SPDX-License-Identifier: MIT
// libyuv's ways from decoder layouts and to them. It names packed formats by the word in memory, lowest byte last: its
// ARGB is B, G, R, A in memory, its RAW is R, G, B. Where it has no direct way, two steps work on strips that stay in
// the cache. Its smooth chroma is that of JPEG, in the middle of its pixels, and is rounded to 8 bits first.
#include "video.h"

#include <libyuv.h>

namespace zelt::bench {
namespace {
#define AT(plane) plane.p, plane.stride

using planar_to_packed = decltype(libyuv::I420ToARGB);
using pairs_to_packed = decltype(libyuv::NV12ToARGB);
using packed_to_packed = decltype(libyuv::ARGBToABGR);

video_work planar(planar_to_packed* f) {
    return [f](video_job& j) { f(AT(j.src[0]), AT(j.src[1]), AT(j.src[2]), AT(j.dst[0]), j.size.w, j.size.h); };
}
video_work pairs(pairs_to_packed* f) {
    return [f](video_job& j) { f(AT(j.src[0]), AT(j.src[1]), AT(j.dst[0]), j.size.w, j.size.h); };
}
video_work packed(packed_to_packed* f) {
    return [f](video_job& j) { f(AT(j.src[0]), AT(j.dst[0]), j.size.w, j.size.h); };
}

/// Calls f(strip of 4 bytes a pixel, first row, rows) until the picture is done.
template <class F> void in_strips(video_job& j, F f) {
    static u8 memory[1 << 14];
    const int stride = j.size.w * 4, rows = std::max(2, static_cast<int>(sizeof memory) / stride & -2);
    for (int y = 0; y < j.size.h; y += rows) f(video_plane{memory, stride}, y, std::min(rows, j.size.h - y));
}
video_plane below(const video_plane& p, int rows) { return {p.p + rows * p.stride, p.stride}; }

video_work pairs_then(packed_to_packed* second) {
    return [second](video_job& j) {
        in_strips(j, [&](video_plane strip, int y, int rows) {
            libyuv::NV12ToARGB(AT(below(j.src[0], y)), AT(below(j.src[1], y / 2)), AT(strip), j.size.w, rows);
            second(AT(strip), AT(below(j.dst[0], y)), j.size.w, rows);
        });
    };
}
/// Words of 10 bits, with strides in words
void p010_to_argb(const video_job& j, int y, video_plane to, int rows) {
    const auto at = [&](std::size_t i, int row) { return reinterpret_cast<const uint16_t*>(below(j.src[i], row).p); };
    libyuv::P010ToARGBMatrix(at(0, y), j.src[0].stride / 2, at(1, y / 2), j.src[1].stride / 2, AT(to),
                             &libyuv::kYuvI601Constants, j.size.w, rows);
}
void p010_to_bgra8888(video_job& j) { p010_to_argb(j, 0, j.dst[0], j.size.h); }
void p010_to_rgba8888(video_job& j) {
    in_strips(j, [&](video_plane strip, int y, int rows) {
        p010_to_argb(j, y, strip, rows);
        libyuv::ARGBToABGR(AT(strip), AT(below(j.dst[0], y)), j.size.w, rows);
    });
}
video_work yuyv_then(packed_to_packed* second) {
    return [second](video_job& j) {
        in_strips(j, [&](video_plane strip, int y, int rows) {
            libyuv::YUY2ToARGB(AT(below(j.src[0], y)), AT(strip), j.size.w, rows);
            second(AT(strip), AT(below(j.dst[0], y)), j.size.w, rows);
        });
    };
}
video_work yuyv_by_planes(planar_to_packed* second) {
    return [second](video_job& j) {
        in_strips(j, [&](video_plane strip, int y, int rows) {
            const video_plane l = {strip.p, j.size.w}, u = {below(l, rows).p, j.size.w / 2}, v = below(u, rows);
            libyuv::YUY2ToI422(AT(below(j.src[0], y)), AT(l), AT(u), AT(v), j.size.w, rows);
            second(AT(l), AT(u), AT(v), AT(below(j.dst[0], y)), j.size.w, rows);
        });
    };
}

using packed_to_planar = decltype(libyuv::ARGBToI420);
using packed_to_pairs = decltype(libyuv::ARGBToNV12);
video_work to_planar(packed_to_planar* f) {
    return [f](video_job& j) { f(AT(j.src[0]), AT(j.dst[0]), AT(j.dst[1]), AT(j.dst[2]), j.size.w, j.size.h); };
}
video_work to_pairs(packed_to_pairs* f) {
    return [f](video_job& j) { f(AT(j.src[0]), AT(j.dst[0]), AT(j.dst[1]), j.size.w, j.size.h); };
}

#ifdef ZELT_COUNT  // It asks what the processor has, and that is the host's under emulation.
const bool told = (libyuv::SetCpuFlags(libyuv::kCpuInitialized | libyuv::kCpuHasARM | libyuv::kCpuHasNEON), true);
#endif

const bool added[] = {
    add_video_peer("yuv420_to_rgba8888", "libyuv I420ToABGR", planar(libyuv::I420ToABGR)),
    add_video_peer("yuv420_to_bgra8888", "libyuv I420ToARGB", planar(libyuv::I420ToARGB)),
    add_video_peer("yuv420_to_argb8888", "libyuv I420ToBGRA", planar(libyuv::I420ToBGRA)),
    add_video_peer("yuv420_to_rgb888", "libyuv I420ToRAW", planar(libyuv::I420ToRAW)),
    add_video_peer("yuv420_to_rgb565", "libyuv I420ToRGB565", planar(libyuv::I420ToRGB565)),

    add_video_peer("nv12_to_rgba8888", "libyuv NV12ToABGR", pairs(libyuv::NV12ToABGR)),
    add_video_peer("nv12_to_bgra8888", "libyuv NV12ToARGB", pairs(libyuv::NV12ToARGB)),
    add_video_peer("nv12_to_argb8888", "libyuv NV12ToARGB + ARGBToBGRA", pairs_then(libyuv::ARGBToBGRA)),
    add_video_peer("nv12_to_rgb888", "libyuv NV12ToRAW", pairs(libyuv::NV12ToRAW)),
    add_video_peer("nv12_to_rgb565", "libyuv NV12ToRGB565", pairs(libyuv::NV12ToRGB565)),

    add_video_peer("yuyv_to_rgba8888", "libyuv YUY2ToARGB + ARGBToABGR", yuyv_then(libyuv::ARGBToABGR)),
    add_video_peer("yuyv_to_rgba8888", "libyuv YUY2ToI422 + I422ToABGR", yuyv_by_planes(libyuv::I422ToABGR)),
    add_video_peer("yuyv_to_bgra8888", "libyuv YUY2ToARGB", packed(libyuv::YUY2ToARGB)),
    add_video_peer("yuyv_to_argb8888", "libyuv YUY2ToI422 + I422ToBGRA", yuyv_by_planes(libyuv::I422ToBGRA)),
    add_video_peer("yuyv_to_rgb888", "libyuv YUY2ToI422 + I422ToRAW", yuyv_by_planes(libyuv::I422ToRAW)),
    add_video_peer("yuyv_to_rgb565", "libyuv YUY2ToI422 + I422ToRGB565", yuyv_by_planes(libyuv::I422ToRGB565)),

    add_video_peer("yuv422_to_rgba8888", "libyuv I422ToABGR", planar(libyuv::I422ToABGR)),
    add_video_peer("yuv422_to_bgra8888", "libyuv I422ToARGB", planar(libyuv::I422ToARGB)),
    add_video_peer("yuv422_to_argb8888", "libyuv I422ToBGRA", planar(libyuv::I422ToBGRA)),
    add_video_peer("yuv422_to_rgb888", "libyuv I422ToRAW", planar(libyuv::I422ToRAW)),
    add_video_peer("yuv422_to_rgb565", "libyuv I422ToRGB565", planar(libyuv::I422ToRGB565)),

    add_video_peer("p010le_to_rgba8888", "libyuv P010ToARGB + ARGBToABGR", p010_to_rgba8888),
    add_video_peer("p010le_to_bgra8888", "libyuv P010ToARGB", p010_to_bgra8888),

    // U and V exchanged and the mirrored constants give the reversed byte order.
    add_video_peer("yuv420_to_rgba8888 smooth", "libyuv I420ToARGBMatrixFilter",
                   [](video_job& j) {
                       libyuv::I420ToARGBMatrixFilter(AT(j.src[0]), AT(j.src[2]), AT(j.src[1]), AT(j.dst[0]),
                                                      &libyuv::kYvuI601Constants, j.size.w, j.size.h,
                                                      libyuv::kFilterBilinear);
                   }),

    add_video_peer("nv12_to_yuv420", "libyuv NV12ToI420",
                   [](video_job& j) {
                       libyuv::NV12ToI420(AT(j.src[0]), AT(j.src[1]), AT(j.dst[0]), AT(j.dst[1]), AT(j.dst[2]),
                                          j.size.w, j.size.h);
                   }),
    add_video_peer("yuv420_to_nv12", "libyuv I420ToNV12",
                   [](video_job& j) {
                       libyuv::I420ToNV12(AT(j.src[0]), AT(j.src[1]), AT(j.src[2]), AT(j.dst[0]), AT(j.dst[1]),
                                          j.size.w, j.size.h);
                   }),
    add_video_peer("yuyv_to_yuv420", "libyuv YUY2ToI420",
                   [](video_job& j) {
                       libyuv::YUY2ToI420(AT(j.src[0]), AT(j.dst[0]), AT(j.dst[1]), AT(j.dst[2]), j.size.w, j.size.h);
                   }),
    add_video_peer("yuv420_to_yuv444", "libyuv CopyPlane + ScalePlane",
                   [](video_job& j) {
                       libyuv::CopyPlane(AT(j.src[0]), AT(j.dst[0]), j.size.w, j.size.h);
                       for (const std::size_t i : {1u, 2u})
                           libyuv::ScalePlane(AT(j.src[i]), j.size.w / 2, j.size.h / 2, AT(j.dst[i]), j.size.w,
                                              j.size.h, libyuv::kFilterNone);
                   }),
    add_video_peer("yuv420_to_yuv444 smooth", "libyuv I420ToI444",
                   [](video_job& j) {
                       libyuv::I420ToI444(AT(j.src[0]), AT(j.src[1]), AT(j.src[2]), AT(j.dst[0]), AT(j.dst[1]),
                                          AT(j.dst[2]), j.size.w, j.size.h);
                   }),

    add_video_peer("rgba8888_to_yuv420", "libyuv ABGRToI420", to_planar(libyuv::ABGRToI420)),
    add_video_peer("bgra8888_to_yuv420", "libyuv ARGBToI420", to_planar(libyuv::ARGBToI420)),
    add_video_peer("argb8888_to_yuv420", "libyuv BGRAToI420", to_planar(libyuv::BGRAToI420)),
    add_video_peer("rgb888_to_yuv420", "libyuv RAWToI420", to_planar(libyuv::RAWToI420)),
    add_video_peer("bgr888_to_yuv420", "libyuv RGB24ToI420", to_planar(libyuv::RGB24ToI420)),
    add_video_peer("rgb565_to_yuv420", "libyuv RGB565ToI420", to_planar(libyuv::RGB565ToI420)),
    add_video_peer("rgba8888_to_nv12", "libyuv ABGRToNV12", to_pairs(libyuv::ABGRToNV12)),
    add_video_peer("bgra8888_to_nv12", "libyuv ARGBToNV12", to_pairs(libyuv::ARGBToNV12)),
    add_video_peer("rgb888_to_nv12", "libyuv RAWToARGB + ARGBToNV12",
                   [](video_job& j) {
                       in_strips(j, [&](video_plane strip, int y, int rows) {
                           libyuv::RAWToARGB(AT(below(j.src[0], y)), AT(strip), j.size.w, rows);
                           libyuv::ARGBToNV12(AT(strip), AT(below(j.dst[0], y)), AT(below(j.dst[1], y / 2)), j.size.w,
                                              rows);
                       });
                   }),
    add_video_peer("bgra8888_to_yuv422", "libyuv ARGBToI422", to_planar(libyuv::ARGBToI422)),
    add_video_peer("bgra8888_to_yuv444", "libyuv ARGBToI444", to_planar(libyuv::ARGBToI444)),
    add_video_peer("bgra8888_to_yuyv", "libyuv ARGBToYUY2", packed(libyuv::ARGBToYUY2)),
};
}  // namespace
}  // namespace zelt::bench
