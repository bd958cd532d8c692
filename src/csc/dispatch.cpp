// Which converter serves a pair of colour spaces.
#include "core/types.h"
#include "zelt/csc.h"

using namespace zelt;

#define F(name) zelt_csc_##name
// clang-format off

// destination:  RGB888, RGBA8888, RGB565, RGBA5658, RGB565A8, ARGB8888, BGRA8888, RGB888_ALT, R8G8B8, -, R10G10B10
const zelt_csc_fn zelt_tbl_fn_csc_to_rgb[2 * 6 * 11] = {
    // sizes equal, from R8G8B8
    F(r8g8b8_to_rgb888), F(r8g8b8_to_rgba8888), F(r8g8b8_to_rgb565), nullptr, F(x8y8z8_to_xyz565a8),
    F(r8g8b8_to_argb8888), F(r8g8b8_to_bgra8888), nullptr, nullptr, nullptr, nullptr,
    // R8G8B8A8. Kept: the cell of RGBA5658 has the RGBA8888 converter, which writes 4 bytes a pixel.
    nullptr, F(r8g8b8a8_to_rgba8888), nullptr, F(r8g8b8a8_to_rgba8888), F(x8y8z8a8_to_xyz565a8),
    F(r8g8b8a8_to_argb8888), F(r8g8b8a8_to_bgra8888), nullptr, nullptr, nullptr, nullptr,
    // YUV444
    F(yuv444_to_rgb888), F(yuv444_to_rgba8888), F(yuv444_to_rgb565), nullptr, F(yuv444_to_rgb565a8),
    F(yuv444_to_argb8888), F(yuv444_to_bgra8888), nullptr, F(yuv444_to_r8g8b8), nullptr, nullptr,
    // YUV444A8
    nullptr, F(yuv444a8_to_rgba8888), nullptr, F(yuv444a8_to_rgba5658), F(yuv444a8_to_rgb565a8),
    F(yuv444a8_to_argb8888), F(yuv444a8_to_bgra8888), nullptr, nullptr, nullptr, nullptr,
    // P410
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, F(p410_to_r10g10b10),
    // R10G10B10. Kept: to itself it is converted to P410.
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, F(r10g10b10_to_p410),

    // sizes differ, from R8G8B8
    F(rsz_r8g8b8_to_rgb888), F(rsz_r8g8b8_to_rgba8888), nullptr, nullptr, nullptr,
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    // R8G8B8A8
    nullptr, F(rsz_r8g8b8a8_to_rgba8888), nullptr, nullptr, nullptr,
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    // YUV444
    F(rsz_yuv444_to_rgb888), F(rsz_yuv444_to_rgba8888), F(rsz_yuv444_to_rgb565), nullptr, nullptr,
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    // YUV444A8
    nullptr, F(rsz_yuv444a8_to_rgba8888), nullptr, nullptr, F(rsz_yuv444a8_to_rgb565a8),
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    // P410, R10G10B10: none
};

// destination:  YUV444, YUV444A8, P410
const zelt_csc_fn zelt_tbl_fn_csc_to_yuvplanar[2 * 8 * 3] = {
    F(r8g8b8_to_yuv444), nullptr, nullptr,      // sizes equal, from R8G8B8
    nullptr, F(r8g8b8a8_to_yuv444a8), nullptr,  // Kept: no source selects this row
    F(yuv444x_to_yuv444x), nullptr, nullptr,    // YUV444
    F(yuv444x_to_yuv444x), F(yuv444x_to_yuv444x), nullptr,  // YUV444A8
    F(rgb565_to_yuv444), nullptr, nullptr,      // RGB565
    nullptr, nullptr, F(r10g10b10_to_p410),     // R10G10B10
    F(rgb888_to_yuv444), nullptr, nullptr,      // RGB888
    nullptr, F(rgba8888_to_yuv444a8), nullptr,  // RGBA8888
    // sizes differ: none
};
// clang-format on

namespace {
constexpr s16 none = -1;  // a row or column that no colour space selects
constexpr s16 rgb_sources[] = {600, 700, 13, 43, 62, 603};
constexpr s16 rgb_destinations[] = {400, 500, 200, 430, 650, 502, 501, 401, 600, none, 603};
constexpr s16 yuv_sources[] = {600, none, 13, 43, 200, 603, 400, 500};
constexpr s16 yuv_destinations[] = {13, 43, 62};

/// Place of a colour space in a list, or -1
template <std::size_t N> int place(const s16 (&list)[N], int cs) {
    for (std::size_t i = 0; i < N; ++i)
        if (list[i] == cs && cs != none) return static_cast<int>(i);
    return -1;
}

template <std::size_t Cells, std::size_t Rows, std::size_t Columns>
zelt_csc_fn look_up(const zelt_csc_fn (&table)[Cells], const s16 (&sources)[Rows], const s16 (&destinations)[Columns],
                    bool sizes_differ, int src_cs, int dst_cs) {
    static_assert(Cells == 2 * Rows * Columns);
    const int row = place(sources, src_cs), column = place(destinations, dst_cs);
    if (row < 0 || column < 0) return nullptr;
    return table[(sizes_differ * Rows + static_cast<std::size_t>(row)) * Columns + static_cast<std::size_t>(column)];
}
}  // namespace

zelt_csc_fn zelt_imgp_get_fn_csc(int32_t src_w, int32_t src_h, int32_t src_cs, int32_t dst_w, int32_t dst_h,
                                 int32_t dst_cs, int32_t* err) {
    const bool sizes_differ = src_w != dst_w || src_h != dst_h;
    zelt_csc_fn fn = nullptr;
    if (dst_cs >= 200 && dst_cs <= 799)
        fn = look_up(zelt_tbl_fn_csc_to_rgb, rgb_sources, rgb_destinations, sizes_differ, src_cs, dst_cs);
    else if (dst_cs >= 10 && dst_cs <= 99)
        fn = look_up(zelt_tbl_fn_csc_to_yuvplanar, yuv_sources, yuv_destinations, sizes_differ, src_cs, dst_cs);
    if (!fn && err) *err = ZELT_ERR_UNSUPPORTED;  // Kept: success leaves *err alone
    return fn;
}
