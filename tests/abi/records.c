// SPDX-License-Identifier: MIT
/* Records as other programs were compiled against them: on 32-bit targets every field is at its word, elsewhere
 * pointers have their natural size and the order is the same. A wrong one is an array of negative size. */
#include "zelt/zelt.h"

#define AT(record, field, word) (offsetof(record, field) == 4 * (word))
#define LAYOUT(record, words, bytes64, fields)                                                          \
    typedef char layout_of_##record[sizeof(record) == (sizeof(void*) == 4 ? 4 * (words) : (bytes64)) && \
                                            (sizeof(void*) != 4 || (fields))                            \
                                        ? 1                                                             \
                                        : -1]

LAYOUT(ZELT_IMGB, 58, 296,
       AT(ZELT_IMGB, refcnt, 0) && AT(ZELT_IMGB, addref, 1) && AT(ZELT_IMGB, getref, 2) && AT(ZELT_IMGB, release, 3) &&
           AT(ZELT_IMGB, w, 4) && AT(ZELT_IMGB, h, 5) && AT(ZELT_IMGB, x, 6) && AT(ZELT_IMGB, y, 7) &&
           AT(ZELT_IMGB, cs, 8) && AT(ZELT_IMGB, stride, 9) && AT(ZELT_IMGB, rows, 13) && AT(ZELT_IMGB, plane, 17) &&
           AT(ZELT_IMGB, plane_aux, 21) && AT(ZELT_IMGB, user, 25) && AT(ZELT_IMGB, aw, 42) && AT(ZELT_IMGB, ah, 43) &&
           AT(ZELT_IMGB, alloc_cb, 44) && AT(ZELT_IMGB, free_cb, 45) && AT(ZELT_IMGB, base, 46) &&
           AT(ZELT_IMGB, base_aux, 50) && AT(ZELT_IMGB, size, 54) && AT(ZELT_IMGB, reserved, 55));

LAYOUT(ZELT_VDATA, 3, 16, AT(ZELT_VDATA, type, 0) && AT(ZELT_VDATA, size, 1) && AT(ZELT_VDATA, data, 2));

LAYOUT(ZELT_BSR, 7, 48,
       AT(ZELT_BSR, code, 0) && AT(ZELT_BSR, leftbits, 1) && AT(ZELT_BSR, cur, 2) && AT(ZELT_BSR, end, 3) &&
           AT(ZELT_BSR, beg, 4) && AT(ZELT_BSR, size, 5) && AT(ZELT_BSR, flush_fn, 6));

LAYOUT(ZELT_BSW, 7, 48,
       AT(ZELT_BSW, code, 0) && AT(ZELT_BSW, leftbits, 1) && AT(ZELT_BSW, cur, 2) && AT(ZELT_BSW, end, 3) &&
           AT(ZELT_BSW, beg, 4) && AT(ZELT_BSW, size, 5) && AT(ZELT_BSW, flush_fn, 6));

LAYOUT(ZELT_AUDB, 60, 296,
       AT(ZELT_AUDB, refcnt, 0) && AT(ZELT_AUDB, addref, 1) && AT(ZELT_AUDB, getref, 2) && AT(ZELT_AUDB, release, 3) &&
           AT(ZELT_AUDB, nsamples, 4) && AT(ZELT_AUDB, bsize, 12) && AT(ZELT_AUDB, buf, 20) &&
           AT(ZELT_AUDB, buf_aux, 28) && AT(ZELT_AUDB, nch, 36) && AT(ZELT_AUDB, bits, 37) &&
           AT(ZELT_AUDB, srate, 38) && AT(ZELT_AUDB, interleaved, 39) && AT(ZELT_AUDB, fmt, 40) &&
           AT(ZELT_AUDB, user, 41) && AT(ZELT_AUDB, alloc_cb, 58) && AT(ZELT_AUDB, free_cb, 59));

LAYOUT(ZELT_BITB, 28, 144,
       AT(ZELT_BITB, refcnt, 0) && AT(ZELT_BITB, addref, 1) && AT(ZELT_BITB, getref, 2) && AT(ZELT_BITB, release, 3) &&
           AT(ZELT_BITB, buf, 4) && AT(ZELT_BITB, buf_aux, 5) && AT(ZELT_BITB, reserved, 6) && AT(ZELT_BITB, tag, 8) &&
           AT(ZELT_BITB, user, 9) && AT(ZELT_BITB, alloc_cb, 26) && AT(ZELT_BITB, free_cb, 27));

LAYOUT(ZELT_MFAL, 21, 104,
       AT(ZELT_MFAL, refcnt, 0) && AT(ZELT_MFAL, addref, 1) && AT(ZELT_MFAL, getref, 2) && AT(ZELT_MFAL, release, 3) &&
           AT(ZELT_MFAL, user, 4));

LAYOUT(ZELT_MD5, 22, 88,
       AT(ZELT_MD5, state, 0) && AT(ZELT_MD5, buffer, 4) && AT(ZELT_MD5, bits_lo, 20) && AT(ZELT_MD5, bits_hi, 21));

LAYOUT(ZELT_LIST, 6, 40,
       AT(ZELT_LIST, size, 0) && AT(ZELT_LIST, cnt, 1) && AT(ZELT_LIST, head, 2) && AT(ZELT_LIST, tail, 3) &&
           AT(ZELT_LIST, cur, 4) && AT(ZELT_LIST, free_fn, 5));

LAYOUT(ZELT_NODE, 2, 16, AT(ZELT_NODE, prev, 0) && AT(ZELT_NODE, next, 1));

LAYOUT(ZELT_RBUF, 4, 24,
       AT(ZELT_RBUF, head, 0) && AT(ZELT_RBUF, tail, 1) && AT(ZELT_RBUF, size, 2) && AT(ZELT_RBUF, buf, 3));

LAYOUT(ZELT_RLIST, 5, 32,
       AT(ZELT_RLIST, cnt, 0) && AT(ZELT_RLIST, size, 1) && AT(ZELT_RLIST, used, 2) && AT(ZELT_RLIST, last, 3) &&
           AT(ZELT_RLIST, first, 4));

LAYOUT(ZELT_VIDEO, 64, 256,
       AT(ZELT_VIDEO, src_cs, 0) && AT(ZELT_VIDEO, dst_cs, 1) && AT(ZELT_VIDEO, matrix, 2) &&
           AT(ZELT_VIDEO, range, 3) && AT(ZELT_VIDEO, chroma, 4) && AT(ZELT_VIDEO, filter, 5) &&
           AT(ZELT_VIDEO, dst_w, 6) && AT(ZELT_VIDEO, dst_h, 7) && AT(ZELT_VIDEO, turn, 8) &&
           AT(ZELT_VIDEO, reserved, 9) && AT(ZELT_VIDEO, state, 16));
