// SPDX-License-Identifier: MIT
#pragma once  // blocks of samples in WebAssembly's registers

namespace zelt::inline ZELT_LEVEL::vec {
/// R rows of `Bytes` bytes each, in a register
template <int Bytes, int R> v128_t pack_rows(const u8* p, std::ptrdiff_t stride) {
    if constexpr (Bytes == 16) {
        return wasm_v128_load(p);
    } else if constexpr (Bytes == 8) {
        const v128_t v = wasm_v128_load64_zero(p);
        if constexpr (R == 1) return v;
        return wasm_v128_load64_lane(p + stride, v, 1);
    } else {
        return [=]<int... I>(std::integer_sequence<int, I...>) {
            v128_t v = Bytes == 4 ? wasm_v128_load32_zero(p) : wasm_v128_load16_lane(p, v128_t{}, 0);
            if constexpr (Bytes == 4)
                ((v = wasm_v128_load32_lane(p + (I + 1) * stride, v, I + 1)), ...);
            else
                ((v = wasm_v128_load16_lane(p + (I + 1) * stride, v, I + 1)), ...);
            return v;
        }
        (std::make_integer_sequence<int, R - 1>{});
    }
}
template <int W, int R> u8xn load_rows(const u8* p, std::ptrdiff_t stride) {
    static_assert(rows_fit(W, R, 1, lanes));
    return (u8xn)pack_rows<W, R>(p, stride);
}
template <int W, int R> u16xn load_rows_16(const u8* p, std::ptrdiff_t stride) {
    static_assert(rows_fit(W, R, 2, lanes));
    if constexpr (W == 8) return (u16xn)wasm_u16x8_load8x8(p);
    return (u16xn)wasm_u16x8_extend_low_u8x16(pack_rows<W, R>(p, stride));
}
template <int W, int R> u16xn load_rows_16(const s16* p, std::ptrdiff_t stride) {
    static_assert(rows_fit(W, R, 2, lanes));
    return (u16xn)pack_rows<2 * W, R>(reinterpret_cast<const u8*>(p), 2 * stride);
}
template <int W, int R> u16xn load_rows_16(const u16* p, std::ptrdiff_t stride) {
    return load_rows_16<W, R>(reinterpret_cast<const s16*>(p), stride);
}
template <int W, int R> void store_rows_16(s16* p, std::ptrdiff_t stride, u16xn v) {
    static_assert(rows_fit(W, R, 2, lanes));
    const v128_t all = (v128_t)v;
    if constexpr (W == 8) {
        wasm_v128_store(p, all);
    } else if constexpr (W == 4) {
        wasm_v128_store64_lane(p, all, 0);
        if constexpr (R == 2) wasm_v128_store64_lane(p + stride, all, 1);
    } else {
        [=]<int... I>(std::integer_sequence<int, I...>) { (wasm_v128_store32_lane(p + I * stride, all, I), ...); }
        (std::make_integer_sequence<int, R>{});
    }
}

inline u32 reduce_add(u32x4 v) {
    v += shuffle<2, 3, 0, 1>(v, v);
    v += shuffle<1, 0, 3, 2>(v, v);
    return v[0];
}
/// Any unsigned values
inline u32x4 add_neighbours(u16xn v) { return (u32x4)wasm_u32x4_extadd_pairwise_u16x8((v128_t)v); }

/// Taken in turn: 128 times two bytes are what 16 bits hold.
template <int W, int N> struct abs_diff_sums_8 {
    static_assert(N <= 256);
    u16xn next, last;
};
inline u8xn abs_diff(u8xn a, u8xn b) {
    return (u8xn)wasm_u8x16_sub_sat((v128_t)a, (v128_t)b) | (u8xn)wasm_u8x16_sub_sat((v128_t)b, (v128_t)a);
}
template <int W, int N> abs_diff_sums_8<W, N> add_abs_diff(const abs_diff_sums_8<W, N>& s, u8xn a, u8xn b) {
    return {s.last, s.next + (u16xn)pair_sums(abs_diff(a, b))};
}
template <int W, int N> u32 reduce_add(const abs_diff_sums_8<W, N>& s) {
    if constexpr (N <= 128) return reduce_add(add_neighbours(s.next + s.last));
    return reduce_add(add_neighbours(s.next) + add_neighbours(s.last));
}
template <int W, int N, int R> u32 reduce_add(const abs_diff_sums_8<W, N> (&rows)[R]);  // there are none
template <int W, int N, int R> u32 sum_until(const abs_diff_sums_8<W, N> (&rows)[R], u32 least);
template <int W, int R>
u16xn paired_residual(const u8* a, const u8* b, std::ptrdiff_t sa, std::ptrdiff_t sb);  // there is none either

inline u16xn abs(u16xn a) { return (u16xn)wasm_i16x8_abs((v128_t)a); }
inline u16xn max(u16xn a, u16xn b) { return (u16xn)wasm_u16x8_max((v128_t)a, (v128_t)b); }
inline u16xn average(u16xn a, u16xn b) { return (u16xn)wasm_u16x8_avgr((v128_t)a, (v128_t)b); }
inline u16xn add_sat(u16xn a, u16xn b) { return (u16xn)wasm_i16x8_add_sat((v128_t)a, (v128_t)b); }
inline u16xn sub_sat(u16xn a, u16xn b) { return (u16xn)wasm_i16x8_sub_sat((v128_t)a, (v128_t)b); }
inline bool any_sign_bit(u16xn a) { return any((u8xn)(a & 0x8000)); }

/// Two by two: in pairs below 8192 no sum is out of range, and a difference that was saturates.
template <class V> struct abs_diff_sums_16 { V sum, seen; };
inline void add_abs_diff(abs_diff_sums_16<u16xn>& s, u16xn a, u16xn b) {
    const u16xn one = abs(sub_sat(a, b));
    s.sum += one, s.seen |= one;
}
inline void add_abs_diffs(abs_diff_sums_16<u16xn>& s, u16xn a, u16xn b, u16xn c, u16xn d) {
    const u16xn two = (u16xn)wasm_u16x8_add_sat((v128_t)abs(sub_sat(a, b)), (v128_t)abs(sub_sat(c, d)));
    s.sum += two, s.seen |= two;
}
inline u16xn seen(abs_diff_sums_16<u16xn> s) { return s.seen; }
inline bool exact_abs_diffs(u16xn seen) { return !any((u8xn)(seen & 0xE000)); }

inline u32xn pairwise_add_accumulate(u32xn s, u16xn a) {
    return s + (u32xn)wasm_i32x4_extadd_pairwise_i16x8((v128_t)a);
}
inline u32 reduce_add(u16xn v) { return reduce_add(pairwise_add_accumulate(u32xn{}, v)); }
/// 2^15 has no signed form, its negative has.
inline u32xn pairwise_add_accumulate_abs(u32xn s, u16xn a) {
    return s - (u32xn)wasm_i32x4_extadd_pairwise_i16x8((v128_t)(u16xn{} - a));
}

/// Differences saturate: one that did makes a sum of squares of 2^29 at least, one that would not and is taken for it
/// only costs time.
template <class V> struct square_sums { u32xn sum, seen; };
inline square_sums<u16xn> add_squares(square_sums<u16xn> s, u16xn a, u16xn b) {
    const u16xn d = sub_sat(a, b);
    const u32xn squares = multiply_neighbours(d, d);
    return {s.sum + squares, s.seen | squares};
}
inline square_sums<u16xn> add_squares(square_sums<u16xn> s, u8xn a, u8xn b) {
    const s16x2n d = widen(abs_diff(a, b));
    return {s.sum + (multiply_neighbours(d.lo, d.lo) + multiply_neighbours(d.hi, d.hi)), s.seen};
}
inline bool exact(square_sums<u16xn> s) { return !any((u8xn)(s.seen & 7u << 29)); }
inline u32 reduce_add(square_sums<u16xn> s) { return reduce_add(s.sum); }

template <class V> void transpose2x2_16(V& a, V& b) {
    const u16xn first = shuffle<0, 9, 2, 11, 4, 13, 6, 15>((u16xn)a, (u16xn)((u32xn)b << 16));
    b = (V)shuffle<0, 9, 2, 11, 4, 13, 6, 15>((u16xn)((u32xn)a >> 16), (u16xn)b), a = (V)first;
}
inline u16xn max_of_neighbours(u16xn a, u16xn b) {
    transpose2x2_16(a, b);
    return max(a, b);
}
template <class V> void transpose2x2_32(V& a, V& b) {
    const u32xn v = (u32xn)a, w = (u32xn)b;
    a = (V)shuffle<0, 2, 4, 6>(v, w), b = (V)shuffle<1, 3, 5, 7>(v, w);
}
template <class V> void transpose2x2_64(V& a, V& b) {
    const two<V> v = zip_halves(a, b);
    a = v.first, b = v.second;
}
}  // namespace zelt::inline ZELT_LEVEL::vec
