#pragma once
// Hadamard-transformed differences. A value's place in the transform is written in bits: some of them choose among the
// registers at hand, some the place within a register. A butterfly between registers does a stage for a bit of the
// first kind; the exchanges turn bits of the second kind into such. The order of the stages is free.
#include "core/simd_block.h"
#include "metric/satd_scalar.h"

namespace zelt::simd {
/// How the last stage of a pair of values is added up: half of |a + b| + |a - b|.
struct small {  // no sum leaves 16 bits, and |a + b| + |a - b| = 2 max(|a|, |b|)
    template <class V> static V last(V a, V b) { return max(abs(a), abs(b)); }
    template <class V> static sums_of<V> add(sums_of<V> s, V a) { return add_pairs(s, a); }
};
struct wrapping {  // both wrap first; their magnitudes are up to 2^15, their sum is even
    template <class V> static V last(V a, V b) {
        butterfly(a, b);
        return mean_up(abs(a), abs(b));
    }
    template <class V> static sums_of<V> add(sums_of<V> s, V a) { return add_pairs_to(s, a); }
};

template <class V> void butterflies(V& a, V& b, V& c, V& d) { butterfly(a, b), butterfly(c, d); }
template <class V> void transform_rows(V& a, V& b, V& c, V& d) {
    butterflies(a, b, c, d);
    butterflies(a, c, b, d);
}

// -------------------------------------------------------------------------------------------------------------- 4x4

/// Costs of the tiles in four registers, one for each row
template <class Range, class V> sums_of<V> add_tiles(sums_of<V> sum, V a, V b, V c, V d) {
    transform_rows(a, b, c, d);
    exchange_words(a, b), exchange_words(c, d);
    butterflies(a, b, c, d);
    exchange_dwords(a, b), exchange_dwords(c, d);
    return Range::add(Range::add(sum, Range::last(a, b)), Range::last(c, d));
}

/// Cost of a tile in two registers, rows 0 and 1 in the first, 2 and 3 in the second
template <class Range> u32 tile_cost(words8 a, words8 b) {
    butterfly(a, b);
    exchange_qwords(a, b);
    butterfly(a, b);
    exchange_words(a, b);
    butterfly(a, b);
    exchange_dwords(a, b);
    return total(Range::add(sums4{}, Range::last(a, b)));
}

template <class A, class B>
using range_of = std::conditional_t<std::is_same_v<A, u8> && std::is_same_v<B, u8>, small, wrapping>;

/// Differences of R rows of W columns
template <int W, int R, class A, class B> auto residual(const A* a, const B* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    return load_words<W, R>(a, sa) - load_words<W, R>(b, sb);
}

inline u32 hadamard4x4(const s16* d) { return tile_cost<wrapping>(load_words<8, 1>(d, 0), load_words<8, 1>(d + 8, 0)); }

template <class A, class B> u32 satd4x4(const A* a, const B* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    return tile_cost<range_of<A, B>>(residual<4, 2>(a, b, sa, sb), residual<4, 2>(a + 2 * sa, b + 2 * sb, sa, sb));
}

/// Four rows of W columns, or R times four rows, those with the same place in their tile sharing a register
template <int W, int R, class S, class A>
S add_tile_row(S sum, const A* a, const A* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    const auto row = [=](int y) { return residual<W, R>(a + y * sa, b + y * sb, 4 * sa, 4 * sb); };
    return add_tiles<range_of<A, A>>(sum, row(0), row(1), row(2), row(3));
}

template <class A> u32 satd_tiles(int w, int h, const A* a, const A* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    sums wide{};
    sums4 narrow{};
    u32 sum = 0;
    for (; h > 0; h -= 4, a += 4 * sa, b += 4 * sb) {
        int x = 0;
        for (; w - x >= word_lanes; x += word_lanes) wide = add_tile_row<word_lanes, 1>(wide, a + x, b + x, sa, sb);
        for (; w - x >= 8; x += 8) narrow = add_tile_row<8, 1>(narrow, a + x, b + x, sa, sb);
        for (; x < w; x += 4) sum += satd4x4(a + x, b + x, sa, sb);
    }
    return sum + total(wide) + total(narrow);
}

// -------------------------------------------------------------------------------------------------------------- 8x8

// An 8x8 block: as many rows to a register as fit, row i with row i + 4.
constexpr int rows_together = word_lanes / 8, registers = 8 / rows_together;

/// The stage between registers `distance` apart
template <class V> void stage(V* v, int distance) {
    for (int i = 0; i < registers; ++i)
        if (!(i & distance)) butterfly(v[i], v[i + distance]);
}
/// The stage between what an exchange brings together
template <class V> void stage(V* v, void (*exchange)(V&, V&)) {
    for (int i = 0; i < registers; i += 2) exchange(v[i], v[i + 1]), butterfly(v[i], v[i + 1]);
}

/// The stage between rows i and i + 4 comes last: half the sum of magnitudes, added over the pairs
template <class V> V last_stage(V* v) {
    V sum{};
    for (int i = 0; i < registers / 2; ++i) {
        V &a = v[rows_together == 1 ? i : 2 * i], &b = v[rows_together == 1 ? i + 4 : 2 * i + 1];
        if constexpr (rows_together == 2) exchange_lanes(a, b);
        sum += max(abs(a), abs(b));
    }
    return sum;
}
inline u32 rounded_cost(u32 half_sum) { return (half_sum + 1) >> 1; }

/// Coefficients of bytes fit 16 bits, and so do the last sums: half of 64 * 255 at most, of up to four registers.
inline u32 satd8x8(const u8* a, const u8* b, int sa, int sb) {
    uhalf v[registers];
    for (int i = 0; i < registers; ++i)
        v[i] = residual<8, rows_together>(a + i * std::ptrdiff_t{sa}, b + i * std::ptrdiff_t{sb},
                                          4 * std::ptrdiff_t{sa}, 4 * std::ptrdiff_t{sb});
    stage(v, 1), stage(v, 2);
    stage(v, exchange_words<uhalf>), stage(v, exchange_qwords<uhalf>), stage(v, exchange_dwords<uhalf>);
    return rounded_cost(total(add_pairs(sums{}, last_stage(v))));
}

template <class A, class B> [[gnu::cold, gnu::noinline]] u32 satd8x8_of_large(const A* a, const B* b, int sa, int sb) {
    return scalar::satd<8>(a, b, sa, sb);
}

/// Three stages in 16 bits, exact for differences of up to 12 bits, the others in 32.
template <class A, class B> u32 satd8x8(const A* a, const B* b, int sa, int sb) {
    uhalf v[registers], peak{};
    for (int i = 0; i < registers; ++i) {
        const auto va = load_words<8, rows_together>(a + i * std::ptrdiff_t{sa}, 4 * std::ptrdiff_t{sa});
        const auto vb = load_words<8, rows_together>(b + i * std::ptrdiff_t{sb}, 4 * std::ptrdiff_t{sb});
        v[i] = va - vb;
        peak = std::is_same_v<A, u16> ? peak | va | vb : max(peak, abs(sub_sat(va, vb)));
    }
    if (any_from<12>(peak)) [[unlikely]]
        return satd8x8_of_large(a, b, sa, sb);
    stage(v, 1), stage(v, exchange_qwords<uhalf>), stage(v, exchange_dwords<uhalf>);
    sums plus[registers], minus[registers];
    for (int i = 0; i < registers; ++i) widen_butterfly(v[i], plus[i], minus[i]);
    stage(plus, 2), stage(minus, 2);
    return rounded_cost(total(last_stage(plus) + last_stage(minus)));
}
}  // namespace zelt::simd
