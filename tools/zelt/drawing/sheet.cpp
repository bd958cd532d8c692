// SPDX-License-Identifier: MIT
#include "drawing/sheet.h"

#include "drawing/palette.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zelt::tool {
namespace {

constexpr int margin = 16, head = 38, legend = 88, narrowest = 450;  // in units

/// All amounts other than 0, by rank
class ranking {
public:
    explicit ranking(const std::vector<double>& amounts) {
        std::ranges::copy_if(amounts, std::back_inserter(sorted_), [](double a) { return a > 0; });
        std::ranges::sort(sorted_);
    }
    bool empty() const { return sorted_.empty(); }
    double last() const { return static_cast<double>(sorted_.size() - 1); }
    double at(double share) const { return sorted_[static_cast<std::size_t>(std::lround(share * last()))]; }
    colour of(double amount) const {
        if (amount <= 0) return palette::none;
        const auto [low, high] = std::equal_range(sorted_.begin(), sorted_.end(), amount);
        const auto middle = static_cast<double>((low - sorted_.begin()) + (high - sorted_.begin()) - 1) / 2;
        return palette::amount(last() > 0 ? middle / last() : 0.5);
    }

private:
    std::vector<double> sorted_;
};

}  // namespace

std::string short_number(double value) {
    static constexpr const char* suffixes[] = {"", "k", "M", "G"};
    int i = 0;
    for (; value >= 999.5 && i < 3; ++i) value /= 1000;
    char text[32];
    std::snprintf(text, sizeof text, "%.3g%s", value, suffixes[i]);
    return text;
}

sheet::sheet(int picture_w, int picture_h)
    : times(std::max(1, (639 + std::max(picture_w, picture_h)) / std::max(picture_w, picture_h))) {
    const double pw = picture_w * times, ph = picture_h * times;
    unit = std::max(1.0, pw / 960);
    const double space = std::round(margin * unit), column = std::max(pw, std::round(narrowest * unit));
    left = {space, std::round(head * unit), pw, ph};
    right = left;
    right.x += column + space;
    foot = left.y + ph + std::round(10 * unit);
    w = static_cast<int>(right.x + column + space);
    h = static_cast<int>(foot + std::round(legend * unit));
}

void sheet::title(canvas& on, const box& above, const std::string& text) const {
    on.text({above.x, above.y - 12 * unit}, anchor::start, 15 * unit, palette::ink, text);
}

void sheet::note(canvas& on, double x, int line, const std::string& text) const {
    on.text({x, foot + (18 + 20 * line) * unit}, anchor::start, 13 * unit, palette::faded, text);
}

void sheet::draw_map(canvas& on, int block, const std::vector<double>& amounts, const std::string& nothing) const {
    const ranking ranks(amounts);
    const int side = block * times, across = (static_cast<int>(right.w) + side - 1) / side;
    const picture cells(format_of(ZELT_CS_BGRA8888), across, static_cast<int>(amounts.size()) / across);
    for (int i = 0; i < cells.w * cells.h; ++i) {
        const colour c = ranks.of(amounts[static_cast<std::size_t>(i)]);
        uint8_t* p = cells.row(0, i / across) + 4 * (i % across);
        p[0] = c.b, p[1] = c.g, p[2] = c.r, p[3] = 255;
    }
    on.clip(right);  // which the last blocks may reach beyond
    on.image({right.x, right.y}, side, cells);
    on.clip(paper());

    const double length = w - right.x - std::round(margin * unit);
    const box swatch = {right.x, foot + 62 * unit, 12 * unit, 12 * unit};
    on.fill(swatch, palette::none);
    on.text({swatch.x + 18 * unit, swatch.y + 11 * unit}, anchor::start, 13 * unit, palette::faded, nothing);
    if (ranks.empty()) return;
    constexpr int steps = 100;
    for (int i = 0; i < steps; ++i) {  // each to the end, so that nothing shows between two
        const double x = length * i / steps;
        on.fill({right.x + x, foot, length - x, 14 * unit}, ranks.of(ranks.at((i + 0.5) / steps)));
    }
    static constexpr const char* names[] = {"lowest", "25 %", "half", "75 %", "highest"};
    for (int i = 0; i <= 4; ++i) {
        const anchor where = i == 0 ? anchor::start : i == 4 ? anchor::end : anchor::middle;
        const double x = right.x + length * i / 4;
        on.text({x, foot + 30 * unit}, where, 13 * unit, palette::ink, short_number(ranks.at(i / 4.0)));
        on.text({x, foot + 46 * unit}, where, 12 * unit, palette::faded, names[i]);
    }
}

}  // namespace zelt::tool
