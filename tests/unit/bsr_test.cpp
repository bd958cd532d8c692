// Sequences of calls are those of fuzz/bsr.cpp; here are literal records, and refills that fail.
#include "zelt/bsr.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace {

using bytes = std::vector<uint8_t>;

int refills_left;

int32_t failing_refill(ZELT_BSR* bs, int32_t byte) { return refills_left-- > 0 ? zelt_bsr_flush(bs, byte) : -7; }

}  // namespace

TEST(bsr, empty_buffers) {
    const uint8_t data = 0xA5;
    for (const uint8_t* buffer : {&data, static_cast<const uint8_t*>(nullptr)})
        for (int size : {0, -1, INT32_MIN}) {
            ZELT_BSR bs;
            zelt_bsr_init(&bs, buffer, size, nullptr);
            EXPECT_EQ(zelt_bsr_read(&bs, 8), ~0u);
            EXPECT_EQ(zelt_bsr_peek(&bs, 8), 0u);
            EXPECT_EQ(bs.cur, buffer);
        }
}

TEST(bsr, unary_codes_at_the_end_of_the_cache) {
    const bytes data = {0, 0, 0, 0x07, 0x7F, 0, 0, 0, 0};
    ZELT_BSR bs;
    zelt_bsr_init(&bs, data.data(), 9, nullptr);
    zelt_bsr_skip(&bs, 29);
    EXPECT_EQ(zelt_bsr_read_un(&bs), 3u);
    EXPECT_EQ(bs.leftbits, -1);
    const ZELT_BSR owing = bs;
    EXPECT_EQ(zelt_bsr_read(&bs, 7), 0x7Fu);  // the zero owed is the first bit of the refill
    EXPECT_EQ(bs.leftbits, 24);

    // With a zero owed every call follows its formula to the letter.
    EXPECT_EQ((bs = owing, zelt_bsr_read1(&bs)), 0);
    EXPECT_EQ(bs.leftbits, -2);
    EXPECT_EQ((bs = owing, zelt_bsr_peek(&bs, 8)), 0u);
    EXPECT_EQ(bs.leftbits, 31);
    EXPECT_EQ(bs.code, 0u);
    EXPECT_EQ((bs = owing, zelt_bsr_read_ue(&bs)), 0u);  // -1 and one leading zero count as none
    EXPECT_EQ(bs.leftbits, 31);
    EXPECT_EQ((bs = owing, zelt_bsr_read_un(&bs)), ~0u);
    EXPECT_EQ((bs = owing, zelt_bsr_read_tu(&bs, 4)), ~0u);
    EXPECT_EQ((bs = owing, zelt_bsr_read(&bs, 32)), 0u);  // 33 bits at once: the shifts give 0
    EXPECT_EQ(bs.leftbits, -1);

    // A full cache is not looked at.
    zelt_bsr_init(&bs, data.data(), 9, nullptr);
    zelt_bsr_flush(&bs, 4);
    const ZELT_BSR full = bs;
    EXPECT_EQ(zelt_bsr_read_un(&bs), 32u);
    EXPECT_EQ(bs.leftbits, 31);
    EXPECT_EQ((bs = full, zelt_bsr_read_tu(&bs, 32)), 32u);
    EXPECT_EQ(bs.leftbits, 0);
    EXPECT_EQ((bs = full, zelt_bsr_read_tu(&bs, 33)), 32u);
    EXPECT_EQ(bs.cur - bs.beg, 8);
    const bytes ones(8, 0xFF);
    zelt_bsr_init(&bs, ones.data(), 8, nullptr);
    zelt_bsr_flush(&bs, 4);
    EXPECT_EQ(zelt_bsr_read_tu(&bs, 35), 35u);
    EXPECT_EQ(bs.leftbits, -3);  // all 35 bits are taken from the second cache
}

TEST(bsr, a_refill_may_fail_at_any_point) {
    const bytes zeros(16, 0);
    for (int good = 0; good < 3; ++good)
        for (int used = 0; used < 32; ++used) {
            ZELT_BSR bs;
            zelt_bsr_init(&bs, zeros.data(), 16, failing_refill);
            refills_left = good + 1;
            for (int i = 0; i < good; ++i) zelt_bsr_read(&bs, 32);
            if (used) zelt_bsr_read(&bs, used);
            refills_left = 0;
            const ZELT_BSR before = bs;
            const bool empty = bs.leftbits == 0;
            EXPECT_EQ(zelt_bsr_read(&bs, 32), ~0u);
            EXPECT_EQ(zelt_bsr_skip(&bs, 32), -7);
            EXPECT_EQ(zelt_bsr_skip_peek(&bs, 32, 8), 0u);
            EXPECT_EQ(bs.leftbits, before.leftbits);  // as the callback left it
            EXPECT_EQ(bs.cur, before.cur);
            EXPECT_EQ(zelt_bsr_peek(&bs, 32), 0u);
            EXPECT_EQ((bs = before, zelt_bsr_read_ue(&bs)), ~1u);
            EXPECT_EQ((bs = before, zelt_bsr_read_se(&bs)), 1);
            EXPECT_EQ((bs = before, zelt_bsr_read1(&bs)), empty ? -1 : 0);
            EXPECT_EQ((bs = before, zelt_bsr_read_te(&bs, 1)), empty ? 2u : 1u);
        }
}

TEST(bsr, counts_leading_zeros) {
    for (const auto& [v, zeros] : {std::pair{0u, 32u}, {1u, 31u}, {0x10000u, 15u}, {~0u, 0u}})
        EXPECT_EQ(zelt_bsr_clz_in_code(v), zeros);
}
