// SPDX-License-Identifier: MIT
#pragma once  // fills of memory: the forms that this level has
#include "core/fill_scalar.h"
#if ZELT_SIMD
#include "core/fill_simd.h"
#endif
