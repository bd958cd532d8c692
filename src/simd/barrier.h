// SPDX-License-Identifier: MIT
#pragma once  // optimisation barriers and hints
#include "simd/level.h"

#include <cstddef>
#include <type_traits>

// ZELT_UNROLL stands before a loop: n turns become one, and with 1 it stays a loop. clang ignores the pragma of gcc.
// ZELT_STRAIGHT stands before one of up to n long turns, for which gcc decides well by itself: clang keeps it a loop,
// and arrays of registers that it indexes in memory.
#ifdef __clang__
#define ZELT_UNROLL(n) ZELT_PRAGMA(clang loop unroll_count(n))
#define ZELT_STRAIGHT(n) ZELT_UNROLL(n)
#else
#define ZELT_UNROLL(n) ZELT_PRAGMA(GCC unroll n)
#define ZELT_STRAIGHT(n)
#endif
#define ZELT_PRAGMA(...) _Pragma(#__VA_ARGS__)

namespace zelt::inline ZELT_LEVEL {
/// Hides from the compiler how a value came about: a pointer, an integer or a register.
template <class T> T hide_from_optimizer(T value) {
    if constexpr (std::is_pointer_v<T> || std::is_integral_v<T>) asm("" : "+r"(value));
#ifdef ZELT_REGISTER
    else
        asm("" : "+" ZELT_REGISTER(value));
#endif
    return value;
}

/// Keeps gcc from computing b - a as well where both b and a - b are live. For AArch64 it hardly does, but copies
/// registers before a barrier.
template <class V> V hide_difference_from_optimizer(V difference) {
#ifdef __aarch64__
    return difference;
#else
    return hide_from_optimizer(difference);
#endif
}

/// p + n, after all loads from p: gcc for AArch64 would add first, and keep a copy of p for them.
template <class T> T* step_on(T* p, std::ptrdiff_t n) {
#ifdef __aarch64__
    asm("add %0, %0, %1" : "+r"(p) : "r"(n * static_cast<std::ptrdiff_t>(sizeof(T))));
    return p;
#else
    return hide_from_optimizer(p + n);
#endif
}

/// Keeps clang from adding up in another order, with all that is added in registers that there are not. gcc has an
/// option for it.
template <class V> V in_order(V sum) {
#ifdef __clang__
    return hide_from_optimizer(sum);
#else
    return sum;
#endif
}

/// Keeps clang from taking the halves of a register of bytes for words that it was cast from: products of upper halves
/// are of bytes.
template <class V> V as_bytes(V value) {
#ifdef __clang__
    return hide_from_optimizer(value);
#else
    return value;
#endif
}

/// Whether the compiler loads all of a long piece of straight code first, for which there are not the registers
#ifdef __clang__
constexpr bool loads_come_first = true;
#else
constexpr bool loads_come_first = false;
#endif

/// On targets with post-increment addressing, keeps gcc from splitting one stepped pointer into many of a base and an
/// offset.
template <class T> void hide_step_from_optimizer([[maybe_unused]] T*& p) {
#ifdef __arm__
    p = hide_from_optimizer(p);
#endif
}
}  // namespace zelt::inline ZELT_LEVEL
