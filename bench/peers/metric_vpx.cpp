// SPDX-License-Identifier: MIT
// libvpx's SAD, SSD and differences. Those of high bit depth take half of the address of their 16-bit samples.
#include "peers/metric.h"

#define SAD(size, form) PEER("zelt_sad" #size, vpx_sad##size##_##form)
EACH_SAD(SAD)
#ifdef __x86_64__
#define SAD_16(size) HIGH_DEPTH_PEER("zelt_sad" #size "_16", vpx_highbd_sad##size##_sse2)
SAD_16(8x4)
SAD_16(8x8)
SAD_16(8x16)
SAD_16(16x8)
SAD_16(16x16)
SAD_16(16x32)
SAD_16(32x16)
SAD_16(32x32)
SAD_16(32x64)
SAD_16(64x32)
SAD_16(64x64)
#else
#define SAD_16(size, form) HIGH_DEPTH_PEER("zelt_sad" #size "_16", vpx_highbd_sad##size##_##form)
EACH_SAD(SAD_16)

extern "C" {
zelt::bench::sized_squares vpx_sse_neon, vpx_highbd_sse_neon;
zelt::bench::sized_differences vpx_subtract_block_neon;
zelt::bench::high_depth_differences vpx_highbd_subtract_block_neon;
}

namespace zelt::bench {
namespace {
const bool added = [] {
    for (const char* size : all_squares) {
        add_squares(size, NAMED(vpx_sse_neon));
        add_high_depth_squares(size, NAMED(vpx_highbd_sse_neon));
    }
    for (const char* size : all_sizes) {
        add_differences(size, NAMED(vpx_subtract_block_neon));
        add_high_depth_differences(size, NAMED(vpx_highbd_subtract_block_neon));
    }
    return true;
}();
}  // namespace
}  // namespace zelt::bench
#endif
