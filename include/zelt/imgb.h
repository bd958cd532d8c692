// SPDX-License-Identifier: MIT
/** @defgroup zelt_imgb Image buffers (zelt/imgb.h)
 *  Image buffers: reference-counted pictures whose planes lie back to back in one block of memory.
 *  @{ */
#ifndef ZELT_IMGB_H
#define ZELT_IMGB_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** Option bits of zelt_imgb_create, zelt_imgb_rebirth and zelt_imgb_option. */
enum ZELT_IMGB_OPTION {
    ZELT_IMGB_CLEAR_ALIGN = 1, /**< zero what alignment added right of and below the picture */
    ZELT_IMGB_CLEAR_PAD = 2    /**< zero the padding border */
};

/** A picture of up to four planes. Created by zelt_imgb_create and freed by the last release; counted by any number of
 *  threads through its own pointers, everything else of it belongs to one thread at a time. On 32-bit targets the
 *  record is 58 words in this order; elsewhere pointers have their natural size. */
struct ZELT_IMGB {
    int32_t refcnt;                    /**< reference count */
    int32_t (*addref)(ZELT_IMGB *img); /**< adds a reference: the new count, ZELT_ERR_INVALID_ARG for null */
    int32_t (*getref)(ZELT_IMGB *img); /**< the count now, ZELT_ERR_INVALID_ARG for null */
    /** Drops a reference: the new count, ZELT_ERR_INVALID_ARG for null. At 0 block and record are freed. */
    int32_t (*release)(ZELT_IMGB *img);
    int32_t w;              /**< width of plane 0 in samples, as asked for */
    int32_t h;              /**< height of plane 0 in rows, as asked for */
    int32_t x;              /**< left edge of the visible region, 0 at first; the caller's to set */
    int32_t y;              /**< top edge of the visible region, 0 at first; the caller's to set */
    int32_t cs;             /**< colour space, ZELT_CS_* */
    int32_t stride[4];      /**< bytes from one row to the next, padding included */
    int32_t rows[4];        /**< rows of a plane, padding included */
    void *plane[4];         /**< sample (0, 0) of each plane, inside the padding */
    uint32_t plane_aux[4];  /**< the same places in the allocator's second address space; 0 where base_aux is 0 */
    uint32_t user[17];      /**< the caller's words: 0 at first, kept by rebirth, never read */
    int32_t aw;             /**< aligned width of plane 0 in samples */
    int32_t ah;             /**< aligned height of plane 0 in rows */
    zelt_alloc_fn alloc_cb; /**< allocator of the block */
    zelt_free_fn free_cb;   /**< its free routine */
    void *base[4];          /**< start of each plane, padding included; base[0] is the block */
    uint32_t base_aux[4];   /**< the same places in the second address space: base_aux[0] is the allocator's word, and
                                 the others count on from it, from 0 too */
    int32_t size;           /**< bytes in the block */
    uint32_t reserved[3];   /**< 0, never read */
};

/** Creates a picture. The block holds, plane after plane without gaps, `rows` rows of `stride` bytes; a stride is bytes
 *  per sample times (aligned width + twice the horizontal padding). Contents are undefined but for what `option`
 *  clears. Any thread.
 *  @param w         width in pixels
 *  @param h         height in rows
 *  @param cs        colour space: ZELT_CS_* below 600
 *  @param option    ZELT_IMGB_CLEAR_*, or 0
 *  @param align     a word per plane, or null for none: the plane's width is rounded up to a multiple of the high half
 *                   (samples), its height to one of the low half (rows); both are powers of two, and 0 gives a size
 *                   of 0
 *  @param pad       a word per plane, or null for none: the border in samples left and right (high half) and in rows
 *                   above and below (low half)
 *  @param alloc_cb  allocator of the block, or null for zelt_malloc_align32
 *  @param free_cb   its free routine; ignored where alloc_cb is null
 *  @param err       where the status goes, or null: ZELT_OK; ZELT_ERR_INVALID_ARG for an allocator without free
 *                   routine; ZELT_ERR_OUT_OF_MEMORY; ZELT_ERR_UNSUPPORTED for an unknown colour space;
 *                   ZELT_ERR_BUFFER_ALLOC where the allocator gives null, and where a size is negative or the block
 *                   would exceed 2^31 - 1 bytes
 *  @return          the picture with a count of 1, or null */
ZELT_API ZELT_IMGB *zelt_imgb_create(int32_t w, int32_t h, int32_t cs, uint32_t option, const uint32_t *align,
                                     const uint32_t *pad, zelt_alloc_fn alloc_cb, zelt_free_fn free_cb, int32_t *err);

/** Clears what alignment and padding added around the planes of a picture. zelt_imgb_create and zelt_imgb_rebirth call
 *  it with the arrays of their geometry. Nothing outside a plane's own `stride * rows` bytes is written. In packed
 *  formats ZELT_IMGB_CLEAR_ALIGN takes the size from the record's own `w` and `h`, and clears the rows below the
 *  picture for `aw` bytes only, whatever the bytes per pixel.
 *  @param img      the picture
 *  @param option   ZELT_IMGB_CLEAR_*; other bits are ignored
 *  @param nplanes  planes to clear, at most 4
 *  @param w        width of each plane in samples
 *  @param h        height of each plane in rows
 *  @param aw       aligned width of each plane in samples
 *  @param ah       aligned height of each plane in rows
 *  @param pad      padding words as in zelt_imgb_create; null, and the border stays as it is
 *  @param bps      a word per plane: bytes per sample in the high half
 *  @return         ZELT_OK; ZELT_ERR_UNSUPPORTED where ZELT_IMGB_CLEAR_ALIGN meets a colour space outside 10 to 599 */
