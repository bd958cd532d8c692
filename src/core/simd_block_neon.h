#pragma once  // the vocabulary of sample blocks on NEON, ARMv7 and AArch64 alike
#include <cstring>

namespace zelt::simd {
template <class T> T load_as(const void* p) {  // a plain load: a lane load of a cast pointer may assume alignment
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

template <class V> V as_it_is(V v) {
    asm("" : "+w"(v));
    return v;
}

/// R rows of `Bytes` bytes each, in half a register
template <int Bytes, int R> uint8x8_t pack_half(const u8* p, std::ptrdiff_t stride) {
    static_assert(Bytes * R <= 8);
    if constexpr (Bytes == 8) {
        return vld1_u8(p);
    } else if constexpr (Bytes == 4) {
        uint32x2_t v = vdup_n_u32(0);
        v = vset_lane_u32(load_as<u32>(p), v, 0);
        if constexpr (R >= 2) v = vset_lane_u32(load_as<u32>(p + stride), v, 1);
        return vreinterpret_u8_u32(v);
    } else {
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
    constexpr int low = R > 8 / Bytes ? 8 / Bytes : R;
    if constexpr (Bytes == 16)
        return vld1q_u8(p);
    else if constexpr (R == low)
        return vcombine_u8(pack_half<Bytes, low>(p, stride), vdup_n_u8(0));
    else
        return vcombine_u8(pack_half<Bytes, low>(p, stride), pack_half<Bytes, R - low>(p + low * stride, stride));
}

template <int W, int R> bytes load_rows(const u8* p, std::ptrdiff_t stride) {
    return (bytes)pack_rows<W, R>(p, stride);
}
template <int W, int R> uhalf load_words(const u8* p, std::ptrdiff_t stride) {
    return (uhalf)vmovl_u8(pack_half<W, R>(p, stride));
}
template <int W, int R> uhalf load_words(const s16* p, std::ptrdiff_t stride) {
    return (uhalf)pack_rows<2 * W, R>(reinterpret_cast<const u8*>(p), 2 * stride);
}
template <int W, int R> uhalf load_words(const u16* p, std::ptrdiff_t stride) {
    return load_words<W, R>(reinterpret_cast<const s16*>(p), stride);
}
template <int W, int R> uhalf paired_residual(const u8* a, const u8* b, std::ptrdiff_t, std::ptrdiff_t) {
    const int16x8_t d = vreinterpretq_s16_u16(vsubl_u8(vld1_u8(a), vld1_u8(b)));
    const int16x4x2_t pairs = vuzp_s16(vget_low_s16(d), vget_high_s16(d));
    return (uhalf)vcombine_s16(vadd_s16(pairs.val[0], pairs.val[1]), vsub_s16(pairs.val[0], pairs.val[1]));
}
template <int W, int R> void store_words(s16* p, std::ptrdiff_t stride, uhalf v) {
    if constexpr (W == 8)
        vst1q_u16(reinterpret_cast<u16*>(p), (uint16x8_t)v);
    else
        for (int i = 0; i < R; ++i) std::memcpy(p + i * stride, reinterpret_cast<const u8*>(&v) + 2 * W * i, 2 * W);
}

inline words difference_words(bytes a, bytes b) { return difference(a, b); }
inline void store_difference(s16* p, words d) { vst1q_s16(p, (int16x8_t)d.lo), vst1q_s16(p + 8, (int16x8_t)d.hi); }

inline sums extend(sums s) { return s; }
inline uhalf extend(uhalf s) { return s; }

inline u32 total(uint32x4_t s) {
#ifdef __aarch64__
    return vaddvq_u32(s);
#else
    const uint32x2_t two = vadd_u32(vget_low_u32(s), vget_high_u32(s));
    return vget_lane_u32(vpadd_u32(two, two), 0);
#endif
}
inline u32 total(sums s) { return total((uint32x4_t)s); }

template <class B> struct byte_sums { uhalf lo, hi; };
inline byte_sums<bytes> add_abs_diff(byte_sums<bytes> s, bytes a, bytes b) {
    return {(uhalf)vabal_u8((uint16x8_t)s.lo, low8(a), low8(b)), (uhalf)vabal_u8((uint16x8_t)s.hi, high8(a), high8(b))};
}
inline u32 total(byte_sums<bytes> s) { return total(vpadalq_u16(vpaddlq_u16((uint16x8_t)s.lo), (uint16x8_t)s.hi)); }

inline uhalf abs(uhalf a) { return (uhalf)vabsq_s16((int16x8_t)a); }
inline uhalf max(uhalf a, uhalf b) { return (uhalf)vmaxq_u16((uint16x8_t)a, (uint16x8_t)b); }
inline uhalf mean_up(uhalf a, uhalf b) { return (uhalf)vrhaddq_u16((uint16x8_t)a, (uint16x8_t)b); }
inline uhalf add_sat_signed(uhalf a, uhalf b) { return (uhalf)vqaddq_s16((int16x8_t)a, (int16x8_t)b); }
inline uhalf sub_sat(uhalf a, uhalf b) { return (uhalf)vqsubq_s16((int16x8_t)a, (int16x8_t)b); }

/// A magnitude has 16 bits, so one out of range takes the sum there.
template <class V> struct magnitude_sums { V sum; };
inline void add_magnitude(magnitude_sums<uhalf>& s, uhalf a, uhalf b) {
    s.sum = (uhalf)vqaddq_u16((uint16x8_t)s.sum, (uint16x8_t)vabdq_s16((int16x8_t)a, (int16x8_t)b));
}
inline void add_magnitudes(magnitude_sums<uhalf>& s, uhalf a, uhalf b, uhalf c, uhalf d) {
    add_magnitude(s, a, b), add_magnitude(s, c, d);
}
inline uhalf seen(magnitude_sums<uhalf> s) { return s.sum; }
inline u16 largest(uhalf a) {
#ifdef __aarch64__
    return vmaxvq_u16((uint16x8_t)a);
#else
    uint16x4_t v = vmax_u16(vget_low_u16((uint16x8_t)a), vget_high_u16((uint16x8_t)a));
    v = vpmax_u16(v, v);
    return vget_lane_u16(vpmax_u16(v, v), 0);
#endif
}
inline bool any_high(uhalf a) { return largest(a) >> 15; }
inline bool exact_magnitudes(uhalf seen) { return !any_high(seen); }

inline sums add_pairs(sums s, uhalf a) { return (sums)vpadalq_u16((uint32x4_t)s, (uint16x8_t)a); }
inline sums add_pairs_to(sums s, uhalf a) { return add_pairs(s, a); }

/// Differences take 32 bits, so all are exact.
template <class V> struct square_sums { sums lo, hi; };
inline square_sums<uhalf> add_squares(square_sums<uhalf> s, uhalf a, uhalf b) {
    const int16x8_t va = (int16x8_t)a, vb = (int16x8_t)b;
    const uint32x4_t lo = (uint32x4_t)vsubl_s16(vget_low_s16(va), vget_low_s16(vb));
    const uint32x4_t hi = (uint32x4_t)vsubl_s16(vget_high_s16(va), vget_high_s16(vb));
    return {(sums)vmlaq_u32((uint32x4_t)s.lo, lo, lo), (sums)vmlaq_u32((uint32x4_t)s.hi, hi, hi)};
}
inline square_sums<uhalf> add_squares(square_sums<uhalf> s, bytes a, bytes b) {
    const uint8x16_t d = vabdq_u8((uint8x16_t)a, (uint8x16_t)b);
    const uint16x8_t lo = vmull_u8(vget_low_u8(d), vget_low_u8(d)), hi = vmull_u8(vget_high_u8(d), vget_high_u8(d));
    return {add_pairs(s.lo, (uhalf)lo), add_pairs(s.hi, (uhalf)hi)};
}
inline square_sums<uhalf> add(square_sums<uhalf> a, square_sums<uhalf> b) { return {a.lo + b.lo, a.hi + b.hi}; }
inline bool exact(square_sums<uhalf>) { return true; }
inline u32 total(square_sums<uhalf> s) { return total(s.lo + s.hi); }

template <class V> void exchange_words(V& a, V& b) {
    const uint16x8x2_t v = vtrnq_u16((uint16x8_t)a, (uint16x8_t)b);
    a = (V)v.val[0], b = (V)v.val[1];
}
template <class V> void exchange_dwords(V& a, V& b) {
    const uint32x4x2_t v = vtrnq_u32((uint32x4_t)a, (uint32x4_t)b);
    a = (V)v.val[0], b = (V)v.val[1];
}
template <class V> void exchange_qwords(V& a, V& b) {
    const uint32x4_t va = (uint32x4_t)a, vb = (uint32x4_t)b;
    a = (V)vcombine_u32(vget_low_u32(va), vget_low_u32(vb));
    b = (V)vcombine_u32(vget_high_u32(va), vget_high_u32(vb));
}
}  // namespace zelt::simd
