// The resizer's tables, the step rule, and the kernels of rows and whole pictures.
#include "resize/resize.h"

using namespace zelt;
using namespace zelt::rsz;

// clang-format off
#define PHASES(fx, fy) (8 - fx) * (8 - fy), fx * (8 - fy), (8 - fx) * fy, fx * fy
#define ROW(fx) PHASES(fx, 0), PHASES(fx, 1), PHASES(fx, 2), PHASES(fx, 3), \
                PHASES(fx, 4), PHASES(fx, 5), PHASES(fx, 6), PHASES(fx, 7)
#define WEIGHTS {ROW(0), ROW(1), ROW(2), ROW(3), ROW(4), ROW(5), ROW(6), ROW(7)}
// clang-format on
const uint8_t zelt_tbl_bilinear_rszw[256] = WEIGHTS;
const uint8_t zelt_irsz_tbl_rsz_weight[256] = WEIGHTS;

uint32_t bilinear_rsz_step_size(int32_t src_w, int32_t src_h, int32_t dst_w, int32_t dst_h, uint32_t* x_packed,
                                uint32_t* y_packed) {
    *x_packed = axis(src_w, dst_w).packed();
    return *y_packed = axis(src_h, dst_h).packed();
}

#define KERNELS(name, id, pixels)                                                                                     \
    void zelt_irsz##name##_line(const uint8_t* const* rows, const uint8_t* weights, int32_t dst_w, int32_t x_shift,   \
                                int32_t x_next, int32_t x_step, uint8_t* dst_row) {                                   \
        if (x_step < 0) return;                                                                                       \
        const row_pair pair = {{rows[0]}, {rows[1]}, weights[2] >> 3 & 7, dst_row}; /* at phase 0 across, 8 fy */     \
        fast::resize_rows<pixels>(&pair, 1, axis(x_shift & 7, x_next, x_step), dst_w);                                \
    }                                                                                                                 \
    void zelt_irsz##name##_full(const uint8_t* src, int32_t src_row_bytes, int32_t dst_w, int32_t dst_h,              \
                                int32_t dst_row_bytes, uint8_t* dst, uint32_t x_packed, uint32_t y_packed) {          \
        resize_picture<pixels>(src, src_row_bytes, dst_w, dst_h, dst_row_bytes, dst, axis(x_packed), axis(y_packed)); \
    }
ZELT_RESIZERS(KERNELS)
