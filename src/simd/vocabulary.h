// SPDX-License-Identifier: MIT
#pragma once
// The vector vocabulary: what kernels are written over, at the target's own register width. This page is its contract;
// generic.h defines every operation in plain C++, and operations_test.cpp holds each back end to that over the whole
// range that stands here. Beyond a range the result is any, and differs from target to target.
//
// TYPES. `lanes` is the number of bytes in a register, lanes_16 half of it.
//   u8xn, s16xn, u16xn, u32xn   a register of samples; + - * & | ^ << >> and comparisons are the compiler's own
//   s16x2n                      as many samples as u8xn has, as 16 bits: {s16xn lo, hi}, with + - * << >> and clamp
//   u8x16, u16x8, u32x4         registers of 16 bytes on every target: narrow blocks, and tables of the resizer
//
// ORDERS. In memory order sample i is in lane i, those of lo first. In widened order, that of widen() for bytes in
// memory order, eights of samples change places: the one at i is number eight_at(i). On registers of 16 bytes the two
// are one. "Widened to memory" is said of an operation that takes the one and gives the other. In even-odd order lo has
// samples 0, 2, 4... and hi samples 1, 3, 5...
//
// SAMPLES
//   load, load2, load3, load4    `lanes` samples of 1 to 4 interleaved channels; store, store2, store3, store4 alike
//   load_next<N>(p, v)           N registers that follow one another; p is then beyond them
//   load_apart(p, n)             16 bytes from p on, on registers of 32 bytes also as many from p + n on
//   zip<Bytes>(a, b)             of each 16 bytes of both, elements of 1, 2 or 4 bytes in turn: {those of the low
//                                halves, those of the high ones}
//   reverse<Bytes>(a)            elements of 1, 2 or 4 bytes, the last one first
//   load_16, store_16            `lanes` samples of 16 bits in memory order
//   load_even_odd_16, store_even_odd_16
//                                the same in even-odd order, which is that of two channels in turn
//   store_widened(p, v)          samples of 16 bits, widened to memory
//   splat(int)                   an s16x2n of one value
//   widen                        bytes to words, memory to widened; so are difference, dot and centred_product
//   difference(a, b)             a - b
//   add_wide(v, a)               v + widen(a)
//   dot<A, B>(a, b)              A a + B b; factors as dot_fits() says: -128..127, those of a sign sum up to 128
//   dot(a, b, int f, int g)      f a + g b; factors from 0 to 127 whose sum is up to 128
//   interleave, dot<A, B, C>     the same of three modulo 2^16; B from 0 up, those above 0 sum up to 256
//   centred_product<F>(a)        (F (a - 128) + 128) >> 8, for the factors that centred_product_fits()
//   narrow, narrow_signed        widened to memory, with saturation to 0..255 and to -128..127
//   high, round_high             widened to memory: bits 15..8 of unsigned words, and of words + 128 below 2^16
//   narrow_q6                    widened to memory: v >> 6, for v from 0 to 2^14 - 1
//   centred_even_odd(a)          memory to even-odd: (a - 128) << 8
//   narrow_q6_even_odd           even-odd to memory: v >> 6, with saturation to 0..255
//   narrow_ordered, narrow_q6_ordered
//                                narrow and narrow_q6, memory to memory
//   blend_q6(v, w, int f)        widened to memory: ((8 - f) v + f w) >> 6; v, w from 0 to 2^11 - 1, f from 0 to 8
//   low_q2_ordered               memory to memory: the low byte of v >> 2
//   round_q6                     widened to memory: (v + 32) >> 6, for v from 0 to 2^14 - 33
//   round_q7_signed              widened to memory: (v + 64) >> 7 with saturation to -128..127; round_q7_signed_ordered
//                                memory to memory
//   pair_sums(a), add_pair_sums(s, a)
//                                an s16xn of the sums of neighbours in memory order, and s plus those
//   mul_q15(v, int b)            (v b + 2^14) >> 15; b above -2^15
//   add_sat, sub_sat             v + w and v - w with saturation
//   shift_add<N>(v, w)           v + (w >> N)
//   shift_insert<N>(a, b)        of bytes, the high N bits of a above b >> N; N from 1 to 7
//   dot_q10<A, B, C>(u, v, w)    (A u + B v + C w + 512) >> 10, where that fits 16 bits; as dot_q10_fits() says
//   zip(a, b), unzip(a, b)       as storing with store2 and loading both registers, and as the other way round
//   average(a, b)                of bytes, (a + b + 1) / 2
//   any(mask)                    whether a byte is set, of bytes that are 0 or 255
//
// PIXELS of which two share chroma, `lanes` of them: pixels<Step, Packed>, where Step is the bytes of each that are
// stored, and Packed says that they come from load_packed or load_words. Their order is even-odd or what the back end
// likes better.
//   load_luma(p, y)              bytes to s16x2n: (a - 128) << 8, as everything that follows
//   load_chroma(p, c)            lanes_16 bytes, of two pixels each, to s16xn
//   load_chroma2(p, a, b)        the same of two channels in turn
//   load_packed(p, a, b)         of each four bytes of two pixels the first and the third to lo and hi of a, the second
//                                and the fourth to those of b
//   load_words(p, v)             words as they are: to s16x2n those of each two pixels, or of two channels, the first
//   to
//                                lo, the second to hi; to s16xn one of each two pixels
//   narrow_q6(v)                 v >> 6, with saturation to 0..255
//   store(p, a, ...)             1 to 4 channels, in memory order
//
// PAIRS of bytes from anywhere in a row, for half of the samples of s16x2n. Samples are dealt with in eights, whose
// bytes are in Windows * 16 bytes of the row, Windows from 1 to 8. Tables give an eight 16 bytes.
//   reach                        bytes of the windows, 16 or 32, that a mask deals with
//   gather_pairs<Windows>(row, at, masks)
//                                pairs by their places in the windows that start at row + at[i], i the eight in widened
//                                order; on targets where eight_at(i) is i all from row + at[0]. A mask a reach, 0x80
//                                where the byte is in another
//   weighted_sum(p, w), weighted_sum(sum, p, w)
//                                sum of a pair's bytes times its weights; a pair of weights sums up to 128 at most
//   load_pairs<Bytes, Next>(p)   pairs_2n, for all samples of s16x2n in memory order, that follow one another from p
//                                on, which is then beyond them: of pixels of 1 or 4 bytes, either each one (Next 1) or
//                                every second one (Next 2)
//   run_weights(lo, hi)          weights_2n, which are theirs, of those for both halves in widened order
//   weighted_sum(p, w, q, v)     the sum of two such weighted sums
//   store_pairs(p, l, r)         an eight's 16 bytes of a table from l and r, values below 256
//   pack(u32x4, u32x4)           eight values below 2^16
//
// BLOCKS. The rows of a narrow block share a register, and everything is summed up. W is a power of two, and R rows of
// W samples fill 16 bytes at most, or W samples a whole register; anything else does not compile. V is u16x8 or u16xn.
//   load_rows<W, R>              R rows of W bytes, one after the other, in u8x16 or u8xn, or if they fill no more in a
//                                register of 8 bytes where there are such; what is left of it is 0
//   load_rows_16<W, R>           the same of s16 and u16 samples, and of bytes widened: R rows of W values, together up
//                                to 8 or lanes_16, in V
//   load_two(p, n)               where registers_at_once is 2 or more, {first, second}: the register of bytes at p and
//                                the next one; p moves on by n samples
//   load_two_16(p, n)            the same of lanes_16 samples each, as load_rows_16 takes them
//   load_four(p), load_four_16(p)
//                                where it is 4, {{first, second}, {third, last}}, bytes and s16; p is then beyond them
//   store_two_16(p, v, n)        first and second of two registers of s16, one after the other; p moves on by n samples
//   store_widened(p, v, n)       p moves on by n samples
//   store_rows_16<W, R>          R rows of W s16; together up to 8, or a row of lanes_16
//   difference_of_rows<W, R>     load_rows_16 of one block less that of another, of samples of any kinds
//   paired_residual<W, R>(a, b)  where pairing_is_free, a - b of R rows of W bytes, W 8 or more, together 8 or
//                                lanes_16: of two neighbours in each the sum and the difference. A row's sums come
//                                first, then its differences
//   extend                       u16x8 or u32x4 as a whole register, the other lanes 0
//   reduce_add                   a sum over all lanes of u32x4, u32xn, of V below 2^15, and of the sums below
//   abs_diff_sums_8<W, N>, add_abs_diff(s, a, b)
//                                sum of |a - b| of bytes, of rows of W as load_rows has them; up to N times, N up to
//                                256
//   reduce_add(s), sum_until(s, u32 least)
//                                where sums_rows_apart, of an array s of 4 or 8 rows' sums the sum of all, and the
//                                first running sum that is `least` or more, or else the last one; all are below 2^16
//   abs_diff_sums_16<V>, add_abs_diff(s, a, b), add_abs_diffs(s, a, b, c, d)
//                                sum of |a - b| (and of |c - d|) of signed values, up to eight together. s.sum is below
//                                2^15 and right where exact_abs_diffs(seen(s)), which it is of 12 bits at least
//   square_sums<V>, add_squares(s, a, b), exact(s)
//                                sum of (a - b)^2 modulo 2^32 of bytes (for lanes bytes V is u16xn) or signed values;
//                                right where exact, which it is of 14 bits at least
//   pairwise_add_accumulate(u32, V), pairwise_add_accumulate_abs(u32, V)
//                                adds neighbours; values below 2^15, and up to 2^15
//   abs, max, average            of signed values the magnitude, 2^15 included; of unsigned ones the larger, and
//                                (a + b + 1) / 2
//   max_of_neighbours(a, b)      the larger of each two neighbours in a and in b, in any order within 16 bytes
//   add_sat, sub_sat             of signed values
//   any_sign_bit                 whether any value is 2^15 or more
//   transpose2x2_16, _64         of each pair of neighbours of so many bits in a and b: the first ones to a, the second
//                                ones to b, (a0 b0 a2 b2...) and (a1 b1 a3 b3...)
//   transpose2x2_32              the same in any order within 16 bytes, both results in one
//   transpose2x2_128             on registers of 32 bytes: (a0 b1) and (a1 b0), the second pair turned round
//
// PROPERTIES that a kernel may choose a shape by
//   loads_take_an_index, loads_scale_an_index
//                                an address of base and index costs nothing, and one of base and twice the index
//   loads_step                   a load or store steps its address on at no cost. There load, load2, load3, load4,
//                                load_16 and their stores give the address after what they dealt with
//   registers_at_once            of a row are best loaded together: 1, 2 or 4
//   shared_bytes                 bytes up to which the rows of a narrow block share a register
//   squares_narrow_bytes         add_squares takes bytes of narrow rows
//   pairing_is_free              paired_residual costs no more than a difference
//   sums_rows_apart              reduce_add and sum_until take rows' sums, and cost little more than those of one sum
//   store3_beats_a_loop          store3 is faster than what compilers make of a loop that interleaves three planes
//   wide_pixels_need_prefetch    source rows of pixels of several bytes are worth a prefetch, too
//   stores_ahead                 bytes before a store that fetching its memory pays, 0 if it does not
//   memset_from, memcpy_from     bytes from which the C library's memset, memcpy is as fast as registers or faster
//   string_fill_from             bytes from which string_fill(p, word, n) is, which fills n words: beyond the nearer
//                                caches it need not read what it overwrites
#include "core/types.h"
#include "simd/barrier.h"
#include "simd/level.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

