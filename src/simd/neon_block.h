// SPDX-License-Identifier: MIT
#pragma once  // the vocabulary of sample blocks on NEON, ARMv7 and AArch64 alike

// Single instructions by hand where gcc 12 for ARMv7 has no loads and stores of two registers, or copies operands first
#if defined(__arm__) && !defined(__clang__)
#define ZELT_BY_HAND 1
#else
#define ZELT_BY_HAND 0
#endif

namespace zelt::inline ZELT_LEVEL::vec {
template <class T> T load_as(const void* p) {  // a plain load: a lane load of a cast pointer may assume alignment
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

typedef u32 u32_anywhere __attribute__((aligned(1), may_alias));  // for loads that must not assume alignment

/// R rows of `Bytes` bytes each, in half a register
template <int Bytes, int R> uint8x8_t pack_half(const u8* p, std::ptrdiff_t stride) {
    static_assert(R >= 1 && Bytes * R <= 8);
    if constexpr (Bytes == 8) {
        return vld1_u8(p);
    } else if constexpr (Bytes == 4) {
        const auto row = [=](int i) { return reinterpret_cast<const u32_anywhere*>(p + i * stride); };
#if defined(__aarch64__) && defined(__clang__)  // which would load a lane of a register that it clears first
        if constexpr (R == 1) {
            uint8x8_t v;
            asm("ldr %s0, %1" : "=w"(v) : "m"(*row(0)));
            return v;
        }
#endif
        if constexpr (R == 1) return vreinterpret_u8_u32(vld1_lane_u32(row(0), vdup_n_u32(0), 0));
        return vreinterpret_u8_u32(vld1_lane_u32(row(R - 1), vld1_dup_u32(row(0)), 1));
    } else {
        static_assert(Bytes == 2, "no form for rows of this width");
        uint16x4_t v = vdup_n_u16(0);
        v = vset_lane_u16(load_as<u16>(p), v, 0);
        if constexpr (R >= 2) v = vset_lane_u16(load_as<u16>(p + stride), v, 1);
        if constexpr (R >= 3) v = vset_lane_u16(load_as<u16>(p + 2 * stride), v, 2);
        if constexpr (R >= 4) v = vset_lane_u16(load_as<u16>(p + 3 * stride), v, 3);
        return vreinterpret_u8_u16(v);
    }
}
/// R rows of `Bytes` bytes each, in a register
template <int Bytes, int R> uint8x16_t pack_rows(const u8* p, std::ptrdiff_t stride) {
    static_assert(R >= 1 && Bytes * R <= 16);
    constexpr int low = R > 8 / Bytes ? 8 / Bytes : R;
    if constexpr (Bytes == 16)
        return vld1q_u8(p);
    else if constexpr (R == low)
        return vcombine_u8(pack_half<Bytes, low>(p, stride), vdup_n_u8(0));
    else
        return vcombine_u8(pack_half<Bytes, low>(p, stride), pack_half<Bytes, R - low>(p + low * stride, stride));
}

template <int W, int R> auto load_rows(const u8* p, std::ptrdiff_t stride) {
    static_assert(rows_fit(W, R, 1, lanes));
    if constexpr (W * R <= 8)
        return pack_half<W, R>(p, stride);
    else
        return (u8xn)pack_rows<W, R>(p, stride);
}
template <int W, int R> u16xn load_rows_16(const u8* p, std::ptrdiff_t stride) {
    static_assert(rows_fit(W, R, 2, lanes));
    uint8x8_t v = pack_half<W, R>(p, stride);
#if defined(__arm__) && defined(__clang__)  // which would widen as it loads, by way of core registers and the stack
    v = hide_from_optimizer(v);
#endif
    return (u16xn)vmovl_u8(v);
}
template <int W, int R> u16xn load_rows_16(const s16* p, std::ptrdiff_t stride) {
    static_assert(rows_fit(W, R, 2, lanes));
    return (u16xn)pack_rows<2 * W, R>(reinterpret_cast<const u8*>(p), 2 * stride);
}
template <int W, int R> u16xn load_rows_16(const u16* p, std::ptrdiff_t stride) {
    return load_rows_16<W, R>(reinterpret_cast<const s16*>(p), stride);
}
/// 32 bytes; p moves on by n.
inline two<u8xn> load_32(const u8*& p, std::ptrdiff_t n) {
#if ZELT_BY_HAND
    __builtin_neon_oi whole;
    const auto& memory = *reinterpret_cast<const u8(*)[32]>(p);
    if (__builtin_constant_p(n) && n == 32)
        asm("vld1.8 %h0, [%1]!" : "=w"(whole), "+r"(p) : "Q"(memory));
    else
        asm("vld1.8 %h0, [%1], %2" : "=w"(whole), "+r"(p) : "r"(n), "Q"(memory));
    union {
        __builtin_neon_oi whole;
        uint8x16x2_t two;
    } v = {whole};
    return {(u8xn)v.two.val[0], (u8xn)v.two.val[1]};
#else
#ifdef __aarch64__
    two<u8xn> v = {(u8xn)vld1q_u8(p), (u8xn)vld1q_u8(p + 16)};
    if (!__builtin_constant_p(n)) {  // not part of a wider row: there ldp takes an offset, ld1 of two registers none
        const uint8x16x2_t both = vld1q_u8_x2(p);
        v = {(u8xn)both.val[0], (u8xn)both.val[1]};
    }
#else  // clang takes the address of vld1q_u8_x2 to be aligned
    two<u8xn> v;
    v.first = (u8xn)vld1q_u8(p), p = hide_from_optimizer(p + 16), n -= 16;
    v.second = (u8xn)vld1q_u8(p);
#endif
    p += n;
    return v;
#endif
}
inline two<u8xn> load_two(const u8*& p, std::ptrdiff_t n) { return load_32(p, n); }
inline two<u16xn> load_two_16(const s16*& p, std::ptrdiff_t n) {
    const u8* bytes = reinterpret_cast<const u8*>(p);
    const two<u8xn> v = load_32(bytes, 2 * n);
    p = reinterpret_cast<const s16*>(bytes);
    return {(u16xn)v.first, (u16xn)v.second};
}
inline two<u16xn> load_two_16(const u8*& p, std::ptrdiff_t n) {
    const uint8x16_t v = vld1q_u8(p);
    p += n;
    return {(u16xn)vmovl_u8(vget_low_u8(v)), (u16xn)vmovl_u8(vget_high_u8(v))};
}
#ifdef __aarch64__
inline two<two<u8xn>> load_four(const u8*& p) {
    const uint8x16x4_t v = vld1q_u8_x4(p);
    p += 64;
    return {{(u8xn)v.val[0], (u8xn)v.val[1]}, {(u8xn)v.val[2], (u8xn)v.val[3]}};
}
inline two<two<u16xn>> load_four_16(const s16*& p) {
    const int16x8x4_t v = vld1q_s16_x4(p);
    p += 32;
    return {{(u16xn)v.val[0], (u16xn)v.val[1]}, {(u16xn)v.val[2], (u16xn)v.val[3]}};
}
#endif
template <int W, int R> u16xn difference_of_rows(const u8* a, const u8* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    return (u16xn)vsubl_u8(pack_half<W, R>(a, sa), pack_half<W, R>(b, sb));
}
template <int W, int R>  // there is none, and no call of it
u16xn paired_residual(const u8* a, const u8* b, std::ptrdiff_t sa, std::ptrdiff_t sb);
inline void store_two_16(s16*& p, two<u16xn> v, std::ptrdiff_t n) {
#if ZELT_BY_HAND  // in two registers of their own: gcc makes a pair by way of memory
    register u16xn first asm("q8") = v.first;
    register u16xn second asm("q9") = v.second;
    auto& memory = *reinterpret_cast<u8(*)[32]>(p);
    const std::ptrdiff_t bytes = 2 * n;
    if (__builtin_constant_p(n) && n == 16)
        asm("vst1.16 {d16-d19}, [%0]!" : "+r"(p), "=Q"(memory) : "w"(first), "w"(second));
    else
        asm("vst1.16 {d16-d19}, [%0], %2" : "+r"(p), "=Q"(memory) : "r"(bytes), "w"(first), "w"(second));
#else
#ifdef __aarch64__
    const uint16x8x2_t both = {{(uint16x8_t)v.first, (uint16x8_t)v.second}};
    vst1q_u16_x2(reinterpret_cast<u16*>(p), both);
#else  // as in load_32
    vst1q_u8(reinterpret_cast<u8*>(p), (uint8x16_t)v.first), p = hide_from_optimizer(p + 8), n -= 8;
    vst1q_u8(reinterpret_cast<u8*>(p), (uint8x16_t)v.second);
#endif
    p = __builtin_constant_p(n) ? p + n : step_on(p, n);
#endif
}
inline void store_widened(s16*& p, s16x2n v, std::ptrdiff_t n) { store_two_16(p, {(u16xn)v.lo, (u16xn)v.hi}, n); }

template <int W, int R> void store_rows_16(s16* p, std::ptrdiff_t stride, u16xn v) {
    static_assert(rows_fit(W, R, 2, lanes));
    if constexpr (W == 8) {
        vst1q_u16(reinterpret_cast<u16*>(p), (uint16x8_t)v);
    } else if constexpr (W == 4) {
        vst1_u16(reinterpret_cast<u16*>(p), vget_low_u16((uint16x8_t)v));
        if constexpr (R == 2) vst1_u16(reinterpret_cast<u16*>(p + stride), vget_high_u16((uint16x8_t)v));
    } else {
        for (int i = 0; i < R; ++i) std::memcpy(p + i * stride, reinterpret_cast<const u8*>(&v) + 2 * W * i, 2 * W);
    }
}

inline u32xn extend(u32xn s) { return s; }
inline u16xn extend(u16xn s) { return s; }

inline u32 reduce_add(uint32x4_t s) {
#ifdef __aarch64__
    return vaddvq_u32(s);
#else
    const uint32x2_t two = vadd_u32(vget_low_u32(s), vget_high_u32(s));
    return vget_lane_u32(vpadd_u32(two, two), 0);
#endif
}
inline u32 reduce_add(u32xn s) { return reduce_add((uint32x4_t)s); }
inline u32 reduce_add(u16xn s) {
#ifdef __aarch64__
    return vaddlvq_u16((uint16x8_t)s);
#else
    return reduce_add(vpaddlq_u16((uint16x8_t)s));
#endif
}

/// Whether the compiler sees that nothing has been added up yet
template <class V> [[gnu::always_inline]] inline bool is_empty(V sum) {
    const auto bits = (uint64x2_t)sum;
    return __builtin_constant_p(bits[0] | bits[1]) && (bits[0] | bits[1]) == 0;
}
[[gnu::always_inline]] inline u16xn add_abs_diff(u16xn s, uint8x8_t a, uint8x8_t b) {
    return is_empty(s) ? (u16xn)vabdl_u8(a, b) : in_order((u16xn)vabal_u8((uint16x8_t)s, a, b));
}
[[gnu::always_inline]] inline u16xn pairwise_add_accumulate(u16xn s, uint8x16_t a) {
    return is_empty(s) ? (u16xn)vpaddlq_u8(a) : in_order((u16xn)vpadalq_u8((uint16x8_t)s, a));
}
[[gnu::always_inline]] inline u32xn pairwise_add_accumulate(u32xn s, u16xn a) {
    return is_empty(s) ? (u32xn)vpaddlq_u16((uint16x8_t)a) : in_order((u32xn)vpadalq_u16((uint32x4_t)s, (uint16x8_t)a));
}
inline u32xn pairwise_add_accumulate_abs(u32xn s, u16xn a) { return pairwise_add_accumulate(s, a); }

/// Taken in turn, so that one sum does not wait for another
template <int W, int N> struct abs_diff_sums_8 {
    static_assert(N <= 256);
    u16xn next, second, third, last;
};
template <int W, int N> abs_diff_sums_8<W, N> add_abs_diff(const abs_diff_sums_8<W, N>& s, uint8x8_t a, uint8x8_t b) {
    return {s.second, s.third, s.last, add_abs_diff(s.next, a, b)};
}
template <int W, int N> abs_diff_sums_8<W, N> add_abs_diff(const abs_diff_sums_8<W, N>& s, u8xn a, u8xn b) {
#ifdef __aarch64__  // has more of these at a time than of vabal
    return {s.second, s.third, s.last, pairwise_add_accumulate(s.next, vabdq_u8((uint8x16_t)a, (uint8x16_t)b))};
#else
    return {s.third, s.last, add_abs_diff(s.next, low8(a), low8(b)), add_abs_diff(s.second, high8(a), high8(b))};
#endif
}
/// In N times all sums together get 2 N magnitudes at most.
template <int W, int N> u32 reduce_add(const abs_diff_sums_8<W, N>& s) {
    const u16xn a = s.next + s.third, b = s.second + s.last;
#ifdef __aarch64__
    if constexpr (N <= 128) return reduce_add(a + b);
#endif
    return reduce_add(pairwise_add_accumulate(pairwise_add_accumulate(u32xn{}, a), b));
}

template <int W, int N, int R> u32 reduce_add(const abs_diff_sums_8<W, N> (&rows)[R]);  // there are none
template <int W, int N, int R> u32 sum_until(const abs_diff_sums_8<W, N> (&rows)[R], u32 least);

inline u16xn abs(u16xn a) { return (u16xn)vabsq_s16((int16x8_t)a); }
inline u16xn max(u16xn a, u16xn b) { return (u16xn)vmaxq_u16((uint16x8_t)a, (uint16x8_t)b); }
inline u16xn average(u16xn a, u16xn b) { return (u16xn)vrhaddq_u16((uint16x8_t)a, (uint16x8_t)b); }
inline u16xn add_sat(u16xn a, u16xn b) { return (u16xn)vqaddq_s16((int16x8_t)a, (int16x8_t)b); }
inline u16xn sub_sat(u16xn a, u16xn b) { return (u16xn)vqsubq_s16((int16x8_t)a, (int16x8_t)b); }

/// A magnitude has 16 bits, so one out of range takes the sum there.
template <class V> struct abs_diff_sums_16 { V sum; };
inline uint16x8_t abs_diff(u16xn a, u16xn b) { return (uint16x8_t)vabdq_s16((int16x8_t)a, (int16x8_t)b); }
inline void add_magnitudes(u16xn& s, uint16x8_t a) {
    s = (u16xn)(is_empty(s) ? a : vqaddq_u16((uint16x8_t)s, a));
#ifdef __aarch64__
    s = in_order(s);
#endif
}
inline void add_abs_diff(abs_diff_sums_16<u16xn>& s, u16xn a, u16xn b) { add_magnitudes(s.sum, abs_diff(a, b)); }
inline void add_abs_diffs(abs_diff_sums_16<u16xn>& s, u16xn a, u16xn b, u16xn c, u16xn d) {
    add_magnitudes(s.sum, vqaddq_u16(abs_diff(a, b), abs_diff(c, d)));
}
inline u16xn seen(const abs_diff_sums_16<u16xn>& s) { return s.sum; }
inline u16 largest(u16xn a) {
#ifdef __aarch64__
    return vmaxvq_u16((uint16x8_t)a);
#else
    uint16x4_t v = vmax_u16(vget_low_u16((uint16x8_t)a), vget_high_u16((uint16x8_t)a));
    v = vpmax_u16(v, v);
    return vget_lane_u16(vpmax_u16(v, v), 0);
#endif
}
inline bool any_sign_bit(u16xn a) { return largest(a) >> 15; }
inline bool exact_abs_diffs(u16xn seen) { return !any_sign_bit(seen); }

/// Differences take 32 bits, so all are exact.
/// Taken in turn, so that one sum does not wait for another
template <class V> struct square_sums { u32xn next, second, third, last; };
[[gnu::always_inline]] inline u32xn add_square(u32xn s, uint16x4_t d) {
    return is_empty(s) ? (u32xn)vmull_u16(d, d) : in_order((u32xn)vmlal_u16((uint32x4_t)s, d, d));
}
inline square_sums<u16xn> add_squares(const square_sums<u16xn>& s, u16xn a, u16xn b) {
    const uint16x8_t d = abs_diff(a, b);
    return {s.third, s.last, add_square(s.next, vget_low_u16(d)), add_square(s.second, vget_high_u16(d))};
}
inline square_sums<u16xn> add_squares(const square_sums<u16xn>& s, uint8x8_t a, uint8x8_t b) {
    const uint8x8_t d = vabd_u8(a, b);
    return {s.second, s.third, s.last, pairwise_add_accumulate(s.next, (u16xn)vmull_u8(d, d))};
}
inline square_sums<u16xn> add_squares(const square_sums<u16xn>& s, u8xn a, u8xn b) {
    const uint8x16_t d = vabdq_u8((uint8x16_t)a, (uint8x16_t)b);
    const uint16x8_t lo = vmull_u8(vget_low_u8(d), vget_low_u8(d)), hi = vmull_u8(vget_high_u8(d), vget_high_u8(d));
    return {s.third, s.last, pairwise_add_accumulate(s.next, (u16xn)lo), pairwise_add_accumulate(s.second, (u16xn)hi)};
}
inline bool exact(const square_sums<u16xn>&) { return true; }
inline u32 reduce_add(const square_sums<u16xn>& s) { return reduce_add((s.next + s.third) + (s.second + s.last)); }

#ifdef __arm__
template <class V> void transpose2x2_16(V& a, V& b) { asm("vtrn.16 %q0, %q1" : "+w"(a), "+w"(b)); }
template <class V> void transpose2x2_32(V& a, V& b) { asm("vtrn.32 %q0, %q1" : "+w"(a), "+w"(b)); }
template <class V> void transpose2x2_64(V& a, V& b) { asm("vswp %f0, %e1" : "+w"(a), "+w"(b)); }
#else  // neither tuples, for which gcc copies registers, nor moves of lanes, which are slow
template <class V> void transpose2x2_16(V& a, V& b) {
    const auto va = (uint16x8_t)a, vb = (uint16x8_t)b;
    a = (V)vtrn1q_u16(va, vb), b = (V)vtrn2q_u16(va, vb);
}
template <class V> void transpose2x2_32(V& a, V& b) {
    const auto va = (uint32x4_t)a, vb = (uint32x4_t)b;
    a = (V)vtrn1q_u32(va, vb), b = (V)vtrn2q_u32(va, vb);
}
template <class V> void transpose2x2_64(V& a, V& b) {
    const auto va = (uint64x2_t)a, vb = (uint64x2_t)b;
    a = (V)vtrn1q_u64(va, vb), b = (V)vtrn2q_u64(va, vb);
}
#endif
inline u16xn max_of_neighbours(u16xn a, u16xn b) {
#ifdef __aarch64__
    return (u16xn)vpmaxq_u16((uint16x8_t)a, (uint16x8_t)b);
#else
    transpose2x2_16(a, b);
    return max(a, b);
#endif
}
template <class V> void transpose2x2_128(V&, V&) {}  // a register has no second one
}  // namespace zelt::inline ZELT_LEVEL::vec

#undef ZELT_BY_HAND
