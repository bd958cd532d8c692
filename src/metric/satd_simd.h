// SPDX-License-Identifier: MIT
#pragma once
// Hadamard-transformed differences. A stage of the transform adds and subtracts the values of two places; the order of
// the stages is free. Those between registers are the cheapest; exchanges bring neighbours within two registers into
// one each. In the last stage |a + b| + |a - b| = 2 max(|a|, |b|) where neither sum leaves the range.
#include "metric/satd_scalar.h"
#include "simd/vocabulary.h"

namespace zelt::inline ZELT_LEVEL::simd {
template <class V> void butterflies(V& a, V& b, V& c, V& d) { butterfly(a, b), butterfly(c, d); }

/// Half of |a + b| + |a - b| over neighbours in a and in b
template <class V> V last_of_neighbours(V a, V b) { return max_of_neighbours(abs(a), abs(b)); }

/// The same where both sums wrap: their magnitudes are up to 2^15, and add up to an even value
template <class V> V wrapped_half(V a, V b) {
    transpose2x2_16(a, b);
    butterfly(a, b);
    return average(abs(a), abs(b));
}

// ----------------------------------------------------------------------------------------------------------- 4x4 tiles

enum class range {
    of_bytes,  // no value leaves 16 bits, and the stage between neighbours may be done already
    usual,     // no value of the last stage leaves 16 bits; `seen` tells
    any        // the last stage wraps, as all do
};

/// Sums up the costs of tiles.
template <range Range> struct tile_costs {
    static constexpr int rows_at_once = Range == range::of_bytes ? 32 : 64;  // and no more than the cache keeps
    u32xn sum{};
    u16xn part{}, seen{};

    /// Four rows, of one or more tiles
    template <class V> void add_rows(V a, V b, V c, V d) {
        if constexpr (Range == range::of_bytes) {
            part += extend(half_of_bytes(a, b, c, d));
            return;
        }
        butterflies(a, b, c, d), butterflies(a, c, b, d);
        transpose2x2_32(a, b), transpose2x2_32(c, d);
        butterflies(a, b, c, d);
        if constexpr (Range == range::any) {
            sum += extend(pairwise_add_accumulate_abs(pairwise_add_accumulate_abs(u32_of<V>{}, wrapped_half(a, b)),
                                                      wrapped_half(c, d)));
        } else {
            const V half_ab = last_of_neighbours(a, b), half_cd = last_of_neighbours(c, d);
            sum += extend(pairwise_add_accumulate(u32_of<V>{}, half_ab + half_cd)), seen |= extend(half_ab | half_cd);
        }
    }
    /// Half of what four rows of bytes cost, 4080 at most
    template <class V> static V half_of_bytes(V a, V b, V c, V d) {
        butterflies(a, b, c, d), butterflies(a, c, b, d);
        if constexpr (!pairing_is_free) {
            transpose2x2_32(a, b), transpose2x2_32(c, d);
            butterflies(a, b, c, d);
        }
        return last_of_neighbours(a, b) + last_of_neighbours(c, d);
    }
    /// Comes after rows_at_once
    void add_part() {
        if constexpr (Range == range::of_bytes) sum = pairwise_add_accumulate(sum, part), part = u16xn{};
    }
    bool exact() const { return Range != range::usual || !any_sign_bit(seen | (seen + seen)); }
};

/// Half of the cost of a tile, rows 0 and 1 in one register, rows 2 and 3 in the other. Exact for any values or for
/// those of bytes.
template <range Range> u16x8 half_costs(u16x8 a, u16x8 b) {
    butterfly(a, b);
    transpose2x2_64(a, b);
    butterfly(a, b);
    transpose2x2_32(a, b);
    butterfly(a, b);
    return Range == range::of_bytes ? last_of_neighbours(a, b) : wrapped_half(a, b);
}
inline u32x4 tile_cost(u16x8 half) { return pairwise_add_accumulate_abs(u32x4{}, half); }

template <int W, int R, class A, class B> auto residual(const A* a, const B* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    return hide_from_optimizer(difference_of_rows<W, R>(a, b, sa, sb));
}

inline u32 hadamard4x4(const s16* d) {
    return reduce_add(tile_cost(half_costs<range::any>(load_rows_16<8, 1>(d, 0), load_rows_16<8, 1>(d + 8, 0))));
}

template <class A, class B> u16x8 half_costs(const A* a, const B* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    return half_costs < std::is_same_v<A, u8>
               ? range::of_bytes
               : range::any > (residual<4, 2>(a, b, sa, sb), residual<4, 2>(a + 2 * sa, b + 2 * sb, sa, sb));
}
template <class A, class B> u32 satd4x4(const A* a, const B* b, int sa, int sb) {
    const u16x8 half = half_costs(a, b, sa, sb);
    return std::is_same_v<A, u8> ? reduce_add(half) : reduce_add(tile_cost(half));
}

/// R times four rows of W columns; of rows that are four apart two may share a register.
template <int W, int R, range Range, class A>
[[gnu::always_inline]] inline void add_rows(tile_costs<Range>& costs, rows_of_two<A, A>& rows, std::ptrdiff_t sa,
                                            std::ptrdiff_t sb) {
    const auto difference = [=](const A* a, const A* b) __attribute__((always_inline)) {
        if constexpr (Range == range::of_bytes && pairing_is_free)
            return paired_residual<W, R>(a, b, 4 * sa, 4 * sb);
        else
            return residual<W, R>(a, b, 4 * sa, 4 * sb);
    };
    const auto v0 = rows.at(0, difference), v1 = rows.at(1, difference);
    const auto v2 = rows.at(2, difference), v3 = rows.at(3, difference);
    rows.next_turn(4 * R);
    costs.add_rows(v0, v1, v2, v3);
}
/// Four rows of `lanes` bytes, where their neighbours are not paired by the way
template <class Costs> [[gnu::always_inline]] inline void add_wide_rows(Costs& costs, rows_of_two<u8, u8>& rows) {
    const auto differences = [](const u8* a, const u8* b) __attribute__((always_inline)) {
        const s16x2n d = difference(load_rows<lanes, 1>(a, 0), load_rows<lanes, 1>(b, 0));
        return two<u16xn>{hide_from_optimizer((u16xn)d.lo), hide_from_optimizer((u16xn)d.hi)};
    };
    const auto v0 = rows.at(0, differences), v1 = rows.at(1, differences);
    const auto v2 = rows.at(2, differences), v3 = rows.at(3, differences);
    rows.next_turn(4);
    costs.sum = pairwise_add_accumulate(costs.sum, costs.half_of_bytes(v0.first, v1.first, v2.first, v3.first) +
                                                       costs.half_of_bytes(v0.second, v1.second, v2.second, v3.second));
}
/// Up to rows_at_once rows of 4, 8 or as many columns as a register has
template <int W, range Range, class A>
[[gnu::always_inline]] inline void add_strip(tile_costs<Range>& costs, int h, const A* pa, const A* pb,
                                             std::ptrdiff_t sa, std::ptrdiff_t sb) {
    if constexpr (W == 4) {
        ZELT_UNROLL(1)  // gcc knows rows_at_once, and would call up to 16 times
        for (; h > 0; h -= 4, pa += 4 * sa, pb += 4 * sb) costs.sum += extend(tile_cost(half_costs(pa, pb, sa, sb)));
    } else {
        rows_of_two<A, A> places(pa, pb, sa, sb);
        if constexpr (W > lanes_16) {
            for (; h > 0; h -= 4) add_wide_rows(costs, places);
        } else {
            constexpr int together = lanes_16 / W;
            static_assert(together == 1 || loads_take_an_index);
            for (; h > 4 * (together - 1); h -= 4 * together) add_rows<W, together>(costs, places, sa, sb);
            if (together == 2 && h > 0) add_rows<W, 1>(costs, places, sa, sb);
            costs.add_part();
        }
    }
}

/// Strip by strip
template <range Range, class A>
[[gnu::noinline]] u32 satd_tiles_of_any_width(int w, int h, const A* a, const A* b, int sa, int sb) {
    constexpr int most = tile_costs<Range>::rows_at_once;
    tile_costs<Range> costs;
    const A *pa = a, *pb = b;
    for (int left = h; left > 0; left -= most, pa += most * std::ptrdiff_t{sa}, pb += most * std::ptrdiff_t{sb}) {
        const int rows = left < most ? left : most;
        int x = 0;
        if constexpr (Range == range::of_bytes && !pairing_is_free)
            for (; w - x > lanes - 4; x += lanes) add_strip<lanes>(costs, rows, pa + x, pb + x, sa, sb);
        for (; w - x > lanes_16 - 4; x += lanes_16) add_strip<lanes_16>(costs, rows, pa + x, pb + x, sa, sb);
        if (w - x > 4) add_strip<8>(costs, rows, pa + x, pb + x, sa, sb), x += 8;
        if (w - x > 0) add_strip<4>(costs, rows, pa + x, pb + x, sa, sb);
    }
    if (costs.exact()) [[likely]]
        return reduce_add(costs.sum);
    return satd_tiles_of_any_width<range::any>(w, h, a, b, sa, sb);
}
/// Small squares are straight code.
template <int N, range Range, class A> u32 satd_square(const A* a, const A* b, int sa, int sb) {
    tile_costs<Range> costs;
    add_strip<N>(costs, N, a, b, sa, sb);
    if (costs.exact()) [[likely]]
        return reduce_add(costs.sum);
    return satd_tiles_of_any_width<range::any>(N, N, a, b, sa, sb);
}
template <class A> u32 satd_tiles(int w, int h, const A* a, const A* b, int sa, int sb) {
    constexpr range usual = std::is_same_v<A, u8> ? range::of_bytes : range::usual;
    if (w == 8 && h == 8) return satd_square<8, usual>(a, b, sa, sb);
    if (w == lanes_16 && h == lanes_16) return satd_square<lanes_16, usual>(a, b, sa, sb);
    if constexpr (usual == range::of_bytes && !pairing_is_free)
        if (w == lanes && h == lanes) return satd_square<lanes, usual>(a, b, sa, sb);
    if (w == 4 && h == 4) return satd4x4(a, b, sa, sb);
    return satd_tiles_of_any_width<usual>(w, h, a, b, sa, sb);
}

// ----------------------------------------------------------------------------------------------------------------- 8x8

// As many rows to a register as fit, row i with row i + 4
constexpr int rows_together = lanes_16 / 8, registers = 8 / rows_together;

/// The stages between registers, of butterflies B; they come first, as exchanges take their places.
template <auto B, class V> [[gnu::always_inline]] inline void stages_between(V* v) {
    ZELT_UNROLL(4)
    for (int distance = 1; distance < registers; distance *= 2) {
        ZELT_UNROLL(8)
        for (int i = 0; i < registers; ++i)
            if (!(i & distance)) B(v[i], v[i + distance]);
    }
}
template <auto B, auto Exchange, class V> [[gnu::always_inline]] inline void stage_within(V* v) {
    ZELT_UNROLL(4)
    for (int i = 0; i < registers; i += 2) Exchange(v[i], v[i + 1]), B(v[i], v[i + 1]);
}
/// The stage between rows that share a register
template <auto B, class V> void stage_of_lanes(V* v) {
    if constexpr (rows_together == 2) stage_within<B, transpose2x2_128<V>>(v);
}
/// S is twice the sum of the last stage.
inline u32 rounded_cost(u32 half) { return (half + 1) >> 1; }

inline u32 satd8x8(const u8* a, const u8* b, int s_a, int s_b) {
    const std::ptrdiff_t sa = s_a, sb = s_b;
    u16xn v[registers], half{};
    rows_of_two<u8, u8> places(a, b, sa, sb);
    const auto difference = [=](const u8* pa, const u8* pb) __attribute__((always_inline)) {
        if constexpr (pairing_is_free)
            return paired_residual<8, rows_together>(pa, pb, 4 * sa, 4 * sb);
        else
            return residual<8, rows_together>(pa, pb, 4 * sa, 4 * sb);
    };
    ZELT_UNROLL(8)
    for (int i = 0; i < registers; ++i) {
        v[i] = places.at(i % 4, difference);
        if (i == 3) places.next_turn(4);
    }
    stages_between<butterfly<u16xn>>(v);
    if (!pairing_is_free) stage_within<butterfly<u16xn>, transpose2x2_64<u16xn>>(v);
    stage_within<butterfly<u16xn>, transpose2x2_32<u16xn>>(v);
    stage_of_lanes<butterfly<u16xn>>(v);
    ZELT_UNROLL(4)
    for (int i = 0; i < registers; i += 2) half += last_of_neighbours(v[i], v[i + 1]);  // 32640 at most
    return rounded_cost(reduce_add(half));
}

template <class A, class B> [[gnu::cold, gnu::noinline]] u32 satd8x8_of_large(const A* a, const B* b, int sa, int sb) {
    return scalar::satd<8>(a, b, sa, sb);
}

/// In 16 bits with saturation: a value out of range saturates, and each later stage makes another one of it, up to the
/// last. Differences of up to 10 bits never do, others rarely. The scalar form has the result then.
template <class A, class B> u32 satd8x8(const A* a, const B* b, int s_a, int s_b) {
    const std::ptrdiff_t sa = s_a, sb = s_b;
    u16xn v[registers], seen{}, peak{};
    rows_of_two<A, B> places(a, b, sa, sb);
    const auto of_a = [=](const A* p) { return load_rows_16<8, rows_together>(p, 4 * sa); };
    const auto of_b = [=](const B* p) { return load_rows_16<8, rows_together>(p, 4 * sb); };
    const auto load = [=](const A* pa, const B* pb) __attribute__((always_inline)) {
        return two<u16xn>{of_a(pa), of_b(pb)};
    };
    ZELT_UNROLL(8)
    for (int i = 0; i < registers; ++i) {
        u16xn va, vb;
        if constexpr (loads_scale_an_index) {  // gcc takes a register less for these
            va = of_a(a + i * sa), vb = of_b(b + i * sb);
        } else {
            const auto rows = places.at(i % 4, load);
            va = rows.first, vb = rows.second;
            if (i == 3) places.next_turn(4);
        }
        v[i] = sub_sat(va, vb);
        if (std::is_same_v<A, u16>) seen |= va | vb;  // unsigned samples of 16 bits are read as if they were signed
    }
    stages_between<butterfly_sat<u16xn>>(v);
    stage_within<butterfly_sat<u16xn>, transpose2x2_64<u16xn>>(v);
    stage_within<butterfly_sat<u16xn>, transpose2x2_32<u16xn>>(v);
    stage_of_lanes<butterfly_sat<u16xn>>(v);
    u32xn half{};
    ZELT_UNROLL(4)
    for (int i = 0; i < registers; i += 2) {
        const u16xn last = last_of_neighbours(v[i], v[i + 1]);
        half = pairwise_add_accumulate(half, last), peak = max(peak, last);
    }
    if (any_sign_bit(seen | (peak + 1))) [[unlikely]]
        return satd8x8_of_large(a, b, s_a, s_b);
    return rounded_cost(reduce_add(half));
}
}  // namespace zelt::inline ZELT_LEVEL::simd
