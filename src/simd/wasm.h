// SPDX-License-Identifier: MIT
#pragma once
// The vector vocabulary on WebAssembly's registers of 16 bytes. What is an instruction here takes several on a
// processor: products of bytes, table look-ups by places that are not constant, shifts of bytes and rounding products
// are avoided where there is another way.
#include "simd/generic.h"

#include <wasm_simd128.h>

namespace zelt::inline ZELT_LEVEL::vec {
using namespace generic;

constexpr int registers_at_once = 1;
constexpr bool pairing_is_free = false, sums_rows_apart = false, store3_beats_a_loop = true;

template <int... I, class V> V shuffle(V a, V b) { return __builtin_shufflevector(a, b, I...); }
/// A register of the bytes value(0), value(1)...
template <class F> u8xn per_byte(F value) {
    return [=]<int... I>(std::integer_sequence<int, I...>) { return u8xn{static_cast<u8>(value(I))...}; }
    (std::make_integer_sequence<int, lanes>{});
}
/// The bytes of a at these places, 0 where there is none
inline u8xn look_up(u8xn a, u8xn places) { return (u8xn)wasm_i8x16_swizzle((v128_t)a, (v128_t)places); }
constexpr int nowhere = 0x80;

// ------------------------------------------------------------------------------------------------------------- samples

inline u8xn narrow(s16x2n v) { return (u8xn)wasm_u8x16_narrow_i16x8((v128_t)v.lo, (v128_t)v.hi); }
inline u8xn narrow_signed(s16x2n v) { return (u8xn)wasm_i8x16_narrow_i16x8((v128_t)v.lo, (v128_t)v.hi); }
template <int N> u8xn narrow_shifted(s16x2n v) {
    return narrow({(s16xn)((u16xn)v.lo >> N), (s16xn)((u16xn)v.hi >> N)});
}
inline u8xn high(s16x2n v) { return narrow_shifted<8>(v); }
inline u8xn round_high(s16x2n v) { return high(v + 128); }
inline u8xn narrow_q6(s16x2n v) { return narrow_shifted<6>(v); }
inline u8xn narrow_ordered(s16x2n v) { return narrow(v); }
inline u8xn narrow_q6_ordered(s16x2n v) { return narrow_q6(v); }
inline u8xn low_q2_ordered(s16x2n v) { return narrow({v.lo >> 2 & 255, v.hi >> 2 & 255}); }
inline u8xn round_q6(s16x2n v) { return narrow_q6(v + 32); }
inline u8xn blend_q6(s16x2n v, s16x2n w, int f) { return narrow_q6(v * (8 - f) + w * f); }

inline s16x2n add_sat(s16x2n v, s16x2n w) {
    return {(s16xn)wasm_i16x8_add_sat((v128_t)v.lo, (v128_t)w.lo),
            (s16xn)wasm_i16x8_add_sat((v128_t)v.hi, (v128_t)w.hi)};
}
inline s16x2n sub_sat(s16x2n v, s16x2n w) {
    return {(s16xn)wasm_i16x8_sub_sat((v128_t)v.lo, (v128_t)w.lo),
            (s16xn)wasm_i16x8_sub_sat((v128_t)v.hi, (v128_t)w.hi)};
}
inline u8xn round_q7_signed(s16x2n v) { return narrow_signed(add_sat(v, splat(64)) >> 7); }
inline u8xn round_q7_signed_ordered(s16x2n v) { return round_q7_signed(v); }

template <int Bytes> two<u8xn> zip(u8xn a, u8xn b) {
    static_assert(Bytes == 1 || Bytes == 2 || Bytes == 4);
    if constexpr (Bytes == 1)
        return {shuffle<0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23>(a, b),
                shuffle<8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31>(a, b)};
    if constexpr (Bytes == 2)
        return {(u8xn)shuffle<0, 8, 1, 9, 2, 10, 3, 11>((u16xn)a, (u16xn)b),
                (u8xn)shuffle<4, 12, 5, 13, 6, 14, 7, 15>((u16xn)a, (u16xn)b)};
    if constexpr (Bytes == 4)
        return {(u8xn)shuffle<0, 4, 1, 5>((u32xn)a, (u32xn)b), (u8xn)shuffle<2, 6, 3, 7>((u32xn)a, (u32xn)b)};
}
inline void zip(u8xn& a, u8xn& b) {
    const two<u8xn> v = zip<1>(a, b);
    a = v.first, b = v.second;
}
inline void unzip(u8xn& a, u8xn& b) {
    const u16xn v = (u16xn)a, w = (u16xn)b;
    a = narrow({(s16xn)(v & 255), (s16xn)(w & 255)}), b = narrow_shifted<8>({(s16xn)v, (s16xn)w});
}
/// The low and the high halves of two registers
template <class V> two<V> zip_halves(V a, V b) {
    typedef u64 u64x2 __attribute__((vector_size(16)));
    return {(V)shuffle<0, 2>((u64x2)a, (u64x2)b), (V)shuffle<1, 3>((u64x2)a, (u64x2)b)};
}
template <int Bytes> u8xn reverse(u8xn a) {
    return look_up(a, per_byte([](int i) { return 16 - Bytes - i / Bytes * Bytes + i % Bytes; }));
}

inline void load2(const u8* p, u8xn& a, u8xn& b) {
    load(p, a), load(p + 16, b);
    unzip(a, b);
}
// Of three channels in turn sample i of channel c is byte 3 i + c of three registers.
template <int Channel, int Number> u8xn gather3(u8xn v) {
    return look_up(v, per_byte([](int i) {
                       const int at = 3 * i + Channel - 16 * Number;
                       return at >= 0 && at < 16 ? at : nowhere;
                   }));
}
inline void load3(const u8* p, u8xn& a, u8xn& b, u8xn& c) {
    u8xn x, y, z;
    load(p, x), load(p + 16, y), load(p + 32, z);
    a = gather3<0, 0>(x) | gather3<0, 1>(y) | gather3<0, 2>(z);
    b = gather3<1, 0>(x) | gather3<1, 1>(y) | gather3<1, 2>(z);
    c = gather3<2, 0>(x) | gather3<2, 1>(y) | gather3<2, 2>(z);
}
inline void load4(const u8* p, u8xn& a, u8xn& b, u8xn& c, u8xn& d) {
    const u8xn channels = per_byte([](int i) { return i % 4 * 4 + i / 4; });
    const auto four = [=](int at) {
        u8xn v;
        load(p + at, v);
        return look_up(v, channels);
    };
    const two<u8xn> first = zip<4>(four(0), four(16)), last = zip<4>(four(32), four(48));
    const two<u8xn> ab = zip_halves(first.first, last.first), cd = zip_halves(first.second, last.second);
    a = ab.first, b = ab.second, c = cd.first, d = cd.second;
}
inline void store_two(u8* p, two<u8xn> v) { store(p, v.first), store(p + 16, v.second); }
inline void store2(u8* p, u8xn a, u8xn b) { store_two(p, zip<1>(a, b)); }
template <int Channel, int Number, class F> u8xn spread3(u8xn v, F place) {
    return look_up(v, per_byte([=](int i) {
                       const int at = 16 * Number + i;
                       return at % 3 == Channel ? place(at / 3) : nowhere;
                   }));
}
/// Of channels whose sample i is in lane place(i)
template <class F> void store3(u8* p, u8xn a, u8xn b, u8xn c, F place) {
    store(p, spread3<0, 0>(a, place) | spread3<1, 0>(b, place) | spread3<2, 0>(c, place));
    store(p + 16, spread3<0, 1>(a, place) | spread3<1, 1>(b, place) | spread3<2, 1>(c, place));
    store(p + 32, spread3<0, 2>(a, place) | spread3<1, 2>(b, place) | spread3<2, 2>(c, place));
}
inline void store3(u8* p, u8xn a, u8xn b, u8xn c) {
    store3(p, a, b, c, [](int i) { return i; });
}
inline void store4(u8* p, u8xn a, u8xn b, u8xn c, u8xn d) {
    const two<u8xn> ab = zip<1>(a, b), cd = zip<1>(c, d);
    store_two(p, zip<2>(ab.first, cd.first)), store_two(p + 32, zip<2>(ab.second, cd.second));
}
inline void load_even_odd_16(const u8* p, s16x2n& v) {
    const u8xn apart = per_byte([](int i) { return i % 8 / 2 * 4 + i / 8 * 2 + i % 2; });
    u8xn x, y;
    load(p, x), load(p + 16, y);
    const two<u8xn> halves = zip_halves(look_up(x, apart), look_up(y, apart));
    v = {(s16xn)halves.first, (s16xn)halves.second};
}
inline void store_even_odd_16(u8* p, s16x2n v) { store_two(p, zip<2>((u8xn)v.lo, (u8xn)v.hi)); }

inline s16x2n widen(u8xn a) {
    return {(s16xn)wasm_u16x8_extend_low_u8x16((v128_t)a), (s16xn)wasm_u16x8_extend_high_u8x16((v128_t)a)};
}
inline s16x2n add_wide(s16x2n v, u8xn a) { return v + widen(a); }
inline s16x2n difference(u8xn a, u8xn b) { return widen(a) - widen(b); }
/// sum + F v
template <int F> s16x2n add_product(s16x2n sum, s16x2n v) {
    if constexpr (F == 0) return sum;
    if constexpr (F == 1) return sum + v;
    if constexpr (F == -1) return sum - v;
    return sum + v * F;
}
template <int F> s16x2n product(s16x2n v) {
    if constexpr (F == 1) return v;
    return v * F;
}
template <int A, int B> s16x2n dot(u8xn a, u8xn b) {
    static_assert(dot_fits(A, B));
    return add_product<B>(product<A>(widen(a)), widen(b));
}
inline s16x2n dot(u8xn a, u8xn b, int f, int g) { return widen(a) * f + widen(b) * g; }
struct triples {
    s16x2n a, b, c;
};
inline triples interleave(u8xn a, u8xn b, u8xn c) { return {widen(a), widen(b), widen(c)}; }
template <int A, int B, int C> s16x2n dot(triples v) {
    static_assert(dot_fits(A, B, C));
    return add_product<C>(add_product<B>(product<A>(v.a), v.b), v.c);
}
/// F is 256 times a whole number and what leaves products in 16 bits.
template <int F> s16x2n centred_product(u8xn a) {
    static_assert(centred_product_fits(F));
    constexpr int whole = (F + 128) >> 8, part = F - 256 * whole;
    const s16x2n centred = widen(a) - splat(128);
    return add_product<whole>((centred * part + 128) >> 8, centred);
}

/// Words of two bytes each, the lower byte being the even one
inline s16x2n centred_even_odd(u8xn a) {
    const u16xn pairs = (u16xn)(a ^ 128);
    return {(s16xn)(pairs << 8), (s16xn)(pairs & 0xFF00)};
}
/// Where the eights of a register of even and odd bytes have the one at i
constexpr int even_odd_place(int i) { return i % 2 * 8 + i / 2; }
inline u8xn zip_eights(u8xn a) { return look_up(a, per_byte(even_odd_place)); }
inline u8xn narrow_q6_even_odd(s16x2n v) { return zip_eights(narrow(v >> 6)); }

inline s16xn pair_sums(u8xn a) { return (s16xn)wasm_u16x8_extadd_pairwise_u8x16((v128_t)a); }
inline s16xn add_pair_sums(s16xn s, u8xn a) { return (s16xn)((u16xn)s + (u16xn)pair_sums(a)); }
inline s16xn mul_q15(s16xn v, int b) { return (s16xn)wasm_i16x8_q15mulr_sat((v128_t)v, (v128_t)splat(b).lo); }
inline s16x2n mul_q15(s16x2n v, int b) { return {mul_q15(v.lo, b), mul_q15(v.hi, b)}; }
template <int N> u8xn shift_insert(u8xn a, u8xn b) {
    const u8xn low = u8xn{} + static_cast<u8>(255 >> N);
    return (a & ~low) | ((u8xn)((u16xn)b >> N) & low);
}
inline u8xn average(u8xn a, u8xn b) { return (u8xn)wasm_u8x16_avgr((v128_t)a, (v128_t)b); }
inline bool any(u8xn mask) { return wasm_v128_any_true((v128_t)mask); }

/// Sums of neighbouring products of signed values, modulo 2^32
template <class V, class W> u32xn multiply_neighbours(V a, W b) {
    return (u32xn)wasm_i32x4_dot_i16x8((v128_t)a, (v128_t)b);
}
template <int A, int B, int C> s16xn dot_q10(s16xn u, s16xn v, s16xn w) {
    const u32xn ab = u32xn{} + ((A & 0xFFFF) | static_cast<u32>(B) << 16);
    const u32xn c512 = u32xn{} + ((C & 0xFFFF) | 512 << 16);  // times 1 is the rounding
    const two<u8xn> uv = zip<2>((u8xn)u, (u8xn)v), w1 = zip<2>((u8xn)w, (u8xn)(s16xn{} + 1));
    const auto sum = [=](u8xn two, u8xn third) {
        return wasm_i32x4_shr((v128_t)(multiply_neighbours(two, ab) + multiply_neighbours(third, c512)), 10);
    };
    return (s16xn)wasm_i16x8_narrow_i32x4(sum(uv.first, w1.first), sum(uv.second, w1.second));
}
template <int A, int B, int C> s16x2n dot_q10(s16x2n u, s16x2n v, s16x2n w) {
    static_assert(dot_q10_fits(A, B, C));
    return {dot_q10<A, B, C>(u.lo, v.lo, w.lo), dot_q10<A, B, C>(u.hi, v.hi, w.hi)};
}

// -------------------------------------------------------------------------------------------------------------- pixels

/// The even ones, then the odd ones
template <int Step, bool Packed> struct pixels {
    static void load_luma(const u8* p, s16x2n& y) {
        u8xn v;
        load(p, v);
        y = centred_even_odd(v);
    }
    static void load_chroma(const u8* p, s16xn& c) { c = (s16xn)(((u16xn)wasm_u16x8_load8x8(p) << 8) ^ 0x8000); }
    static void load_chroma2(const u8* p, s16xn& a, s16xn& b) {
        s16x2n v;
        load_luma(p, v);
        a = v.lo, b = v.hi;
    }
    static void load_packed(const u8* p, s16x2n& a, s16x2n& b) {
        u8xn v, w;
        load2(p, v, w);
        a = centred_even_odd(v), b = centred_even_odd(w);
    }
    static void load_words(const u8* p, s16x2n& v) { load_even_odd_16(p, v); }
    static void load_words(const u8* p, s16xn& v) { v = load_as<s16xn>(p); }
    static u8xn narrow_q6(s16x2n v) { return narrow(v >> 6); }
    static void store(u8* p, u8xn a) { vec::store(p, zip_eights(a)); }
    static void store(u8* p, u8xn a, u8xn b) { store2(p, zip_eights(a), zip_eights(b)); }
    static void store(u8* p, u8xn a, u8xn b, u8xn c) { store3(p, a, b, c, even_odd_place); }
    static void store(u8* p, u8xn a, u8xn b, u8xn c, u8xn d) {
        store4(p, zip_eights(a), zip_eights(b), zip_eights(c), zip_eights(d));
    }
};

// --------------------------------------------------------------------------------------------------------------- pairs

// Left and right bytes, or their weights, are the halves of a register of an eight, and by themselves in two for a
// group.
using pairs = u8xn;
constexpr int reach = 16;
struct pairs_2n {
    u8xn left, right;
};
using weights_2n = pairs_2n;
template <int Windows> pairs gather_pairs(const u8* row, const std::ptrdiff_t* at, const u8xn* masks) {
    pairs p{};
    ZELT_STRAIGHT(8)
    for (int i = 0; i < Windows; ++i) p |= look_up(load_as<u8xn>(row + *at + 16 * i), masks[i]);
    return p;
}
inline s16x2n multiply(u8xn a, u8xn b) {
    const s16x2n v = widen(a), w = widen(b);
    return {v.lo * w.lo, v.hi * w.hi};
}
inline s16xn weighted_sum(pairs p, u8xn w) {
    const s16x2n products = multiply(p, w);
    return products.lo + products.hi;
}
inline s16xn weighted_sum(s16xn sum, pairs p, u8xn w) { return (s16xn)((u16xn)sum + (u16xn)weighted_sum(p, w)); }

/// Every second pixel of two registers: the even and the odd ones
template <int Bytes> pairs_2n split(u8xn a, u8xn b) {
    if constexpr (Bytes == 1)
        unzip(a, b);
    else
        return {(u8xn)shuffle<0, 2, 4, 6>((u32xn)a, (u32xn)b), (u8xn)shuffle<1, 3, 5, 7>((u32xn)a, (u32xn)b)};
    return {a, b};
}
template <int Bytes, int Next> pairs_2n load_pairs(const u8*& p) {
    static_assert((Bytes == 1 || Bytes == 4) && (Next == 1 || Next == 2));
    u8xn v[2 * Next];
    load_next(p, v);
    if constexpr (Next == 1) return split<Bytes>(v[0], v[1]);
    return split<Bytes>(split<Bytes>(v[0], v[1]).left, split<Bytes>(v[2], v[3]).left);
}
inline weights_2n run_weights(u8xn lo, u8xn hi) {
    const two<u8xn> v = zip_halves(lo, hi);
    return {v.first, v.second};
}
inline s16x2n weighted_sum(pairs_2n p, weights_2n w, pairs_2n q, weights_2n v) {
    return multiply(p.left, w.left) + multiply(p.right, w.right) + multiply(q.left, v.left) +
           multiply(q.right, v.right);
}
inline u16x8 pack(u32x4 a, u32x4 b) { return (u16x8)wasm_u16x8_narrow_i32x4((v128_t)a, (v128_t)b); }
inline void store_pairs(u8* p, u16x8 left, u16x8 right) { store(p, narrow({(s16xn)left, (s16xn)right})); }
}  // namespace zelt::inline ZELT_LEVEL::vec

#include "simd/wasm_block.h"
