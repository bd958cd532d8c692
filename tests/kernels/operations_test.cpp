// SPDX-License-Identifier: MIT
// The vocabulary's operations beside their definition, over the whole range that the contract states. Compiled for each
// level with the level's own flags.
#include "simd/level.h"
#if ZELT_SIMD && !defined(ZELT_GENERIC)
#include "simd/vocabulary.h"
// after the operations that it is compared with
#include "simd/generic.h"

#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <vector>

// within the level, so that what a back end has hides what it takes from the definition, as in a kernel
namespace zelt::inline ZELT_LEVEL::operations {
namespace {
using memory = std::vector<u8>;
using operation = std::function<u64(const u8* a, const u8* b, u8* out)>;
constexpr int whole = vec::lanes / 16;  // pieces of 16 bytes in a register

/// Runs an operation over registers of so many pieces, of which each stands for `read` bytes of a and of b and for
/// `write` bytes of results, and its definition over the pieces. Values that they return are sums over the register.
void agree(const char* body, int pieces, int read, int write, const memory& a, const memory& b, const operation& target,
           const operation& definition) {
    memory ours(static_cast<std::size_t>(pieces * write)), theirs = ours;
    for (int at = 0; at + pieces * read <= static_cast<int>(std::min(a.size(), b.size())); at += pieces * read) {
        const u64 sum = target(&a[at], &b[at], ours.data());
        u64 expected = 0;
        for (int i = 0; i < pieces; ++i)
            expected += definition(&a[at + i * read], &b[at + i * read], theirs.data() + i * write);
        ASSERT_EQ(ours, theirs) << body << " at " << at;
        ASSERT_TRUE(sum >> 32 == 1 || sum == static_cast<u32>(expected)) << body << " at " << at << ": " << sum;
    }
}
/// A sum as agree() takes it, or 2^32 if it is not exact and need not be
u64 if_exact(u32 sum, bool exact, bool must) { return exact ? u64{sum} : u64{1} << (must ? 33 : 32); }

// A body compiled twice: over the target's operations, and over their definition
#define OVER(form, ...)                                                                         \
    [&]([[maybe_unused]] const u8* a, [[maybe_unused]] const u8* b, [[maybe_unused]] u8* out) { \
        using namespace form;                                                                   \
        __VA_ARGS__;                                                                            \
        return u64{0};                                                                          \
    }
#define SAME(pieces, read, write, a, b, ...) \
    agree(#__VA_ARGS__, pieces, read, write, a, b, OVER(vec, __VA_ARGS__), OVER(generic, __VA_ARGS__))

using generic::load_as;
template <class V> void to(u8* p, V v) { std::memcpy(p, &v, sizeof v); }
const s16* words(const u8* p) { return reinterpret_cast<const s16*>(p); }
s16* words(u8* p) { return reinterpret_cast<s16*>(p); }

std::minstd_rand source;
memory random_bytes(std::size_t count, unsigned below = 256) {
    memory all(count);
    for (u8& v : all) v = static_cast<u8>((source() >> 8) % below);
    return all;
}
/// Values of so many bits, of either sign, mixed with the extremes; 0 but for every so many
memory random_words(std::size_t count, int bits, std::size_t every = 1) {
    memory all(2 * count);
    for (std::size_t i = 0; i < count; i += every) {
        const int limit = 1 << (bits - 1), value = static_cast<int>(source() >> 8) % limit;
        const int choice[] = {limit - 1, -limit, value, -value - 1};
        to(&all[2 * i], static_cast<u16>(choice[source() >> 9 & 3]));
    }
    return all;
}
const memory all_words = [] {
    memory all(1 << 17);
    for (std::size_t i = 0; i < 1 << 16; ++i) to(&all[2 * i], static_cast<u16>(i));
    return all;
}();
/// Registers of so many bytes with one byte set, each in its turn, and one without
memory single_bytes(std::size_t size) {
    memory all(size * (size + 1));
    for (std::size_t i = 0; i < size; ++i) all[i * (size + 1)] = 255;
    return all;
}

TEST(operations, of_bytes) {
    memory xs(1 << 16), ys(1 << 16);  // every pair
    for (std::size_t i = 0; i < xs.size(); ++i) xs[i] = static_cast<u8>(i), ys[i] = static_cast<u8>(i >> 8);
#define BYTES(write, ...) SAME(whole, 16, write, xs, ys, u8xn x, y; load(a, x), load(b, y); __VA_ARGS__)
    BYTES(16, store(out, x ^ y));
    BYTES(32, store2(out, x, y));
    BYTES(48, store3(out, x, y, x + y));
    BYTES(64, store4(out, x, y, x + y, x - y));
    for (const memory& bytes : {xs, ys}) {  // two registers that follow one another
        SAME(whole, 32, 32, bytes, bytes, u8xn x, y; load2(a, x, y), zip(x, y); store_16(out, {(s16xn)x, (s16xn)y}));
        SAME(whole, 32, 32, bytes, bytes, s16x2n v; load_16(a, v); u8xn x = (u8xn)v.lo, y = (u8xn)v.hi; unzip(x, y);
             store2(out, x, y));
    }
    BYTES(16, store(out, shift_insert<1>(x, y) ^ shift_insert<7>(y, x)));
    BYTES(16, store(out, average(x, y)));
    BYTES(16, store(out, shift_insert<3>(x, y) ^ shift_insert<5>(y, x)));

#define WIDENED(...) BYTES(32, store_widened(words(out), __VA_ARGS__))
    WIDENED(add_wide(widen(x) << 7, y));
    WIDENED(difference(x, y));
    WIDENED(dot<1, -1>(x, y));
    WIDENED(dot<127, 1>(x, y));
    WIDENED(dot<-128, 127>(x, y));
    WIDENED(dot<-64, -64>(x, y));
    WIDENED(dot(x, y, 27, 53) - dot(y, x, 127, 1));
    WIDENED(dot<77, 150, 29>(interleave(x, y, x ^ y)));
    WIDENED(dot<0, 254, -128>(interleave(x, y, x + y)));
    WIDENED(dot<-128, 128, 127>(interleave(x, y, x - y)));
    WIDENED(centred_product<359>(x) - widen(y));  // by a filler
    WIDENED(centred_product<454>(x) - widen(y));  // by an offset

#define NARROWED(...) BYTES(16, const s16x2n v = add_wide(widen(y) << 8, x); store(out, __VA_ARGS__))
    NARROWED(narrow(v));
    NARROWED(narrow_signed(v));
    NARROWED(high(v));
    NARROWED(round_high(v - widen((u8xn)(x >= 128) & (u8xn)(y == 255) & 128)));
    NARROWED(narrow_q6(v - (widen(y & 192) << 8)));
    BYTES(16, to(out, add_pair_sums(pair_sums(x), y)));
    NARROWED(round_q6(clamp(v, 0, 16351)));
    NARROWED(round_q7_signed(clamp(v, -32768, 32703)));
}

TEST(operations, of_pixels) {
    const memory xs = random_bytes(1 << 14), ys = random_bytes(1 << 14);
#define PIXELS(step, packed, read, loads, ...)                                                   \
    SAME(whole, read, 16 * step, xs, ys, using order = pixels<step, packed>; s16x2n y, z; loads; \
         const u8xn u = order::narrow_q6(add_sat(y >> 1, z >> 1)), v = order::narrow_q6(y);      \
         order::store(out, __VA_ARGS__))
#define ALL_STEPS(packed, read, loads)           \
    PIXELS(1, packed, read, loads, u ^ v);       \
    PIXELS(2, packed, read, loads, u, v);        \
    PIXELS(3, packed, read, loads, u, v, u ^ v); \
    PIXELS(4, packed, read, loads, u, v, u ^ v, u + v)
    ALL_STEPS(false, 16, (order::load_luma(a, y), order::load_chroma2(b, z.lo, z.hi)));
    ALL_STEPS(false, 8, (order::load_chroma(a, z.lo), order::load_chroma(b, z.hi), y = z >> 1));
    ALL_STEPS(true, 32, order::load_packed(a, y, z));
    ALL_STEPS(true, 32, (order::load_words(a, y), order::load_words(b, z)));
    ALL_STEPS(true, 16, (order::load_words(a, z.lo), order::load_words(b, z.hi), y = z >> 1));
    for (const int factor : {-32767, 1436})
        SAME(whole, 16, 16, all_words, all_words, to(out, mul_q15(load_as<s16xn>(a), factor)));
}

TEST(operations, of_words) {
#define WORDS(v_in, w_in, ...) \
    SAME(whole, 32, 32, v_in, w_in, s16x2n v, w; load_16(a, v), load_16(b, w); store_16(out, __VA_ARGS__))
    for (int bits = 1; bits <= 16; ++bits) {
        const memory other = random_words(1 << 16, bits), eleven_bits = random_words(1 << 16, 11);
        WORDS(all_words, other, clamp(v + w - (v << 3) + (w >> 5) + 77, -9000, 20000));
        WORDS(all_words, other, sub_sat(v, w));
        WORDS(all_words, other, add_sat(v, w));
        WORDS(all_words, other, shift_add<8>(v, w) - shift_add<1>(w, v) + splat(5));
        WORDS(all_words, other, mul_q15(v, -32767) + mul_q15(v, 1436) + mul_q15(w, 32767));
        WORDS(all_words, other, dot_q10<308, 600, -116>(v, w, v));
        WORDS(eleven_bits, other, dot_q10<-32000, 512, 32767>(v, w >> 1, v));
    }
#define ORDERED(...) SAME(whole, 32, 16, all_words, all_words, s16x2n v; load_16(a, v), store(out, __VA_ARGS__))
    ORDERED(narrow_ordered(v));
    ORDERED(narrow_q6_ordered(v - ((v >> 14) << 14)));
    ORDERED(low_q2_ordered(v));
    ORDERED(round_q7_signed_ordered(clamp(v, -32768, 32703)));
    SAME(whole, 32, 16, all_words, all_words, s16x2n v; load_even_odd_16(a, v); to(out, v.lo ^ (v.hi >> 1)));
    SAME(whole, 16, 32, all_words, random_words(1 << 16, 16), const s16x2n v{load_as<s16xn>(a), load_as<s16xn>(b)};
         store_even_odd_16(out, v));
    SAME(whole, 16, 16, all_words, random_words(1 << 16, 16), s16x2n v{load_as<s16xn>(a), load_as<s16xn>(b)};
         store(out, narrow_q6_even_odd(v)));
    SAME(whole, 16, 16, all_words, all_words, u8xn x; load(a, x); const s16x2n v = centred_even_odd(x);
         to(out, v.lo ^ (v.hi >> 8 & 255)));

    const memory first = random_words(1 << 12, 12), second = random_words(1 << 12, 12);
    for (int f = 0; f <= 8; ++f)
        SAME(whole, 32, 16, first, second, {
            u8xn x, y, z, t;
            load2(a, x, y), load2(b, z, t);
            store(out, blend_q6(add_wide(widen(y & 7) << 8, x), add_wide(widen(t & 7) << 8, z), f));
        });
}

TEST(operations, of_channels) {
    const memory in = random_bytes(1 << 13);
#define CHANNELS(n, ...) \
    SAME(whole, 16 * n, 64, in, in, u8xn x{}, y{}, z{}, t{}; load##n(a, __VA_ARGS__), store4(out, x, y, z, t))
    CHANNELS(2, x, y);
    CHANNELS(3, x, y, z);
    CHANNELS(4, x, y, z, t);
}

template <int Bytes> void check_zip() {
    const memory in = random_bytes(1 << 10), other = random_bytes(1 << 10);
    SAME(whole, 16, 32, in, other, {
        const auto v = zip<Bytes>(load_as<u8xn>(a), load_as<u8xn>(b));
        for (int i = 0; i < lanes; i += 16) {  // a piece's results follow each other
            std::memcpy(out + 2 * i, reinterpret_cast<const u8*>(&v.first) + i, 16);
            std::memcpy(out + 2 * i + 16, reinterpret_cast<const u8*>(&v.second) + i, 16);
        }
    });
}
template <int Bytes> void check_reverse() {
    const memory in = random_bytes(64);
    vec::u8xn first;
    vec::load(in.data(), first);
    const vec::u8xn last = vec::reverse<Bytes>(first);
    for (int i = 0; i < vec::lanes; ++i)
        EXPECT_EQ(last[i], first[(vec::lanes / Bytes - 1 - i / Bytes) * Bytes + i % Bytes]) << Bytes;
}
TEST(operations, of_places) {
    check_zip<1>(), check_zip<2>(), check_zip<4>();
    const memory in = random_bytes(1 << 10);
    SAME(whole, 16, 16, in, in, to(out, load_apart(a, 16)));
    check_reverse<1>(), check_reverse<2>(), check_reverse<4>();
}

template <int N> void check_load_next() {
    const memory in = random_bytes(1 << 10);
    SAME(whole, 16 * N, 16 * N, in, in, {
        const u8* p = a;
        u8xn v[N];
        load_next(p, v);
        for (int i = 0; i < N; ++i) store(out + lanes * i, v[i]);
        return u64{p != a + N * lanes};
    });
}
TEST(operations, of_registers) {
    check_load_next<1>(), check_load_next<2>(), check_load_next<3>(), check_load_next<4>();
}

// --------------------------------------------------------------------------------------------------------------- pairs

const memory row = random_bytes(256);
constexpr u16x8 weights_left = {0, 127, 1, 64, 51, 8, 3, 2}, weights_right = {127, 1, 127, 64, 77, 0, 5, 126};
#define PAIRS(read, write, in, ...)                                                                    \
    SAME(whole, read, write, in, in, {                                                                 \
        u8 table[lanes];                                                                               \
        for (int e = 0; e < lanes / 16; ++e) store_pairs(table + 16 * e, weights_left, weights_right); \
        const u8xn weights = load_as<u8xn>(table);                                                     \
        __VA_ARGS__;                                                                                   \
    })

template <int Bytes, int Next> void check_load_pairs() {
    PAIRS(32 * Next, 32, row, {
        const weights_2n run = run_weights(weights, weights >> 1), other = run_weights(weights & 15, weights);
        const u8* p = a;
        const pairs_2n first = load_pairs<Bytes, Next>(p);
        p -= 2 * Next * lanes;
        store_16(out, weighted_sum(first, run, load_pairs<Bytes, Next>(p), other));
    });
}
/// An eight has the place of its windows, then the places in them of its left and its right bytes.
template <int Windows> void check_gather_pairs() {
    const memory places = random_bytes(100 * 17 * whole, 16 * Windows);
    PAIRS(17, 16, places, {
        constexpr int eights = lanes / 16, count = (16 * Windows + reach - 1) / reach;
        u8 masks[lanes * count];
        std::ptrdiff_t at[eights];
        for (int e = 0; e < eights; ++e) {
            at[e] = a[17 * e];
            for (int k = 0; k < count; ++k) {
                u16 masked[16];
                for (int i = 0; i < 16; ++i) {
                    const int place = a[17 * e + 1 + i] - reach * k;
                    masked[i] = static_cast<u16>(place >= 0 && place < reach ? place : 0x80);
                }
                store_pairs(masks + lanes * k + 16 * e, load_as<u16x8>(masked), load_as<u16x8>(masked + 8));
            }
        }
        u8xn loaded[count];
        for (int k = 0; k < count; ++k) load(masks + lanes * k, loaded[k]);
        to(out, weighted_sum(s16xn{} + 1000, gather_pairs<Windows>(row.data(), at, loaded), weights));
    });
}
TEST(operations, of_pairs) {
    check_load_pairs<1, 1>(), check_load_pairs<1, 2>(), check_load_pairs<4, 1>(), check_load_pairs<4, 2>();
    check_gather_pairs<1>(), check_gather_pairs<2>(), check_gather_pairs<3>(), check_gather_pairs<4>();
    check_gather_pairs<8>();
    SAME(1, 32, 16, row, row, to(out, pack(load_as<u32x4>(a) & 65535, load_as<u32x4>(a + 16) >> 16)));
}

// -------------------------------------------------------------------------------------------------------------- blocks

constexpr int stride = 37;
const memory m = random_bytes(40 * stride), n = random_bytes(40 * stride);
template <int W, int R> void check_rows() {
    SAME(1, R * stride, 16, m, m, to(out, load_rows<W, R>(a, stride)));
    if constexpr (W * R <= 8) {
        SAME(1, R * stride, 16, m, m, to(out, load_rows_16<W, R>(a, stride)));
        SAME(1, 2 * R * stride, 16, m, m, to(out, load_rows_16<W, R>(words(a), stride)));
        SAME(1, 16, 2 * R * stride, m, m, store_rows_16<W, R>(words(out), stride, load_as<u16x8>(a)));
        agree("difference_of_rows", 1, R * stride, 16, m, n,
              OVER(vec, to(out, difference_of_rows<W, R>(a, b, stride, stride))),
              OVER(generic, to(out, load_rows_16<W, R>(a, stride) - load_rows_16<W, R>(b, stride))));
    }
}
/// A whole register, of whose rows each 16 bytes have 8 / W
template <int W> void check_whole_rows() {
    SAME(whole, 8 / W * stride, 16, m, m, to(out, load_rows_16<W, lanes_16 / W>(a, stride)));
    SAME(whole, 16 / W * stride, 16, m, m, to(out, load_rows_16<W, lanes_16 / W>(words(a), stride)));
}
template <bool Free> void check_pairs_of_rows() {
    if constexpr (Free) {
        SAME(1, 8, 16, m, n, to(out, paired_residual<8, 1>(a, b, stride, stride)));
        SAME(whole, stride, 16, m, n, to(out, paired_residual<8, lanes_16 / 8>(a, b, stride, stride)));
        SAME(whole, 8, 16, m, n, {
            const auto v = paired_residual<lanes_16, 1>(a, b, stride, stride);
            for (int i = 0; i < lanes_16; ++i)  // all sums, then all differences
                words(out)[i / 4 % (lanes_16 / 8) * 8 + i / (lanes_16 / 2) * 4 + i % 4] = static_cast<s16>(v[i]);
        });
    }
}
/// Moves by so many registers, a number that the compiler knows, or by as many as the argument says. Types are
/// parameters, or loads that a target has not would not compile.
template <int Known, class Byte, class Word> void check_loads_of_several(int registers) {
    if constexpr (vec::registers_at_once >= 2) {
        SAME(whole, 32, 32, row, row, const Byte* p = a; const auto v = load_two(p, Known * lanes);
             to(out, v.first), to(out + lanes, v.second); return u64{p != a + Known * lanes});
        for (const int k : {Known, registers}) {
            SAME(whole, 32, 32, row, row, const Byte* p = a; const auto v = load_two(p, k * lanes);
                 to(out, v.first), to(out + lanes, v.second); return u64{p != a + k * lanes});
            SAME(whole, 16, 32, row, row, const Byte* p = a; const auto v = load_two_16(p, k * lanes);
                 to(out, v.first), to(out + lanes, v.second); return u64{p != a + k * lanes});
            SAME(whole, 32, 32, row, row, const Word* p = words(a); const auto v = load_two_16(p, k * lanes);
                 to(out, v.first), to(out + lanes, v.second); return u64{p != words(a) + k * lanes});
        }
    }
    if constexpr (vec::registers_at_once >= 4) {
        const auto all = [](u8* out, const auto& v) {
            for (const auto& two : {v.first, v.second}) to(out, two.first), to(out + 16, two.second), out += 32;
        };
        SAME(whole, 64, 64, row, row, const Byte* p = a; all(out, load_four(p)); return u64{p != a + 4 * lanes});
        SAME(whole, 64, 64, row, row, const Word* p = words(a); all(out, load_four_16(p));
             return u64{p != words(a) + 2 * lanes});
    }
}
template <int Known> void check_stores_of_two(int registers) {
    for (const int k : {Known, registers}) {
        SAME(whole, 32, 32, row, row, s16* p = words(out);
             store_two_16(p, {load_as<u16xn>(a), load_as<u16xn>(a + lanes)}, k * lanes);
             return u64{p != words(out) + k * lanes});
        SAME(whole, 16, 32, row, row, s16* p = words(out); u8xn x; load(a, x); store_widened(p, widen(x), k * lanes);
             return u64{p != words(out) + k * lanes});
    }
}
TEST(operations, loads_of_several_registers) {
    check_loads_of_several<1, u8, s16>(-1), check_loads_of_several<2, u8, s16>(3);
}
TEST(operations, stores_of_two_registers) { check_stores_of_two<1>(-1), check_stores_of_two<2>(3); }

TEST(operations, of_rows) {
    check_rows<2, 1>(), check_rows<2, 2>(), check_rows<2, 3>(), check_rows<2, 4>(), check_rows<2, 5>();
    check_rows<2, 8>(), check_rows<4, 1>(), check_rows<4, 2>(), check_rows<4, 3>(), check_rows<4, 4>();
    check_rows<8, 1>(), check_rows<8, 2>(), check_rows<16, 1>();
    check_whole_rows<2>(), check_whole_rows<4>(), check_whole_rows<8>();
    SAME(whole, 16, 16, m, m, to(out, load_rows<lanes, 1>(a, stride)));
    SAME(whole, 8, 16, m, m, to(out, load_rows_16<lanes_16, 1>(a, stride)));
    SAME(whole, 16, 16, m, m, to(out, load_rows_16<lanes_16, 1>(words(a), stride)));
    SAME(whole, 16, 16, m, m, store_rows_16<lanes_16, 1>(words(out), stride, load_as<u16xn>(a)));
    check_pairs_of_rows<vec::pairing_is_free>();
}

/// On registers of N words
template <int N> void check_values() {
#define VALUES(v_in, w_in, ...)                                                                                       \
    SAME(N / 8, 16, 16, v_in, w_in, using V = u16_of<N>; using U = u32_of<V>; V v = load_as<V>(a), w = load_as<V>(b); \
         [[maybe_unused]] U v32 = (U)v, w32 = (U)w; __VA_ARGS__)
    for (int bits = 1; bits <= 16; ++bits) {
        const memory other = random_words(1 << 16, bits);
        VALUES(all_words, other, to(out, abs(v) + w));
        VALUES(all_words, other, to(out, max(v, w)));
        VALUES(all_words, other, to(out, average(v, w)));
        VALUES(all_words, other, to(out, add_sat(v, w)));
        VALUES(all_words, other, to(out, sub_sat(v, w)));
        VALUES(all_words, other, to(out, pairwise_add_accumulate(w32, (V)(v & 0x7FFF))));
        VALUES(all_words, other, to(out, pairwise_add_accumulate_abs(w32, abs(v))));
        VALUES(all_words, other, transpose2x2_16(v, w), to(out, v - w));
        VALUES(all_words, other, transpose2x2_64(v, w), to(out, v - w));
        VALUES(all_words, other, v = max_of_neighbours(v, w);
               for (std::size_t i = 0; i < sizeof v / 2; ++i)  // in any order within 16 bytes
               to(out + i / 8 * 16, load_as<u32>(out + i / 8 * 16) + u32{v[i]} * v[i] * v[i]));
        VALUES(all_words, other, return u64{reduce_add((V)(v & 0x7FFF))});
        VALUES(all_words, other, transpose2x2_32(v, w); v32 = (U)v, w32 = (U)w;
               for (std::size_t i = 0; i < sizeof v / 4; ++i)  // in any order within 16 bytes
               to(out + i / 4 * 16, load_as<u32>(out + i / 4 * 16) + v32[i] * v32[i] * w32[i]));
        for (const std::size_t every : {1, 17}) {  // or one alone
            const memory x = random_words(1 << 13, bits, every), y = random_words(1 << 13, bits, every);
            VALUES(x, y, {
                const square_sums<V> s = add_squares(square_sums<V>{}, w, w),
                                     t = add_squares(add_squares(s, v, w), w, w);
                return if_exact(reduce_add(t), exact(t), bits <= 14);
            });
            for (const int form : {0, 1, 2, 3})  // which must each tell that a sum is not exact, and keep it
                VALUES(x, y, {
                    abs_diff_sums_16<V> s{};
                    if (form == 0 || form == 3) add_abs_diff(s, v, w);
                    if (form == 1 || form == 3) add_abs_diffs(s, v, w, w, w);
                    if (form == 2 || form == 3) add_abs_diffs(s, w, w, v, w);
                    if (form == 3) add_abs_diffs(s, v, w, w, v);
                    add_abs_diff(s, w, w), add_abs_diffs(s, v, v, w, w);
                    const U sums = pairwise_add_accumulate(U{}, s.sum);
                    return if_exact(reduce_add(sums), exact_abs_diffs(seen(s)), bits <= 12);
                });
        }
    }
    const memory one = single_bytes(2 * N);
    VALUES(one, one, return u64{any_sign_bit(v)});
    VALUES(one, one, return u64{reduce_add(v32)});
    VALUES(one, one, return u64{reduce_add(extend(v32))});
    VALUES(one, one, return u64{reduce_add((u32xn)extend(v))});
}
TEST(operations, of_values) {
    check_values<8>();
    if constexpr (whole > 1) check_values<vec::lanes_16>();
}

template <bool Apart> void check_sums_of_rows() {
    if constexpr (Apart)
        SAME(1, 128, 0, random_bytes(1 << 13), memory(1 << 13), {
            using sums = abs_diff_sums_8<16, 8>;
            sums s[8];
            for (int i = 0; i < 8; ++i)
                s[i] = add_abs_diff(sums{}, load_as<u8x16>(a + 16 * i), load_as<u8x16>(b + 16 * i));
            const sums four[] = {s[0], s[1], s[2], s[3]};
            u32 all = reduce_add(s);
            for (u32 least : {0u, 3000u, 5000u, 8000u, 12000u, 65535u}) {
                all = all * 31 + sum_until(four, least);
                least = sum_until(s, least);
                all = all * 31 + sum_until(s, least);
                all = all * 31 + sum_until(s, least + 1);
            }
            return u64{all};
        });
}

TEST(operations, of_sums) {
    for (const unsigned below : {2u, 256u}) {
        const memory x = random_bytes(1 << 13, below), y(1 << 13, below == 2 ? 255 : 100);
#define BYTE_SUMS(pieces, W, B)                            \
    SAME(pieces, 16, 0, x, y, abs_diff_sums_8<W, 256> s{}; \
         for (int i = 0; i < 256; ++i) s = add_abs_diff(s, load_as<B>(a), load_as<B>(b)); return u64{reduce_add(s)})
        BYTE_SUMS(1, 8, u8x16);
        BYTE_SUMS(1, 16, u8x16);
        BYTE_SUMS(whole, lanes, u8xn);
        SAME(whole, 16, 0, x, random_bytes(1 << 13),
             return u64{reduce_add(add_squares(square_sums<u16xn>{}, load_as<u8xn>(a), load_as<u8xn>(b)))});
    }
    check_sums_of_rows<vec::sums_rows_apart>();
    const memory one = single_bytes(vec::lanes);
    SAME(whole, 16, 0, one, one, return u64{any(load_as<u8xn>(a))});
    if constexpr (whole == 2) {
        auto v = load_as<vec::u16xn>(&all_words[0]), w = load_as<vec::u16xn>(&all_words[32]);
        vec::transpose2x2_128(v, w);
        for (int i = 0; i < 16; ++i) EXPECT_TRUE(v[i] == (i < 8 ? i : i + 16) && w[i] == i + 8) << i;
    }
}
}  // namespace
}  // namespace zelt::inline ZELT_LEVEL::operations
#endif
