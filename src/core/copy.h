// SPDX-License-Identifier: MIT
#pragma once  // copies of memory: the forms that this level has
#include "core/copy_scalar.h"
#if ZELT_SIMD
#include "core/copy_simd.h"
#endif
