// SPDX-License-Identifier: MIT
/** @defgroup zelt_mfal Frame allocators (zelt/mfal.h)
 *  Frame allocators: reference-counted records that belong to their caller.
 *  @{ */
#ifndef ZELT_MFAL_H
#define ZELT_MFAL_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** A counted record with room for a caller's frame allocator. Created by zelt_mfal_create and freed by the last
 *  release; counted by any number of threads through its own pointers. On 32-bit targets the record is 21 words in
 *  this order; elsewhere pointers have their natural size. */
struct ZELT_MFAL {
    int32_t refcnt;                     /**< reference count */
    int32_t (*addref)(ZELT_MFAL *mfal); /**< adds a reference: the new count, ZELT_ERR_INVALID_ARG for null */
    int32_t (*getref)(ZELT_MFAL *mfal); /**< the count now, ZELT_ERR_INVALID_ARG for null */
    /** Drops a reference: the new count, ZELT_ERR_INVALID_ARG for null. At 0 the record is freed. */
    int32_t (*release)(ZELT_MFAL *mfal);
    uint32_t user[17]; /**< the caller's words: 0 at first, never read */
};

/** Creates a record. Any thread.
 *  @param unused  ignored
 *  @param err     where the status goes, or null: ZELT_OK or ZELT_ERR_OUT_OF_MEMORY
 *  @return        the record with a count of 1, or null */
ZELT_API ZELT_MFAL *zelt_mfal_create(uint32_t unused, int32_t *err);

ZELT_END_DECLS

/** @} */

#endif
