// SPDX-License-Identifier: MIT
#include "zelt/audb.h"

#include "core/refcount.h"

using namespace zelt;

static_assert(sizeof(void*) != 4 || sizeof(ZELT_AUDB) == 60 * 4);

namespace {
constexpr int max_buffers = 8;

void free_buffers(ZELT_AUDB* aud) {
    if (!aud->free_cb) return;
    for (int k = 0; k < max_buffers; ++k)
        if (aud->buf[k]) aud->free_cb(aud->buf[k], aud->buf_aux[k]);
}

bool add_buffer(ZELT_AUDB* aud, int k, s32 nsamples, s64 size) {
    if (size < 0 || size > INT32_MAX) return false;
    aud->buf[k] = aud->alloc_cb(static_cast<u32>(size), &aud->buf_aux[k]);
    aud->nsamples[k] = nsamples;
    aud->bsize[k] = static_cast<s32>(size);
    return aud->buf[k] != nullptr;
}

bool add_buffers(ZELT_AUDB* aud, s32 nsamples) {
    const s64 channel = ((s64{aud->bits} + 7) >> 3) * nsamples;
    const bool wide = channel < INT32_MIN || channel > INT32_MAX;  // too large, unless there are no channels
    if (aud->interleaved) return add_buffer(aud, 0, nsamples, wide && aud->nch ? -1 : channel * aud->nch);
    for (int k = 0; k < aud->nch; ++k)
        if (!add_buffer(aud, k, nsamples, channel)) return false;
    return true;
}
}  // namespace

ZELT_AUDB* zelt_audb_create(int32_t nsamples, int32_t nch, int32_t bits, int32_t srate, int32_t fmt, int32_t,
                            zelt_alloc_fn alloc_cb, zelt_free_fn free_cb, int32_t* err) {
    ZELT_AUDB* aud = new_record<ZELT_AUDB>();
    const auto fail = [=](s32 status) {
        if (aud) free_buffers(aud);
        std::free(aud);
        set_status(err, status);
        return nullptr;
    };
    if (!aud) return fail(ZELT_ERR_OUT_OF_MEMORY);
    aud->nch = nch;
    aud->bits = bits;
    aud->srate = srate;
    aud->interleaved = fmt >= 1 && fmt <= 99;
    aud->fmt = fmt;
    aud->alloc_cb = alloc_cb ? alloc_cb : default_alloc;
    aud->free_cb = alloc_cb ? free_cb : default_free;
    if (!aud->interleaved && nch > max_buffers) return fail(ZELT_ERR_INVALID_ARG);
    if (!add_buffers(aud, nsamples)) return fail(ZELT_ERR_BUFFER_ALLOC);
    start_counting<ZELT_AUDB, free_buffers>(aud);
    set_status(err, ZELT_OK);
    return aud;
}
