// SPDX-License-Identifier: MIT
#include "zelt/csc.h"

#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <vector>

namespace {
using pair = std::pair<int, int>;
#define F(name) zelt_csc_##name

/// Every pair of colour spaces that has a converter, at one size and at two
const std::map<pair, zelt_csc_fn> same_size = {
    {{600, 400}, F(r8g8b8_to_rgb888)},     {{600, 500}, F(r8g8b8_to_rgba8888)},   {{600, 200}, F(r8g8b8_to_rgb565)},
    {{600, 650}, F(x8y8z8_to_xyz565a8)},   {{600, 502}, F(r8g8b8_to_argb8888)},   {{600, 501}, F(r8g8b8_to_bgra8888)},
    {{700, 500}, F(r8g8b8a8_to_rgba8888)}, {{700, 430}, F(r8g8b8a8_to_rgba8888)}, {{700, 650}, F(x8y8z8a8_to_xyz565a8)},
    {{700, 502}, F(r8g8b8a8_to_argb8888)}, {{700, 501}, F(r8g8b8a8_to_bgra8888)}, {{13, 400}, F(yuv444_to_rgb888)},
    {{13, 500}, F(yuv444_to_rgba8888)},    {{13, 200}, F(yuv444_to_rgb565)},      {{13, 650}, F(yuv444_to_rgb565a8)},
    {{13, 502}, F(yuv444_to_argb8888)},    {{13, 501}, F(yuv444_to_bgra8888)},    {{13, 600}, F(yuv444_to_r8g8b8)},
    {{43, 500}, F(yuv444a8_to_rgba8888)},  {{43, 430}, F(yuv444a8_to_rgba5658)},  {{43, 650}, F(yuv444a8_to_rgb565a8)},
    {{43, 502}, F(yuv444a8_to_argb8888)},  {{43, 501}, F(yuv444a8_to_bgra8888)},  {{62, 603}, F(p410_to_r10g10b10)},
    {{603, 603}, F(r10g10b10_to_p410)},    {{600, 13}, F(r8g8b8_to_yuv444)},      {{13, 13}, F(yuv444x_to_yuv444x)},
    {{43, 13}, F(yuv444x_to_yuv444x)},     {{43, 43}, F(yuv444x_to_yuv444x)},     {{200, 13}, F(rgb565_to_yuv444)},
    {{603, 62}, F(r10g10b10_to_p410)},     {{400, 13}, F(rgb888_to_yuv444)},      {{500, 43}, F(rgba8888_to_yuv444a8)},
};
const std::map<pair, zelt_csc_fn> resizing = {
    {{600, 400}, F(rsz_r8g8b8_to_rgb888)},     {{600, 500}, F(rsz_r8g8b8_to_rgba8888)},
    {{700, 500}, F(rsz_r8g8b8a8_to_rgba8888)}, {{13, 400}, F(rsz_yuv444_to_rgb888)},
    {{13, 500}, F(rsz_yuv444_to_rgba8888)},    {{13, 200}, F(rsz_yuv444_to_rgb565)},
    {{43, 500}, F(rsz_yuv444a8_to_rgba8888)},  {{43, 650}, F(rsz_yuv444a8_to_rgb565a8)},
};

zelt_csc_fn expected(const std::map<pair, zelt_csc_fn>& table, pair cs) {
    const auto entry = table.find(cs);
    return entry == table.end() ? nullptr : entry->second;
}
}  // namespace

TEST(csc, dispatch_of_every_pair) {
    std::vector<int> ids;
    for (int cs = -1; cs < 820; ++cs) ids.push_back(cs);
    ids.insert(ids.end(), {1 << 16, INT32_MAX, INT32_MIN});
    for (const int src : ids)
        for (const int dst : ids) {
            int32_t err = 5;
            const zelt_csc_fn equal = zelt_imgp_get_fn_csc(8, 6, src, 8, 6, dst, &err);
            ASSERT_EQ(equal, expected(same_size, {src, dst})) << src << " to " << dst;
            ASSERT_EQ(err, equal ? 5 : ZELT_ERR_UNSUPPORTED);
            ASSERT_EQ(zelt_imgp_get_fn_csc(8, 6, src, 8, 7, dst, nullptr), expected(resizing, {src, dst}));
            ASSERT_EQ(zelt_imgp_get_fn_csc(8, 6, src, 9, 6, dst, nullptr), expected(resizing, {src, dst}));
        }
}

