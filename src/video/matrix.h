// SPDX-License-Identifier: MIT
#pragma once  // coefficients of the standards, in integers
#include "video/samples.h"

#include <utility>

namespace zelt::inline ZELT_LEVEL::video {
using namespace fast;

/// Factors with 13 fractional bits, and the constant of all components with 6
struct matrix {
    s16 luma, red_v, green_u, green_v, blue_u, constant;

    template <class W> W red(W, W e) const { return mul_q15(e, red_v); }
    template <class W> W green(W d, W e) const { return mul_q15(d, green_u) + mul_q15(e, green_v); }
    template <class W> W blue(W d, W) const { return mul_q15(d, blue_u); }
};

/// What stands for 1 in 8 bits, and in 10 with 2 of them fractional
constexpr double white(bool ten) { return ten ? 1023 / 4.0 : 255; }
constexpr matrix make_matrix(double kr, double kb, bool full, bool from_ten, bool to_ten) {
    const double kg = 1 - kr - kb;
    const double luma = white(to_ten) / (full ? white(from_ten) : 219), chroma = luma * (full ? 1 : 219 / 224.0);
    const double red_v = 2 * (1 - kr) * chroma, blue_u = 2 * (1 - kb) * chroma;
    const auto fixed = [](double v) { return static_cast<s16>(v * 8192 + (v < 0 ? -0.5 : 0.5)); };
    // Luma is centred, too. Products are rounded up as often as down, so that a sum just short of a half is as good as
    // one just beyond.
    const double constant = luma * (full ? 128 : 112) * 64 + (to_ten ? 8 : 32) - 1e-6;
    return {fixed(luma),
            fixed(red_v),
            fixed(-blue_u * kb / kg),
            fixed(-red_v * kr / kg),
            fixed(blue_u),
            static_cast<s16>(constant)};
}
struct matrix_table {
    matrix of[3][3][2];  // from 8 bits to 8, from 10 to 8, from 10 to 10; BT.601, BT.709, BT.2020; limited, full range
};
constexpr matrix_table matrices = [] {
    constexpr double of_red_and_blue[][2] = {{0.299, 0.114}, {0.2126, 0.0722}, {0.2627, 0.0593}};
    matrix_table all{};
    for (int depths = 0; depths < 3; ++depths)
        for (int i = 0; i < 3; ++i)
            for (int full = 0; full < 2; ++full)
                all.of[depths][i][full] =
                    make_matrix(of_red_and_blue[i][0], of_red_and_blue[i][1], full, depths > 0, depths > 1);
    return all;
}();

/// Back to YUV, of 10 bits: factors with 15 fractional bits. Luma has a middle and, in 6 bits, its fraction and a half.
struct ten_back_matrix {
    s16 y[3], u[3], v[3], y_middle, y_rounding;
};
constexpr ten_back_matrix make_ten_back_matrix(double kr, double kb, bool full) {
    const double k[] = {kr, 1 - kr - kb, kb}, luma = full ? 1 : 876 / 1023.0, chroma = full ? 1 : 896 / 1023.0;
    const auto fixed = [](double v) { return static_cast<s16>(v * 32768 + (v < 0 ? -0.5 : 0.5)); };
    ten_back_matrix m{};
    for (int i = 0; i < 3; ++i) {
        m.y[i] = fixed(k[i] * luma);
        m.u[i] = fixed(((i == 2) - k[i]) / (2 - 2 * kb) * chroma);
        m.v[i] = fixed(((i == 0) - k[i]) / (2 - 2 * kr) * chroma);
    }
    const double middle = (full ? 0 : 64) + 512 * luma;
    m.y_middle = static_cast<s16>(middle);
    m.y_rounding = static_cast<s16>((middle - m.y_middle) * 64 + 32.5);
    return m;
}
constexpr ten_back_matrix ten_back_matrices[][2] = {
    {make_ten_back_matrix(0.299, 0.114, false), make_ten_back_matrix(0.299, 0.114, true)},
    {make_ten_back_matrix(0.2126, 0.0722, false), make_ten_back_matrix(0.2126, 0.0722, true)},
    {make_ten_back_matrix(0.2627, 0.0593, false), make_ten_back_matrix(0.2627, 0.0593, true)},
};

/// Back to YUV. Red and green enter luma by one factor of what their sum is, weighted by two small ones: together they
/// are as exact as two of 16 bits. Luma has 6 fractional bits, chroma 7.
struct back_matrix {
    s16 red, green, both, blue;  // 15 fractional bits for the last two
    s16 black;
    s16 u[3], v[3];  // 15 fractional bits

    back_matrix with_v_first() const {
        back_matrix m = *this;
        std::swap(m.u, m.v);
        return m;
    }
};

constexpr back_matrix make_back_matrix(double kr, double kb, bool full) {
    const double kg = 1 - kr - kb, luma = full ? 1 : 219.0 / 255, chroma = full ? 1 : 224.0 / 255;
    const auto fixed = [](double v) { return static_cast<s16>(v * 32768 + (v < 0 ? -0.5 : 0.5)); };
    back_matrix m{};
    double nearest = 1;
    for (int sum = 64; sum <= 128; ++sum) {  // 64, or the factor of both would not fit
        const double red = sum * kr / (kr + kg);
        const int rounded = static_cast<int>(red + 0.5);
        const double error = (red < rounded ? rounded - red : red - rounded) / sum;
        if (error >= nearest) continue;
        nearest = error;
        m.red = static_cast<s16>(rounded), m.green = static_cast<s16>(sum - rounded);
        m.both = fixed((kr + kg) * luma * 64 / sum);
    }
    m.blue = fixed(kb * luma);
    m.black = full ? 0 : 16;
    const double k[] = {kr, kg, kb};
    for (int i = 0; i < 3; ++i) {
        m.u[i] = fixed(((i == 2) - k[i]) / (2 * (1 - kb)) * chroma);
        m.v[i] = fixed(((i == 0) - k[i]) / (2 * (1 - kr)) * chroma);
    }
    return m;
}
constexpr back_matrix back_matrices[][2] = {
    {make_back_matrix(0.299, 0.114, false), make_back_matrix(0.299, 0.114, true)},
    {make_back_matrix(0.2126, 0.0722, false), make_back_matrix(0.2126, 0.0722, true)},
    {make_back_matrix(0.2627, 0.0593, false), make_back_matrix(0.2627, 0.0593, true)},
};
}  // namespace zelt::inline ZELT_LEVEL::video
