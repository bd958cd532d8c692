// SPDX-License-Identifier: MIT
#include "drawing/palette.h"

#include <algorithm>
#include <cmath>

namespace zelt::tool::palette {
namespace {

uint8_t srgb(double linear) {
    const double c = std::clamp(linear, 0.0, 1.0);
    const double encoded = c <= 0.0031308 ? 12.92 * c : 1.055 * std::pow(c, 1 / 2.4) - 0.055;
    return static_cast<uint8_t>(std::lround(255 * encoded));
}

/// From Oklab (B. Ottosson, 2020), where distances are as eyes see them
colour oklab(double lightness, double a, double b) {
    const auto cube = [](double v) { return v * v * v; };
    const double l = cube(lightness + 0.3963377774 * a + 0.2158037573 * b),
                 m = cube(lightness - 0.1055613458 * a - 0.0638541728 * b),
                 s = cube(lightness - 0.0894841775 * a - 1.2914855480 * b);
    return {srgb(4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s),
            srgb(-1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s),
            srgb(-0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s)};
}

}  // namespace

colour amount(double share) {
    // matplotlib's viridis, in tenths
    static constexpr colour stops[] = {{68, 1, 84},    {72, 36, 117},  {65, 68, 135},  {53, 95, 141},
                                       {42, 120, 142}, {33, 145, 140}, {34, 168, 132}, {68, 191, 112},
                                       {122, 209, 81}, {189, 223, 38}, {253, 231, 37}};
    const double at = std::clamp(share, 0.0, 1.0) * 10;
    const int i = std::min(static_cast<int>(at), 9);
    const colour &low = stops[i], &high = stops[i + 1];
    const auto between = [&](uint8_t a, uint8_t b) {
        return static_cast<uint8_t>(std::lround(a + (b - a) * (at - i)));
    };
    return {between(low.r, high.r), between(low.g, high.g), between(low.b, high.b)};
}

colour direction(double x, double y) {
    const double hue = std::atan2(y, x), lighter = 2.6;  // where: at green
    constexpr double chroma = 0.12;
    return oklab(0.78 + 0.14 * std::cos(hue - lighter), chroma * std::cos(hue), chroma * std::sin(hue));
}

}  // namespace zelt::tool::palette
