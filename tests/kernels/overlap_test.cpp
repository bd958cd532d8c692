// SPDX-License-Identifier: MIT
// Converters whose source and destination share memory: the result must be that of working pixel by pixel, however the
// two lie, though neither the source planes nor the destination planes overlap each other.
#include "kernels/kernel.h"

#include <gtest/gtest.h>
#include <random>

using namespace zelt::test;

namespace {
/// Lays operands out one after another, each with its own gaps, and gives the first free byte.
std::size_t lay_out(const std::vector<operand>& all, bool written, std::size_t at, std::mt19937& random,
                    std::vector<std::size_t>& places, std::vector<std::ptrdiff_t>& strides) {
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i].written != written) continue;
        at += random() % 3 * static_cast<std::size_t>(all[i].element);
        strides[i] = (all[i].width + static_cast<std::ptrdiff_t>(random() % 5)) * all[i].element;
        places[i] = at;
        at += static_cast<std::size_t>(strides[i] * all[i].rows);
    }
    return at;
}
}  // namespace

TEST(overlap, pixel_order) {
    constexpr std::size_t size = 8192;
    std::mt19937 random(1);
    for (const kernel& k : all_kernels()) {
        if (!k.in_order) continue;
        for (int round = 0; round < (effort() ? 400 : 100); ++round) {
            const shape s = {1 + static_cast<int>(random() % 130), 1 + static_cast<int>(random() % 3)};
            const std::vector<operand> operands = k.operands(s);
            std::vector<std::size_t> places(operands.size());
            std::vector<std::ptrdiff_t> strides(operands.size());
            const std::size_t source_end = lay_out(operands, false, 2048, random, places, strides);
            std::size_t destination =
                round % 4 == 0 ? 2048 : 2048 - 512 + random() % (source_end - 2048 + 512);  // often the very same place
            destination -= destination % static_cast<std::size_t>(operands[0].element);     // words overlap whole
            lay_out(operands, true, destination, random, places, strides);

            std::vector<u8> memory(size);
            for (u8& byte : memory) byte = static_cast<u8>(random() & (operands[0].element == 2 ? 3 : 255));
            std::vector<u8> expected = memory;
            std::vector<view> views, expected_views;
            for (std::size_t i = 0; i < operands.size(); ++i) {
                views.push_back({&memory[places[i]], strides[i]});
                expected_views.push_back({&expected[places[i]], strides[i]});
            }
            k.call(k.exported, s, views.data());
            k.model(s, expected_views.data());
            ASSERT_EQ(memory, expected) << k.name << " " << s.w << "x" << s.h << ", destination at "
                                        << static_cast<int>(destination) - 2048 << " from the source";
        }
    }
}
