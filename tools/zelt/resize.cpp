#include "resize.h"

#include "zelt/irsz.h"

#include <memory>
#include <new>

namespace zelt::tool {
namespace {

/// The resizer's format of a plane, 0 where it has none.
int32_t plane_format(const format& fmt, int plane) {
    const bool words = (fmt.cs == ZELT_CS_RGB565 || fmt.cs == ZELT_CS_RGB565A8) && plane == 0;
    switch (fmt.bytes[plane]) {
    case 1: return ZELT_IRSZ_8B;
    case 2: return words ? ZELT_IRSZ_5B6B5B : 0;
    case 3: return fmt.cs == ZELT_CS_RGBA5658 ? 0 : ZELT_IRSZ_8B8B8B;
    default: return ZELT_IRSZ_8B8B8B8B;
    }
}

}  // namespace

bool resizable(const format& fmt) {
    for (int i = 0; i < fmt.planes; ++i)
        if (!plane_format(fmt, i)) return false;
    return true;
}

bool bands_are_exact(int band_rows, int src_w, int src_h, int dst_w, int dst_h) {
    const bool ends_early = src_h == dst_h && dst_w <= src_w && band_rows < 128;
    return band_rows > src_h / dst_h + 1 && !ends_early;
}

void resize(const picture& from, const picture& to, int band_rows) {
    for (int i = 0; i < from.fmt->planes; ++i) {
        const int32_t kind = plane_format(*from.fmt, i);
        const int pitch_unit = kind == ZELT_IRSZ_5B6B5B ? 1 : from.fmt->bytes[i];
        const ZELT_IRSZ_PARAM param = {kind,
                                       band_rows ? ZELT_IRSZ_BANDS : ZELT_IRSZ_WHOLE,
                                       from.w,
                                       from.h,
                                       from.stride[i] / pitch_unit,
                                       band_rows,
                                       to.w,
                                       to.h,
                                       to.stride[i] / pitch_unit,
                                       to.plane[i]};
        const std::unique_ptr<ZELT_IRSZ, decltype(&zelt_irsz_delete)> irsz(zelt_irsz_create(&param, nullptr),
                                                                           zelt_irsz_delete);
        if (!irsz) throw std::bad_alloc();
        if (!band_rows) zelt_irsz(irsz.get(), from.row(i, 0), 0, from.h);
        for (int64_t y = 0; band_rows && y < from.h; y += band_rows)
            zelt_irsz(irsz.get(), from.row(i, static_cast<int>(y)), static_cast<int>(y), band_rows);
    }
}

}  // namespace zelt::tool
