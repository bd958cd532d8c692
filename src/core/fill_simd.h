// SPDX-License-Identifier: MIT
#pragma once
#include "core/fill_scalar.h"
#include "core/unaligned.h"
#include "simd/vocabulary.h"

#include <bit>
#include <cstdint>

namespace zelt::inline ZELT_LEVEL::simd {
/// Writes a value at both ends of n bytes; they overlap where n is less than two of them. The word's period divides n,
/// so that its phase is the same at either end. n is negative where the steps of fill_registers from both sides have
/// passed each other.
template <class T> void fill_ends(u8* dst, T value, std::ptrdiff_t n) {
    store_unaligned(dst, value);
    store_unaligned(dst + (n - static_cast<std::ptrdiff_t>(sizeof(T))), value);
}

inline void fill_short(u8* dst, u32 word, std::size_t n) {
    if (n >= 16)
        fill_ends(dst, u32x4{} + word, n);
    else if (n >= 8)
        fill_ends(dst, u64{word} << 32 | word, n);
    else if (n >= 4)
        fill_ends(dst, word, n);
    else if (n >= 2)
        fill_ends(dst, static_cast<u16>(word), n);
    else if (n)
        *dst = static_cast<u8>(word);
}

/// A store at a multiple of a register's size. The caller's objects there may be of any type.
inline void store_aligned(u8* p, u32xn value) {
    typedef u32xn any __attribute__((may_alias));
    *reinterpret_cast<any*>(p) = value;
}

/// Writes a register's worth or more of a word that also stands in all of a register.
inline void fill_registers(u8* dst, u32xn all, u32 word, std::size_t n) {
    fill_ends(dst, all, n);
    if (n <= 2 * lanes) return;
    fill_ends(dst + lanes, all, n - 2 * lanes);
    if (n <= 4 * lanes) return;
    if (n <= 8 * lanes) {
        for (std::size_t i = 2 * lanes; i < 4 * lanes; i += lanes) fill_ends(dst + i, all, n - 2 * i);
        return;
    }
    // The rest in whole registers, which from here on stand at multiples of their size.
    const std::size_t first = 2 * lanes - reinterpret_cast<std::uintptr_t>(dst) % lanes;
    const u32 turned = std::rotr(word, static_cast<int>(first % 4) * 8);
    const std::size_t rest = (n - first - lanes - 1) / lanes;  // as far as the two registers at the end
    u8* p = dst + first;
    if (string_fill_from < SIZE_MAX && n >= string_fill_from) return string_fill(p, turned, rest * lanes / 4);
    const u32xn value = u32xn{} + turned;
    const auto store = [&] {
        store_aligned(p, value);
        p += lanes;
        hide_step_from_optimizer(p);
    };
    for (std::size_t i = rest % 4; i; --i) store();
    for (std::size_t i = rest / 4; i; --i) store(), store(), store(), store();
}

/// As scalar::fill, for n that the word's own period divides: 1, 2 or 4.
inline void fill(u8* dst, u32 word, std::size_t n) {
    if (n < lanes) return fill_short(dst, word, n);
    fill_registers(dst, u32xn{} + word, word, n);
}

/// Writes N copies of a byte, N a multiple of 8.
template <int N> void fill_fixed(u8* dst, u8 value) {
    static_assert(N % 8 == 0);
    const u32xn all = (u32xn)(u8xn{} + value);
    constexpr int tail = N % lanes;
    for (int i = 0; i + lanes <= N; i += lanes) store_unaligned(dst + i, all);
    if constexpr (tail >= 16) store_unaligned(dst + N - tail, u32x4{} + value * 0x01010101u);
    if constexpr (tail % 16) store_unaligned(dst + N - 8, u64{value} * 0x0101010101010101);
}

inline void fill_bytes(u8* dst, u8 value, std::size_t n) {
    if (memset_from < SIZE_MAX && n >= memset_from) {
        std::memset(dst, value, n);
        return;
    }
    const u32 word = value * 0x01010101u;
    if (n >= lanes)
        fill_registers(dst, (u32xn)(u8xn{} + value), word, n);
    else
        fill_short(dst, word, n);
}
}  // namespace zelt::inline ZELT_LEVEL::simd
