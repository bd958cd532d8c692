// SPDX-License-Identifier: MIT
// Bit reader. The default refill is done inline; a caller's own goes through the callback.
#include "zelt/bsr.h"

#include "bitstream/cache.h"

#include <algorithm>
#include <bit>
#include <cstring>

using namespace zelt;

namespace {

inline u32 load_be32(const u8* p) {
    u32 v;
    std::memcpy(&v, p, sizeof v);
    return __builtin_bswap32(v);
}

inline s32 refill(ZELT_BSR* bs) {
    if (bs->flush_fn != zelt_bsr_flush || bytes_left(bs) < 4) return bs->flush_fn(bs, 4);
    bs->code = load_be32(bs->cur);
    bs->leftbits = 32;
    bs->cur += 4;
    return 0;
}

inline void consume(ZELT_BSR* bs, s32 size) {
    bs->code = shl(bs->code, size);
    bs->leftbits = sub(bs->leftbits, size);
}

/// Whether the cache holds all the bits asked for, the usual case; false for counts out of range.
inline bool in_cache(const ZELT_BSR* bs, s32 size) { return static_cast<u32>(size) <= 32 && size <= bs->leftbits; }

/// Whether the default refill would load a whole word, with the cache in the state that reads leave it in.
[[maybe_unused]] inline bool can_refill_word(const ZELT_BSR* bs) {
    return bs->flush_fn == zelt_bsr_flush && bytes_left(bs) >= 4 && static_cast<u32>(bs->leftbits) <= 32;
}

/// Reads 0..32 bits if a whole word can be refilled. Whether a field crosses the end of the cache is unpredictable, and
/// a mispredicted branch costs more than all of this.
[[maybe_unused]] inline u32 read_bits_branchless(ZELT_BSR* bs, s32 size) {
    const u32 code = bs->code, next = load_be32(bs->cur);
    const s32 left = bs->leftbits - size, refilled = left >> 31;
    const u32 value = shr(code | shr(next, bs->leftbits), 32 - size), mask = static_cast<u32>(refilled);
    bs->code = (shl(code, size) & ~mask) | (shl(next, -left & 63) & mask);
    bs->leftbits = left + (refilled & 32);
    bs->cur += refilled & 4;
    return value;
}

/// Reads `size` bits. Returns what the refill returned, 0 if none was needed; only then is the value set.
inline s32 read_bits(ZELT_BSR* bs, s32 size, u32& value) {
    const s32 left = bs->leftbits;
    u32 high = shr(bs->code, sub(32, size));
    if (left < size) {
        if (const s32 status = refill(bs)) return status;
        size = sub(size, left);
        high |= shr(bs->code, sub(32, size));
    }
    value = high;
    consume(bs, size);
    return 0;
}

[[gnu::noinline]] u32 read_slowly(ZELT_BSR* bs, s32 size) {
    u32 value;
    return read_bits(bs, size, value) ? ~u32{0} : value;
}

[[gnu::noinline]] s32 skip_slowly(ZELT_BSR* bs, s32 size) {
    u32 value;
    const s32 status = read_bits(bs, size, value);
    return status ? status : bs->leftbits;
}

[[gnu::noinline]] u32 read_ue_slowly(ZELT_BSR* bs) {
    s32 zeros = 0;
    if (bs->code == 0) {  // the cache holds nothing but zeros of this codeword
        zeros = bs->leftbits;
        refill(bs);  // at the end of the data the cache stays 0, and read_bits fails
    }
    const s32 more = std::countl_zero(bs->code);
    if (add(zeros, more) == 0) {
        consume(bs, 1);
        return 0;
    }
    u32 value;
    return read_bits(bs, add(zeros, 2 * more + 1), value) ? ~u32{1} : value - 1;
}

[[gnu::noinline]] u32 peek_slowly(ZELT_BSR* bs, s32 size) {
    if (bs->leftbits < size) {
        const u32 old = bs->code;
        const s32 left = bs->leftbits, room = sub(32, left) >> 3;
        if (room > 0) {
            bs->flush_fn(bs, std::min(room, 4));  // if it fails, the old bits remain
            bs->code = old | shr(bs->code, left);
            bs->leftbits = add(bs->leftbits, left);
        }
    }
    u32 value = shr(bs->code, sub(32, size));
    // Up to a byte may still be missing: the next one is peeked at, not loaded. Any further bits read as 0.
    if (size > bs->leftbits && bytes_left(bs) > 0) value |= shr(*bs->cur, sub(8, sub(size, bs->leftbits)));
    return value;
}

/// Whether the cache counts as holding the zero that ends a run of ones. The test includes one bit past the valid ones.
/// Kept: that bit is a zero, so a run that fills the cache ends with it; a full cache has no such bit.
inline bool run_ends(const ZELT_BSR* bs) { return bs->leftbits != 0 && shr(~bs->code, sub(31, bs->leftbits)) != 0; }

inline s32 leading_ones(const ZELT_BSR* bs) { return std::countl_one(bs->code); }

}  // namespace