namespace zelt {
typedef u8 u8x16 __attribute__((vector_size(16)));
typedef s16 s16x8 __attribute__((vector_size(16)));
typedef u16 u16x8 __attribute__((vector_size(16)));
typedef u32 u32x4 __attribute__((vector_size(16)));

// Ranges that every back end asserts: what all of them can do

constexpr bool dot_fits(int a, int b) {
    const auto fits = [](int f) { return f >= -128 && f <= 127; };
    return fits(a) && fits(b) && std::max(a, 0) + std::max(b, 0) <= 128 && std::min(a, 0) + std::min(b, 0) >= -128;
}
/// The part of B in dot<A, B, C> that goes with A in one sum of two products; the rest goes with C.
constexpr int shared_factor(int a, int b) { return std::min({b, 128 - std::max(a, 0), 127}); }
constexpr bool dot_fits(int a, int b, int c) {
    const int with_a = shared_factor(a, b);
    return b >= 0 && dot_fits(a, with_a) && dot_fits(c, b - with_a);
}
constexpr bool dot_q10_fits(int a, int b, int c) {
    const auto magnitude = [](int f) { return f < 0 ? -f : f; };
    return std::max({a, b, c}) < 1 << 15 && std::min({a, b, c}) >= -(1 << 15) &&
           magnitude(a) + magnitude(b) + magnitude(c) < 1 << 16;
}
/// centred_product as one high-half multiplication of 256 a + filler, where the filler stands for the rounding: whether
/// floor((256 a + filler) F / 65536) - offset is the result for bytes a, signed ones if the least is negative.
constexpr bool product_is_exact(int f, int least, int filler, int offset) {
    for (int a = least; a < least + 256; ++a)
        if (((a * 256 + filler) * f >> 16) - offset != (f * (a - least - 128) + 128) >> 8) return false;
    return filler < 256;
}
/// With a - 128 the filler serves for some factors; others need a itself and an offset.
constexpr int product_filler(int f) { return (32768 + f - 1) / f; }
constexpr int product_offset(int f) { return (128 * f - 128) / 256; }
constexpr bool centred_product_fits(int f) {
    return f > 0 && f < 1 << 15 &&
           (product_is_exact(f, -128, product_filler(f), 0) || product_is_exact(f, 0, 0, product_offset(f)));
}
/// Whether R rows of W samples are what a register of 16 bytes or a whole one takes
constexpr bool rows_fit(int w, int r, int element, int lanes) {
    const int bytes = w * r * element;
    return w > 1 && (w & (w - 1)) == 0 && r > 0 && (bytes <= 16 || bytes == lanes);
}
}  // namespace zelt

