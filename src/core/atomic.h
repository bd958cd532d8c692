// SPDX-License-Identifier: MIT
#pragma once  // atomic access to a plain word. std::atomic_ref would do, but libc++ has it only since version 19.
#include "core/types.h"

namespace zelt {
template <int Order = __ATOMIC_RELAXED, class T> T atomic_load(const T* p) { return __atomic_load_n(p, Order); }
template <class T> void atomic_store(T* p, T value) { __atomic_store_n(p, value, __ATOMIC_RELAXED); }

/// Adds, and returns the sum; it wraps.
template <int Order = __ATOMIC_RELAXED> s32 atomic_add(s32* p, s32 n) {
    return static_cast<s32>(static_cast<u32>(__atomic_fetch_add(p, n, Order)) + static_cast<u32>(n));
}

/// Stores `value` if the word is still `expected`.
inline bool atomic_replace(u32* p, u32 expected, u32 value) {
    return __atomic_compare_exchange_n(p, &expected, value, false, __ATOMIC_RELAXED, __ATOMIC_RELAXED);
}
}  // namespace zelt
