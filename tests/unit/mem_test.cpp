// SPDX-License-Identifier: MIT
#include "zelt/mem.h"

#include <algorithm>
#include <climits>
#include <gtest/gtest.h>
#include <vector>

namespace {

using bytes = std::vector<uint8_t>;

// Rows closer together than what is copied of each: each row lies over the end of the one before.
TEST(mem, samples_left_over_are_copied_twice_as_far) {
    std::vector<int16_t> from(200), to(200, -1);
    for (int i = 0; i < 200; ++i) from[static_cast<size_t>(i)] = static_cast<int16_t>(i);
    zelt_mcpy_pic_16(to.data(), from.data(), 40, 80, 40, 2);
    for (const auto& [at, sample] : {std::pair{39, 39}, {40, 80}, {87, 127}, {88, -1}})
        EXPECT_EQ(to[static_cast<size_t>(at)], sample) << at;
}

TEST(mem, nothing_is_copied_without_rows_or_columns) {
    uint8_t byte = 7;
    int16_t sample = 7;
    const uint8_t from[2] = {};
    const int16_t from_16[2] = {};
    for (const auto& [w, h] : {std::pair{0, 1}, {1, 0}, {-5, 9}, {9, -5}, {INT_MIN, INT_MIN}, {INT_MIN, 1}}) {
        zelt_mcpy_pic(&byte, from, 1, 1, w, h);
        zelt_mcpy_pic(&byte, from, w, w, w, h);
        zelt_mcpy_pic_16(&sample, from_16, 1, 1, w, h);
        zelt_mcpy_pic_16(&sample, from_16, w, w, w, h);
    }
    for (const int stride : {1, INT_MAX, INT_MIN}) {
        zelt_mcpy_blk(&byte, from, stride, stride, 8, 0);
        zelt_mcpy_blk_16(&sample, from_16, stride, stride, 8, -1);
    }
    EXPECT_EQ(byte, 7);
    EXPECT_EQ(sample, 7);
}

// Sizes at which processors and the C library have other ways.
TEST(mem, long_runs_at_all_addresses) {
    for (const int size : {1 << 15, (1 << 15) + 160, 100000, (1 << 19) + 288, 700000})
        for (const int at : {0, 1, 2, 3, 30}) {
            bytes memory(static_cast<size_t>(size) + 256, 0xee), expected = memory;
            for (int i = 0; i < size; ++i)
                expected[static_cast<size_t>(at + i)] =
                    static_cast<uint8_t>(i < size / 32 * 32 ? 0x1a2b3c4d >> i % 4 * 8 : 0x4d);
            zelt_mset_x32ax4(&memory[static_cast<size_t>(at)], 0x1a2b3c4d, size);
            ASSERT_TRUE(memory == expected) << size << " at " << at;
            std::fill(expected.begin() + at, expected.begin() + at + size, 0x77);
            zelt_mset_x64a(&memory[static_cast<size_t>(at)], 0x177, size);
            ASSERT_TRUE(memory == expected) << size << " at " << at;
        }
}

}  // namespace