namespace zelt::inline ZELT_LEVEL {
/// As many samples as a register has bytes, as 16 bits; V is s16xn. All arithmetic wraps.
template <class V> struct widened {
    V lo, hi;

    static widened all(int value) {
        const V v = V{} + static_cast<s16>(value);
        return {v, v};
    }
    friend widened operator+(widened a, widened b) { return {add(a.lo, b.lo), add(a.hi, b.hi)}; }
    friend widened operator-(widened a, widened b) { return {subtract(a.lo, b.lo), subtract(a.hi, b.hi)}; }
    friend widened operator+(widened a, int b) { return a + all(b); }
    friend widened operator*(widened a, int b) { return {multiply(a.lo, b), multiply(a.hi, b)}; }
    friend widened operator>>(widened a, int n) { return {a.lo >> n, a.hi >> n}; }
    friend widened operator<<(widened a, int n) { return {a.lo << n, a.hi << n}; }
    friend widened clamp(widened a, int low, int high) {
        const V least = all(low).lo, most = all(high).lo;
        a = {a.lo < most ? a.lo : most, a.hi < most ? a.hi : most};
        return {a.lo > least ? a.lo : least, a.hi > least ? a.hi : least};
    }

private:
    typedef u16 bits __attribute__((vector_size(sizeof(V))));
    static V add(V a, V b) { return (V)((bits)a + (bits)b); }
    static V subtract(V a, V b) { return (V)((bits)a - (bits)b); }
    static V multiply(V a, int b) { return (V)((bits)a * static_cast<u16>(b)); }
};

template <class V> struct two { V first, second; };
}  // namespace zelt::inline ZELT_LEVEL

