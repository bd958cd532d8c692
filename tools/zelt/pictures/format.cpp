#include "pictures/format.h"

#include "pictures/failure.h"
#include "zelt/common.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace zelt::tool {
namespace {

// clang-format off
constexpr format table[] = {
    {"yuv400",    "gray",        ZELT_CS_YUV400,    1, {1},          false},
    {"yuv444",    "yuv444p",     ZELT_CS_YUV444,    3, {1, 1, 1},    false},
    {"yuv444a8",  "yuva444p",    ZELT_CS_YUV444A8,  4, {1, 1, 1, 1}, true},
    {"p410",      "yuv444p10le", ZELT_CS_P410,      3, {2, 2, 2},    false},
    {"rgb565",    "rgb565le",    ZELT_CS_RGB565,    1, {2},          false},
    {"rgb888",    "rgb24",       ZELT_CS_RGB888,    1, {3},          false},
    {"rgba5658",  nullptr,       ZELT_CS_RGBA5658,  1, {3},          true},
    {"rgba8888",  "rgba",        ZELT_CS_RGBA8888,  1, {4},          true},
    {"bgra8888",  "bgra",        ZELT_CS_BGRA8888,  1, {4},          true},
    {"argb8888",  "argb",        ZELT_CS_ARGB8888,  1, {4},          true},
    {"r8g8b8",    nullptr,       ZELT_CS_R8G8B8,    3, {1, 1, 1},    false},
    {"r10g10b10", nullptr,       ZELT_CS_R10G10B10, 3, {2, 2, 2},    false},
    {"rgb565a8",  nullptr,       ZELT_CS_RGB565A8,  2, {2, 1},       true},
    {"r8g8b8a8",  nullptr,       ZELT_CS_R8G8B8A8,  4, {1, 1, 1, 1}, true},
};
// clang-format on

}  // namespace

std::span<const format> formats() { return table; }

const format& format_of(int32_t cs) {
    const auto it = std::ranges::find(table, cs, &format::cs);
    if (it == std::end(table)) std::abort();
    return *it;
}

const format& named_format(std::string_view name) {
    std::string names;
    for (const format& f : table) {
        if (name == f.name || (f.alias && name == f.alias)) return f;
        names += std::string(" ") + f.name;
    }
    throw failure(status::wrong_use, "no format is called '" + std::string(name) + "'; there are" + names);
}

int64_t picture_bytes(const format& fmt, int w, int h) {
    constexpr int64_t most = std::numeric_limits<int64_t>::max();
    int64_t bytes = 0;
    for (const int b : fmt.bytes) bytes += b;
    const int64_t pixels = int64_t{w} * h;
    return pixels > most / bytes ? most : pixels * bytes;
}

bool fits(const format& fmt, int w, int h) {
    return w >= 1 && h >= 1 && picture_bytes(fmt, w, h) <= std::numeric_limits<int32_t>::max();
}

}  // namespace zelt::tool
