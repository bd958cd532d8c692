// SPDX-License-Identifier: MIT
#pragma once  // blocks of samples on x86, in registers of 16 bytes where a row or two fill no more

namespace zelt::inline ZELT_LEVEL::vec {
template <class T> T load_as(const void* p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

/// R rows of `Bytes` bytes each, in 16 bytes
template <int Bytes, int R> __m128i pack_rows(const u8* p, std::ptrdiff_t stride) {
    if constexpr (Bytes == 16) {
        return (__m128i)load_unaligned<u8x16>(p);
    } else if constexpr (Bytes == 8) {
        const __m128i v = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
        if constexpr (R == 1) return v;
        return _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(v), reinterpret_cast<const __m64*>(p + stride)));
    } else {
        using element = std::conditional_t<Bytes == 4, int, u16>;
        const auto row = [=](int i) { return static_cast<int>(load_as<element>(p + i * stride)); };
        __m128i v = _mm_cvtsi32_si128(row(0));
        [&]<int... I>(std::integer_sequence<int, I...>) {
            ((v = Bytes == 4 ? _mm_insert_epi32(v, row(I + 1), (I + 1) % 4) : _mm_insert_epi16(v, row(I + 1), I + 1)),
             ...);
        }
        (std::make_integer_sequence<int, R - 1>{});
        return v;
    }
}

template <int W, int R> auto load_rows(const u8* p, std::ptrdiff_t stride) {
    static_assert(rows_fit(W, R, 1, lanes));
    if constexpr (W == lanes)
        return load_register(p);
    else
        return (u8x16)pack_rows<W, R>(p, stride);
}
template <int W, int R> auto load_rows_16(const u8* p, std::ptrdiff_t stride) {
    static_assert(rows_fit(W, R, 2, lanes));
    if constexpr (W * R <= 8)
        return (u16x8)_mm_cvtepu8_epi16(pack_rows<W, R>(p, stride));
    else
        return (u16xn)_mm256_cvtepu8_epi16(pack_rows<W, R>(p, stride));
}
template <int W, int R> auto load_rows_16(const s16* samples, std::ptrdiff_t stride) {
    static_assert(rows_fit(W, R, 2, lanes));
    const u8* p = reinterpret_cast<const u8*>(samples);
    if constexpr (W * R <= 8)
        return (u16x8)pack_rows<2 * W, R>(p, 2 * stride);
    else if constexpr (W == lanes_16)
        return (u16xn)load_register(p);
    else if constexpr (W == 8)
        return (u16xn)load_blocks(p, 2 * stride);
    else
        return (u16xn)_mm256_set_m128i(pack_rows<2 * W, R / 2>(p + R * stride, 2 * stride),
                                       pack_rows<2 * W, R / 2>(p, 2 * stride));
}
template <int W, int R> auto load_rows_16(const u16* p, std::ptrdiff_t stride) {
    return load_rows_16<W, R>(reinterpret_cast<const s16*>(p), stride);
}
inline void store_two_16(s16*& p, two<u16xn> v, std::ptrdiff_t n) {
    store_unaligned(reinterpret_cast<u8*>(p), v.first), store_unaligned(reinterpret_cast<u8*>(p + lanes_16), v.second);
    p += n;
}
template <int W, int R, class V> void store_rows_16(s16* p, std::ptrdiff_t stride, V v) {
    static_assert(rows_fit(W, R, 2, lanes) && W * R * 2 <= sizeof(V) && (sizeof(V) == 16 || W == lanes_16));
    if constexpr (sizeof(V) == 32 || W == 8) {
        store_unaligned(reinterpret_cast<u8*>(p), v);
    } else if constexpr (W == 4) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), (__m128i)v);
        if constexpr (R == 2) _mm_storeh_pi(reinterpret_cast<__m64*>(p + stride), _mm_castsi128_ps((__m128i)v));
    } else {
        for (int i = 0; i < R; ++i) {
            const u32 two = ((u32x4)v)[i];
            std::memcpy(p + i * stride, &two, sizeof two);
        }
    }
}

/// Each 8 bytes of a row once for sums, once for differences
template <int W, int R> auto double_rows(const u8* p, std::ptrdiff_t stride) {
    if constexpr (W == 16)
        return _mm256_broadcastsi128_si256((__m128i)load_unaligned<u8x16>(p));
    else if constexpr (R == 2)
        return _mm256_blend_epi32(_mm256_set1_epi64x(load_as<s64>(p)), _mm256_set1_epi64x(load_as<s64>(p + stride)),
                                  0xF0);
    else
        return _mm_set1_epi64x(load_as<s64>(p));
}
template <int W, int R> auto paired_residual(const u8* a, const u8* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    static_assert(rows_fit(W, R, 2, lanes) && W * R >= 8 && W >= 8);
    using V = u16_of<W * R>;
    static constexpr auto signs = make_table<sizeof(V)>([](int i) { return i % 2 == 1 && i % (2 * W) >= W ? -1 : 1; });
    const V factors = *reinterpret_cast<const V*>(signs.v);
    return hide_from_optimizer((V)maddubs_epi16(double_rows<W, R>(a, sa), factors) -
                               (V)maddubs_epi16(double_rows<W, R>(b, sb), factors));
}

