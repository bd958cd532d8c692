// SPDX-License-Identifier: MIT
#include "zelt/vdata.h"

#include "core/types.h"

#include <cstdlib>
#include <cstring>

using namespace zelt;

int32_t zelt_vdata_set(ZELT_VDATA* v, const uint8_t* bytes, int32_t size, uint32_t type) {
    if (!bytes || size < 1) return ZELT_ERR_INVALID_ARG;
    // Kept: the previous data is not freed, and is replaced by null on failure.
    u8* data = static_cast<u8*>(std::malloc(static_cast<std::size_t>(size) + 2));
    v->data = data;
    if (!data) return ZELT_ERR_OUT_OF_MEMORY;
    std::memcpy(data, bytes, static_cast<std::size_t>(size));
    data[size] = data[static_cast<std::size_t>(size) + 1] = 0;
    v->type = type;
    v->size = size;
    return ZELT_OK;
}

int32_t zelt_vdata_cpy(ZELT_VDATA* dst, const ZELT_VDATA* src) {
    return zelt_vdata_set(dst, static_cast<const u8*>(src->data), src->size, src->type);
}

void zelt_vdata_free(ZELT_VDATA* v) {
    if (!v) return;
    std::free(v->data);
    *v = {};
}
