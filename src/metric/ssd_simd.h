#pragma once
#include "core/simd_block.h"
#include "metric/ssd_scalar.h"

namespace zelt::simd {
template <int W, class Sample>
[[gnu::cold, gnu::noinline]] u32 ssd_of_large(int h, const Sample* a, const Sample* b, int sa, int sb) {
    return scalar::ssd<W>(h, a, b, sa, sb);
}

/// R rows
template <int W, int R, class S, class Sample> S add_squares(S sum, const Sample* a, const Sample* b, int sa, int sb) {
    constexpr int columns = word_step<W, R>::columns;
    for (int x = 0; x < W; x += columns)
        sum = add_squares(sum, load_words<columns, R>(a + x, sa), load_words<columns, R>(b + x, sb));
    return sum;
}

template <int W, class Sample> u32 ssd(int h, const Sample* a, const Sample* b, int sa, int sb) {
    constexpr int rows = word_step<W, 2>::rows, columns = word_step<W, 2>::columns;
    const Sample *pa = a, *pb = b;
    square_sums<words_of<columns * rows>> sum{};
    int left = h;
    for (; left >= rows; left -= rows, pa += rows * std::ptrdiff_t{sa}, pb += rows * std::ptrdiff_t{sb})
        sum = add_squares<W, rows>(sum, pa, pb, sa, sb);
    if (rows > 1 && left > 0) sum = add_squares<W, 1>(sum, pa, pb, sa, sb);
    if (std::is_same_v<Sample, s16> && !exact(sum)) [[unlikely]]
        return ssd_of_large<W>(h, a, b, sa, sb);
    return total(sum);
}
}  // namespace zelt::simd
