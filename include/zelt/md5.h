// SPDX-License-Identifier: MIT
/** @defgroup zelt_md5 MD5 digests (zelt/md5.h)
 *  MD5 digests (RFC 1321) of bytes, of 16-bit samples and of pictures. A check against mistakes, not against forgery.
 *  @{ */
#ifndef ZELT_MD5_H
#define ZELT_MD5_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** A digest in progress. The record belongs to the caller. One thread at a time. */
struct ZELT_MD5 {
    uint32_t state[4];  /**< A, B, C, D */
    uint8_t buffer[64]; /**< bytes that do not fill a block yet */
    uint32_t bits_lo;   /**< length of the message in bits, modulo 2^32 */
    uint32_t bits_hi;   /**< the upper half of that length */
};

/** Starts a digest.
 *  @param ctx  the record, whatever it holds */
ZELT_API void zelt_md5_init(ZELT_MD5 *ctx);

/** Digests bytes.
 *  @param ctx   a digest that was started
 *  @param data  the bytes, at any address
 *  @param len   how many */
ZELT_API void zelt_md5_update(ZELT_MD5 *ctx, const uint8_t *data, uint32_t len);

/** Digests 16-bit samples, the low byte of each before the high one.
 *  @param ctx      a digest that was started
 *  @param samples  the samples, 2-byte aligned
 *  @param count    how many; a negative number counts as 0 */
ZELT_API void zelt_md5_update_16(ZELT_MD5 *ctx, const uint16_t *samples, int32_t count);

/** Puts one block of 64 bytes through the transform of RFC 1321, 3.4. Pending bytes and the length stay as they are.
 *  @param ctx    a digest that was started
 *  @param block  16 words, each from four bytes, the lowest first */
ZELT_API void zelt_md5_trans(ZELT_MD5 *ctx, const uint32_t *block);

/** Ends a digest and clears its record to zeros.
 *  @param ctx     a digest that was started
 *  @param digest  where the 16 bytes go */
ZELT_API void zelt_md5_finish(ZELT_MD5 *ctx, uint8_t digest[16]);

/** Digests a picture, row by row: of plane 0 the rows `y` to `h - 1`, `w - x` bytes from the start of each, whatever x
 *  is; then, unless the colour space is ZELT_CS_YUV400, of planes 1 and 2 the rows `y >> 1` to `((h + 1) >> 1) - 1`,
 *  `(w + 1 - x) >> 1` bytes each. These sizes hold for every planar format, also where its chroma is larger and where
 *  samples have two bytes; a fourth plane is left out. For ZELT_CS_YUV400 and ZELT_CS_YUV420 the digest is that of the
 *  picture's samples, back to back. A plane that is null is skipped.
 *
 *  Of a picture that the library allocated (`base[0]` and a `size` above 0), what would lie outside its block is left
 *  out, and of each plane the digest ends with the row that makes four times the block's size and 1 MiB full: sizes
 *  that are not the picture's own end soon, and do no harm. Where `size` is 0, as in a record that a caller cleared and
 *  filled in, planes, strides and sizes are taken as they are, whatever `base` holds.
 *  @param img     the picture
 *  @param digest  where the 16 bytes go
 *  @return        ZELT_OK; ZELT_ERR_UNSUPPORTED where the colour space is not 10 to 99, nothing being written then */
ZELT_API int32_t zelt_md5_imgb(const ZELT_IMGB *img, uint8_t digest[16]);

ZELT_END_DECLS

/** @} */

#endif
