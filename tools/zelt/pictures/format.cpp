// SPDX-License-Identifier: MIT
#include "pictures/format.h"

#include "pictures/failure.h"
#include "zelt/video.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace zelt::tool {
namespace {

// clang-format off
constexpr format::plane_layout full = {1}, across = {1, 1, 0}, down = {1, 0, 1}, quarter = {1, 1, 1};
constexpr format::plane_layout words = {2}, words_across = {2, 1, 0}, words_quarter = {2, 1, 1};
constexpr bool yuv = true, rgb = false, alpha = true, opaque = false;

constexpr format table[] = {
    {"yuv400",    "gray",        ZELT_CS_YUV400,    1, {full},                              8,  yuv, opaque},
    {"yuv420",    "yuv420p",     ZELT_CS_YUV420,    3, {full, quarter, quarter},            8,  yuv, opaque},
    {"yuv422",    "yuv422p",     ZELT_CS_YUV422,    3, {full, across, across},              8,  yuv, opaque},
    {"yuv440",    "yuv440p",     ZELT_CS_YUV440,    3, {full, down, down},                  8,  yuv, opaque},
    {"yuv444",    "yuv444p",     ZELT_CS_YUV444,    3, {full, full, full},                  8,  yuv, opaque},
    {"yuv444a8",  "yuva444p",    ZELT_CS_YUV444A8,  4, {full, full, full, full},            8,  yuv, alpha},
    {"nv12",      nullptr,       ZELT_CS_NV12,      2, {full, {2, 1, 1}},                   8,  yuv, opaque},
    {"nv21",      nullptr,       ZELT_CS_NV21,      2, {full, {2, 1, 1}},                   8,  yuv, opaque},
    {"nv16",      nullptr,       ZELT_CS_NV16,      2, {full, {2, 1, 0}},                   8,  yuv, opaque},
    {"yuyv",      "yuyv422",     ZELT_CS_YUYV,      1, {{4, 1, 0}},                         8,  yuv, opaque},
    {"uyvy",      "uyvy422",     ZELT_CS_UYVY,      1, {{4, 1, 0}},                         8,  yuv, opaque},
    {"p010",      "yuv420p10le", ZELT_CS_P010,      3, {words, words_quarter, words_quarter}, 10, yuv, opaque},
    {"p210",      "yuv422p10le", ZELT_CS_P210,      3, {words, words_across, words_across}, 10, yuv, opaque},
    {"p410",      "yuv444p10le", ZELT_CS_P410,      3, {words, words, words},               10, yuv, opaque},
    {"p010le",    nullptr,       ZELT_CS_P010LE,    2, {words, {4, 1, 1}},                  10, yuv, opaque},
    {"p210le",    nullptr,       ZELT_CS_P210LE,    2, {words, {4, 1, 0}},                  10, yuv, opaque},
    {"rgb565",    "rgb565le",    ZELT_CS_RGB565,    1, {words},                             8,  rgb, opaque},
    {"rgb888",    "rgb24",       ZELT_CS_RGB888,    1, {{3}},                               8,  rgb, opaque},
    {"bgr888",    "bgr24",       ZELT_CS_BGR888,    1, {{3}},                               8,  rgb, opaque},
    {"rgba5658",  nullptr,       ZELT_CS_RGBA5658,  1, {{3}},                               8,  rgb, alpha},
    {"rgba8888",  "rgba",        ZELT_CS_RGBA8888,  1, {{4}},                               8,  rgb, alpha},
    {"bgra8888",  "bgra",        ZELT_CS_BGRA8888,  1, {{4}},                               8,  rgb, alpha},
    {"argb8888",  "argb",        ZELT_CS_ARGB8888,  1, {{4}},                               8,  rgb, alpha},
    {"r8g8b8",    nullptr,       ZELT_CS_R8G8B8,    3, {full, full, full},                  8,  rgb, opaque},
    {"r10g10b10", nullptr,       ZELT_CS_R10G10B10, 3, {words, words, words},               10, rgb, opaque},
    {"rgb565a8",  nullptr,       ZELT_CS_RGB565A8,  2, {words, full},                       8,  rgb, alpha},
    {"r8g8b8a8",  nullptr,       ZELT_CS_R8G8B8A8,  4, {full, full, full, full},            8,  rgb, alpha},
};
// clang-format on

}  // namespace

std::span<const format> formats() { return table; }

const format& format_of(int32_t cs) {
    const auto it = std::ranges::find(table, cs, &format::cs);
    if (it == std::end(table)) std::abort();
    return *it;
}

const format& planar_yuv(const format& fmt) {
    switch (fmt.cs) {
    case ZELT_CS_NV12:
    case ZELT_CS_NV21: return format_of(ZELT_CS_YUV420);
    case ZELT_CS_NV16:
    case ZELT_CS_YUYV:
    case ZELT_CS_UYVY: return format_of(ZELT_CS_YUV422);
    case ZELT_CS_P010LE: return format_of(ZELT_CS_P010);
    case ZELT_CS_P210LE: return format_of(ZELT_CS_P210);
    case ZELT_CS_R10G10B10: return format_of(ZELT_CS_P410);
    default: return fmt.yuv && !fmt.alpha ? fmt : format_of(ZELT_CS_YUV444);
    }
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
    for (int i = 0; i < fmt.planes; ++i) {
        const int64_t row = fmt.row_bytes(i, w), rows = fmt.rows(i, h);
        if (row && rows > (most - bytes) / row) return most;
        bytes += row * rows;
    }
    return bytes;
}

bool fits(const format& fmt, int w, int h) {
    return w >= 1 && h >= 1 && picture_bytes(fmt, w, h) <= std::numeric_limits<int32_t>::max();
}

}  // namespace zelt::tool
