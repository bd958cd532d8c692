// SPDX-License-Identifier: MIT
#pragma once
// The bilinear resizer. A destination sample is a weighted sum of four source samples, two in each of two rows:
//
//     value = ((8 - fy) s(top) + fy s(bottom)) >> 6        s(row) = (8 - fx) left + fx right
//
// with the phases fx and fy: eighths of the way to the right and to the lower sample. s is at most 2040, so that all of
// it fits 16 bits, and s of a source row serves every destination row next to it.
//
// resize_scalar.h has the definition, a pixel at a time. The vector form prepares tables for as many destination
// columns as fit (columns_simd.h), then filters all rows with them (rows_simd.h). Eight samples at 5:2:
//
//     source row    a b c d e f g h i j k l m n o p|q r s t u v w x y z A B C D E F   bytes
//     windows       |<--------- 16 bytes --------->|<--------- 16 bytes --------->|   from offsets[] on
//     position      0    2.5   5   7.5   10   12.5   15   17.5
//     pairs         ab   cd    fg   hi   kl    mn    pq    rs     left and right, by masks from the windows' bytes
//     weights       80   44    80   44   80    44    80    44     8 - fx, fx
//     eight         s0   s1    s2   s3   s4    s5    s6    s7     8 a + 0 b, 4 c + 4 d ...: 16 bits each
//
//     register      | eight | eight |                             half a group; on NEON one eight
//     group         | eight | eight | eight | eight |             `lanes` samples; on NEON two eights
//
//     top row       s0 ... s31  * (8 - fy) --.
//                                            +--> >> 6, narrow --> 32 destination samples
//     bottom row    s0 ... s31  * fy --------'
//
// How rows are filtered depends on the ratio. If most source rows serve several destination rows, as in enlarging, or
// if an eight reads more than four windows, the sums of two source rows are cached, and only the last step is done per
// destination row. Otherwise both rows are filtered at once: one plane as drawn, several with the products of both
// weights, which the planes share. Pairs that are contiguous, as at 2:1 (ab cd ef ...), are then loaded without masks,
// a `run` of groups, and weighted with products as well: there they seldom change.
//
// Pixels of 1, 3 and 4 bytes are filtered as they are, a pair's bytes being 1, 3 or 4 apart; RGB565 is deinterleaved
// into planes first. The fused converters filter planes, and convert a register of each before they store it.
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

namespace zelt::inline ZELT_LEVEL::rsz {
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
}  // namespace zelt::inline ZELT_LEVEL::rsz
