// The exports: differences.
#include "core/isa.h"
#include "metric/diff_scalar.h"
#include "metric/sizes.h"
#include "zelt/sad.h"
#if ZELT_SIMD
#include "metric/diff_simd.h"
#endif

using namespace zelt;

#define KERNEL(W, H, suffix, A, B)                                                                                \
    [[gnu::flatten]] void zelt_diff##W##x##H##suffix(const void* src1, const void* src2, int s_src1, int s_src2,  \
                                                     int s_diff, int16_t* diff) {                                 \
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

void zelt_diff(int w, int h, const uint8_t* src1, const uint8_t* src2, int s_src1, int s_src2, int s_diff,
               int16_t* diff) {
    if (w > 0) fast::diff(w, h, src1, src2, s_src1, s_src2, s_diff, diff);
}

void zelt_diff_16(int w, int h, const int16_t* src1, const int16_t* src2, int s_src1, int s_src2, int s_diff,
                  int16_t* diff) {
    if (w > 0) fast::diff(w, h, src1, src2, s_src1, s_src2, s_diff, diff);
}
