// SPDX-License-Identifier: MIT
#pragma once
#include "resize/part_scalar.h"
#if ZELT_SIMD
#include "resize/part_simd.h"
#endif
