// SPDX-License-Identifier: MIT
// What the rows of the block metrics leave open: the limits of the vector forms, sizes below 1, second names.
#include "kernels/kernel.h"
#include "zelt/sad.h"

#include <climits>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <random>

namespace zelt::test {
// A vector form may do the usual range only and must notice what lies beyond: one pair of samples at the limits of the
// ranges, anywhere in a block that else stays below them.
TEST(metrics, single_large_difference) {
    const std::pair<int, int> pairs[] = {
        {4095, 0},       {0, 4096},    {4096, -1},      {16384, -16383}, {32766, 0},  {32767, 0},      {32767, -1},
        {32767, -2},     {-32768, 0},  {-32768, 1},     {-32768, 32767}, {-32768, 2}, {32767, -32768}, {32766, -32768},
        {-32767, 32767}, {-2, -32768}, {-32768, -4097}, {23170, -1},     {-4096, 0},  {255, -32768}};
    std::mt19937 random(1);
    for (const kernel& k : metric_kernels()) {
        const shape s = k.shapes.back();
        const std::vector<operand> operands = k.operands(s);
        if (operands[0].element != 2 || k.name.find(" full") != std::string::npos || operands.size() > 2) continue;
        const int places = operands[0].width * operands[0].rows;
        std::vector<std::vector<u8>> memory;
        std::vector<view> views;
        for (const operand& o : operands) memory.emplace_back(static_cast<std::size_t>(places * o.element));
        for (std::size_t i = 0; i < operands.size(); ++i)
            views.push_back({memory[i].data(), operands[i].width * operands[i].element});
        const auto put = [&](std::size_t i, int place, int value) {
            std::memcpy(&memory[i][static_cast<std::size_t>(place * operands[i].element)], &value,
                        static_cast<std::size_t>(operands[i].element));
        };
        for (const auto& [a, b] : pairs)
            for (const unsigned limit : {255, 4095, 255, 4095}) {
                for (std::size_t i = 0; i < operands.size(); ++i)
                    for (int place = 0; place < places; ++place) put(i, place, static_cast<int>(random() & limit));
                const int place = static_cast<int>(random() % static_cast<unsigned>(places));
                put(0, place, a);
                if (operands.size() == 2) put(1, place, b);
                ASSERT_EQ(k.call(k.exported, s, views.data()), k.model(s, views.data()))
                    << k.name << ", " << a << " against " << b << " at " << place;
            }
    }
}

// All tiles of the extremes, beside and above one another as far as their costs are summed up in 16 bits.
TEST(metrics, satd_of_extreme_tiles) {
    constexpr int w = 20, h = 64, four_rows = 4 * w;
    const u8 zeros[w] = {};
    u8 tiles[w * h];
    for (unsigned pattern = 0; pattern < 1 << 16; ++pattern) {
        for (unsigned i = 0; i < four_rows; ++i) tiles[i] = pattern >> (i / w * 4 + i % 4) & 1 ? 255 : 0;
        for (int i = four_rows; i < w * h; i += four_rows) std::memcpy(tiles + i, tiles, four_rows);
        ASSERT_EQ(zelt_satd(w, h, tiles, zeros, w, 0), w * h / 16 * zelt_satd4x4(tiles, zeros, w, 0)) << pattern;
    }
}

// Reads nothing, so that null will do.
TEST(metrics, sizes_below_one) {
    const u8* none = nullptr;
    const s16* none_16 = nullptr;
    for (const int n : {0, -1, INT_MIN}) {
        for (const shape s : {shape{16, n}, shape{8, n}}) {
            EXPECT_EQ(zelt_sad(s.w, s.h, none, none, 8, 8), 0u);
            EXPECT_EQ(zelt_ssd(s.w, s.h, none, none, 8, 8), 0u);
        }
        EXPECT_EQ(zelt_ssd_16(16, n, none_16, none_16, 8, 8), 0u);
        for (const shape s : {shape{16, n}, shape{n, 16}, shape{n, n}}) {
            EXPECT_EQ(zelt_sad_16(s.w, s.h, none_16, none_16, 8, 8), 0u);
            EXPECT_EQ(zelt_sad_eskip(s.w, s.h, none, none, 8, 8, -1), 0);
            EXPECT_EQ(zelt_satd(s.w, s.h, none, none, 8, 8), 0);
            EXPECT_EQ(zelt_satd_16(s.w, s.h, none_16, none_16, 8, 8), 0);
            zelt_diff(s.w, s.h, none, none, 8, 8, 8, nullptr);
            zelt_diff_16(s.w, s.h, none_16, none_16, 8, 8, 8, nullptr);
        }
    }
}

TEST(metrics, second_names) {
    std::map<std::string, function> exported;
    for (const kernel& k : metric_kernels()) exported[k.name] = k.exported;
    for (const std::string size : {"4x8", "8x4", "8x16", "16x8", "16x32", "32x16", "32x64"})
        EXPECT_EQ(exported["zelt_sad" + size + "_16"], exported["zelt_sad" + size + "_bi_16"]) << size;
}
}  // namespace zelt::test