inline void store_widened(s16*& p, s16x2n v, std::ptrdiff_t n) { store_widened(p, v), p += n; }
inline u16xn extend(u16xn v) { return v; }
inline u32xn extend(u32xn v) { return v; }
/// The sum of all 16 bytes' lanes
template <class V> u32x4 fold(V v) {
    if constexpr (sizeof(V) == 16)
        return (u32x4)v;
    else
        return (u32x4)_mm256_castsi256_si128((__m256i)v) + (u32x4)_mm256_extracti128_si256((__m256i)v, 1);
}
#if ZELT_LANES > 16
inline u16xn extend(u16x8 v) { return (u16xn)_mm256_zextsi128_si256((__m128i)v); }
inline u32xn extend(u32x4 v) { return (u32xn)_mm256_zextsi128_si256((__m128i)v); }
inline u32 reduce_add(u32x4 v);
inline u32 reduce_add(u32xn v) { return reduce_add(fold(v)); }
#endif
inline u32 reduce_add(u32x4 v) {
    const u32x4 two = v + (u32x4)_mm_shuffle_epi32((__m128i)v, 0xEE);
    return static_cast<u32>(_mm_cvtsi128_si32((__m128i)(two + (u32x4)_mm_shuffle_epi32((__m128i)two, 0x55))));
}

template <int W, int N> struct abs_diff_sums_8 {
    static_assert(N <= 256);
    std::conditional_t<W % lanes == 0, u32xn, u32x4> in_64_bits;
};
template <int W, int N, class B> abs_diff_sums_8<W, N> add_abs_diff(abs_diff_sums_8<W, N> s, B a, B b) {
    return {s.in_64_bits + (u32_of<B>)sad_epu8(a, b)};
}
template <int W, int N> u32 reduce_add(abs_diff_sums_8<W, N> s) {
    const u32x4 v = fold(s.in_64_bits);
    return static_cast<u32>(_mm_cvtsi128_si32((__m128i)(v + (u32x4)_mm_shuffle_epi32((__m128i)v, 0xEE))));
}

template <int W, int N, int R> u32 reduce_add(const abs_diff_sums_8<W, N> (&rows)[R]) {
    abs_diff_sums_8<W, N> sum = rows[0];
    for (int i = 1; i < R; ++i) sum.in_64_bits += rows[i].in_64_bits;
    return reduce_add(sum);
}
/// Each row's sum becomes one of 16 bits, then a running one.
template <int W, int N, int R> u32 sum_until(const abs_diff_sums_8<W, N> (&rows)[R], u32 least) {
    static_assert(R == 4 || R == 8);
    const auto four = [&](int i) {
        const auto two = [&](int k) {
            return _mm_or_si128((__m128i)fold(rows[k].in_64_bits),
                                _mm_slli_epi32((__m128i)fold(rows[k + 1].in_64_bits), 16));
        };
        return _mm_or_si128(two(i), _mm_slli_epi64(two(i + 2), 32));
    };
    const __m128i first = four(0), last = R == 8 ? four(R - 4) : __m128i{};
    __m128i sums = _mm_add_epi16(_mm_unpacklo_epi64(first, last), _mm_unpackhi_epi64(first, last));
    sums = _mm_add_epi16(sums, _mm_slli_si128(sums, 2));
    sums = _mm_add_epi16(sums, _mm_slli_si128(sums, 4));
    sums = _mm_add_epi16(sums, _mm_slli_si128(sums, 8));
    const __m128i larger = _mm_max_epu16(sums, _mm_set1_epi16(static_cast<s16>(least)));
    const int reached = _mm_movemask_epi8(_mm_cmpeq_epi16(larger, sums)) | 3 << (2 * R - 2);
    u16 all[8];
    std::memcpy(all, &sums, sizeof all);
    return all[__builtin_ctz(static_cast<unsigned>(reached)) / 2];
}

template <class V> V abs(V a) { return (V)abs_epi16(a); }
template <class V> V max(V a, V b) { return (V)max_epu16(a, b); }
template <class V> V average(V a, V b) { return (V)avg_epu16(a, b); }
template <class V> V add_sat(V a, V b) { return (V)adds_epi16(a, b); }
template <class V> V sub_sat(V a, V b) { return (V)subs_epi16(a, b); }

