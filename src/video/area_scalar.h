// SPDX-License-Identifier: MIT
#pragma once  // sums of a column, one row at a time
#include "core/types.h"
#include "simd/level.h"

namespace zelt::inline ZELT_LEVEL::scalar {
/// Sums of a column for each of several rows of the destination
struct column_sums {
    static constexpr int rows = 1;
    u32 v;

    column_sums() = default;
    /// A word of each row
    explicit column_sums(const u16* p) : v(*p) {}
    void set_row(int, u32 value) { v = value; }

    friend column_sums operator+(column_sums a, column_sums b) { return of(a.v + b.v); }
    friend column_sums operator*(column_sums a, column_sums b) { return of(a.v * b.v); }
    friend column_sums operator*(column_sums a, u32 b) { return of(a.v * b); }
    /// A byte of each row
    template <class Divisor> void store_means(const Divisor& by, u8* p) const { *p = static_cast<u8>(by.rounded(v)); }

private:
    static column_sums of(u32 value) {
        column_sums sum;
        sum.v = value;
        return sum;
    }
};
/// The same, where they fit words
using column_words = column_sums;
}  // namespace zelt::inline ZELT_LEVEL::scalar
