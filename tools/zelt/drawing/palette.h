// SPDX-License-Identifier: MIT
#pragma once
// Colours that eyes without red and green tell apart as well.
#include "drawing/canvas.h"

namespace zelt::tool::palette {

inline constexpr colour paper = {250, 250, 248}, ink = {45, 48, 54}, faded = {110, 114, 122}, rule = {222, 222, 218},
                        none = {205, 205, 202};  // of what has no amount
inline constexpr colour blue = {0, 114, 178}, pale = {158, 190, 214}, green = {0, 158, 115}, red = {213, 94, 0};

/// From 0 to 1 each step looks as large as any other: dark violet, blue, green, yellow.
colour amount(double share);

/// Of the direction in which (x, y) points. Hues go around; lightness does as well, a quarter ahead of blue and yellow,
/// so that these two alone still make a circle.
colour direction(double x, double y);

}  // namespace zelt::tool::palette
