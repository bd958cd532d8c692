#pragma once  // the vector vocabulary on AVX2; `words` hold what the unpack instructions give: each 128 bits by itself
#include <algorithm>
#include <immintrin.h>

namespace zelt::inline ZELT_LEVEL::vec {
inline __m256i load_register(const u8* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
inline void store_register(u8* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
/// 16 bytes from either place
inline __m256i load_halves(const u8* low, const u8* high) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(low))),
                                   _mm_loadu_si128(reinterpret_cast<const __m128i*>(high)), 1);
}
struct alignas(32) byte_table {
    s8 v[32];
};
/// A byte per place of 128 bits, the same in both halves
template <class F> consteval byte_table per_place(F value) {
    byte_table table{};
    for (int i = 0; i < 32; ++i) table.v[i] = static_cast<s8>(value(i % 16));
    return table;
}
inline __m256i load_table(const byte_table& t) { return _mm256_load_si256(reinterpret_cast<const __m256i*>(t.v)); }
/// Two bytes in turn
template <int A, int B> __m256i per_pair() {
    static_assert(A >= -128 && A <= 127 && B >= -128 && B <= 127);
    return _mm256_set1_epi16(static_cast<s16>((A & 255) | B * 256));
}

inline void load(const u8* p, u8xn& a) { a = (u8xn)load_register(p); }
inline void load2(const u8* p, u8xn& a, u8xn& b) {
    const __m256i even = load_halves(p, p + 32), odd = load_halves(p + 16, p + 48), low = _mm256_set1_epi16(255);
    a = (u8xn)_mm256_packus_epi16(_mm256_and_si256(even, low), _mm256_and_si256(odd, low));
    b = (u8xn)_mm256_packus_epi16(_mm256_srli_epi16(even, 8), _mm256_srli_epi16(odd, 8));
}
// Three channels: sample i of channel c is byte 3 i + c, so it stands at place (3 i + c) % 16 of whichever of three
// registers; blends by the place modulo 3 sort registers, shuffles sort places. 11 is the inverse of 3 modulo 16.
template <int Channel> constexpr byte_table gather3 = per_place([](int i) { return (3 * i + Channel) % 16; });
template <int Channel> constexpr byte_table spread3 = per_place([](int i) { return 11 * (i + 16 - Channel) % 16; });
template <int Remainder> constexpr byte_table every3 = per_place([](int i) { return i % 3 == Remainder ? -1 : 0; });
/// Places 0, 3, 6... of a, 1, 4... of b, 2, 5... of c
inline __m256i blend3(__m256i a, __m256i b, __m256i c) {
    return _mm256_blendv_epi8(_mm256_blendv_epi8(a, b, load_table(every3<1>)), c, load_table(every3<2>));
}
inline void load3(const u8* p, u8xn& a, u8xn& b, u8xn& c) {
    const __m256i x = load_halves(p, p + 48), y = load_halves(p + 16, p + 64), z = load_halves(p + 32, p + 80);
    a = (u8xn)_mm256_shuffle_epi8(blend3(x, z, y), load_table(gather3<0>));
    b = (u8xn)_mm256_shuffle_epi8(blend3(y, x, z), load_table(gather3<1>));
    c = (u8xn)_mm256_shuffle_epi8(blend3(z, y, x), load_table(gather3<2>));
}
inline void load4(const u8* p, u8xn& a, u8xn& b, u8xn& c, u8xn& d) {
    static constexpr byte_table channels = per_place([](int i) { return i % 4 * 4 + i / 4; });
    const auto four = [=](int at) {
        return _mm256_shuffle_epi8(load_halves(p + at, p + at + 64), load_table(channels));
    };
    const __m256i v0 = four(0), v1 = four(16), v2 = four(32), v3 = four(48);
    const __m256i ab0 = _mm256_unpacklo_epi32(v0, v1), cd0 = _mm256_unpackhi_epi32(v0, v1);
    const __m256i ab1 = _mm256_unpacklo_epi32(v2, v3), cd1 = _mm256_unpackhi_epi32(v2, v3);
    a = (u8xn)_mm256_unpacklo_epi64(ab0, ab1), b = (u8xn)_mm256_unpackhi_epi64(ab0, ab1);
    c = (u8xn)_mm256_unpacklo_epi64(cd0, cd1), d = (u8xn)_mm256_unpackhi_epi64(cd0, cd1);
}

