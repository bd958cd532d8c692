// SPDX-License-Identifier: MIT
/** @defgroup zelt_bitb Bitstream buffers (zelt/bitb.h)
 *  Bitstream buffers: reference-counted blocks of bytes for coded data.
 *  @{ */
#ifndef ZELT_BITB_H
#define ZELT_BITB_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** A byte buffer; its size is the caller's to remember. Created by zelt_bitb_create and freed by the last release;
 *  counted by any number of threads through its own pointers, everything else of it belongs to one thread at a time. On
 *  32-bit targets the record is 28 words in this order; elsewhere pointers have their natural size. */
struct ZELT_BITB {
    int32_t refcnt;                    /**< reference count */
    int32_t (*addref)(ZELT_BITB *bit); /**< adds a reference: the new count, ZELT_ERR_INVALID_ARG for null */
    int32_t (*getref)(ZELT_BITB *bit); /**< the count now, ZELT_ERR_INVALID_ARG for null */
    /** Drops a reference: the new count, ZELT_ERR_INVALID_ARG for null. At 0 buffer and record are freed. */
    int32_t (*release)(ZELT_BITB *bit);
    void *buf;              /**< the bytes */
    uint32_t buf_aux;       /**< the allocator's second address of them */
    uint32_t reserved[2];   /**< 0, never read */
    uint32_t tag;           /**< the caller's tag, as given */
    uint32_t user[17];      /**< the caller's words: 0 at first, never read */
    zelt_alloc_fn alloc_cb; /**< allocator of the buffer */
    zelt_free_fn free_cb;   /**< its free routine; null where the caller gave none */
};

/** Creates a bitstream buffer. Contents are undefined. Any thread.
 *  @param size      bytes
 *  @param tag       stored
 *  @param unused    ignored
 *  @param alloc_cb  allocator of the buffer, or null for malloc
 *  @param free_cb   its free routine, ignored where alloc_cb is null; without one the buffer is never freed
 *  @param err       where the status goes, or null: ZELT_OK; ZELT_ERR_OUT_OF_MEMORY; ZELT_ERR_BITB_ALLOC where the
 *                   allocator gives null
 *  @return          the buffer with a count of 1, or null, nothing staying allocated then */
ZELT_API ZELT_BITB *zelt_bitb_create(uint32_t size, uint32_t tag, uint32_t unused, zelt_alloc_fn alloc_cb,
                                     zelt_free_fn free_cb, int32_t *err);

ZELT_END_DECLS

/** @} */

#endif
