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

}  // namespace
