// SPDX-License-Identifier: MIT
#pragma once  // one sample at a time
#include "csc/pixel10_scalar.h"

namespace zelt::inline ZELT_LEVEL::scalar {
/// Of s16 in memory order
inline void load_words(const s16* p, int& v) { v = *p; }
inline void store_words(s16* p, int v) { *p = static_cast<s16>(v); }
inline void store_widened(s16* p, int v) { *p = static_cast<s16>(v); }

inline int widen(u8 a) { return a; }
template <int A, int B> int dot(u8 a, u8 b) { return A * a + B * b; }
inline u8 narrow_ordered(int v) { return static_cast<u8>(std::clamp(v, 0, 255)); }
inline int mul_q15(int v, int b) { return (v * b + (1 << 14)) >> 15; }

/// Bytes of two channels in turn, as (c - 128) << 8
inline void load_centred2(const u8* p, int& a, int& b) { a = (p[0] - 128) << 8, b = (p[1] - 128) << 8; }

/// Of each pixel
inline int centred_pixels(u8 a) { return (a - 128) << 8; }

/// What luma adds to each component, with 6 fractional bits
inline int luma_term(u8 y, int factor) { return mul_q15(centred_pixels(y), factor); }
/// The term of the pixel at x: of pairs of pixels the even ones have theirs in one array, the odd ones in another. Two
/// statements, since gcc's sanitizer of undefined behaviour takes the index of a conditional expression uninitialised.
template <class T> T& term_of(T* even, T* odd, std::ptrdiff_t x) {
    T* const terms = x % 2 ? odd : even;
    return terms[x / 2];
}
/// The same for chroma
inline void load_term(const s16* even, const s16* odd, std::ptrdiff_t x, int& v) { v = term_of(even, odd, x); }
inline void load_shared_term(const s16* terms, std::ptrdiff_t x, int& v) { v = terms[x / 2]; }
inline void store_term(s16* even, s16* odd, std::ptrdiff_t x, int v) { term_of(even, odd, x) = static_cast<s16>(v); }

/// Weighted by factors from 0 up that sum up to 128
inline int dot(u8 a, u8 b, int f, int g) { return f * a + g * b; }
/// A pixel alone is half of what a register is: sums of two, and what both halves have
inline int pair_sums(u8 a) { return a; }
inline int add_pair_sums(int sum, u8 a) { return sum + a; }
inline int both_halves(int first, int second) { return first + second; }
/// Luma with 6 fractional bits, which is never beyond 255
inline u8 round_q6(int v) { return static_cast<u8>((v + 32) >> 6); }
/// Chroma with 7, its middle being 0
inline u8 round_q7(int v) { return static_cast<u8>(std::clamp((v + 64) >> 7, -128, 127) + 128); }
inline u8 round_q7_ordered(int v) { return round_q7(v); }
inline u8 sum_of_terms(int luma, int chroma) { return static_cast<u8>(std::clamp((luma + chroma) >> 6, 0, 255)); }

// Words of 10 bits in their low or high end, whatever else is in them, as (c - 512) << 6: the scale of bytes

inline int centred_ten(int word, bool high) { return ((high ? word >> 6 : word & 1023) - 512) << 6; }
template <bool High> void load_ten(const u8* p, int& v) { load_16(p, v), v = centred_ten(v, High); }
/// Of two channels in turn
template <bool High> void load_two_tens(const u8* p, int& a, int& b) { load_ten<High>(p, a), load_ten<High>(p + 2, b); }
inline void store_two_16(u8* p, int a, int b) { store_16(p, a), store_16(p + 2, b); }

/// Of each pixel
template <bool High> void load_ten_pixels(const u8* p, int& v) { load_ten<High>(p, v); }
inline void store_pixels_16(u8* p, int v) { store_16(p, v); }
/// The sum of products of three samples, less its middle
inline int ten_of_products(const s16 (&f)[3], const int (&v)[3], int rounding) {
    const int sum = mul_q15(v[0], f[0]) + mul_q15(v[1], f[1]) + mul_q15(v[2], f[2]) + rounding;
    return std::clamp(sum >> 6, -512, 511);
}
/// The sum of terms as 10 bits
inline int ten_of_terms(int luma, int chroma) { return std::clamp((luma + chroma) >> 4, 0, 1023); }
}  // namespace zelt::inline ZELT_LEVEL::scalar
