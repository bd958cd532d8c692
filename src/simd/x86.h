// SPDX-License-Identifier: MIT
#pragma once
// The vector vocabulary on x86: one text for registers of 16 bytes (SSE4.1) and of 32 (AVX2), whose instructions work
// on each 16 bytes by itself. An instruction has the name of its intrinsics without their prefix, and takes values of
// any type of either width. What the widths differ in comes next; a third one is a third of those, and of the choices
// in the macros.
#include "core/unaligned.h"

#include <immintrin.h>

namespace zelt::inline ZELT_LEVEL::vec {
constexpr int shared_bytes = 16, registers_at_once = 1;
constexpr bool loads_step = false, pairing_is_free = true, squares_narrow_bytes = false, loads_scale_an_index = true;
constexpr bool loads_take_an_index = true, store3_beats_a_loop = lanes == 32;
constexpr bool sums_rows_apart = true, wide_pixels_need_prefetch = true;
constexpr int stores_ahead = lanes == 32 ? 1024 : 0;  // a fetch per 16 bytes costs what it gains

#define ZELT_CHOOSE(op, V, ...)          \
    if constexpr (sizeof(V) == 16) {     \
        typedef __m128i reg;             \
        return _mm_##op(__VA_ARGS__);    \
    } else {                             \
        typedef __m256i reg;             \
        return _mm256_##op(__VA_ARGS__); \
    }
#define ZELT_UNARY(op) \
    template <class V> auto op(V a) { ZELT_CHOOSE(op, V, (reg)a) }
#define ZELT_BINARY(op) \
    template <class V, class W> auto op(V a, W b) { ZELT_CHOOSE(op, V, (reg)a, (reg)b) }
// clang-format off
ZELT_UNARY(abs_epi16)        ZELT_UNARY(movemask_epi8)
ZELT_BINARY(adds_epi16)      ZELT_BINARY(adds_epu16)      ZELT_BINARY(subs_epi16)      ZELT_BINARY(avg_epu16)
ZELT_BINARY(avg_epu8)
ZELT_BINARY(max_epu16)       ZELT_BINARY(sad_epu8)        ZELT_BINARY(madd_epi16)      ZELT_BINARY(maddubs_epi16)
ZELT_BINARY(mulhi_epi16)     ZELT_BINARY(mulhi_epu16)     ZELT_BINARY(mulhrs_epi16)    ZELT_BINARY(shuffle_epi8)
ZELT_BINARY(packs_epi16)     ZELT_BINARY(packus_epi16)    ZELT_BINARY(packs_epi32)
ZELT_BINARY(unpacklo_epi8)   ZELT_BINARY(unpackhi_epi8)   ZELT_BINARY(unpacklo_epi16)  ZELT_BINARY(unpackhi_epi16)
ZELT_BINARY(unpacklo_epi32)  ZELT_BINARY(unpackhi_epi32)  ZELT_BINARY(unpacklo_epi64)  ZELT_BINARY(unpackhi_epi64)
template <class V> auto blendv_epi8(V a, V b, V mask) { ZELT_CHOOSE(blendv_epi8, V, (reg)a, (reg)b, (reg)mask) }
// clang-format on
template <int Mask, class V> auto blend_epi16(V a, V b) { ZELT_CHOOSE(blend_epi16, V, (reg)a, (reg)b, Mask) }
/// Every second 32 bits of a, then of b: the even or the odd ones
template <int Mask, class V> V shuffle_ps(V a, V b) {
    if constexpr (sizeof(V) == 16)
        return (V)_mm_shuffle_ps((__m128)a, (__m128)b, Mask);
    else
        return (V)_mm256_shuffle_ps((__m256)a, (__m256)b, Mask);
}
constexpr int even = 0x88, odd = 0xDD;

inline void store_register(u8* p, u8xn v) { store_unaligned(p, v); }
inline u8xn load_register(const u8* p) { return load_unaligned<u8xn>(p); }

#if ZELT_LANES == 32
using reg = __m256i;
constexpr int eight_at(int i) { return i % 2 * 2 + i / 2; }
/// lanes_16 bytes from p on, in the beginning of each 16 bytes
inline reg load_half(const u8* p) { return _mm256_broadcastsi128_si256((__m128i)load_unaligned<u8x16>(p)); }
/// Of eights of 4 or of 2 neighbouring pieces the even ones, then the odd ones
inline reg cross_32(reg v) { return _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7)); }
inline reg cross_64(reg v) { return _mm256_permute4x64_epi64(v, 0xD8); }
/// 16 bytes from each of lanes / 16 places
inline reg load_blocks(const u8* first, const u8* last) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256((__m128i)load_unaligned<u8x16>(first)),
                                   (__m128i)load_unaligned<u8x16>(last), 1);
}
/// The first 16 bytes of each register, then the next ones of each
template <class... V> void store_blocks(u8* p, V... registers) {
    constexpr int n = sizeof...(V);
    const reg v[] = {(reg)registers...};
    [&]<int... I>(std::integer_sequence<int, I...>) {
        (store_register(p + 32 * I, (u8xn)_mm256_permute2x128_si256(v[2 * I % n], v[(2 * I + 1) % n],
                                                                    2 * I / n | (2 + (2 * I + 1) / n) << 4)),
         ...);
    }
    (std::make_integer_sequence<int, n>{});
}
/// What a pack made of values in memory order, in memory order
template <class V> u8xn in_order(V packed) { return (u8xn)_mm256_permute4x64_epi64((reg)packed, 0xD8); }
#else
using reg = __m128i;
constexpr int eight_at(int i) { return i; }
inline reg load_half(const u8* p) { return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)); }
inline reg cross_32(reg v) { return v; }
inline reg cross_64(reg v) { return v; }
inline reg load_blocks(const u8* first, const u8*) { return (reg)load_register(first); }
template <class... V> void store_blocks(u8* p, V... registers) { ((store_register(p, (u8xn)registers), p += 16), ...); }
template <class V> u8xn in_order(V packed) { return (u8xn)packed; }
#endif
/// The same from places that are `apart`
inline reg load_blocks(const u8* p, std::ptrdiff_t apart) { return load_blocks(p, p + (lanes / 16 - 1) * apart); }

