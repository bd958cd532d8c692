// The vocabulary's operations beside their definition, over the whole range that the contract states. Compiled for each
// level with the level's own flags.
#include "simd/level.h"
#if ZELT_SIMD && !defined(ZELT_GENERIC)
#include "simd/vocabulary.h"
// after the operations that it is compared with
#include "simd/generic.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

// within the level, so that what a back end has hides what it takes from the definition, as in a kernel
namespace zelt::inline ZELT_LEVEL::operations {
namespace {
using memory = std::vector<u8>;
constexpr int whole = vec::lanes / 16;  // pieces of 16 bytes in a register

// A body compiled twice: over the target's operations, and over their definition
#define OVER(form, ...)                                                                        \
    []([[maybe_unused]] const u8* a, [[maybe_unused]] const u8* b, [[maybe_unused]] u8* out) { \
        using namespace form;                                                                  \
        __VA_ARGS__;                                                                           \
    }
#define BOTH(...) OVER(vec, __VA_ARGS__), OVER(generic, __VA_ARGS__)
using operation = void(const u8* a, const u8* b, u8* out);
using reduction = u64(const u8* a, const u8* b, u8*);

/// What a body reads and writes for each 16 bytes of a register
struct sizes {
    int a, b, out;
};
void agree(const char* name, int pieces, sizes s, const memory& a, const memory& b, operation target, operation model) {
    memory ours(static_cast<std::size_t>(pieces * s.out)), theirs = ours;
    const u8 *pa = a.data(), *pb = b.data(), *end_a = pa + a.size(), *end_b = pb + b.size();
    for (; pa + pieces * s.a <= end_a && pb + pieces * s.b <= end_b; pa += pieces * s.a, pb += pieces * s.b) {
        target(pa, pb, ours.data());
        for (int i = 0; i < pieces; ++i) model(pa + i * s.a, pb + i * s.b, theirs.data() + i * s.out);
        ASSERT_EQ(ours, theirs) << name << " at " << pa - a.data() << ", " << pb - b.data();
    }
}
/// Sums over a register, with bit 32 set where they are not exact; those of the definition add up piece by piece.
void agree_if_exact(const char* name, int pieces, const memory& a, const memory& b, bool must, reduction target,
                    reduction model) {
    const u64 ours = target(a.data(), b.data(), nullptr);
    u64 theirs = 0;
    for (int i = 0; i < pieces; ++i) theirs += model(a.data() + 16 * i, b.data() + 16 * i, nullptr);
    EXPECT_FALSE(must && ours >> 32) << name;
    EXPECT_TRUE(ours >> 32 || ours == static_cast<u32>(theirs)) << name << ": " << ours << ", " << theirs;
}

template <class V> V from(const u8* p) {
    V v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
template <class V> void to(u8* p, V v) { std::memcpy(p, &v, sizeof v); }
template <class V> memory bytes_of(V v) {
    memory all(sizeof v);
    to(all.data(), v);
    return all;
}

std::minstd_rand source;
memory random_bytes(std::size_t count, unsigned below = 256) {
    memory all(count);
    for (u8& v : all) v = static_cast<u8>((source() >> 8) % below);
    return all;
}
/// Values of so many bits, of either sign, mixed with the extremes
memory random_words(std::size_t count, int bits) {
    memory all(2 * count);
    for (std::size_t i = 0; i < count; ++i) {
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
/// Words that are in memory, in widened order
template <class V> V widened_order(const u8* p, int (*eight_at)(int)) {
    u8 v[sizeof(V)];
    for (int i = 0; i < static_cast<int>(sizeof v / 16); ++i) std::memcpy(v + 16 * i, p + 16 * eight_at(i), 16);
    return from<V>(v);
}

// clang-format off
#define BYTES u8xn x, y; load(a, x), load(b, y)
#define WORDS s16x2n v, w; load_16(a, v), load_16(b, w)
#define WIDENED const s16x2n v = widened_order<s16x2n>(a, eight_at)
#define ORDERED s16x2n v; load_16(a, v)
#define WIDE(...) store_widened(reinterpret_cast<s16*>(out), __VA_ARGS__)

TEST(operations, of_bytes) {
    memory low(1 << 16), high(1 << 16);  // every pair
    for (std::size_t i = 0; i < low.size(); ++i) low[i] = static_cast<u8>(i), high[i] = static_cast<u8>(i >> 8);
    const auto check = [&](const char* name, int out, operation target, operation model) {
        agree(name, whole, {16, 16, out}, low, high, target, model);
    };
    check("load, store", 16, BOTH(BYTES; store(out, x ^ y)));
    check("store2", 32, BOTH(BYTES; store2(out, x, y)));
    check("store3", 48, BOTH(BYTES; store3(out, x, y, x + y)));
    check("store4", 64, BOTH(BYTES; store4(out, x, y, x + y, x - y)));
    check("widen, add_wide", 32, BOTH(BYTES; WIDE(add_wide(widen(x) << 7, y))));
    check("difference", 32, BOTH(BYTES; WIDE(difference(x, y))));
    check("dot: difference", 32, BOTH(BYTES; WIDE(dot<1, -1>(x, y))));
    check("dot: positive", 32, BOTH(BYTES; WIDE(dot<127, 1>(x, y))));
    check("dot: opposed", 32, BOTH(BYTES; WIDE(dot<-128, 127>(x, y))));
    check("dot: negative", 32, BOTH(BYTES; WIDE(dot<-64, -64>(x, y))));
    check("dot of three: all", 32, BOTH(BYTES; WIDE(dot<77, 150, 29>(interleave(x, y, x ^ y)))));
    check("dot of three: B", 32, BOTH(BYTES; WIDE(dot<0, 254, -128>(interleave(x, y, x + y)))));
    check("dot of three: B, C", 32, BOTH(BYTES; WIDE(dot<-128, 128, 127>(interleave(x, y, x - y)))));
    check("centred_product: filler", 32, BOTH(BYTES; WIDE(centred_product<359>(x) - widen(y))));
    check("centred_product: offset", 32, BOTH(BYTES; WIDE(centred_product<454>(x) - widen(y))));
    check("shift_insert", 16, BOTH(BYTES; store(out, shift_insert<1>(x, y) ^ shift_insert<7>(y, x))));
    check("shift_insert", 16, BOTH(BYTES; store(out, shift_insert<3>(x, y) ^ shift_insert<5>(y, x))));
}

TEST(operations, of_words) {
    for (int bits = 1; bits <= 16; ++bits) {
        const memory other = random_words(1 << 16, bits), ten_bits = random_words(1 << 16, 11);
        const auto check = [&](const char* name, const memory& first, operation target, operation model) {
            agree(name, whole, {32, 32, 32}, first, other, target, model);
        };
        check("arithmetic", all_words, BOTH(WORDS;
            store_16(out, clamp(v + w - (v << 3) + (w >> 5) + 77, -9000, 20000))));
        check("sub_sat", all_words, BOTH(WORDS; store_16(out, sub_sat(v, w))));
        check("shift_add", all_words, BOTH(WORDS; store_16(out, shift_add<8>(v, w) - shift_add<1>(w, v) + splat(5))));
        check("mul_q15", all_words, BOTH(WORDS;
            store_16(out, mul_q15(v, -32767) + mul_q15(v, 1436) + mul_q15(w, 32767))));
        check("dot_q10", all_words, BOTH(WORDS; store_16(out, dot_q10<308, 600, -116>(v, w, v))));
        check("dot_q10", ten_bits, BOTH(WORDS; store_16(out, dot_q10<-32000, 512, 32767>(v, w >> 1, v))));
    }
    const auto check = [](const char* name, std::size_t count, operation target, operation model) {
        memory in = all_words;
        in.resize(2 * count);
        agree(name, whole, {32, 0, 16}, in, in, target, model);
    };
    check("narrow", 1 << 16, BOTH(WIDENED; store(out, narrow(v))));
    check("narrow_signed", 1 << 16, BOTH(WIDENED; store(out, narrow_signed(v))));
    check("high", 1 << 16, BOTH(WIDENED; store(out, high(v))));
    check("round_high", (1 << 16) - 128, BOTH(WIDENED; store(out, round_high(v))));
    check("narrow_q6", 1 << 14, BOTH(WIDENED; store(out, narrow_q6(v))));
    check("narrow_ordered", 1 << 16, BOTH(ORDERED; store(out, narrow_ordered(v))));
    check("narrow_q6_ordered", 1 << 14, BOTH(ORDERED; store(out, narrow_q6_ordered(v))));
}

TEST(operations, of_channels) {
    const memory in = random_bytes(1 << 13);
    const auto check = [&](int channels, operation target, operation model) {
        agree("load2, 3, 4", whole, {16 * channels, 0, 16}, in, in, target, model);
    };
    check(2, BOTH(u8xn x, y; load2(a, x, y), store(out, x + y * 3)));
    check(3, BOTH(u8xn x, y, z; load3(a, x, y, z), store(out, x + y * 3 + z * 5)));
    check(4, BOTH(u8xn x, y, z, t; load4(a, x, y, z, t), store(out, x + y * 3 + z * 5 + t * 7)));
}

// --------------------------------------------------------------------------------------------------------------- pairs

#define WEIGHTS                                                                                          \
    const u16x8 of_left = {0, 127, 1, 64, 51, 8, 3, 2}, of_right = {127, 1, 127, 64, 77, 0, 5, 126};     \
    u8 table[lanes];                                                                                     \
    for (int e = 0; e < lanes / 16; ++e) store_pairs(table + 16 * e, of_left, of_right);                 \
    u8xn weights;                                                                                        \
    load(table, weights)

template <int Bytes, int Next> void check_load_pairs(const memory& row) {
    agree("load_pairs", whole, {16 * Next, 0, 16}, row, row,
          BOTH(WEIGHTS; to(out, weighted_sum(load_pairs<Bytes, Next>(a), weights))));
}
/// Places in a reach, 0x80 for others
u16x8 mask(const u8* places, int start, int reach) {
    u16x8 v;
    for (int i = 0; i < 8; ++i) {
        const bool inside = places[i] >= start && places[i] < start + reach;
        v[i] = static_cast<u16>(inside ? places[i] - start : 0x80);
    }
    return v;
}
/// An eight has the place of its windows, then the places in them of its left and its right bytes.
template <int Windows> void check_gather_pairs(const memory& row) {
    for (int n = 0; n < 100; ++n)
        agree("gather_pairs", whole, {0, 17, 16}, row, random_bytes(17 * whole, 16 * Windows), BOTH(
            WEIGHTS;
            constexpr int eights = lanes / 16, count = (16 * Windows + reach - 1) / reach;
            u8 masks[lanes * count];
            std::ptrdiff_t at[eights];
            for (int e = 0; e < eights; ++e) {
                const u8* places = b + 17 * e;
                at[e] = *places++;
                for (int k = 0; k < count; ++k)
                    store_pairs(masks + lanes * k + 16 * e, mask(places, reach * k, reach),
                                mask(places + 8, reach * k, reach));
            }
            to(out, weighted_sum(s16xn{} + 1000, gather_pairs<Windows>(a, at, masks), weights))));
}
TEST(operations, of_pairs) {
    const memory row = random_bytes(256);
    check_load_pairs<1, 1>(row), check_load_pairs<1, 2>(row), check_load_pairs<4, 1>(row), check_load_pairs<4, 2>(row);
    check_gather_pairs<1>(row), check_gather_pairs<2>(row), check_gather_pairs<3>(row), check_gather_pairs<4>(row);
    check_gather_pairs<8>(row);
    agree("pack", 1, {32, 0, 16}, row, row, BOTH(to(out, pack(from<u32x4>(a) & 65535, from<u32x4>(a + 16) >> 16))));
}

// -------------------------------------------------------------------------------------------------------------- blocks

constexpr int stride = 37;
/// Rows as lanes of type To, zeros after them
template <class To, class T> memory packed(const T* p, int w, int r, std::size_t size) {
    memory all(size);
    for (int i = 0; i < w * r; ++i) to(all.data() + i * sizeof(To), static_cast<To>(p[i / w * stride + i % w]));
    return all;
}
template <int W, int R> void check_rows() {
    const memory m = random_bytes(20 * stride), n = random_bytes(20 * stride);
    if constexpr (rows_fit(W, R, 1, vec::lanes)) {
        const auto v = vec::load_rows<W, R>(m.data(), stride);
        EXPECT_EQ(bytes_of(v), packed<u8>(m.data(), W, R, sizeof v)) << W << 'x' << R;
    }
    if constexpr (rows_fit(W, R, 2, vec::lanes)) {
        s16 words[10 * stride], written[10 * stride] = {};
        std::memcpy(words, m.data(), sizeof words);
        const auto v = vec::load_rows_16<W, R>(words, stride);
        EXPECT_EQ(bytes_of(v), packed<u16>(words, W, R, sizeof v)) << W << 'x' << R;
        EXPECT_EQ(bytes_of(vec::load_rows_16<W, R>(m.data(), stride)), packed<u16>(m.data(), W, R, sizeof v));
        if constexpr (W * R <= 8 || W == vec::lanes_16) {
            vec::store_rows_16<W, R>(written, stride, v);
            EXPECT_EQ(packed<u16>(written, W, R, sizeof v), bytes_of(v)) << W << 'x' << R;
            for (int i = 0; i < 10 * stride; ++i) EXPECT_TRUE((i % stride < W && i / stride < R) || !written[i]) << i;
        }
        if constexpr (W >= 8 && (W * R == 8 || W * R == vec::lanes_16)) {
            memory sums, differences, expected;
            for (int i = 0; i < W * R; i += 8) {
                const int at = i / W * stride + i % W;
                const memory both = bytes_of(generic::paired_residual<8, 1>(m.data() + at, n.data() + at, 0, 0));
                sums.insert(sums.end(), both.begin(), both.begin() + 8);
                differences.insert(differences.end(), both.begin() + 8, both.end());
                if (i % W + 8 < W) continue;
                for (memory* part : {&sums, &differences}) {
                    expected.insert(expected.end(), part->begin(), part->end());
                    part->clear();
                }
            }
            EXPECT_EQ(bytes_of(vec::paired_residual<W, R>(m.data(), n.data(), stride, stride)), expected) << W;
        }
    }
}
TEST(operations, of_rows) {
    check_rows<2, 1>(), check_rows<2, 2>(), check_rows<2, 3>(), check_rows<2, 4>(), check_rows<2, 5>();
    check_rows<2, 8>(), check_rows<4, 1>(), check_rows<4, 2>(), check_rows<4, 3>(), check_rows<4, 4>();
    check_rows<8, 1>(), check_rows<8, 2>(), check_rows<16, 1>(), check_rows<32, 1>();
}

#define VALUES using V = u16_of<N>; [[maybe_unused]] V v = from<V>(a), w = from<V>(b)
#define AT(p, i) from<V>(p + 2 * N * (i))
/// On registers of N words
template <int N> void check_values() {
    for (int bits = 1; bits <= 16; ++bits) {
        const memory other = random_words(1 << 16, bits);
        const auto check = [&](const char* name, operation target, operation model) {
            agree(name, N / 8, {16, 16, 16}, all_words, other, target, model);
        };
        check("abs", BOTH(VALUES; to(out, abs(v) + w)));
        check("max", BOTH(VALUES; to(out, max(v, w))));
        check("average", BOTH(VALUES; to(out, average(v, w))));
        check("add_sat", BOTH(VALUES; to(out, add_sat(v, w))));
        check("sub_sat", BOTH(VALUES; to(out, sub_sat(v, w))));
        check("accumulate", BOTH(VALUES; to(out, pairwise_add_accumulate((u32_of<V>)w, (V)(v & 0x7FFF)))));
        check("accumulate_abs", BOTH(VALUES; to(out, pairwise_add_accumulate_abs((u32_of<V>)w, abs(v)))));
        check("transpose2x2_16", BOTH(VALUES; transpose2x2_16(v, w); to(out, v - w)));
        check("transpose2x2_64", BOTH(VALUES; transpose2x2_64(v, w); to(out, v - w)));
        check("transpose2x2_32", BOTH(VALUES; transpose2x2_32(v, w);
            for (std::size_t i = 0; i < sizeof v; i += 16) {  // in any order
                u64 two[4];
                for (std::size_t k = 0; k < 4; ++k)
                    two[k] = u64{((u32_of<V>)v)[i / 4 + k]} << 32 | ((u32_of<V>)w)[i / 4 + k];
                std::sort(two, two + 4);
                for (std::size_t k = 0; k < 4; ++k) to(out + i + 4 * k, static_cast<u32>(two[k] % 4294967291));
            }));
        for (int n = 0; n < 300; ++n) {
            memory x = random_words(8 * N, bits), y = random_words(8 * N, bits);
            if (n % 2) {  // one difference alone
                std::fill(x.begin() + 2, x.end(), u8{});
                std::fill(y.begin() + 2, y.end(), u8{});
            }
            agree_if_exact("abs_diff_sums_16", N / 8, x, y, bits <= 12, BOTH(VALUES;
                abs_diff_sums_16<V> s{};
                add_abs_diff(s, v, w);
                for (int i = 1; i < 7; i += 2) add_abs_diffs(s, AT(a, i), AT(b, i), AT(a, i + 1), AT(b, i + 1));
                return reduce_add(pairwise_add_accumulate(u32_of<V>{}, s.sum)) | u64{!exact_abs_diffs(seen(s))} << 32));
            agree_if_exact("square_sums", N / 8, x, y, bits <= 14, BOTH(VALUES;
                const square_sums<V> first = add_squares(square_sums<V>{}, v, w);
                const square_sums<V> both = add(first, add_squares(square_sums<V>{}, AT(a, 1), AT(b, 1)));
                return reduce_add(both) | u64{!exact(both)} << 32));
        }
    }
    for (int i = 0; i < N; ++i) {
        using V = vec::u16_of<N>;
        V v{};
        EXPECT_FALSE(vec::any_sign_bit(v + 0x7FFF));
        v[i] = 0x8000;
        EXPECT_TRUE(vec::any_sign_bit(v)) << i;
        const auto sums = (vec::u32_of<V>)v;
        EXPECT_EQ(bytes_of(vec::extend(sums)), bytes_of(vec::extend(v)));
        EXPECT_EQ(vec::reduce_add(sums), i % 2 ? 0x80000000 : 0x8000) << i;
        EXPECT_EQ(vec::reduce_add(vec::extend(sums)), i % 2 ? 0x80000000 : 0x8000) << i;
    }
}
TEST(operations, of_values) {
    check_values<8>();
    if constexpr (whole > 1) check_values<vec::lanes_16>();
}

/// Over registers B
template <class B> void check_byte_sums() {
    for (const unsigned below : {2u, 256u})
        for (const std::size_t times : {1, 7, 256}) {
            const memory x = random_bytes(times * sizeof(B), below), y(x.size(), below == 2 ? 255 : 100);
            vec::abs_diff_sums_8<B> ours{};
            generic::abs_diff_sums_8<u8x16> theirs{};
            for (std::size_t i = 0; i < x.size(); i += sizeof(B))
                ours = vec::add_abs_diff(ours, from<B>(&x[i]), from<B>(&y[i]));
            for (std::size_t i = 0; i < x.size(); i += 16)
                theirs = generic::add_abs_diff(theirs, from<u8x16>(&x[i]), from<u8x16>(&y[i]));
            EXPECT_EQ(vec::reduce_add(ours), generic::reduce_add(theirs)) << times;
        }
}
TEST(operations, of_sums) {
    check_byte_sums<u8x16>(), check_byte_sums<vec::u8xn>();
    for (int n = 0; n < 1000; ++n)
        agree_if_exact("square_sums of bytes", whole, random_bytes(vec::lanes, n < 500 ? 256 : 2),
                       random_bytes(vec::lanes), true, BOTH(
            return u64{reduce_add(add_squares(square_sums<u16xn>{}, from<u8xn>(a), from<u8xn>(b)))}));
    for (int i = 0; i < vec::lanes; ++i) {
        vec::u8xn mask{};
        EXPECT_FALSE(vec::any(mask));
        mask[i] = 255;
        EXPECT_TRUE(vec::any(mask)) << i;
    }
    if constexpr (whole == 2) {
        auto v = from<vec::u16xn>(&all_words[0]), w = from<vec::u16xn>(&all_words[32]);
        vec::transpose2x2_128(v, w);
        for (int i = 0; i < 16; ++i) {
            EXPECT_EQ(v[i], i < 8 ? i : i + 16);
            EXPECT_EQ(w[i], i + 8);
        }
    }
}
// clang-format on
}  // namespace
}  // namespace zelt::inline ZELT_LEVEL::operations
#endif
