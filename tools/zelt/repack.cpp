// SPDX-License-Identifier: MIT
#include "repack.h"

#include "zelt/video.h"

#include <cstring>

namespace zelt::tool {
namespace {

/// The components in the order of a pixel's bytes, or of planes; null for other formats
const char* order_of(const format& fmt) {
    switch (fmt.cs) {
    case ZELT_CS_RGB888:
    case ZELT_CS_R8G8B8: return "RGB";
    case ZELT_CS_BGR888: return "BGR";
    case ZELT_CS_RGBA8888:
    case ZELT_CS_R8G8B8A8: return "RGBA";
    case ZELT_CS_BGRA8888: return "BGRA";
    case ZELT_CS_ARGB8888: return "ARGB";
    default: return nullptr;
    }
}

/// Where a component begins in a row of a picture, or null
uint8_t* component(const picture& pic, char name, int y) {
    const char* order = order_of(*pic.fmt);
    const char* at = std::strchr(order, name);
    if (!at) return nullptr;
    const int i = static_cast<int>(at - order);
    return pic.fmt->planes > 1 ? pic.row(i, y) : pic.row(0, y) + i;
}

}  // namespace

bool repacks(const format& from, const format& to) { return order_of(from) && order_of(to); }

void repack(const picture& from, const picture& to) {
    const int src_step = from.fmt->plane[0].bytes, dst_step = to.fmt->plane[0].bytes;
    for (int y = 0; y < to.h; ++y)
        for (const char* name = order_of(*to.fmt); *name; ++name) {
            const uint8_t* src = component(from, *name, y);
            uint8_t* dst = component(to, *name, y);
            for (int x = 0; x < to.w; ++x)
                dst[std::ptrdiff_t{x} * dst_step] = src ? src[std::ptrdiff_t{x} * src_step] : 255;
        }
}

}  // namespace zelt::tool
