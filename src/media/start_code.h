// SPDX-License-Identifier: MIT
#pragma once  // the search for start codes: the forms that this level has
#include "media/start_code_scalar.h"
#if ZELT_SIMD
#include "media/start_code_simd.h"
#endif
