// SPDX-License-Identifier: MIT
// Sequences of calls are those of fuzz/bsw.cpp.
#include "zelt/bsw.h"

#include <bit>
#include <gtest/gtest.h>
#include <vector>

namespace {

using bytes = std::vector<uint8_t>;

constexpr uint8_t untouched = 0xEE;

}  // namespace

TEST(bsw, the_last_byte_of_the_buffer_stays_free) {
    bytes buffer(8, untouched);
    ZELT_BSW bs;
    zelt_bsw_init(&bs, buffer.data(), 4, nullptr);
    EXPECT_EQ(zelt_bsw_write(&bs, 0x123456, 24), 0);
    EXPECT_EQ(zelt_bsw_write(&bs, 0x78, 8), -1);
    EXPECT_EQ(bs.leftbits, 8);  // merged into the cache, but not counted
    EXPECT_EQ(bs.code, 0x12345678u);
    EXPECT_EQ(bs.cur, buffer.data());

    zelt_bsw_init(&bs, buffer.data(), 5, nullptr);
    EXPECT_EQ(zelt_bsw_write(&bs, 0x12345678, 32), 0);
    EXPECT_EQ(bs.leftbits, 32);
    EXPECT_EQ(bs.cur - buffer.data(), 4);
    EXPECT_EQ(zelt_bsw_sink(&bs), 0);
    EXPECT_EQ(zelt_bsw_write(&bs, 5, 3), 0);
    EXPECT_EQ(zelt_bsw_sink(&bs), -1);
    EXPECT_EQ(bs.leftbits, 29);
    EXPECT_EQ(buffer, bytes({0x12, 0x34, 0x56, 0x78, untouched, untouched, untouched, untouched}));

    buffer.assign(8, untouched);
    zelt_bsw_init(&bs, buffer.data(), 2, nullptr);
    zelt_bsw_write(&bs, 5, 3);
    EXPECT_EQ(zelt_bsw_sink(&bs), 0);
    EXPECT_EQ(buffer, bytes({0xA0, untouched, untouched, untouched, untouched, untouched, untouched, untouched}));
    zelt_bsw_init(&bs, buffer.data(), 1, nullptr);
    zelt_bsw_write(&bs, 5, 3);
    EXPECT_EQ(zelt_bsw_sink(&bs), -1);
}

TEST(bsw, nothing_is_stored_past_the_buffer) {
    for (int size = 0; size < 10; ++size) {
        bytes buffer(16, untouched);
        ZELT_BSW bs;
        zelt_bsw_init(&bs, buffer.data(), size, nullptr);
        int accepted = 0;
        while (accepted < 200 && zelt_bsw_write1(&bs, 1) == 0) ++accepted;
        EXPECT_EQ(accepted, (size + 3) / 4 * 32 + 31);  // each full cache is flushed while `cur` is in the buffer
        EXPECT_EQ(bs.leftbits, 0);
        EXPECT_EQ(zelt_bsw_sink(&bs), -1);
        EXPECT_EQ(zelt_bsw_deinit(&bs), 0);
        EXPECT_EQ(bs.cur - bs.beg, (size + 3) / 4 * 4 + 4);  // as if there had been room
        for (int i = 0; i < 16; ++i) EXPECT_EQ(buffer[static_cast<size_t>(i)], i < size ? 0xFF : untouched);
    }
}

TEST(bsw, lengths_of_codes) {
    for (uint32_t value = 0; value < 65535; ++value)
        ASSERT_EQ(zelt_bsw_size_ue(value), 2 * std::bit_width(value + 1) - 1) << value;
    EXPECT_EQ(zelt_bsw_size_se(128), 17);
    EXPECT_EQ(zelt_bsw_size_se(-127), 15);
}