void zelt_bsr_init(ZELT_BSR* bs, const uint8_t* buf, int32_t size, zelt_bsr_flush_fn flush_fn) {
    bs->code = 0;
    bs->leftbits = 0;
    bs->cur = bs->beg = buf;
    bs->end = advance(advance(buf, size), -1);
    bs->size = size;
    bs->flush_fn = flush_fn ? flush_fn : zelt_bsr_flush;
}

int32_t zelt_bsr_flush(ZELT_BSR* bs, int32_t byte) {
    const s32 n = static_cast<s32>(std::min({bytes_left(bs), std::intptr_t{byte}, std::intptr_t{4}}));
    bs->code = 0;
    bs->leftbits = 0;
    if (n < 1) return -1;
    for (s32 i = 0; i < n; ++i) bs->code |= u32{bs->cur[i]} << (24 - 8 * i);
    bs->leftbits = 8 * n;
    bs->cur += n;
    return 0;
}

uint32_t zelt_bsr_clz_in_code(uint32_t v) { return static_cast<u32>(std::countl_zero(v)); }

uint32_t zelt_bsr_peek(ZELT_BSR* bs, int32_t size) {
    return in_cache(bs, size) ? shr(bs->code, 32 - size) : peek_slowly(bs, size);
}

int32_t zelt_bsr_skip(ZELT_BSR* bs, int32_t size) {
    if (!in_cache(bs, size)) return skip_slowly(bs, size);
    consume(bs, size);
    return bs->leftbits;
}

uint32_t zelt_bsr_skip_peek(ZELT_BSR* bs, int32_t size, int32_t peek_size) {
    u32 value;
    if (read_bits(bs, size, value)) return 0;
    return bs->leftbits >= peek_size ? shr(bs->code, sub(32, peek_size)) : zelt_bsr_peek(bs, peek_size);
}

uint32_t zelt_bsr_read(ZELT_BSR* bs, int32_t size) {
    if constexpr (shift_limit == 64) {
        if (static_cast<u32>(size) <= 32 && can_refill_word(bs)) return read_bits_branchless(bs, size);
    } else if (in_cache(bs, size)) {
        const u32 value = shr(bs->code, 32 - size);
        consume(bs, size);
        return value;
    }
    return read_slowly(bs, size);
}

int32_t zelt_bsr_read1(ZELT_BSR* bs) {
    // Kept: only an empty cache is refilled. Below 0 the reader keeps returning zeros.
    if (bs->leftbits == 0 && refill(bs)) return -1;
    const u32 bit = bs->code >> 31;
    consume(bs, 1);
    return static_cast<s32>(bit);
}

void zelt_bsr_skip_align8(ZELT_BSR* bs) { consume(bs, bs->leftbits & 7); }

uint32_t zelt_bsr_read_align8(ZELT_BSR* bs, int32_t* nbits) {
    const s32 n = bs->leftbits & 7;
    const u32 value = shr(bs->code, 32 - n);
    if (nbits) *nbits = n;
    consume(bs, n);
    return value;
}

uint32_t zelt_bsr_read_ue(ZELT_BSR* bs) {
    const u32 code = bs->code;
    const s32 size = 2 * std::countl_zero(code) + 1;
    if (in_cache(bs, size)) {
        consume(bs, size);
        return shr(code, 32 - size) - 1;
    }
    return read_ue_slowly(bs);
}
int32_t zelt_bsr_read_se(ZELT_BSR* bs) {
    const u32 k = zelt_bsr_read_ue(bs);
    const s32 half = static_cast<s32>(k) >> 1;
    return k & 1 ? half + 1 : -half;  // Kept: the -2 of an error gives 1
}

uint32_t zelt_bsr_read_te(ZELT_BSR* bs, int32_t range) {
    if (range < 1) return 0;
    // Kept: the -1 of a failure becomes 2.
    return range == 1 ? static_cast<u32>(1 - zelt_bsr_read1(bs)) : zelt_bsr_read_ue(bs);
}

uint32_t zelt_bsr_read_un(ZELT_BSR* bs) {
    s32 ones = 0;
    if (!run_ends(bs)) {
        ones = bs->leftbits;  // Kept: counted unseen
        refill(bs);
    }
    const s32 more = leading_ones(bs);
    consume(bs, more + 1);
    return static_cast<u32>(add(ones, more));
}

uint32_t zelt_bsr_read_tu(ZELT_BSR* bs, int32_t max) {
    s32 ones = 0;
    if (!run_ends(bs)) {
        ones = bs->leftbits;
        if (ones >= max) {  // Kept: counted unseen
            consume(bs, max);
            return static_cast<u32>(max);
        }
        refill(bs);
    }
    const s32 more = leading_ones(bs), count = add(ones, more);
    // Kept: the zero after exactly `max` ones is consumed, the bit after `max` of a longer run is not.
    const bool whole = count <= max;
    consume(bs, whole ? more + 1 : max);
    return static_cast<u32>(whole ? count : max);
}
