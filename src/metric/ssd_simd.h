// SPDX-License-Identifier: MIT
#pragma once
#include "metric/ssd_scalar.h"
#include "simd/vocabulary.h"

#include <algorithm>

namespace zelt::inline ZELT_LEVEL::simd {
/// What one register takes: whole bytes where a row has as many or add_squares takes narrow ones, otherwise 16-bit
/// samples of one row or more
template <int W, class Sample> struct square_step {
    static constexpr bool bytes = std::is_same_v<Sample, u8>, of_bytes = bytes && (W >= lanes || squares_narrow_bytes);
    static constexpr int columns = std::min(W, of_bytes ? lanes : lanes_16);
    static constexpr int rows =
        of_bytes ? std::max(shared_bytes / columns, 1) : std::min(lanes_16 / columns, bytes ? 4 : 2);
    static constexpr int rows_by_two = W == columns ? 16 : 8;
    using sums = square_sums<u16_of<of_bytes ? lanes_16 : columns * rows>>;

    static auto load(const Sample* p, std::ptrdiff_t stride) {
        if constexpr (of_bytes)
            return load_rows<columns, rows>(p, stride);
        else
            return load_rows_16<columns, rows>(p, stride);
    }
    template <class T> static auto load_next_two(const T*& p, std::ptrdiff_t n) {
        if constexpr (of_bytes)
            return load_two(p, n);
        else
            return load_two_16(p, n);
    }
    template <class T> static auto load_next_four(const T*& p) {
        if constexpr (of_bytes)
            return load_four(p);
        else
            return load_four_16(p);
    }
};

template <int W, int H, class Sample, class Sums>
[[gnu::always_inline]] inline void add_block(Sums& sum, const Sample* a, const Sample* b, std::ptrdiff_t sa,
                                             std::ptrdiff_t sb) {
    const auto add = [](const Sums& s, auto va, auto vb) __attribute__((always_inline)) {
        return add_squares(s, va, vb);
    };
    constexpr int few = squares_narrow_bytes ? 16 : 4;  // so many squares start the sums without adding to 0
    each_step<square_step<W, Sample>, W, H, few>(sum, a, b, sa, sb, add);
}

/// Any number of rows. Used as far as gcc knows: or it leaves out arguments, and callers move the others.
template <int W, class Sample>
[[gnu::noinline, gnu::used]] u32 ssd_of_rows(int, int h, const Sample* a, const Sample* b, int s_a, int s_b) {
    constexpr int rows = square_step<W, Sample>::rows;
    const std::ptrdiff_t sa = s_a, sb = s_b;
    const Sample *pa = a, *pb = b;
    typename square_step<W, Sample>::sums sum{};
    int left = h;
    for (; left >= 4 * rows; left -= 4 * rows, pa += 4 * rows * sa, pb += 4 * rows * sb)
        add_block<W, 4 * rows>(sum, pa, pb, sa, sb);
    for (; left >= rows; left -= rows, pa += rows * sa, pb += rows * sb) add_block<W, rows>(sum, pa, pb, sa, sb);
    if (std::is_same_v<Sample, s16> && !exact(sum)) [[unlikely]]
        return scalar::ssd<W>(W, h, a, b, s_a, s_b);
    return reduce_add(sum) + scalar::ssd<W>(W, left, pa, pb, s_a, s_b);
}

/// W columns and H rows
template <int W, int H, class Sample>
[[gnu::always_inline]] inline u32 ssd_of_block(const Sample* a, const Sample* b, int sa, int sb) {
    typename square_step<W, Sample>::sums sum{};
    add_block<W, H>(sum, a, b, sa, sb);
    if (std::is_same_v<Sample, s16> && !exact(sum)) [[unlikely]]
        return ssd_of_rows<W>(W, H, a, b, sa, sb);
    return reduce_add(sum);
}

template <int W, class Sample>
[[gnu::noinline, gnu::used]] u32 ssd_of_large_square(int, int, const Sample* a, const Sample* b, int sa, int sb) {
    return ssd_of_block<W, W>(a, b, sa, sb);
}

/// Squares are code of their own. Width and height come along unused so that all arguments stay where they are.
template <int W, class Sample>
[[gnu::always_inline]] inline u32 ssd(int w, int h, const Sample* a, const Sample* b, int sa, int sb) {
    if (h != W) return ssd_of_rows<W>(w, h, a, b, sa, sb);
    return W <= 8 ? ssd_of_block<W, W>(a, b, sa, sb) : ssd_of_large_square<W>(w, h, a, b, sa, sb);
}
/// Either a square or two rows
template <int W, class Sample>
[[gnu::always_inline]] inline u32 ssd_of_square_or_two_rows(int h, const Sample* a, const Sample* b, int sa, int sb) {
    return h == W ? ssd_of_block<W, W>(a, b, sa, sb) : ssd_of_rows<W>(W, 2, a, b, sa, sb);
}
}  // namespace zelt::inline ZELT_LEVEL::simd