inline void store(u8* p, u8xn a) { store_register(p, (__m256i)a); }
inline void store2(u8* p, u8xn a, u8xn b) {
    const __m256i even = _mm256_unpacklo_epi8((__m256i)a, (__m256i)b);
    const __m256i odd = _mm256_unpackhi_epi8((__m256i)a, (__m256i)b);
    store_register(p, _mm256_permute2x128_si256(even, odd, 0x20));
    store_register(p + 32, _mm256_permute2x128_si256(even, odd, 0x31));
}
inline void store3(u8* p, u8xn a, u8xn b, u8xn c) {
    const __m256i va = _mm256_shuffle_epi8((__m256i)a, load_table(spread3<0>));
    const __m256i vb = _mm256_shuffle_epi8((__m256i)b, load_table(spread3<1>));
    const __m256i vc = _mm256_shuffle_epi8((__m256i)c, load_table(spread3<2>));
    const __m256i x = blend3(va, vb, vc), y = blend3(vb, vc, va), z = blend3(vc, va, vb);
    store_register(p, _mm256_permute2x128_si256(x, y, 0x20));
    store_register(p + 32, _mm256_permute2x128_si256(z, x, 0x30));
    store_register(p + 64, _mm256_permute2x128_si256(y, z, 0x31));
}
inline void store4(u8* p, u8xn a, u8xn b, u8xn c, u8xn d) {
    const __m256i ab0 = _mm256_unpacklo_epi8((__m256i)a, (__m256i)b),
                  ab1 = _mm256_unpackhi_epi8((__m256i)a, (__m256i)b);
    const __m256i cd0 = _mm256_unpacklo_epi8((__m256i)c, (__m256i)d),
                  cd1 = _mm256_unpackhi_epi8((__m256i)c, (__m256i)d);
    const __m256i v0 = _mm256_unpacklo_epi16(ab0, cd0), v1 = _mm256_unpackhi_epi16(ab0, cd0);
    const __m256i v2 = _mm256_unpacklo_epi16(ab1, cd1), v3 = _mm256_unpackhi_epi16(ab1, cd1);
    store_register(p, _mm256_permute2x128_si256(v0, v1, 0x20));
    store_register(p + 32, _mm256_permute2x128_si256(v2, v3, 0x20));
    store_register(p + 64, _mm256_permute2x128_si256(v0, v1, 0x31));
    store_register(p + 96, _mm256_permute2x128_si256(v2, v3, 0x31));
}

