// Any sequence of reader calls with any arguments: the default refill and one of the caller's give the same results and
// the same records, and neither leaves the buffer.
#include "zelt/bsr.h"

#include "input.h"

namespace {
int32_t copying_refill(ZELT_BSR* bs, int32_t byte) {
    bs->code = 0;
    bs->leftbits = 0;
    for (; bs->end - bs->cur >= 0 && bs->leftbits < 8 * byte; bs->leftbits += 8)
        bs->code |= static_cast<uint32_t>(*bs->cur++) << (24 - bs->leftbits);
    return bs->leftbits ? 0 : -1;
}

uint32_t call(ZELT_BSR* bs, uint8_t kind, int32_t a, int32_t b) {
    int32_t dropped = 0;
    switch (kind % 11) {
    case 0: return zelt_bsr_read(bs, a);
    case 1: return static_cast<uint32_t>(zelt_bsr_skip(bs, a));
    case 2: return zelt_bsr_peek(bs, a);
    case 3: return zelt_bsr_skip_peek(bs, a, b);
    case 4: return static_cast<uint32_t>(zelt_bsr_read1(bs));
    case 5: return zelt_bsr_read_align8(bs, &dropped) + static_cast<uint32_t>(dropped);
    case 6: return zelt_bsr_read_ue(bs);
    case 7: return static_cast<uint32_t>(zelt_bsr_read_se(bs));
    case 8: return zelt_bsr_read_te(bs, a);
    case 9: return zelt_bsr_read_un(bs);
    default: return zelt_bsr_read_tu(bs, a);
    }
}
}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::input in(data, size);
    const uint8_t length = in.byte();
    const auto stream = in.bytes(length % 64);
    const uint8_t none = 0, *const start = stream.empty() ? &none : stream.data();
    ZELT_BSR ours, theirs;
    zelt_bsr_init(&ours, start, static_cast<int32_t>(stream.size()), nullptr);
    zelt_bsr_init(&theirs, start, static_cast<int32_t>(stream.size()), copying_refill);
    while (!in.empty()) {
        const uint8_t kind = in.byte();
        // mostly counts in range; now and then any at all
        const bool wild = kind >= 0xF0;
        const auto a = static_cast<int32_t>(wild ? in.word() : in.byte() % 33),
                   b = static_cast<int32_t>(in.byte() % 33);
        fuzz::require(call(&ours, kind, a, b) == call(&theirs, kind, a, b));
        fuzz::require(ours.code == theirs.code && ours.leftbits == theirs.leftbits && ours.cur == theirs.cur);
        fuzz::require(ours.cur >= ours.beg && ours.cur - ours.beg <= static_cast<std::ptrdiff_t>(stream.size()));
    }
    return 0;
}
