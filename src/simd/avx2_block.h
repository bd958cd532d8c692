#pragma once  // the vocabulary of sample blocks on AVX2, in registers of 128 bits where a row or two fill no more
#include <cstring>

namespace zelt::inline ZELT_LEVEL::vec {
template <class V> constexpr bool is_wide = sizeof(V) == 32;

template <class V> V hide_from_optimizer(V v) {
    asm("" : "+x"(v));
    return v;
}

inline __m128i load_xmm(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
template <class T> int load_as_int(const void* p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return static_cast<int>(v);
}

/// R rows of `Bytes` bytes each, in one register of 128 bits
template <int Bytes, int R> __m128i pack_rows(const u8* p, std::ptrdiff_t stride) {
    static_assert(R >= 1 && Bytes * R <= 16);
    if constexpr (Bytes == 16) {
        return load_xmm(p);
    } else if constexpr (Bytes == 8) {
        const __m128i v = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
        if constexpr (R == 1) return v;
        return _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(v), reinterpret_cast<const __m64*>(p + stride)));
    } else if constexpr (Bytes == 4) {
        __m128i v = _mm_cvtsi32_si128(load_as_int<u32>(p));
        if constexpr (R >= 2) v = _mm_insert_epi32(v, load_as_int<u32>(p + stride), 1);
        if constexpr (R >= 3) v = _mm_insert_epi32(v, load_as_int<u32>(p + 2 * stride), 2);
        if constexpr (R >= 4) v = _mm_insert_epi32(v, load_as_int<u32>(p + 3 * stride), 3);
        return v;
    } else {
        static_assert(Bytes == 2 && R <= 4, "no form for rows of this width");
        __m128i v = _mm_cvtsi32_si128(load_as_int<u16>(p));
        if constexpr (R >= 2) v = _mm_insert_epi16(v, load_as_int<u16>(p + stride), 1);
        if constexpr (R >= 3) v = _mm_insert_epi16(v, load_as_int<u16>(p + 2 * stride), 2);
        if constexpr (R >= 4) v = _mm_insert_epi16(v, load_as_int<u16>(p + 3 * stride), 3);
        return v;
    }
}