template <int Bytes> struct alignas(Bytes) byte_table {
    s8 v[Bytes];
    operator reg() const { return *reinterpret_cast<const reg*>(v); }
};
template <int Bytes, class F> consteval byte_table<Bytes> make_table(F value) {
    byte_table<Bytes> table{};
    for (int i = 0; i < Bytes; ++i) table.v[i] = static_cast<s8>(value(i));
    return table;
}
/// A byte per place of 16, the same in all
template <class F> consteval byte_table<lanes> per_place(F value) {
    return make_table<lanes>([=](int i) { return value(i % 16); });
}
/// Two bytes in turn
template <int A, int B> u16xn per_pair() { return u16xn{} + static_cast<u16>((A & 255) | (B & 255) << 8); }

// ------------------------------------------------------------------------------------------------------------- samples

inline void load(const u8* p, u8xn& a) { a = load_register(p); }
inline void load2(const u8* p, u8xn& a, u8xn& b) {
    const u16xn v = (u16xn)load_blocks(p, 32), w = (u16xn)load_blocks(p + 16, 32);
    a = (u8xn)packus_epi16(v & 255, w & 255);
    b = (u8xn)packus_epi16(v >> 8, w >> 8);
}
inline void zip(u8xn& a, u8xn& b) {
    const reg lo = unpacklo_epi8(a, b), hi = unpackhi_epi8(a, b);
    a = (u8xn)lo, b = (u8xn)hi;
#if ZELT_LANES == 32
    a = (u8xn)_mm256_permute2x128_si256(lo, hi, 0x20), b = (u8xn)_mm256_permute2x128_si256(lo, hi, 0x31);
#endif
}
inline void unzip(u8xn& a, u8xn& b) {
    const u16xn v = (u16xn)a, w = (u16xn)b;
    a = in_order(packus_epi16(v & 255, w & 255)), b = in_order(packus_epi16(v >> 8, w >> 8));
}
// Three channels: sample i of channel c is byte 3 i + c, so it stands at place (3 i + c) % 16 of whichever of three
// registers; blends by the place modulo 3 sort registers, shuffles sort places. 11 is the inverse of 3 modulo 16.
template <int Channel> constexpr byte_table<lanes> gather3 = per_place([](int i) { return (3 * i + Channel) % 16; });
template <int Channel>
constexpr byte_table<lanes> spread3 = per_place([](int i) { return 11 * (i + 16 - Channel) % 16; });
template <int Remainder>
constexpr byte_table<lanes> every3 = per_place([](int i) { return i % 3 == Remainder ? -1 : 0; });
/// Places 0, 3, 6... of a, 1, 4... of b, 2, 5... of c
inline reg blend3(reg a, reg b, reg c) { return blendv_epi8(blendv_epi8(a, b, reg(every3<1>)), c, reg(every3<2>)); }
inline void load3(const u8* p, u8xn& a, u8xn& b, u8xn& c) {
    const reg x = load_blocks(p, 48), y = load_blocks(p + 16, 48), z = load_blocks(p + 32, 48);
    a = (u8xn)shuffle_epi8(blend3(x, z, y), reg(gather3<0>));
    b = (u8xn)shuffle_epi8(blend3(y, x, z), reg(gather3<1>));
    c = (u8xn)shuffle_epi8(blend3(z, y, x), reg(gather3<2>));
}
inline void load4(const u8* p, u8xn& a, u8xn& b, u8xn& c, u8xn& d) {
    static constexpr byte_table<lanes> channels = per_place([](int i) { return i % 4 * 4 + i / 4; });
    const auto four = [=](int at) { return shuffle_epi8(load_blocks(p + at, 64), reg(channels)); };
    const reg v0 = four(0), v1 = four(16), v2 = four(32), v3 = four(48);
    const reg ab0 = unpacklo_epi32(v0, v1), cd0 = unpackhi_epi32(v0, v1);
    const reg ab1 = unpacklo_epi32(v2, v3), cd1 = unpackhi_epi32(v2, v3);
    a = (u8xn)unpacklo_epi64(ab0, ab1), b = (u8xn)unpackhi_epi64(ab0, ab1);
    c = (u8xn)unpacklo_epi64(cd0, cd1), d = (u8xn)unpackhi_epi64(cd0, cd1);
}
template <int N> void load_next(const u8*& p, u8xn (&v)[N]) {
    for (u8xn& r : v) r = load_register(p), p += lanes;
}

