// libaom's SAD, SSD and differences. Those of high bit depth take half of the address of their 16-bit samples.
#include "peers/metric.h"

#define SAD(size, form) PEER("zelt_sad" #size, aom_sad##size##_##form)
EACH_SAD(SAD)

#define SAD_16(size, form) HIGH_DEPTH_PEER("zelt_sad" #size "_16", aom_highbd_sad##size##_##form)
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

extern "C" {
std::int64_t aom_sse_avx2(const void*, int, const void*, int, int w, int h);
std::int64_t aom_highbd_sse_avx2(const void*, int, const void*, int, int w, int h);
void aom_subtract_block_avx2(int h, int w, std::int16_t*, std::ptrdiff_t, const void*, std::ptrdiff_t, const void*,
                             std::ptrdiff_t);
}

namespace zelt::bench {
namespace {
bool add_ssd(const std::string& size) {
    add_peer("zelt_ssd " + size, {"aom_sse_avx2", [f = aom_sse_avx2](const blocks& k) {
                                      return k.visit([&](const u8* a, const u8* b) {
                                          return f(a, k.a_stride, b, k.b_stride, k.size.w, k.size.h);
                                      });
                                  }});
    return add_peer("zelt_ssd_16 " + size, {"aom_highbd_sse_avx2", [f = aom_highbd_sse_avx2](const blocks& k) {
                                                return k.visit([&](const u8* a, const u8* b) {
                                                    return f(half(a), k.a_stride, half(b), k.b_stride, k.size.w,
                                                             k.size.h);
                                                });
                                            }});
}
bool add_differences(const std::string& size) {
    return add_peer("zelt_diff" + size, {"aom_subtract_block_avx2", [f = aom_subtract_block_avx2](const blocks& k) {
                                             return k.visit([&](const u8* a, const u8* b) {
                                                 f(k.size.h, k.size.w, k.d, k.d_stride, a, k.a_stride, b, k.b_stride);
                                                 return 0;
                                             });
                                         }});
}
const bool added[] = {add_ssd("4x4"),           add_ssd("8x8"),           add_ssd("16x16"),
                      add_ssd("32x32"),         add_ssd("64x64"),         add_differences("4x4"),
                      add_differences("4x8"),   add_differences("8x4"),   add_differences("8x8"),
                      add_differences("8x16"),  add_differences("16x8"),  add_differences("16x16"),
                      add_differences("16x32"), add_differences("32x16"), add_differences("32x32"),
                      add_differences("32x64"), add_differences("64x32"), add_differences("64x64")};
}  // namespace
}  // namespace zelt::bench
