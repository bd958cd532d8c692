// SPDX-License-Identifier: MIT
// libavcodec's SAD and SSD, which take one stride for both blocks. On 32-bit ARM it has none for NEON.
#include "peers/metric.h"

#ifdef __aarch64__
namespace zelt::bench {
namespace {
using of_rows = int(void* context, const u8*, const u8*, std::ptrdiff_t stride, int rows);
extern "C" of_rows ff_pix_abs8_neon, ff_pix_abs16_neon, ff_sse4_neon, ff_sse8_neon, ff_sse16_neon;

block_peer peer(const char* name, of_rows* f) {
    return {name, [f](const blocks& k) {
                return k.visit([&](const u8* a, const u8* b) { return f(nullptr, a, b, k.a_stride, k.size.h); });
            }};
}

const bool added[] = {
    add_peer("zelt_sad8x4", peer("ff_pix_abs8_neon", ff_pix_abs8_neon)),
    add_peer("zelt_sad8x8", peer("ff_pix_abs8_neon", ff_pix_abs8_neon)),
    add_peer("zelt_sad8x16", peer("ff_pix_abs8_neon", ff_pix_abs8_neon)),
    add_peer("zelt_sad16x8", peer("ff_pix_abs16_neon", ff_pix_abs16_neon)),
    add_peer("zelt_sad16x16", peer("ff_pix_abs16_neon", ff_pix_abs16_neon)),
    add_peer("zelt_sad16x32", peer("ff_pix_abs16_neon", ff_pix_abs16_neon)),
    add_peer("zelt_ssd 4x4", peer("libavcodec sse4_neon", ff_sse4_neon)),
    add_peer("zelt_ssd 8x8", peer("libavcodec sse8_neon", ff_sse8_neon)),
    add_peer("zelt_ssd 16x16", peer("libavcodec sse16_neon", ff_sse16_neon)),
};
}  // namespace
}  // namespace zelt::bench
#endif
