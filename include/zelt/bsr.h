// SPDX-License-Identifier: MIT
/** @defgroup zelt_bsr Bit reader (zelt/bsr.h)
 *  Bit reader: fields, Exp-Golomb and unary codes out of a byte buffer, most significant bit first.
 *  @{ */
#ifndef ZELT_BSR_H
#define ZELT_BSR_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** Refill callback of a reader: puts the next `byte` bytes (1 to 4, fewer at the end of the data) into `code` from bit
 *  31 down with zeros below, sets `leftbits` to the bits loaded and moves `cur`. What was left in `code` may be
 *  overwritten: the caller has saved it. Returns 0, or anything else when nothing is left; `code` and `leftbits` are 0
 *  then. `cur` may step over bytes that are not data, as emulation prevention wants it. */
typedef int32_t (*zelt_bsr_flush_fn)(ZELT_BSR *bs, int32_t byte);

/** A bit reader. The record and the buffer belong to the caller; nothing is allocated and nothing needs closing. One
 *  thread at a time. The bits read so far are `(cur - beg) * 8 - leftbits`, where the refill takes every byte. On
 *  32-bit targets the record is seven words in this order; elsewhere pointers have their natural size. */
struct ZELT_BSR {
    uint32_t code;              /**< bit cache: the next bit is bit 31, bits below the valid ones are 0 */
    int32_t leftbits;           /**< valid bits in `code`, 0..32; below 0 after a unary code that met the cache's end
                                     and after reading past the end of the data */
    const uint8_t *cur;         /**< next byte to load */
    const uint8_t *end;         /**< last byte of the buffer */
    const uint8_t *beg;         /**< first byte of the buffer */
    int32_t size;               /**< bytes in the buffer */
    zelt_bsr_flush_fn flush_fn; /**< refill callback */
};

/** Starts a reader. No byte is loaded yet.
 *  @param bs        the record to fill
 *  @param buf       the bytes, not written, to be kept as long as the reader
 *  @param size      how many; below 1 there is nothing to read
 *  @param flush_fn  refill callback, or null for zelt_bsr_flush */
ZELT_API void zelt_bsr_init(ZELT_BSR *bs, const uint8_t *buf, int32_t size, zelt_bsr_flush_fn flush_fn);

/** The default refill: loads bytes as they are and never reads past `end`.
 *  @param bs    the reader
 *  @param byte  bytes to load, at most 4
 *  @return      0, or -1 when no byte is left (`code` and `leftbits` are 0 then) */
ZELT_API int32_t zelt_bsr_flush(ZELT_BSR *bs, int32_t byte);

/** Number of leading zero bits. Any thread.
 *  @param v  any value
 *  @return   0..32 */
ZELT_API uint32_t zelt_bsr_clz_in_code(uint32_t v);

/** Looks at the next bits without consuming them. Bytes may be loaded for it. Bits past the end of the data are 0.
 *  @param bs    the reader
 *  @param size  bits, 1..32. When the cache cannot be filled up to `size`, up to 8 bits come from the byte after it,
 *               and further ones are 0
 *  @return      the bits as an unsigned number, the first one most significant */
ZELT_API uint32_t zelt_bsr_peek(ZELT_BSR *bs, int32_t size);

/** Consumes bits.
 *  @param bs    the reader
 *  @param size  bits, 0..32
 *  @return      the new `leftbits` (below 0 where the data ended within the bits); the callback's result where a refill
 *               was needed and failed, the record then being as the callback left it */
ZELT_API int32_t zelt_bsr_skip(ZELT_BSR *bs, int32_t size);

/** Consumes bits as zelt_bsr_skip does, then looks at the next ones.
 *  @param bs         the reader
 *  @param size       bits to consume, 0..32
 *  @param peek_size  bits to look at, as in zelt_bsr_peek
 *  @return           what zelt_bsr_peek gives; 0 where the refill of the first step failed */
ZELT_API uint32_t zelt_bsr_skip_peek(ZELT_BSR *bs, int32_t size, int32_t peek_size);

/** Reads an unsigned number, first bit most significant. Bits past the end of the data are 0 where at least one byte
 *  could still be loaded.
 *  @param bs    the reader
 *  @param size  bits, 0..32
 *  @return      the number; 2^32 - 1 where a refill was needed and failed */
ZELT_API uint32_t zelt_bsr_read(ZELT_BSR *bs, int32_t size);

/** Reads a bit.
 *  @param bs  the reader
 *  @return    0 or 1; -1 where the cache was empty and the refill failed */
ZELT_API int32_t zelt_bsr_read1(ZELT_BSR *bs);

/** Drops the bits up to the next byte boundary.
 *  @param bs  the reader */
ZELT_API void zelt_bsr_skip_align8(ZELT_BSR *bs);

/** Reads the bits up to the next byte boundary.
 *  @param bs     the reader
 *  @param nbits  where their count (0..7) goes, or null
 *  @return       the bits as an unsigned number, 0 at a boundary */
ZELT_API uint32_t zelt_bsr_read_align8(ZELT_BSR *bs, int32_t *nbits);

/** Reads an unsigned Exp-Golomb code, ue(v) of Rec. ITU-T H.264, 9.1. Codewords of up to 32 bits are supported; longer
 *  ones give any value, and the reader stays within its buffer.
 *  @param bs  the reader
 *  @return    0..65534; 2^32 - 2 where a refill failed in the middle of a codeword */
ZELT_API uint32_t zelt_bsr_read_ue(ZELT_BSR *bs);

/** Reads a signed Exp-Golomb code, se(v) of Rec. ITU-T H.264, 9.1.1. There is no value for an error: a codeword cut
 *  off by the end of the data gives 1.
 *  @param bs  the reader
 *  @return    k-th of 0, 1, -1, 2, -2, ... for a codeword k of zelt_bsr_read_ue */
ZELT_API int32_t zelt_bsr_read_se(ZELT_BSR *bs);

/** Reads a truncated Exp-Golomb code, te(v) of Rec. ITU-T H.264, 9.1.
 *  @param bs     the reader
 *  @param range  largest value of the element: 1, an inverted bit is read; 2 and more, zelt_bsr_read_ue; below 1,
 *                nothing
 *  @return       the value; 2 where the refill for the inverted bit failed */
ZELT_API uint32_t zelt_bsr_read_te(ZELT_BSR *bs, int32_t range);

/** Reads a unary code: ones up to a zero, the zero consumed too. When all cached bits are ones (1 to 31 of them) the
 *  count stops there: `leftbits` is -1, and the zero is taken to be the first bit of the next refill, which the next
 *  read consumes. A full cache of 32 bits is counted as 32 ones whatever it holds, and the count goes on in the next
 *  one.
 *  @param bs  the reader
 *  @return    the number of ones */
ZELT_API uint32_t zelt_bsr_read_un(ZELT_BSR *bs);

/** Reads a truncated unary code: ones up to a zero, at most `max`. The zero is consumed even after exactly `max` ones;
 *  of a longer run `max` bits are consumed. The cache's end counts as a zero, as in zelt_bsr_read_un; a full cache of
 *  32 bits is not looked at: where `max` is 32 or less, so many bits of it are consumed.
 *  @param bs   the reader
 *  @param max  the largest value, at least 1
 *  @return     the number of ones, at most `max` */
ZELT_API uint32_t zelt_bsr_read_tu(ZELT_BSR *bs, int32_t max);

ZELT_END_DECLS

/** @} */

#endif
