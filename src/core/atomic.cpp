// SPDX-License-Identifier: MIT
#include "core/atomic.h"

#include "zelt/common.h"

using namespace zelt;

int32_t zelt_atomic_inc(int32_t* p) { return atomic_add(p, 1); }
int32_t zelt_atomic_dec(int32_t* p) { return atomic_add(p, -1); }
