// SPDX-License-Identifier: MIT
#pragma once  // 10-bit samples in 16-bit words, one pixel at a time
#include "csc/pixel_scalar.h"

#include <cstring>

namespace zelt::inline ZELT_LEVEL::scalar {
/// The type of 16-bit samples that goes with V for bytes
template <class V> struct wide;
template <> struct wide<u8> { using type = int; };
template <class V> using wide_of = typename wide<V>::type;

inline void load_16(const u8* p, int& a) {
    u16 word;
    std::memcpy(&word, p, sizeof word);
    a = word;
}
inline void store_16(u8* p, int a) {
    const u16 word = static_cast<u16>(a);
    std::memcpy(p, &word, sizeof word);
}

inline u8 low_q2_ordered(int word) { return static_cast<u8>(word >> 2); }

/// Full-range BT.601 in 10 fractional bits
inline pixel<int> yuv_to_rgb10(pixel<int> p) {
    const auto clamp = [](int v) { return std::clamp(v, 0, 1023); };
    const int y = p.c0, d = p.c1 - 512, e = p.c2 - 512;
    return {clamp(y + ((1436 * e + 512) >> 10)), clamp(y - ((352 * d + 732 * e + 512) >> 10)),
            clamp(y + ((1816 * d + 512) >> 10)), p.a};
}

/// Its inverse. Pure blue and pure red give 1024; the limits only matter for samples of more than 10 bits.
inline pixel<int> rgb_to_yuv10(pixel<int> p) {
    const auto chroma = [](int v) { return std::clamp(512 + std::min((v + 512) >> 10, 1023), 0, 65535); };
    const int r = p.c0, g = p.c1, b = p.c2;
    return {std::min((308 * r + 600 * g + 116 * b + 512) >> 10, 1023), chroma(-172 * r - 340 * g + 512 * b),
            chroma(512 * r - 428 * g - 84 * b), p.a};
}
}  // namespace zelt::inline ZELT_LEVEL::scalar
