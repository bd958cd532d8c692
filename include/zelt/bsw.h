// SPDX-License-Identifier: MIT
/** @defgroup zelt_bsw Bit writer (zelt/bsw.h)
 *  Bit writer: fields and Exp-Golomb codes into a byte buffer, most significant bit first.
 *  @{ */
#ifndef ZELT_BSW_H
#define ZELT_BSW_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** Flush callback of a writer: stores the occupied bytes of `code`, `(39 - leftbits) >> 3` of them from bits 31..24
 *  down, and moves `cur`. The caller resets `code` and `leftbits` afterwards. Returns 0 or a status that
 *  zelt_bsw_deinit passes on. */
typedef int32_t (*zelt_bsw_flush_fn)(ZELT_BSW *bs);

/** A bit writer. The record and the buffer belong to the caller; nothing is allocated. One thread at a time. The bytes
 *  written so far are `cur - beg`; after zelt_bsw_sink or zelt_bsw_deinit that is the length of the stream. The last
 *  byte of the buffer is kept free by every call that checks for room, zelt_bsw_write1 apart. After a call that had no
 *  room the record cannot be used further. On 32-bit targets the record is seven words in this order; elsewhere
 *  pointers have their natural size. */
struct ZELT_BSW {
    uint32_t code;              /**< bit cache, filled from bit 31 down */
    int32_t leftbits;           /**< free bits in `code`, 32 when it is empty */
    uint8_t *cur;               /**< next byte to write */
    uint8_t *end;               /**< last byte of the buffer */
    uint8_t *beg;               /**< first byte of the buffer */
    int32_t size;               /**< bytes in the buffer */
    zelt_bsw_flush_fn flush_fn; /**< flush callback */
};

/** Starts a writer.
 *  @param bs        the record to fill
 *  @param buf       the buffer, to be kept as long as the writer
 *  @param size      its bytes
 *  @param flush_fn  flush callback, or null for zelt_bsw_flush */
ZELT_API void zelt_bsw_init(ZELT_BSW *bs, uint8_t *buf, int32_t size, zelt_bsw_flush_fn flush_fn);

/** The default flush: stores the occupied bytes, a partial one whole, shifting them out of `code`. Where the buffer is
 *  too small `cur` moves on all the same, but nothing is stored past `end`. `code` and `leftbits` are not reset.
 *  @param bs  the writer
 *  @return    0 */
ZELT_API int32_t zelt_bsw_flush(ZELT_BSW *bs);

/** Ends a stream: flushes the pending bits as whole bytes, padded with zeros, without looking for room. The record is
 *  not reset.
 *  @param bs  the writer
 *  @return    the result of the flush callback */
ZELT_API int32_t zelt_bsw_deinit(ZELT_BSW *bs);

/** Pads with zeros to a byte boundary and flushes; writing may go on after it.
 *  @param bs  the writer
 *  @return    0; -1 where the pending bytes would reach the last byte of the buffer, nothing being done then */
ZELT_API int32_t zelt_bsw_sink(ZELT_BSW *bs);

/** Appends a bit.
 *  @param bs   the writer
 *  @param val  the bit, in the lowest place
 *  @return     0; -1 where the cache is full and `cur` is past `end`, nothing being flushed then */
ZELT_API int32_t zelt_bsw_write1(ZELT_BSW *bs, int32_t val);

/** Appends the low bits of a number, most significant first.
 *  @param bs   the writer
 *  @param val  the number; higher bits are ignored
 *  @param len  bits, 1..32
 *  @return     0; -1 where the cache is full and fewer than five bytes are left */
ZELT_API int32_t zelt_bsw_write(ZELT_BSW *bs, uint32_t val, int32_t len);

/** Appends an unsigned Exp-Golomb code, ue(v) of Rec. ITU-T H.264, 9.1. Where the room runs out the codeword is lost.
 *  @param bs   the writer
 *  @param val  0..65534 */
ZELT_API void zelt_bsw_write_ue(ZELT_BSW *bs, uint32_t val);

/** Appends a signed Exp-Golomb code, se(v) of Rec. ITU-T H.264, 9.1.1. Where the room runs out the codeword is lost.
 *  @param bs   the writer
 *  @param val  -32767..32767 */
ZELT_API void zelt_bsw_write_se(ZELT_BSW *bs, int32_t val);

/** Appends a truncated Exp-Golomb code, te(v) of Rec. ITU-T H.264, 9.1. Where the room runs out the codeword is lost.
 *  @param bs     the writer
 *  @param val    0..range, at most 65534
 *  @param range  largest value of the element: 1, the inverted bit is written; 2 and more, as zelt_bsw_write_ue; below
 *                1, nothing */
ZELT_API void zelt_bsw_write_te(ZELT_BSW *bs, uint32_t val, int32_t range);

/** Length of an unsigned Exp-Golomb codeword. Any thread.
 *  @param val  0..65534
 *  @return     bits */
ZELT_API int32_t zelt_bsw_size_ue(uint32_t val);

/** Length of a signed Exp-Golomb codeword. Any thread.
 *  @param val  -32767..32767
 *  @return     bits */
ZELT_API int32_t zelt_bsw_size_se(int32_t val);

ZELT_END_DECLS

/** @} */

#endif