template <int W, int R> auto load_rows(const u8* p, std::ptrdiff_t stride) {
    if constexpr (W == 32 && R == 1)
        return (u8xn)load_register(p);
    else
        return (u8x16)pack_rows<W, R>(p, stride);
}
template <int W, int R> auto load_rows_16(const u8* p, std::ptrdiff_t stride) {
    if constexpr (W * R == 16)
        return (u16xn)_mm256_cvtepu8_epi16(pack_rows<W, R>(p, stride));
    else
        return (u16x8)_mm_cvtepu8_epi16(pack_rows<W, R>(p, stride));
}
template <int W, int R> auto load_rows_16(const s16* samples, std::ptrdiff_t stride) {
    const u8* p = reinterpret_cast<const u8*>(samples);
    if constexpr (W == 16 && R == 1)
        return (u16xn)load_register(p);
    else if constexpr (W == 8 && R == 2)
        return (u16xn)load_halves(p, p + 2 * stride);
    else
        return (u16x8)pack_rows<2 * W, R>(p, 2 * stride);
}
template <int W, int R> auto load_rows_16(const u16* p, std::ptrdiff_t stride) {
    return load_rows_16<W, R>(reinterpret_cast<const s16*>(p), stride);
}
/// Each byte of a row once for sums, once for differences
template <int W, int R> auto double_rows(const u8* p, std::ptrdiff_t stride) {
    const auto eight = [](const u8* from) {
        long long v;
        std::memcpy(&v, from, sizeof v);
        return v;
    };
    static_assert(W == 16 ? R == 1 : W == 8 && R <= 2, "no form for rows of this width");
    if constexpr (W == 16)
        return _mm256_broadcastsi128_si256(load_xmm(p));
    else if constexpr (R == 2)
        return _mm256_blend_epi32(_mm256_set1_epi64x(eight(p)), _mm256_set1_epi64x(eight(p + stride)), 0xF0);
    else
        return _mm_set1_epi64x(eight(p));
}
template <int W, int R> auto paired_residual(const u8* a, const u8* b, std::ptrdiff_t sa, std::ptrdiff_t sb) {
    if constexpr (W * R == 16) {
        constexpr int together = 0x01010101, apart = static_cast<int>(0xFF01FF01);
        const __m256i signs =
            W == 16 ? _mm256_setr_epi32(together, together, together, together, apart, apart, apart, apart)
                    : _mm256_setr_epi32(together, together, apart, apart, together, together, apart, apart);
        return hide_from_optimizer((u16xn)_mm256_maddubs_epi16(double_rows<W, R>(a, sa), signs) -
                                   (u16xn)_mm256_maddubs_epi16(double_rows<W, R>(b, sb), signs));
    } else {
        const __m128i signs = _mm_set_epi64x(static_cast<s64>(0xFF01FF01FF01FF01), 0x0101010101010101);
        return hide_from_optimizer((u16x8)_mm_maddubs_epi16(double_rows<W, R>(a, sa), signs) -
                                   (u16x8)_mm_maddubs_epi16(double_rows<W, R>(b, sb), signs));
    }
}
template <int W, int R, class V> void store_rows_16(s16* p, std::ptrdiff_t stride, V v) {
    static_assert(R == 1 || R * W <= 8, "no form for rows of this width");
    if constexpr (W == 16) {
        store_register(reinterpret_cast<u8*>(p), (__m256i)v);
    } else if constexpr (W == 8) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p), (__m128i)v);
    } else if constexpr (W == 4) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), (__m128i)v);
        if constexpr (R == 2) _mm_storeh_pi(reinterpret_cast<__m64*>(p + stride), _mm_castsi128_ps((__m128i)v));
    } else {
        static_assert(W == 2, "no form for rows of this width");
        const u32x4 pairs = (u32x4)v;
        for (int i = 0; i < R; ++i) {
            const u32 pair = pairs[i];
            std::memcpy(p + i * stride, &pair, sizeof pair);
        }
    }
}

inline s16x2n difference_words(u8xn a, u8xn b) {
    return dot<1, -1>(a, b);
}  // of each 128 bits the low and the high half
inline void store_widened(s16* p, s16x2n d) {
    u8* to = reinterpret_cast<u8*>(p);
    store_register(to, _mm256_permute2x128_si256((__m256i)d.lo, (__m256i)d.hi, 0x20));
    store_register(to + lanes, _mm256_permute2x128_si256((__m256i)d.lo, (__m256i)d.hi, 0x31));
}

inline u32xn extend(u32x4 s) { return (u32xn)_mm256_zextsi128_si256((__m128i)s); }
inline u32xn extend(u32xn s) { return s; }
inline u16xn extend(u16x8 s) { return (u16xn)_mm256_zextsi128_si256((__m128i)s); }
inline u16xn extend(u16xn s) { return s; }

inline u32 reduce_add(u32x4 s) {
    const __m128i two = _mm_add_epi32((__m128i)s, _mm_shuffle_epi32((__m128i)s, 0xEE));
    return static_cast<u32>(_mm_cvtsi128_si32(_mm_add_epi32(two, _mm_shuffle_epi32(two, 0x55))));
}
inline u32x4 fold(u32xn s) {
    return (u32x4)_mm256_castsi256_si128((__m256i)s) + (u32x4)_mm256_extracti128_si256((__m256i)s, 1);
}
inline u32 reduce_add(u32xn s) { return reduce_add(fold(s)); }

