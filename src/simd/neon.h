#pragma once  // the vector vocabulary on NEON, ARMv7 and AArch64 alike
#include <arm_neon.h>

namespace zelt::inline ZELT_LEVEL::vec {
constexpr bool loads_take_an_index = false, store3_beats_a_loop = true;
constexpr std::size_t memset_from = SIZE_MAX, string_fill_from = SIZE_MAX;
inline void string_fill(u8*, u32, std::size_t) {}  // there is none, and no call of it

inline void load(const u8* p, u8xn& a) { a = (u8xn)vld1q_u8(p); }
inline void load2(const u8* p, u8xn& a, u8xn& b) {
    const uint8x16x2_t v = vld2q_u8(p);
    a = (u8xn)v.val[0], b = (u8xn)v.val[1];
}
inline void load3(const u8* p, u8xn& a, u8xn& b, u8xn& c) {
    const uint8x16x3_t v = vld3q_u8(p);
    a = (u8xn)v.val[0], b = (u8xn)v.val[1], c = (u8xn)v.val[2];
}
inline void load4(const u8* p, u8xn& a, u8xn& b, u8xn& c, u8xn& d) {
    const uint8x16x4_t v = vld4q_u8(p);
    a = (u8xn)v.val[0], b = (u8xn)v.val[1], c = (u8xn)v.val[2], d = (u8xn)v.val[3];
}

inline void store(u8* p, u8xn a) { vst1q_u8(p, (uint8x16_t)a); }
inline void store2(u8* p, u8xn a, u8xn b) {
    const uint8x16x2_t v = {{(uint8x16_t)a, (uint8x16_t)b}};
    vst2q_u8(p, v);
}
inline void store3(u8* p, u8xn a, u8xn b, u8xn c) {
    const uint8x16x3_t v = {{(uint8x16_t)a, (uint8x16_t)b, (uint8x16_t)c}};
    vst3q_u8(p, v);
}
inline void store4(u8* p, u8xn a, u8xn b, u8xn c, u8xn d) {
    const uint8x16x4_t v = {{(uint8x16_t)a, (uint8x16_t)b, (uint8x16_t)c, (uint8x16_t)d}};
    vst4q_u8(p, v);
}

inline uint8x8_t low8(u8xn a) { return vget_low_u8((uint8x16_t)a); }
inline uint8x8_t high8(u8xn a) { return vget_high_u8((uint8x16_t)a); }

inline s16x2n widen(u8xn a) { return {(s16xn)vmovl_u8(low8(a)), (s16xn)vmovl_u8(high8(a))}; }
inline u8xn narrow(s16x2n a) { return (u8xn)vcombine_u8(vqmovun_s16((int16x8_t)a.lo), vqmovun_s16((int16x8_t)a.hi)); }
inline u8xn narrow_signed(s16x2n a) {
    return (u8xn)vcombine_s8(vqmovn_s16((int16x8_t)a.lo), vqmovn_s16((int16x8_t)a.hi));
}
inline u8xn high(s16x2n a) {
    return (u8xn)vcombine_u8(vshrn_n_u16((uint16x8_t)a.lo, 8), vshrn_n_u16((uint16x8_t)a.hi, 8));
}
inline u8xn round_high(s16x2n a) {
    return (u8xn)vcombine_u8(vrshrn_n_u16((uint16x8_t)a.lo, 8), vrshrn_n_u16((uint16x8_t)a.hi, 8));
}
inline s16x2n add_wide(s16x2n a, u8xn b) {
    return {(s16xn)vaddw_u8((uint16x8_t)a.lo, low8(b)), (s16xn)vaddw_u8((uint16x8_t)a.hi, high8(b))};
}
inline s16x2n difference(u8xn a, u8xn b) {
    return {(s16xn)vsubl_u8(low8(a), low8(b)), (s16xn)vsubl_u8(high8(a), high8(b))};
}
inline s16x2n sub_sat(s16x2n a, s16x2n b) {
    return {(s16xn)vqsubq_s16((int16x8_t)a.lo, (int16x8_t)b.lo), (s16xn)vqsubq_s16((int16x8_t)a.hi, (int16x8_t)b.hi)};
}
template <int F> s16x2n centred_product(u8xn a) {
    static_assert(centred_product_fits(F));
    const int8x16_t centred = (int8x16_t)(a ^ 128);
    return {(s16xn)vqrdmulhq_n_s16(vshll_n_s8(vget_low_s8(centred), 7), F),
            (s16xn)vqrdmulhq_n_s16(vshll_n_s8(vget_high_s8(centred), 7), F)};
}
inline s16x2n mul_q15(s16x2n a, int b) {
    const s16 factor = static_cast<s16>(b);
    return {(s16xn)vqrdmulhq_n_s16((int16x8_t)a.lo, factor), (s16xn)vqrdmulhq_n_s16((int16x8_t)a.hi, factor)};
}
template <int N> s16x2n shift_add(s16x2n a, s16x2n b) {
    return {(s16xn)vsraq_n_s16((int16x8_t)a.lo, (int16x8_t)b.lo, N),
            (s16xn)vsraq_n_s16((int16x8_t)a.hi, (int16x8_t)b.hi, N)};
}
template <int N> u8xn shift_insert(u8xn a, u8xn b) { return (u8xn)vsriq_n_u8((uint8x16_t)a, (uint8x16_t)b, N); }
inline bool any(u8xn mask) { return vget_lane_u64((uint64x1_t)(low8(mask) | high8(mask)), 0) != 0; }

/// sum + F a; factors up to 255 in magnitude, the sum modulo 2^16
template <int F> uint16x8_t multiply_add(uint16x8_t sum, uint8x8_t a) {
    if constexpr (F == 0)
        return sum;
    else if constexpr (F > 0)
        return vmlal_u8(sum, a, vdup_n_u8(F));
    else
        return vmlsl_u8(sum, a, vdup_n_u8(-F));
}
/// F a
template <int F> uint16x8_t multiply(uint8x8_t a) {
    if constexpr (F > 0)
        return vmull_u8(a, vdup_n_u8(F));
    else
        return multiply_add<F>(vdupq_n_u16(0), a);
}

template <int A, int B> s16x2n add_products(u8xn a, u8xn b) {
    if constexpr (A < 0 && B > 0) return add_products<B, A>(b, a);  // start with a product, not with zero
    return {(s16xn)multiply_add<B>(multiply<A>(low8(a)), low8(b)),
            (s16xn)multiply_add<B>(multiply<A>(high8(a)), high8(b))};
}
template <int A, int B> s16x2n dot(u8xn a, u8xn b) {
    static_assert(dot_fits(A, B));
    if constexpr (A == 1 && B == -1) return difference(a, b);
    return add_products<A, B>(a, b);
}

struct triples {
    u8xn a, b, c;
};
inline triples interleave(u8xn a, u8xn b, u8xn c) { return {a, b, c}; }
template <int A, int B, int C> s16x2n dot(triples v) {
    static_assert(dot_fits(A, B, C));
    const s16x2n ab = add_products<A, B>(v.a, v.b);
    return {(s16xn)multiply_add<C>((uint16x8_t)ab.lo, low8(v.c)),
            (s16xn)multiply_add<C>((uint16x8_t)ab.hi, high8(v.c))};
}

inline void load_16(const u8* p, s16x2n& a) { a = {(s16xn)vld1q_u8(p), (s16xn)vld1q_u8(p + 16)}; }
inline void store_16(u8* p, s16x2n a) { vst1q_u8(p, (uint8x16_t)a.lo), vst1q_u8(p + 16, (uint8x16_t)a.hi); }
inline void store_widened(s16* p, s16x2n a) { vst1q_s16(p, (int16x8_t)a.lo), vst1q_s16(p + 8, (int16x8_t)a.hi); }

template <int A, int B, int C> int16x4_t dot_q10(int16x4_t a, int16x4_t b, int16x4_t c) {
    const int16x4_t factors = {A, B, C, 0};  // lanes of one register: compilers keep factors by themselves in many
    int32x4_t sum = vmlal_lane_s16(vmull_lane_s16(a, factors, 0), b, factors, 1);
    if constexpr (C != 0) sum = vmlal_lane_s16(sum, c, factors, 2);
    return vrshrn_n_s32(sum, 10);
}
template <int A, int B, int C> s16xn dot_q10(s16xn a, s16xn b, s16xn c) {
    const auto low = [](s16xn v) { return vget_low_s16((int16x8_t)v); };
    const auto high = [](s16xn v) { return vget_high_s16((int16x8_t)v); };
    return (s16xn)vcombine_s16(dot_q10<A, B, C>(low(a), low(b), low(c)), dot_q10<A, B, C>(high(a), high(b), high(c)));
}
template <int A, int B, int C> s16x2n dot_q10(s16x2n a, s16x2n b, s16x2n c) {
    static_assert(dot_q10_fits(A, B, C));
    return {dot_q10<A, B, C>(a.lo, b.lo, c.lo), dot_q10<A, B, C>(a.hi, b.hi, c.hi)};
}

struct pairs {
    uint8x8_t left, right;
};
constexpr int eight_at(int i) { return i; }
inline u16x8 pack(u32x4 a, u32x4 b) { return (u16x8)vcombine_u16(vmovn_u32((uint32x4_t)a), vmovn_u32((uint32x4_t)b)); }
inline void store_pairs(u8* p, u16x8 left, u16x8 right) {
    vst1q_u8(p, vcombine_u8(vmovn_u16((uint16x8_t)left), vmovn_u16((uint16x8_t)right)));
}

constexpr int reach = 32;
template <int Windows> pairs gather_pairs(const u8* row, const std::ptrdiff_t* at, const u8* masks) {
    row += *at;
    pairs p = {vdup_n_u8(0), vdup_n_u8(0)};
    for (int i = 0; i < Windows; i += 2, row += reach, masks += 16) {
        const uint8x8_t left = vld1_u8(masks), right = vld1_u8(masks + 8);
        const uint8x16_t v = vld1q_u8(row);
        if (i + 1 < Windows) {
            const uint8x16_t w = vld1q_u8(row + 16);
            const uint8x8x4_t table = {{vget_low_u8(v), vget_high_u8(v), vget_low_u8(w), vget_high_u8(w)}};
            p = i ? pairs{vtbx4_u8(p.left, table, left), vtbx4_u8(p.right, table, right)}
                  : pairs{vtbl4_u8(table, left), vtbl4_u8(table, right)};
        } else {
            const uint8x8x2_t table = {{vget_low_u8(v), vget_high_u8(v)}};
            p = i ? pairs{vtbx2_u8(p.left, table, left), vtbx2_u8(p.right, table, right)}
                  : pairs{vtbl2_u8(table, left), vtbl2_u8(table, right)};
        }
    }
    return p;
}
template <int Bytes, int Next> pairs load_pairs(const u8* p) {
    static_assert((Bytes == 1 || Bytes == 4) && (Next == 1 || Next == 2));
    if constexpr (Bytes == 1 && Next == 1) {
        const uint8x8x2_t v = vld2_u8(p);
        return {v.val[0], v.val[1]};
    } else if constexpr (Bytes == 1) {
        const uint8x8x4_t v = vld4_u8(p);
        return {v.val[0], v.val[2]};
    } else {  // not vld2_u32, which may assume alignment
        const uint32x4_t v = (uint32x4_t)vld1q_u8(p), w = Next == 1 ? v : (uint32x4_t)vld1q_u8(p + 16);
        const uint32x2_t left = vget_low_u32(v), right = Next == 1 ? vget_high_u32(v) : vget_low_u32(w);
        const uint32x2x2_t two = vtrn_u32(left, right);
        if constexpr (Next == 1) return {(uint8x8_t)two.val[0], (uint8x8_t)two.val[1]};
        return {(uint8x8_t)two.val[0], (uint8x8_t)vtrn_u32(vget_high_u32(v), vget_high_u32(w)).val[0]};
    }
}
inline s16xn weighted_sum(pairs p, u8xn w) { return (s16xn)vmlal_u8(vmull_u8(p.left, low8(w)), p.right, high8(w)); }
inline s16xn weighted_sum(s16xn sum, pairs p, u8xn w) {
    return (s16xn)vmlal_u8(vmlal_u8((uint16x8_t)sum, p.left, low8(w)), p.right, high8(w));
}
inline u8xn narrow_q6(s16x2n a) {
    return (u8xn)vcombine_u8(vshrn_n_u16((uint16x8_t)a.lo, 6), vshrn_n_u16((uint16x8_t)a.hi, 6));
}
inline u8xn narrow_ordered(s16x2n a) { return narrow(a); }
inline u8xn narrow_q6_ordered(s16x2n a) { return narrow_q6(a); }
}  // namespace zelt::inline ZELT_LEVEL::vec

#include "simd/neon_block.h"
