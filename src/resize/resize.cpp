// SPDX-License-Identifier: MIT
// The resizer's kernels of rows and of whole pictures.
#include "resize/resize.h"

#include "simd/export.h"

using namespace zelt;
using namespace zelt::rsz;

#define KERNELS(name, id, pixels)                                                                                     \
    ZELT_EXPORT(void, zelt_irsz##name##_line)                                                                         \
    (const uint8_t* const* rows, const uint8_t* weights, int32_t dst_w, int32_t x_shift, int32_t x_next,              \
     int32_t x_step, uint8_t* dst_row) {                                                                              \
        if (x_step < 0) return;                                                                                       \
        const row_pair pair = {{rows[0]}, {rows[1]}, weights[2] >> 3 & 7, dst_row}; /* at phase 0 across, 8 fy */     \
        fast::resize_rows<pixels>(&pair, 1, axis(x_shift & 7, x_next, x_step), dst_w);                                \
    }                                                                                                                 \
    ZELT_EXPORT(void, zelt_irsz##name##_full)                                                                         \
    (const uint8_t* src, int32_t src_row_bytes, int32_t dst_w, int32_t dst_h, int32_t dst_row_bytes, uint8_t* dst,    \
     uint32_t x_packed, uint32_t y_packed) {                                                                          \
        resize_picture<pixels>(src, src_row_bytes, dst_w, dst_h, dst_row_bytes, dst, axis(x_packed), axis(y_packed)); \
    }
ZELT_RESIZERS(KERNELS)
