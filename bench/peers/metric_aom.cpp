// SPDX-License-Identifier: MIT
// libaom's SAD, SSD and differences. Those of high bit depth take half of the address of their 16-bit samples.
#include "peers/metric.h"

#define SAD(size, form) PEER("zelt_sad" #size, aom_sad##size##_##form)
#define SAD_16(size, form) HIGH_DEPTH_PEER("zelt_sad" #size "_16", aom_highbd_sad##size##_##form)
EACH_SAD(SAD)
#ifdef __x86_64__
SAD_16(4x4, sse2)
SAD_16(8x4, sse2)
SAD_16(8x8, sse2)
SAD_16(8x16, sse2)
SAD_16(16x8, avx2)
SAD_16(16x16, avx2)
SAD_16(16x32, avx2)
SAD_16(32x16, avx2)
SAD_16(32x32, avx2)
SAD_16(32x64, avx2)
SAD_16(64x32, avx2)
SAD_16(64x64, avx2)
#elif defined(__aarch64__)
EACH_SAD(SAD_16)
#endif

extern "C" {
zelt::bench::sized_squares LATEST(aom_sse), LATEST(aom_highbd_sse);
zelt::bench::sized_differences LATEST(aom_subtract_block);
zelt::bench::high_depth_differences aom_highbd_subtract_block_neon;
}

namespace zelt::bench {
namespace {
const bool added = [] {
    for (const char* size : all_squares) {
        add_squares(size, NAMED(LATEST(aom_sse)));
        add_high_depth_squares(size, NAMED(LATEST(aom_highbd_sse)));
    }
    for (const char* size : all_sizes) add_differences(size, NAMED(LATEST(aom_subtract_block)));
#ifndef __x86_64__
    for (const char* size : all_sizes) add_high_depth_differences(size, NAMED(aom_highbd_subtract_block_neon));
#endif
    return true;
}();
}  // namespace
}  // namespace zelt::bench
