// SPDX-License-Identifier: MIT
// Which level this is.
#include "simd/export.h"
#include "zelt/common.h"

ZELT_EXPORT(const char*, zelt_kernels)() { return ZELT_LEVEL_TEXT; }
