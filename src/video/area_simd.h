// SPDX-License-Identifier: MIT
#pragma once  // the same of 16 rows
#include "simd/vocabulary.h"
#include "video/area_scalar.h"

namespace zelt::inline ZELT_LEVEL::simd {
/// A word of each of 16 rows
struct column_words {
    static constexpr int rows = 16, registers = rows / lanes_16;
    u16xn v[registers];

    explicit column_words(const u16* p) {
        for (u16xn& words : v) words = (u16xn)load_rows_16<lanes_16, 1>(p, 0), p += lanes_16;
    }
    friend column_words operator+(column_words a, const column_words& b) {
        for (int i = 0; i < registers; ++i) a.v[i] += b.v[i];
        return a;
    }
    friend column_words operator*(column_words a, u32 b) {
        for (u16xn& words : a.v) words *= static_cast<u16>(b);
        return a;
    }
    /// A byte of each row, and up to a whole register is stored. Halves are rounded up, so that the first quotient is
    /// never too small, and with what the factor and the product's rounding add too large by less than 1.
    template <class Divisor> void store_means(const Divisor& divisor, u8* p) const {
        const auto by = divisor.words();
        const auto half = [=](u16xn sum) { return (s16xn)((sum + static_cast<u16>(by.n / 2 + 1)) >> 1); };
        const s16x2n sum = {(s16xn)v[0], (s16xn)v[registers - 1]}, halves = {half(v[0]), half(v[registers - 1])};
        const s16x2n quotient = mul_q15(halves, by.factor) >> by.shift;
        store(p, narrow_ordered(quotient + ((sum + by.n / 2 - quotient * by.n) >> 15)));
    }
};
/// Of each register of words those of even rows, then those of odd ones
struct column_sums {
    static constexpr int rows = column_words::rows, registers = 2 * column_words::registers;
    u32xn v[registers];

    column_sums() = default;
    explicit column_sums(const column_words& words) {
        for (int i = 0; i < registers; i += 2)
            v[i] = (u32xn)words.v[i / 2] & 0xFFFF, v[i + 1] = (u32xn)words.v[i / 2] >> 16;
    }
    explicit column_sums(const u16* p) : column_sums(column_words(p)) {}
    void set_row(int row, u32 value) { v[row / lanes_16 * 2 + row % 2][row % lanes_16 / 2] = value; }

    friend column_sums operator+(column_sums a, const column_sums& b) {
        for (int i = 0; i < registers; ++i) a.v[i] += b.v[i];
        return a;
    }
    friend column_sums operator*(column_sums a, const column_sums& b) {
        for (int i = 0; i < registers; ++i) a.v[i] *= b.v[i];
        return a;
    }
    friend column_sums operator*(column_sums a, u32 b) {
        for (u32xn& sums : a.v) sums *= b;
        return a;
    }
    template <class Divisor> void store_means(const Divisor& by, u8* p) const {
        s16xn means[column_words::registers];
        for (int i = 0; i < registers; i += 2) means[i / 2] = (s16xn)(by.rounded(v[i]) | by.rounded(v[i + 1]) << 16);
        store(p, narrow_ordered({means[0], means[column_words::registers - 1]}));
    }
};
}  // namespace zelt::inline ZELT_LEVEL::simd
