// SPDX-License-Identifier: MIT
#pragma once  // 10-bit samples in 16-bit words over whole registers
#include "csc/pixel10_scalar.h"
#include "simd/vocabulary.h"

namespace zelt::inline ZELT_LEVEL::scalar {
template <> struct wide<simd::u8xn> { using type = simd::s16x2n; };
}  // namespace zelt::inline ZELT_LEVEL::scalar

namespace zelt::inline ZELT_LEVEL::simd {
using scalar::load_16, scalar::low_q2_ordered, scalar::store_16, scalar::wide_of;
using scalar::yuv_to_rgb10, scalar::rgb_to_yuv10;
using vec::load_16, vec::low_q2_ordered, vec::store_16;

/// (1436 e + 512) >> 10 is a rounding high-half product of e << 5, which fits 16 bits up to e = 512.
inline pixel<s16x2n> yuv_to_rgb10(pixel<s16x2n> p) {
    const auto clamped = [](s16x2n v) { return clamp(v, 0, 1023); };
    const s16x2n y = p.c0, d = p.c1 + -512, e = p.c2 + -512;
    return {clamped(y + mul_q15(e << 5, 1436)), clamped(y - dot_q10<352, 732, 0>(d, e, s16x2n{})),
            clamped(y + mul_q15(d << 5, 1816)), p.a};
}

inline pixel<s16x2n> rgb_to_yuv10(pixel<s16x2n> p) {
    const s16x2n r = p.c0, g = p.c1, b = p.c2;
    return {dot_q10<308, 600, 116>(r, g, b), dot_q10<-172, -340, 512>(r, g, b) + 512,
            dot_q10<512, -428, -84>(r, g, b) + 512, p.a};
}
}  // namespace zelt::inline ZELT_LEVEL::simd
