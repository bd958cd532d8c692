// SPDX-License-Identifier: MIT
/** @defgroup zelt_common Common types (zelt/common.h)
 *  What every module shares: export marks, status codes, colour-space identifiers, the names of all records, the
 *  allocator callbacks, the version text, integer logarithms and atomic counters.
 *  @{ */
#ifndef ZELT_COMMON_H
#define ZELT_COMMON_H

#include <stddef.h>
#include <stdint.h>

/** @cond */
#ifdef __cplusplus
#define ZELT_BEGIN_DECLS extern "C" {
#define ZELT_END_DECLS }
#else
#define ZELT_BEGIN_DECLS
#define ZELT_END_DECLS
#endif
#ifndef _WIN32
#define ZELT_API __attribute__((visibility("default")))
#elif defined(ZELT_STATIC) /* who links the archive defines it */
#define ZELT_API
#else
#define ZELT_API __declspec(dllimport)
#endif
/** @endcond */

/** @name Version
 *  @{ */
/** Version of these headers, for the preprocessor. */
#define ZELT_VERSION_MAJOR 1
#define ZELT_VERSION_MINOR 1
#define ZELT_VERSION_PATCH 0
/** @} */

ZELT_BEGIN_DECLS

/** Status codes. Success is 0, failures are negative. Functions that return an object return null on failure and
 *  write the status through their last argument, where that is not null; other functions return it. Small in-band
 *  codes of single modules (-1 to -4) are described with their functions. */
enum ZELT_STATUS {
    ZELT_OK = 0,                   /**< success */
    ZELT_ERR_OUT_OF_MEMORY = -102, /**< no memory for a record, or an existing block is too small */
    ZELT_ERR_INVALID_ARG = -105,   /**< a null object, an empty source, an allocator without its free routine */
    ZELT_ERR_BUFFER_ALLOC = -203,  /**< the allocator gave no image or audio block */
    ZELT_ERR_BITB_ALLOC = -204,    /**< the allocator gave no bitstream block */
    ZELT_ERR_UNSUPPORTED = -211    /**< unknown colour space, or no converter for a pair of them */
};

/** Colour-space identifiers. 10 to 99 are planar, a plane per component; 100 to 599 are packed, one plane whose bytes
 *  per pixel follow from the hundreds digit (1, 2: two; 3, 5: four; 4: three), every number in the range being valid;
 *  from 600 up are formats that only the converters know. Multi-byte samples are little-endian. */
enum ZELT_CS {
    ZELT_CS_YUV400 = 10,       /**< luma only */
    ZELT_CS_YUV420 = 11,       /**< Y, U, V; chroma halved both ways, rounded up */
    ZELT_CS_YUV422 = 12,       /**< Y, U, V; chroma halved in width, rounded up */
    ZELT_CS_YUV444 = 13,       /**< Y, U, V of one size */
    ZELT_CS_YUV440 = 18,       /**< Y, U, V; chroma halved in height, rounded up */
    ZELT_CS_YUV_PACKED16 = 20, /**< one interleaved plane of 2 bytes a pixel, component order up to the caller */
    ZELT_CS_YUV411 = 22,       /**< Y, U, V; chroma quartered in width, (W + 3) >> 2 */
    ZELT_CS_YUV420A8 = 41,     /**< YUV420 and an alpha plane of full size */
    ZELT_CS_YUV422A8 = 42,     /**< YUV422 and an alpha plane of full size */
    ZELT_CS_YUV444A8 = 43,     /**< YUV444 and an alpha plane */
    ZELT_CS_YUV440A8 = 44,     /**< YUV440 and an alpha plane of full size */
    ZELT_CS_P010 = 60,         /**< 4:2:0 in 16-bit samples */
    ZELT_CS_P210 = 61,         /**< 4:2:2 in 16-bit samples */
    ZELT_CS_P410 = 62,         /**< 4:4:4 in 16-bit samples, 10 bits in the low end */
    ZELT_CS_P010_2 = 63,       /**< geometry of P010 */
    ZELT_CS_P210_2 = 64,       /**< geometry of P210 */
    ZELT_CS_RGB565 = 200,      /**< 16-bit words, R in bits 15..11, G in 10..5, B in 4..0 */
    ZELT_CS_RGB888 = 400,      /**< bytes R, G, B */
    ZELT_CS_RGB888_ALT = 401,  /**< a second layout of 3 bytes a pixel, order up to the caller */
    ZELT_CS_RGBA5658 = 430,    /**< 3 bytes a pixel: the RGB565 word, low byte first, then alpha */
    ZELT_CS_RGBA8888 = 500,    /**< bytes R, G, B, A */
    ZELT_CS_BGRA8888 = 501,    /**< bytes B, G, R, A */
    ZELT_CS_ARGB8888 = 502,    /**< bytes A, R, G, B */
    ZELT_CS_R8G8B8 = 600,      /**< planes R, G, B (converters only) */
    ZELT_CS_R10G10B10 = 603,   /**< planes R, G, B of 16-bit words, 10 bits in the low end (converters only) */
    ZELT_CS_RGB565A8 = 650,    /**< a plane of RGB565 words and one of alpha bytes (converters only) */
    ZELT_CS_R8G8B8A8 = 700     /**< planes R, G, B, A (converters only) */
};

