// SPDX-License-Identifier: MIT
// The picture of a motion field.
#include "match.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace zelt::tool {
namespace {

struct colour {
    uint8_t r, g, b;
};

void put(const picture& on, int x, int y, colour c) {
    if (x < 0 || y < 0 || x >= on.w || y >= on.h) return;
    uint8_t* p = on.row(0, y) + 3 * x;
    p[0] = c.r, p[1] = c.g, p[2] = c.b;
}

void line(const picture& on, int x0, int y0, int x1, int y1, colour c) {
    const int steps = std::max({std::abs(x1 - x0), std::abs(y1 - y0), 1});
    for (int i = 0; i <= steps; ++i) put(on, x0 + (x1 - x0) * i / steps, y0 + (y1 - y0) * i / steps, c);
}

/// From where a block comes to where it is, with a head of two strokes
void arrow(const picture& on, int w, const matched_block& b, int block) {
    const int x1 = std::min(b.x + block / 2, w - 1), y1 = b.y + block / 2;
    const int x0 = std::clamp(x1 + b.from.x, 0, w - 1), y0 = y1 + b.from.y;
    constexpr colour shaft = {255, 220, 0}, tip = {255, 60, 0};
    line(on, x0, y0, x1, y1, shaft);
    const double length = std::hypot(b.from.x, b.from.y);
    for (const int side : {-1, 1}) {
        if (length < 2) break;
        const double dx = b.from.x / length, dy = b.from.y / length, head = std::min(length, 4.0);
        line(on, x1, y1, x1 + static_cast<int>(std::lround(head * (dx - side * dy * 0.6))),
             y1 + static_cast<int>(std::lround(head * (dy + side * dx * 0.6))), tip);
    }
    put(on, x1, y1, tip);
}

/// Black, purple, orange, white
colour heat(double share) {
    constexpr double stops[][3] = {{0, 0, 0}, {90, 0, 130}, {240, 120, 20}, {255, 255, 255}};
    const double at = std::clamp(share, 0.0, 1.0) * 3;
    const int i = std::min(static_cast<int>(at), 2);
    uint8_t c[3];
    for (int k = 0; k < 3; ++k)
        c[k] = static_cast<uint8_t>(std::lround(stops[i][k] + (stops[i + 1][k] - stops[i][k]) * (at - i)));
    return {c[0], c[1], c[2]};
}

}  // namespace

picture map_of(const motion_field& field, const picture& rgb) {
    picture map(*rgb.fmt, 2 * rgb.w, rgb.h);
    for (int y = 0; y < rgb.h; ++y) {
        std::memcpy(map.row(0, y), rgb.row(0, y), rgb.row_bytes(0));
        std::memset(map.row(0, y) + rgb.row_bytes(0), 0, rgb.row_bytes(0));
    }
    for (const matched_block& b : field.blocks) arrow(map, rgb.w, b, field.block);
    // The costs cover what heads of arrows reach over the picture's right edge.
    const auto costliest = std::ranges::max_element(field.blocks, {}, &matched_block::cost);
    for (const matched_block& b : field.blocks) {
        const colour c = heat(costliest->cost ? static_cast<double>(b.cost) / costliest->cost : 0);
        for (int y = b.y; y < b.y + field.block; ++y)
            for (int x = b.x; x < std::min(b.x + field.block, rgb.w); ++x) put(map, rgb.w + x, y, c);
    }
    return map;
}

}  // namespace zelt::tool
