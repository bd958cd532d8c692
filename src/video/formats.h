// SPDX-License-Identifier: MIT
#pragma once  // the table of formats, and what reads and writes those of RGB
#include "video/back_rows.h"
#include "video/direct.h"
#include "zelt/video.h"

namespace zelt::inline ZELT_LEVEL::video {
enum class kind { grey, planar, paired, packed, rgb };

/// What writes an RGB format
struct writer {
    int planes;
    const int* step;                                                  // bytes per pixel in each plane
    decltype(&put_row<rgb888, chroma_of::pair>) put[3], put_tens[3];  // by chroma_of
    const shared_converter (*shared)[2];
    decltype(&csc::convert<planar<3>, csc::to_rgb, rgb888>) full_range_bt601;  // from 4:4:4
};
/// What reads it
struct reader {
    decltype(&luma_row<rgb888>) luma;
    decltype(&pixel_rows<rgb888, 1>) pixels[2];  // chroma of one row, or of two
    decltype(&pair_rows<rgb888, 1>) pairs[2];
    decltype(&csc::convert<rgb888, csc::to_yuv, planar<3>>) full_range_bt601;  // to 4:4:4
};
template <class Dest>
constexpr writer writer_of = {
    Dest::count,
    Dest::step,
    {put_row<Dest, chroma_of::pair>, put_row<Dest, chroma_of::pixel>, put_row<Dest, chroma_of::neighbours>},
    {put_row<Dest, chroma_of::pair, tens>, put_row<Dest, chroma_of::pixel, tens>,
     put_row<Dest, chroma_of::neighbours, tens>},
    shared_converters<Dest>,
    csc::convert<planar<3>, csc::to_rgb, Dest>};
template <>
constexpr writer writer_of<r10g10b10> = {r10g10b10::count,
                                         r10g10b10::step,
                                         {},
                                         {put_row<r10g10b10, chroma_of::pair, tens>,
                                          put_row<r10g10b10, chroma_of::pixel, tens>,
                                          put_row<r10g10b10, chroma_of::neighbours, tens>},
                                         nullptr,
                                         nullptr};
template <class Source>
constexpr reader reader_of = {luma_row<Source>,
                              {pixel_rows<Source, 1>, pixel_rows<Source, 2>},
                              {pair_rows<Source, 1>, pair_rows<Source, 2>},
                              csc::convert<Source, csc::to_yuv, planar<3>>};

struct format {
    s32 cs;
    video::kind kind;
    bool half_w = false, half_h = false;
    bool second = false;  // V comes first in pairs, or luma second in packed ones
    const writer* rgb = nullptr;
    const reader* from = nullptr;
    bool ten = false;  // words of 10 bits: in the low end of planes, in the high end of pairs
};
// clang-format off
constexpr format formats[] = {
    {ZELT_CS_YUV400,   kind::grey},
    {ZELT_CS_YUV420,   kind::planar, true,  true},
    {ZELT_CS_YUV422,   kind::planar, true,  false},
    {ZELT_CS_YUV440,   kind::planar, false, true},
    {ZELT_CS_YUV444,   kind::planar, false, false},
    {ZELT_CS_NV12,     kind::paired, true,  true},
    {ZELT_CS_NV21,     kind::paired, true,  true,  true},
    {ZELT_CS_NV16,     kind::paired, true,  false},
    {ZELT_CS_YUYV,     kind::packed, true,  false},
    {ZELT_CS_UYVY,     kind::packed, true,  false, true},
    {ZELT_CS_P010,     kind::planar, true,  true,  false, nullptr, nullptr, true},
    {ZELT_CS_P210,     kind::planar, true,  false, false, nullptr, nullptr, true},
    {ZELT_CS_P410,     kind::planar, false, false, false, nullptr, nullptr, true},
    {ZELT_CS_P010LE,   kind::paired, true,  true,  false, nullptr, nullptr, true},
    {ZELT_CS_P210LE,   kind::paired, true,  false, false, nullptr, nullptr, true},
    {ZELT_CS_RGB888,   kind::rgb, false, false, false, &writer_of<rgb888>, &reader_of<rgb888>},
    {ZELT_CS_BGR888,   kind::rgb, false, false, false, &writer_of<bgr888>, &reader_of<bgr888>},
    {ZELT_CS_RGBA8888, kind::rgb, false, false, false, &writer_of<rgba8888>, &reader_of<rgba8888>},
    {ZELT_CS_BGRA8888, kind::rgb, false, false, false, &writer_of<bgra8888>, &reader_of<bgra8888>},
    {ZELT_CS_ARGB8888, kind::rgb, false, false, false, &writer_of<argb8888>, &reader_of<argb8888>},
    {ZELT_CS_RGB565,   kind::rgb, false, false, false, &writer_of<rgb565>, &reader_of<wide_rgb565>},
    {ZELT_CS_R8G8B8,   kind::rgb, false, false, false, &writer_of<planar<3>>, &reader_of<planar<3>>},
    {ZELT_CS_R10G10B10, kind::rgb, false, false, false, &writer_of<r10g10b10>, nullptr, true},
};
// clang-format on

inline const format* find(s32 cs) {
    for (const format& f : formats)
        if (f.cs == cs) return &f;
    return nullptr;
}
}  // namespace zelt::inline ZELT_LEVEL::video