inline u8xn load_apart(const u8* p, std::ptrdiff_t apart) { return (u8xn)load_blocks(p, apart); }
template <int Bytes> two<u8xn> zip(u8xn a, u8xn b) {
    static_assert(Bytes == 1 || Bytes == 2 || Bytes == 4);
    if constexpr (Bytes == 1) return {(u8xn)unpacklo_epi8(a, b), (u8xn)unpackhi_epi8(a, b)};
    if constexpr (Bytes == 2) return {(u8xn)unpacklo_epi16(a, b), (u8xn)unpackhi_epi16(a, b)};
    if constexpr (Bytes == 4) return {(u8xn)unpacklo_epi32(a, b), (u8xn)unpackhi_epi32(a, b)};
}
template <int Bytes> u8xn reverse(u8xn a) {
    static constexpr byte_table<lanes> backwards =
        per_place([](int i) { return 16 - Bytes - i / Bytes * Bytes + i % Bytes; });
    const reg v = (reg)shuffle_epi8(a, reg(backwards));
#if ZELT_LANES == 32
    return (u8xn)_mm256_permute4x64_epi64(v, 0x4E);
#else
    return (u8xn)v;
#endif
}
inline void store(u8* p, u8xn a) { store_register(p, a); }
inline void store2(u8* p, u8xn a, u8xn b) { store_blocks(p, unpacklo_epi8(a, b), unpackhi_epi8(a, b)); }
inline void store_spread3(u8* p, reg a, reg b, reg c) {
    store_blocks(p, blend3(a, b, c), blend3(b, c, a), blend3(c, a, b));
}
inline void store3(u8* p, u8xn a, u8xn b, u8xn c) {
    store_spread3(p, shuffle_epi8(a, reg(spread3<0>)), shuffle_epi8(b, reg(spread3<1>)),
                  shuffle_epi8(c, reg(spread3<2>)));
}
struct fours {
    reg v0, v1, v2, v3;
};
/// Four bytes of each of four pixels in each 16 bytes
inline fours interleave(u8xn a, u8xn b, u8xn c, u8xn d) {
    const reg ab0 = unpacklo_epi8(a, b), ab1 = unpackhi_epi8(a, b);
    const reg cd0 = unpacklo_epi8(c, d), cd1 = unpackhi_epi8(c, d);
    return {unpacklo_epi16(ab0, cd0), unpackhi_epi16(ab0, cd0), unpacklo_epi16(ab1, cd1), unpackhi_epi16(ab1, cd1)};
}
inline void store4(u8* p, u8xn a, u8xn b, u8xn c, u8xn d) {
    const fours v = interleave(a, b, c, d);
    store_blocks(p, v.v0, v.v1, v.v2, v.v3);
}
inline void load_16(const u8* p, s16x2n& v) { v = {(s16xn)load_register(p), (s16xn)load_register(p + lanes)}; }
inline void store_16(u8* p, s16x2n v) { store_register(p, (u8xn)v.lo), store_register(p + lanes, (u8xn)v.hi); }
inline void load_even_odd_16(const u8* p, s16x2n& v) {
    static constexpr byte_table<lanes> apart = per_place([](int i) { return i % 8 / 2 * 4 + i / 8 * 2 + i % 2; });
    const reg x = shuffle_epi8(load_blocks(p, 32), reg(apart)), y = shuffle_epi8(load_blocks(p + 16, 32), reg(apart));
    v = {(s16xn)unpacklo_epi64(x, y), (s16xn)unpackhi_epi64(x, y)};
}
inline void store_even_odd_16(u8* p, s16x2n v) {
    store_blocks(p, unpacklo_epi16(v.lo, v.hi), unpackhi_epi16(v.lo, v.hi));
}
inline void store_widened(s16* p, s16x2n v) { store_blocks(reinterpret_cast<u8*>(p), v.lo, v.hi); }

