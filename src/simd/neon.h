// SPDX-License-Identifier: MIT
#pragma once  // the vector vocabulary on NEON, ARMv7 and AArch64 alike
#include <arm_neon.h>

namespace zelt::inline ZELT_LEVEL::vec {
#ifdef __aarch64__
constexpr bool loads_take_an_index = true, loads_step = false;  // stepping is slow on some
constexpr int shared_bytes = 1, registers_at_once = 4;          // a load of a lane takes no index
constexpr std::size_t memset_from = 192, memcpy_from = 96;
#else
constexpr bool loads_take_an_index = false, loads_step = true;
constexpr int shared_bytes = 8, registers_at_once = 2;
constexpr std::size_t memset_from = SIZE_MAX, memcpy_from = 512;
#endif
constexpr bool loads_scale_an_index = false, squares_narrow_bytes = true, pairing_is_free = false;
constexpr bool store3_beats_a_loop = true, sums_rows_apart = false, wide_pixels_need_prefetch = false;
constexpr int stores_ahead = 0;
constexpr std::size_t string_fill_from = SIZE_MAX;
inline void string_fill(u8*, u32, std::size_t) {}  // there is none, and no call of it

inline const u8* load(const u8* p, u8xn& a) {
    a = (u8xn)vld1q_u8(p);
    return p + 16;
}
inline u8* store(u8* p, u8xn a) {
    vst1q_u8(p, (uint8x16_t)a);
    return p + 16;
}
#ifdef __arm__
// Loads of several registers from p on, which is then beyond them. gcc 12 lacks some of the intrinsics and takes those
// of words to be aligned, clang takes those that do not deal to be.
#ifdef __clang__
inline uint8x8x2_t halves_of(uint8x16_t a) { return {{vget_low_u8(a), vget_high_u8(a)}}; }
inline uint8x8x4_t halves_of(uint8x16_t a, uint8x16_t b) {
    return {{vget_low_u8(a), vget_high_u8(a), vget_low_u8(b), vget_high_u8(b)}};
}
#define ZELT_LOAD_NEXT(V, op, ...) \
    const V v = __VA_ARGS__;       \
    p += sizeof v;                 \
    return v
#else
#define ZELT_LOAD_NEXT(V, op, ...)                                                                \
    V v;                                                                                          \
    asm(op " %h0, [%1]!" : "=w"(v), "+r"(p) : "m"(*reinterpret_cast<const u8(*)[sizeof(V)]>(p))); \
    return v
#endif
inline uint8x16x2_t load_16x2(const u8*& p) {
    ZELT_LOAD_NEXT(uint8x16x2_t, "vld1.8", {{vld1q_u8(p), vld1q_u8(p + 16)}});
}
inline uint8x8x2_t load_8x2(const u8*& p) { ZELT_LOAD_NEXT(uint8x8x2_t, "vld1.8", halves_of(vld1q_u8(p))); }
inline uint8x8x4_t load_8x4(const u8*& p) {
    ZELT_LOAD_NEXT(uint8x8x4_t, "vld1.8", halves_of(vld1q_u8(p), vld1q_u8(p + 16)));
}
inline uint8x16x2_t load2_8x2(const u8*& p) { ZELT_LOAD_NEXT(uint8x16x2_t, "vld2.8", vld2q_u8(p)); }
inline uint8x8x4_t load4_8(const u8*& p) { ZELT_LOAD_NEXT(uint8x8x4_t, "vld4.8", vld4_u8(p)); }
inline uint32x4x2_t load2_32x2(const u8*& p) {
    ZELT_LOAD_NEXT(uint32x4x2_t, "vld2.32", vld2q_u32(reinterpret_cast<const u32*>(p)));
}
inline uint32x2x4_t load4_32(const u8*& p) {
    ZELT_LOAD_NEXT(uint32x2x4_t, "vld4.32", vld4_u32(reinterpret_cast<const u32*>(p)));
}
#endif
template <int N> void load_next(const u8*& p, u8xn (&v)[N]) {
    int i = 0;
#ifdef __arm__
    for (; i + 1 < N; i += 2) {
        const uint8x16x2_t two = load_16x2(p);
        v[i] = (u8xn)two.val[0], v[i + 1] = (u8xn)two.val[1];
    }
#endif
    for (; i < N; ++i, p += lanes) load(p, v[i]);
}
#if defined(__arm__) && !defined(__clang__)
// gcc would add up an address for each of the two instructions, and copy registers to make up a tuple.
inline const u8* load2(const u8* p, u8xn& a, u8xn& b) {
    register u8xn v0 asm("q8"), v1 asm("q9");
    asm volatile("vld2.8 {d16-d19}, [%0]!" : "+r"(p), "=w"(v0), "=w"(v1) : : "memory");
    a = v0, b = v1;
    return p;
}
inline const u8* load3(const u8* p, u8xn& a, u8xn& b, u8xn& c) {
    register u8xn v0 asm("q8"), v1 asm("q9"), v2 asm("q10");
    asm volatile("vld3.8 {d16, d18, d20}, [%0]!\n\tvld3.8 {d17, d19, d21}, [%0]!"
                 : "+r"(p), "=w"(v0), "=w"(v1), "=w"(v2)
                 :
                 : "memory");
    a = v0, b = v1, c = v2;
    return p;
}
inline const u8* load4(const u8* p, u8xn& a, u8xn& b, u8xn& c, u8xn& d) {
    register u8xn v0 asm("q8"), v1 asm("q9"), v2 asm("q10"), v3 asm("q11");
    asm volatile("vld4.8 {d16, d18, d20, d22}, [%0]!\n\tvld4.8 {d17, d19, d21, d23}, [%0]!"
                 : "+r"(p), "=w"(v0), "=w"(v1), "=w"(v2), "=w"(v3)
                 :
                 : "memory");
    a = v0, b = v1, c = v2, d = v3;
    return p;
}
inline u8* store2(u8* p, u8xn a, u8xn b) {
    register u8xn v0 asm("q8") = a, v1 asm("q9") = b;
    asm volatile("vst2.8 {d16-d19}, [%0]!" : "+r"(p) : "w"(v0), "w"(v1) : "memory");
    return p;
}
inline u8* store3(u8* p, u8xn a, u8xn b, u8xn c) {
    register u8xn v0 asm("q8") = a, v1 asm("q9") = b, v2 asm("q10") = c;
    asm volatile("vst3.8 {d16, d18, d20}, [%0]!\n\tvst3.8 {d17, d19, d21}, [%0]!"
                 : "+r"(p)
                 : "w"(v0), "w"(v1), "w"(v2)
                 : "memory");
    return p;
}
inline u8* store4(u8* p, u8xn a, u8xn b, u8xn c, u8xn d) {
    register u8xn v0 asm("q8") = a, v1 asm("q9") = b, v2 asm("q10") = c, v3 asm("q11") = d;
    asm volatile("vst4.8 {d16, d18, d20, d22}, [%0]!\n\tvst4.8 {d17, d19, d21, d23}, [%0]!"
                 : "+r"(p)
                 : "w"(v0), "w"(v1), "w"(v2), "w"(v3)
                 : "memory");
    return p;
}
#else
inline const u8* load2(const u8* p, u8xn& a, u8xn& b) {
    const uint8x16x2_t v = vld2q_u8(p);
    a = (u8xn)v.val[0], b = (u8xn)v.val[1];
    return p + 32;
}
inline const u8* load3(const u8* p, u8xn& a, u8xn& b, u8xn& c) {
    const uint8x16x3_t v = vld3q_u8(p);
    a = (u8xn)v.val[0], b = (u8xn)v.val[1], c = (u8xn)v.val[2];
    return p + 48;
}
inline const u8* load4(const u8* p, u8xn& a, u8xn& b, u8xn& c, u8xn& d) {
    const uint8x16x4_t v = vld4q_u8(p);
    a = (u8xn)v.val[0], b = (u8xn)v.val[1], c = (u8xn)v.val[2], d = (u8xn)v.val[3];
    return p + 64;
}
#if defined(__aarch64__) && !defined(__clang__)
// gcc would copy registers to make up a tuple.
inline u8* store2(u8* p, u8xn a, u8xn b) {
    register u8xn v0 asm("v16") = a, v1 asm("v17") = b;
    asm("st2 {v16.16b-v17.16b}, %0" : "=Q"(*reinterpret_cast<u8(*)[32]>(p)) : "w"(v0), "w"(v1));
    return p + 32;
}
inline u8* store3(u8* p, u8xn a, u8xn b, u8xn c) {
    register u8xn v0 asm("v16") = a, v1 asm("v17") = b, v2 asm("v18") = c;
    asm("st3 {v16.16b-v18.16b}, %0" : "=Q"(*reinterpret_cast<u8(*)[48]>(p)) : "w"(v0), "w"(v1), "w"(v2));
    return p + 48;
}
inline u8* store4(u8* p, u8xn a, u8xn b, u8xn c, u8xn d) {
    register u8xn v0 asm("v16") = a, v1 asm("v17") = b, v2 asm("v18") = c, v3 asm("v19") = d;
    asm("st4 {v16.16b-v19.16b}, %0" : "=Q"(*reinterpret_cast<u8(*)[64]>(p)) : "w"(v0), "w"(v1), "w"(v2), "w"(v3));
    return p + 64;
}
#else
inline u8* store2(u8* p, u8xn a, u8xn b) {
    const uint8x16x2_t v = {{(uint8x16_t)a, (uint8x16_t)b}};
    vst2q_u8(p, v);
    return p + 32;
}
inline u8* store3(u8* p, u8xn a, u8xn b, u8xn c) {
    const uint8x16x3_t v = {{(uint8x16_t)a, (uint8x16_t)b, (uint8x16_t)c}};
    vst3q_u8(p, v);
    return p + 48;
}
inline u8* store4(u8* p, u8xn a, u8xn b, u8xn c, u8xn d) {
#ifdef __arm__
    asm volatile("" : "+w"(d));  // or clang spills all four around a constant that it keeps in place
#endif
    const uint8x16x4_t v = {{(uint8x16_t)a, (uint8x16_t)b, (uint8x16_t)c, (uint8x16_t)d}};
    vst4q_u8(p, v);
    return p + 64;
}
#endif
#endif

inline void zip(u8xn& a, u8xn& b) {
    const uint8x16x2_t v = vzipq_u8((uint8x16_t)a, (uint8x16_t)b);
    a = (u8xn)v.val[0], b = (u8xn)v.val[1];
}
inline void unzip(u8xn& a, u8xn& b) {
    const uint8x16x2_t v = vuzpq_u8((uint8x16_t)a, (uint8x16_t)b);
    a = (u8xn)v.val[0], b = (u8xn)v.val[1];
}
inline u8xn load_apart(const u8* p, std::ptrdiff_t) { return (u8xn)vld1q_u8(p); }
template <int Bytes> two<u8xn> zip(u8xn a, u8xn b) {
    static_assert(Bytes == 1 || Bytes == 2 || Bytes == 4);
#if defined(__arm__) && !defined(__clang__)  // gcc would copy registers to make up a tuple
    if constexpr (Bytes == 1) asm("vzip.8 %q0, %q1" : "+w"(a), "+w"(b));
    if constexpr (Bytes == 2) asm("vzip.16 %q0, %q1" : "+w"(a), "+w"(b));
    if constexpr (Bytes == 4) asm("vzip.32 %q0, %q1" : "+w"(a), "+w"(b));
    return {a, b};
#else
    const auto both = [](auto v) -> two<u8xn> { return {(u8xn)v.val[0], (u8xn)v.val[1]}; };
    if constexpr (Bytes == 1) return both(vzipq_u8((uint8x16_t)a, (uint8x16_t)b));
    if constexpr (Bytes == 2) return both(vzipq_u16((uint16x8_t)a, (uint16x8_t)b));
    if constexpr (Bytes == 4) return both(vzipq_u32((uint32x4_t)a, (uint32x4_t)b));
#endif
}
template <int Bytes> u8xn reverse(u8xn a) {
    uint8x16_t v = (uint8x16_t)a;
    if constexpr (Bytes == 1) v = vrev64q_u8(v);
    if constexpr (Bytes == 2) v = (uint8x16_t)vrev64q_u16((uint16x8_t)v);
    if constexpr (Bytes == 4) v = (uint8x16_t)vrev64q_u32((uint32x4_t)v);
    return (u8xn)vextq_u8(v, v, 8);
}

inline uint8x8_t low8(u8xn a) { return vget_low_u8((uint8x16_t)a); }
inline uint8x8_t high8(u8xn a) { return vget_high_u8((uint8x16_t)a); }

// Forms of upper halves, of which gcc finds some by itself. Their factors are whole registers on AArch64.
#ifdef __aarch64__
typedef uint8x16_t byte_factor;
inline uint8x8_t lower(byte_factor f) { return vget_low_u8(f); }
inline uint16x8_t add_upper(uint16x8_t s, u8xn a) { return vaddw_high_u8(s, (uint8x16_t)a); }
inline uint16x8_t subtract_upper(u8xn a, u8xn b) { return vsubl_high_u8((uint8x16_t)a, (uint8x16_t)b); }
inline uint16x8_t mul_upper(u8xn a, byte_factor f) { return vmull_high_u8((uint8x16_t)a, f); }
inline uint16x8_t mul_add_upper(uint16x8_t s, u8xn a, byte_factor f) { return vmlal_high_u8(s, (uint8x16_t)a, f); }
inline uint16x8_t mul_sub_upper(uint16x8_t s, u8xn a, byte_factor f) { return vmlsl_high_u8(s, (uint8x16_t)a, f); }
#else
typedef uint8x8_t byte_factor;
inline uint8x8_t lower(byte_factor f) { return f; }
inline uint16x8_t add_upper(uint16x8_t s, u8xn a) { return vaddw_u8(s, high8(a)); }
inline uint16x8_t subtract_upper(u8xn a, u8xn b) { return vsubl_u8(high8(a), high8(b)); }
inline uint16x8_t mul_upper(u8xn a, byte_factor f) { return vmull_u8(high8(a), f); }
inline uint16x8_t mul_add_upper(uint16x8_t s, u8xn a, byte_factor f) { return vmlal_u8(s, high8(a), f); }
inline uint16x8_t mul_sub_upper(uint16x8_t s, u8xn a, byte_factor f) { return vmlsl_u8(s, high8(a), f); }
#endif

struct sums {
    int32x4_t lo, hi;
};
// Both halves narrowed. gcc for ARMv7 would narrow to two registers, and move.
#ifdef __aarch64__
#define ZELT_NARROWING(R, name, A, form, type, V, instruction, ...)                     \
    inline R name(A a) {                                                                \
        return (R)form##_high_##type(form##_##type((V)a.lo __VA_OPT__(, ) __VA_ARGS__), \
                                     (V)a.hi __VA_OPT__(, ) __VA_ARGS__);               \
    }
