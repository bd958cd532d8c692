// SPDX-License-Identifier: MIT
// pixman's bilinear scaling of packed pixels.
#include "rsz.h"

#include <pixman.h>

namespace zelt::bench {
namespace {
using image = std::unique_ptr<pixman_image_t, decltype(&pixman_image_unref)>;

image packed(shape s, u8* p) {
    return {pixman_image_create_bits(PIXMAN_a8r8g8b8, s.w, s.h, reinterpret_cast<u32*>(p), 4 * s.w),
            pixman_image_unref};
}

const bool added = add_resizer("8b8b8b8b", "pixman", [](resize_job& j) {
    const image src = packed(j.from, j.src.data()), dst = packed(j.to, j.dst.data());
    pixman_transform_t scale;
    pixman_transform_init_scale(&scale, pixman_double_to_fixed(1.0 * j.from.w / j.to.w),
                                pixman_double_to_fixed(1.0 * j.from.h / j.to.h));
    pixman_image_set_transform(src.get(), &scale);
    pixman_image_set_filter(src.get(), PIXMAN_FILTER_BILINEAR, nullptr, 0);
    pixman_image_set_repeat(src.get(), PIXMAN_REPEAT_PAD);
    pixman_image_composite32(PIXMAN_OP_SRC, src.get(), nullptr, dst.get(), 0, 0, 0, 0, 0, 0, j.to.w, j.to.h);
});
}  // namespace
}  // namespace zelt::bench
