#include "zelt/bsr.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

using bytes = std::vector<uint8_t>;

/// A copy that ends where its memory ends, so that sanitizers see a read past it.
bytes exact(const bytes& b) { return {b.begin(), b.end()}; }

std::string to_bits(const bytes& data) {
    std::string bits;
    for (uint8_t b : data)
        for (int i = 7; i >= 0; --i) bits += b >> i & 1 ? '1' : '0';
    return bits;
}

bytes to_bytes(std::string bits) {
    bits.resize((bits.size() + 7) / 8 * 8, '0');
    bytes data;
    for (size_t i = 0; i < bits.size(); i += 8)
        data.push_back(static_cast<uint8_t>(std::stoul(bits.substr(i, 8), nullptr, 2)));
    return data;
}

std::string ue_code(uint32_t value) {
    std::string info;
    for (uint64_t x = uint64_t{value} + 1; x; x >>= 1) info.insert(info.begin(), x & 1 ? '1' : '0');
    return std::string(info.size() - 1, '0') + info;
}

/// The default refill as a caller would write it; one for escaped streams drops the third byte of 00 00 03.
template <bool Escaped> int32_t own_refill(ZELT_BSR* bs, int32_t byte) {
    bs->code = 0;
    bs->leftbits = 0;
    for (; bs->cur <= bs->end && bs->leftbits < 8 * byte; ++bs->cur) {
        if (Escaped && bs->cur - bs->beg >= 2 && bs->cur[-2] == 0 && bs->cur[-1] == 0 && *bs->cur == 3) continue;
        bs->code |= static_cast<uint32_t>(*bs->cur) << (24 - bs->leftbits);
        bs->leftbits += 8;
    }
    return bs->leftbits ? 0 : -1;
}
constexpr zelt_bsr_flush_fn copying_refill = own_refill<false>, unescaping_refill = own_refill<true>;

/// The reader as a position in a string of bits, with the bytes loaded so far.
struct model {
    std::string bits;
    int loaded = 0, pos = 0;  // both in bits

    int left() const { return loaded - pos; }
    int total() const { return static_cast<int>(bits.size()); }
    char at(int i) const { return i < total() ? bits[static_cast<size_t>(i)] : '0'; }
    uint32_t number(int from, int count) const {
        uint32_t v = 0;
        for (int i = 0; i < count; ++i) v = v << 1 | static_cast<uint32_t>(at(from + i) - '0');
        return v;
    }
    uint32_t cache() const {
        uint32_t v = 0;
        for (int i = 0; i < left(); ++i) v |= static_cast<uint32_t>(at(pos + i) - '0') << (31 - i);
        return v;
    }
    bool load(int n = 4) {
        const bool some = loaded < total();
        loaded = std::min(total(), loaded + 8 * n);
        return some;
    }
    bool fetch(int size) {  // what read, skip and the rest of a codeword do
        if (left() >= size || load()) return true;
        pos = loaded;
        return false;
    }
    uint32_t read(int size) {
        const int from = std::min(pos, loaded);  // a zero owed by a unary code comes first
        if (!fetch(size)) return ~0u;
        pos += size;
        return number(from, pos - from);
    }
    int skip(int size) { return fetch(size) ? (pos += size, left()) : -1; }
    uint32_t peek(int size) {
        if (left() < size) load((32 - left()) / 8);
        return number(pos, size);
    }
    int read1() {
        if (left() == 0 && !load()) return -1;
        return at(pos++) - '0';
    }
    uint32_t align(int& n) {
        n = left() & 7;
        pos += n;
        return number(pos - n, n);
    }
    int zeros() const {
        int z = 0;
        while (pos + z < total() && at(pos + z) == '0') ++z;
        return z;
    }
    uint32_t read_ue() {
        const int z = zeros(), size = 2 * z + 1;
        bool ok = true;
        if (cache() == 0) load();
        if (pos + z >= total() || (pos + size > loaded && !load())) ok = false;
        if (!ok)
            pos = loaded;
        else
            pos += size;
        return ok ? number(pos - size, size) - 1 : ~1u;
    }
    int run() const {  // ones in the cache
        int n = 0;
        while (n < left() && at(pos + n) == '1') ++n;
        return n;
    }
    uint32_t read_un() {
        int base = 0;
        if (left() == 0 || left() == 32) {
            base = left();
            pos = loaded;
            load();
        }
        const int n = run();
        pos += n + 1;
        return static_cast<uint32_t>(base + n);
    }
    uint32_t read_tu(int max) {
        int base = 0;
        if (left() == 0 || left() == 32) {
            base = left();
            if (base >= max) return pos += max, static_cast<uint32_t>(max);
            pos = loaded;
            load();
        }
        const int n = run(), count = base + n;
        pos += count <= max ? n + 1 : max;
        return static_cast<uint32_t>(std::min(count, max));
    }
};

int32_t signed_of(uint32_t k) {
    if (k == ~1u) return 1;  // the error of read_ue
    return static_cast<int32_t>(k & 1 ? (k + 1) / 2 : 0 - k / 2);
}

