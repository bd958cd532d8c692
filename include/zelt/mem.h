// SPDX-License-Identifier: MIT
/** @defgroup zelt_mem Memory (zelt/mem.h)
 *  Aligned allocation, fills, and copies of picture areas and blocks.
 *  @{ */
#ifndef ZELT_MEM_H
#define ZELT_MEM_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** @name Allocation
 *  @{ */
/** Allocates memory that starts at a multiple of 32, from malloc; contents are undefined. Any thread. Both names are
 *  the same function.
 *  @param size  bytes; 0 gives a block that can only be freed
 *  @return      the block, to be freed with zelt_mfree_align32 and with nothing else, or null */
ZELT_API void *zelt_malloc_align32(uint32_t size);
ZELT_API void *zelt_malloc_fast_align32(uint32_t size);
/** @} */

/** @name Freeing
 *  @{ */
/** Frees a block from zelt_malloc_align32. Any thread. Both names are the same function.
 *  @param p  the block, or null, which does nothing */
ZELT_API void zelt_mfree_align32(void *p);
ZELT_API void zelt_mfree_fast_align32(void *p);
/** @} */

/** @name Fills with a word
 *  @{ */
/** Fill memory with a word, its low byte first. Any thread.
 *  - zelt_mset_x128 writes steps of 128 bytes, size rounded up, and one step also where size is less than 1.
 *  - zelt_mset_x32 writes steps of 32 bytes, size rounded down.
 *  - zelt_mset_x32ax4 writes steps of 32 bytes, size rounded down but one step at least, and then the bytes that are
 *    left of size, each the low byte of val: they continue the pattern only where val's four bytes are the same.
 *
 *  @param dst   the memory, at any address
 *  @param val   the word
 *  @param size  bytes */
ZELT_API void zelt_mset_x128(void *dst, uint32_t val, int size);
ZELT_API void zelt_mset_x32(void *dst, uint32_t val, int size);
ZELT_API void zelt_mset_x32ax4(void *dst, uint32_t val, int size);
/** @} */

/** @name Fills with a byte
 *  @{ */
/** Fill memory with a byte. Any thread. zelt_mset_x64 writes steps of 128 bytes, size rounded down; zelt_mset_x64a
 *  writes exactly size bytes, nothing below 1.
 *  @param dst   the memory, at any address
 *  @param val   the byte, in the low 8 bits
 *  @param size  bytes */
ZELT_API void zelt_mset_x64(void *dst, int val, int size);
ZELT_API void zelt_mset_x64a(void *dst, int val, int size);
/** @} */

/** Fills memory with zeros. Any thread.
 *  @param dst  the memory, at any address
 *  @param n    32-bit words, rounded down to a multiple of 64 */
ZELT_API void zelt_mclr_x64(void *dst, int n);

/** Fills memory with a 16-bit sample. Any thread.
 *  @param dst  the samples, 2-byte aligned
 *  @param val  the sample, in the low 16 bits
 *  @param n    samples; nothing is written below 1 */
ZELT_API void zelt_mset16(int16_t *dst, int val, int n);

/** Copies an area of 8-bit samples. The areas must not overlap. Any thread.
 *  @param dst    first sample of the destination
 *  @param src    first sample of the source
 *  @param s_dst  bytes from one row of the destination to the next
 *  @param s_src  bytes from one row of the source to the next
 *  @param w      samples in a row
 *  @param h      rows */
ZELT_API void zelt_mcpy_pic(uint8_t *dst, const uint8_t *src, int s_dst, int s_src, int w, int h);

/** Copies an area of 16-bit samples, and more than that in many sizes: where a row of 64 bytes or more is not a
 *  multiple of 64 or an odd multiple of 32, the `2 * w % 64` bytes behind it are copied, too, so that rows that lie
 *  closer together than this have them overwritten by the next. Where both strides are w the whole area counts as one
 *  row, and an odd multiple of 32 is no exception. The areas, with what is behind them, must not overlap. Any thread.
 *  @param dst    first sample of the destination, 2-byte aligned
 *  @param src    first sample of the source, 2-byte aligned
 *  @param s_dst  samples from one row of the destination to the next
 *  @param s_src  samples from one row of the source to the next
 *  @param w      samples in a row
 *  @param h      rows */
ZELT_API void zelt_mcpy_pic_16(int16_t *dst, const int16_t *src, int s_dst, int s_src, int w, int h);

/** @name Copies of blocks
 *  @{ */
/** Copy a block of 8-bit or 16-bit samples. The blocks must not overlap. Any thread.
 *  @param dst    first sample of the destination; 16-bit ones are 2-byte aligned
 *  @param src    first sample of the source, likewise
 *  @param s_dst  samples from one row of the destination to the next
 *  @param s_src  samples from one row of the source to the next
 *  @param w      samples in a row: 2, 4, 6, 8, 12, 16, 24, 32 or 48; any other number copies 64
 *  @param h      rows */
ZELT_API void zelt_mcpy_blk(uint8_t *dst, const uint8_t *src, int s_dst, int s_src, int w, int h);
ZELT_API void zelt_mcpy_blk_16(int16_t *dst, const int16_t *src, int s_dst, int s_src, int w, int h);
/** @} */

ZELT_END_DECLS

/** @} */

#endif
