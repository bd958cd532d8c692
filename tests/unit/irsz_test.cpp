#include "unit/malloc_probe.h"
#include "zelt/irsz.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {
constexpr ZELT_IRSZ_PARAM grey = {ZELT_IRSZ_8B, ZELT_IRSZ_WHOLE, 4, 2, 4, 0, 2, 2, 2, nullptr};

int32_t status_of(ZELT_IRSZ_PARAM param) {
    int32_t err = 77;
    ZELT_IRSZ* irsz = zelt_irsz_create(&param, &err);
    EXPECT_EQ(irsz != nullptr, err == 0);
    zelt_irsz_delete(irsz);
    return err;
}
}  // namespace

TEST(irsz, create) {
    for (int format = 0; format < 40; ++format)
        for (int mode = 8; mode < 14; ++mode) {
            ZELT_IRSZ_PARAM param = grey;
            param.format = format, param.mode = mode;
            const bool known = format == 20 || format == 21 || format == 23 || format == 25 || format == 29;
            EXPECT_EQ(status_of(param), mode != 10 && mode != 11 ? -2 : known ? 0 : -4) << format << ", " << mode;
        }
    zelt_irsz_delete(nullptr);
    ZELT_IRSZ_PARAM unknown = grey;
    unknown.mode = 12;
    EXPECT_EQ(zelt_irsz_create(&unknown, nullptr), nullptr);
}

TEST(irsz, no_memory) {
    if (!malloc_probe::works) GTEST_SKIP();
    for (const auto& [mode, blocks] : {std::pair{ZELT_IRSZ_WHOLE, 1}, {ZELT_IRSZ_BANDS, 2}}) {
        ZELT_IRSZ_PARAM param = grey;
        param.mode = mode;
        for (int failing = 0; failing <= blocks; ++failing) {  // 0: none fails
            int32_t err = 77;
            int live;
            {
                malloc_probe probe(failing);
                zelt_irsz_delete(zelt_irsz_create(&param, &err));
                EXPECT_EQ(probe.calls, failing ? failing : blocks);
                live = probe.live;
            }
            EXPECT_EQ(err, failing ? -3 : 0);
            EXPECT_EQ(live, 0);
        }
    }
}

TEST(irsz, weights) {
    for (int fx = 0; fx < 8; ++fx)
        for (int fy = 0; fy < 8; ++fy) {
            const int want[] = {(8 - fx) * (8 - fy), fx * (8 - fy), (8 - fx) * fy, fx * fy};
            for (int i = 0; i < 4; ++i) EXPECT_EQ(zelt_tbl_bilinear_rszw[fx * 32 + fy * 4 + i], want[i]);
        }
    const uint8_t one_eighth[] = {49, 7, 7, 1};
    EXPECT_EQ(std::memcmp(zelt_tbl_bilinear_rszw + 36, one_eighth, 4), 0);
    EXPECT_EQ(std::memcmp(zelt_tbl_bilinear_rszw, zelt_irsz_tbl_rsz_weight, 256), 0);
}

TEST(irsz, steps) {
    const auto packed = [](int32_t src, int32_t dst) {
        uint32_t x, y;
        const uint32_t result = bilinear_rsz_step_size(src, dst, dst, src, &x, &y);  // the other way round vertically
        uint32_t y2, x2;
        EXPECT_EQ(bilinear_rsz_step_size(dst, src, src, dst, &x2, &y2), y2);
        EXPECT_EQ(result, y);
        EXPECT_EQ(x, y2);
        return x;
    };
    EXPECT_EQ(packed(640, 320), ((639u << 18) / 320) << 3);
    EXPECT_EQ(packed(1920, 240), ((479u << 18) / 240) << 3 | 2);
    EXPECT_EQ(packed(2, 4), (1u << 16) << 3);
    EXPECT_EQ(packed(7, 7), ((6u << 18) / 7) << 3);
    EXPECT_EQ(packed(3, 1), (1u << 18) << 3 | 1);
    EXPECT_EQ(packed(40, 1), (2u << 18) << 3 | 4);
    EXPECT_EQ(packed(1, 9), 0u);
    EXPECT_EQ(packed(20000, 10000), static_cast<uint32_t>((19999ull << 18) / 10000) << 3);
    // a size below 1 on either side
    for (const int32_t none : {0, -1, INT32_MIN}) {
        uint32_t x = 1, y = 1;
        EXPECT_EQ(bilinear_rsz_step_size(none, 5, 5, none, &x, &y), 0u);
        EXPECT_EQ(x, 0u);
    }
}

TEST(irsz, whole_picture) {
    const uint8_t src[] = {0, 100, 200, 40, 80, 20, 60, 240};
    uint8_t dst[] = {1, 1, 1, 1};
    ZELT_IRSZ_PARAM param = grey;  // steps of 3/2 and 1/2
    param.dst = dst;
    ZELT_IRSZ* irsz = zelt_irsz_create(&param, nullptr);
    ASSERT_NE(irsz, nullptr);
    EXPECT_EQ(zelt_irsz(irsz, src, 5, 3), 0);
    const uint8_t want[] = {0, 150, 40, 95};
    EXPECT_EQ(std::memcmp(dst, want, 4), 0);
    std::memset(dst, 1, 4);
    EXPECT_EQ(zelt_irsz8b8b8b8b(irsz, src, 0, 0), 0);  // of another format: nothing happens
    const uint8_t untouched[] = {1, 1, 1, 1};
    EXPECT_EQ(std::memcmp(dst, untouched, 4), 0);
    zelt_irsz_delete(irsz);
}

TEST(irsz, sizes_below_one_write_nothing) {
    const uint8_t src[4] = {};
    uint8_t dst = 7;
    for (const int mode : {ZELT_IRSZ_WHOLE, ZELT_IRSZ_BANDS})
        for (const int32_t bad : {0, -1, INT32_MIN})
            for (int which = 0; which < 4; ++which) {
                ZELT_IRSZ_PARAM param = {ZELT_IRSZ_8B, mode, 1, 1, 1, 1, 1, 1, 1, &dst};
                int32_t* const sizes[] = {&param.src_w, &param.src_h, &param.dst_w, &param.dst_h};
                *sizes[which] = bad;
                ZELT_IRSZ* irsz = zelt_irsz_create(&param, nullptr);
                ASSERT_NE(irsz, nullptr);
                EXPECT_EQ(zelt_irsz(irsz, src, 0, 1), 0);
                EXPECT_EQ(zelt_irsz(irsz, src, 0, 0), 0);
                zelt_irsz_delete(irsz);
            }
    const uint8_t* const rows[] = {src, src};
    zelt_irsz8b_line(rows, zelt_tbl_bilinear_rszw, 0, 0, 1, 1 << 18, &dst);
    zelt_irsz8b_full(src, 1, 1, 0, 1, &dst, 0, 0);
    zelt_irsz8b_full(src, 1, -1, 1, 1, &dst, 0, 0);
    // at once, whatever the other numbers
    for (const int32_t none : {0, -1, INT32_MIN}) {
        zelt_irsz8b8b8b8b_line(rows, zelt_tbl_bilinear_rszw, none, 7, INT32_MAX, INT32_MAX, &dst);
        zelt_irsz8b8b8b8b_full(src, INT32_MAX, none, INT32_MAX, INT32_MIN, &dst, UINT32_MAX, UINT32_MAX);
        zelt_irsz5b6b5b_full(src, INT32_MIN, none, INT32_MAX, INT32_MAX, &dst, UINT32_MAX, UINT32_MAX);
    }
    EXPECT_EQ(dst, 7);
}