/// Makes one random call on both and compares its results.
void step(ZELT_BSR& bs, model& m, std::mt19937& rng) {
    const auto pick = [&](int low, int high) { return std::uniform_int_distribution(low, high)(rng); };
    int kind = pick(0, 11);
    if (kind >= 7 && kind <= 9 && m.zeros() > 15) kind = 0;  // no codeword of the supported range
    if (m.left() < 0) kind = 0;                              // a unary code has stopped at the cache's end
    const int size = pick(m.left() < 0, m.left() < 0 ? 31 : 32), more = pick(1, 32);
    int got_bits = 0, want_bits = 0;
    switch (kind) {
    case 0: ASSERT_EQ(zelt_bsr_read(&bs, size), m.read(size)); break;
    case 1: ASSERT_EQ(zelt_bsr_skip(&bs, size), m.skip(size)); break;
    case 2: ASSERT_EQ(zelt_bsr_peek(&bs, more), m.peek(more)); break;
    case 3: {
        const uint32_t got = zelt_bsr_skip_peek(&bs, size, more);
        ASSERT_EQ(got, m.fetch(size) ? (m.pos += size, m.peek(more)) : 0);
        break;
    }
    case 4: ASSERT_EQ(zelt_bsr_read1(&bs), m.read1()); break;
    case 5:
        zelt_bsr_skip_align8(&bs);
        m.align(want_bits);
        break;
    case 6:
        ASSERT_EQ(zelt_bsr_read_align8(&bs, size & 1 ? &got_bits : nullptr), m.align(want_bits));
        if (size & 1) {
            ASSERT_EQ(got_bits, want_bits);
        }
        break;
    case 7: ASSERT_EQ(zelt_bsr_read_ue(&bs), m.read_ue()); break;
    case 8: ASSERT_EQ(zelt_bsr_read_se(&bs), signed_of(m.read_ue())); break;
    case 9: {
        const int max = size % 3;
        ASSERT_EQ(zelt_bsr_read_te(&bs, max), max == 0   ? 0
                                              : max == 1 ? static_cast<uint32_t>(1 - m.read1())
                                                         : m.read_ue());
        break;
    }
    case 10: ASSERT_EQ(zelt_bsr_read_un(&bs), m.read_un()); break;
    case 11: ASSERT_EQ(zelt_bsr_read_tu(&bs, more), m.read_tu(more)); break;
    }
    ASSERT_EQ(bs.leftbits, m.left());
    ASSERT_EQ(bs.code, m.cache());
    ASSERT_EQ(bs.cur - bs.beg, m.loaded / 8);
}

int refills_left;

int32_t failing_refill(ZELT_BSR* bs, int32_t byte) { return refills_left-- > 0 ? zelt_bsr_flush(bs, byte) : -7; }

}  // namespace

TEST(bsr, mixed_calls_follow_a_string_of_bits) {
    std::mt19937 rng(1);
    for (int round = 0; round < 3000; ++round) {
        bytes data(round < 1000 ? rng() % 13 : 100 + rng() % 200);
        const int fill = round % 3;  // random, mostly ones, mostly zeros
        for (auto& b : data)
            b = static_cast<uint8_t>(fill == 0 ? rng() : fill == 1 ? rng() | rng() | rng() : rng() & rng());
        data = exact(data);
        ZELT_BSR bs;
        model m{to_bits(data)};
        const uint8_t none = 0, *start = data.empty() ? &none : data.data();
        zelt_bsr_init(&bs, start, static_cast<int32_t>(data.size()), round & 1 ? copying_refill : nullptr);
        for (int call = 0; m.pos <= m.total() + 1 && call < 400; ++call) {
            ASSERT_NO_FATAL_FAILURE(step(bs, m, rng)) << "round " << round << ", call " << call;
            if (m.left() < 0 && m.loaded == m.total()) break;  // the data ended within the last call
        }
    }
}

TEST(bsr, exp_golomb_codes_of_every_value) {
    std::string bits;
    for (uint32_t v = 0; v < 65535; ++v) bits += ue_code(v);
    const bytes data = to_bytes(bits);
    for (auto refill : {zelt_bsr_flush_fn{}, zelt_bsr_flush_fn{copying_refill}}) {
        ZELT_BSR bs, se;
        zelt_bsr_init(&bs, data.data(), static_cast<int32_t>(data.size()), refill);
        se = bs;
        for (uint32_t v = 0; v < 65535; ++v) {
            ASSERT_EQ(zelt_bsr_read_ue(&bs), v);
            ASSERT_EQ(zelt_bsr_read_se(&se), signed_of(v));
        }
        EXPECT_EQ((bs.cur - bs.beg) * 8 - bs.leftbits, static_cast<std::ptrdiff_t>(bits.size()));
    }
}

