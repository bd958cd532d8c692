// SPDX-License-Identifier: MIT
#pragma once  // the vocabulary of the resizer on NEON, ARMv7 and AArch64 alike: pairs of bytes and their weighted sums

namespace zelt::inline ZELT_LEVEL::vec {
constexpr int eight_at(int i) { return i; }
inline u16x8 pack(u32x4 a, u32x4 b) { return (u16x8)vcombine_u16(vmovn_u32((uint32x4_t)a), vmovn_u32((uint32x4_t)b)); }
inline void store_pairs(u8* p, u16x8 left, u16x8 right) {
    vst1q_u8(p, vcombine_u8(vmovn_u16((uint16x8_t)left), vmovn_u16((uint16x8_t)right)));
}

// Left and right bytes, or their weights, are the halves of a register of an eight, and by themselves in two for a
// group.
constexpr int reach = 32;
struct weights_2n {
    u8xn left, right;
};
inline weights_2n run_weights(u8xn lo, u8xn hi) {
    return {(u8xn)vcombine_u8(low8(lo), low8(hi)), (u8xn)vcombine_u8(high8(lo), high8(hi))};
}
#ifdef __aarch64__
using pairs = uint8x16_t;
using pairs_2n = weights_2n;
template <int Windows> pairs gather_pairs(const u8* row, const std::ptrdiff_t* at, const u8xn* masks) {
    pairs p = vdupq_n_u8(0);
    row += *at;
    ZELT_STRAIGHT(4)
    for (int i = 0; i < Windows; i += 2, row += reach, ++masks) {
        const uint8x16_t mask = (uint8x16_t)*masks;
        if (i + 1 < Windows)
            p = i ? vqtbx2q_u8(p, vld1q_u8_x2(row), mask) : vqtbl2q_u8(vld1q_u8_x2(row), mask);
        else
            p = i ? vqtbx1q_u8(p, vld1q_u8(row), mask) : vqtbl1q_u8(vld1q_u8(row), mask);
    }
    return p;
}
inline s16xn weighted_sum(pairs p, u8xn w) {
    return (s16xn)vmlal_high_u8(vmull_u8(vget_low_u8(p), low8(w)), p, (uint8x16_t)w);
}
inline s16xn weighted_sum(s16xn sum, pairs p, u8xn w) {
    return (s16xn)vmlal_high_u8(vmlal_u8((uint16x8_t)sum, vget_low_u8(p), low8(w)), p, (uint8x16_t)w);
}

/// Every second pixel of two registers: the even and the odd ones
template <int Bytes> pairs_2n split(u8xn a, u8xn b) {
    if constexpr (Bytes == 1)
        return {(u8xn)vuzp1q_u8((uint8x16_t)a, (uint8x16_t)b), (u8xn)vuzp2q_u8((uint8x16_t)a, (uint8x16_t)b)};
    return {(u8xn)vuzp1q_u32((uint32x4_t)a, (uint32x4_t)b), (u8xn)vuzp2q_u32((uint32x4_t)a, (uint32x4_t)b)};
}
template <int Bytes, int Next> pairs_2n load_pairs(const u8*& p) {
    static_assert((Bytes == 1 || Bytes == 4) && (Next == 1 || Next == 2));
    u8xn v[2 * Next];
    load_next(p, v);
    if constexpr (Next == 1) return split<Bytes>(v[0], v[1]);
    return split<Bytes>(split<Bytes>(v[0], v[1]).left, split<Bytes>(v[2], v[3]).left);
}
inline s16x2n weighted_sum(pairs_2n p, weights_2n w, pairs_2n q, weights_2n v) {
    const auto add_low = [](uint16x8_t sum, u8xn a, u8xn b) { return vmlal_u8(sum, low8(a), low8(b)); };
    const auto add_high = [](uint16x8_t sum, u8xn a, u8xn b) {
        return vmlal_high_u8(sum, (uint8x16_t)a, (uint8x16_t)b);
    };
    const uint16x8_t lo = add_low(vmull_u8(low8(p.left), low8(w.left)), p.right, w.right);
    const uint16x8_t hi = add_high(vmull_high_u8((uint8x16_t)p.left, (uint8x16_t)w.left), p.right, w.right);
    return {(s16xn)add_low(add_low(lo, q.left, v.left), q.right, v.right),
            (s16xn)add_high(add_high(hi, q.left, v.left), q.right, v.right)};
}
#else
struct pairs {
    uint8x8_t left, right;
};
struct pairs_2n {
    pairs lo, hi;
};
template <int Windows> pairs gather_pairs(const u8* row, const std::ptrdiff_t* at, const u8xn* masks) {
    pairs p = {vdup_n_u8(0), vdup_n_u8(0)};
    row += *at;
    ZELT_STRAIGHT(4)
    for (int i = 0; i < Windows; i += 2, ++masks) {
        const uint8x8_t left = low8(*masks), right = high8(*masks);
        if (i + 1 < Windows) {
            const uint8x8x4_t table = load_8x4(row);
            p = i ? pairs{vtbx4_u8(p.left, table, left), vtbx4_u8(p.right, table, right)}
                  : pairs{vtbl4_u8(table, left), vtbl4_u8(table, right)};
        } else {
            const uint8x8x2_t table = load_8x2(row);
            p = i ? pairs{vtbx2_u8(p.left, table, left), vtbx2_u8(p.right, table, right)}
                  : pairs{vtbl2_u8(table, left), vtbl2_u8(table, right)};
        }
    }
    return p;
}
inline s16xn weighted_sum(pairs p, uint8x8_t left, uint8x8_t right) {
    return (s16xn)vmlal_u8(vmull_u8(p.left, left), p.right, right);
}
inline s16xn weighted_sum(s16xn sum, pairs p, uint8x8_t left, uint8x8_t right) {
    return (s16xn)vmlal_u8(vmlal_u8((uint16x8_t)sum, p.left, left), p.right, right);
}
inline s16xn weighted_sum(pairs p, u8xn w) { return weighted_sum(p, low8(w), high8(w)); }
inline s16xn weighted_sum(s16xn sum, pairs p, u8xn w) { return weighted_sum(sum, p, low8(w), high8(w)); }

/// To the eights of a group: gcc copies parts of such structures through the stack.
template <class V> pairs_2n deal(V left_lo, V right_lo, V left_hi, V right_hi) {
    return {{(uint8x8_t)left_lo, (uint8x8_t)right_lo}, {(uint8x8_t)left_hi, (uint8x8_t)right_hi}};
}
template <int Bytes, int Next> pairs_2n load_pairs(const u8*& p) {
    static_assert((Bytes == 1 || Bytes == 4) && (Next == 1 || Next == 2));
    if constexpr (Bytes == 1 && Next == 1) {
        const uint8x16x2_t v = load2_8x2(p);
        return deal(vget_low_u8(v.val[0]), vget_low_u8(v.val[1]), vget_high_u8(v.val[0]), vget_high_u8(v.val[1]));
    } else if constexpr (Bytes == 1) {
        const uint8x8x4_t v = load4_8(p), w = load4_8(p);
        return deal(v.val[0], v.val[2], w.val[0], w.val[2]);
    } else if constexpr (Next == 1) {
        const uint32x4x2_t v = load2_32x2(p);
        return deal(vget_low_u32(v.val[0]), vget_low_u32(v.val[1]), vget_high_u32(v.val[0]), vget_high_u32(v.val[1]));
    } else {
        const uint32x2x4_t v = load4_32(p), w = load4_32(p);
        return deal(v.val[0], v.val[2], w.val[0], w.val[2]);
    }
}
inline s16x2n weighted_sum(pairs_2n p, weights_2n w, pairs_2n q, weights_2n v) {
    const auto low = weighted_sum(p.lo, low8(w.left), low8(w.right));
    const auto high = weighted_sum(p.hi, high8(w.left), high8(w.right));
    return {weighted_sum(low, q.lo, low8(v.left), low8(v.right)),
            weighted_sum(high, q.hi, high8(v.left), high8(v.right))};
}
#endif
}  // namespace zelt::inline ZELT_LEVEL::vec
