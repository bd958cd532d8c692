// SPDX-License-Identifier: MIT
// The exports: Hadamard-transformed differences.
#include "metric/satd.h"

#include "simd/export.h"
#include "zelt/sad.h"
using namespace zelt;

#define KERNEL(N, suffix, A, B)                                                                       \
    ZELT_EXPORT([[gnu::flatten]] int, zelt_satd##N##suffix)                                           \
    (const void* src1, const void* src2, int s_src1, int s_src2) {                                    \
        return static_cast<int>(                                                                      \
            fast::satd##N(static_cast<const A*>(src1), static_cast<const B*>(src2), s_src1, s_src2)); \
    }
extern "C" {
KERNEL(4x4, , u8, u8)
KERNEL(4x4, _16, s16, s16)
KERNEL(4x4, _bi, s16, u8)
KERNEL(4x4, _bi_16, s16, s16)
KERNEL(8x8, , u8, u8)
KERNEL(8x8, _16, u16, u16)  // Kept: unsigned samples, unlike _bi_16
KERNEL(8x8, _bi, s16, u8)
KERNEL(8x8, _bi_16, s16, s16)
}

ZELT_EXPORT(int, zelt_hadamard4x4)(const int16_t* res) { return static_cast<int>(fast::hadamard4x4(res)); }

ZELT_EXPORT([[gnu::flatten]] int, zelt_satd)
(int w, int h, const uint8_t* src1, const uint8_t* src2, int s_src1, int s_src2) {
    return static_cast<int>(fast::satd_tiles(w, h, src1, src2, s_src1, s_src2));
}

ZELT_EXPORT([[gnu::flatten]] int, zelt_satd_16)
(int w, int h, const int16_t* src1, const int16_t* src2, int s_src1, int s_src2) {
    return static_cast<int>(fast::satd_tiles(w, h, src1, src2, s_src1, s_src2));
}
