// SPDX-License-Identifier: MIT
// The motion between two pictures.
#include "drawing/drawings.h"
#include "drawing/palette.h"
#include "drawing/sheet.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace zelt::tool {
namespace {

constexpr colour shade = {0, 0, 0, 0.55};  // around arrows

/// Grey and dark, so that colours are those of arrows
picture dimmed(const picture& pixels) {
    picture dim(*pixels.fmt, pixels.w, pixels.h);
    for (int y = 0; y < dim.h; ++y)
        for (int x = 0; x < dim.w; ++x) {
            const uint8_t* p = pixels.row(0, y) + 4 * x;
            std::fill_n(dim.row(0, y) + 4 * x, 4,
                        static_cast<uint8_t>(24 + (29 * p[0] + 150 * p[1] + 77 * p[2]) / 512));
        }
    return dim;
}

/// Filled, with a thin shade around. However short it is, its head is whole.
void arrow(canvas& on, point from, point to, double width) {
    const double dx = to.x - from.x, dy = to.y - from.y, length = std::hypot(dx, dy);
    const double ux = dx / length, uy = dy / length, head = 3.5 * width;
    const auto at = [&](double back, double aside) {
        return point{to.x - back * ux - aside * uy, to.y - back * uy + aside * ux};
    };
    std::vector<point> outline = {at(head, 1.5 * width), at(0, 0), at(head, -1.5 * width)};
    if (length > head)
        for (const auto& [back, side] : {std::pair{head, -1}, {length, -1}, {length, 1}, {head, 1}})
            outline.push_back(at(back, side * width / 2));
    outline.push_back(outline[0]);
    on.line(outline, 2, shade);
    on.area(outline, palette::direction(dx, dy));
}

void wheel(canvas& on, point centre, double radius) {
    constexpr int sectors = 72;
    const auto at = [&](double sector, double share) {
        const double angle = sector * 2 * std::numbers::pi / sectors;
        return point{centre.x + share * radius * std::cos(angle), centre.y + share * radius * std::sin(angle)};
    };
    for (int i = 0; i < sectors; ++i) {  // into the next one, so that nothing shows between two
        const point middle = at(i + 0.5, 1);
        on.area({at(i, 0.55), at(i, 1), at(i + 1.3, 1), at(i + 1.3, 0.55)},
                palette::direction(middle.x - centre.x, middle.y - centre.y));
    }
}

double length(const matched_block& b) { return std::hypot(b.from.x, b.from.y); }

void draw_arrows(canvas& on, const sheet& s, const motion_field& field) {
    const double half = field.block * s.times / 2.0, width = std::clamp(half / 5, 1.5, 4.0);
    for (const matched_block& b : field.blocks) {
        const point to = {s.left.x + b.x * s.times + half, s.left.y + b.y * s.times + half};
        if (length(b) > 0)
            arrow(on, {to.x + b.from.x * s.times, to.y + b.from.y * s.times}, to, width);
        else
            on.disc(to, width, {255, 255, 255, 0.45});
    }
}

void draw(canvas& on, const sheet& s, const motion_field& field, const picture& pixels, int number,
          const std::string& metric) {
    on.fill(s.paper(), palette::paper);
    on.image({s.left.x, s.left.y}, s.times, dimmed(pixels));
    on.clip(s.left);
    draw_arrows(on, s, field);
    std::vector<double> costs;
    for (const matched_block& b : field.blocks) costs.push_back(b.cost);
    s.draw_map(on, field.block, costs, "0: found as it is");

    const std::string side = std::to_string(field.block);
    s.title(on, s.left, "Picture " + std::to_string(number) + ": how blocks of " + side + "x" + side + " moved");
    s.title(on, s.right, "What differs from where they were (" + metric + ")");
    const double radius = 34 * s.unit, x = s.left.x + 84 * s.unit;
    wheel(on, {s.left.x + radius, s.foot + radius}, radius);
    s.note(on, x, 0, "An arrow leads from where a block was to where it is;");
    s.note(on, x, 1, "its colour is its direction. A dot did not move.");
    const matched_block& longest = std::ranges::max(field.blocks, {}, length);
    char text[80];
    std::snprintf(text, sizeof text, "The longest: %.1f samples (%d across, %d down).", length(longest),
                  -longest.from.x, -longest.from.y);
    s.note(on, x, 2, length(longest) > 0 ? text : "Nothing moved.");
}

}  // namespace

drawing motion_drawing(const motion_field& field, const picture& pixels, int number, const std::string& metric) {
    const sheet s(pixels.w, pixels.h);
    return {s.w, s.h, [s, &field, &pixels, number, metric](canvas& on) { draw(on, s, field, pixels, number, metric); }};
}

}  // namespace zelt::tool