namespace zelt::inline ZELT_LEVEL::vec {
constexpr int lanes = ZELT_LANES, lanes_16 = lanes / 2;

typedef u8 u8xn __attribute__((vector_size(lanes)));
typedef s16 s16xn __attribute__((vector_size(lanes)));
typedef u16 u16xn __attribute__((vector_size(lanes)));
typedef u32 u32xn __attribute__((vector_size(lanes)));
using s16x2n = widened<s16xn>;

/// The register of n words
template <int N> using u16_of = std::conditional_t<(N > 8), u16xn, u16x8>;
/// The register of 32-bit sums that is as wide as V
template <class V> using u32_of = std::conditional_t<sizeof(V) == 16, u32x4, u32xn>;

inline s16x2n splat(int value) { return s16x2n::all(value); }
}  // namespace zelt::inline ZELT_LEVEL::vec

#include ZELT_BACK_END
#ifdef ZELT_GENERIC
namespace zelt::inline ZELT_LEVEL::vec {
using namespace generic;
}
#endif
#include "simd/block.h"

namespace zelt::inline ZELT_LEVEL::vec {
/// Comes with a store to p in a row of stores: those to memory that is in no cache wait for it, one by one.
inline void fetch_for_stores([[maybe_unused]] const u8* p) {
    if constexpr (stores_ahead > 0) __builtin_prefetch(p + stores_ahead, 1);
}
}  // namespace zelt::inline ZELT_LEVEL::vec

namespace zelt::inline ZELT_LEVEL::simd {
using namespace vec;
}
