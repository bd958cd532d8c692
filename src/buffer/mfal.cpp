// SPDX-License-Identifier: MIT
#include "zelt/mfal.h"

#include "core/refcount.h"

using namespace zelt;

static_assert(sizeof(void*) != 4 || sizeof(ZELT_MFAL) == 21 * 4);

namespace {
void own_nothing(ZELT_MFAL*) {}
}  // namespace

ZELT_MFAL* zelt_mfal_create(uint32_t, int32_t* err) {
    ZELT_MFAL* mfal = new_record<ZELT_MFAL>();
    if (mfal) start_counting<ZELT_MFAL, own_nothing>(mfal);
    set_status(err, mfal ? ZELT_OK : ZELT_ERR_OUT_OF_MEMORY);
    return mfal;
}
