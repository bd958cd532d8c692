// SPDX-License-Identifier: MIT
#include "zelt/bitb.h"

#include "core/refcount.h"

using namespace zelt;

static_assert(sizeof(void*) != 4 || sizeof(ZELT_BITB) == 28 * 4);

namespace {
void* plain_alloc(u32 size, u32* aux) {
    *aux = 0;
    return std::malloc(size);
}

void plain_free(void* block, u32) { std::free(block); }

void free_buffer(ZELT_BITB* bit) {
    if (bit->buf && bit->free_cb) bit->free_cb(bit->buf, bit->buf_aux);
}
}  // namespace

ZELT_BITB* zelt_bitb_create(uint32_t size, uint32_t tag, uint32_t, zelt_alloc_fn alloc_cb, zelt_free_fn free_cb,
                            int32_t* err) {
    ZELT_BITB* bit = new_record<ZELT_BITB>();
    const auto fail = [=](s32 status) {
        std::free(bit);
        set_status(err, status);
        return nullptr;
    };
    if (!bit) return fail(ZELT_ERR_OUT_OF_MEMORY);
    bit->tag = tag;
    bit->alloc_cb = alloc_cb ? alloc_cb : plain_alloc;
    bit->free_cb = alloc_cb ? free_cb : plain_free;
    bit->buf = bit->alloc_cb(size, &bit->buf_aux);
    if (!bit->buf) return fail(ZELT_ERR_BITB_ALLOC);
    start_counting<ZELT_BITB, free_buffer>(bit);
    set_status(err, ZELT_OK);
    return bit;
}