#elif defined(__clang__)
#define ZELT_NARROWING(R, name, A, form, type, V, instruction, ...)                          \
    inline R name(A a) {                                                                     \
        return (R)vcombine_u8((uint8x8_t)form##_##type((V)a.lo __VA_OPT__(, ) __VA_ARGS__),  \
                              (uint8x8_t)form##_##type((V)a.hi __VA_OPT__(, ) __VA_ARGS__)); \
    }
#else
#define ZELT_NARROWING(R, name, A, form, type, V, instruction, ...)                        \
    inline R name(A a) {                                                                   \
        R v;                                                                               \
        asm(instruction " %e0, %q1" __VA_OPT__(", #" #__VA_ARGS__) : "=w"(v) : "w"(a.lo)); \
        asm(instruction " %f0, %q1" __VA_OPT__(", #" #__VA_ARGS__) : "+w"(v) : "w"(a.hi)); \
        return v;                                                                          \
    }
#endif
ZELT_NARROWING(u8xn, narrow, s16x2n, vqmovun, s16, int16x8_t, "vqmovun.s16")
ZELT_NARROWING(u8xn, narrow_signed, s16x2n, vqmovn, s16, int16x8_t, "vqmovn.s16")
ZELT_NARROWING(u8xn, high, s16x2n, vshrn, n_u16, uint16x8_t, "vshrn.i16", 8)
ZELT_NARROWING(u8xn, round_high, s16x2n, vrshrn, n_u16, uint16x8_t, "vrshrn.i16", 8)
ZELT_NARROWING(u8xn, narrow_q6, s16x2n, vshrn, n_u16, uint16x8_t, "vshrn.i16", 6)
ZELT_NARROWING(u8xn, low_q2_ordered, s16x2n, vshrn, n_u16, uint16x8_t, "vshrn.i16", 2)
ZELT_NARROWING(u8xn, round_q6, s16x2n, vrshrn, n_u16, uint16x8_t, "vrshrn.i16", 6)
ZELT_NARROWING(u8xn, round_q7_signed, s16x2n, vqrshrn, n_s16, int16x8_t, "vqrshrn.s16", 7)
ZELT_NARROWING(s16xn, round_q10, sums, vrshrn, n_s32, int32x4_t, "vrshrn.i32", 10)
#undef ZELT_NARROWING
inline u8xn narrow_ordered(s16x2n a) { return narrow(a); }
inline u8xn narrow_q6_ordered(s16x2n a) { return narrow_q6(a); }
inline u8xn round_q7_signed_ordered(s16x2n a) { return round_q7_signed(a); }
inline s16xn pair_sums(u8xn a) { return (s16xn)vpaddlq_u8((uint8x16_t)a); }
inline s16xn add_pair_sums(s16xn s, u8xn a) { return (s16xn)vpadalq_u8((uint16x8_t)s, (uint8x16_t)a); }

inline s16x2n widen(u8xn a) { return {(s16xn)vmovl_u8(low8(a)), (s16xn)vmovl_u8(high8(a))}; }
inline s16x2n add_wide(s16x2n a, u8xn b) {
    return {(s16xn)vaddw_u8((uint16x8_t)a.lo, low8(b)), (s16xn)add_upper((uint16x8_t)a.hi, b)};
}
inline s16x2n difference(u8xn a, u8xn b) { return {(s16xn)vsubl_u8(low8(a), low8(b)), (s16xn)subtract_upper(a, b)}; }
/// Words of two bytes each, the lower byte being the even one
inline s16x2n centred_even_odd(u8xn a) {
    const u16xn pairs = (u16xn)(a ^ 128);
    return {(s16xn)(pairs << 8), (s16xn)(pairs & 0xFF00)};
}
/// v << 2 with saturation has the result in its high byte.
inline u8xn narrow_q6_even_odd(s16x2n v) {
    return (u8xn)vsriq_n_u16(vqshluq_n_s16((int16x8_t)v.hi, 2), vqshluq_n_s16((int16x8_t)v.lo, 2), 8);
}
inline s16x2n add_sat(s16x2n a, s16x2n b) {
    return {(s16xn)vqaddq_s16((int16x8_t)a.lo, (int16x8_t)b.lo), (s16xn)vqaddq_s16((int16x8_t)a.hi, (int16x8_t)b.hi)};
}
inline s16x2n sub_sat(s16x2n a, s16x2n b) {
    return {(s16xn)vqsubq_s16((int16x8_t)a.lo, (int16x8_t)b.lo), (s16xn)vqsubq_s16((int16x8_t)a.hi, (int16x8_t)b.hi)};
}
/// A factor for products by a lane
inline int16x4_t lane_factor(int b) {
    int16x4_t factor = vdup_n_s16(static_cast<s16>(b));
#if defined(__arm__) && !defined(__clang__)
    asm("" : "+x"(factor));  // a register with such lanes; or gcc moves it from a core register in every turn
#endif
    return factor;
}
inline s16xn mul_q15_lane(int16x8_t a, int16x4_t factor) {
#if defined(__arm__) && defined(__clang__)  // which would keep each factor in a whole register
    s16xn product;
    asm("vqrdmulh.s16 %q0, %q1, %P2[0]" : "=w"(product) : "w"(a), "x"(factor));
    return product;
#else
    return (s16xn)vqrdmulhq_lane_s16(a, factor, 0);
#endif
}
template <int F> s16x2n centred_product(u8xn a) {
    static_assert(centred_product_fits(F));
    const int8x16_t centred = (int8x16_t)(a ^ 128);
    const int16x4_t factor = lane_factor(F);
    return {mul_q15_lane(vshll_n_s8(vget_low_s8(centred), 7), factor),
            mul_q15_lane(vshll_n_s8(vget_high_s8(centred), 7), factor)};
}
inline s16xn mul_q15(s16xn a, int b) { return mul_q15_lane((int16x8_t)a, lane_factor(b)); }
inline s16x2n mul_q15(s16x2n a, int b) {
    const int16x4_t factor = lane_factor(b);
    return {mul_q15_lane((int16x8_t)a.lo, factor), mul_q15_lane((int16x8_t)a.hi, factor)};
}

inline const u8* load_16(const u8* p, s16x2n& a) {
    a.lo = (s16xn)vld1q_u8(p), p += 16;
    hide_step_from_optimizer(p);
    a.hi = (s16xn)vld1q_u8(p);
    return p + 16;
}
inline u8* store_16(u8* p, s16x2n a) {
    vst1q_u8(p, (uint8x16_t)a.lo), p += 16;
    hide_step_from_optimizer(p);
    vst1q_u8(p, (uint8x16_t)a.hi);
    return p + 16;
}
// From and to bytes, which may stand at any address
inline const u8* load_even_odd_16(const u8* p, s16x2n& a) {
    p = load_16(p, a);
    const uint16x8x2_t v = vuzpq_u16((uint16x8_t)a.lo, (uint16x8_t)a.hi);
    a = {(s16xn)v.val[0], (s16xn)v.val[1]};
    return p;
}
inline u8* store_even_odd_16(u8* p, s16x2n a) {
    const uint16x8x2_t v = vzipq_u16((uint16x8_t)a.lo, (uint16x8_t)a.hi);
    return store_16(p, {(s16xn)v.val[0], (s16xn)v.val[1]});
}
template <int N> s16x2n shift_add(s16x2n a, s16x2n b) {
    return {(s16xn)vsraq_n_s16((int16x8_t)a.lo, (int16x8_t)b.lo, N),
            (s16xn)vsraq_n_s16((int16x8_t)a.hi, (int16x8_t)b.hi, N)};
}
template <int N> u8xn shift_insert(u8xn a, u8xn b) { return (u8xn)vsriq_n_u8((uint8x16_t)a, (uint8x16_t)b, N); }
inline u8xn average(u8xn a, u8xn b) { return (u8xn)vrhaddq_u8((uint8x16_t)a, (uint8x16_t)b); }
inline bool any(u8xn mask) { return vget_lane_u64((uint64x1_t)(low8(mask) | high8(mask)), 0) != 0; }

template <int F> byte_factor magnitude() {
    auto f = byte_factor{} + static_cast<u8>(F < 0 ? -F : F);
#ifdef __aarch64__
    f = hide_from_optimizer(f);  // or there would be one for lower and one for upper halves
#endif
    return f;
}
/// Of one half of a sum + F a; factors up to 255 in magnitude, the sum modulo 2^16
template <bool Upper, int F> uint16x8_t multiply_add(uint16x8_t sum, u8xn a) {
    const byte_factor f = magnitude<F>();
    if constexpr (F == 0)
        return sum;
    else if constexpr (F > 0)
        return Upper ? mul_add_upper(sum, a, f) : vmlal_u8(sum, low8(a), lower(f));
    else
        return Upper ? mul_sub_upper(sum, a, f) : vmlsl_u8(sum, low8(a), lower(f));
}
/// F a
template <bool Upper, int F> uint16x8_t multiply(u8xn a) {
    const byte_factor f = magnitude<F>();
    if constexpr (F > 0)
        return Upper ? mul_upper(a, f) : vmull_u8(low8(a), lower(f));
    else
        return multiply_add<Upper, F>(vdupq_n_u16(0), a);
}

template <bool Upper, int A, int B> uint16x8_t add_products(u8xn a, u8xn b) {
    if constexpr (A < 0 && B > 0) return add_products<Upper, B, A>(b, a);  // start with a product, not with zero
    return multiply_add<Upper, B>(multiply<Upper, A>(a), b);
}
template <int A, int B> s16x2n dot(u8xn a, u8xn b) {
    static_assert(dot_fits(A, B));
    if constexpr (A == 1 && B == -1) return difference(a, b);
    return {(s16xn)add_products<false, A, B>(a, b), (s16xn)add_products<true, A, B>(a, b)};
}
inline s16x2n dot(u8xn a, u8xn b, int f, int g) {
    const auto factor = [](int v) { return byte_factor{} + static_cast<u8>(v); };
    const byte_factor fa = factor(f), fb = factor(g);
    return {(s16xn)vmlal_u8(vmull_u8(low8(a), lower(fa)), low8(b), lower(fb)),
            (s16xn)mul_add_upper(mul_upper(a, fa), b, fb)};
}

struct triples {
    u8xn a, b, c;
};
inline triples interleave(u8xn a, u8xn b, u8xn c) { return {a, b, c}; }
template <int A, int B, int C> s16x2n dot(triples v) {
    static_assert(dot_fits(A, B, C));
    return {(s16xn)multiply_add<false, C>(add_products<false, A, B>(v.a, v.b), v.c),
            (s16xn)multiply_add<true, C>(add_products<true, A, B>(v.a, v.b), v.c)};
}

inline void store_widened(s16* p, s16x2n a) { vst1q_s16(p, (int16x8_t)a.lo), vst1q_s16(p + 8, (int16x8_t)a.hi); }

template <int A, int B, int C> int32x4_t add_products(int16x4_t a, int16x4_t b, int16x4_t c) {
    const int16x4_t factors = {A, B, C, 0};  // lanes of one register: compilers keep factors by themselves in many
    const int32x4_t sum = vmlal_lane_s16(vmull_lane_s16(a, factors, 0), b, factors, 1);
    return C == 0 ? sum : vmlal_lane_s16(sum, c, factors, 2);
}
template <int A, int B, int C> s16xn dot_q10(s16xn a, s16xn b, s16xn c) {
    const auto low = [](s16xn v) { return vget_low_s16((int16x8_t)v); };
    const auto high = [](s16xn v) { return vget_high_s16((int16x8_t)v); };
    return round_q10({add_products<A, B, C>(low(a), low(b), low(c)), add_products<A, B, C>(high(a), high(b), high(c))});
}
template <int A, int B, int C> s16x2n dot_q10(s16x2n a, s16x2n b, s16x2n c) {
    static_assert(dot_q10_fits(A, B, C));
    return {dot_q10<A, B, C>(a.lo, b.lo, c.lo), dot_q10<A, B, C>(a.hi, b.hi, c.hi)};
}

inline u8xn blend_q6(s16x2n a, s16x2n b, int f) {
    const s16xn g = splat(f).lo;
#ifdef __aarch64__  // (a + ((b - a) f >> 3)) >> 3, since products take the time of two other instructions
    const auto blend = [=](s16xn v, s16xn w) { return vsraq_n_s16((int16x8_t)v, (int16x8_t)((w - v) * g), 3); };
    const int8x8_t low = vshrn_n_s16(blend(a.lo, b.lo), 3);
    return (u8xn)vshrn_high_n_s16(low, blend(a.hi, b.hi), 3);
#else
    const s16xn e = 8 - g;
    return narrow_q6({a.lo * e + b.lo * g, a.hi * e + b.hi * g});
#endif
}
}  // namespace zelt::inline ZELT_LEVEL::vec

#include "simd/neon_block.h"
#include "simd/neon_pairs.h"
#include "simd/neon_pixels.h"
