// SPDX-License-Identifier: MIT
// libavutil's SAD of squares, through its public getter.
#include "bench.h"

extern "C" {
#include <libavutil/pixelutils.h>
}

namespace zelt::bench {
namespace {
bool add_square(const std::string& size, int bits) {
    const auto f = av_pixelutils_get_sad_fn(bits, bits, 0, nullptr);
    return add_peer("zelt_sad" + size,
                    {"libavutil av_pixelutils sad", [f](const blocks& k) {
                         return k.visit([&](const u8* a, const u8* b) { return f(a, k.a_stride, b, k.b_stride); });
                     }});
}
const bool added[] = {add_square("2x2", 1), add_square("4x4", 2), add_square("8x8", 3), add_square("16x16", 4),
                      add_square("32x32", 5)};
}  // namespace
}  // namespace zelt::bench
