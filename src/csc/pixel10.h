// SPDX-License-Identifier: MIT
#pragma once  // 10-bit pixels, one at a time or a register of them
#include "csc/pixel10_scalar.h"
#if ZELT_SIMD
#include "csc/pixel10_simd.h"
#endif