ZELT_API int32_t zelt_imgb_option(ZELT_IMGB *img, uint32_t option, int32_t nplanes, const int32_t w[4],
                                  const int32_t h[4], const int32_t aw[4], const int32_t ah[4], const uint32_t *pad,
                                  const uint32_t bps[4]);

/** Gives a picture another size or colour space within the block it has. Its count, callbacks, `size` (the capacity)
 *  and `user` words are kept; `x` and `y` become 0. The caller holds a reference and no other thread uses the planes.
 *  @param img     the picture, not null
 *  @param w       new width in pixels
 *  @param h       new height in rows
 *  @param cs      new colour space
 *  @param option  as in zelt_imgb_create
 *  @param align   as in zelt_imgb_create
 *  @param pad     as in zelt_imgb_create
 *  @return        ZELT_OK; ZELT_ERR_UNSUPPORTED for an unknown colour space; ZELT_ERR_OUT_OF_MEMORY where a size is
 *                 negative or the block is too small. After an error the picture is as it was */
ZELT_API int32_t zelt_imgb_rebirth(ZELT_IMGB *img, int32_t w, int32_t h, int32_t cs, uint32_t option,
                                   const uint32_t *align, const uint32_t *pad);

/** Plane sizes of a planar colour space. Any thread.
 *  @param cs       a planar colour space (10 to 99), or 400, which counts as one plane of 3-byte samples
 *  @param w        widths in samples: the first is read, those of the further planes are written
 *  @param h        heights in rows, likewise
 *  @param nplanes  the number of planes, 1 to 4
 *  @param bps      a word for each plane: bytes per sample in the high half, 1 in the low half
 *  @return         ZELT_OK, or ZELT_ERR_UNSUPPORTED, nothing being written then */
ZELT_API int32_t zelt_imgb_get_dimension(int32_t cs, int32_t w[4], int32_t h[4], int32_t *nplanes, uint32_t bps[4]);

/** Fills the border of every plane with the nearest sample of the picture: each row's first and last sample go left and
 *  right, then the first and last row, with what is left and right of them, up and down.
 *
 *  Planes of 8-bit samples take borders of 0, 8, 16, 24, 32, 40 or 80 samples left and right; above and below any
 *  number of rows, if the stride is a multiple of 4. **Any other width or stride stops the program**, by a store to
 *  address 0. Planes of 16-bit samples take any border and stride.
 *
 *  With alignment the border repeats column `aw - 1` and row `ah - 1`, not the last ones of the w x h picture: what is
 *  between belongs to the picture here, and is written first, as decoders do. A plane is as large as `aw` and `ah` make
 *  it (zelt_imgb_get_dimension), or as its own stride and rows less padding if that is smaller. Pictures of other than
 *  planar colour spaces stay as they are.
 *
 *  The usual recipe, for 4:2:0 of any size with a border of 32 samples, 16 for chroma:
 *  @code
 *  const uint32_t align[] = {16 << 16 | 16, 8 << 16 | 8, 8 << 16 | 8};
 *  const uint32_t pad[] = {32 << 16 | 32, 16 << 16 | 16, 16 << 16 | 16};
 *  ZELT_IMGB *img = zelt_imgb_create(w, h, ZELT_CS_YUV420, 0, align, pad, NULL, NULL, &err);
 *  // write `aw` columns and `ah` rows of plane 0, half of both of planes 1 and 2
 *  zelt_imgb_expand(img, pad);
 *  @endcode
 *  @param img  the picture
 *  @param pad  the padding words that the picture was created with; half a word of 0 means no border there, null no
 *              border at all. Where the halves of a word differ the left fill starts `low half` samples left of each
 *              row, not `high half`, and so may miss the border or fall into the picture; nothing outside a plane's
 *              memory is written */
ZELT_API void zelt_imgb_expand(ZELT_IMGB *img, const uint32_t *pad);

/** Repeats a sample of each row: writes `count` copies of the one at `src`, and goes on to the next row. Any thread.
 *  @param src     the sample of the first row
 *  @param dst     where its copies go
 *  @param rows    rows
 *  @param stride  bytes from row to row, of both
 *  @param count   copies: 8, 16, 24, 32, 40 or 80; 0 does nothing, any other number ends the program by a store to
 *                 address 0 */
ZELT_API void zelt_imgb_expand_ver(const uint8_t *src, uint8_t *dst, int32_t rows, int32_t stride, int32_t count);

/** The same for 16-bit samples, with any count. Any thread.
 *  @param src     the sample of the first row, 2-byte aligned
 *  @param dst     where its copies go, 2-byte aligned
 *  @param rows    rows
 *  @param stride  bytes from row to row, of both, rounded up to an even number
 *  @param count   copies; nothing is written below 1 */
ZELT_API void zelt_imgb_expand_ver_16(const uint16_t *src, uint16_t *dst, int32_t rows, int32_t stride, int32_t count);

/** Repeats a row of bytes: writes `count` copies of it, back to back. Any thread.
 *  @param src    the row
 *  @param dst    where its copies go
 *  @param width  bytes in the row and from copy to copy, a multiple of 4; any other number ends the program by a
 *                store to address 0
 *  @param count  copies; where width is not a multiple of 8, rounded up to a multiple of 8 */
ZELT_API void zelt_imgb_expand_hor(const uint8_t *src, uint8_t *dst, int32_t width, int32_t count);

ZELT_END_DECLS

/** @} */

#endif
