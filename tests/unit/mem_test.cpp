#include "zelt/mem.h"

#include <algorithm>
#include <climits>
#include <gtest/gtest.h>
#include <vector>

namespace {

using bytes = std::vector<uint8_t>;

/// How many bytes a fill changes, all of them at the start
template <class F> std::ptrdiff_t filled(F f) {
    bytes memory(1024, 0xee);
    f(memory.data());
    const auto end = std::find(memory.begin(), memory.end(), 0xee);
    EXPECT_EQ(std::count(end, memory.end(), 0xee), memory.end() - end);
    return end - memory.begin();
}

TEST(mem, fills_count_in_their_own_steps) {
    EXPECT_EQ(filled([](void* p) { zelt_mset_x128(p, 1, 1); }), 128);
    EXPECT_EQ(filled([](void* p) { zelt_mset_x128(p, 1, 129); }), 256);
    EXPECT_EQ(filled([](void* p) { zelt_mset_x128(p, 1, INT_MIN); }), 128);
    EXPECT_EQ(filled([](void* p) { zelt_mset_x64(p, 1, 300); }), 256);
    EXPECT_EQ(filled([](void* p) { zelt_mset_x64(p, 1, 127); }), 0);
    EXPECT_EQ(filled([](void* p) { zelt_mset_x64a(p, 1, 100); }), 100);
    EXPECT_EQ(filled([](void* p) { zelt_mset_x32(p, 1, 31); }), 0);
    EXPECT_EQ(filled([](void* p) { zelt_mset_x32ax4(p, 1, -5); }), 32);
    EXPECT_EQ(filled([](void* p) { zelt_mclr_x64(p, 64); }), 256);
    EXPECT_EQ(filled([](void* p) { zelt_mclr_x64(p, 127); }), 256);
    EXPECT_EQ(filled([](void* p) { zelt_mset16(static_cast<int16_t*>(p), 0x101, 23); }), 46);
}

TEST(mem, a_tail_of_words_is_its_low_byte) {
    bytes memory(36);
    zelt_mset_x32ax4(memory.data(), 0x01020304, 36);
    EXPECT_EQ(bytes(memory.begin() + 28, memory.end()), (bytes{4, 3, 2, 1, 4, 4, 4, 4}));
}

TEST(mem, samples_left_over_are_copied_twice_as_far) {
    std::vector<int16_t> from(200), to(200, -1);
    for (int i = 0; i < 200; ++i) from[static_cast<size_t>(i)] = static_cast<int16_t>(i);
    zelt_mcpy_pic_16(to.data(), from.data(), 40, 40, 40, 1);  // 64 bytes, and 16 samples for the 16 bytes left
    EXPECT_EQ(std::find(to.begin(), to.end(), -1) - to.begin(), 48);

    // Rows closer together than that: each row is over the end of the one before.
    std::fill(to.begin(), to.end(), -1);
    zelt_mcpy_pic_16(to.data(), from.data(), 40, 80, 40, 2);
    EXPECT_EQ(to[39], 39);
    EXPECT_EQ(to[40], 80);
    EXPECT_EQ(to[87], 127);
    EXPECT_EQ(to[88], -1);
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
    zelt_mcpy_blk(&byte, from, 1, 1, 8, 0);
    zelt_mcpy_blk_16(&sample, from_16, 1, 1, 8, -1);
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

TEST(mem, large_areas) {
    bytes from(1100 * 1000 + 3), to(1111 * 1000, 0xee), expected = to;
    for (size_t i = 0; i < from.size(); ++i) from[i] = static_cast<uint8_t>(i * i >> 7);
    for (size_t y = 0; y < 1000; ++y)
        std::copy_n(from.begin() + 3 + static_cast<std::ptrdiff_t>(y) * 1100, 1077,
                    expected.begin() + 5 + static_cast<std::ptrdiff_t>(y) * 1111);
    zelt_mcpy_pic(&to[5], &from[3], 1111, 1100, 1077, 1000);
    EXPECT_TRUE(to == expected);
}

}  // namespace