/// Whether Bits are clear in every 32 of a. The mask comes from memory: gcc would make it, in three instructions.
template <u32 Bits, class V> bool all_clear(V a) {
    static constexpr auto mask = make_table<sizeof(V)>([](int i) { return Bits >> i % 4 * 8; });
    if constexpr (sizeof(V) == 16)
        return _mm_testz_si128((__m128i)a, *reinterpret_cast<const __m128i*>(mask.v));
    else
        return _mm256_testz_si256((__m256i)a, *reinterpret_cast<const __m256i*>(mask.v));
}
/// Two by two: in pairs below 8192 no sum is out of range, and a difference that was saturates. Only such sums
/// saturate, as they have fewer execution ports than plain ones.
template <class V> struct abs_diff_sums_16 { V sum, seen; };
template <class V> void add_abs_diff(abs_diff_sums_16<V>& s, V a, V b) {
    const V one = abs(sub_sat(a, b));
    s.sum += one, s.seen |= one;
}
template <class V> void add_abs_diffs(abs_diff_sums_16<V>& s, V a, V b, V c, V d) {
    const V two = (V)adds_epu16(abs(sub_sat(a, b)), abs(sub_sat(c, d)));
    s.sum += two, s.seen |= two;
}
template <class V> V seen(abs_diff_sums_16<V> s) { return s.seen; }
template <class V> bool exact_abs_diffs(V seen) { return all_clear<0xE000E000>(seen); }
template <class V> bool any_sign_bit(V a) { return movemask_epi8(a) & static_cast<int>(0xAAAAAAAA); }

/// Sums of neighbouring products of signed values, modulo 2^32
template <class V> u32_of<V> multiply_neighbours(V a, V b) { return (u32_of<V>)madd_epi16(a, b); }
template <class V> u32_of<V> pairwise_add_accumulate(u32_of<V> s, V a) { return s + multiply_neighbours(a, V{} + 1); }
inline u32 reduce_add(u16x8 v) { return reduce_add(pairwise_add_accumulate(u32x4{}, v)); }
#if ZELT_LANES > 16
inline u32 reduce_add(u16xn v) { return reduce_add(pairwise_add_accumulate(u32xn{}, v)); }
#endif
/// 2^15 has no signed form, its negative has.
template <class V> u32_of<V> pairwise_add_accumulate_abs(u32_of<V> s, V a) {
    return s + multiply_neighbours(V{} - a, V{} + static_cast<u16>(-1));
}

/// Differences saturate: one that did makes a sum of squares of 2^29 at least, one that would not and is taken for it
/// only costs time.
template <class V> struct square_sums { u32_of<V> sum, seen; };
template <class V> square_sums<V> add_squares(square_sums<V> s, V a, V b) {
    const V d = sub_sat(a, b);
    const u32_of<V> squares = multiply_neighbours(d, d);
    return {s.sum + squares, s.seen | squares};
}
inline square_sums<u16xn> add_squares(square_sums<u16xn> s, u8xn a, u8xn b) {
    const s16x2n d = dot<1, -1>(a, b);
    return {s.sum + (multiply_neighbours((u16xn)d.lo, (u16xn)d.lo) + multiply_neighbours((u16xn)d.hi, (u16xn)d.hi)),
            s.seen};
}
template <class V> bool exact(square_sums<V> s) { return all_clear<7u << 29>(s.seen); }
template <class V> u32 reduce_add(square_sums<V> s) { return reduce_add(s.sum); }

template <class V> void transpose2x2_16(V& a, V& b) {
    const V first = (V)blend_epi16<0xAA>(a, (V)((u32_of<V>)b << 16));
    b = (V)blend_epi16<0xAA>((V)((u32_of<V>)a >> 16), b), a = first;
}
template <class V> V max_of_neighbours(V a, V b) {
    transpose2x2_16(a, b);
    return max(a, b);
}
template <class V> void transpose2x2_32(V& a, V& b) {
    const V first = shuffle_ps<even>(a, b);
    b = shuffle_ps<odd>(a, b), a = first;
}
template <class V> void transpose2x2_64(V& a, V& b) {
    const V first = (V)unpacklo_epi64(a, b);
    b = (V)unpackhi_epi64(a, b), a = first;
}
template <class V> void transpose2x2_128(V& a, V& b) {
    const __m256i va = (__m256i)a, vb = (__m256i)b;
    a = (V)_mm256_blend_epi32(va, vb, 0xF0), b = (V)_mm256_permute2x128_si256(va, vb, 0x21);
}
}  // namespace zelt::inline ZELT_LEVEL::vec

#undef ZELT_CHOOSE
#undef ZELT_UNARY
#undef ZELT_BINARY
