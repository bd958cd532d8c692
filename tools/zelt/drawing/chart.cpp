// SPDX-License-Identifier: MIT
#include "drawing/chart.h"

#include "drawing/palette.h"
#include "drawing/sheet.h"

#include <algorithm>
#include <cmath>

namespace zelt::tool {
namespace {

/// The least of 1, 2 and 5 with any zeros that makes at most so many steps
double round_step(double range, int steps) {
    const double least = range / steps, power = std::pow(10, std::floor(std::log10(least)));
    for (const double step : {1, 2, 5})
        if (step * power >= least) return step * power;
    return 10 * power;
}

}  // namespace

chart::chart(canvas& on, const std::string& title, const std::string& unit, std::size_t pictures, double low,
             double high, double foot)
    : area{72, 92, 872, h - 92 - foot}, on_(on), pictures_(pictures) {
    const double step = round_step(high - low, 5);
    low_ = std::floor(low / step) * step, high_ = std::ceil(high / step) * step;
    on.fill({0, 0, w, h}, palette::paper);
    on.text({area.x, 30}, anchor::start, 15, palette::ink, title);
    label(61, unit);
    for (long i = 0, steps = std::lround((high_ - low_) / step); i <= steps; ++i) {
        const double value = low_ + static_cast<double>(i) * step;
        on.line({{area.x, y(value)}, {area.x + area.w, y(value)}}, 1, palette::rule);
        label(y(value) + 4, short_number(value));
    }
}

void chart::number_pictures(double at_y, const std::string& what) {
    const double pictures = static_cast<double>(pictures_), step = std::max(1.0, round_step(pictures, 10));
    for (double n = 0; n < pictures; n += step)
        on_.text({x(n + 0.5), at_y}, anchor::middle, 12, palette::faded, std::to_string(std::lround(n)));
    on_.text({area.x + area.w, at_y + 20}, anchor::end, 12, palette::faded, what);
}

void chart::label(double at_y, const std::string& text) {
    on_.text({area.x - 10, at_y}, anchor::end, 12, palette::faded, text);
}

void chart::tell(const colour& c, const std::string& text, double width) {
    told_ -= width;
    on_.fill({told_, 52, 10, 10}, c);
    on_.text({told_ + 16, 61}, anchor::start, 12, palette::faded, text);
}

std::size_t pictures_at_once(std::size_t pictures, double places) {
    return static_cast<std::size_t>(std::ceil(static_cast<double>(pictures) / places));
}

}  // namespace zelt::tool