/// Of each 16 bytes the low and the high half
inline s16x2n interleave(u8xn a, u8xn b) { return {(s16xn)unpacklo_epi8(a, b), (s16xn)unpackhi_epi8(a, b)}; }
inline s16x2n widen(u8xn a) { return interleave(a, u8xn{}); }
inline s16x2n add_wide(s16x2n v, u8xn a) { return v + widen(a); }
inline s16x2n difference(u8xn a, u8xn b) { return widen(a) - widen(b); }
inline u8xn narrow(s16x2n v) { return (u8xn)packus_epi16(v.lo, v.hi); }
inline u8xn narrow_signed(s16x2n v) { return (u8xn)packs_epi16(v.lo, v.hi); }
inline u8xn narrow_ordered(s16x2n v) { return in_order(narrow(v)); }
template <int N> u8xn narrow_shifted(s16x2n v) { return (u8xn)packus_epi16((u16xn)v.lo >> N, (u16xn)v.hi >> N); }
inline u8xn high(s16x2n v) { return narrow_shifted<8>(v); }
inline u8xn round_high(s16x2n v) { return high(v + 128); }
inline u8xn narrow_q6(s16x2n v) { return narrow_shifted<6>(v); }
inline u8xn blend_q6(s16x2n v, s16x2n w, int f) {
    const s16xn g = splat(f).lo, e = 8 - g;
    return narrow_q6({v.lo * e + w.lo * g, v.hi * e + w.hi * g});
}
inline u8xn narrow_q6_ordered(s16x2n v) { return in_order(narrow_q6(v)); }
inline u8xn low_q2_ordered(s16x2n v) { return narrow_ordered({v.lo >> 2 & 255, v.hi >> 2 & 255}); }

/// Words of two bytes each, the lower byte being the even one
inline s16x2n centred_even_odd(u8xn a) {
    const u16xn pairs = (u16xn)(a ^ 128);
    return {(s16xn)(pairs << 8), (s16xn)(pairs & 0xFF00)};
}
inline u8xn narrow_q6_even_odd(s16x2n v) {
    static constexpr byte_table<lanes> in_turn = per_place([](int i) { return i % 2 * 8 + i / 2; });
    return (u8xn)shuffle_epi8(packus_epi16(v.lo >> 6, v.hi >> 6), reg(in_turn));
}