inline s16x2n widen(u8xn a) {
    const __m256i zero = _mm256_setzero_si256();
    return {(s16xn)_mm256_unpacklo_epi8((__m256i)a, zero), (s16xn)_mm256_unpackhi_epi8((__m256i)a, zero)};
}
inline u8xn narrow(s16x2n a) { return (u8xn)_mm256_packus_epi16((__m256i)a.lo, (__m256i)a.hi); }
inline u8xn narrow_signed(s16x2n a) { return (u8xn)_mm256_packs_epi16((__m256i)a.lo, (__m256i)a.hi); }
inline u8xn high(s16x2n a) { return narrow({(s16xn)((u16xn)a.lo >> 8), (s16xn)((u16xn)a.hi >> 8)}); }
inline u8xn round_high(s16x2n a) { return high(a + 128); }
inline s16x2n operator+(s16x2n a, u8xn b) { return a + widen(b); }
inline s16x2n difference(u8xn a, u8xn b) { return widen(a) - widen(b); }
inline s16x2n sub_sat(s16x2n a, s16x2n b) {
    return {(s16xn)_mm256_subs_epi16((__m256i)a.lo, (__m256i)b.lo),
            (s16xn)_mm256_subs_epi16((__m256i)a.hi, (__m256i)b.hi)};
}
/// floor((256 a + filler) F / 65536) for bytes a, signed ones where the least is negative
constexpr bool product_is_exact(int F, int least, int filler, int offset) {
    for (int a = least; a < least + 256; ++a)
        if (((a * 256 + filler) * F >> 16) - offset != (F * (a - least - 128) + 128) >> 8) return false;
    return filler < 256;
}
/// One high-half multiplication of 256 a + filler, where the filler, the low byte that the unpacking takes in place of
/// zero, stands for the rounding. With a - 128 it does for some factors; others need a itself and an offset.
template <int F> s16x2n centred_product(u8xn a) {
    constexpr int filler = (32768 + F - 1) / F;
    const __m256i factor = _mm256_set1_epi16(F);
    if constexpr (product_is_exact(F, -128, filler, 0)) {
        const __m256i fill = _mm256_set1_epi8(filler), centred = (__m256i)(a ^ 128);
        return {(s16xn)_mm256_mulhi_epi16(_mm256_unpacklo_epi8(fill, centred), factor),
                (s16xn)_mm256_mulhi_epi16(_mm256_unpackhi_epi8(fill, centred), factor)};
    } else {
        constexpr int offset = (128 * F - 128) / 256;
        static_assert(product_is_exact(F, 0, 0, offset));
        const __m256i zero = _mm256_setzero_si256();
        return s16x2n{(s16xn)_mm256_mulhi_epu16(_mm256_unpacklo_epi8(zero, (__m256i)a), factor),
                      (s16xn)_mm256_mulhi_epu16(_mm256_unpackhi_epi8(zero, (__m256i)a), factor)} -
               splat(offset);
    }
}
inline s16x2n mul_q15(s16x2n a, int b) {
    const __m256i factor = _mm256_set1_epi16(static_cast<s16>(b));
    return {(s16xn)_mm256_mulhrs_epi16((__m256i)a.lo, factor), (s16xn)_mm256_mulhrs_epi16((__m256i)a.hi, factor)};
}
template <int N> s16x2n shift_add(s16x2n a, s16x2n b) { return a + (b >> N); }
template <int N> u8xn shift_insert(u8xn a, u8xn b) {
    const u8xn low = u8xn{} + static_cast<u8>(255 >> N);
    const u8xn shifted = (u8xn)((u16xn)b >> N);
    return (a & ~low) | (shifted & low);
}
inline bool any(u8xn mask) { return _mm256_movemask_epi8((__m256i)mask) != 0; }

template <int A, int B> s16x2n dot(u8xn a, u8xn b) {
    const __m256i factors = per_pair<A, B>();
    return {(s16xn)_mm256_maddubs_epi16(_mm256_unpacklo_epi8((__m256i)a, (__m256i)b), factors),
            (s16xn)_mm256_maddubs_epi16(_mm256_unpackhi_epi8((__m256i)a, (__m256i)b), factors)};
}

struct triples {  // pairs of the first two and of the last two
    __m256i ab_lo, ab_hi, cb_lo, cb_hi;
};
inline triples interleave(u8xn a, u8xn b, u8xn c) {
    return {_mm256_unpacklo_epi8((__m256i)a, (__m256i)b), _mm256_unpackhi_epi8((__m256i)a, (__m256i)b),
            _mm256_unpacklo_epi8((__m256i)c, (__m256i)b), _mm256_unpackhi_epi8((__m256i)c, (__m256i)b)};
}
/// B is shared out between the two pairs so that neither product sum leaves 16 bits, where 128 * 255 just fits.
template <int A, int B, int C> s16x2n dot(triples v) {
    constexpr int b0 = std::min({B, 128 - std::max(A, 0), 127});
    static_assert(B >= 0 && B - b0 + std::max(C, 0) <= 128);
    const __m256i ab = per_pair<A, b0>(), cb = per_pair<C, B - b0>();
    return s16x2n{(s16xn)_mm256_maddubs_epi16(v.ab_lo, ab), (s16xn)_mm256_maddubs_epi16(v.ab_hi, ab)} +
           s16x2n{(s16xn)_mm256_maddubs_epi16(v.cb_lo, cb), (s16xn)_mm256_maddubs_epi16(v.cb_hi, cb)};
}

