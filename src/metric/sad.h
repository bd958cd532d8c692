// SPDX-License-Identifier: MIT
#pragma once  // sums of absolute differences: the forms that this level has
#include "metric/sad_scalar.h"
#if ZELT_SIMD
#include "metric/sad_simd.h"
#endif
