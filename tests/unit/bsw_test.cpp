#include "zelt/bsw.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

using bytes = std::vector<uint8_t>;

std::string binary(uint64_t v, int len) {
    std::string s;
    for (int i = len - 1; i >= 0; --i) s += v >> i & 1 ? '1' : '0';
    return s;
}

std::string ue_code(uint32_t value) {
    int k = 0;
    while ((uint64_t{value} + 1) >> (k + 1)) ++k;
    return binary(uint64_t{value} + 1, 2 * k + 1);
}

uint32_t code_number(int v) { return static_cast<uint32_t>(v <= 0 ? -2 * v : 2 * v - 1); }

/// The writer as a string of bits, of which the first `stored` bytes have left the cache.
struct model {
    std::string bits;
    size_t stored = 0;

    void put(const std::string& more) {
        bits += more;
        while (bits.size() >= 8 * stored + 32) stored += 4;
    }
    void sink() {
        bits.resize((bits.size() + 7) / 8 * 8, '0');
        stored = bits.size() / 8;
    }
    uint32_t cache() const {
        std::string s = bits.substr(8 * stored);
        s.resize(32, '0');
        return static_cast<uint32_t>(std::stoul(s, nullptr, 2));
    }
    uint8_t byte(size_t i) const { return static_cast<uint8_t>(std::stoul(bits.substr(8 * i, 8), nullptr, 2)); }
};

constexpr uint8_t untouched = 0xEE;
int flushes;

/// The default flush as a caller would write it.
int32_t counting_flush(ZELT_BSW* bs) {
    ++flushes;
    for (int n = (39 - bs->leftbits) >> 3; n > 0; --n, bs->code <<= 8)
        *bs->cur++ = static_cast<uint8_t>(bs->code >> 24);
    return 5;
}

}  // namespace

TEST(bsw, mixed_calls_follow_a_string_of_bits) {
    std::mt19937 rng(3);
    for (int round = 0; round < 400; ++round) {
        bytes buffer(1000, untouched);
        ZELT_BSW bs;
        model m;
        zelt_bsw_init(&bs, buffer.data(), 1000, round & 1 ? counting_flush : nullptr);
        for (int call = 0; call < 200; ++call) {
            const uint32_t val = rng(), small = val >> (16 + rng() % 16);
            const int len = static_cast<int>(rng() % 32 + 1), kind = static_cast<int>(rng() % 10);
            const int sval = static_cast<int>(small >> 1) * (val & 1 ? 1 : -1);
            if (kind < 4) {
                ASSERT_EQ(zelt_bsw_write(&bs, val, len), 0);
                m.put(binary(val, len));
            } else if (kind == 4) {
                ASSERT_EQ(zelt_bsw_write1(&bs, static_cast<int32_t>(val)), 0);
                m.put(binary(val, 1));
            } else if (kind == 5) {
                zelt_bsw_write_ue(&bs, small);
                m.put(ue_code(small));
            } else if (kind == 6) {
                zelt_bsw_write_se(&bs, sval);
                m.put(ue_code(code_number(sval)));
            } else if (kind == 7) {
                zelt_bsw_write_te(&bs, small, 2);
                m.put(ue_code(small));
            } else if (kind == 8) {
                zelt_bsw_write_te(&bs, val & 1, 1);
                zelt_bsw_write_te(&bs, val, 0);
                m.put(val & 1 ? "0" : "1");
            } else if (len == 1) {
                ASSERT_EQ(zelt_bsw_sink(&bs), 0);
                m.sink();
            }
            ASSERT_EQ(bs.cur - bs.beg, static_cast<std::ptrdiff_t>(m.stored)) << "round " << round << ", call " << call;
            ASSERT_EQ(bs.leftbits, 32 - static_cast<int>(m.bits.size() - 8 * m.stored));
            ASSERT_EQ(bs.code, m.cache());
        }
        EXPECT_EQ(zelt_bsw_deinit(&bs), round & 1 ? 5 : 0);
        m.sink();
        ASSERT_EQ(bs.cur - bs.beg, static_cast<std::ptrdiff_t>(m.stored));
        for (size_t i = 0; i < buffer.size(); ++i) ASSERT_EQ(buffer[i], i < m.stored ? m.byte(i) : untouched);
    }
}

TEST(bsw, exp_golomb_codes_of_every_value) {
    std::string bits;
    for (uint32_t v = 0; v < 65535; ++v) bits += ue_code(v);
    bytes ue(bits.size() / 8 + 8), se(ue.size());
    ZELT_BSW u, s;
    zelt_bsw_init(&u, ue.data(), static_cast<int32_t>(ue.size()), nullptr);
    zelt_bsw_init(&s, se.data(), static_cast<int32_t>(se.size()), nullptr);
    for (uint32_t v = 0; v < 65535; ++v) {
        const int sval = static_cast<int>(v + 1) / 2 * (v & 1 ? 1 : -1);
        zelt_bsw_write_ue(&u, v);
        zelt_bsw_write_se(&s, sval);
        ASSERT_EQ(zelt_bsw_size_ue(v), static_cast<int>(ue_code(v).size()));
        ASSERT_EQ(zelt_bsw_size_se(sval), zelt_bsw_size_ue(v));
    }
    zelt_bsw_sink(&u);
    zelt_bsw_sink(&s);
    bits.resize((bits.size() + 7) / 8 * 8, '0');
    ASSERT_EQ(u.cur - u.beg, static_cast<std::ptrdiff_t>(bits.size() / 8));
    EXPECT_EQ(ue, se);
    for (size_t i = 0; i < bits.size() / 8; ++i)
        ASSERT_EQ(ue[i], static_cast<uint8_t>(std::stoul(bits.substr(8 * i, 8), nullptr, 2)));
}

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

TEST(bsw, any_argument_is_harmless) {
    bytes buffer(64, untouched);
    for (int32_t n : {INT32_MIN, -256, -33, -1, 0, 33, 64, 255, 256, INT32_MAX})
        for (uint32_t v : {0u, 65535u, 65536u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
            ZELT_BSW bs;
            zelt_bsw_init(&bs, buffer.data(), 16, nullptr);
            for (int round = 0; round < 20; ++round) {
                zelt_bsw_write(&bs, v, n);
                zelt_bsw_write_ue(&bs, v);
                zelt_bsw_write_se(&bs, static_cast<int32_t>(v));
                zelt_bsw_write_te(&bs, v, n);
                zelt_bsw_write1(&bs, 1);
                zelt_bsw_sink(&bs);
                zelt_bsw_flush(&bs);
            }
            EXPECT_GT(zelt_bsw_size_ue(v), 0);
            EXPECT_GT(zelt_bsw_size_se(static_cast<int32_t>(v)), 0);
            for (size_t i = 16; i < buffer.size(); ++i) ASSERT_EQ(buffer[i], untouched);
        }
}

TEST(bsw, a_callers_flush_is_called_once_a_word) {
    bytes buffer(64);
    ZELT_BSW bs;
    flushes = 0;
    zelt_bsw_init(&bs, buffer.data(), 64, counting_flush);
    for (int i = 0; i < 7; ++i) zelt_bsw_write(&bs, 0, 16);
    EXPECT_EQ(flushes, 3);
    EXPECT_EQ(zelt_bsw_sink(&bs), 0);
    EXPECT_EQ(flushes, 4);
}
