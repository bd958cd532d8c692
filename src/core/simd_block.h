#pragma once
// The vector vocabulary of sample blocks: the rows of a narrow block share a register, and everything is summed up. The
// types are here; a back end adds the same operations on each target. V is words8 or uhalf, values of 16 bits:
//
//   load_rows<W, R>              R rows of W bytes, one after the other; what is left of a register is 0
//   load_words<W, R>             the same of 16-bit samples, and of bytes widened to 16 bits
//   store_words<W, R>            R rows of W values
//   byte_sums, add_abs_diff      sum of |a - b| of bytes; at most 256 additions
//   add_abs_diff(V s, a, b)      s + |a - b| of signed a and b; at 32767 and above it may be any such value
//   any_over(V), any_from<N>(V)  whether any value is 32767 or more, or 2^N or more
//   add_pairs(sums, V)           adds values below 2^15 two by two; add_pairs_to(sums, V) those up to 2^15
//   square_sums, add_squares     sum of (a - b)^2 modulo 2^32; `exact` unless a difference was too large for the target
//   total                        a sum over all lanes
//   abs, max, mean_up            magnitudes as unsigned; of unsigned values the larger, and (a + b + 1) / 2
//   exchange_words, _dwords, _qwords, _lanes
//                                of each pair of neighbours in a and in b, the first ones to a, the second ones to b;
//                                dwords come in any order; lanes are those of 128 bits
//   widen_butterfly              sum and difference of neighbours in 32 bits
#include "core/simd.h"

namespace zelt::simd {
constexpr int word_lanes = lanes / 2;

typedef u8 bytes16 __attribute__((vector_size(16)));
typedef u16 words8 __attribute__((vector_size(16)));
typedef u32 sums4 __attribute__((vector_size(16)));
typedef u32 sums __attribute__((vector_size(lanes)));

template <class V> using sums_of = std::conditional_t<sizeof(V) == 16, sums4, sums>;
/// A register of n words
template <int N> using words_of = std::conditional_t<(N > 8), uhalf, words8>;

/// What one register takes of a block of W columns and H rows, in samples of N to a register of 16 bytes
template <int W, int H, int N, int Widest> struct step {
    static constexpr int columns = W < Widest ? W : Widest;
    static constexpr int rows = W >= N ? 1 : H < N / W ? H : N / W;
};
template <int W, int H> using byte_step = step<W, H, 16, lanes>;
template <int W, int H> using word_step = step<W, H, 8, word_lanes>;

/// (a, b) to (a + b, a - b)
template <class V> void butterfly(V& a, V& b) {
    const V sum = a + b;
    b = a - b, a = sum;
}
}  // namespace zelt::simd

#ifdef __AVX2__
#include "core/simd_block_avx2.h"
#else
#include "core/simd_block_neon.h"
#endif
