// SPDX-License-Identifier: MIT
#pragma once
// Axes for values of a clip's pictures, over their numbers.
#include "drawing/canvas.h"

#include <cstddef>
#include <string>

namespace zelt::tool {

class chart {
public:
    static constexpr int w = 960, h = 376;

    /// Draws a title and the vertical axis, from `low` to `high` or a little further, to round numbers. The horizontal
    /// axis is so far above the lower edge.
    chart(canvas& on, const std::string& title, const std::string& unit, std::size_t pictures, double low, double high,
          double foot);

    const box area;
    const double bottom = area.y + area.h;

    /// Where a picture begins on the horizontal axis, and where a value is
    double x(double picture) const { return area.x + picture * area.w / static_cast<double>(pictures_); }
    double y(double value) const { return area.y + (high_ - value) / (high_ - low_) * area.h; }

    void number_pictures(double at_y, const std::string& what);
    void label(double at_y, const std::string& text);  // at the left
    /// What a colour means; the last one is told first.
    void tell(const colour& c, const std::string& text, double width);

private:
    canvas& on_;
    std::size_t pictures_;
    double low_, high_, told_ = area.x + area.w;
};

/// How many pictures become one where there are more than places for them
std::size_t pictures_at_once(std::size_t pictures, double places);

}  // namespace zelt::tool
