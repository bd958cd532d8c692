// SPDX-License-Identifier: MIT
/** @defgroup zelt_irsz Resizing (zelt/irsz.h)
 *  Bilinear resizing of 8-bit and RGB565 pictures in fixed point, a whole picture or a band of rows at a time.
 *
 *  Destination sample i of an axis lies at position i * step / 2^18 on the grid of every 2^shift-th source sample, with
 *  step = (((src - 1) >> shift) << 18) / dst and shift from the integer ratio src / dst: 0 below 3, 1 below 5, 2 below
 *  9, 3 below 17, 4 from there. There is no half-pixel offset. The top three bits of the position's fraction are the
 *  phase, and a value is (TL w0 + TR w1 + BL w2 + BR w3) >> 6, without rounding, with the weights of both phases; the
 *  neighbours are 2^shift samples apart. No sample outside the picture is read.
 *  @{ */
#ifndef ZELT_IRSZ_H
#define ZELT_IRSZ_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** Pixel formats of the resizer. */
enum ZELT_IRSZ_FORMAT {
    ZELT_IRSZ_8B = 20,            /**< one 8-bit channel */
    ZELT_IRSZ_8B8B8B = 21,        /**< three 8-bit channels */
    ZELT_IRSZ_8B8B8B_5B6B5B = 23, /**< bytes R, G, B in, RGB565 words out, low bits dropped */
    ZELT_IRSZ_5B6B5B = 25,        /**< RGB565 words, each field at its own precision */
    ZELT_IRSZ_8B8B8B8B = 29       /**< four 8-bit channels */
};

/** Modes of the resizer. */
enum ZELT_IRSZ_MODE {
    ZELT_IRSZ_WHOLE = 10, /**< each call resizes a whole picture */
    ZELT_IRSZ_BANDS = 11  /**< each call takes a band of source rows and writes the rows that it completes */
};

/** What a resizer is created for.
 *
 *  Both pitches are in **pixels**, of their own side's size: for ZELT_IRSZ_8B8B8B_5B6B5B the source's have 3 bytes and
 *  the destination's 2. With ZELT_IRSZ_5B6B5B alone both are in **bytes**. The functions that work without a resizer
 *  (zelt_irsz8b_full and so on) take bytes for every format. Negative ones work everywhere. */
typedef struct ZELT_IRSZ_PARAM {
    int32_t format;    /**< ZELT_IRSZ_8B and so on */
    int32_t mode;      /**< ZELT_IRSZ_WHOLE or ZELT_IRSZ_BANDS */
    int32_t src_w;     /**< source width in pixels */
    int32_t src_h;     /**< source height in rows */
    int32_t src_pitch; /**< pixels from one source row to the next; for ZELT_IRSZ_5B6B5B bytes */
    int32_t band_rows; /**< source rows of a band, a power of two; below 1 counts as 1; ignored for whole pictures */
    int32_t dst_w;     /**< destination width in pixels */
    int32_t dst_h;     /**< destination height in rows */
    int32_t dst_pitch; /**< pixels from one destination row to the next; for ZELT_IRSZ_5B6B5B bytes */
    void *dst;         /**< destination picture at any address, owned by the caller; apart from the source */
} ZELT_IRSZ_PARAM;

/** A resizer. It belongs to one thread at a time. */
typedef struct ZELT_IRSZ ZELT_IRSZ;

/** Creates a resizer. Nothing is allocated later. Any thread.
 *  @param param  what it is for; not kept
 *  @param err    where the status goes, or null: 0, -2 for an unknown mode, -4 for an unknown format, -3 where there
 *                is no memory
 *  @return       the resizer, to be freed with zelt_irsz_delete, or null */
ZELT_API ZELT_IRSZ *zelt_irsz_create(const ZELT_IRSZ_PARAM *param, int32_t *err);

/** Frees a resizer.
 *  @param irsz  the resizer, or null, which does nothing */
ZELT_API void zelt_irsz_delete(ZELT_IRSZ *irsz);

/** @name With a resizer
 *  @{ */
/** Resizes a picture, or a band of one. The names with a format do it for resizers of that format alone (for others
 *  nothing), zelt_irsz for any.
 *
 *  In band mode the bands come in order, once; a resizer serves one picture. A destination row is written by the call
 *  that brings its lower source row, so that one source row is carried over inside the resizer. Every band but the last
 *  has band_rows rows; the last has as many, or a power of two that covers what remains, and rows at or past src_h are
 *  not read. The result is that of a whole picture where band_rows > src_h / dst_h + 1, but for equal heights without
 *  horizontal enlarging, where bands under 128 rows may differ near the end. Shorter bands give rows that depend on
 *  where the bands end.
 *  @param irsz  the resizer
 *  @param src   the picture, or the first row of the band
 *  @param y0    first row of the band, a multiple of rows; ignored for whole pictures
 *  @param rows  rows of the band, a power of two; ignored for whole pictures
 *  @return      0 */
ZELT_API int32_t zelt_irsz(ZELT_IRSZ *irsz, const uint8_t *src, int32_t y0, int32_t rows);
ZELT_API int32_t zelt_irsz8b(ZELT_IRSZ *irsz, const uint8_t *src, int32_t y0, int32_t rows);
ZELT_API int32_t zelt_irsz8b8b8b(ZELT_IRSZ *irsz, const uint8_t *src, int32_t y0, int32_t rows);
ZELT_API int32_t zelt_irsz8b8b8b_5b6b5b(ZELT_IRSZ *irsz, const uint8_t *src, int32_t y0, int32_t rows);
ZELT_API int32_t zelt_irsz5b6b5b(ZELT_IRSZ *irsz, const uint8_t *src, int32_t y0, int32_t rows);
ZELT_API int32_t zelt_irsz8b8b8b8b(ZELT_IRSZ *irsz, const uint8_t *src, int32_t y0, int32_t rows);
/** @} */

