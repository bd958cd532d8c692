// SPDX-License-Identifier: MIT
// Any sequence of reader calls, with the default refill or one of the caller's that drops bytes: results and record are
// those of a position in a string of bits. With arguments out of range, and codewords longer than supported, the reader
// stays within its buffer.
#include "zelt/bsr.h"

#include "input.h"

#include <algorithm>
#include <string>

namespace {
constexpr uint8_t dropped = 0x7F;

/// A refill for streams in which a byte is no data. It leaves `cur` at the next one that is.
int32_t dropping_refill(ZELT_BSR* bs, int32_t byte) {
    fuzz::require(byte >= 1 && byte <= 4);
    bs->code = 0;
    bs->leftbits = 0;
    for (; bs->cur <= bs->end && (*bs->cur == dropped || bs->leftbits < 8 * byte); ++bs->cur) {
        if (*bs->cur == dropped) continue;
        bs->code |= static_cast<uint32_t>(*bs->cur) << (24 - bs->leftbits);
        bs->leftbits += 8;
    }
    return bs->leftbits ? 0 : -1;
}

/// What is read, and how much of it has been loaded.
struct model {
    std::string bits;
    int loaded = 0, pos = 0;  // both in bits

    model(const std::vector<uint8_t>& data, bool drops) {
        for (uint8_t b : data)
            for (int i = 7; !(drops && b == dropped) && i >= 0; --i) bits += b >> i & 1 ? '1' : '0';
    }
    int left() const { return loaded - pos; }
    int total() const { return static_cast<int>(bits.size()); }
    bool one(int i) const { return i < total() && bits[static_cast<size_t>(i)] == '1'; }
    uint32_t number(int from, int count) const {
        uint32_t v = 0;
        for (int i = 0; i < count; ++i) v = v << 1 | one(from + i);
        return v;
    }
    uint32_t cache() const {
        uint32_t v = 0;
        for (int i = 0; i < left(); ++i) v |= uint32_t{one(pos + i)} << (31 - i);
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
    uint32_t skip(int size) { return fetch(size) ? (pos += size, static_cast<uint32_t>(left())) : ~0u; }
    uint32_t peek(int size) {
        if (left() < size) load((32 - left()) / 8);
        return number(pos, size);
    }
    uint32_t read1() {
        if (left() == 0 && !load()) return ~0u;
        return one(pos++);
    }
    uint32_t align(bool counted) {
        const int n = left() & 7;
        pos += n;
        return number(pos - n, n) * 8 + static_cast<uint32_t>(counted ? n : 0);
    }
    int zeros() const {
        int z = 0;
        while (pos + z < total() && !one(pos + z)) ++z;
        return z;
    }
    uint32_t read_ue() {
        const int z = zeros(), size = 2 * z + 1;
        if (cache() == 0) load();
        if (pos + z >= total() || (pos + size > loaded && !load())) return pos = loaded, ~1u;
        pos += size;
        return number(pos - size, size) - 1;
    }
    uint32_t read_se() {
        const uint32_t k = read_ue();
        if (k == ~1u) return 1;
        return k & 1 ? (k + 1) / 2 : 0 - k / 2;
    }
    uint32_t read_te(int max) {
        if (max < 1) return 0;
        return max == 1 ? 1 - read1() : read_ue();
    }
    /// A unary code: the ones of a cache that is used up, or full, are counted unseen.
    uint32_t read_unary(int max) {
        int unseen = 0, n = 0;
        if (left() == 0 || left() == 32) {
            unseen = left();
            if (unseen >= max) return pos += max, static_cast<uint32_t>(max);
            pos = loaded;
            load();
        }
        while (n < left() && one(pos + n)) ++n;
        pos += unseen + n <= max ? n + 1 : max;
        return static_cast<uint32_t>(std::min(unseen + n, max));
    }
};

uint32_t call(ZELT_BSR* bs, uint8_t kind, int32_t a, int32_t b) {
    switch (kind) {
    case 0: return zelt_bsr_read(bs, a);
    case 1: return static_cast<uint32_t>(zelt_bsr_skip(bs, a));
    case 2: return zelt_bsr_peek(bs, b);
    case 3: return zelt_bsr_skip_peek(bs, a, b);
    case 4: return static_cast<uint32_t>(zelt_bsr_read1(bs));
    case 5: return zelt_bsr_skip_align8(bs), 0;
    case 6: {
        int32_t n = a & 1 ? -1 : 0;
        const uint32_t value = zelt_bsr_read_align8(bs, a & 1 ? &n : nullptr);
        return value * 8 + static_cast<uint32_t>(n);
    }
    case 7: return zelt_bsr_read_ue(bs);
    case 8: return static_cast<uint32_t>(zelt_bsr_read_se(bs));
    case 9: return zelt_bsr_read_te(bs, a);
    case 10: return zelt_bsr_read_un(bs);
    case 11: return zelt_bsr_read_tu(bs, a | b);
    default: return static_cast<uint32_t>(zelt_bsr_flush(bs, a));
    }
}

uint32_t call(model& m, uint8_t kind, int32_t a, int32_t b) {
    switch (kind) {
    case 0: return m.read(a);
    case 1: return m.skip(a);
    case 2: return m.peek(b);
    case 3: return m.fetch(a) ? (m.pos += a, m.peek(b)) : 0;
    case 4: return m.read1();
    case 5: return m.align(false), 0;
    case 6: return m.align(a & 1);
    case 7: return m.read_ue();
    case 8: return m.read_se();
    case 9: return m.read_te(a);
    case 10: return m.read_unary(INT_MAX);
    default: return m.read_unary(a | b);
    }
}
}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::input in(data, size);
    const uint8_t options = in.byte(), length = in.byte();
    const auto stream = in.bytes(length % 64);
    const uint8_t none = 0, *const start = stream.empty() ? &none : stream.data();
    const int bytes = static_cast<int>(stream.size());
    ZELT_BSR bs;
    const bool drops = options & 1;
    zelt_bsr_init(&bs, start, bytes, drops ? dropping_refill : nullptr);
    fuzz::require(bs.size == bytes && bs.beg == start && bs.leftbits == 0);
    model m(stream, drops);
    bool strict = true;
    while (!in.empty()) {
        uint8_t kind = in.byte();
        strict =
            strict && (options % 8 < 6 || kind < 0xF0) && m.zeros() <= 15 && (m.left() >= -1 || m.loaded == m.total());
        if (strict) {
            int32_t a = in.byte() % 33, b = in.byte() % 32 + 1;
            kind %= 12;
            if (m.left() < 0) kind = 0, a = 1 + a % 31;  // a unary code has stopped at the cache's end
            fuzz::require(call(&bs, kind, a, b) == call(m, kind, a, b));
            fuzz::require(bs.leftbits == m.left() && bs.code == m.cache());
            fuzz::require(drops || bs.cur - bs.beg == m.loaded / 8);
        } else {
            call(&bs, kind % 13, in.wild(), in.wild());
        }
        fuzz::require(bs.cur >= bs.beg && bs.cur - bs.beg <= bytes);
    }
    return 0;
}
