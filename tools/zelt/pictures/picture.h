// SPDX-License-Identifier: MIT
#pragma once
// A picture in memory.
#include "pictures/format.h"
#include "zelt/imgb.h"

#include <cstdint>
#include <memory>

namespace zelt::tool {

/// A picture of any format: an image buffer where the library has one for the format, own memory elsewhere, or planes
/// of somebody else's.
class picture {
public:
    /// Throws a failure where the picture is too large. Contents are undefined. Alignment and padding are words as
    /// zelt_imgb_create takes them; formats without image buffers have neither.
    picture(const format& fmt, int w, int h, const uint32_t* align = nullptr, const uint32_t* pad = nullptr);
    /// A view
    picture(const format& fmt, int w, int h, void* const* planes, const int32_t* strides);

    const format* fmt;
    int w, h;
    void* plane[4] = {};  // entries past the format's planes stay null: the packed writers look at the second one
    int32_t stride[4] = {};

    uint8_t* row(int i, int y) const { return static_cast<uint8_t*>(plane[i]) + std::ptrdiff_t{stride[i]} * y; }
    std::size_t row_bytes(int i) const { return static_cast<std::size_t>(fmt->row_bytes(i, w)); }
    int columns(int i) const { return fmt->columns(i, w); }
    int rows(int i) const { return fmt->rows(i, h); }

private:
    struct release {
        void operator()(ZELT_IMGB* img) const { img->release(img); }
    };
    std::unique_ptr<ZELT_IMGB, release> image_;
    std::unique_ptr<uint8_t[]> memory_;
};

}  // namespace zelt::tool