template <class B> struct abs_diff_sums_8 { u32_of<B> in_64_bits; };
inline abs_diff_sums_8<u8x16> add_abs_diff(abs_diff_sums_8<u8x16> s, u8x16 a, u8x16 b) {
    return {s.in_64_bits + (u32x4)_mm_sad_epu8((__m128i)a, (__m128i)b)};
}
inline abs_diff_sums_8<u8xn> add_abs_diff(abs_diff_sums_8<u8xn> s, u8xn a, u8xn b) {
    return {s.in_64_bits + (u32xn)_mm256_sad_epu8((__m256i)a, (__m256i)b)};
}
inline u32 reduce_add(abs_diff_sums_8<u8x16> s) {
    const __m128i v = (__m128i)s.in_64_bits;
    return static_cast<u32>(_mm_cvtsi128_si32(_mm_add_epi32(v, _mm_shuffle_epi32(v, 0xEE))));
}
inline u32 reduce_add(abs_diff_sums_8<u8xn> s) { return reduce_add(abs_diff_sums_8<u8x16>{fold(s.in_64_bits)}); }

template <class V> V abs(V a) {
    if constexpr (is_wide<V>)
        return (V)_mm256_abs_epi16((__m256i)a);
    else
        return (V)_mm_abs_epi16((__m128i)a);
}
template <class V> V max(V a, V b) {
    if constexpr (is_wide<V>)
        return (V)_mm256_max_epu16((__m256i)a, (__m256i)b);
    else
        return (V)_mm_max_epu16((__m128i)a, (__m128i)b);
}
template <class V> V average(V a, V b) {
    if constexpr (is_wide<V>)
        return (V)_mm256_avg_epu16((__m256i)a, (__m256i)b);
    else
        return (V)_mm_avg_epu16((__m128i)a, (__m128i)b);
}
template <class V> V sub_sat(V a, V b) {
    if constexpr (is_wide<V>)
        return (V)_mm256_subs_epi16((__m256i)a, (__m256i)b);
    else
        return (V)_mm_subs_epi16((__m128i)a, (__m128i)b);
}
template <class V> V add_sat(V a, V b) {
    if constexpr (is_wide<V>)
        return (V)_mm256_adds_epi16((__m256i)a, (__m256i)b);
    else
        return (V)_mm_adds_epi16((__m128i)a, (__m128i)b);
}
template <class V> V add_sat_unsigned(V a, V b) {
    if constexpr (is_wide<V>)
        return (V)_mm256_adds_epu16((__m256i)a, (__m256i)b);
    else
        return (V)_mm_adds_epu16((__m128i)a, (__m128i)b);
}
/// Sums of neighbouring products of signed values, modulo 2^32
template <class V> u32_of<V> multiply_pairs(V a, V b) {
    if constexpr (is_wide<V>)
        return (u32xn)_mm256_madd_epi16((__m256i)a, (__m256i)b);
    else
        return (u32x4)_mm_madd_epi16((__m128i)a, (__m128i)b);
}

/// Magnitudes two by two: in pairs below 8192 none is out of range, and a difference that was saturates. Only such sums
/// saturate, as they have fewer execution ports than plain ones.
template <class V> struct abs_diff_sums_16 { V sum, seen; };
template <class V> void add_abs_diff(abs_diff_sums_16<V>& s, V a, V b) {
    const V one = abs(sub_sat(a, b));
    s.sum += one, s.seen |= one;
}
template <class V> void add_abs_diffs(abs_diff_sums_16<V>& s, V a, V b, V c, V d) {
    const V two = add_sat_unsigned(abs(sub_sat(a, b)), abs(sub_sat(c, d)));
    s.sum += two, s.seen |= two;
}
template <class V> V seen(abs_diff_sums_16<V> s) { return s.seen; }
template <class V> bool exact_abs_diffs(V seen) {
    constexpr short out_of_range = static_cast<short>(0xE000);
    if constexpr (is_wide<V>)
        return _mm256_testz_si256((__m256i)seen, _mm256_set1_epi16(out_of_range));
    else
        return _mm_testz_si128((__m128i)seen, _mm_set1_epi16(out_of_range));
}
template <class V> bool any_sign_bit(V a) {
    if constexpr (is_wide<V>)
        return _mm256_movemask_epi8((__m256i)a) & static_cast<int>(0xAAAAAAAA);
    else
        return _mm_movemask_epi8((__m128i)a) & 0xAAAA;
}

