// SPDX-License-Identifier: MIT
#pragma once  // pixels, one at a time or a register of them
#include "csc/pixel_scalar.h"
#if ZELT_SIMD
#include "csc/pixel_simd.h"
#endif
