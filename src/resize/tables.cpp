// SPDX-License-Identifier: MIT
// The resizer's tables and the step rule
#include "resize/bilinear.h"
#include "zelt/irsz.h"

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