template <class V> u32_of<V> pairwise_add_accumulate(u32_of<V> s, V a) { return s + multiply_pairs(a, V{} + 1); }
/// 2^15 has no signed form, its negative has.
template <class V> u32_of<V> pairwise_add_accumulate_abs(u32_of<V> s, V a) {
    return s + multiply_pairs(V{} - a, V{} + static_cast<u16>(-1));
}

/// Differences saturate: one that did makes a sum of squares of 2^29 at least, one that would not and is taken for it
/// only costs time.
template <class V> struct square_sums { u32_of<V> sum, seen; };
template <class V> square_sums<V> add_squares(square_sums<V> s, V a, V b) {
    const V d = sub_sat(a, b);
    const u32_of<V> squares = multiply_pairs(d, d);
    return {s.sum + squares, s.seen | squares};
}
inline square_sums<u16xn> add_squares(square_sums<u16xn> s, u8xn a, u8xn b) {
    const s16x2n d = dot<1, -1>(a, b);
    return {s.sum + (multiply_pairs((u16xn)d.lo, (u16xn)d.lo) + multiply_pairs((u16xn)d.hi, (u16xn)d.hi)), s.seen};
}
template <class V> square_sums<V> add(square_sums<V> a, square_sums<V> b) { return {a.sum + b.sum, a.seen | b.seen}; }
template <class V> bool exact(square_sums<V> s) {
    u32x4 seen;
    if constexpr (is_wide<V>)
        seen = (u32x4)_mm256_castsi256_si128((__m256i)s.seen) | (u32x4)_mm256_extracti128_si256((__m256i)s.seen, 1);
    else
        seen = s.seen;
    return _mm_testz_si128((__m128i)seen, _mm_set1_epi32(7 << 29));
}
template <class V> u32 reduce_add(square_sums<V> s) { return reduce_add(s.sum); }

template <class V> void transpose2x2_16(V& a, V& b) {
    if constexpr (is_wide<V>) {
        const __m256i va = (__m256i)a, vb = (__m256i)b;
        a = (V)_mm256_blend_epi16(va, _mm256_slli_epi32(vb, 16), 0xAA);
        b = (V)_mm256_blend_epi16(_mm256_srli_epi32(va, 16), vb, 0xAA);
    } else {
        const __m128i va = (__m128i)a, vb = (__m128i)b;
        a = (V)_mm_blend_epi16(va, _mm_slli_epi32(vb, 16), 0xAA);
        b = (V)_mm_blend_epi16(_mm_srli_epi32(va, 16), vb, 0xAA);
    }
}
template <class V> void transpose2x2_32(V& a, V& b) {
    if constexpr (is_wide<V>) {
        const __m256 va = (__m256)a, vb = (__m256)b;
        a = (V)_mm256_shuffle_ps(va, vb, 0x88), b = (V)_mm256_shuffle_ps(va, vb, 0xDD);
    } else {
        const __m128 va = (__m128)a, vb = (__m128)b;
        a = (V)_mm_shuffle_ps(va, vb, 0x88), b = (V)_mm_shuffle_ps(va, vb, 0xDD);
    }
}
template <class V> void transpose2x2_64(V& a, V& b) {
    if constexpr (is_wide<V>) {
        const __m256i va = (__m256i)a, vb = (__m256i)b;
        a = (V)_mm256_unpacklo_epi64(va, vb), b = (V)_mm256_unpackhi_epi64(va, vb);
    } else {
        const __m128i va = (__m128i)a, vb = (__m128i)b;
        a = (V)_mm_unpacklo_epi64(va, vb), b = (V)_mm_unpackhi_epi64(va, vb);
    }
}
template <class V> void transpose2x2_128(V& a, V& b) {
    const __m256i va = (__m256i)a, vb = (__m256i)b;
    a = (V)_mm256_blend_epi32(va, vb, 0xF0), b = (V)_mm256_permute2x128_si256(va, vb, 0x21);
}
}  // namespace zelt::inline ZELT_LEVEL::vec
