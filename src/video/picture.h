// SPDX-License-Identifier: MIT
#pragma once  // what is converted: a band of the rows of two pictures, strip by strip
#include "video/formats.h"
#include "video/matrix.h"

namespace zelt::inline ZELT_LEVEL::video {
/// What init leaves in the record's state
struct plan {
    s32 ready;
    s32 src, dst;  // in formats
    s32 smooth;
    s32 as_csc;  // full-range BT.601 from or to 4:4:4
    // Of other sizes, what the source's planes become before they are converted, and as_csc from there
    s32 between, between_as_csc;
    s32 filter, dst_w, dst_h, turn;
    video::matrix matrix, matrix_of_bytes;
    back_matrix back;
    ten_back_matrix ten_back;
};

struct band {
    std::ptrdiff_t w, h, begin, end;  // the picture, and the rows to convert
    std::ptrdiff_t columns;           // the first ones, an even number or all
    bool with_luma = true;            // of planes
};

inline int planes_of(const format& f) {
    const int of_kind[] = {1, 3, 2, 1, f.rgb ? f.rgb->planes : 0};  // by kind
    return of_kind[static_cast<int>(f.kind)];
}

/// Planes of a format, copied from the caller's arrays
struct picture {
    const video::format& format;
    u8* p[3] = {};
    std::ptrdiff_t s[3] = {};

    picture(const video::format& f, void* const* a, const s32* strides) : format(f) {
        for (int i = 0; i < planes_of(f); ++i) p[i] = static_cast<u8*>(a[i]), s[i] = strides[i];
    }
    u8* row(int plane, std::ptrdiff_t y) const { return p[plane] + y * s[plane]; }
};

/// A part of a row: pixels from x on, which is even
struct strip {
    std::ptrdiff_t x, pixels;
    std::ptrdiff_t pairs() const { return (pixels + 1) / 2; }
};
template <class Body> void for_strips(std::ptrdiff_t x, std::ptrdiff_t w, Body body) {
    constexpr std::ptrdiff_t most = 2 * strip_pairs;
    for (; x < w; x += most) body(strip{x, std::min(most, w - x)});
}
}  // namespace zelt::inline ZELT_LEVEL::video
