#pragma once  // coefficients of the standards, in integers
#include "video/samples.h"

namespace zelt::inline ZELT_LEVEL::video {
using namespace fast;

/// Factors with 13 fractional bits, and the constant of all components with 6
struct matrix {
    s16 luma, red_v, green_u, green_v, blue_u, constant;

    template <class W> W red(W, W e) const { return mul_q15(e, red_v); }
    template <class W> W green(W d, W e) const { return mul_q15(d, green_u) + mul_q15(e, green_v); }
    template <class W> W blue(W d, W) const { return mul_q15(d, blue_u); }
};

constexpr matrix make_matrix(double kr, double kb, bool full) {
    const double kg = 1 - kr - kb, luma = full ? 1 : 255.0 / 219, chroma = full ? 1 : 255.0 / 224;
    const double red_v = 2 * (1 - kr) * chroma, blue_u = 2 * (1 - kb) * chroma;
    const auto fixed = [](double v, int one) { return static_cast<s16>(v * one + (v < 0 ? -0.5 : 0.5)); };
    // Luma is centred, too. Of full range the product of luma is exact, and those of chroma are rounded up as often as
    // down: the rounding is a little less than a half, as if they were not.
    const int constant = fixed(luma * (full ? 128 : 112), 64) + (full ? 31 : 32);
    return {
        fixed(luma, 8192),   fixed(red_v, 8192),        fixed(-blue_u * kb / kg, 8192), fixed(-red_v * kr / kg, 8192),
        fixed(blue_u, 8192), static_cast<s16>(constant)};
}
constexpr matrix matrices[][2] = {
    {make_matrix(0.299, 0.114, false), make_matrix(0.299, 0.114, true)},
    {make_matrix(0.2126, 0.0722, false), make_matrix(0.2126, 0.0722, true)},
    {make_matrix(0.2627, 0.0593, false), make_matrix(0.2627, 0.0593, true)},
};
}  // namespace zelt::inline ZELT_LEVEL::video
