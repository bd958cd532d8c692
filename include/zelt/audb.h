// SPDX-License-Identifier: MIT
/** @defgroup zelt_audb Audio buffers (zelt/audb.h)
 *  Audio buffers: reference-counted blocks of samples, in one buffer or in one for each channel.
 *  @{ */
#ifndef ZELT_AUDB_H
#define ZELT_AUDB_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** Audio samples. Created by zelt_audb_create and freed by the last release; counted by any number of threads through
 *  its own pointers, everything else of it belongs to one thread at a time. On 32-bit targets the record is 60 words in
 *  this order; elsewhere pointers have their natural size. */
struct ZELT_AUDB {
    int32_t refcnt;                    /**< reference count */
    int32_t (*addref)(ZELT_AUDB *aud); /**< adds a reference: the new count, ZELT_ERR_INVALID_ARG for null */
    int32_t (*getref)(ZELT_AUDB *aud); /**< the count now, ZELT_ERR_INVALID_ARG for null */
    /** Drops a reference: the new count, ZELT_ERR_INVALID_ARG for null. At 0 buffers and record are freed. */
    int32_t (*release)(ZELT_AUDB *aud);
    int32_t nsamples[8];    /**< samples of one channel in each buffer, as asked for */
    int32_t bsize[8];       /**< bytes in each buffer */
    void *buf[8];           /**< the buffers; the first alone where the channels are interleaved */
    uint32_t buf_aux[8];    /**< the allocator's second address of each */
    int32_t nch;            /**< channels, as asked for */
    int32_t bits;           /**< bits per sample, as asked for */
    int32_t srate;          /**< sample rate, as given; not interpreted */
    int32_t interleaved;    /**< 1 where all channels share one buffer, else 0 */
    int32_t fmt;            /**< sample format, as given; 1 to 99 means interleaved */
    uint32_t user[17];      /**< the caller's words: 0 at first, never read */
    zelt_alloc_fn alloc_cb; /**< allocator of the buffers */
    zelt_free_fn free_cb;   /**< its free routine; null where the caller gave none */
};

/** Creates an audio buffer. A sample takes whole bytes, `(bits + 7) >> 3` of them. Contents are undefined. Any thread.
 *  @param nsamples  samples of one channel
 *  @param nch       channels; at most 8 unless they are interleaved; less than 1 of planar ones have no buffer
 *  @param bits      bits per sample
 *  @param srate     stored
 *  @param fmt       stored; 1 to 99 gives one buffer with all channels interleaved, anything else a buffer a channel
 *  @param unused    ignored
 *  @param alloc_cb  allocator of the buffers, or null for zelt_malloc_align32
 *  @param free_cb   its free routine, ignored where alloc_cb is null; without one the buffers are never freed
 *  @param err       where the status goes, or null: ZELT_OK; ZELT_ERR_OUT_OF_MEMORY; ZELT_ERR_INVALID_ARG for more than
 *                   eight planar channels; ZELT_ERR_BUFFER_ALLOC where the allocator gives null, and where a buffer's
 *                   size is negative or exceeds 2^31 - 1 bytes
 *  @return          the buffer with a count of 1, or null, nothing staying allocated then */
ZELT_API ZELT_AUDB *zelt_audb_create(int32_t nsamples, int32_t nch, int32_t bits, int32_t srate, int32_t fmt,
                                     int32_t unused, zelt_alloc_fn alloc_cb, zelt_free_fn free_cb, int32_t *err);

ZELT_END_DECLS

/** @} */

#endif
