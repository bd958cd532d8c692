// SPDX-License-Identifier: MIT
#pragma once  // pixels of which two share chroma, on x86

namespace zelt::inline ZELT_LEVEL::vec {
/// Two to a word, the place of each word in each 16 bytes its own, but for `Packed` ones: there words of two registers
/// take turns. Where four bytes are stored of each, 16 bytes have every second four pixels, so that stores need not
/// bring them together.
template <int Step, bool Packed> struct pixels {
    static void load_luma(const u8* p, s16x2n& y) {
        const reg v = (reg)load_register(p);
        y = centred_even_odd((u8xn)(crossed ? cross_32(v) : v));
    }
    static void load_chroma(const u8* p, s16xn& c) {
        static constexpr byte_table<lanes> words = make_table<lanes>([](int i) {
            const int word = i / 2, in_16 = word % 8;
            const int pair = crossed ? in_16 / 2 * 4 + in_16 % 2 + word / 8 * 2 : word;
            return i % 2 ? pair : -1;
        });
        c = (s16xn)((u16xn)shuffle_epi8(load_half(p), reg(words)) ^ 0x8000);
    }
    static void load_chroma2(const u8* p, s16xn& a, s16xn& b) {
        s16x2n v;
        load_luma(p, v);
        a = v.lo, b = v.hi;
    }
    static void load_packed(const u8* p, s16x2n& a, s16x2n& b) {
        s16x2n v;
        load_words(p, v);
        const s16x2n first = centred_even_odd((u8xn)v.lo), second = centred_even_odd((u8xn)v.hi);
        a = {first.lo, second.lo}, b = {first.hi, second.hi};
    }
    static void load_words(const u8* p, s16x2n& even_odd) {
        static_assert(Packed);
        const reg v = crossed ? cross_64((reg)load_register(p)) : load_blocks(p, 32);
        const reg w = crossed ? cross_64((reg)load_register(p + lanes)) : load_blocks(p + 16, 32);
        even_odd = {(s16xn)blend_epi16<0xAA>(v, (reg)((u32xn)w << 16)),
                    (s16xn)blend_epi16<0xAA>((reg)((u32xn)v >> 16), w)};
    }
    static void load_words(const u8* p, s16xn& c) {
        static constexpr byte_table<lanes> in_turn =
            per_place([](int i) { return (i / 2 % 2 * 4 + i / 4) * 2 + i % 2; });
        const reg v = (reg)load_register(p);
        c = (s16xn)shuffle_epi8(crossed ? cross_32(v) : v, reg(in_turn));
    }
    static u8xn narrow_q6(s16x2n v) { return (u8xn)packus_epi16(v.lo >> 6, v.hi >> 6); }

    static void store(u8* p, u8xn a) { vec::store(p, ordered(a)); }
    static void store(u8* p, u8xn a, u8xn b) { store2(p, ordered(a), ordered(b)); }
    static void store(u8* p, u8xn a, u8xn b, u8xn c) {
        static constexpr byte_table<lanes> spread[] = {spread3_from<0>(), spread3_from<1>(), spread3_from<2>()};
        store_spread3(p, shuffle_epi8(a, reg(spread[0])), shuffle_epi8(b, reg(spread[1])),
                      shuffle_epi8(c, reg(spread[2])));
    }
    static void store(u8* p, u8xn a, u8xn b, u8xn c, u8xn d) {
        a = ordered(a), b = ordered(b), c = ordered(c), d = ordered(d);
        if constexpr (!crossed) return store4(p, a, b, c, d);
        const fours v = interleave(a, b, c, d);
        int i = 0;
        for (const reg part : {v.v0, v.v1, v.v2, v.v3}) store_register(p + lanes * i++, (u8xn)part);
    }

private:
    static constexpr bool crossed = lanes == 32 && Step == 4;
    /// Where pixel i of 16 bytes is
    static constexpr int place(int i) { return i % 2 * 8 + (Packed ? i / 2 % 4 * 2 + i / 8 : i / 2); }
    static u8xn ordered(u8xn v) {
        static constexpr byte_table<lanes> in_turn = per_place([](int i) { return place(i); });
        return (u8xn)shuffle_epi8(v, reg(in_turn));
    }
    template <int Channel> static consteval byte_table<lanes> spread3_from() {
        return per_place([](int i) { return place(11 * (i + 16 - Channel) % 16); });
    }
};
}  // namespace zelt::inline ZELT_LEVEL::vec