inline void load_16(const u8* p, s16x2n& a) { a = {(s16xn)load_register(p), (s16xn)load_register(p + 32)}; }
inline void store_16(u8* p, s16x2n a) { store_register(p, (__m256i)a.lo), store_register(p + 32, (__m256i)a.hi); }

template <int A, int B, int C> s16xn dot_q10(s16xn a, s16xn b, s16xn c) {
    const __m256i ab = _mm256_set1_epi32((A & 0xFFFF) | B * 65536), cr = _mm256_set1_epi32((C & 0xFFFF) | 512 << 16);
    const __m256i one = _mm256_set1_epi16(1);  // times 512 is the rounding
    const auto sum = [&](__m256i two, __m256i third) {
        return _mm256_srai_epi32(_mm256_add_epi32(_mm256_madd_epi16(two, ab), _mm256_madd_epi16(third, cr)), 10);
    };
    return (s16xn)_mm256_packs_epi32(
        sum(_mm256_unpacklo_epi16((__m256i)a, (__m256i)b), _mm256_unpacklo_epi16((__m256i)c, one)),
        sum(_mm256_unpackhi_epi16((__m256i)a, (__m256i)b), _mm256_unpackhi_epi16((__m256i)c, one)));
}
template <int A, int B, int C> s16x2n dot_q10(s16x2n a, s16x2n b, s16x2n c) {
    return {dot_q10<A, B, C>(a.lo, b.lo, c.lo), dot_q10<A, B, C>(a.hi, b.hi, c.hi)};
}

using pairs = __m256i;  // a pair is a word
constexpr int eight_at(int i) { return i % 2 * 2 + i / 2; }
inline u16x8 pack(u32x4 a, u32x4 b) { return (u16x8)_mm_packus_epi32((__m128i)a, (__m128i)b); }
inline void store_pairs(u8* p, u16x8 left, u16x8 right) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), (__m128i)(left | right << 8));
}

constexpr int reach = 16;
template <int Windows> pairs gather_pairs(const u8* row, const std::ptrdiff_t* at, const u8* masks) {
    const u8 *low = row + at[0], *high = row + at[1];
    pairs p = _mm256_shuffle_epi8(load_halves(low, high), load_register(masks));
    for (int i = 1; i < Windows; ++i)
        p = _mm256_or_si256(
            p, _mm256_shuffle_epi8(load_halves(low + 16 * i, high + 16 * i), load_register(masks + 32 * i)));
    return p;
}
template <int Bytes, int Next> pairs load_pairs(const u8* p) {
    static_assert((Bytes == 1 || Bytes == 4) && (Next == 1 || Next == 2));
    __m256i v = load_register(p);
    if constexpr (Next == 2) {  // every second pixel of two registers
        const __m256i w = load_register(p + 32), low = _mm256_set1_epi16(255);
        v = Bytes == 1 ? _mm256_packus_epi16(_mm256_and_si256(v, low), _mm256_and_si256(w, low))
                       : (__m256i)_mm256_shuffle_ps((__m256)v, (__m256)w, 0x88);
        v = _mm256_permute4x64_epi64(v, 0xD8);
    }
    static constexpr byte_table by_channel = per_place([](int i) { return i % 2 * 4 + i / 2 % 4 + i / 8 * 8; });
    return Bytes == 1 ? v : _mm256_shuffle_epi8(v, load_table(by_channel));
}
inline s16xn weighted_sum(pairs p, u8xn w) { return (s16xn)_mm256_maddubs_epi16(p, (__m256i)w); }
inline s16xn weighted_sum(s16xn sum, pairs p, u8xn w) { return sum + weighted_sum(p, w); }
inline u8xn narrow_q6(s16x2n a) { return narrow({(s16xn)((u16xn)a.lo >> 6), (s16xn)((u16xn)a.hi >> 6)}); }
inline u8xn narrow_ordered(s16x2n a) { return (u8xn)_mm256_permute4x64_epi64((__m256i)narrow(a), 0xD8); }
inline u8xn narrow_q6_ordered(s16x2n a) { return (u8xn)_mm256_permute4x64_epi64((__m256i)narrow_q6(a), 0xD8); }
}  // namespace zelt::inline ZELT_LEVEL::vec
