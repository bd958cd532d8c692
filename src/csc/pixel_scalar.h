// SPDX-License-Identifier: MIT
#pragma once  // one pixel at a time: samples, and the colour matrices as they are defined
#include "core/types.h"
#include "simd/level.h"

#include <algorithm>

namespace zelt::inline ZELT_LEVEL {
/// The components of a pixel (V = u8) or of as many as a register holds: R, G, B, A or Y, U, V, A.
template <class V> struct pixel { V c0, c1, c2, a; };

namespace scalar {
constexpr bool store3_beats_a_loop = false, loads_step = false;
using widest = u8;  // what rows are converted in

inline void load(const u8* p, u8& a) { a = p[0]; }
inline void load2(const u8* p, u8& a, u8& b) {
    a = p[0];
    b = p[1];
}
inline void load3(const u8* p, u8& a, u8& b, u8& c) {
    load2(p, a, b);
    c = p[2];
}
inline void load4(const u8* p, u8& a, u8& b, u8& c, u8& d) {
    load3(p, a, b, c);
    d = p[3];
}

inline void store(u8* p, u8 a) { p[0] = a; }
inline void store2(u8* p, u8 a, u8 b) {
    p[0] = a;
    p[1] = b;
}
inline void store3(u8* p, u8 a, u8 b, u8 c) {
    store2(p, a, b);
    p[2] = c;
}
inline void store4(u8* p, u8 a, u8 b, u8 c, u8 d) {
    store3(p, a, b, c);
    p[3] = d;
}

template <int N> u8 shift_insert(u8 a, u8 b) { return static_cast<u8>((a & ~(255 >> N)) | b >> N); }

/// Full-range BT.601 in 8 fractional bits
inline pixel<u8> yuv_to_rgb(pixel<u8> p) {
    const auto clamp = [](int v) { return static_cast<u8>(std::clamp(v, 0, 255)); };
    const int y = p.c0, d = p.c1 - 128, e = p.c2 - 128;
    return {clamp(y + ((359 * e + 128) >> 8)), clamp(y - ((88 * d + 183 * e + 128) >> 8)),
            clamp(y + ((454 * d + 128) >> 8)), p.a};
}

/// Its inverse. Only pure blue (U) and pure red (V) reach 256, and nothing is below 0.
inline pixel<u8> rgb_to_yuv(pixel<u8> p) {
    const auto chroma = [](int v) { return static_cast<u8>(std::min(128 + ((v + 128) >> 8), 255)); };
    const int r = p.c0, g = p.c1, b = p.c2;
    return {static_cast<u8>((77 * r + 150 * g + 29 * b + 128) >> 8), chroma(-43 * r - 85 * g + 128 * b),
            chroma(128 * r - 107 * g - 21 * b), p.a};
}
}  // namespace scalar
}  // namespace zelt::inline ZELT_LEVEL
