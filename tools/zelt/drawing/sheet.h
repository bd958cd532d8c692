// SPDX-License-Identifier: MIT
#pragma once
// A picture beside a map of its blocks, with room for a legend under each.
#include "drawing/canvas.h"

#include <string>
#include <vector>

namespace zelt::tool {

/// Three digits: 27, 1.35 or 27.1k
std::string short_number(double value);

struct sheet {
    sheet(int picture_w, int picture_h);

    int times;        // small pictures are enlarged by
    double unit;      // of letters and spaces, for the drawing as a whole to be looked at
    box left, right;  // the picture and the map
    double foot;      // where the legends begin
    int w, h;

    box paper() const { return {0, 0, w * 1.0, h * 1.0}; }
    void title(canvas& on, const box& above, const std::string& text) const;
    void note(canvas& on, double x, int line, const std::string& text) const;  // in a legend

    /// The map of amounts, row by row, and the legend with its scale. Colours go by rank, so that an outlier leaves
    /// the others apart. Where the amount is 0 there is none: `nothing` says what that means.
    void draw_map(canvas& on, int block, const std::vector<double>& amounts, const std::string& nothing) const;
};

}  // namespace zelt::tool
