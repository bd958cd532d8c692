#pragma once
#include "metric/ssd_scalar.h"
#include "simd/vocabulary.h"

#include <algorithm>
#include <utility>

namespace zelt::inline ZELT_LEVEL::simd {
/// What one register takes: whole bytes where a row has as many, otherwise 16-bit samples of one row or more
template <int W, class Sample> struct square_step {
    static constexpr bool of_bytes = std::is_same_v<Sample, u8> && W >= lanes;
    static constexpr int columns = of_bytes ? lanes : std::min(W, lanes_16);
    static constexpr int rows = std::min(lanes_16 / std::min(W, lanes_16), std::is_same_v<Sample, u8> ? 4 : 2);
    using sums = square_sums<u16_of<std::min(W, lanes_16) * rows>>;
};

template <int W, int H, class Sample>
[[gnu::always_inline]] inline void add_block(typename square_step<W, Sample>::sums& sum, const Sample* a,
                                             const Sample* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    using step = square_step<W, Sample>;
    typename step::sums other{};  // takes every second register, so that one sum does not wait for another
    const auto add_to_either = [&](const Sample* pa, const Sample* pb) {
        if constexpr (step::of_bytes)
            sum = add_squares(sum, load_rows<lanes, 1>(pa, sa), load_rows<lanes, 1>(pb, sb));
        else
            sum = add_squares(sum, load_rows_16<step::columns, step::rows>(pa, sa),
                              load_rows_16<step::columns, step::rows>(pb, sb));
        std::swap(sum, other);
    };
    each_step<step, W, H, 4>(a, b, sa, sb, add_to_either);
    sum = add(sum, other);
}

/// Any number of rows
template <int W, class Sample>
[[gnu::noinline]] u32 ssd_of_rows(int, int h, const Sample* a, const Sample* b, int s_a, int s_b) {
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

template <int W, class Sample> u32 ssd_of_square(int w, int h, const Sample* a, const Sample* b, int sa, int sb) {
    typename square_step<W, Sample>::sums sum{};
    add_block<W, W>(sum, a, b, sa, sb);
    if (std::is_same_v<Sample, s16> && !exact(sum)) [[unlikely]]
        return ssd_of_rows<W>(w, h, a, b, sa, sb);
    return reduce_add(sum);
}

template <int W, class Sample>
[[gnu::noinline]] u32 ssd_of_large_square(int w, int h, const Sample* a, const Sample* b, int sa, int sb) {
    return ssd_of_square<W>(w, h, a, b, sa, sb);
}

/// Squares are code of their own. Width and height come along unused so that all arguments stay where they are.
template <int W, class Sample> u32 ssd(int w, int h, const Sample* a, const Sample* b, int sa, int sb) {
    if (h != W) return ssd_of_rows<W>(w, h, a, b, sa, sb);
    return W <= 8 ? ssd_of_square<W>(w, h, a, b, sa, sb) : ssd_of_large_square<W>(w, h, a, b, sa, sb);
}
}  // namespace zelt::inline ZELT_LEVEL::simd
