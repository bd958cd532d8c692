// SPDX-License-Identifier: MIT
/** @defgroup zelt_sad Block matching (zelt/sad.h)
 *  Block matching: sums of absolute differences, Hadamard-transformed differences, differences, sums of squares.
 *
 *  A block is W x H samples, W columns and H rows, in memory of the caller. Sample kinds, from the end of a name:
 *    - none: unsigned 8-bit samples; strides in bytes
 *    - _16: signed 16-bit samples; strides in samples
 *    - _bi: signed 16-bit samples in src1 with a stride in samples, unsigned 8-bit samples in src2 with one in bytes
 *    - _bi_16: both blocks as in _16; for some sizes another name of the same function, though the addresses of the two
 *      may differ on x86-64: in programs that are not position independent, and where the C library is not glibc
 *
 *  Every function reads exactly its block, at any alignment of 8-bit and any 2-byte alignment of 16-bit samples; the
 *  strides may be any number, zero and negative ones included. Nothing is kept between calls: any thread.
 *  @{ */
#ifndef ZELT_SAD_H
#define ZELT_SAD_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** @name SAD, fixed sizes
 *  @{ */
/** Sum of absolute differences (SAD) of two blocks of the size in the name.
 *
 *  Exact for 8-bit and for mixed samples. For two 16-bit samples the magnitude of d = a - b is (d ^ m) - m with
 *  m = d >> 15: exact for |d| <= 32768, so for all samples of up to 15 bits; beyond, an odd d counts 2 less when
 *  positive and 2 more when negative. Samples within 0..4095 are the fast case.
 *  @param src1    first block, its top-left sample
 *  @param src2    second block, likewise
 *  @param s_src1  from one row of the first block to the next, in its samples
 *  @param s_src2  from one row of the second block to the next, in its samples
 *  @return        the sum */
ZELT_API uint32_t zelt_sad2x2(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad2x4(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad4x2(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad4x4(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad4x8(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad8x4(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad8x8(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad8x16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad16x8(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad16x16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad16x32(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad32x16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad32x32(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad32x64(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad64x32(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad64x64(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad4x8_bi(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad8x4_bi(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad8x8_bi(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad8x16_bi(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad16x8_bi(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad16x16_bi(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad16x32_bi(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad32x16_bi(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad32x32_bi(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad32x64_bi(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad64x32_bi(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad64x64_bi(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad2x2_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad2x4_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad4x2_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad4x4_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad4x8_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad8x4_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad8x8_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad8x16_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad16x8_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad16x16_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad16x32_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad32x16_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad32x32_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad32x64_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad64x32_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad64x64_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad4x8_bi_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad8x4_bi_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad8x8_bi_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad8x16_bi_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad16x8_bi_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad16x16_bi_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad16x32_bi_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad32x16_bi_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad32x32_bi_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad32x64_bi_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad64x32_bi_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API uint32_t zelt_sad64x64_bi_16(const void *src1, const void *src2, int s_src1, int s_src2);
/** @} */

/** SAD of two 8-bit blocks that are 8 or 16 columns wide.
 *  @param w       columns; 8 means 8, everything else 16
 *  @param h       rows
 *  @param src1    first block, its top-left sample
 *  @param src2    second block, likewise
 *  @param s_src1  from one row of the first block to the next, in its samples
 *  @param s_src2  from one row of the second block to the next, in its samples
 *  @return        the sum, 0 where h is below 1 */
ZELT_API uint32_t zelt_sad(int w, int h, const uint8_t *src1, const uint8_t *src2, int s_src1, int s_src2);

/** SAD of two 16-bit blocks of any size, with the magnitude of the fixed sizes.
 *  @param w       columns
 *  @param h       rows
 *  @param src1    first block, its top-left sample
 *  @param src2    second block, likewise
 *  @param s_src1  from one row of the first block to the next, in its samples
 *  @param s_src2  from one row of the second block to the next, in its samples
 *  @return        the sum, 0 where a size is below 1 */
ZELT_API uint32_t zelt_sad_16(int w, int h, const int16_t *src1, const int16_t *src2, int s_src1, int s_src2);

/** SAD of two 8-bit blocks that gives up early: after each row it returns the sum so far if that exceeds the threshold.
 *  @param w       columns
 *  @param h       rows
 *  @param src1    first block, its top-left sample
 *  @param src2    second block, likewise
 *  @param s_src1  from one row of the first block to the next, in its samples
 *  @param s_src2  from one row of the second block to the next, in its samples
 *  @param threshold  what a block must not exceed; one below 0 ends after the first row
 *  @return        the whole sum, or one above the threshold: that of the rows up to the one that exceeded it; 0 where a
 *                 size is below 1 */
ZELT_API int zelt_sad_eskip(int w, int h, const uint8_t *src1, const uint8_t *src2, int s_src1, int s_src2,
                            int threshold);

/** @name SATD, fixed sizes
 *  @{ */
/** Hadamard-transformed sum of absolute differences (SATD) of two blocks of N x N samples, N x N as in the name.
 *
 *  With D the differences, H the N x N Hadamard matrix of +1 and -1 and T = H D H^T, S is the sum of all |T[i][j]|.
 *  4x4 gives S >> 1 (S is even) and works modulo 2^16 throughout: differences and coefficients wrap to -32768..32767,
 *  of which -32768 counts 32768; the sum is exact for differences within 2047. 8x8 gives (S + 2) >> 2, exact for every
 *  input. zelt_satd8x8_16 takes its samples as unsigned, zelt_satd8x8_bi_16 as signed.
 *  @param src1    first block, its top-left sample
 *  @param src2    second block, likewise
 *  @param s_src1  from one row of the first block to the next, in its samples
 *  @param s_src2  from one row of the second block to the next, in its samples
 *  @return        the cost */
ZELT_API int zelt_satd4x4(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API int zelt_satd8x8(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API int zelt_satd4x4_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API int zelt_satd8x8_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API int zelt_satd4x4_bi(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API int zelt_satd8x8_bi(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API int zelt_satd4x4_bi_16(const void *src1, const void *src2, int s_src1, int s_src2);
ZELT_API int zelt_satd8x8_bi_16(const void *src1, const void *src2, int s_src1, int s_src2);
/** @} */

/** SATD of a 4x4 block of differences, such as zelt_diff4x4 writes with s_diff = 4: the rule of zelt_satd4x4.
 *  @param res  16 differences, row by row
 *  @return     the cost */
ZELT_API int zelt_hadamard4x4(const int16_t *res);

/** @name SATD, any size
 *  @{ */
/** SATD of two blocks of any size: the sum of the costs of their 4x4 tiles. A size that is not a multiple of 4 is
 *  rounded up to whole tiles, which are read whole.
 *  @param w       columns
 *  @param h       rows
 *  @param src1    first block, its top-left sample
 *  @param src2    second block, likewise
 *  @param s_src1  from one row of the first block to the next, in its samples
 *  @param s_src2  from one row of the second block to the next, in its samples
 *  @return        the cost, 0 where a size is below 1 */
ZELT_API int zelt_satd(int w, int h, const uint8_t *src1, const uint8_t *src2, int s_src1, int s_src2);
ZELT_API int zelt_satd_16(int w, int h, const int16_t *src1, const int16_t *src2, int s_src1, int s_src2);
/** @} */

/** @name Differences, fixed sizes
 *  @{ */
/** Differences src1 - src2 of two blocks of the size in the name, each the low 16 bits of the true difference.
 *  @param src1    first block, its top-left sample
 *  @param src2    second block, likewise
 *  @param s_src1  from one row of the first block to the next, in its samples
 *  @param s_src2  from one row of the second block to the next, in its samples
 *  @param s_diff  elements from one row of the result to the next
 *  @param diff    the differences, row by row; must not overlap the blocks. Nothing between its rows is written */
ZELT_API void zelt_diff2x2(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff2x4(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff4x2(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff4x4(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff4x8(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff8x4(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff8x8(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff8x16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff16x8(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff16x16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff16x32(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff32x16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff32x32(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff32x64(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff64x32(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff64x64(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff2x2_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff2x4_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff2x8_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff4x2_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff4x4_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff4x8_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff4x16_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff8x4_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff8x8_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff8x16_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff8x32_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff16x8_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff16x16_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff16x32_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff16x64_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff32x16_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff32x32_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff32x64_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff64x32_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff64x64_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff4x4_bi(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
ZELT_API void zelt_diff4x4_bi_16(const void *src1, const void *src2, int s_src1, int s_src2, int s_diff, int16_t *diff);
/** @} */

/** @name Differences, any size
 *  @{ */
/** Differences of two blocks of any size, as those of the fixed sizes. Nothing is written where a size is below 1.
 *  @param w       columns
 *  @param h       rows
 *  @param src1    first block, its top-left sample
 *  @param src2    second block, likewise
 *  @param s_src1  from one row of the first block to the next, in its samples
 *  @param s_src2  from one row of the second block to the next, in its samples
 *  @param s_diff  elements from one row of the result to the next
 *  @param diff    the differences, row by row; must not overlap the blocks. Nothing between its rows is written */
ZELT_API void zelt_diff(int w, int h, const uint8_t *src1, const uint8_t *src2, int s_src1, int s_src2, int s_diff,
                        int16_t *diff);
ZELT_API void zelt_diff_16(int w, int h, const int16_t *src1, const int16_t *src2, int s_src1, int s_src2, int s_diff,
                           int16_t *diff);
/** @} */

/** Sum of squared differences (SSD) of two 8-bit blocks, modulo 2^32.
 *  @param w       columns; 4, 8, 16 and 32 mean that, everything else 64
 *  @param h       rows
 *  @param src1    first block, its top-left sample
 *  @param src2    second block, likewise
 *  @param s_src1  from one row of the first block to the next, in its samples
 *  @param s_src2  from one row of the second block to the next, in its samples
 *  @return        the sum, 0 where h is below 1 */
ZELT_API uint32_t zelt_ssd(int w, int h, const uint8_t *src1, const uint8_t *src2, int s_src1, int s_src2);

/** Sum of squared differences of two 16-bit blocks, modulo 2^32. It knows 16, 32 and 64 columns of any number of rows.
 *  A w of 8 is 8 columns of 8 rows where h is 8, and of 2 rows otherwise; any other w is 4 columns of 4 rows where h is
 *  4, and of 2 rows otherwise.
 *  @param w       columns; 8, 16, 32 and 64 mean that, everything else 4
 *  @param h       rows, as above for 4 and 8 columns
 *  @param src1    first block, its top-left sample
 *  @param src2    second block, likewise
 *  @param s_src1  from one row of the first block to the next, in its samples
 *  @param s_src2  from one row of the second block to the next, in its samples
 *  @return        the sum, 0 where w is 16, 32 or 64 and h below 1 */
ZELT_API uint32_t zelt_ssd_16(int w, int h, const int16_t *src1, const int16_t *src2, int s_src1, int s_src2);

ZELT_END_DECLS

/** @} */

#endif
