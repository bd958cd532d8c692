#pragma once
// Hadamard-transformed differences. A stage of the transform adds and subtracts the values of two places; the order of
// the stages is free. Those between registers are the cheapest; exchanges bring neighbours within two registers into
// one each. In the last stage |a + b| + |a - b| = 2 max(|a|, |b|) where neither sum leaves the range.
#include "metric/satd_scalar.h"
#include "simd/vocabulary.h"

namespace zelt::inline ZELT_LEVEL::simd {
template <class V> void butterflies(V& a, V& b, V& c, V& d) { butterfly(a, b), butterfly(c, d); }

/// Half of |a + b| + |a - b| over neighbours in a and in b
template <class V> V last_of_neighbours(V a, V b) {
    transpose2x2_16(a, b);
    return max(abs(a), abs(b));
}

/// The same of a and b where both sums wrap: their magnitudes are up to 2^15, and add up to an even value
template <class V> V wrapped_half(V a, V b) {
    butterfly(a, b);
    return average(abs(a), abs(b));
}

// ----------------------------------------------------------------------------------------------------------- 4x4 tiles

enum class range {
    of_bytes,  // no value leaves 16 bits, and the stage between neighbours is done already
    usual,     // no value of the last stage leaves 16 bits; `seen` tells
    any        // the last stage wraps, as all do
};

/// Sums up the costs of tiles.
template <range Range> struct tile_costs {
    static constexpr int rows_at_once = Range == range::of_bytes ? 32 : 64;  // and no more than the cache keeps
    u32xn sum{};
    u16xn part{}, seen{};  // four rows of bytes add 4080 at most to a part

    /// Four rows, of one or more tiles
    template <class V> void add_rows(V a, V b, V c, V d) {
        butterflies(a, b, c, d), butterflies(a, c, b, d);
        if constexpr (Range == range::of_bytes) {
            part += extend(last_of_neighbours(a, b) + last_of_neighbours(c, d));
        } else {
            transpose2x2_16(a, b), transpose2x2_16(c, d);
            butterflies(a, b, c, d);
            transpose2x2_32(a, b), transpose2x2_32(c, d);
            if constexpr (Range == range::any) {
                sum += extend(pairwise_add_accumulate_abs(pairwise_add_accumulate_abs(u32_of<V>{}, wrapped_half(a, b)),
                                                          wrapped_half(c, d)));
            } else {
                const V half_ab = max(abs(a), abs(b)), half_cd = max(abs(c), abs(d));
                sum += extend(pairwise_add_accumulate(u32_of<V>{}, half_ab + half_cd)),
                    seen |= extend(half_ab | half_cd);
            }
        }
    }
    /// Comes after rows_at_once
    void add_part() {
        if constexpr (Range == range::of_bytes) sum = pairwise_add_accumulate(sum, part), part = u16xn{};
    }
    bool exact() const { return Range != range::usual || !any_sign_bit(seen | (seen + seen)); }
};

/// Cost of a tile, rows 0 and 1 in one register, rows 2 and 3 in the other. Exact for any values or for those of bytes.
template <range Range> u32x4 tile_cost(u16x8 a, u16x8 b) {
    butterfly(a, b);
    transpose2x2_64(a, b);
    butterfly(a, b);
    transpose2x2_16(a, b);
    butterfly(a, b);
    transpose2x2_32(a, b);
    if constexpr (Range == range::of_bytes) return pairwise_add_accumulate(u32x4{}, max(abs(a), abs(b)));
    return pairwise_add_accumulate_abs(u32x4{}, wrapped_half(a, b));
}

template <int W, int R, class A, class B> auto residual(const A* a, const B* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    return hide_from_optimizer(load_rows_16<W, R>(a, sa) - load_rows_16<W, R>(b, sb));
}

inline u32 hadamard4x4(const s16* d) {
    return reduce_add(tile_cost<range::any>(load_rows_16<8, 1>(d, 0), load_rows_16<8, 1>(d + 8, 0)));
}

template <class A, class B> u32x4 tile_cost(const A* a, const B* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    return tile_cost < std::is_same_v<A, u8>
               ? range::of_bytes
               : range::any > (residual<4, 2>(a, b, sa, sb), residual<4, 2>(a + 2 * sa, b + 2 * sb, sa, sb));
}
template <class A, class B> u32 satd4x4(const A* a, const B* b, int sa, int sb) {
    return reduce_add(tile_cost(a, b, sa, sb));
}

/// R times four rows of W columns; of rows that are four apart two may share a register.
template <int W, int R, range Range, class A>
[[gnu::always_inline]] inline void add_rows(tile_costs<Range>& costs, const A* a, const A* b, std::ptrdiff_t sa,
                                            std::ptrdiff_t sb) {
    const auto row = [=](int y) {
        if constexpr (Range == range::of_bytes)
            return paired_residual<W, R>(a + y * sa, b + y * sb, 4 * sa, 4 * sb);
        else
            return residual<W, R>(a + y * sa, b + y * sb, 4 * sa, 4 * sb);
    };
    costs.add_rows(row(0), row(1), row(2), row(3));
}
/// Up to rows_at_once rows of 4, 8 or as many columns as a register has
template <int W, range Range, class A>
[[gnu::always_inline]] inline void add_strip(tile_costs<Range>& costs, int h, const A* a, const A* b, std::ptrdiff_t sa,
                                             std::ptrdiff_t sb) {
    if constexpr (W == 4) {
        for (; h > 0; h -= 4, a += 4 * sa, b += 4 * sb) costs.sum += extend(tile_cost(a, b, sa, sb));
    } else {
        constexpr int together = lanes_16 / W;
        for (; h > 4 * (together - 1); h -= 4 * together, a += 4 * together * sa, b += 4 * together * sb)
            add_rows<W, together>(costs, a, b, sa, sb);
        if (together == 2 && h > 0) add_rows<W, 1>(costs, a, b, sa, sb);
        costs.add_part();
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
    if (w == 4 && h == 4) return satd4x4(a, b, sa, sb);
    return satd_tiles_of_any_width<usual>(w, h, a, b, sa, sb);
}

// ----------------------------------------------------------------------------------------------------------------- 8x8

// As many rows to a register as fit, row i with row i + 4
constexpr int rows_together = lanes_16 / 8, registers = 8 / rows_together;

/// The stages between registers, of butterflies B; they come first, as exchanges take their places.
template <auto B, class V> void stages_between(V* v) {
    for (int distance = 1; distance < registers; distance *= 2)
        for (int i = 0; i < registers; ++i)
            if (!(i & distance)) B(v[i], v[i + distance]);
}
template <auto B, auto Exchange, class V> void stage_within(V* v) {
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
    for (int i = 0; i < registers; ++i)
        v[i] = paired_residual<8, rows_together>(a + i * sa, b + i * sb, 4 * sa, 4 * sb);
    stages_between<butterfly<u16xn>>(v);
    stage_within<butterfly<u16xn>, transpose2x2_32<u16xn>>(v);
    stage_of_lanes<butterfly<u16xn>>(v);
    for (int i = 0; i < registers; i += 2) half += last_of_neighbours(v[i], v[i + 1]);  // 32640 at most
    return rounded_cost(reduce_add(pairwise_add_accumulate(u32xn{}, half)));
}

template <class A, class B> [[gnu::cold, gnu::noinline]] u32 satd8x8_of_large(const A* a, const B* b, int sa, int sb) {
    return scalar::satd<8>(a, b, sa, sb);
}

/// In 16 bits with saturation: a value out of range saturates, and each later stage makes another one of it, up to the
/// last. Differences of up to 10 bits never do, others rarely. The scalar form has the result then.
template <class A, class B> u32 satd8x8(const A* a, const B* b, int sa, int sb) {
    u16xn v[registers], seen{}, peak{};
    for (int i = 0; i < registers; ++i) {
        const u16xn va = load_rows_16<8, rows_together>(a + i * std::ptrdiff_t{sa}, 4 * std::ptrdiff_t{sa});
        const u16xn vb = load_rows_16<8, rows_together>(b + i * std::ptrdiff_t{sb}, 4 * std::ptrdiff_t{sb});
        v[i] = sub_sat(va, vb);
        if (std::is_same_v<A, u16>) seen |= va | vb;  // unsigned samples of 16 bits are read as if they were signed
    }
    stages_between<butterfly_sat<u16xn>>(v);
    stage_within<butterfly_sat<u16xn>, transpose2x2_64<u16xn>>(v);
    stage_within<butterfly_sat<u16xn>, transpose2x2_32<u16xn>>(v);
    stage_of_lanes<butterfly_sat<u16xn>>(v);
    u32xn half{};
    for (int i = 0; i < registers; i += 2) {
        const u16xn last = last_of_neighbours(v[i], v[i + 1]);
        half = pairwise_add_accumulate(half, last), peak = max(peak, last);
    }
    if (any_sign_bit(seen | (peak + 1))) [[unlikely]]
        return satd8x8_of_large(a, b, sa, sb);
    return rounded_cost(reduce_add(half));
}
}  // namespace zelt::inline ZELT_LEVEL::simd
