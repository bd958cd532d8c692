// SPDX-License-Identifier: MIT
// The exports: differences.
#include "metric/diff.h"

#include "simd/export.h"
#include "zelt/sad.h"
using namespace zelt;

// clang-format off
/// Differences of both sample kinds, and of 16-bit samples only
#define ZELT_DIFF_SIZES(X)                                                      \
    X(2, 2)   X(2, 4)   X(4, 2)   X(4, 4)   X(4, 8)   X(8, 4)   X(8, 8)         \
    X(8, 16)  X(16, 8)  X(16, 16) X(16, 32) X(32, 16) X(32, 32) X(32, 64)       \
    X(64, 32) X(64, 64)
#define ZELT_DIFF_16_SIZES(X) X(2, 8) X(4, 16) X(8, 32) X(16, 64)
// clang-format on

#define KERNEL(W, H, suffix, A, B)                                                                                \
    ZELT_EXPORT([[gnu::flatten]] void, zelt_diff##W##x##H##suffix)                                                \
    (const void* src1, const void* src2, int s_src1, int s_src2, int s_diff, int16_t* diff) {                     \
        fast::diff<W, H>(static_cast<const A*>(src1), static_cast<const B*>(src2), s_src1, s_src2, s_diff, diff); \
    }
#define EXPORT_16(W, H) KERNEL(W, H, _16, s16, s16)
#define EXPORT(W, H) KERNEL(W, H, , u8, u8) EXPORT_16(W, H)
extern "C" {
ZELT_DIFF_SIZES(EXPORT)
ZELT_DIFF_16_SIZES(EXPORT_16)
KERNEL(4, 4, _bi, s16, u8)
KERNEL(4, 4, _bi_16, s16, s16)
}

ZELT_EXPORT(void, zelt_diff)
(int w, int h, const uint8_t* src1, const uint8_t* src2, int s_src1, int s_src2, int s_diff, int16_t* diff) {
    if (w > 0) fast::diff(w, h, src1, src2, s_src1, s_src2, s_diff, diff);
}

ZELT_EXPORT(void, zelt_diff_16)
(int w, int h, const int16_t* src1, const int16_t* src2, int s_src1, int s_src2, int s_diff, int16_t* diff) {
    if (w > 0) fast::diff(w, h, src1, src2, s_src1, s_src2, s_diff, diff);
}
