// What the rows of the block metrics leave open: documented values, the limits of the vector forms, second names.
#include "kernels/kernel.h"
#include "zelt/sad.h"

#include <climits>
#include <gtest/gtest.h>
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
        std::vector<std::vector<u8>> memory;
        std::vector<view> views;
        for (const operand& o : operands) memory.emplace_back(static_cast<std::size_t>(o.width * o.rows * o.element));
        for (std::size_t i = 0; i < operands.size(); ++i)
            views.push_back({memory[i].data(), operands[i].width * operands[i].element});
        const auto put = [&](std::size_t operand, int place, int value) {
            u8* p = memory[operand].data() + place * operands[operand].element;
            p[0] = static_cast<u8>(value);
            if (operands[operand].element == 2) p[1] = static_cast<u8>(value >> 8);
        };
        const int places = operands[0].width * operands[0].rows;
        for (const auto& [a, b] : pairs)
            for (int round = 0; round < 4; ++round) {
                const int limit = round % 2 ? 4095 : 255;
                for (std::size_t i = 0; i < operands.size(); ++i)
                    for (int place = 0; place < places; ++place)
                        put(i, place, operands[i].element == 2 ? static_cast<int>(random()) & limit : random() & 255);
                const int place = static_cast<int>(random() % static_cast<unsigned>(places));
                put(0, place, a);
                if (operands.size() == 2) put(1, place, b);
                ASSERT_EQ(k.call(k.exported, s, views.data()), k.model(s, views.data()))
                    << k.name << ", " << a << " against " << b << " at " << place;
            }
    }
}

TEST(metrics, known_values) {
    const std::vector<u8> black(64 * 64, 0), white(64 * 64, 255);
    EXPECT_EQ(zelt_sad64x64(white.data(), black.data(), 64, 64), 1044480u);
    EXPECT_EQ(zelt_ssd(4, 4, black.data(), white.data(), 64, 64), 1040400u);
    EXPECT_EQ(zelt_sad(12, 8, white.data(), black.data(), 64, 64), 16u * 8 * 255);
    EXPECT_EQ(zelt_ssd(12, 1, white.data(), black.data(), 64, 64), 64u * 65025);
    EXPECT_EQ(zelt_sad_eskip(16, 16, white.data(), black.data(), 64, 64, 0), 16 * 255);
    EXPECT_EQ(zelt_sad_eskip(16, 16, white.data(), black.data(), 64, 64, 16 * 255), 2 * 16 * 255);

    const std::vector<s16> zeros(64, 0), twelve_bits(64, 4095), minus(64, -1), ones(64, 1);
    EXPECT_EQ(zelt_sad8x8_16(twelve_bits.data(), zeros.data(), 8, 8), 262080u);
    EXPECT_EQ(zelt_sad8x8_bi_16(twelve_bits.data(), zeros.data(), 8, 8), 262080u);
    EXPECT_EQ(zelt_sad8x8_bi(minus.data(), black.data(), 8, 64), 64u);
    EXPECT_EQ(zelt_ssd_16(4, 3, ones.data(), zeros.data(), 8, 8), 8u);
    EXPECT_EQ(zelt_hadamard4x4(ones.data()), 8);
    EXPECT_EQ(zelt_satd8x8_bi_16(ones.data(), zeros.data(), 8, 8), 16);
    std::vector<s16> single(64, 0);
    single[5] = 1;
    EXPECT_EQ(zelt_hadamard4x4(single.data()), 8);
    EXPECT_EQ(zelt_satd8x8_16(single.data(), zeros.data(), 8, 8), 16);
    single[5] = 3;
    EXPECT_EQ(zelt_satd8x8_bi(single.data(), black.data(), 8, 64), 48);

    s16 d[16];
    zelt_diff4x4_bi(minus.data(), white.data(), 8, 64, 4, d);
    EXPECT_EQ(d[0], -256);
    const s16 high[4] = {32767, 0, 0, 0}, low[4] = {-32768, 0, 0, 0};
    zelt_diff2x2_16(high, low, 2, 2, 2, d);
    EXPECT_EQ(d[0], -1);
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
    using kernel_16 = decltype(&zelt_sad4x8_16);
    // through volatile, as a compiler may take two names for two functions
    volatile kernel_16 pairs[][2] = {{zelt_sad4x8_16, zelt_sad4x8_bi_16},     {zelt_sad8x4_16, zelt_sad8x4_bi_16},
                                     {zelt_sad8x16_16, zelt_sad8x16_bi_16},   {zelt_sad16x8_16, zelt_sad16x8_bi_16},
                                     {zelt_sad16x32_16, zelt_sad16x32_bi_16}, {zelt_sad32x16_16, zelt_sad32x16_bi_16},
                                     {zelt_sad32x64_16, zelt_sad32x64_bi_16}};
    for (auto& pair : pairs) {
        const kernel_16 first = pair[0], second = pair[1];
        EXPECT_EQ(first, second);
    }
}
}  // namespace zelt::test
