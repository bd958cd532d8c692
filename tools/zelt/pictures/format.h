#pragma once
// The pixel formats that have a name on the command line, in one table.
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zelt::tool {

struct format {
    const char* name;   // the colour space's own, in lower case
    const char* alias;  // ffmpeg's name for the same layout, or null
    int32_t cs;
    int planes;    // all of the picture's size
    int bytes[4];  // of a pixel in each plane
    bool alpha;
};

std::span<const format> formats();
const format& format_of(int32_t cs);

/// The format of a name or alias; a failure that lists the names for any other text.
const format& named_format(std::string_view name);

/// Bytes of a picture whose rows lie without gaps, at most INT64_MAX.
int64_t picture_bytes(const format& fmt, int w, int h);

/// Whether a picture has a size that the library can handle: at least one pixel, and plane bytes within 31 bits.
bool fits(const format& fmt, int w, int h);

}  // namespace zelt::tool