/** @name One row
 *  @{ */
/** Writes one destination row from two source rows, of the format in the name. Nothing is written where dst_w is below
 *  1. The destination lies apart from the source rows. Any address, any thread.
 *  @param rows     the source rows, the upper one first; both are read, up to the last sample that is needed
 *  @param weights  zelt_tbl_bilinear_rszw plus 4 times the vertical phase
 *  @param dst_w    destination width in pixels
 *  @param x_shift  horizontal grid: every 2^x_shift-th source pixel
 *  @param x_next   distance of the right neighbour in pixels, 1 << x_shift; not read where x_step is 0
 *  @param x_step   horizontal step in 1 / 2^18 of the grid, 0 or more
 *  @param dst_row  where the row goes */
ZELT_API void zelt_irsz8b_line(const uint8_t *const *rows, const uint8_t *weights, int32_t dst_w, int32_t x_shift,
                               int32_t x_next, int32_t x_step, uint8_t *dst_row);
ZELT_API void zelt_irsz8b8b8b_line(const uint8_t *const *rows, const uint8_t *weights, int32_t dst_w, int32_t x_shift,
                                   int32_t x_next, int32_t x_step, uint8_t *dst_row);
ZELT_API void zelt_irsz8b8b8b_5b6b5b_line(const uint8_t *const *rows, const uint8_t *weights, int32_t dst_w,
                                          int32_t x_shift, int32_t x_next, int32_t x_step, uint8_t *dst_row);
ZELT_API void zelt_irsz5b6b5b_line(const uint8_t *const *rows, const uint8_t *weights, int32_t dst_w, int32_t x_shift,
                                   int32_t x_next, int32_t x_step, uint8_t *dst_row);
ZELT_API void zelt_irsz8b8b8b8b_line(const uint8_t *const *rows, const uint8_t *weights, int32_t dst_w, int32_t x_shift,
                                     int32_t x_next, int32_t x_step, uint8_t *dst_row);
/** @} */

/** @name A whole picture, without a resizer
 *  @{ */
/** Resizes a whole picture of the format in the name, without a resizer. Nothing is written where a size is below 1.
 *  Source and destination lie apart. Any address, any thread.
 *  @param src            source picture
 *  @param src_row_bytes  bytes, not pixels as in ZELT_IRSZ_PARAM, from one source row to the next
 *  @param dst_w          destination width in pixels
 *  @param dst_h          destination height in rows
 *  @param dst_row_bytes  bytes, likewise, from one destination row to the next
 *  @param dst            destination picture
 *  @param x_packed       horizontal step << 3 | shift, see bilinear_rsz_step_size
 *  @param y_packed       the same of the vertical axis */
ZELT_API void zelt_irsz8b_full(const uint8_t *src, int32_t src_row_bytes, int32_t dst_w, int32_t dst_h,
                               int32_t dst_row_bytes, uint8_t *dst, uint32_t x_packed, uint32_t y_packed);
ZELT_API void zelt_irsz8b8b8b_full(const uint8_t *src, int32_t src_row_bytes, int32_t dst_w, int32_t dst_h,
                                   int32_t dst_row_bytes, uint8_t *dst, uint32_t x_packed, uint32_t y_packed);
ZELT_API void zelt_irsz8b8b8b_5b6b5b_full(const uint8_t *src, int32_t src_row_bytes, int32_t dst_w, int32_t dst_h,
                                          int32_t dst_row_bytes, uint8_t *dst, uint32_t x_packed, uint32_t y_packed);
ZELT_API void zelt_irsz5b6b5b_full(const uint8_t *src, int32_t src_row_bytes, int32_t dst_w, int32_t dst_h,
                                   int32_t dst_row_bytes, uint8_t *dst, uint32_t x_packed, uint32_t y_packed);
ZELT_API void zelt_irsz8b8b8b8b_full(const uint8_t *src, int32_t src_row_bytes, int32_t dst_w, int32_t dst_h,
                                     int32_t dst_row_bytes, uint8_t *dst, uint32_t x_packed, uint32_t y_packed);
/** @} */

/** Steps of both axes in packed form, step << 3 | shift. A size below 1 gives a step of 0. Any thread.
 *  @param src_w     source width
 *  @param src_h     source height
 *  @param dst_w     destination width
 *  @param dst_h     destination height
 *  @param x_packed  where the horizontal one goes
 *  @param y_packed  where the vertical one goes
 *  @return          the vertical one */
ZELT_API uint32_t bilinear_rsz_step_size(int32_t src_w, int32_t src_h, int32_t dst_w, int32_t dst_h, uint32_t *x_packed,
                                         uint32_t *y_packed);

/** @name Weights
 *  @{ */
/** Bilinear weights, four bytes at fx * 32 + fy * 4 for the phases fx and fy of 0..7: (8 - fx)(8 - fy), fx (8 - fy),
 *  (8 - fx) fy, fx fy, for the top left, top right, bottom left and bottom right sample. They sum to 64. Both tables
 *  hold the same. */
extern ZELT_API const uint8_t zelt_tbl_bilinear_rszw[256];
extern ZELT_API const uint8_t zelt_irsz_tbl_rsz_weight[256];
/** @} */

ZELT_END_DECLS

/** @} */

#endif
