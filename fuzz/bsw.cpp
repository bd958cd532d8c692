// SPDX-License-Identifier: MIT
// What the writer writes the reader reads, as far as the buffer reaches, with the default flush or one of the caller's.
// Nothing is stored past the buffer, whatever the arguments.
#include "zelt/bsw.h"

#include "input.h"
#include "zelt/bsr.h"

#include <algorithm>

namespace {
struct element {
    uint8_t kind;
    int32_t n;  // bits of a plain value, or the range of a truncated code
    uint32_t value;
};

/// Brings a value into the range of its element. Higher bits of plain values are the writer's to ignore.
element make(uint8_t kind, uint8_t n, uint32_t value) {
    element e{kind, n % 33, value};
    if (kind == 0) e.n = n % 32 + 1;
    if (kind == 2) e.value %= 65535;
    if (kind == 3) e.value = e.value % 65535 - 32767;
    if (kind == 4) e.value = e.n < 2 ? value & static_cast<uint32_t>(e.n) : e.value % 65535;
    return e;
}

/// The bits written
int32_t put(ZELT_BSW* bs, const element& e) {
    const auto value = static_cast<int32_t>(e.value);
    switch (e.kind) {
    case 0: return zelt_bsw_write(bs, e.value, e.n), e.n;
    case 1: return zelt_bsw_write1(bs, value), 1;
    case 2: return zelt_bsw_write_ue(bs, e.value), zelt_bsw_size_ue(e.value);
    case 3: return zelt_bsw_write_se(bs, value), zelt_bsw_size_se(value);
    case 4: return zelt_bsw_write_te(bs, e.value, e.n), e.n > 1 ? zelt_bsw_size_ue(e.value) : e.n;
    default: {
        const int32_t padding = bs->leftbits & 7;
        return zelt_bsw_sink(bs) ? 0 : padding;
    }
    }
}

bool read_back(ZELT_BSR* bs, const element& e) {
    switch (e.kind) {
    case 0: return zelt_bsr_read(bs, e.n) == (e.value & ~0u >> (32 - e.n));
    case 1: return zelt_bsr_read1(bs) == static_cast<int32_t>(e.value & 1);
    case 2: return zelt_bsr_read_ue(bs) == e.value;
    case 3: return zelt_bsr_read_se(bs) == static_cast<int32_t>(e.value);
    case 4: return zelt_bsr_read_te(bs, e.n) == e.value;
    default: return zelt_bsr_read_align8(bs, nullptr) == 0;
    }
}

/// Stores every bit inverted. What is left in the cache is the writer's to reset.
int32_t inverting_flush(ZELT_BSW* bs) {
    for (int shift = 24; shift > bs->leftbits - 8; shift -= 8, ++bs->cur)
        if (bs->cur <= bs->end) *bs->cur = static_cast<uint8_t>(~bs->code >> shift);
    return 5;
}
}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::input in(data, size);
    const uint8_t options = in.byte(), length = in.byte();
    const bool wild = options % 8 == 0, own = options & 1;
    std::vector<uint8_t> buffer(length + 8, 0xEE);
    const auto untouched = [&](int64_t from) {
        return std::all_of(buffer.begin() + from, buffer.end(), [](uint8_t b) { return b == 0xEE; });
    };
    std::vector<element> list;
    ZELT_BSW w;
    zelt_bsw_init(&w, buffer.data(), length, own ? inverting_flush : nullptr);
    fuzz::require(w.size == length);
    int64_t bits = 0;
    bool fits = true;
    while (!in.empty()) {
        const uint8_t kind = in.byte() % 6, n = in.byte();
        if (wild) {
            put(&w, {kind, in.wild(), in.word()});
            if (n % 8 == 0) zelt_bsw_flush(&w);
            continue;
        }
        const element e = make(kind, n, in.word());
        bits += put(&w, e);
        fits = fits && (bits + 7) / 8 < length;  // the last byte stays free
        if (!fits) continue;
        list.push_back(e);
        fuzz::require((w.cur - w.beg) * 8 + 32 - w.leftbits == bits && w.leftbits > 0);
        fuzz::require(w.leftbits == 32 ? w.code == 0 : w.code << (32 - w.leftbits) == 0);
    }
    if (wild) return fuzz::require(untouched(length)), 0;
    if (!fits) zelt_bsw_deinit(&w);
    fuzz::require(untouched(length));
    if (!fits) return 0;

    fuzz::require(zelt_bsw_deinit(&w) == (own ? 5 : 0) && w.cur - w.beg == (bits + 7) / 8 && untouched(w.cur - w.beg));
    if (own)
        for (uint8_t& b : buffer) b = static_cast<uint8_t>(~b);
    ZELT_BSR r;
    zelt_bsr_init(&r, buffer.data(), static_cast<int32_t>(w.cur - w.beg), nullptr);
    for (const element& e : list) fuzz::require(read_back(&r, e));
    return 0;
}
