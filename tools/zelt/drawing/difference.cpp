// SPDX-License-Identifier: MIT
// What differs between two pictures.
#include "drawing/drawings.h"
#include "drawing/palette.h"
#include "drawing/sheet.h"

#include <algorithm>

namespace zelt::tool {

namespace {

void draw(canvas& on, const sheet& s, const difference_field& field, const picture& pixels, const std::string& psnr) {
    on.fill(s.paper(), palette::paper);
    on.image({s.left.x, s.left.y}, s.times, pixels);
    s.draw_map(on, field.block, field.blocks, "0: the same");
    s.title(on, s.left, "Picture " + std::to_string(field.number) + " of the second clip");
    s.title(on, s.right, "Where it differs: root mean square of 16x16 blocks, at most " + std::to_string(field.peak));
    const auto worst = std::ranges::max_element(field.blocks);
    if (*worst == 0) {
        s.note(on, s.left.x, 0, "No picture differs.");
        return;
    }
    s.note(on, s.left.x, 0, "PSNR " + psnr + " dB: no picture has less.");
    s.note(on, s.left.x, 1, "The frame is around the block that differs most.");
    const int side = field.block * s.times, across = (pixels.w + field.block - 1) / field.block;
    const int i = static_cast<int>(worst - field.blocks.begin());
    const double x = i % across * side, y = i / across * side;
    for (const box& panel : {s.left, s.right}) {
        const box around = {panel.x + x, panel.y + y, std::min(side * 1.0, panel.w - x),
                            std::min(side * 1.0, panel.h - y)};
        on.frame(around, 4 * s.unit, {0, 0, 0, 0.6});
        on.frame(around, 2 * s.unit, {255, 255, 255});
    }
}

}  // namespace

drawing difference_drawing(const difference_field& field, const picture& pixels, const std::string& psnr) {
    const sheet s(pixels.w, pixels.h);
    return {s.w, s.h, [s, &field, &pixels, psnr](canvas& on) { draw(on, s, field, pixels, psnr); }};
}

}  // namespace zelt::tool
