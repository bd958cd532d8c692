// SPDX-License-Identifier: MIT
#pragma once
// The pixel formats that have a name on the command line, in one table.
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zelt::tool {

struct format {
    /// A plane has a unit of so many bytes for each 1 << across columns and 1 << down rows of the picture.
    struct plane_layout {
        int bytes, across = 0, down = 0;
    };

    const char* name;   // the colour space's own, in lower case
    const char* alias;  // ffmpeg's name for the same layout where it is another one, or null
    int32_t cs;
    int planes;
    plane_layout plane[4];
    int bits;  // of a sample
    bool yuv, alpha;

    /// Units in a row, and rows, of a plane
    int columns(int i, int w) const { return halved(w, plane[i].across); }
    int rows(int i, int h) const { return halved(h, plane[i].down); }
    int64_t row_bytes(int i, int w) const { return int64_t{columns(i, w)} * plane[i].bytes; }

private:
    static int halved(int n, int times) { return times ? n / 2 + n % 2 : n; }
};

std::span<const format> formats();
const format& format_of(int32_t cs);

/// The planar YUV format without alpha that holds a format's samples; of RGB the one that takes all of its chroma.
const format& planar_yuv(const format& fmt);

/// The format of a name or alias; a failure that lists the names for any other text.
const format& named_format(std::string_view name);

/// Bytes of a picture whose rows lie without gaps, at most INT64_MAX.
int64_t picture_bytes(const format& fmt, int w, int h);

/// Whether a picture has a size that the library can handle: at least one pixel, and plane bytes within 31 bits.
bool fits(const format& fmt, int w, int h);

}  // namespace zelt::tool
