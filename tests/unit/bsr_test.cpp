// SPDX-License-Identifier: MIT
// Sequences of calls are those of fuzz/bsr.cpp; here are literal records, and refills that fail.
#include "zelt/bsr.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

using bytes = std::vector<uint8_t>;

}  // namespace

TEST(bsr, empty_buffers) {
    for (int size : {0, -1, INT32_MIN}) {
        ZELT_BSR bs;
        zelt_bsr_init(&bs, nullptr, size, nullptr);
        EXPECT_EQ(zelt_bsr_read(&bs, 8), ~0u);
        EXPECT_EQ(zelt_bsr_peek(&bs, 8), 0u);
        EXPECT_EQ(bs.cur, nullptr);
    }
}

TEST(bsr, unary_codes_at_the_end_of_the_cache) {
    const bytes data = {0, 0, 0, 0x07, 0x7F, 0, 0, 0, 0};
    ZELT_BSR bs;
    zelt_bsr_init(&bs, data.data(), 9, nullptr);
    zelt_bsr_skip(&bs, 29);
    EXPECT_EQ(zelt_bsr_read_un(&bs), 3u);
    const ZELT_BSR owing = bs;
    zelt_bsr_init(&bs, data.data(), 9, nullptr);
    zelt_bsr_flush(&bs, 4);
    const ZELT_BSR full = bs;
    const bytes ones(8, 0xFF);
    zelt_bsr_init(&bs, ones.data(), 8, nullptr);
    zelt_bsr_flush(&bs, 4);
    const ZELT_BSR full_of_ones = bs;

    using call = uint32_t (*)(ZELT_BSR*, int32_t);
    const call read1 = [](ZELT_BSR* r, int32_t) { return static_cast<uint32_t>(zelt_bsr_read1(r)); };
    const call read_ue = [](ZELT_BSR* r, int32_t) { return zelt_bsr_read_ue(r); };
    const call read_un = [](ZELT_BSR* r, int32_t) { return zelt_bsr_read_un(r); };
    const call skip = [](ZELT_BSR* r, int32_t size) { return static_cast<uint32_t>(zelt_bsr_skip(r, size)); };
    const struct {
        const char* name;
        ZELT_BSR from;
        call f;
        int32_t size;
        uint32_t result, code;
        int32_t leftbits;
    } rows[] = {
        // With a zero owed every call follows its formula to the letter; the zero is the first bit of a refill.
        {"read", owing, zelt_bsr_read, 7, 0x7F, 0, 24},
        {"read 33 bits at once", owing, zelt_bsr_read, 32, 0, 0, -1},
        {"read1", owing, read1, 0, 0, 0, -2},
        {"peek", owing, zelt_bsr_peek, 8, 0, 0, 31},
        {"ue: -1 and one leading zero count as none", owing, read_ue, 0, 0, 0xFE000000, 31},
        {"un", owing, read_un, 0, ~0u, 0xFE000000, 31},
        {"tu", owing, zelt_bsr_read_tu, 4, ~0u, 0xFE000000, 31},
        // A full cache is not looked at.
        {"un", full, read_un, 0, 32, 0xFE000000, 31},
        {"tu of the cache", full, zelt_bsr_read_tu, 32, 32, 0, 0},
        {"tu of one more", full, zelt_bsr_read_tu, 33, 32, 0xFE000000, 31},
        {"tu: all 35 bits are taken from the second cache", full_of_ones, zelt_bsr_read_tu, 35, 35, 0, -3},
        {"skip: shifts by 64 give 0", full, skip, 96, ~31u, 0, -32},
    };
    for (const auto& row : rows) {
        bs = row.from;
        EXPECT_EQ(row.f(&bs, row.size), row.result) << row.name;
        EXPECT_EQ(bs.leftbits, row.leftbits) << row.name;
        EXPECT_EQ(bs.code, row.code) << row.name;
    }
}

TEST(bsr, a_refill_that_fails) {
    ZELT_BSR bs;
    zelt_bsr_init(&bs, nullptr, 0, [](ZELT_BSR*, int32_t) { return -7; });
    EXPECT_EQ(zelt_bsr_skip(&bs, 32), -7);
    EXPECT_EQ(zelt_bsr_read(&bs, 32), ~0u);
    EXPECT_EQ(zelt_bsr_skip_peek(&bs, 32, 8), 0u);
    EXPECT_EQ(zelt_bsr_read_ue(&bs), ~1u);
    EXPECT_EQ(zelt_bsr_clz_in_code(0x10000), 15u);
}