TEST(bsr, longer_codewords_stay_within_the_buffer) {
    for (size_t zeros = 16; zeros < 100; ++zeros)
        for (size_t skipped = 0; skipped < 40; ++skipped) {
            const bytes data = exact(to_bytes(std::string(skipped, '1') + std::string(zeros, '0') + "1"));
            ZELT_BSR bs;
            zelt_bsr_init(&bs, data.data(), static_cast<int32_t>(data.size()), nullptr);
            for (size_t i = 0; i < skipped; ++i) zelt_bsr_read1(&bs);
            for (int i = 0; i < 5; ++i) zelt_bsr_read_ue(&bs);
            EXPECT_LE(bs.cur, bs.end + 1);
        }
}

TEST(bsr, end_of_data) {
    const bytes data = exact({0xA5});
    ZELT_BSR bs;
    // A read that the data cannot fill: zeros below, and leftbits counts what is missing. read1 goes on with zeros.
    zelt_bsr_init(&bs, data.data(), 1, nullptr);
    EXPECT_EQ(bs.leftbits, 0);  // nothing is loaded before the first read
    EXPECT_EQ(zelt_bsr_read(&bs, 12), 0xA50u);
    EXPECT_EQ(bs.leftbits, -4);
    EXPECT_EQ(zelt_bsr_read1(&bs), 0);
    EXPECT_EQ(bs.leftbits, -5);

    for (int size : {0, -1, INT32_MIN}) {
        zelt_bsr_init(&bs, data.data(), size, nullptr);
        EXPECT_EQ(zelt_bsr_read(&bs, 8), ~0u);
        EXPECT_EQ(zelt_bsr_peek(&bs, 8), 0u);
        EXPECT_EQ(bs.cur, data.data());
        zelt_bsr_init(&bs, nullptr, size, nullptr);
        EXPECT_EQ(zelt_bsr_peek(&bs, 8), 0u);
    }
}

TEST(bsr, unary_codes_at_the_end_of_the_cache) {
    const bytes data = exact({0, 0, 0, 0x07, 0x7F, 0, 0, 0, 0});
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
            bs = before;
            EXPECT_EQ(zelt_bsr_read_ue(&bs), ~1u);
            bs = before;
            EXPECT_EQ(zelt_bsr_read_se(&bs), 1);
            bs = before;
            EXPECT_EQ(zelt_bsr_read1(&bs), empty ? -1 : 0);
            bs = before;
            EXPECT_EQ(zelt_bsr_read_te(&bs, 1), empty ? 2u : 1u);
        }
}

TEST(bsr, a_refill_may_drop_bytes) {
    std::mt19937 rng(2);
    for (int round = 0; round < 200; ++round) {
        bytes payload(64), stream;
        for (auto& b : payload) b = static_cast<uint8_t>(rng() & 3 ? rng() % 5 : 0);
        for (size_t i = 0, zeros = 0; i < payload.size(); ++i) {
            if (zeros == 2 && payload[i] <= 3) stream.push_back(3), zeros = 0;
            stream.push_back(payload[i]);
            zeros = payload[i] ? 0 : zeros + 1;
        }
        const std::string bits = to_bits(payload);
        ZELT_BSR bs;
        zelt_bsr_init(&bs, stream.data(), static_cast<int32_t>(stream.size()), unescaping_refill);
        for (size_t pos = 0; pos + 25 <= bits.size();) {
            const int size = static_cast<int>(rng() % 25 + 1);
            const auto want =
                static_cast<uint32_t>(std::stoul(bits.substr(pos, static_cast<size_t>(size)), nullptr, 2));
            if (rng() & 1) {
                ASSERT_EQ(zelt_bsr_peek(&bs, size), want);
            }
            ASSERT_EQ(zelt_bsr_read(&bs, size), want);
            pos += static_cast<size_t>(size);
        }
    }
}

TEST(bsr, any_argument_is_harmless) {
    const bytes data = exact(bytes(40, 0x5A));
    for (int32_t n : {INT32_MIN, -257, -256, -33, -32, -1, 33, 64, 255, 256, 300, INT32_MAX}) {
        ZELT_BSR bs;
        zelt_bsr_init(&bs, data.data(), 40, nullptr);
        for (int round = 0; round < 8; ++round) {
            zelt_bsr_read(&bs, n);
            zelt_bsr_peek(&bs, n);
            zelt_bsr_skip(&bs, n);
            zelt_bsr_skip_peek(&bs, n, n);
            zelt_bsr_read_tu(&bs, n);
            zelt_bsr_read_te(&bs, n);
            zelt_bsr_flush(&bs, n);
            zelt_bsr_read_un(&bs);
            zelt_bsr_read_ue(&bs);
            zelt_bsr_skip_align8(&bs);
        }
        EXPECT_LE(bs.cur, bs.end + 1);
    }
    for (uint32_t v : {0u, 1u, 0x00010000u, 0xFFFFFFFFu})
        EXPECT_EQ(zelt_bsr_clz_in_code(v), v == 0 ? 32u : v == 1 ? 31u : v == 0x10000u ? 15u : 0u);
}
