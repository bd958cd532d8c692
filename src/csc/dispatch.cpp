// SPDX-License-Identifier: MIT
// Which converter serves a pair of colour spaces. The exported tables are made from the pairs below at compile time.
#include "core/types.h"
#include "zelt/csc.h"

#include <array>

using namespace zelt;

namespace {
constexpr int none = -1;  // a row or column that no colour space selects

struct pair {
    int destination;
    zelt_csc_fn convert;
};
struct source {
    int cs;
    pair same_size[7], resizing[3];
};

constexpr int rgb_columns[] = {
    ZELT_CS_RGB888,   ZELT_CS_RGBA8888, ZELT_CS_RGB565,     ZELT_CS_RGBA5658, ZELT_CS_RGB565A8,
    ZELT_CS_ARGB8888, ZELT_CS_BGRA8888, ZELT_CS_RGB888_ALT, ZELT_CS_R8G8B8,   none,
    ZELT_CS_R10G10B10};
constexpr int yuv_columns[] = {ZELT_CS_YUV444, ZELT_CS_YUV444A8, ZELT_CS_P410};

#define F(name) zelt_csc_##name
// clang-format off
constexpr source rgb_rows[] = {
    {ZELT_CS_R8G8B8, {
        {ZELT_CS_RGB888,    F(r8g8b8_to_rgb888)},
        {ZELT_CS_RGBA8888,  F(r8g8b8_to_rgba8888)},
        {ZELT_CS_RGB565,    F(r8g8b8_to_rgb565)},
        {ZELT_CS_RGB565A8,  F(x8y8z8_to_xyz565a8)},
        {ZELT_CS_ARGB8888,  F(r8g8b8_to_argb8888)},
        {ZELT_CS_BGRA8888,  F(r8g8b8_to_bgra8888)},
    }, {
        {ZELT_CS_RGB888,    F(rsz_r8g8b8_to_rgb888)},
        {ZELT_CS_RGBA8888,  F(rsz_r8g8b8_to_rgba8888)},
    }},
    {ZELT_CS_R8G8B8A8, {
        {ZELT_CS_RGBA8888,  F(r8g8b8a8_to_rgba8888)},
        {ZELT_CS_RGBA5658,  F(r8g8b8a8_to_rgba8888)},  // Kept: this one writes 4 bytes per pixel
        {ZELT_CS_RGB565A8,  F(x8y8z8a8_to_xyz565a8)},
        {ZELT_CS_ARGB8888,  F(r8g8b8a8_to_argb8888)},
        {ZELT_CS_BGRA8888,  F(r8g8b8a8_to_bgra8888)},
    }, {
        {ZELT_CS_RGBA8888,  F(rsz_r8g8b8a8_to_rgba8888)},
    }},
    {ZELT_CS_YUV444, {
        {ZELT_CS_RGB888,    F(yuv444_to_rgb888)},
        {ZELT_CS_RGBA8888,  F(yuv444_to_rgba8888)},
        {ZELT_CS_RGB565,    F(yuv444_to_rgb565)},
        {ZELT_CS_RGB565A8,  F(yuv444_to_rgb565a8)},
        {ZELT_CS_ARGB8888,  F(yuv444_to_argb8888)},
        {ZELT_CS_BGRA8888,  F(yuv444_to_bgra8888)},
        {ZELT_CS_R8G8B8,    F(yuv444_to_r8g8b8)},
    }, {
        {ZELT_CS_RGB888,    F(rsz_yuv444_to_rgb888)},
        {ZELT_CS_RGBA8888,  F(rsz_yuv444_to_rgba8888)},
        {ZELT_CS_RGB565,    F(rsz_yuv444_to_rgb565)},
    }},
    {ZELT_CS_YUV444A8, {
        {ZELT_CS_RGBA8888,  F(yuv444a8_to_rgba8888)},
        {ZELT_CS_RGBA5658,  F(yuv444a8_to_rgba5658)},
        {ZELT_CS_RGB565A8,  F(yuv444a8_to_rgb565a8)},
        {ZELT_CS_ARGB8888,  F(yuv444a8_to_argb8888)},
        {ZELT_CS_BGRA8888,  F(yuv444a8_to_bgra8888)},
    }, {
        {ZELT_CS_RGBA8888,  F(rsz_yuv444a8_to_rgba8888)},
        {ZELT_CS_RGB565A8,  F(rsz_yuv444a8_to_rgb565a8)},
    }},
    {ZELT_CS_P410,      {{ZELT_CS_R10G10B10, F(p410_to_r10g10b10)}}, {}},
    {ZELT_CS_R10G10B10, {{ZELT_CS_R10G10B10, F(r10g10b10_to_p410)}}, {}},  // Kept: to itself it is converted to P410
};
constexpr source yuv_rows[] = {
    {ZELT_CS_R8G8B8,    {{ZELT_CS_YUV444,   F(r8g8b8_to_yuv444)}}, {}},
    {none,              {{ZELT_CS_YUV444A8, F(r8g8b8a8_to_yuv444a8)}}, {}},  // Kept: no source selects this row
    {ZELT_CS_YUV444,    {{ZELT_CS_YUV444,   F(yuv444x_to_yuv444x)}}, {}},
    {ZELT_CS_YUV444A8,  {{ZELT_CS_YUV444,   F(yuv444x_to_yuv444x)},
                         {ZELT_CS_YUV444A8, F(yuv444x_to_yuv444x)}}, {}},
    {ZELT_CS_RGB565,    {{ZELT_CS_YUV444,   F(rgb565_to_yuv444)}}, {}},
    {ZELT_CS_R10G10B10, {{ZELT_CS_P410,     F(r10g10b10_to_p410)}}, {}},
    {ZELT_CS_RGB888,    {{ZELT_CS_YUV444,   F(rgb888_to_yuv444)}}, {}},
    {ZELT_CS_RGBA8888,  {{ZELT_CS_YUV444A8, F(rgba8888_to_yuv444a8)}}, {}},
};
// clang-format on
#undef F

template <std::size_t Columns> constexpr std::size_t column_of(const int (&columns)[Columns], int cs) {
    std::size_t i = 0;
    while (i < Columns && (columns[i] == none || columns[i] != cs)) ++i;
    return i;
}

/// [sizes differ][row][column], null if there is no converter
template <std::size_t Rows, std::size_t Columns>
consteval auto make_table(const source (&rows)[Rows], const int (&columns)[Columns]) {
    std::array<zelt_csc_fn, 2 * Rows * Columns> table{};
    const auto enter = [&](std::size_t row, const auto& pairs) {
        for (const pair& p : pairs)
            if (p.destination) table[row * Columns + column_of(columns, p.destination)] = p.convert;
    };
    for (std::size_t i = 0; i < Rows; ++i) {
        enter(i, rows[i].same_size);
        enter(Rows + i, rows[i].resizing);
    }
    return table;
}
}  // namespace

