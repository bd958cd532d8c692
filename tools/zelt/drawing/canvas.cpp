// SPDX-License-Identifier: MIT
#include "drawing/canvas.h"

#include <cmath>
#include <numbers>

namespace zelt::tool {
namespace {

std::vector<point> corners(const box& b) {
    return {{b.x, b.y}, {b.x + b.w, b.y}, {b.x + b.w, b.y + b.h}, {b.x, b.y + b.h}};
}

}  // namespace

void canvas::fill(const box& b, const colour& c) { area(corners(b), c); }

void canvas::frame(const box& b, double width, const colour& c) {
    std::vector<point> around = corners(b);
    around.push_back(around[0]);
    line(around, width, c);
}

void canvas::disc(point centre, double radius, const colour& c) {
    std::vector<point> around;
    for (int i = 0; i < 24; ++i) {
        const double angle = i * std::numbers::pi / 12;
        around.push_back({centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)});
    }
    area(around, c);
}

}  // namespace zelt::tool
