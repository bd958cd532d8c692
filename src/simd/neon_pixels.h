// SPDX-License-Identifier: MIT
#pragma once  // pixels of which two share chroma, on NEON, ARMv7 and AArch64 alike

namespace zelt::inline ZELT_LEVEL::vec {
/// In memory order
template <int Step, bool Packed> struct pixels {
    static const u8* load_luma(const u8* p, s16x2n& y) {
        u8xn v;
        p = load(p, v);
        y = centred_even_odd(v);
        return p;
    }
    static const u8* load_chroma(const u8* p, s16xn& c) {
        c = (s16xn)(vmovl_u8(vld1_u8(p) ^ vdup_n_u8(128)) << 8);
        return p + 8;
    }
    static const u8* load_chroma2(const u8* p, s16xn& a, s16xn& b) {
        s16x2n v;
        p = load_luma(p, v);
        a = v.lo, b = v.hi;
        return p;
    }
    static const u8* load_packed(const u8* p, s16x2n& a, s16x2n& b) {
        u8xn v, w;
        p = load2(p, v, w);
        a = centred_even_odd(v), b = centred_even_odd(w);
        return p;
    }
    static const u8* load_words(const u8* p, s16x2n& v) { return load_even_odd_16(p, v); }
    static const u8* load_words(const u8* p, s16xn& v) {
        v = (s16xn)vld1q_u8(p);
        return p + 16;
    }
    static u8xn narrow_q6(s16x2n v) { return narrow_q6_even_odd(v); }
    static u8* store(u8* p, u8xn a) { return vec::store(p, a); }
    static u8* store(u8* p, u8xn a, u8xn b) { return store2(p, a, b); }
    static u8* store(u8* p, u8xn a, u8xn b, u8xn c) { return store3(p, a, b, c); }
    static u8* store(u8* p, u8xn a, u8xn b, u8xn c, u8xn d) { return store4(p, a, b, c, d); }
};
}  // namespace zelt::inline ZELT_LEVEL::vec
