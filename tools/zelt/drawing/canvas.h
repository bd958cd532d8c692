// SPDX-License-Identifier: MIT
#pragma once
// What drawings are made on.
#include "pictures/picture.h"

#include <functional>
#include <string>
#include <vector>

namespace zelt::tool {

struct point {
    double x, y;
};
struct box {
    double x, y, w, h;
};
struct colour {
    uint8_t r, g, b;
    double alpha = 1;
};
enum class anchor { start, middle, end };

/// Lengths are pixels; what is drawn later covers what was drawn before.
class canvas {
public:
    virtual ~canvas() = default;
    virtual void area(const std::vector<point>& corners, const colour& c) = 0;
    virtual void line(const std::vector<point>& through, double width, const colour& c) = 0;
    /// The text starts, has its middle or ends at a point on its baseline; `size` is that of the font.
    virtual void text(point at, anchor where, double size, const colour& c, const std::string& text) = 0;
    /// A bgra8888 picture, each pixel as a square of so many pixels across. Alpha is not looked at.
    virtual void image(point at, int times, const picture& pixels) = 0;
    /// Nothing is drawn outside until the next call.
    virtual void clip(const box& to) = 0;
    /// Where the drawing goes it is complete, or a failure.
    virtual void finish() = 0;

    void fill(const box& b, const colour& c);
    void frame(const box& b, double width, const colour& c);
    void disc(point centre, double radius, const colour& c);
};

struct drawing {
    int w, h;
    std::function<void(canvas&)> draw;  // which may refer to what the drawing was made from
};

}  // namespace zelt::tool