/** A bit reader, see bsr.h. */
typedef struct ZELT_BSR ZELT_BSR;
/** A bit writer, see bsw.h. */
typedef struct ZELT_BSW ZELT_BSW;
/** A block of audio samples, see audb.h. */
typedef struct ZELT_AUDB ZELT_AUDB;
/** A byte buffer for coded data, see bitb.h. */
typedef struct ZELT_BITB ZELT_BITB;
/** An image buffer, see imgb.h. */
typedef struct ZELT_IMGB ZELT_IMGB;
/** A doubly linked list with a cursor, see list.h. */
typedef struct ZELT_LIST ZELT_LIST;
/** A state of the MD5 digest, see md5.h. */
typedef struct ZELT_MD5 ZELT_MD5;
/** A frame allocator's record, see mfal.h. */
typedef struct ZELT_MFAL ZELT_MFAL;
/** A node of a list or a pool. */
typedef struct ZELT_NODE ZELT_NODE;
/** A ring of bytes, see rbuf.h. */
typedef struct ZELT_RBUF ZELT_RBUF;
/** A queue over a fixed pool of buffers, see rlist.h. */
typedef struct ZELT_RLIST ZELT_RLIST;
/** An owned byte block, see vdata.h. */
typedef struct ZELT_VDATA ZELT_VDATA;

/** Links of a node in a list (list.h) or a pool (rlist.h). The element's bytes follow at once. */
struct ZELT_NODE {
    ZELT_NODE *prev; /**< the node before */
    ZELT_NODE *next; /**< the node behind */
};

/** Allocator callback: returns a block of `size` bytes or null, and may write to `*aux` an opaque second address of
 *  the block (in a device's address space, say). `*aux` is 0 on entry. */
typedef void *(*zelt_alloc_fn)(uint32_t size, uint32_t *aux);
/** Free callback: takes back a block with the `aux` that its allocator gave. */
typedef void (*zelt_free_fn)(void *block, uint32_t aux);

/** Build stamp of the library: date, a blank, time, a newline; fixed text. The version is ZELT_VERSION_MAJOR and so on.
 *  @return  a static buffer that every call writes again with the same text; not thread-safe for that reason */
ZELT_API const char *zelt_version(void);

/** Which form of the kernels the library uses on this processor: for bug reports, and to tell whether a build has what
 *  the processor can do. Any thread.
 *  @return  "x86-64-v3", "x86-64-v2", "neon" or "scalar"; "generic" of a build over plain vectors, for tests */
ZELT_API const char *zelt_kernels(void);

/** Smallest n with 2^n >= x. Any thread.
 *  @param x  any value
 *  @return   0..32, and -1 for x = 0 */
ZELT_API int32_t zelt_ceil_log2(uint32_t x);

/** Largest n with 2^n <= x. Any thread.
 *  @param x  any value
 *  @return   0..31, and -1 for x = 0 */
ZELT_API int32_t zelt_floor_log2(uint32_t x);

/** Adds 1 to a counter in one indivisible step that orders no other memory access. Wraps from 2^31 - 1. Any thread.
 *  @param p  the counter, 4-byte aligned
 *  @return   the value after the addition */
ZELT_API int32_t zelt_atomic_inc(int32_t *p);

/** Subtracts 1 from a counter in one indivisible step that orders no other memory access. Wraps from -2^31. Any
 *  thread.
 *  @param p  the counter, 4-byte aligned
 *  @return   the value after the subtraction */
ZELT_API int32_t zelt_atomic_dec(int32_t *p);

/** Waits, by polling, until a word shared with another thread has a value or 0xffffffff, which stops every waiter.
 *  Orders no other memory access. Any thread.
 *  @param p  the word, 4-byte aligned
 *  @param v  the value to wait for
 *  @return   the value read last: v or 0xffffffff */
ZELT_API uint32_t zelt_sync_wait(uint32_t *p, uint32_t v);

/** Sets a word that other threads wait for. Orders no other memory access. Any thread.
 *  @param p  the word, 4-byte aligned
 *  @param v  its new value */
ZELT_API void zelt_sync_wake(uint32_t *p, uint32_t v);

/** Waits as zelt_sync_wait does, but lets the processor sleep for one event before it polls, where it can (WFE on ARM);
 *  zelt_sync_wake_asm signals that event, zelt_sync_wake does not. Any thread.
 *  @param p  the word, 4-byte aligned
 *  @param v  the value to wait for
 *  @return   0 where the word has the value already, 0xffffffff (-1) where it has the stop value; otherwise the value
 *            read last, as zelt_sync_wait gives it */
ZELT_API uint32_t zelt_sync_wait_asm(uint32_t *p, uint32_t v);

/** Sets a word as zelt_sync_wake does and signals an event to sleeping processors (SEV on ARM). The event is left out
 *  where another processor touches the word at the same moment. Any thread.
 *  @param p  the word, 4-byte aligned
 *  @param v  its new value
 *  @return   0 */
ZELT_API int32_t zelt_sync_wake_asm(uint32_t *p, uint32_t v);

/** Directory for temporary files: "/tmp/". Any thread.
 *  @param out  room for 6 bytes: the text and a zero
 *  @return     its length, 5 */
ZELT_API int32_t zelt_get_temp_path(char *out);

/** Start of the hardware address of a wireless interface, from "/sys/class/net/wlan<index>/address". Any thread.
 *  @param index  number of the interface; no other one is tried
 *  @param out    the first four octets, or zeros on failure
 *  @return       0; -1 where the file is missing or does not hold six octets with colons between them */
ZELT_API int32_t zelt_get_mac_addr(int32_t index, uint8_t out[4]);

ZELT_END_DECLS

/** @} */

#endif
