// SPDX-License-Identifier: MIT
/** @defgroup zelt_vdata Owned byte blocks (zelt/vdata.h)
 *  A tagged byte block that owns its memory.
 *  @{ */
#ifndef ZELT_VDATA_H
#define ZELT_VDATA_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** An owned byte block. The record itself belongs to the caller; start from one filled with zeros. One thread at a
 *  time. */
struct ZELT_VDATA {
    uint32_t type; /**< the caller's tag, carried and never interpreted */
    int32_t size;  /**< bytes of data */
    void *data;    /**< size bytes from malloc, then two zero bytes, so that 8- and 16-bit text is terminated */
};

/** Makes `dst` a copy of `src`, data included. What `dst` held before is not freed: call zelt_vdata_free first.
 *  @param dst  the record to fill
 *  @param src  the record to copy
 *  @return     ZELT_OK; ZELT_ERR_INVALID_ARG where src holds no data, dst then being left as it was;
 *              ZELT_ERR_OUT_OF_MEMORY, dst->data then being null and the rest as it was */
ZELT_API int32_t zelt_vdata_cpy(ZELT_VDATA *dst, const ZELT_VDATA *src);

/** Fills a record with a copy of some bytes. What it held before is not freed: call zelt_vdata_free first.
 *  @param v      the record to fill
 *  @param bytes  the bytes to copy
 *  @param size   how many, at least 1
 *  @param type   the caller's tag
 *  @return       ZELT_OK; ZELT_ERR_INVALID_ARG where bytes is null or size below 1, v then being left as it was;
 *                ZELT_ERR_OUT_OF_MEMORY, v->data then being null and the rest as it was */
ZELT_API int32_t zelt_vdata_set(ZELT_VDATA *v, const uint8_t *bytes, int32_t size, uint32_t type);

/** Frees the data and clears the record.
 *  @param v  the record, or null, which does nothing */
ZELT_API void zelt_vdata_free(ZELT_VDATA *v);

ZELT_END_DECLS

/** @} */

#endif