inline s16x2n add_sat(s16x2n v, s16x2n w) { return {(s16xn)adds_epi16(v.lo, w.lo), (s16xn)adds_epi16(v.hi, w.hi)}; }
inline s16x2n sub_sat(s16x2n v, s16x2n w) { return {(s16xn)subs_epi16(v.lo, w.lo), (s16xn)subs_epi16(v.hi, w.hi)}; }
inline s16xn mul_q15(s16xn v, int b) { return (s16xn)mulhrs_epi16(v, splat(b).lo); }
inline s16x2n mul_q15(s16x2n v, int b) { return {mul_q15(v.lo, b), mul_q15(v.hi, b)}; }

template <int N> s16x2n shift_add(s16x2n v, s16x2n w) { return v + (w >> N); }
template <int N> u8xn shift_insert(u8xn a, u8xn b) {
    const u8xn low = u8xn{} + static_cast<u8>(255 >> N);
    const u8xn shifted = (u8xn)((u16xn)b >> N);
    return (a & ~low) | (shifted & low);
}
inline u8xn average(u8xn a, u8xn b) { return (u8xn)avg_epu8(a, b); }
inline bool any(u8xn mask) { return movemask_epi8(mask) != 0; }

inline s16x2n round_q(s16x2n v, int one) { return mul_q15(v, 32768 / one); }
inline u8xn round_q6(s16x2n v) { return narrow(round_q(v, 64)); }
inline u8xn round_q7_signed(s16x2n v) { return narrow_signed(round_q(v, 128)); }
inline u8xn round_q7_signed_ordered(s16x2n v) { return in_order(round_q7_signed(v)); }
inline s16xn pair_sums(u8xn a) { return (s16xn)maddubs_epi16(a, per_pair<1, 1>()); }
inline s16xn add_pair_sums(s16xn s, u8xn a) { return s + pair_sums(a); }

/// The factors of pairs of bytes, times what unpacking left side by side
template <int A, int B> s16x2n multiply_pairs(s16x2n pairs) {
    const u16xn factors = per_pair<A, B>();
    return {(s16xn)maddubs_epi16(pairs.lo, factors), (s16xn)maddubs_epi16(pairs.hi, factors)};
}
template <int A, int B> s16x2n dot(u8xn a, u8xn b) {
    static_assert(dot_fits(A, B));
    return multiply_pairs<A, B>(interleave(a, b));
}
inline s16x2n dot(u8xn a, u8xn b, int f, int g) {
    const u16xn factors = u16xn{} + static_cast<u16>(f | g << 8);
    const s16x2n v = interleave(a, b);
    return {(s16xn)maddubs_epi16(v.lo, factors), (s16xn)maddubs_epi16(v.hi, factors)};
}
struct triples {
    s16x2n ab, cb;
};
inline triples interleave(u8xn a, u8xn b, u8xn c) { return {interleave(a, b), interleave(c, b)}; }
/// B is shared out between the two pairs so that neither product sum leaves 16 bits, where 128 * 255 just fits.
template <int A, int B, int C> s16x2n dot(triples v) {
    static_assert(dot_fits(A, B, C));
    constexpr int with_a = shared_factor(A, B);
    return multiply_pairs<A, with_a>(v.ab) + multiply_pairs<C, B - with_a>(v.cb);
}
/// The filler is the low byte that the unpacking takes in place of zero.
template <int F> s16x2n centred_product(u8xn a) {
    static_assert(centred_product_fits(F));
    const s16xn factor = s16xn{} + static_cast<s16>(F);
    if constexpr (constexpr int filler = product_filler(F); product_is_exact(F, -128, filler, 0)) {
        const s16x2n v = interleave(u8xn{} + static_cast<u8>(filler), a ^ 128);
        return {(s16xn)mulhi_epi16(v.lo, factor), (s16xn)mulhi_epi16(v.hi, factor)};
    } else {
        const s16x2n v = interleave(u8xn{}, a);
        return s16x2n{(s16xn)mulhi_epu16(v.lo, factor), (s16xn)mulhi_epu16(v.hi, factor)} - splat(product_offset(F));
    }
}
template <int A, int B, int C> s16xn dot_q10(s16xn u, s16xn v, s16xn w) {
    const u32xn ab = u32xn{} + ((A & 0xFFFF) | static_cast<u32>(B) << 16);
    const u32xn c512 = u32xn{} + ((C & 0xFFFF) | 512 << 16);
    const s16xn one = s16xn{} + 1;  // times 512 is the rounding
    typedef s32 s32xn __attribute__((vector_size(lanes)));
    const auto sum = [&](auto two, auto third) {
        return (s32xn)((u32xn)madd_epi16(two, ab) + (u32xn)madd_epi16(third, c512)) >> 10;
    };
    return (s16xn)packs_epi32(sum(unpacklo_epi16(u, v), unpacklo_epi16(w, one)),
                              sum(unpackhi_epi16(u, v), unpackhi_epi16(w, one)));
}
template <int A, int B, int C> s16x2n dot_q10(s16x2n u, s16x2n v, s16x2n w) {
    static_assert(dot_q10_fits(A, B, C));
    return {dot_q10<A, B, C>(u.lo, v.lo, w.lo), dot_q10<A, B, C>(u.hi, v.hi, w.hi)};
}

