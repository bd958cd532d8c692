#pragma once  // the vocabulary of sample blocks on NEON, ARMv7 and AArch64 alike

namespace zelt::inline ZELT_LEVEL::vec {
template <class T> T load_as(const void* p) {  // a plain load: a lane load of a cast pointer may assume alignment
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

/// R rows of `Bytes` bytes each, in half a register
template <int Bytes, int R> uint8x8_t pack_half(const u8* p, std::ptrdiff_t stride) {
    static_assert(R >= 1 && Bytes * R <= 8);
    if constexpr (Bytes == 8) {
        return vld1_u8(p);
    } else if constexpr (Bytes == 4) {
        uint32x2_t v = vdup_n_u32(0);
        v = vset_lane_u32(load_as<u32>(p), v, 0);
        if constexpr (R >= 2) v = vset_lane_u32(load_as<u32>(p + stride), v, 1);
        return vreinterpret_u8_u32(v);
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

template <int W, int R> u8xn load_rows(const u8* p, std::ptrdiff_t stride) {
    static_assert(rows_fit(W, R, 1, lanes));
    return (u8xn)pack_rows<W, R>(p, stride);
}
template <int W, int R> u16xn load_rows_16(const u8* p, std::ptrdiff_t stride) {
    static_assert(rows_fit(W, R, 2, lanes));
    return (u16xn)vmovl_u8(pack_half<W, R>(p, stride));
}
template <int W, int R> u16xn load_rows_16(const s16* p, std::ptrdiff_t stride) {
    static_assert(rows_fit(W, R, 2, lanes));
    return (u16xn)pack_rows<2 * W, R>(reinterpret_cast<const u8*>(p), 2 * stride);
}
template <int W, int R> u16xn load_rows_16(const u16* p, std::ptrdiff_t stride) {
    return load_rows_16<W, R>(reinterpret_cast<const s16*>(p), stride);
}
template <int W, int R> u16xn paired_residual(const u8* a, const u8* b, std::ptrdiff_t, std::ptrdiff_t) {
    static_assert(W == 8 && R == 1);
    const int16x8_t d = vreinterpretq_s16_u16(vsubl_u8(vld1_u8(a), vld1_u8(b)));
    const int16x4x2_t pairs = vuzp_s16(vget_low_s16(d), vget_high_s16(d));
    return (u16xn)vcombine_s16(vadd_s16(pairs.val[0], pairs.val[1]), vsub_s16(pairs.val[0], pairs.val[1]));
}
template <int W, int R> void store_rows_16(s16* p, std::ptrdiff_t stride, u16xn v) {
    static_assert(rows_fit(W, R, 2, lanes));
    if constexpr (W == 8)
        vst1q_u16(reinterpret_cast<u16*>(p), (uint16x8_t)v);
    else
        for (int i = 0; i < R; ++i) std::memcpy(p + i * stride, reinterpret_cast<const u8*>(&v) + 2 * W * i, 2 * W);
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

template <class B> struct abs_diff_sums_8 { u16xn lo, hi; };
inline abs_diff_sums_8<u8xn> add_abs_diff(abs_diff_sums_8<u8xn> s, u8xn a, u8xn b) {
    return {(u16xn)vabal_u8((uint16x8_t)s.lo, low8(a), low8(b)), (u16xn)vabal_u8((uint16x8_t)s.hi, high8(a), high8(b))};
}
inline u32 reduce_add(abs_diff_sums_8<u8xn> s) {
    return reduce_add(vpadalq_u16(vpaddlq_u16((uint16x8_t)s.lo), (uint16x8_t)s.hi));
}

inline u16xn abs(u16xn a) { return (u16xn)vabsq_s16((int16x8_t)a); }
inline u16xn max(u16xn a, u16xn b) { return (u16xn)vmaxq_u16((uint16x8_t)a, (uint16x8_t)b); }
inline u16xn average(u16xn a, u16xn b) { return (u16xn)vrhaddq_u16((uint16x8_t)a, (uint16x8_t)b); }
inline u16xn add_sat(u16xn a, u16xn b) { return (u16xn)vqaddq_s16((int16x8_t)a, (int16x8_t)b); }
inline u16xn sub_sat(u16xn a, u16xn b) { return (u16xn)vqsubq_s16((int16x8_t)a, (int16x8_t)b); }

/// A magnitude has 16 bits, so one out of range takes the sum there.
template <class V> struct abs_diff_sums_16 { V sum; };
inline void add_abs_diff(abs_diff_sums_16<u16xn>& s, u16xn a, u16xn b) {
    s.sum = (u16xn)vqaddq_u16((uint16x8_t)s.sum, (uint16x8_t)vabdq_s16((int16x8_t)a, (int16x8_t)b));
}
inline void add_abs_diffs(abs_diff_sums_16<u16xn>& s, u16xn a, u16xn b, u16xn c, u16xn d) {
    add_abs_diff(s, a, b), add_abs_diff(s, c, d);
}
inline u16xn seen(abs_diff_sums_16<u16xn> s) { return s.sum; }
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

inline u32xn pairwise_add_accumulate(u32xn s, u16xn a) { return (u32xn)vpadalq_u16((uint32x4_t)s, (uint16x8_t)a); }
inline u32xn pairwise_add_accumulate_abs(u32xn s, u16xn a) { return pairwise_add_accumulate(s, a); }

/// Differences take 32 bits, so all are exact.
template <class V> struct square_sums { u32xn lo, hi; };
inline square_sums<u16xn> add_squares(square_sums<u16xn> s, u16xn a, u16xn b) {
    const int16x8_t va = (int16x8_t)a, vb = (int16x8_t)b;
    const uint32x4_t lo = (uint32x4_t)vsubl_s16(vget_low_s16(va), vget_low_s16(vb));
    const uint32x4_t hi = (uint32x4_t)vsubl_s16(vget_high_s16(va), vget_high_s16(vb));
    return {(u32xn)vmlaq_u32((uint32x4_t)s.lo, lo, lo), (u32xn)vmlaq_u32((uint32x4_t)s.hi, hi, hi)};
}
inline square_sums<u16xn> add_squares(square_sums<u16xn> s, u8xn a, u8xn b) {
    const uint8x16_t d = vabdq_u8((uint8x16_t)a, (uint8x16_t)b);
    const uint16x8_t lo = vmull_u8(vget_low_u8(d), vget_low_u8(d)), hi = vmull_u8(vget_high_u8(d), vget_high_u8(d));
    return {pairwise_add_accumulate(s.lo, (u16xn)lo), pairwise_add_accumulate(s.hi, (u16xn)hi)};
}
inline square_sums<u16xn> add(square_sums<u16xn> a, square_sums<u16xn> b) { return {a.lo + b.lo, a.hi + b.hi}; }
inline bool exact(square_sums<u16xn>) { return true; }
inline u32 reduce_add(square_sums<u16xn> s) { return reduce_add(s.lo + s.hi); }

template <class V> void transpose2x2_16(V& a, V& b) {
    const uint16x8x2_t v = vtrnq_u16((uint16x8_t)a, (uint16x8_t)b);
    a = (V)v.val[0], b = (V)v.val[1];
}
template <class V> void transpose2x2_32(V& a, V& b) {
    const uint32x4x2_t v = vtrnq_u32((uint32x4_t)a, (uint32x4_t)b);
    a = (V)v.val[0], b = (V)v.val[1];
}
template <class V> void transpose2x2_64(V& a, V& b) {
    const uint32x4_t va = (uint32x4_t)a, vb = (uint32x4_t)b;
    a = (V)vcombine_u32(vget_low_u32(va), vget_low_u32(vb));
    b = (V)vcombine_u32(vget_high_u32(va), vget_high_u32(vb));
}
template <class V> void transpose2x2_128(V&, V&) {}  // a register has no second one
}  // namespace zelt::inline ZELT_LEVEL::vec
