// SPDX-License-Identifier: MIT
#pragma once  // whole registers
#include "csc/pixel10_simd.h"
#include "csc/pixel_simd.h"
#include "video/samples_scalar.h"

namespace zelt::inline ZELT_LEVEL::simd {
using scalar::centred_pixels, scalar::dot, scalar::load_centred2, scalar::store_term, scalar::load_shared_term,
    scalar::load_term, scalar::load_words, scalar::luma_term, scalar::mul_q15;
using scalar::load_ten, scalar::load_ten_pixels, scalar::load_two_tens, scalar::store_pixels_16, scalar::store_two_16,
    scalar::ten_of_products, scalar::ten_of_terms;
using scalar::narrow_ordered, scalar::store_widened, scalar::store_words, scalar::sum_of_terms, scalar::widen;
using vec::dot, vec::mul_q15, vec::narrow_ordered, vec::store_widened, vec::widen;

inline void load_words(const s16* p, s16x2n& v) { load_16(reinterpret_cast<const u8*>(p), v); }
inline void store_words(s16* p, s16x2n v) { store_16(reinterpret_cast<u8*>(p), v); }

inline void load_centred2(const u8* p, s16x2n& a, s16x2n& b) {
    u8xn v, w;
    load(p, v), load(p + lanes, w);
    const s16x2n x = centred_even_odd(v), y = centred_even_odd(w);
    a = {x.lo, y.lo}, b = {x.hi, y.hi};
}

inline s16x2n centred_pixels(u8xn a) { return centred_even_odd(a); }
inline s16x2n luma_term(u8xn y, int factor) { return mul_q15(centred_pixels(y), factor); }
/// Terms of two bytes for each two pixels: x, which is even, is their distance in bytes, too.
inline s16xn term_at(const s16* p, std::ptrdiff_t x) {
    return (s16xn)load_rows_16<lanes_16, 1>(reinterpret_cast<const s16*>(reinterpret_cast<const u8*>(p) + x), 0);
}
inline void load_term(const s16* even, const s16* odd, std::ptrdiff_t x, s16x2n& v) {
    v = {term_at(even, x), term_at(odd, x)};
}
inline void load_shared_term(const s16* terms, std::ptrdiff_t x, s16x2n& v) {
    const s16xn both = hide_from_optimizer(term_at(terms, x));  // or it would be loaded once for each
    v = {both, both};
}
inline void store_term(s16* even, s16* odd, std::ptrdiff_t x, s16x2n v) {
    store_rows_16<lanes_16, 1>(even + x / 2, 0, (u16xn)v.lo), store_rows_16<lanes_16, 1>(odd + x / 2, 0, (u16xn)v.hi);
}

using scalar::add_pair_sums, scalar::both_halves, scalar::pair_sums, scalar::round_q6, scalar::round_q7,
    scalar::round_q7_ordered;
using vec::add_pair_sums, vec::pair_sums, vec::round_q6;
inline s16x2n both_halves(s16xn first, s16xn second) { return {first, second}; }
inline u8xn round_q7(s16x2n v) { return round_q7_signed(v) ^ 128; }
inline u8xn round_q7_ordered(s16x2n v) { return round_q7_signed_ordered(v) ^ 128; }
inline u8xn sum_of_terms(s16x2n luma, s16x2n chroma) { return narrow_q6_even_odd(add_sat(luma, chroma)); }

inline s16xn centred_ten(s16xn v, bool high) {
    const u16xn words = (u16xn)v;
    return (s16xn)((high ? words & 0xFFC0 : words << 6) ^ 0x8000);
}
inline s16x2n centred_ten(s16x2n v, bool high) { return {centred_ten(v.lo, high), centred_ten(v.hi, high)}; }
template <bool High> void load_ten(const u8* p, s16x2n& v) { load_16(p, v), v = centred_ten(v, High); }
template <bool High> void load_ten_pixels(const u8* p, s16x2n& v) { load_even_odd_16(p, v), v = centred_ten(v, High); }
template <bool High> void load_two_tens(const u8* p, s16x2n& a, s16x2n& b) {
    s16x2n v, w;
    load_ten_pixels<High>(p, v), load_ten_pixels<High>(p + 2 * lanes, w);
    a = {v.lo, w.lo}, b = {v.hi, w.hi};
}
inline void store_two_16(u8* p, s16x2n a, s16x2n b) {
    store_even_odd_16(p, {a.lo, b.lo}), store_even_odd_16(p + 2 * lanes, {a.hi, b.hi});
}
inline void store_pixels_16(u8* p, s16x2n v) { store_even_odd_16(p, v); }
/// Of the limits of samples saturation is the clamp.
inline s16x2n ten_of_products(const s16 (&f)[3], const s16x2n (&v)[3], int rounding) {
    const s16x2n two = mul_q15(v[0], f[0]) + mul_q15(v[1], f[1]);
    return add_sat(add_sat(two, mul_q15(v[2], f[2])), splat(rounding)) >> 6;
}
inline s16x2n ten_of_terms(s16x2n luma, s16x2n chroma) { return clamp(add_sat(luma, chroma) >> 4, 0, 1023); }
}  // namespace zelt::inline ZELT_LEVEL::simd
