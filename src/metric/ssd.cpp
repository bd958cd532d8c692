// SPDX-License-Identifier: MIT
// The exports: sums of squared differences.
#include "metric/ssd.h"

#include "simd/export.h"
#include "zelt/sad.h"
using namespace zelt;

/// Kept: an unlisted width is 64 columns.
ZELT_EXPORT(uint32_t, zelt_ssd)(int w, int h, const uint8_t* src1, const uint8_t* src2, int s_src1, int s_src2) {
    switch (w) {
    case 4: return fast::ssd<4>(w, h, src1, src2, s_src1, s_src2);
    case 8: return fast::ssd<8>(w, h, src1, src2, s_src1, s_src2);
    case 16: return fast::ssd<16>(w, h, src1, src2, s_src1, s_src2);
    case 32: return fast::ssd<32>(w, h, src1, src2, s_src1, s_src2);
    default: return fast::ssd<64>(w, h, src1, src2, s_src1, s_src2);
    }
}

/// Kept: an unlisted width is 4 columns, and 4 and 8 columns are two rows unless the block is square.
ZELT_EXPORT(uint32_t, zelt_ssd_16)(int w, int h, const int16_t* src1, const int16_t* src2, int s_src1, int s_src2) {
    switch (w) {
    case 8: return fast::ssd_of_square_or_two_rows<8>(h, src1, src2, s_src1, s_src2);
    case 16: return fast::ssd<16>(w, h, src1, src2, s_src1, s_src2);
    case 32: return fast::ssd<32>(w, h, src1, src2, s_src1, s_src2);
    case 64: return fast::ssd<64>(w, h, src1, src2, s_src1, s_src2);
    default: return fast::ssd_of_square_or_two_rows<4>(h, src1, src2, s_src1, s_src2);
    }
}
