// SPDX-License-Identifier: MIT
#pragma once  // differences of blocks: the forms that this level has
#include "metric/diff_scalar.h"
#if ZELT_SIMD
#include "metric/diff_simd.h"
#endif
