#pragma once  // every format of the resizer
#include "resize/resize_scalar.h"
#if ZELT_SIMD
#include "resize/resize_simd.h"
#endif

// clang-format off
#define ZELT_RESIZERS(X)                                           \
    X(8b,            ZELT_IRSZ_8B,            channels<1>)         \
    X(8b8b8b,        ZELT_IRSZ_8B8B8B,        channels<3>)         \
    X(8b8b8b_5b6b5b, ZELT_IRSZ_8B8B8B_5B6B5B, rgb888_to_565)       \
    X(5b6b5b,        ZELT_IRSZ_5B6B5B,        rgb565_words)        \
    X(8b8b8b8b,      ZELT_IRSZ_8B8B8B8B,      channels<4>)
// clang-format on

namespace zelt::inline ZELT_LEVEL::csc {
struct byte_rows {
    u8* start;
    s64 stride;
    u8* row(int i) const { return start + i * stride; }
};

template <class Format>
void resize_picture(const u8* src, s64 src_stride, int dst_w, int dst_h, s64 dst_stride, u8* dst, const axis& x,
                    const axis& y) {
    const picture_rows<1, byte_rows> rows = {{src}, {src_stride}, y, {dst, dst_stride}};
    fast::resize_rows<Format>(rows, dst_h, x, dst_w);
}
}  // namespace zelt::inline ZELT_LEVEL::csc
