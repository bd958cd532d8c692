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
    /// A view, which keeps `memory`
    picture(const format& fmt, int w, int h, void* const* planes, const int32_t* strides,
            std::shared_ptr<void> memory = nullptr);
    picture() = default;  // none yet

    const format* fmt = nullptr;
    int w = 0, h = 0;
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
    std::shared_ptr<void> shared_;
};

/// Calls `use` with the rows of all planes in order, a plane at once where there are no gaps between its rows.
template <class F> void for_each_run(const picture& pic, const F& use) {
    for (int i = 0; i < pic.fmt->planes; ++i) {
        const bool whole = static_cast<std::size_t>(pic.stride[i]) == pic.row_bytes(i);
        const int rows = whole ? pic.rows(i) : 1;
        const std::size_t bytes = pic.row_bytes(i) * static_cast<std::size_t>(rows);
        for (int y = 0; y < pic.rows(i); y += rows) use(pic.row(i, y), bytes);
    }
}

}  // namespace zelt::tool
