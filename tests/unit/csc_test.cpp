#include "zelt/csc.h"

#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace {
std::map<int, std::string> names = {{13, "yuv444"},    {43, "yuv444a8"},  {62, "p410"},       {200, "rgb565"},
                                    {400, "rgb888"},   {430, "rgba5658"}, {500, "rgba8888"},  {501, "bgra8888"},
                                    {502, "argb8888"}, {600, "r8g8b8"},   {603, "r10g10b10"}, {650, "rgb565a8"},
                                    {700, "r8g8b8a8"}};

/// The converter that serves a pair of colour spaces, as the documentation lists them; empty where there is none.
std::string documented(int from, int to) {
    const std::string pair = names[from] + "_to_" + names[to];
    if (pair == "r8g8b8a8_to_rgba5658") return "r8g8b8a8_to_rgba8888";
    if (pair == "r8g8b8_to_rgb565a8") return "x8y8z8_to_xyz565a8";
    if (pair == "r8g8b8a8_to_rgb565a8") return "x8y8z8a8_to_xyz565a8";
    for (const char* same :
         {"r8g8b8_to_rgb888",     "r8g8b8_to_rgba8888",   "r8g8b8_to_rgb565",     "r8g8b8_to_argb8888",
          "r8g8b8_to_bgra8888",   "r8g8b8a8_to_rgba8888", "r8g8b8a8_to_argb8888", "r8g8b8a8_to_bgra8888",
          "yuv444_to_rgb888",     "yuv444_to_rgba8888",   "yuv444_to_rgb565",     "yuv444_to_rgb565a8",
          "yuv444_to_argb8888",   "yuv444_to_bgra8888",   "yuv444_to_r8g8b8",     "yuv444a8_to_rgba8888",
          "yuv444a8_to_rgba5658", "yuv444a8_to_rgb565a8", "yuv444a8_to_argb8888", "yuv444a8_to_bgra8888",
          "r8g8b8_to_yuv444",     "rgb565_to_yuv444",     "rgb888_to_yuv444",     "rgba8888_to_yuv444a8"})
        if (pair == same) return pair;
    return {};
}

void* symbol(const std::string& converter) { return dlsym(RTLD_DEFAULT, ("zelt_csc_" + converter).c_str()); }
}  // namespace

TEST(csc, dispatch) {
    std::vector<int> spaces = {-1,  0,   9,   10,  11,  14,  99,   100,       199,
                               201, 401, 601, 649, 799, 800, 1000, INT32_MIN, INT32_MAX};
    for (const auto& [cs, name] : names) spaces.push_back(cs);
    for (const int from : spaces)
        for (const int to : spaces) {
            const std::string name = names.count(from) && names.count(to) ? documented(from, to) : "";
            int32_t err = 7;
            const zelt_csc_fn fn = zelt_imgp_get_fn_csc(4, 3, from, 4, 3, to, &err);
            ASSERT_EQ(reinterpret_cast<void*>(fn), name.empty() ? nullptr : symbol(name)) << from << " to " << to;
            EXPECT_EQ(err, name.empty() ? ZELT_ERR_UNSUPPORTED : 7) << from << " to " << to;
            for (const auto& [w, h] : {std::pair{5, 3}, {4, 2}})
                EXPECT_EQ(zelt_imgp_get_fn_csc(4, 3, from, w, h, to, nullptr), nullptr) << "resizing";
        }
}

TEST(csc, cells_that_no_pair_selects) {
    // [sizes equal][row 1] of the YUV table, and the kept oddity of the RGB table
    EXPECT_EQ(reinterpret_cast<void*>(zelt_tbl_fn_csc_to_yuvplanar[1 * 3 + 1]), symbol("r8g8b8a8_to_yuv444a8"));
    EXPECT_EQ(reinterpret_cast<void*>(zelt_tbl_fn_csc_to_rgb[1 * 11 + 3]), symbol("r8g8b8a8_to_rgba8888"));
    for (int row = 0; row < 6; ++row) EXPECT_EQ(zelt_tbl_fn_csc_to_rgb[row * 11 + 9], nullptr);
}

TEST(csc, sizes_below_one_write_nothing) {
    uint8_t in[3][64] = {}, out[3][64] = {};
    void* const src[] = {in[0], in[1], in[2]};
    void* const dst[] = {out[0], out[1], out[2]};
    const int32_t strides[] = {64, 64, 64};
    memset(in, 99, sizeof in);
    for (const auto& [w, h] : {std::pair{0, 1}, {1, 0}, {-1, 4}, {4, -1}, {INT32_MIN, INT32_MIN}}) {
        zelt_csc_yuv444_to_r8g8b8(src, w, h, strides, 13, dst, w, h, strides, 600);
        zelt_csc_yuv444_to_rgba8888(src, w, h, strides, 13, dst, w, h, strides, 500);
        zelt_csc_r8g8b8_to_yuv444(src, w, h, strides, 600, dst, w, h, strides, 13);
    }
    for (const auto& plane : out)
        for (const uint8_t byte : plane) EXPECT_EQ(byte, 0);
}
