#pragma once
// The vector vocabulary: what kernels are written over, at the target's own register width. This file has the types and
// the plain arithmetic; a back end adds what is an instruction of its own on its target, the same names on each:
//
//   load, load2, load3, load4    `lanes` samples of 1 to 4 interleaved channels; store, store2, store3, store4 alike
//   widen, narrow                bytes to unsigned words and back with saturation to 0..255
//   narrow_signed                words to signed bytes with saturation to -128..127
//   high, round_high             bits 15..8 of unsigned words, and of words + 128 (which must not wrap)
//   difference(a, b)             a - b of unsigned bytes, in words
//   dot<A, B>(a, b)              A a + B b of unsigned bytes; the sum of either sign's terms stays in 16 bits
//   interleave, dot<A, B, C>     the same of three, modulo 2^16
//   centred_product<F>(a)        (F (a - 128) + 128) >> 8 of unsigned bytes
//   mul_q15(a, b)                (a b + 2^14) >> 15
//   sub_sat(a, b)                a - b with saturation to 16 bits
//   shift_add<N>(a, b)           a + (b >> N)
//   shift_insert<N>(a, b)        the high N bits of bytes a above b >> N
//   any(mask)                    whether a byte is set, of bytes that are 0 or 255
//   load_16, store_16          `lanes` samples of 16 bits; their order inside `s16x2n` is not that of widen
//   dot_q10<A, B, C>(a, b, c)    (A a + B b + C c + 512) >> 10 of signed words, summed in 32 bits
//
// Pairs of bytes from anywhere in a row, for half of the samples of `s16x2n`. Samples are dealt with in eights, whose
// bytes stand in Windows * 16 bytes of the row. Tables give an eight 16 bytes, pair_at(i, side) is the place of sample
// i's; the eights of `s16x2n`, first those of lo, are in the order of eight_at.
//
//   reach                          bytes of the windows, 16 or 32, that a mask deals with
//   gather_pairs<Windows>(row, at, masks)  pairs by their places in the windows that start at at[]; masks hold `lanes`
//   bytes a
//                                  reach, 0x80 where the byte is in another
//   load_pairs<Bytes, Next>(p)     pairs that stand one after another from p on: of pixels of 1 or 4 bytes, either each
//                                  one or every second one, for eights in their own order
//   weighted_sum(p, w), weighted_sum(sum, p, w)  sum of a pair's bytes times its weights, in 16 bits
//   pack(u32x4, u32x4)               the low halves of eight 32-bit values
//   store_pairs(p, l, r)           an eight's 16 bytes of a table from the low bytes of l and r
//   narrow_q6, narrow_q6_ordered    unsigned words >> 6, to bytes; from eights in their own order
//   narrow_ordered                  narrow of eights in their own order, as load_16 has them
#include "core/types.h"
#include "simd/level.h"

namespace zelt::inline ZELT_LEVEL::vec {
#ifdef __AVX2__
constexpr int lanes = 32;
constexpr bool loads_take_an_index = true;
#else
constexpr int lanes = 16;
constexpr bool loads_take_an_index = false;
#endif

typedef u8 u8xn __attribute__((vector_size(lanes)));    // one register of samples
typedef s16 s16xn __attribute__((vector_size(lanes)));  // half of the same samples as 16 bits
typedef u16 u16xn __attribute__((vector_size(lanes)));  // likewise; arithmetic is unsigned, so that it may wrap

typedef u16 u16x8 __attribute__((vector_size(16)));  // an eight's places or weights
typedef u32 u32x4 __attribute__((vector_size(16)));

/// Samples as 16 bits, in an order that is the target's own: `narrow` undoes `widen`.
struct s16x2n {
    s16xn lo, hi;
};

inline s16x2n operator+(s16x2n a, s16x2n b) {
    return {(s16xn)((u16xn)a.lo + (u16xn)b.lo), (s16xn)((u16xn)a.hi + (u16xn)b.hi)};
}
inline s16x2n operator-(s16x2n a, s16x2n b) {
    return {(s16xn)((u16xn)a.lo - (u16xn)b.lo), (s16xn)((u16xn)a.hi - (u16xn)b.hi)};
}
inline s16x2n splat(int value) {
    const s16xn all = s16xn{} + static_cast<s16>(value);
    return {all, all};
}
inline s16x2n operator+(s16x2n a, int b) { return a + splat(b); }
inline s16x2n operator>>(s16x2n a, int n) { return {a.lo >> n, a.hi >> n}; }
inline s16x2n operator<<(s16x2n a, int n) { return {a.lo << n, a.hi << n}; }
inline s16x2n clamp(s16x2n a, int low, int high) {
    const s16xn least = splat(low).lo, most = splat(high).lo;
    a = {a.lo < most ? a.lo : most, a.hi < most ? a.hi : most};
    return {a.lo > least ? a.lo : least, a.hi > least ? a.hi : least};
}
}  // namespace zelt::inline ZELT_LEVEL::vec

#include ZELT_BACK_END
#include "simd/block.h"

namespace zelt::inline ZELT_LEVEL::simd {
using namespace vec;
}
