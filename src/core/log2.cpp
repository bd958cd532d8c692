// SPDX-License-Identifier: MIT
#include "zelt/common.h"

#include <bit>

int32_t zelt_floor_log2(uint32_t x) { return 31 - std::countl_zero(x); }

int32_t zelt_ceil_log2(uint32_t x) {
    // Kept: 0 counts as a power of two, and the result is -1.
    return (x & (x - 1)) == 0 ? zelt_floor_log2(x) : 32 - std::countl_zero(x);
}
