// What the writer writes the reader reads, as far as the buffer reaches; nothing is stored past it.
#include "zelt/bsw.h"

#include "input.h"
#include "zelt/bsr.h"

namespace {
struct element {
    uint8_t kind;
    int32_t bits;
    uint32_t value;
};

/// Brings a value into the range of its element.
element make(uint8_t kind, uint8_t bits, uint32_t value) {
    element e{static_cast<uint8_t>(kind % 5), bits % 32 + 1, value};
    if (e.kind == 0) e.value &= ~0u >> (32 - e.bits);
    if (e.kind == 1 || e.kind == 4) e.value &= 1;
    if (e.kind == 2) e.value %= 65535;
    if (e.kind == 3) e.value = e.value % 65535 - 32767;
    return e;
}

int32_t length(const element& e) {
    switch (e.kind) {
    case 0: return e.bits;
    case 2: return zelt_bsw_size_ue(e.value);
    case 3: return zelt_bsw_size_se(static_cast<int32_t>(e.value));
    default: return 1;
    }
}

void put(ZELT_BSW* bs, const element& e) {
    switch (e.kind) {
    case 0: zelt_bsw_write(bs, e.value, e.bits); break;
    case 1: zelt_bsw_write1(bs, static_cast<int32_t>(e.value)); break;
    case 2: zelt_bsw_write_ue(bs, e.value); break;
    case 3: zelt_bsw_write_se(bs, static_cast<int32_t>(e.value)); break;
    default: zelt_bsw_write_te(bs, e.value, 1); break;
    }
}

uint32_t get(ZELT_BSR* bs, const element& e) {
    switch (e.kind) {
    case 0: return zelt_bsr_read(bs, e.bits);
    case 1: return static_cast<uint32_t>(zelt_bsr_read1(bs));
    case 2: return zelt_bsr_read_ue(bs);
    case 3: return static_cast<uint32_t>(zelt_bsr_read_se(bs));
    default: return zelt_bsr_read_te(bs, 1);
    }
}
}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::input in(data, size);
    std::vector<uint8_t> buffer(in.byte());
    std::vector<element> list;
    uint8_t none = 0;
    ZELT_BSW w;
    zelt_bsw_init(&w, buffer.empty() ? &none : buffer.data(), static_cast<int32_t>(buffer.size()), nullptr);
    int64_t bits = 0;
    while (!in.empty()) {
        const uint8_t kind = in.byte(), width = in.byte();
        list.push_back(make(kind, width, in.word()));
        bits += length(list.back());
        put(&w, list.back());
    }
    const bool fits = bits / 32 * 4 < static_cast<int64_t>(buffer.size()) &&
                      (bits + 7) / 8 < static_cast<int64_t>(buffer.size());  // the last byte stays free
    fuzz::require(!fits || zelt_bsw_sink(&w) == 0);
    zelt_bsw_deinit(&w);
    fuzz::require(none == 0);
    if (!fits) return 0;

    fuzz::require(w.cur - w.beg == (bits + 7) / 8);
    ZELT_BSR r;
    zelt_bsr_init(&r, buffer.data(), static_cast<int32_t>(w.cur - w.beg), nullptr);
    for (const element& e : list) fuzz::require(get(&r, e) == e.value);
    return 0;
}
