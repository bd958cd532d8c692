// SPDX-License-Identifier: MIT
#pragma once  // rows of a border: the forms that this level has
#include "buffer/expand_scalar.h"
#if ZELT_SIMD
#include "buffer/expand_simd.h"
#endif
