// SPDX-License-Identifier: MIT
#pragma once  // the vector vocabulary on WebAssembly's registers of 16 bytes
#include "simd/generic.h"

namespace zelt::inline ZELT_LEVEL::vec {
using namespace generic;
}
