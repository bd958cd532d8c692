// SPDX-License-Identifier: MIT
// Resizing and colour conversion in one pass.
#include "resize/resize.h"
#include "simd/export.h"
#include "zelt/csc.h"

using namespace zelt;
using namespace zelt::csc;

namespace {
template <class Layout> struct layout_rows {
    Layout first;
    Layout row(int i) const {
        Layout dst = first;
        for (int p = 0; p < Layout::count; ++p) dst.p[p] += i * dst.stride[p];
        return dst;
    }
};

template <int N, class Matrix, class Layout>
void resize_convert(void* const* src_a, int src_w, int src_h, const int* src_s, void* const* dst_a, int dst_w,
                    int dst_h, const int* dst_s) {
    if (src_w < 1 || src_h < 1 || dst_w < 1 || dst_h < 1) return;
    rsz::picture_rows<N, layout_rows<Layout>> rows = {{}, {}, rsz::axis(src_h, dst_h), {Layout(dst_a, dst_s)}};
    for (int p = 0; p < N; ++p) {
        rows.src[p] = static_cast<const u8*>(src_a[p]);
        rows.src_stride[p] = src_s[p];
    }
    fast::resize_planes<Matrix>(rows, dst_h, rsz::axis(src_w, dst_w), dst_w);
}
}  // namespace

// name, source planes, matrix, destination layout
#define CONVERTER(name, planes, matrix, dest)                                                             \
    ZELT_EXPORT(void, zelt_csc_rsz_##name)                                                                \
    (void* const* src_a, int32_t src_w, int32_t src_h, const int32_t* src_s, int32_t, void* const* dst_a, \
     int32_t dst_w, int32_t dst_h, const int32_t* dst_s, int32_t) {                                       \
        resize_convert<planes, matrix, dest>(src_a, src_w, src_h, src_s, dst_a, dst_w, dst_h, dst_s);     \
    }
CONVERTER(r8g8b8_to_rgb888, 3, repack, rgb888)
CONVERTER(r8g8b8_to_rgba8888, 3, repack, rgba8888)
CONVERTER(r8g8b8a8_to_rgba8888, 4, repack, rgba8888)
CONVERTER(yuv444_to_rgb888, 3, to_rgb, rgb888)
CONVERTER(yuv444_to_rgba8888, 3, to_rgb, rgba8888)
CONVERTER(yuv444_to_rgb565, 3, to_rgb, rgb565)
CONVERTER(yuv444a8_to_rgba8888, 4, to_rgb, rgba8888)
CONVERTER(yuv444a8_to_rgb565a8, 4, to_rgb, rgb565a8)
