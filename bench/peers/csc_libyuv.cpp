// SPDX-License-Identifier: MIT
// libyuv's ways of converting between YUV 4:4:4 and RGB. It names packed formats by the word in memory, lowest byte
// last: its ARGB is B, G, R, A in memory. Where it has no direct way, two steps work on strips that stay in the cache.
// Its full-range matrices differ from ours by up to 2; its way from RGB to YUV 4:4:4 is limited range: the same work,
// and samples within 20, or 27 where fields are widened otherwise.
#include "bench.h"

#include <libyuv.h>

#ifdef __arm__  // there, though MergeRGBPlane does not call it
extern "C" void MergeRGBRow_NEON(const uint8_t*, const uint8_t*, const uint8_t*, uint8_t*, int);
#endif

namespace zelt::bench {
namespace {
constexpr comparison within_2 = bytes_within<2>, exact = bytes_within<0>, limited_range = bytes_within<27>;

struct plane {
    u8* p;
    int stride;
    plane(const view& v) : p(v.p), stride(static_cast<int>(v.stride)) {}
    plane(u8* start, int bytes) : p(start), stride(bytes) {}
};
#define AT(plane) plane.p, plane.stride

/// Calls f(strip of 4 bytes a pixel, rows, the views moved to them) until the picture is done. Of the sizes from 8 to
/// 256 KiB this one serves libyuv best.
template <int planes, class F> void in_strips(shape s, const view* v, F f) {
    static u8 memory[1 << 13];
    const int rows = s.w * 4 < static_cast<int>(sizeof memory) ? static_cast<int>(sizeof memory) / (s.w * 4) : 1;
    view moved[planes];
    for (int y = 0; y < s.h; y += rows) {
        for (int i = 0; i < planes; ++i) moved[i] = {v[i].p + y * v[i].stride, v[i].stride};
        f(plane{memory, s.w * 4}, std::min(rows, s.h - y), moved);
    }
}

void to_rgb(decltype(libyuv::J444ToARGB)* f, shape s, const view* v, plane d, int rows) {
    const plane y = v[0], a = v[1], b = v[2];
    f(AT(y), AT(a), AT(b), AT(d), s.w, rows);
}

void to_yuv(shape s, plane argb, const view* v, int rows) {
    const plane y = v[0], a = v[1], b = v[2];
    libyuv::ARGBToI444(AT(argb), AT(y), AT(a), AT(b), s.w, rows);
}

/// Planes into bytes b0, b1, b2, b3 of a pixel; without a fourth they are opaque
void merge(shape s, plane b0, plane b1, plane b2, const view* b3, plane d, int rows) {
    libyuv::MergeARGBPlane(AT(b2), AT(b1), AT(b0), b3 ? b3->p : nullptr, b3 ? static_cast<int>(b3->stride) : 0, AT(d),
                           s.w, rows);
}

using one_step = int(const u8*, int, u8*, int, int, int);

/// YUV to libyuv's ARGB in a strip, and from there
void yuv_then(one_step* second, shape s, const view* v) {
    in_strips<4>(s, v, [&](plane strip, int rows, const view* m) {
        to_rgb(libyuv::J444ToARGB, s, m, strip, rows);
        second(AT(strip), AT(plane(m[3])), s.w, rows);
    });
}

/// Planes to libyuv's ARGB in a strip, and from there
void planes_then(one_step* second, shape s, const view* v) {
    in_strips<4>(s, v, [&](plane strip, int rows, const view* m) {
        merge(s, m[2], m[1], m[0], nullptr, strip, rows);
        second(AT(strip), AT(plane(m[3])), s.w, rows);
    });
}

/// Packed to libyuv's ARGB in a strip, and from there to YUV
void packed_to_yuv(one_step* first, shape s, const view* v) {
    in_strips<4>(s, v, [&](plane strip, int rows, const view* m) {
        first(AT(plane(m[0])), AT(strip), s.w, rows);
        to_yuv(s, strip, m + 1, rows);
    });
}

void with_alpha(const libyuv::YuvConstants& c, shape s, plane y, plane u, plane v, plane a, plane d) {
    libyuv::I444AlphaToARGBMatrix(AT(y), AT(u), AT(v), AT(a), AT(d), &c, s.w, s.h, 0);
}

#ifdef ZELT_COUNT  // It asks what the processor has, and that is the host's under emulation.
const bool told = (libyuv::SetCpuFlags(libyuv::kCpuInitialized | libyuv::kCpuHasARM | libyuv::kCpuHasNEON), true);
#endif

const bool added[] = {
    // U and V exchanged and the mirrored constants give the reversed byte order.
    add_peer("zelt_csc_yuv444_to_rgb888", {"libyuv I444ToRGB24Matrix", within_2,
                                           [](shape s, const view* v) {
                                               const plane y = v[0], a = v[2], b = v[1], d = v[3];
                                               libyuv::I444ToRGB24Matrix(AT(y), AT(a), AT(b), AT(d),
                                                                         &libyuv::kYvuJPEGConstants, s.w, s.h);
                                           }}),
    add_peer(
        "zelt_csc_yuv444_to_rgba8888",
        {"libyuv J444ToABGR", within_2, [](shape s, const view* v) { to_rgb(libyuv::J444ToABGR, s, v, v[3], s.h); }}),
    add_peer(
        "zelt_csc_yuv444_to_bgra8888",
        {"libyuv J444ToARGB", within_2, [](shape s, const view* v) { to_rgb(libyuv::J444ToARGB, s, v, v[3], s.h); }}),
    add_peer("zelt_csc_yuv444_to_argb8888", {"libyuv J444ToARGB + ARGBToBGRA", within_2,
                                             [](shape s, const view* v) { yuv_then(libyuv::ARGBToBGRA, s, v); }}),
    add_peer("zelt_csc_yuv444_to_rgb565", {"libyuv J444ToARGB + ARGBToRGB565", fields_within_1,
                                           [](shape s, const view* v) { yuv_then(libyuv::ARGBToRGB565, s, v); }}),
    add_peer("zelt_csc_yuv444_to_r8g8b8", {"libyuv J444ToARGB + SplitARGBPlane", within_2,
                                           [](shape s, const view* v) {
                                               in_strips<6>(s, v, [&](plane strip, int rows, const view* m) {
                                                   to_rgb(libyuv::J444ToARGB, s, m, strip, rows);
                                                   const plane r = m[3], g = m[4], b = m[5];
                                                   libyuv::SplitARGBPlane(AT(strip), AT(r), AT(g), AT(b), nullptr, 0,
                                                                          s.w, rows);
                                               });
                                           }}),
    add_peer("zelt_csc_yuv444a8_to_rgba8888",
             {"libyuv I444AlphaToARGBMatrix", within_2,
              [](shape s, const view* v) { with_alpha(libyuv::kYvuJPEGConstants, s, v[0], v[2], v[1], v[3], v[4]); }}),
    add_peer("zelt_csc_yuv444a8_to_bgra8888",
             {"libyuv I444AlphaToARGBMatrix", within_2,
              [](shape s, const view* v) { with_alpha(libyuv::kYuvJPEGConstants, s, v[0], v[1], v[2], v[3], v[4]); }}),

    add_peer("zelt_csc_rgb888_to_yuv444", {"libyuv RAWToARGB + ARGBToI444 (limited range)", limited_range,
                                           [](shape s, const view* v) { packed_to_yuv(libyuv::RAWToARGB, s, v); }}),
    add_peer("zelt_csc_rgb565_to_yuv444", {"libyuv RGB565ToARGB + ARGBToI444 (limited range)", limited_range,
                                           [](shape s, const view* v) { packed_to_yuv(libyuv::RGB565ToARGB, s, v); }}),
    add_peer("zelt_csc_r8g8b8_to_yuv444", {"libyuv MergeARGBPlane + ARGBToI444 (limited range)", limited_range,
                                           [](shape s, const view* v) {
                                               in_strips<6>(s, v, [&](plane strip, int rows, const view* m) {
                                                   merge(s, m[2], m[1], m[0], nullptr, strip, rows);
                                                   to_yuv(s, strip, m + 3, rows);
                                               });
                                           }}),
    add_peer("zelt_csc_rgba8888_to_yuv444a8",
             {"libyuv ABGRToARGB + ARGBToI444 + ARGBExtractAlpha (limited range)", limited_range,
              [](shape s, const view* v) {
                  in_strips<5>(s, v, [&](plane strip, int rows, const view* m) {
                      libyuv::ABGRToARGB(AT(plane(m[0])), AT(strip), s.w, rows);
                      to_yuv(s, strip, m + 1, rows);
                      libyuv::ARGBExtractAlpha(AT(strip), AT(plane(m[4])), s.w, rows);
                  });
              }}),

    add_peer("zelt_csc_p010_to_yuv420",
             {"libyuv I010ToI420", not_compared,  // it saturates
              [](shape s, const view* v) {
                  const auto words = [](plane p) { return reinterpret_cast<const uint16_t*>(p.p); };
                  const plane y = v[0], a = v[1], b = v[2], d0 = v[3], d1 = v[4], d2 = v[5];
                  libyuv::I010ToI420(words(y), y.stride / 2, words(a), a.stride / 2, words(b), b.stride / 2, AT(d0),
                                     AT(d1), AT(d2), s.w, s.h);
              }}),
    add_peer("zelt_csc_yuv444x_to_yuv444x",
             {"libyuv I444Copy", exact,
              [](shape s, const view* v) {
                  const plane y = v[0], a = v[1], b = v[2], d0 = v[3], d1 = v[4], d2 = v[5];
                  libyuv::I444Copy(AT(y), AT(a), AT(b), AT(d0), AT(d1), AT(d2), s.w, s.h);
              }}),

    add_peer("zelt_csc_r8g8b8_to_rgb888", {"libyuv MergeRGBPlane", exact,
                                           [](shape s, const view* v) {
                                               const plane r = v[0], g = v[1], b = v[2], d = v[3];
                                               libyuv::MergeRGBPlane(AT(r), AT(g), AT(b), AT(d), s.w, s.h);
                                           }}),
#ifdef __arm__
    add_peer("zelt_csc_r8g8b8_to_rgb888", {"libyuv MergeRGBRow_NEON", exact,
                                           [](shape s, const view* v) {
                                               const auto row = [&](int i, int y) { return v[i].p + y * v[i].stride; };
                                               for (int y = 0; y < s.h; ++y)
                                                   MergeRGBRow_NEON(row(0, y), row(1, y), row(2, y), row(3, y), s.w);
                                           }}),
#endif
    add_peer("zelt_csc_r8g8b8_to_rgba8888",
             {"libyuv MergeARGBPlane", exact,
              [](shape s, const view* v) { merge(s, v[0], v[1], v[2], nullptr, v[3], s.h); }}),
    add_peer("zelt_csc_r8g8b8_to_bgra8888",
             {"libyuv MergeARGBPlane", exact,
              [](shape s, const view* v) { merge(s, v[2], v[1], v[0], nullptr, v[3], s.h); }}),
    add_peer("zelt_csc_r8g8b8_to_argb8888", {"libyuv MergeARGBPlane + ARGBToBGRA", exact,
                                             [](shape s, const view* v) { planes_then(libyuv::ARGBToBGRA, s, v); }}),
    add_peer("zelt_csc_r8g8b8_to_rgb565", {"libyuv MergeARGBPlane + ARGBToRGB565", exact,
                                           [](shape s, const view* v) { planes_then(libyuv::ARGBToRGB565, s, v); }}),
    add_peer(
        "zelt_csc_r8g8b8a8_to_rgba8888",
        {"libyuv MergeARGBPlane", exact, [](shape s, const view* v) { merge(s, v[0], v[1], v[2], &v[3], v[4], s.h); }}),
    add_peer(
        "zelt_csc_r8g8b8a8_to_bgra8888",
        {"libyuv MergeARGBPlane", exact, [](shape s, const view* v) { merge(s, v[2], v[1], v[0], &v[3], v[4], s.h); }}),
    add_peer(
        "zelt_csc_r8g8b8a8_to_argb8888",
        {"libyuv MergeARGBPlane", exact, [](shape s, const view* v) { merge(s, v[3], v[0], v[1], &v[2], v[4], s.h); }}),
};
}  // namespace
}  // namespace zelt::bench
