// SPDX-License-Identifier: MIT
#include "pictures/picture.h"

#include "pictures/failure.h"

#include <algorithm>
#include <new>
#include <string>

namespace zelt::tool {

picture::picture(const format& f, int width, int height, const uint32_t* align, const uint32_t* pad)
    : fmt(&f), w(width), h(height) {
    if (!fits(f, w, h))
        throw failure(status::unsupported, "a picture of " + std::to_string(w) + "x" + std::to_string(h) + " is too " +
                                               "large for " + f.name + ": 2147483647 bytes are the most");
    if (f.cs < ZELT_CS_R8G8B8) {
        image_.reset(zelt_imgb_create(w, h, f.cs, ZELT_IMGB_CLEAR_PAD, align, pad, nullptr, nullptr, nullptr));
        if (!image_) throw std::bad_alloc();
        std::ranges::copy(image_->plane, plane);
        std::ranges::copy(image_->stride, stride);
        return;
    }
    memory_ = std::make_unique_for_overwrite<uint8_t[]>(static_cast<std::size_t>(picture_bytes(f, w, h)));
    uint8_t* at = memory_.get();
    for (int i = 0; i < f.planes; ++i) {
        plane[i] = at;
        stride[i] = static_cast<int32_t>(row_bytes(i));
        at += row_bytes(i) * static_cast<std::size_t>(rows(i));
    }
}

picture::picture(const format& f, int width, int height, void* const* planes, const int32_t* strides,
                 std::shared_ptr<void> memory)
    : fmt(&f), w(width), h(height), shared_(std::move(memory)) {
    std::copy_n(planes, f.planes, plane);
    std::copy_n(strides, f.planes, stride);
}

}  // namespace zelt::tool