// --------------------------------------------------------------------------------------------------------------- pairs

using pairs = u16xn;
constexpr int reach = 16;
template <int Windows> pairs gather_pairs(const u8* row, const std::ptrdiff_t* at, const u8xn* masks) {
    const u8 *first = row + at[0], *last = row + at[lanes / 16 - 1];
    pairs p = (pairs)shuffle_epi8(load_blocks(first, last), masks[0]);
    for (int i = 1; i < Windows; ++i) p |= (pairs)shuffle_epi8(load_blocks(first + 16 * i, last + 16 * i), masks[i]);
    return p;
}
inline s16xn weighted_sum(pairs p, u8xn w) { return (s16xn)maddubs_epi16(p, w); }
inline s16xn weighted_sum(s16xn sum, pairs p, u8xn w) { return (s16xn)((u16xn)sum + (u16xn)weighted_sum(p, w)); }

struct pairs_2n {
    pairs lo, hi;
};
struct weights_2n {
    u8xn lo, hi;
};
template <int Bytes, int Next> pairs load_half_pairs(const u8* p) {
    static_assert((Bytes == 1 || Bytes == 4) && (Next == 1 || Next == 2));
    u8xn v = load_register(p);
    if constexpr (Next == 2) {  // every second pixel of two registers
        const u8xn w = load_register(p + lanes);
        v = in_order(Bytes == 1 ? (u8xn)packus_epi16((u16xn)v & 255, (u16xn)w & 255) : shuffle_ps<even>(v, w));
    }
    static constexpr byte_table<lanes> by_channel = per_place([](int i) { return i % 2 * 4 + i / 2 % 4 + i / 8 * 8; });
    return Bytes == 1 ? (pairs)v : (pairs)shuffle_epi8(v, reg(by_channel));
}
template <int Bytes, int Next> pairs_2n load_pairs(const u8*& p) {
    const u8* first = p;
    p += 2 * Next * lanes;
    return {load_half_pairs<Bytes, Next>(first), load_half_pairs<Bytes, Next>(first + Next * lanes)};
}
/// In memory order
inline weights_2n run_weights(u8xn lo, u8xn hi) {
    u8 p[2 * lanes];
    store_blocks(p, lo, hi);
    return {load_register(p), load_register(p + lanes)};
}
inline s16x2n weighted_sum(pairs_2n p, weights_2n w, pairs_2n q, weights_2n v) {
    return {weighted_sum(weighted_sum(p.lo, w.lo), q.lo, v.lo), weighted_sum(weighted_sum(p.hi, w.hi), q.hi, v.hi)};
}
inline u16x8 pack(u32x4 a, u32x4 b) { return (u16x8)_mm_packus_epi32((__m128i)a, (__m128i)b); }
inline void store_pairs(u8* p, u16x8 left, u16x8 right) { store_unaligned(p, left | right << 8); }

// --------------------------------------------------------------------------------------------------------------- fills

constexpr std::size_t memset_from = lanes == 32 ? 1024 : 128, memcpy_from = 512, string_fill_from = 1 << 19;
inline void string_fill(u8* p, u32 word, std::size_t n) {
    asm volatile("rep stosl" : "+D"(p), "+c"(n) : "a"(word) : "memory");
}
}  // namespace zelt::inline ZELT_LEVEL::vec

#include "simd/x86_block.h"
#include "simd/x86_pixels.h"