TEST(csc, dispatch_tables_cell_by_cell) {
    const int rgb_sources[] = {600, 700, 13, 43, 62, 603}, yuv_sources[] = {600, 0, 13, 43, 200, 603, 400, 500};
    const int rgb_destinations[] = {400, 500, 200, 430, 650, 502, 501, 401, 600, 0, 603};
    const int yuv_destinations[] = {13, 43, 62};
    for (int i = 0; i < 2 * 6 * 11; ++i)
        EXPECT_EQ(zelt_tbl_fn_csc_to_rgb[i],
                  expected(i < 66 ? same_size : resizing, {rgb_sources[i / 11 % 6], rgb_destinations[i % 11]}));
    const int unreachable = 4;
    for (int i = 0; i < 2 * 8 * 3; ++i)
        EXPECT_EQ(zelt_tbl_fn_csc_to_yuvplanar[i],
                  i == unreachable
                      ? zelt_csc_r8g8b8a8_to_yuv444a8
                      : expected(i < 24 ? same_size : resizing, {yuv_sources[i / 3 % 8], yuv_destinations[i % 3]}));
}

TEST(csc, converters_ignore_sizes_below_one) {
    uint8_t pixel = 6, byte = 7;
    void* const src[] = {&pixel, &pixel, &pixel, &pixel};
    void* const dst[] = {&byte, &byte, &byte, &byte};
    const int32_t strides[] = {1, 1, 1, 1};
    for (const auto* table : {&same_size, &resizing})
        for (const auto& entry : *table)
            for (const int32_t none : {0, -1, INT32_MIN}) {
                entry.second(src, none, 1, strides, 0, dst, none, 1, strides, 0);
                entry.second(src, 1, none, strides, 0, dst, 1, none, strides, 0);
            }
    zelt_csc_p010_to_yuv420(src, 0, 1, strides, 0, dst, 0, 1, strides, 0);
    zelt_csc_p010_to_yuv420(src, 1, -1, strides, 0, dst, 1, -1, strides, 0);
    EXPECT_EQ(byte, 7);
}

TEST(csc, alpha_comes_first_from_argb8888_up) {
    uint8_t planes[] = {50, 60, 70}, pixel[4] = {};
    void* const src[] = {planes, planes + 1, planes + 2};
    void* const dst[] = {pixel};
    const int32_t strides[] = {4, 1, 1};
    for (const int cs : {+ZELT_CS_BGRA8888, +ZELT_CS_ARGB8888, ZELT_CS_ARGB8888 + 1}) {
        const int alpha = cs < ZELT_CS_ARGB8888 ? 3 : 0;
        zelt_csc_yuv444_to_rgba8888(src, 1, 1, strides, 0, dst, 1, 1, strides, cs);
        EXPECT_EQ(pixel[alpha], 255) << cs;
        EXPECT_NE(pixel[3 - alpha], 255) << cs;
    }
}

TEST(csc, components_may_have_strides_of_their_own) {
    constexpr int w = 67, h = 3;
    std::vector<uint8_t> planes(3 * w * h), packed(4 * w * h), apart(5 * 4 * w * h);
    std::mt19937 random(1);
    for (uint8_t& byte : planes) byte = static_cast<uint8_t>(random());
    void* const src[] = {&planes[0], &planes[w * h], &planes[2 * w * h]};
    const int32_t src_s[] = {w, w, w}, packed_s[] = {4 * w}, apart_s[] = {4 * w, 4 * w, 4 * w, 8 * w};
    void* const one[] = {packed.data(), nullptr};
    void* const four[] = {&apart[0], &apart[1], &apart[2], &apart[3]};
    zelt_csc_yuv444_to_argb8888(src, w, h, src_s, 0, one, w, h, packed_s, 0);
    zelt_csc_yuv444_to_argb8888(src, w, h, src_s, 0, four, w, h, apart_s, 0);
    for (int i = 0; i < 4 * w * h; ++i) {
        const int row = i / (4 * w), column = i % (4 * w);
        ASSERT_EQ(apart[row * apart_s[i % 4] + column], packed[i]) << column << ", " << row;
    }
}

TEST(csc, planes_move_within_their_memory) {
    std::vector<uint8_t> memory(3 * 64);
    for (std::size_t i = 0; i < memory.size(); ++i) memory[i] = static_cast<uint8_t>(i);
    std::vector<uint8_t> expected = memory;
    void* src[3];
    void* dst[3];
    const int32_t strides[] = {0, 0, 0};
    for (int i = 0; i < 3; ++i) {
        src[i] = &memory[64 * i + 8], dst[i] = &memory[64 * i + 5];
        std::memmove(&expected[64 * i + 5], &expected[64 * i + 8], 40);
    }
    zelt_csc_yuv444x_to_yuv444x(src, 40, 1, strides, 0, dst, 40, 1, strides, 0);
    EXPECT_EQ(memory, expected);
}
