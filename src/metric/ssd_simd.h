#pragma once
#include "core/simd_block.h"
#include "metric/ssd_scalar.h"

#include <algorithm>

namespace zelt::simd {
/// What one register takes: whole bytes where a row has as many, otherwise 16-bit samples of one row or more
template <int W, class Sample> struct square_step {
    static constexpr bool of_bytes = std::is_same_v<Sample, u8> && W >= lanes;
    static constexpr int columns = of_bytes ? lanes : std::min(W, word_lanes);
    static constexpr int rows = std::min(word_lanes / std::min(W, word_lanes), std::is_same_v<Sample, u8> ? 4 : 2);
    using sums = square_sums<words_of<std::min(W, word_lanes) * rows>>;
};

template <int W, int H, class Sample>
[[gnu::always_inline]] inline void add_block(typename square_step<W, Sample>::sums& sum, const Sample* a,
                                             const Sample* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    using step = square_step<W, Sample>;
    each_step<step, W, H, 8>(a, b, sa, sb, [&](const Sample* pa, const Sample* pb) {
        if constexpr (step::of_bytes)
            sum = add_squares(sum, load_rows<lanes, 1>(pa, sa), load_rows<lanes, 1>(pb, sb));
        else
            sum = add_squares(sum, load_words<step::columns, step::rows>(pa, sa),
                              load_words<step::columns, step::rows>(pb, sb));
    });
}

/// Any number of rows
template <int W, class Sample>
[[gnu::noinline]] u32 ssd_of_rows(int h, const Sample* a, const Sample* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    constexpr int rows = square_step<W, Sample>::rows;
    const Sample *pa = a, *pb = b;
    typename square_step<W, Sample>::sums sum{};
    int left = h;
    for (; left >= 4 * rows; left -= 4 * rows, pa += 4 * rows * sa, pb += 4 * rows * sb)
        add_block<W, 4 * rows>(sum, pa, pb, sa, sb);
    for (; left >= rows; left -= rows, pa += rows * sa, pb += rows * sb) add_block<W, rows>(sum, pa, pb, sa, sb);
    if (std::is_same_v<Sample, s16> && !exact(sum)) [[unlikely]]
        return scalar::ssd<W>(h, a, b, static_cast<int>(sa), static_cast<int>(sb));
    return total(sum) + scalar::ssd<W>(left, pa, pb, static_cast<int>(sa), static_cast<int>(sb));
}

/// Squares are code of their own.
template <int W, class Sample> u32 ssd(int h, const Sample* a, const Sample* b, int sa, int sb) {
    if (h != W) return ssd_of_rows<W>(h, a, b, sa, sb);
    typename square_step<W, Sample>::sums sum{};
    add_block<W, W>(sum, a, b, sa, sb);
    if (std::is_same_v<Sample, s16> && !exact(sum)) [[unlikely]]
        return ssd_of_rows<W>(h, a, b, sa, sb);
    return total(sum);
}
}  // namespace zelt::simd