// The exported arrays are these two under another name: an array type has no initialiser that a function could return.
extern "C" {
extern const auto zelt_csc_to_rgb = make_table(rgb_rows, rgb_columns);
extern const auto zelt_csc_to_yuvplanar = make_table(yuv_rows, yuv_columns);
extern const zelt_csc_fn zelt_tbl_fn_csc_to_rgb[zelt_csc_to_rgb.size()] __attribute__((alias("zelt_csc_to_rgb")));
extern const zelt_csc_fn zelt_tbl_fn_csc_to_yuvplanar[zelt_csc_to_yuvplanar.size()]
    __attribute__((alias("zelt_csc_to_yuvplanar")));
}

template <std::size_t Rows, std::size_t Columns>
static zelt_csc_fn look_up(const zelt_csc_fn* table, const source (&rows)[Rows], const int (&columns)[Columns],
                           bool sizes_differ, int src_cs, int dst_cs) {
    const std::size_t column = column_of(columns, dst_cs);
    if (column == Columns) return nullptr;
    for (std::size_t i = 0; i < Rows; ++i)
        if (rows[i].cs != none && rows[i].cs == src_cs) return table[(sizes_differ * Rows + i) * Columns + column];
    return nullptr;
}

zelt_csc_fn zelt_imgp_get_fn_csc(int32_t src_w, int32_t src_h, int32_t src_cs, int32_t dst_w, int32_t dst_h,
                                 int32_t dst_cs, int32_t* err) {
    const bool sizes_differ = src_w != dst_w || src_h != dst_h;
    zelt_csc_fn fn = nullptr;
    if (dst_cs >= 200 && dst_cs <= 799)
        fn = look_up(zelt_tbl_fn_csc_to_rgb, rgb_rows, rgb_columns, sizes_differ, src_cs, dst_cs);
    else if (dst_cs >= 10 && dst_cs <= 99)
        fn = look_up(zelt_tbl_fn_csc_to_yuvplanar, yuv_rows, yuv_columns, sizes_differ, src_cs, dst_cs);
    if (!fn && err) *err = ZELT_ERR_UNSUPPORTED;  // Kept: success leaves *err alone
    return fn;
}
