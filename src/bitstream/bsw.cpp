// SPDX-License-Identifier: MIT
// Bit writer. The default flush of a whole word is done inline; a caller's own goes through the callback.
#include "zelt/bsw.h"

#include "bitstream/cache.h"
#include "bitstream/golomb.h"

#include <algorithm>
#include <cstring>

using namespace zelt;

namespace {

/// Bytes of the cache that hold bits, a partial one included.
inline s32 occupied_bytes(const ZELT_BSW* bs) { return std::clamp(sub(39, bs->leftbits) >> 3, 0, 4); }

inline void store_be32(u8* p, u32 v) {
    v = __builtin_bswap32(v);
    std::memcpy(p, &v, sizeof v);
}

/// Hands a full cache to the caller's flush, then keeps the bits of `word` after the first `left`.
[[gnu::noinline]] s32 flush_full(ZELT_BSW* bs, u32 word, s32 left, s32 leftbits) {
    bs->leftbits = 0;
    bs->flush_fn(bs);
    bs->code = shl(word, left);
    bs->leftbits = leftbits;
    return 0;
}

/// Appends the low `len` bits of `val`.
inline s32 write_bits(ZELT_BSW* bs, u32 val, s32 len) {
    const u32 word = shl(val, sub(32, len));  // left-aligned
    const s32 left = bs->leftbits;
    bs->code |= shr(word, sub(32, left));
    if (left > len) {
        bs->leftbits = sub(left, len);
        return 0;
    }
    if (bytes_left(bs) < 5) return -1;  // Kept: the last byte of the buffer stays free
    const s32 leftbits = add(sub(32, len), left);
    if (bs->flush_fn != zelt_bsw_flush) return flush_full(bs, word, left, leftbits);
    store_be32(bs->cur, bs->code);
    bs->cur += 4;
    bs->code = shl(word, left);
    bs->leftbits = leftbits;
    return 0;
}

inline void write_ue(ZELT_BSW* bs, u32 val) {
    const u32 x = val + 1;
    const s32 k = std::min(31 - std::countl_zero(x | 1), 16);
    write_bits(bs, u32{1} << k | (x & ((u32{1} << k) - 1)), 2 * k + 1);
}

}  // namespace

void zelt_bsw_init(ZELT_BSW* bs, uint8_t* buf, int32_t size, zelt_bsw_flush_fn flush_fn) {
    bs->code = 0;
    bs->leftbits = 32;
    bs->cur = bs->beg = buf;
    bs->end = advance(advance(buf, size), -1);
    bs->size = size;
    bs->flush_fn = flush_fn ? flush_fn : zelt_bsw_flush;
}

int32_t zelt_bsw_flush(ZELT_BSW* bs) {
    const s32 n = occupied_bytes(bs), stored = static_cast<s32>(std::clamp<std::intptr_t>(bytes_left(bs), 0, n));
    for (s32 i = 0; i < stored; ++i) bs->cur[i] = static_cast<u8>(bs->code >> (24 - 8 * i));
    bs->cur = advance(bs->cur, n);
    bs->code = shl(bs->code, 8 * n);
    return 0;
}

int32_t zelt_bsw_deinit(ZELT_BSW* bs) { return bs->flush_fn(bs); }

int32_t zelt_bsw_sink(ZELT_BSW* bs) {
    if (occupied_bytes(bs) >= bytes_left(bs)) return -1;  // Kept: the last byte of the buffer stays free
    bs->flush_fn(bs);
    bs->code = 0;
    bs->leftbits = 32;
    return 0;
}

int32_t zelt_bsw_write1(ZELT_BSW* bs, int32_t val) {
    if (bs->leftbits > 0) {
        bs->leftbits = sub(bs->leftbits, 1);
        bs->code |= shl(static_cast<u32>(val) & 1, bs->leftbits);
    }
    if (bs->leftbits > 0) return 0;
    if (bytes_left(bs) < 1) return -1;
    bs->flush_fn(bs);  // Kept: called with fewer than four bytes left, too
    bs->code = 0;
    bs->leftbits = 32;
    return 0;
}

int32_t zelt_bsw_write(ZELT_BSW* bs, uint32_t val, int32_t len) { return write_bits(bs, val, len); }

void zelt_bsw_write_ue(ZELT_BSW* bs, uint32_t val) { write_ue(bs, val); }

void zelt_bsw_write_se(ZELT_BSW* bs, int32_t val) { write_ue(bs, se_to_ue(val)); }

void zelt_bsw_write_te(ZELT_BSW* bs, uint32_t val, int32_t range) {
    if (range == 1)
        zelt_bsw_write1(bs, static_cast<s32>(1 - val));
    else if (range > 1)
        write_ue(bs, val);
}

int32_t zelt_bsw_size_ue(uint32_t val) {
    if (val <= 254) return codeword_bits[val + 1];
    return codeword_bits[std::min<u32>((val + 1) >> 8, 255)] + 16;
}

int32_t zelt_bsw_size_se(int32_t val) { return zelt_bsw_size_ue(se_to_ue(val)); }
