// x265's copies of blocks and its border of a reference picture, out of the static archive: no header declares them.
#include "memory.h"

#include <x265.h>

namespace x265 {
void x265_setup_primitives(x265_param*);
void extendPicBorder(unsigned char* samples, std::intptr_t stride, int w, int h, int margin_x, int margin_y);
}  // namespace x265

namespace zelt::bench {
namespace {
using block_copy = void(u8* to, std::intptr_t to_stride, const u8* from, std::intptr_t from_stride);
extern "C" block_copy x265_blockcopy_pp_8x8_sse2, x265_blockcopy_pp_16x16_sse2, x265_blockcopy_pp_32x32_avx,
    x265_blockcopy_pp_64x64_avx;

void add_copy(area_size s, block_copy* copy) {
    add_candidate("memory", sized("copy", s), [=] {
        return copy_candidate("x265 blockcopy_pp", s,
                              [=](u8* to, const u8* from, int stride, int, int) { copy(to, stride, from, stride); });
    });
}

void choose_kernels() {
    x265_param* defaults = x265_param_alloc();
    x265_param_default(defaults);
    defaults->logLevel = X265_LOG_NONE;
    x265::x265_setup_primitives(defaults);
    x265_param_free(defaults);
}

const bool added = [] {
    add_copy({8, 8}, x265_blockcopy_pp_8x8_sse2);
    add_copy({16, 16}, x265_blockcopy_pp_16x16_sse2);
    add_copy({32, 32}, x265_blockcopy_pp_32x32_avx);
    add_copy({64, 64}, x265_blockcopy_pp_64x64_avx);
    for (const bordered_size b : bordered_sizes)
        add_candidate("border", sized("expand", b.size), [=] {
            choose_kernels();
            return border_candidate("x265 extendPicBorder", b, over_planes(b.border, [](const plane& p, int border) {
                                        x265::extendPicBorder(p.start, p.stride, p.w, p.h, border, border);
                                    }));
        });
    return true;
}();
}  // namespace
}  // namespace zelt::bench
