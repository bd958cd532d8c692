// SPDX-License-Identifier: MIT
// A clip's decibels over time.
#include "drawing/chart.h"
#include "drawing/drawings.h"
#include "drawing/palette.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelt::tool {
namespace {

constexpr std::size_t whole = 3;  // of the planes and all samples
constexpr struct {
    const char* name;
    colour ink;
    double width;
} curves[] = {
    {"Y", palette::blue, 1.25}, {"U", palette::red, 1.25}, {"V", palette::green, 1.25}, {"all", palette::ink, 2}};

/// With a gap where it is not finite
void draw_curve(canvas& on, const std::vector<point>& curve, double width, const colour& ink) {
    std::vector<point> run;
    const auto draw_run = [&] {
        if (run.size() > 1) on.line(run, width, ink);
        if (run.size() == 1 || curve.size() <= 60)
            for (const point& p : run) on.disc(p, 1.6 * width, ink);
        run.clear();
    };
    for (const point& p : curve)
        if (std::isfinite(p.y))
            run.push_back(p);
        else
            draw_run();
    draw_run();
}

void draw(canvas& on, const std::vector<quality>& pictures, const std::string& title) {
    double low = std::numeric_limits<double>::infinity(), high = 0;
    for (const quality& q : pictures)
        for (const double value : q.psnr)
            if (std::isfinite(value)) low = std::min(low, value), high = std::max(high, value);
    if (low > high) low = 0, high = 100;  // nothing differs
    chart axes(on, title, "dB", pictures.size(), low, std::max(high, low + 5), 50);
    const std::size_t of = pictures_at_once(pictures.size(), axes.area.w);
    axes.number_pictures(axes.bottom + 18,
                         of > 1 ? "picture; of each " + std::to_string(of) + " the lowest" : "picture");

    bool equal = false;
    for (std::size_t c = 0; c < std::size(curves); ++c) {
        std::vector<point> curve;
        for (std::size_t i = 0; i < pictures.size(); i += of) {
            const std::size_t end = std::min(i + of, pictures.size());
            double lowest = pictures[i].psnr[c];
            for (std::size_t k = i; k < end; ++k) lowest = std::min(lowest, pictures[k].psnr[c]);
            curve.push_back({axes.x(static_cast<double>(i + end) / 2), axes.y(lowest)});
            if (c != whole || std::isfinite(lowest)) continue;
            on.disc({curve.back().x, axes.area.y - 16}, 2.5, curves[c].ink);
            equal = true;
        }
        draw_curve(on, curve, curves[c].width, curves[c].ink);
    }
    if (equal) axes.label(axes.area.y - 12, "same");
    for (std::size_t c = std::size(curves); c-- > 0;)
        if (!std::isnan(pictures[0].psnr[c])) axes.tell(curves[c].ink, curves[c].name, 44);
}

}  // namespace

drawing quality_drawing(const std::vector<quality>& pictures, const std::string& title) {
    return {chart::w, chart::h, [&pictures, title](canvas& on) { draw(on, pictures, title); }};
}

}  // namespace zelt::tool
