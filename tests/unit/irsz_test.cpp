// SPDX-License-Identifier: MIT
#include "zelt/irsz.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {
constexpr ZELT_IRSZ_PARAM grey = {ZELT_IRSZ_8B, ZELT_IRSZ_WHOLE, 4, 2, 4, 0, 2, 2, 2, nullptr};
}  // namespace

TEST(irsz, create) {
    for (int format = 0; format < 40; ++format)
        for (int mode = 8; mode < 14; ++mode) {
            ZELT_IRSZ_PARAM param = grey;
            param.format = format, param.mode = mode;
            const bool known = format == 20 || format == 21 || format == 23 || format == 25 || format == 29;
            int32_t err = 77;
            ZELT_IRSZ* irsz = zelt_irsz_create(&param, &err);
            EXPECT_EQ(err, mode != 10 && mode != 11 ? -2 : known ? 0 : -4) << format << ", " << mode;
            EXPECT_EQ(irsz != nullptr, err == 0);
            zelt_irsz_delete(irsz);
            zelt_irsz_delete(zelt_irsz_create(&param, nullptr));  // of null, too
        }
}

TEST(irsz, weights) {
    for (int i = 0; i < 256; ++i) {  // of the four neighbours at each place
        const int fx = i / 32, fy = i / 4 % 8;
        EXPECT_EQ(zelt_tbl_bilinear_rszw[i], (i & 1 ? fx : 8 - fx) * (i & 2 ? fy : 8 - fy)) << i;
    }
    EXPECT_EQ(std::memcmp(zelt_tbl_bilinear_rszw, zelt_irsz_tbl_rsz_weight, 256), 0);
}

TEST(irsz, steps) {
    const struct {
        int32_t src, dst;
        uint32_t step;
    } rows[] = {{640, 320, ((639u << 18) / 320) << 3},
                {1920, 240, ((479u << 18) / 240) << 3 | 2},
                {2, 4, (1u << 16) << 3},
                {7, 7, ((6u << 18) / 7) << 3},
                {3, 1, (1u << 18) << 3 | 1},
                {40, 1, (2u << 18) << 3 | 4},
                {1, 9, 0},
                {20000, 10000, static_cast<uint32_t>((19999ull << 18) / 10000) << 3},
                {0, 5, 0},
                {-1, 5, 0},
                {5, INT32_MIN, 0}};
    for (const auto& row : rows) {
        uint32_t x = 1, y = 1;
        EXPECT_EQ(bilinear_rsz_step_size(row.src, 9, row.dst, 1, &x, &y), y) << row.src;
        EXPECT_EQ(x, row.step) << row.src;
        EXPECT_EQ(bilinear_rsz_step_size(9, row.src, 1, row.dst, &x, &y), row.step) << row.src;
    }
}

TEST(irsz, a_handle_of_another_format_does_nothing) {
    const uint8_t src[32] = {};
    uint8_t dst[32] = {7};
    ZELT_IRSZ_PARAM param = grey;
    param.dst = dst;
    ZELT_IRSZ* irsz = zelt_irsz_create(&param, nullptr);
    EXPECT_EQ(zelt_irsz8b8b8b8b(irsz, src, 0, 0), 0);
    EXPECT_EQ(dst[0], 7);
    EXPECT_EQ(zelt_irsz(irsz, src, 0, 0), 0);
    EXPECT_EQ(dst[0], 0);
    zelt_irsz_delete(irsz);
}

TEST(irsz, sizes_below_one_write_nothing) {
    const uint8_t src[4] = {}, *const rows[] = {src, src}, *const weights = zelt_tbl_bilinear_rszw;
    uint8_t dst = 7;
    for (const int32_t none : {0, -1, INT32_MIN}) {
        for (int which = 0; which < 8; ++which) {
            const int mode = which < 4 ? ZELT_IRSZ_WHOLE : ZELT_IRSZ_BANDS;
            ZELT_IRSZ_PARAM param = {ZELT_IRSZ_8B, mode, 1, 1, 1, 1, 1, 1, 1, &dst};
            int32_t* const sizes[] = {&param.src_w, &param.src_h, &param.dst_w, &param.dst_h};
            *sizes[which % 4] = none;
            ZELT_IRSZ* irsz = zelt_irsz_create(&param, nullptr);
            ASSERT_NE(irsz, nullptr);
            EXPECT_EQ(zelt_irsz(irsz, src, 0, 1), 0);
            EXPECT_EQ(zelt_irsz(irsz, src, 0, 0), 0);
            zelt_irsz_delete(irsz);
        }
        // at once, whatever the other numbers
        zelt_irsz8b_line(rows, weights, none, 0, 1, 1 << 18, &dst);
        zelt_irsz8b_full(src, 1, none, 1, 1, &dst, 0, 0);
        zelt_irsz8b_full(src, 1, 1, none, 1, &dst, 0, 0);
        zelt_irsz8b8b8b8b_line(rows, weights, none, 7, INT32_MAX, INT32_MAX, &dst);
        zelt_irsz8b8b8b8b_full(src, INT32_MAX, none, INT32_MAX, INT32_MIN, &dst, UINT32_MAX, UINT32_MAX);
        zelt_irsz5b6b5b_full(src, INT32_MIN, none, INT32_MAX, INT32_MAX, &dst, UINT32_MAX, UINT32_MAX);
    }
    for (const int32_t below : {-1, -(1 << 18), INT32_MIN}) zelt_irsz8b_line(rows, weights, 1, 0, 1, below, &dst);
    EXPECT_EQ(dst, 7);
}

TEST(irsz, bands_of_no_rows_are_bands_of_one) {
    uint8_t src[16], dst[2][16] = {};
    for (uint8_t i = 0; i < 16; ++i) src[i] = static_cast<uint8_t>(i * 17);
    for (const int band_rows : {0, 1}) {
        const ZELT_IRSZ_PARAM param = {ZELT_IRSZ_8B, ZELT_IRSZ_BANDS, 2, 8, 2, band_rows, 2, 8, 2, dst[band_rows]};
        ZELT_IRSZ* irsz = zelt_irsz_create(&param, nullptr);
        for (int y = 0; y < 8; ++y) zelt_irsz(irsz, src + 2 * y, y, 1);
        zelt_irsz_delete(irsz);
    }
    EXPECT_NE(dst[0][8], 0);
    EXPECT_EQ(std::memcmp(dst[0], dst[1], sizeof dst[0]), 0);
}
