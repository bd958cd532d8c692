// SPDX-License-Identifier: MIT
#pragma once
// The definition of every operation, in plain C++ on registers of 16 bytes: the model that back ends are tested
// against, and where a new one starts. It begins with this file and `using namespace generic` in its namespace vec, and
// has the whole vocabulary; what it declares itself, all overloads of a name, takes the place of what is here. This is
// why the file has a namespace outside the level's: a name in vec hides the same name here.
#include "core/types.h"

namespace zelt::generic::inline ZELT_LEVEL {
constexpr int lanes = 16, lanes_16 = 8;
using u8xn = u8x16;
using s16xn = s16x8;
using u16xn = u16x8;
using u32xn = u32x4;
using s16x2n = widened<s16xn>;
template <int N> using u16_of = u16x8;
template <class V> using u32_of = u32x4;

constexpr int shared_bytes = 16, registers_at_once = 4;
constexpr bool loads_step = false, pairing_is_free = true, squares_narrow_bytes = false, loads_scale_an_index = false;
constexpr bool loads_take_an_index = false, store3_beats_a_loop = false;
constexpr bool sums_rows_apart = true, wide_pixels_need_prefetch = false;
constexpr int stores_ahead = 0;
constexpr std::size_t memset_from = SIZE_MAX, memcpy_from = 512, string_fill_from = SIZE_MAX;
inline void string_fill(u8* p, u32 word, std::size_t n) {
    for (; n > 0; --n, p += 4) std::memcpy(p, &word, 4);
}

/// The register whose lane i is f(i)
template <class V, class F> V make(F f) {
    V v{};
    for (int i = 0; i < static_cast<int>(sizeof v / sizeof v[0]); ++i)
        v[i] = static_cast<std::remove_cvref_t<decltype(v[0])>>(f(i));
    return v;
}
template <class V> V load_as(const void* p) {
    V v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
constexpr int clamped(int v, int low, int high) { return v < low ? low : v > high ? high : v; }
constexpr int saturated(int v) { return clamped(v, -32768, 32767); }

// ------------------------------------------------------------------------------------------------------------- samples

constexpr int eight_at(int i) { return i; }
/// Sample i, those of lo first
inline int sample(s16x2n v, int i) { return i < 8 ? v.lo[i] : v.hi[i - 8]; }
template <class F> s16x2n make_words(F f) {
    return {make<s16xn>(f), make<s16xn>([=](int i) { return f(i + 8); })};
}
inline s16x2n splat(int value) { return s16x2n::all(value); }

template <int Channels> u8xn load_channel(const u8* p, int c) {
    return make<u8xn>([=](int i) { return p[Channels * i + c]; });
}
inline void load(const u8* p, u8xn& a) { a = load_as<u8xn>(p); }
inline void load2(const u8* p, u8xn& a, u8xn& b) { a = load_channel<2>(p, 0), b = load_channel<2>(p, 1); }
inline void load3(const u8* p, u8xn& a, u8xn& b, u8xn& c) {
    a = load_channel<3>(p, 0), b = load_channel<3>(p, 1), c = load_channel<3>(p, 2);
}
inline void load4(const u8* p, u8xn& a, u8xn& b, u8xn& c, u8xn& d) {
    a = load_channel<4>(p, 0), b = load_channel<4>(p, 1), c = load_channel<4>(p, 2), d = load_channel<4>(p, 3);
}
template <class... V> void store_channels(u8* p, V... channels) {
    for (int i = 0; i < lanes; ++i) ((*p++ = channels[i]), ...);
}
template <int N> void load_next(const u8*& p, u8xn (&v)[N]) {
    for (u8xn& r : v) load(p, r), p += lanes;
}
inline u8xn load_apart(const u8* p, std::ptrdiff_t) { return load_as<u8xn>(p); }
template <int Bytes> two<u8xn> zip(u8xn a, u8xn b) {
    const auto half = [=](int from) {
        return make<u8xn>([=](int i) {
            const int at = from + i / Bytes / 2 * Bytes + i % Bytes;
            return i / Bytes % 2 ? b[at] : a[at];
        });
    };
    return {half(0), half(8)};
}
template <int Bytes> u8xn reverse(u8xn a) {
    return make<u8xn>([=](int i) { return a[lanes - Bytes - i / Bytes * Bytes + i % Bytes]; });
}
inline void store(u8* p, u8xn a) { std::memcpy(p, &a, sizeof a); }
inline void store2(u8* p, u8xn a, u8xn b) { store_channels(p, a, b); }
inline void store3(u8* p, u8xn a, u8xn b, u8xn c) { store_channels(p, a, b, c); }
inline void store4(u8* p, u8xn a, u8xn b, u8xn c, u8xn d) { store_channels(p, a, b, c, d); }
inline void load_16(const u8* p, s16x2n& v) { v = {load_as<s16xn>(p), load_as<s16xn>(p + 16)}; }
inline void store_16(u8* p, s16x2n v) { std::memcpy(p, &v, sizeof v); }
inline void load_even_odd_16(const u8* p, s16x2n& v) {
    s16x2n in;
    load_16(p, in);
    v = make_words([=](int i) { return sample(in, i < 8 ? 2 * i : 2 * i - 15); });
}
inline void store_even_odd_16(u8* p, s16x2n v) {
    store_16(p, make_words([=](int i) { return sample(v, i % 2 * 8 + i / 2); }));
}
inline void store_widened(s16* p, s16x2n v) { std::memcpy(p, &v, sizeof v); }

inline s16x2n widen(u8xn a) {
    return make_words([=](int i) { return a[i]; });
}
inline s16x2n difference(u8xn a, u8xn b) { return widen(a) - widen(b); }
inline s16x2n add_wide(s16x2n v, u8xn a) { return v + widen(a); }
template <int A, int B> s16x2n dot(u8xn a, u8xn b) {
    static_assert(dot_fits(A, B));
    return make_words([=](int i) { return A * a[i] + B * b[i]; });
}
inline s16x2n dot(u8xn a, u8xn b, int f, int g) {
    return make_words([=](int i) { return f * a[i] + g * b[i]; });
}
struct triples {
    u8xn a, b, c;
};
inline triples interleave(u8xn a, u8xn b, u8xn c) { return {a, b, c}; }
template <int A, int B, int C> s16x2n dot(triples v) {
    static_assert(dot_fits(A, B, C));
    return make_words([=](int i) { return A * v.a[i] + B * v.b[i] + C * v.c[i]; });
}
template <int F> s16x2n centred_product(u8xn a) {
    static_assert(centred_product_fits(F));
    return make_words([=](int i) { return (F * (a[i] - 128) + 128) >> 8; });
}

inline u8xn narrow(s16x2n v) {
    return make<u8xn>([=](int i) { return clamped(sample(v, i), 0, 255); });
}
inline u8xn narrow_signed(s16x2n v) {
    return make<u8xn>([=](int i) { return clamped(sample(v, i), -128, 127); });
}
inline u8xn high(s16x2n v) {
    return make<u8xn>([=](int i) { return sample(v, i) >> 8; });
}
inline u8xn round_high(s16x2n v) { return high(v + 128); }
inline u8xn narrow_q6(s16x2n v) {
    return make<u8xn>([=](int i) { return sample(v, i) >> 6; });
}
inline u8xn blend_q6(s16x2n v, s16x2n w, int f) {
    return make<u8xn>([=](int i) { return ((8 - f) * sample(v, i) + f * sample(w, i)) >> 6; });
}
inline s16x2n centred_even_odd(u8xn a) {
    return make_words([=](int i) { return (a[i < 8 ? 2 * i : 2 * i - 15] - 128) << 8; });
}
inline u8xn narrow_q6_even_odd(s16x2n v) {
    return make<u8xn>([=](int i) { return clamped(sample(v, i % 2 * 8 + i / 2) >> 6, 0, 255); });
}
inline u8xn narrow_ordered(s16x2n v) { return narrow(v); }
inline u8xn narrow_q6_ordered(s16x2n v) { return narrow_q6(v); }
inline u8xn low_q2_ordered(s16x2n v) {
    return make<u8xn>([=](int i) { return sample(v, i) >> 2; });
}
inline u8xn round_q6(s16x2n v) { return narrow_q6(v + 32); }
inline u8xn round_q7_signed(s16x2n v) {
    return make<u8xn>([=](int i) { return clamped((sample(v, i) + 64) >> 7, -128, 127); });
}
inline u8xn round_q7_signed_ordered(s16x2n v) { return round_q7_signed(v); }
inline s16xn pair_sums(u8xn a) {
    return make<s16xn>([=](int i) { return a[2 * i] + a[2 * i + 1]; });
}
inline s16xn add_pair_sums(s16xn s, u8xn a) { return s + pair_sums(a); }

inline s16xn mul_q15(s16xn v, int b) {
    return make<s16xn>([=](int i) { return (v[i] * b + (1 << 14)) >> 15; });
}
inline s16x2n mul_q15(s16x2n v, int b) { return {mul_q15(v.lo, b), mul_q15(v.hi, b)}; }
inline s16x2n add_sat(s16x2n v, s16x2n w) {
    return make_words([=](int i) { return saturated(sample(v, i) + sample(w, i)); });
}
inline s16x2n sub_sat(s16x2n v, s16x2n w) {
    return make_words([=](int i) { return saturated(sample(v, i) - sample(w, i)); });
}
template <int N> s16x2n shift_add(s16x2n v, s16x2n w) { return v + (w >> N); }
template <int N> u8xn shift_insert(u8xn a, u8xn b) {
    const u8xn low = u8xn{} + static_cast<u8>(255 >> N);
    return (a & ~low) | b >> N;
}
template <int A, int B, int C> s16x2n dot_q10(s16x2n u, s16x2n v, s16x2n w) {
    static_assert(dot_q10_fits(A, B, C));
    return make_words([=](int i) { return (A * sample(u, i) + B * sample(v, i) + C * sample(w, i) + 512) >> 10; });
}
inline void zip(u8xn& a, u8xn& b) {
    u8 all[2 * lanes];
    for (int i = 0; i < lanes; ++i) all[2 * i] = a[i], all[2 * i + 1] = b[i];
    a = load_as<u8xn>(all), b = load_as<u8xn>(all + lanes);
}
inline void unzip(u8xn& a, u8xn& b) {
    u8 all[2 * lanes];
    std::memcpy(all, &a, lanes), std::memcpy(all + lanes, &b, lanes);
    a = load_channel<2>(all, 0), b = load_channel<2>(all, 1);
}
inline u8xn average(u8xn a, u8xn b) {
    return make<u8xn>([=](int i) { return (a[i] + b[i] + 1) / 2; });
}
inline bool any(u8xn mask) {
    u8 bits = 0;
    for (int i = 0; i < lanes; ++i) bits |= mask[i];
    return bits != 0;
}

/// In memory order
template <int Step, bool Packed> struct pixels {
    static void load_luma(const u8* p, s16x2n& y) { y = centred_even_odd(load_as<u8xn>(p)); }
    static void load_chroma(const u8* p, s16xn& c) {
        c = make<s16xn>([=](int i) { return (p[i] - 128) << 8; });
    }
    static void load_chroma2(const u8* p, s16xn& a, s16xn& b) {
        const s16x2n v = centred_even_odd(load_as<u8xn>(p));
        a = v.lo, b = v.hi;
    }
    static void load_packed(const u8* p, s16x2n& a, s16x2n& b) {
        a = centred_even_odd(load_channel<2>(p, 0)), b = centred_even_odd(load_channel<2>(p, 1));
    }
    static void load_words(const u8* p, s16x2n& v) { load_even_odd_16(p, v); }
    static void load_words(const u8* p, s16xn& v) { v = load_as<s16xn>(p); }
    static u8xn narrow_q6(s16x2n v) { return narrow_q6_even_odd(v); }
    static void store(u8* p, u8xn a) { std::memcpy(p, &a, sizeof a); }
    static void store(u8* p, u8xn a, u8xn b) { store2(p, a, b); }
    static void store(u8* p, u8xn a, u8xn b, u8xn c) { store3(p, a, b, c); }
    static void store(u8* p, u8xn a, u8xn b, u8xn c, u8xn d) { store4(p, a, b, c, d); }
};

// --------------------------------------------------------------------------------------------------------------- pairs

struct pairs {
    u16x8 left, right;
};
constexpr int reach = 32;
template <int Windows> pairs gather_pairs(const u8* row, const std::ptrdiff_t* at, const u8xn* masks) {
    const auto gather = [=](int i) {
        int sample = 0;
        for (int k = 0; k < (Windows + 1) / 2; ++k)
            if (masks[k][i] < 0x80) sample = row[*at + reach * k + masks[k][i]];
        return sample;
    };
    return {make<u16x8>(gather), make<u16x8>([=](int i) { return gather(i + 8); })};
}
inline s16xn weighted_sum(pairs p, u8xn w) {
    return make<s16xn>([=](int i) { return p.left[i] * w[i] + p.right[i] * w[i + 8]; });
}
inline s16xn weighted_sum(s16xn sum, pairs p, u8xn w) { return (s16xn)((u16xn)sum + (u16xn)weighted_sum(p, w)); }
struct pairs_2n {
    pairs lo, hi;
};
struct weights_2n {
    u8xn lo, hi;
};
template <int Bytes, int Next> pairs_2n load_pairs(const u8*& p) {
    static_assert((Bytes == 1 || Bytes == 4) && (Next == 1 || Next == 2));
    const u8* first = p;
    p += 2 * Next * lanes;
    const auto pixels = [=](int eight, int next) {
        return make<u16x8>([=](int i) {
            const int sample = 8 * eight + i;
            return first[(sample / Bytes * 2 + next) * Next * Bytes + sample % Bytes];
        });
    };
    return {{pixels(0, 0), pixels(0, 1)}, {pixels(1, 0), pixels(1, 1)}};
}
inline weights_2n run_weights(u8xn lo, u8xn hi) { return {lo, hi}; }
inline s16x2n weighted_sum(pairs_2n p, weights_2n w, pairs_2n q, weights_2n v) {
    return {weighted_sum(weighted_sum(p.lo, w.lo), q.lo, v.lo), weighted_sum(weighted_sum(p.hi, w.hi), q.hi, v.hi)};
}
inline u16x8 pack(u32x4 a, u32x4 b) {
    return make<u16x8>([=](int i) { return i < 4 ? a[i] : b[i - 4]; });
}
inline void store_pairs(u8* p, u16x8 left, u16x8 right) {
    store(p, make<u8xn>([=](int i) { return i < 8 ? left[i] : right[i - 8]; }));
}

// -------------------------------------------------------------------------------------------------------------- blocks

/// R rows of W samples of type T, as lanes of V
template <class V, int W, int R, class T> V load_block(const T* p, std::ptrdiff_t stride) {
    return make<V>([=](int i) { return i < W * R ? load_as<T>(p + i / W * stride + i % W) : T{}; });
}
template <int W, int R> u8xn load_rows(const u8* p, std::ptrdiff_t stride) {
    static_assert(rows_fit(W, R, 1, lanes));
    return load_block<u8xn, W, R>(p, stride);
}
template <int W, int R, class T> u16xn load_rows_16(const T* p, std::ptrdiff_t stride) {
    static_assert(rows_fit(W, R, 2, lanes));
    return load_block<u16xn, W, R>(p, stride);
}
inline two<u8xn> load_two(const u8*& p, std::ptrdiff_t n) {
    const two<u8xn> v = {load_rows<lanes, 1>(p, 0), load_rows<lanes, 1>(p + lanes, 0)};
    p += n;
    return v;
}
template <class T> two<u16xn> load_two_16(const T*& p, std::ptrdiff_t n) {
    const two<u16xn> v = {load_rows_16<lanes_16, 1>(p, 0), load_rows_16<lanes_16, 1>(p + lanes_16, 0)};
    p += n;
    return v;
}
inline two<two<u8xn>> load_four(const u8*& p) { return {load_two(p, 2 * lanes), load_two(p, 2 * lanes)}; }
inline two<two<u16xn>> load_four_16(const s16*& p) { return {load_two_16(p, lanes), load_two_16(p, lanes)}; }
inline void store_two_16(s16*& p, two<u16xn> v, std::ptrdiff_t n) {
    store_widened(p, {(s16xn)v.first, (s16xn)v.second});
    p += n;
}
inline void store_widened(s16*& p, s16x2n v, std::ptrdiff_t n) { store_widened(p, v), p += n; }
template <int W, int R> void store_rows_16(s16* p, std::ptrdiff_t stride, u16xn v) {
    static_assert(rows_fit(W, R, 2, lanes));
    for (int i = 0; i < W * R; ++i) p[i / W * stride + i % W] = static_cast<s16>(v[i]);
}
template <int W, int R> u16xn paired_residual(const u8* a, const u8* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    static_assert(rows_fit(W, R, 2, lanes) && W * R >= 8 && W >= 8);
    return make<u16xn>([=](int i) {
        const int y = i / W, x = i % W % (W / 2) * 2;
        const int left = a[y * sa + x] - b[y * sb + x], right = a[y * sa + x + 1] - b[y * sb + x + 1];
        return i % W < W / 2 ? left + right : left - right;
    });
}

template <class V> V extend(V v) { return v; }
inline u32 reduce_add(u32x4 v) { return v[0] + v[1] + v[2] + v[3]; }

template <int W, int N> struct abs_diff_sums_8 {
    static_assert(N <= 256);
    u32 sum;
};
template <int W, int N> abs_diff_sums_8<W, N> add_abs_diff(abs_diff_sums_8<W, N> s, u8xn a, u8xn b) {
    for (int i = 0; i < lanes; ++i) s.sum += a[i] > b[i] ? a[i] - b[i] : b[i] - a[i];
    return s;
}
template <int W, int N> u32 reduce_add(abs_diff_sums_8<W, N> s) { return s.sum; }
template <int W, int N, int R> u32 reduce_add(const abs_diff_sums_8<W, N> (&rows)[R]) {
    u32 sum = 0;
    for (const auto& row : rows) sum += row.sum;
    return sum;
}
template <int W, int N, int R> u32 sum_until(const abs_diff_sums_8<W, N> (&rows)[R], u32 least) {
    static_assert(R == 4 || R == 8);
    u32 sum = 0;
    for (const auto& row : rows)
        if (sum += row.sum; sum >= least) break;
    return sum;
}

inline u16xn abs(u16xn a) {
    return make<u16xn>([=](int i) { return a[i] >> 15 ? -a[i] : +a[i]; });
}
inline u16xn max(u16xn a, u16xn b) { return a > b ? a : b; }
inline u16xn average(u16xn a, u16xn b) {
    return make<u16xn>([=](int i) { return (a[i] + b[i] + 1) / 2; });
}
inline u16xn add_sat(u16xn a, u16xn b) {
    return make<u16xn>([=](int i) { return saturated(static_cast<s16>(a[i]) + static_cast<s16>(b[i])); });
}
inline u16xn sub_sat(u16xn a, u16xn b) {
    return make<u16xn>([=](int i) { return saturated(static_cast<s16>(a[i]) - static_cast<s16>(b[i])); });
}
inline bool any_sign_bit(u16xn a) { return any((u8xn)(a >> 15)); }

/// Magnitudes that do not fit, and sums of them, are the largest value.
template <class V> struct abs_diff_sums_16 { V sum; };
inline void add_abs_diff(abs_diff_sums_16<u16xn>& s, u16xn a, u16xn b) {
    s.sum = make<u16xn>([=](int i) {
        const int d = static_cast<s16>(a[i]) - static_cast<s16>(b[i]);
        return clamped(s.sum[i] + (d < 0 ? -d : d), 0, 65535);
    });
}
inline void add_abs_diffs(abs_diff_sums_16<u16xn>& s, u16xn a, u16xn b, u16xn c, u16xn d) {
    add_abs_diff(s, a, b), add_abs_diff(s, c, d);
}
inline u16xn seen(abs_diff_sums_16<u16xn> s) { return s.sum; }
inline bool exact_abs_diffs(u16xn seen) { return !any_sign_bit(seen); }

inline u32xn pairwise_add_accumulate(u32xn s, u16xn a) {
    return s + make<u32xn>([=](int i) { return a[2 * i] + a[2 * i + 1]; });
}
inline u32 reduce_add(u16xn v) { return reduce_add(pairwise_add_accumulate(u32xn{}, v)); }
inline u32xn pairwise_add_accumulate_abs(u32xn s, u16xn a) { return pairwise_add_accumulate(s, a); }

template <class V> struct square_sums { u32 sum; };
template <class V> V squared(V d) { return d * d; }
inline square_sums<u16xn> add_squares(square_sums<u16xn> s, u16xn a, u16xn b) {
    for (int i = 0; i < lanes_16; ++i)
        s.sum += squared(static_cast<u32>(static_cast<s16>(a[i]) - static_cast<s16>(b[i])));
    return s;
}
inline square_sums<u16xn> add_squares(square_sums<u16xn> s, u8xn a, u8xn b) {
    for (int i = 0; i < lanes; ++i) s.sum += squared(static_cast<u32>(a[i] - b[i]));
    return s;
}
inline bool exact(square_sums<u16xn>) { return true; }
inline u32 reduce_add(square_sums<u16xn> s) { return s.sum; }

/// Of neighbours of N lanes
template <int N, class V> void transpose(V& a, V& b) {
    const V v = a, w = b;
    a = make<V>([=](int i) { return i & N ? w[i - N] : v[i]; });
    b = make<V>([=](int i) { return i & N ? w[i] : v[i + N]; });
}
template <class V> void transpose2x2_16(V& a, V& b) { transpose<1>(a, b); }
inline u16xn max_of_neighbours(u16xn a, u16xn b) {
    transpose2x2_16(a, b);
    return max(a, b);
}
template <class V> void transpose2x2_32(V& a, V& b) { transpose<2>(a, b); }
template <class V> void transpose2x2_64(V& a, V& b) { transpose<4>(a, b); }
template <class V> void transpose2x2_128(V&, V&) {}  // a register has no second one
}  // namespace zelt::generic::inline ZELT_LEVEL
