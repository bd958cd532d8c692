// SPDX-License-Identifier: MIT
#include "resize.h"

#include "zelt/irsz.h"
#include "zelt/video.h"

#include <memory>
#include <new>
#include <vector>

namespace zelt::tool {
namespace {

/// The resizer's format of a plane, 0 where it has none.
int32_t plane_format(const format& fmt, int plane) {
    const bool words = (fmt.cs == ZELT_CS_RGB565 || fmt.cs == ZELT_CS_RGB565A8) && plane == 0;
    if (fmt.yuv && fmt.plane[plane].bytes != 1) return 0;
    switch (fmt.plane[plane].bytes) {
    case 1: return ZELT_IRSZ_8B;
    case 2: return words ? ZELT_IRSZ_5B6B5B : 0;
    case 3: return fmt.cs == ZELT_CS_RGBA5658 ? 0 : ZELT_IRSZ_8B8B8B;
    default: return ZELT_IRSZ_8B8B8B8B;
    }
}

/// Bilinearly, whole or, where band_rows is not 0, that many source rows at a time
void resize_plane(const picture& from, const picture& to, int i, int band_rows) {
    const int32_t kind = plane_format(*from.fmt, i);
    const int pitch_unit = kind == ZELT_IRSZ_5B6B5B ? 1 : from.fmt->plane[i].bytes;
    const ZELT_IRSZ_PARAM param = {kind,
                                   band_rows ? ZELT_IRSZ_BANDS : ZELT_IRSZ_WHOLE,
                                   from.columns(i),
                                   from.rows(i),
                                   from.stride[i] / pitch_unit,
                                   band_rows,
                                   to.columns(i),
                                   to.rows(i),
                                   to.stride[i] / pitch_unit,
                                   to.plane[i]};
    const std::unique_ptr<ZELT_IRSZ, decltype(&zelt_irsz_delete)> irsz(zelt_irsz_create(&param, nullptr),
                                                                       zelt_irsz_delete);
    if (!irsz) throw std::bad_alloc();
    if (!band_rows) zelt_irsz(irsz.get(), from.row(i, 0), 0, from.rows(i));
    for (int64_t y = 0; band_rows && y < from.rows(i); y += band_rows)
        zelt_irsz(irsz.get(), from.row(i, static_cast<int>(y)), static_cast<int>(y), band_rows);
}

/// By area, each byte of a pixel for itself
void shrink_plane(const picture& from, const picture& to, int i) {
    ZELT_VIDEO v = {};
    v.src_cs = v.dst_cs = ZELT_CS_YUV400;
    v.filter = ZELT_VIDEO_AREA;
    v.dst_w = to.columns(i), v.dst_h = to.rows(i);
    zelt_video_init(&v);
    const auto area = [](const picture& p, int plane) {
        return static_cast<std::size_t>(p.columns(plane)) * static_cast<std::size_t>(p.rows(plane));
    };
    std::vector<uint8_t> in(area(from, i)), out(area(to, i));
    void *src = in.data(), *dst = out.data();
    const int32_t src_s = from.columns(i), dst_s = to.columns(i);
    const int step = from.fmt->plane[i].bytes;
    for (int byte = 0; byte < step; ++byte) {
        uint8_t* at = in.data();
        for (int y = 0; y < from.rows(i); ++y)
            for (int x = 0; x < src_s; ++x) *at++ = from.row(i, y)[std::ptrdiff_t{x} * step + byte];
        zelt_video_convert(&v, &src, &src_s, &dst, &dst_s, src_s, from.rows(i));
        at = out.data();
        for (int y = 0; y < to.rows(i); ++y)
            for (int x = 0; x < dst_s; ++x) to.row(i, y)[std::ptrdiff_t{x} * step + byte] = *at++;
    }
}

}  // namespace

bool resizable(const format& fmt) {
    for (int i = 0; i < fmt.planes; ++i)
        if (!plane_format(fmt, i)) return false;
    return true;
}

bool bands_are_exact(int band_rows, const format& from, int src_w, int src_h, const format& to, int dst_w, int dst_h) {
    for (int i = 0; i < from.planes; ++i) {
        const int rows = from.rows(i, src_h), rows_to = to.rows(i, dst_h);
        const bool ends_early = rows == rows_to && to.columns(i, dst_w) <= from.columns(i, src_w) && band_rows < 128;
        if (band_rows <= rows / rows_to + 1 || ends_early) return false;
    }
    return true;
}

void resize(const picture& from, const picture& to, int32_t filter) {
    for (int i = 0; i < from.fmt->planes; ++i)
        if (filter == ZELT_VIDEO_AREA && plane_format(*from.fmt, i) != ZELT_IRSZ_5B6B5B)
            shrink_plane(from, to, i);
        else
            resize_plane(from, to, i, 0);
}

void resize_in_bands(const picture& from, const picture& to, int band_rows) {
    for (int i = 0; i < from.fmt->planes; ++i) resize_plane(from, to, i, band_rows);
}

}  // namespace zelt::tool
