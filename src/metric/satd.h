// SPDX-License-Identifier: MIT
#pragma once  // Hadamard-transformed differences: the forms that this level has
#include "metric/satd_scalar.h"
#if ZELT_SIMD
#include "metric/satd_simd.h"
#endif
