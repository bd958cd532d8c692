// libvpx's SAD. Its kernels of high bit depth take half of the address of their 16-bit samples.
#include "peers/metric.h"

#define SAD(size, form) PEER("zelt_sad" #size, vpx_sad##size##_##form)
#define SAD_16(size) HIGH_DEPTH_PEER("zelt_sad" #size "_16", vpx_highbd_sad##size##_sse2)

EACH_SAD(SAD)
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
