// SPDX-License-Identifier: MIT
#pragma once  // values at any address, as one load or store each
#include "core/types.h"
#include "simd/level.h"

namespace zelt::inline ZELT_LEVEL {
template <class T> T load_unaligned(const u8* p) {
    typedef T unaligned __attribute__((aligned(1), may_alias));
    return *reinterpret_cast<const unaligned*>(p);
}

template <class T> void store_unaligned(u8* p, T value) {
    typedef T unaligned __attribute__((aligned(1), may_alias));
    *reinterpret_cast<unaligned*>(p) = value;
}
}  // namespace zelt::inline ZELT_LEVEL
