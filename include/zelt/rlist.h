// SPDX-License-Identifier: MIT
/** @defgroup zelt_rlist Queues over a pool (zelt/rlist.h)
 *  A first-in first-out queue over a fixed pool of buffers: nothing is allocated after its creation.
 *  @{ */
#ifndef ZELT_RLIST_H
#define ZELT_RLIST_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** A pool of buffers in one chain, null at both ends. The last `used` of them hold data, the oldest at the very end;
 *  the free ones lie in front, and one that is released goes to the front, so that it is used again last. One thread
 *  at a time. */
struct ZELT_RLIST {
    int32_t cnt;      /**< buffers in the pool */
    uint32_t size;    /**< bytes per buffer */
    int32_t used;     /**< buffers that hold data */
    ZELT_NODE *last;  /**< end of the chain: the oldest data */
    ZELT_NODE *first; /**< front of the chain */
};

/** Creates a pool.
 *  @param size  bytes per buffer
 *  @param cnt   number of buffers; less than 1 counts as 1
 *  @return      the pool, for zelt_rlist_delete, or null without memory */
ZELT_API ZELT_RLIST *zelt_rlist_create(uint32_t size, int cnt);

/** Frees a pool with its buffers.
 *  @param rl  the pool, or null, which does nothing */
ZELT_API void zelt_rlist_delete(ZELT_RLIST *rl);

/** @name Counts
 *  @{ */
/** Number of buffers that hold data, and of free ones.
 *  @param rl  the pool
 *  @return    `used`, or `cnt - used` */
ZELT_API int zelt_rlist_get_used_cnt(ZELT_RLIST *rl);
ZELT_API int zelt_rlist_get_free_cnt(ZELT_RLIST *rl);
/** @} */

/** Takes a free buffer as the newest one with data, to be filled by the caller.
 *  @param rl  the pool
 *  @return    `size` bytes at a multiple of 8, as they were left; null when no buffer is free */
ZELT_API void *zelt_rlist_get_buf(ZELT_RLIST *rl);

/** Oldest buffer with data.
 *  @param rl  the pool
 *  @return    the buffer, which stays in the queue; null when none holds data */
ZELT_API void *zelt_rlist_get_data(ZELT_RLIST *rl);

/** @name Releasing
 *  @{ */
/** Releases the oldest buffer with data, or all of them, oldest first. Does nothing where none holds data.
 *  @param rl  the pool */
ZELT_API void zelt_rlist_rem_data(ZELT_RLIST *rl);
ZELT_API void zelt_rlist_rem_all(ZELT_RLIST *rl);
/** @} */

ZELT_END_DECLS

/** @} */

#endif
