// SPDX-License-Identifier: MIT
// x265's copies of blocks and, where it chooses kernels by itself, its border of a reference picture, out of the static
// archive: no header declares them.
#include "memory.h"

#include <x265.h>

namespace x265 {
void x265_setup_primitives(x265_param*);
void extendPicBorder(unsigned char* samples, std::intptr_t stride, int w, int h, int margin_x, int margin_y);
}  // namespace x265

namespace zelt::bench {
namespace {
#ifdef __x86_64__
#define COPY(size, form) x265_blockcopy_pp_##size##_##form
#else
#define COPY(size, form) x265_blockcopy_pp_##size##_neon
#endif
using block_copy = void(u8* to, std::intptr_t to_stride, const u8* from, std::intptr_t from_stride);
extern "C" block_copy COPY(8x8, sse2), COPY(16x16, sse2), COPY(32x32, avx), COPY(64x64, avx);

void add_copy(area_size s, block_copy* copy) {
    add_candidate("memory", sized("copy", s), [=] {
        return copy_candidate("x265 blockcopy_pp", s,
                              [=](u8* to, const u8* from, int stride, int, int) { copy(to, stride, from, stride); });
    });
}

#ifdef __x86_64__
void choose_kernels() {
    x265_param* defaults = x265_param_alloc();
    x265_param_default(defaults);
    defaults->logLevel = X265_LOG_NONE;
    x265::x265_setup_primitives(defaults);
    x265_param_free(defaults);
}

void add_borders() {
    for (const bordered_size b : bordered_sizes)
        add_candidate("border", sized("expand", b.size), [=] {
            choose_kernels();
            return border_candidate("x265 extendPicBorder", b, over_planes(b.border, [](const plane& p, int border) {
                                        x265::extendPicBorder(p.start, p.stride, p.w, p.h, border, border);
                                    }));
        });
}
#endif

const bool added = [] {
    add_copy({8, 8}, COPY(8x8, sse2));
    add_copy({16, 16}, COPY(16x16, sse2));
    add_copy({32, 32}, COPY(32x32, avx));
    add_copy({64, 64}, COPY(64x64, avx));
#ifdef __x86_64__
    add_borders();
#endif
    return true;
}();
}  // namespace
}  // namespace zelt::bench
