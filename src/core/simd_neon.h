#pragma once  // the vector vocabulary on NEON, ARMv7 and AArch64 alike
#include <arm_neon.h>

namespace zelt::simd {
inline void load(const u8* p, bytes& a) { a = (bytes)vld1q_u8(p); }
inline void load2(const u8* p, bytes& a, bytes& b) {
    const uint8x16x2_t v = vld2q_u8(p);
    a = (bytes)v.val[0], b = (bytes)v.val[1];
}
inline void load3(const u8* p, bytes& a, bytes& b, bytes& c) {
    const uint8x16x3_t v = vld3q_u8(p);
    a = (bytes)v.val[0], b = (bytes)v.val[1], c = (bytes)v.val[2];
}
inline void load4(const u8* p, bytes& a, bytes& b, bytes& c, bytes& d) {
    const uint8x16x4_t v = vld4q_u8(p);
    a = (bytes)v.val[0], b = (bytes)v.val[1], c = (bytes)v.val[2], d = (bytes)v.val[3];
}

inline void store(u8* p, bytes a) { vst1q_u8(p, (uint8x16_t)a); }
inline void store2(u8* p, bytes a, bytes b) {
    const uint8x16x2_t v = {{(uint8x16_t)a, (uint8x16_t)b}};
    vst2q_u8(p, v);
}
inline void store3(u8* p, bytes a, bytes b, bytes c) {
    const uint8x16x3_t v = {{(uint8x16_t)a, (uint8x16_t)b, (uint8x16_t)c}};
    vst3q_u8(p, v);
}
inline void store4(u8* p, bytes a, bytes b, bytes c, bytes d) {
    const uint8x16x4_t v = {{(uint8x16_t)a, (uint8x16_t)b, (uint8x16_t)c, (uint8x16_t)d}};
    vst4q_u8(p, v);
}

inline uint8x8_t low8(bytes a) { return vget_low_u8((uint8x16_t)a); }
inline uint8x8_t high8(bytes a) { return vget_high_u8((uint8x16_t)a); }

inline words widen(bytes a) { return {(half)vmovl_u8(low8(a)), (half)vmovl_u8(high8(a))}; }
inline bytes narrow(words a) { return (bytes)vcombine_u8(vqmovun_s16((int16x8_t)a.lo), vqmovun_s16((int16x8_t)a.hi)); }
inline bytes narrow_signed(words a) {
    return (bytes)vcombine_s8(vqmovn_s16((int16x8_t)a.lo), vqmovn_s16((int16x8_t)a.hi));
}
inline bytes high(words a) {
    return (bytes)vcombine_u8(vshrn_n_u16((uint16x8_t)a.lo, 8), vshrn_n_u16((uint16x8_t)a.hi, 8));
}
inline bytes round_high(words a) {
    return (bytes)vcombine_u8(vrshrn_n_u16((uint16x8_t)a.lo, 8), vrshrn_n_u16((uint16x8_t)a.hi, 8));
}
inline words operator+(words a, bytes b) {
    return {(half)vaddw_u8((uint16x8_t)a.lo, low8(b)), (half)vaddw_u8((uint16x8_t)a.hi, high8(b))};
}
inline words difference(bytes a, bytes b) {
    return {(half)vsubl_u8(low8(a), low8(b)), (half)vsubl_u8(high8(a), high8(b))};
}
inline words sub_sat(words a, words b) {
    return {(half)vqsubq_s16((int16x8_t)a.lo, (int16x8_t)b.lo), (half)vqsubq_s16((int16x8_t)a.hi, (int16x8_t)b.hi)};
}
template <int F> words centred_product(bytes a) {
    const int8x16_t centred = (int8x16_t)(a ^ 128);
    return {(half)vqrdmulhq_n_s16(vshll_n_s8(vget_low_s8(centred), 7), F),
            (half)vqrdmulhq_n_s16(vshll_n_s8(vget_high_s8(centred), 7), F)};
}
inline words mul_q15(words a, int b) {
    const s16 factor = static_cast<s16>(b);
    return {(half)vqrdmulhq_n_s16((int16x8_t)a.lo, factor), (half)vqrdmulhq_n_s16((int16x8_t)a.hi, factor)};
}
template <int N> words shift_add(words a, words b) {
    return {(half)vsraq_n_s16((int16x8_t)a.lo, (int16x8_t)b.lo, N),
            (half)vsraq_n_s16((int16x8_t)a.hi, (int16x8_t)b.hi, N)};
}
template <int N> bytes shift_insert(bytes a, bytes b) { return (bytes)vsriq_n_u8((uint8x16_t)a, (uint8x16_t)b, N); }
inline bool any(bytes mask) { return vget_lane_u64((uint64x1_t)(low8(mask) | high8(mask)), 0) != 0; }

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

template <int A, int B> words dot(bytes a, bytes b) {
    if constexpr (A < 0 && B > 0) return dot<B, A>(b, a);  // start with a product, not with zero
    return {(half)multiply_add<B>(multiply<A>(low8(a)), low8(b)),
            (half)multiply_add<B>(multiply<A>(high8(a)), high8(b))};
}

struct triples {
    bytes a, b, c;
};
inline triples interleave(bytes a, bytes b, bytes c) { return {a, b, c}; }
template <int A, int B, int C> words dot(triples v) {
    const words ab = dot<A, B>(v.a, v.b);
    return {(half)multiply_add<C>((uint16x8_t)ab.lo, low8(v.c)), (half)multiply_add<C>((uint16x8_t)ab.hi, high8(v.c))};
}

inline void load_words(const u8* p, words& a) { a = {(half)vld1q_u8(p), (half)vld1q_u8(p + 16)}; }
inline void store_words(u8* p, words a) { vst1q_u8(p, (uint8x16_t)a.lo), vst1q_u8(p + 16, (uint8x16_t)a.hi); }

template <int A, int B, int C> int16x4_t dot_q10(int16x4_t a, int16x4_t b, int16x4_t c) {
    const int16x4_t factors = {A, B, C, 0};  // lanes of one register: compilers keep factors by themselves in many
    int32x4_t sum = vmlal_lane_s16(vmull_lane_s16(a, factors, 0), b, factors, 1);
    if constexpr (C != 0) sum = vmlal_lane_s16(sum, c, factors, 2);
    return vrshrn_n_s32(sum, 10);
}
template <int A, int B, int C> half dot_q10(half a, half b, half c) {
    const auto low = [](half v) { return vget_low_s16((int16x8_t)v); };
    const auto high = [](half v) { return vget_high_s16((int16x8_t)v); };
    return (half)vcombine_s16(dot_q10<A, B, C>(low(a), low(b), low(c)), dot_q10<A, B, C>(high(a), high(b), high(c)));
}
template <int A, int B, int C> words dot_q10(words a, words b, words c) {
    return {dot_q10<A, B, C>(a.lo, b.lo, c.lo), dot_q10<A, B, C>(a.hi, b.hi, c.hi)};
}

struct pairs {
    uint8x8_t left, right;
};
constexpr int eight_at(int i) { return i; }
inline eight pack(quad a, quad b) { return (eight)vcombine_u16(vmovn_u32((uint32x4_t)a), vmovn_u32((uint32x4_t)b)); }
inline void store_pairs(u8* p, eight left, eight right) {
    vst1q_u8(p, vcombine_u8(vmovn_u16((uint16x8_t)left), vmovn_u16((uint16x8_t)right)));
}

constexpr int reach = 32;
template <int Windows> pairs pick(const u8* row, const std::ptrdiff_t* at, const u8* masks) {
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
inline half weigh(pairs p, bytes w) { return (half)vmlal_u8(vmull_u8(p.left, low8(w)), p.right, high8(w)); }
inline half weigh(half sum, pairs p, bytes w) {
    return (half)vmlal_u8(vmlal_u8((uint16x8_t)sum, p.left, low8(w)), p.right, high8(w));
}
inline bytes narrow_q6(words a) {
    return (bytes)vcombine_u8(vshrn_n_u16((uint16x8_t)a.lo, 6), vshrn_n_u16((uint16x8_t)a.hi, 6));
}
inline bytes narrow_eights(words a) { return narrow(a); }
inline bytes narrow_q6_eights(words a) { return narrow_q6(a); }
}  // namespace zelt::simd
