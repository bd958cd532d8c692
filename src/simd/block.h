#pragma once
// The vector vocabulary of sample blocks: the rows of a narrow block share a register, and everything is summed up. The
// types are here; a back end adds the same operations on each target. V is u16x8 or u16xn, values of 16 bits:
//
//   load_rows<W, R>              R rows of W bytes, one after the other; what is left of a register is 0
//   load_rows_16<W, R>           the same of 16-bit samples, and of bytes widened to 16 bits
//   store_rows_16<W, R>          R rows of W values
//   difference_words(a, b), store_widened
//                                a - b of bytes, in words of an order of their own; stores them
//   abs_diff_sums_8, add_abs_diff     sum of |a - b| of bytes; at most 256 additions
//   abs_diff_sums_16, add_abs_diff(s, a, b), add_abs_diffs(s, a, b, c, d)
//                                sums of |a - b| and |c - d| of signed values, up to eight two by two: below 2^15 and
//                                right where exact_abs_diffs(the bits of all that `seen` says), as they are of 12 bits
//   any_sign_bit(V)                  whether any value is 2^15 or more
//   pairwise_add_accumulate(sums, V)           adds values below 2^15 two by two; pairwise_add_accumulate_abs(sums, V)
//   those up to 2^15 square_sums, add_squares     sum of (a - b)^2 modulo 2^32; `exact` unless a difference was too
//   large for the target reduce_add                      a sum over all lanes abs, max, average            magnitudes
//   as unsigned; of unsigned values the larger, and (a + b + 1) / 2 transpose2x2_16, _32, _64, _128
//                                of each pair of neighbours in a and in b, the first ones to a, the second ones to b;
//                                dwords come in any order; lanes are those of 128 bits
//   extend                       the same values in a whole register, the others 0
//   paired_residual<W, R>        differences of R rows of W bytes, of two neighbours each the sum and the difference:
//                                those of a row in order, the sums of a row (of eight) together and the differences
//   add_sat, sub_sat      of signed values with saturation
#include "simd/barrier.h"

namespace zelt::inline ZELT_LEVEL::vec {
constexpr int lanes_16 = lanes / 2;

typedef u8 u8x16 __attribute__((vector_size(16)));
typedef u16 u16x8 __attribute__((vector_size(16)));
typedef u32 u32x4 __attribute__((vector_size(16)));
typedef u32 u32xn __attribute__((vector_size(lanes)));

template <class V> using u32_of = std::conditional_t<sizeof(V) == 16, u32x4, u32xn>;
/// A register of n words
template <int N> using u16_of = std::conditional_t<(N > 8), u16xn, u16x8>;

/// What one register takes of a block of W columns and H rows, in samples of N to a register of 16 bytes
template <int W, int H, int N, int Widest> struct step {
    static constexpr int columns = W < Widest ? W : Widest;
    static constexpr int rows = W >= N ? 1 : H < N / W ? H : N / W;
};
template <int W, int H> using byte_step = step<W, H, 16, lanes>;
template <int W, int H> using word_step = step<W, H, 8, lanes_16>;

/// Calls f(a, b) at the place of every register of a block, four down a column in a turn of the loop: as indices they
/// need no more than a stride and three of it. Where a row has several registers, or loads take no index, one address
/// moves down. Blocks of few registers are straight code; of more the compiler would keep all that is added up, and two
/// turns are enough.
template <class Step, int W, int H, int Few, class A, class B, class F>
[[gnu::always_inline]] inline void each_step(const A* a, const B* b, std::ptrdiff_t sa, std::ptrdiff_t sb, F f) {
    constexpr int turn = H < 4 * Step::rows ? H : 4 * Step::rows;
    static_assert(W % Step::columns == 0 && turn % Step::rows == 0 && H % turn == 0, "no form for blocks of this size");
    constexpr int turns_at_once = W / Step::columns * (H / Step::rows) <= Few ? H / turn : H / turn % 2 ? 1 : 2;
#pragma GCC unroll 1
    for (int y = 0; y < H; y += turn * turns_at_once)
        for (int n = 0; n < turns_at_once; ++n)
            if constexpr (W > Step::columns || (!loads_take_an_index && Step::rows == 1)) {
                for (int i = 0; i < turn; ++i, a = hide_from_optimizer(a + sa), b = hide_from_optimizer(b + sb))
                    for (int x = 0; x < W; x += Step::columns) f(a + x, b + x);
            } else {
                for (int i = 0; i < turn; i += Step::rows) f(a + i * sa, b + i * sb);
                a += turn * sa, b += turn * sb;
            }
}

/// Calls f(W, x, y, rows) for strips of W columns that make up an area of any size, W being an integral constant: a
/// register, then 8, 4, 2 and 1. There are not more rows at a time than the cache keeps.
template <class F> [[gnu::always_inline]] inline void each_strip(int w, int h, F f) {
    constexpr int most = 64;
    for (int y = 0; h > 0; h -= most, y += most) {
        const int rows = h < most ? h : most;
        int x = 0;
        const auto strip = [&](auto width) { f(width, x, y, rows), x += width; };
        while (w - x >= lanes_16) strip(std::integral_constant<int, lanes_16>{});
        if (lanes_16 > 8 && w - x >= 8) strip(std::integral_constant<int, 8>{});
        if (w - x >= 4) strip(std::integral_constant<int, 4>{});
        if (w - x >= 2) strip(std::integral_constant<int, 2>{});
        if (w - x >= 1) strip(std::integral_constant<int, 1>{});
    }
}

/// Where a register has two lanes
template <class V> void transpose2x2_128(V& a, V& b);

using zelt::hide_from_optimizer;
/// v, which the compiler does not take apart: where both b and a - b are used it would work out -b too
template <class V> V hide_from_optimizer(V v);

/// (a, b) to (a + b, a - b)
template <class V> void butterfly(V& a, V& b) {
    const V sum = a + b;
    b = hide_from_optimizer(a - b), a = sum;
}
}  // namespace zelt::inline ZELT_LEVEL::vec

#ifdef __AVX2__
#include "simd/avx2_block.h"
#else
#include "simd/neon_block.h"
#endif

namespace zelt::inline ZELT_LEVEL::vec {
template <class V> void butterfly_sat(V& a, V& b) {
    const V sum = add_sat(a, b);
    b = sub_sat(a, b), a = sum;
}
}  // namespace zelt::inline ZELT_LEVEL::vec
