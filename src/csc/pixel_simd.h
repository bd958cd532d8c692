// SPDX-License-Identifier: MIT
#pragma once  // the colour matrices over whole registers, exact in 16 bits
#include "csc/pixel_scalar.h"
#include "simd/vocabulary.h"

namespace zelt::inline ZELT_LEVEL::simd {
// Short rows are converted a pixel at a time.
using scalar::load, scalar::load2, scalar::load3, scalar::load4;
using scalar::shift_insert, scalar::yuv_to_rgb, scalar::rgb_to_yuv;
using scalar::store, scalar::store2, scalar::store3, scalar::store4;
using vec::load, vec::load2, vec::load3, vec::load4, vec::shift_insert;
using vec::store, vec::store2, vec::store3, vec::store4;
using widest = u8xn;

/// With d = U - 128, e = V - 128: red and blue are rounding products of e by 359 / 256 and d by 454 / 256. In the green
/// term 183 = 256 - 73, so G = Y - e - ((88 d - 73 e + 128) >> 8) = Y - V + 128 + ((73 V - 88 U + 2047) >> 8), where
/// 2047 = (88 - 73) * 128 - 128 + 255: the negated shift rounds up. Saturating about 128 adds the 128 and clamps.
inline pixel<u8xn> yuv_to_rgb(pixel<u8xn> p) {
    const u8xn y = p.c0, u = p.c1, v = p.c2;
    const s16x2n green = shift_add<8>(difference(y, v), dot<73, -88>(v, u) + 2047);
    return {narrow(add_wide(centred_product<359>(v), y)), narrow_signed(green) ^ 128,
            narrow(add_wide(centred_product<454>(u), y)), p.a};
}

/// Luma fits 16 unsigned bits. The chroma sums are negated, m = 43 R + 85 G - 128 B within 32640 of 0, so that the
/// saturation of 128 - m is the clamp at 255.
inline pixel<u8xn> rgb_to_yuv(pixel<u8xn> p) {
    const triples rgb = interleave(p.c0, p.c1, p.c2);
    return {round_high(dot<77, 150, 29>(rgb)), high(sub_sat(splat(128), dot<43, 85, -128>(rgb))) ^ 128,
            high(sub_sat(splat(128), dot<-128, 107, 21>(rgb))) ^ 128, p.a};
}
}  // namespace zelt::inline ZELT_LEVEL::simd
