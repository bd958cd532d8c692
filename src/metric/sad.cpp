// SPDX-License-Identifier: MIT
// The exports: sums of absolute differences.
#include "metric/sad.h"

#include "simd/export.h"
#include "zelt/sad.h"

using namespace zelt;

// clang-format off
/// SAD: width, height, and the mixed kernels `_bi` and `_bi_16`: none, `_bi_16` as an alias of `_16`, or of its own.
#define ZELT_SAD_SIZES(X)                                                       \
    X(2, 2, NONE)    X(2, 4, NONE)    X(4, 2, NONE)    X(4, 4, NONE)            \
    X(4, 8, ALIAS)   X(8, 4, ALIAS)   X(8, 8, OWN)     X(8, 16, ALIAS)          \
    X(16, 8, ALIAS)  X(16, 16, OWN)   X(16, 32, ALIAS) X(32, 16, ALIAS)         \
    X(32, 32, OWN)   X(32, 64, ALIAS) X(64, 32, OWN)   X(64, 64, OWN)
// clang-format on

#define KERNEL(W, H, suffix, A, B)                                                                        \
    ZELT_EXPORT([[gnu::flatten]] uint32_t, zelt_sad##W##x##H##suffix)                                     \
    (const void* src1, const void* src2, int s_src1, int s_src2) {                                        \
        return fast::sad<W, H>(static_cast<const A*>(src1), static_cast<const B*>(src2), s_src1, s_src2); \
    }
#define MIXED_NONE(W, H)
#define MIXED_ALIAS(W, H)      \
    KERNEL(W, H, _bi, s16, u8) \
    ZELT_EXPORT_ALIAS(zelt_sad##W##x##H##_bi_16, zelt_sad##W##x##H##_16)
#define MIXED_OWN(W, H) KERNEL(W, H, _bi, s16, u8) KERNEL(W, H, _bi_16, s16, s16)
#define EXPORT(W, H, MIXED) KERNEL(W, H, , u8, u8) KERNEL(W, H, _16, s16, s16) MIXED_##MIXED(W, H)
extern "C" {
ZELT_SAD_SIZES(EXPORT)
}

/// Kept: every width but 8 is 16 columns.
ZELT_EXPORT(uint32_t, zelt_sad)(int w, int h, const uint8_t* src1, const uint8_t* src2, int s_src1, int s_src2) {
    return w == 8 ? fast::sad_rows<8>(h, src1, src2, s_src1, s_src2)
                  : fast::sad_rows<16>(h, src1, src2, s_src1, s_src2);
}

ZELT_EXPORT(uint32_t, zelt_sad_16)(int w, int h, const int16_t* src1, const int16_t* src2, int s_src1, int s_src2) {
    return w < 1 ? 0 : fast::sad(w, h, src1, src2, s_src1, s_src2);
}

ZELT_EXPORT(int, zelt_sad_eskip)
(int w, int h, const uint8_t* src1, const uint8_t* src2, int s_src1, int s_src2, int threshold) {
    return w < 1 ? 0 : fast::sad_eskip(w, h, src1, src2, s_src1, s_src2, threshold);
}
