// SPDX-License-Identifier: MIT
/** @defgroup zelt_rbuf Rings of bytes (zelt/rbuf.h)
 *  A ring of bytes between one writer and one reader, with text lines.
 *  @{ */
#ifndef ZELT_RBUF_H
#define ZELT_RBUF_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** A ring. One thread at a time.
 *
 *  Equal indices mean empty, so that one byte stays unused. Two rules stretch that: one put may fill the whole storage
 *  of a ring whose `tail` is 0, which leaves `head` at `size`; and a line that ends in a bare line feed takes one byte
 *  too many from the ring, which can leave `tail` up to one past `head` or past `size`. The lengths below are what
 *  their formulas give in these states, too. */
struct ZELT_RBUF {
    int32_t head; /**< where the next byte is written */
    int32_t tail; /**< where the next byte is read */
    int32_t size; /**< bytes of storage */
    uint8_t *buf; /**< the storage */
};

/** Creates an empty ring.
 *  @param size  bytes of storage, at least 1; the ring holds one less
 *  @return      the ring, for zelt_rbuf_delete; null without memory or for a smaller size */
ZELT_API ZELT_RBUF *zelt_rbuf_create(int size);

/** Frees a ring.
 *  @param rb  the ring, or null, which does nothing */
ZELT_API void zelt_rbuf_delete(ZELT_RBUF *rb);

/** Drops all data.
 *  @param rb  the ring */
ZELT_API void zelt_rbuf_empty(ZELT_RBUF *rb);

/** Capacity.
 *  @param rb  the ring
 *  @return    `size - 1` */
ZELT_API int zelt_rbuf_get_tot_len(ZELT_RBUF *rb);

/** @name State
 *  @{ */
/** Whether a ring is full (`head == (tail + size - 1) % size`), and whether it is empty (`head == tail`).
 *  @param rb  the ring
 *  @return    1 or 0 */
ZELT_API int zelt_rbuf_is_full(ZELT_RBUF *rb);
ZELT_API int zelt_rbuf_is_empty(ZELT_RBUF *rb);
/** @} */

/** Length of the data. Wrapped data counts one byte less than there is.
 *  @param rb  the ring
 *  @return    `head - tail` where that is not negative, else `size + head - 1 - tail` */
ZELT_API int zelt_rbuf_get_fill_len(ZELT_RBUF *rb);

/** Length of the free space. It counts two bytes more than can be stored while the data is not wrapped.
 *  @param rb  the ring
 *  @return    `tail - head - 1` where tail is greater than head, else `size + tail + 1 - head` */
ZELT_API int zelt_rbuf_get_free_len(ZELT_RBUF *rb);

/** Length of the data that lies in one piece from `tail` on.
 *  @param rb  the ring
 *  @return    `(tail > head ? size : head) - tail` */
ZELT_API int zelt_rbuf_get_fillc_len(ZELT_RBUF *rb);

/** Length of the free space that lies in one piece from `head` on.
 *  @param rb  the ring
 *  @return    `tail - head - 1` where tail is greater than head, else `size - head`, less 1 where tail is 0 */
ZELT_API int zelt_rbuf_get_freec_len(ZELT_RBUF *rb);

/** Free space in one piece, to be written by the caller and then committed with zelt_rbuf_skip_head.
 *  @param rb   the ring
 *  @param ptr  where its address goes; null when the ring is full
 *  @param len  where its length goes, as zelt_rbuf_get_freec_len gives it; 0 when the ring is full
 *  @return     0 */
ZELT_API int zelt_rbuf_get_head(ZELT_RBUF *rb, uint8_t **ptr, int *len);

/** Data in one piece, to be read by the caller and then consumed with zelt_rbuf_skip_tail.
 *  @param rb   the ring
 *  @param ptr  where its address goes; null when the ring is empty
 *  @param len  where its length goes, as zelt_rbuf_get_fillc_len gives it; 0 when the ring is empty
 *  @return     0 */
ZELT_API int zelt_rbuf_get_tail(ZELT_RBUF *rb, uint8_t **ptr, int *len);

/** Commits bytes that the caller wrote into the free space. Where `tail` is 0 and the space up to the end of the
 *  storage does not exceed len, nothing is committed, although the count of the bytes that would fit is returned.
 *  @param rb   the ring
 *  @param len  how many bytes; a negative number moves nothing
 *  @return     how many of them fit; -1, and nothing moved, where `head` is `size` and `tail` is 0 */
ZELT_API int zelt_rbuf_skip_head(ZELT_RBUF *rb, int len);

/** Consumes bytes.
 *  @param rb   the ring
 *  @param len  how many at most; a negative number moves nothing
 *  @return     how many there were; -1 where `tail` is one past `size` and `head` is 0, which makes the ring empty */
ZELT_API int zelt_rbuf_skip_tail(ZELT_RBUF *rb, int len);

/** Copies bytes into the ring, all or none. An empty ring whose `tail` is 0 takes `size` bytes at once.
 *  @param rb    the ring
 *  @param data  the bytes
 *  @param len   how many; a negative number moves nothing
 *  @return      len, or 0 where they do not fit */
ZELT_API int zelt_rbuf_put(ZELT_RBUF *rb, const uint8_t *data, int len);

/** Copies bytes out of the ring and consumes them.
 *  @param rb   the ring
 *  @param dst  where they go
 *  @param len  how many at most; a negative number moves nothing
 *  @return     how many there were; -1, and nothing copied, where zelt_rbuf_skip_tail gives it */
ZELT_API int zelt_rbuf_get(ZELT_RBUF *rb, uint8_t *dst, int len);

/** Takes one line of text whose lines end in carriage return and line feed: **with bare line feeds it loses bytes**.
 *  The line is what comes up to and with the first line feed; in `line` it ends in carriage return, line feed and a
 *  zero byte, and a carriage return that is missing in the ring is added. The ring loses as many bytes as the result
 *  says, so a line that ended in a bare line feed takes the first byte of the next line with it. Where a line wraps
 *  between its carriage return and its line feed, the result counts one byte too many: the line feed is at `result - 2`
 *  and the byte behind it is left as it was.
 *  @param rb    the ring
 *  @param line  room for `max + 2` bytes, and for `size + 1` where that is more: data before the wrap is copied
 *               whatever max says
 *  @param max   bytes to look for the line feed in: `max - 1`, or max where the data wraps; below 0 nothing is done
 *  @return      length of the line; 0, and nothing consumed, where there is no line feed or a zero byte before it */
ZELT_API int zelt_rbuf_get_one_line(ZELT_RBUF *rb, char *line, int max);

ZELT_END_DECLS

/** @} */

#endif
