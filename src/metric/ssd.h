// SPDX-License-Identifier: MIT
#pragma once  // sums of squared differences: the forms that this level has
#include "metric/ssd_scalar.h"
#if ZELT_SIMD
#include "metric/ssd_simd.h"
#endif
