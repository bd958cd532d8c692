// SPDX-License-Identifier: MIT
#pragma once  // words of chroma and luma, one at a time or a register of them
#include "video/samples_scalar.h"
#if ZELT_SIMD
#include "video/samples_simd.h"
#endif
