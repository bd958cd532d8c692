// SPDX-License-Identifier: MIT
// The sizes of a clip's frames.
#include "drawing/chart.h"
#include "drawing/drawings.h"
#include "drawing/palette.h"

#include <algorithm>

namespace zelt::tool {

namespace {

void draw(canvas& on, const std::vector<frame_size>& frames, const std::string& title) {
    const int32_t largest = std::ranges::max(frames, {}, &frame_size::bytes).bytes;
    chart axes(on, title, "bytes", frames.size(), 0, std::max(largest, 1), 100);
    axes.tell(palette::red, "stream and container disagree", 204);
    axes.tell(palette::blue, "key frame", 84);
    axes.tell(palette::pale, "other frame", 96);
    const std::size_t of = pictures_at_once(frames.size(), axes.area.w / 2);  // a bar takes two pixels or more
    const double by_stream = axes.bottom + 13, by_container = by_stream + 18, thickness = 11;
    axes.label(by_stream + 10, "stream");
    axes.label(by_container + 10, "container");
    axes.number_pictures(by_container + 30, of > 1 ? "frame; of each " + std::to_string(of) + " the largest" : "frame");

    for (std::size_t i = 0; i < frames.size(); i += of) {
        frame_size bar = {};
        bool disagree = false;
        const std::size_t end = std::min(i + of, frames.size());
        for (std::size_t k = i; k < end; ++k) {
            bar.bytes = std::max(bar.bytes, frames[k].bytes);
            bar.key |= frames[k].key, bar.marked_key |= frames[k].marked_key;
            disagree |= frames[k].key != frames[k].marked_key;
        }
        const double x = axes.x(static_cast<double>(i)), pitch = axes.x(static_cast<double>(end)) - x;
        const double width = std::min(pitch * 0.8, 24.0), left = x + (pitch - width) / 2;
        const double height = std::max(axes.bottom - axes.y(bar.bytes), 1.0);
        const colour ink = disagree ? palette::red : bar.key ? palette::blue : palette::pale;
        on.fill({left, axes.bottom - height, width, height}, ink);
        if (bar.key) on.fill({left, by_stream, width, thickness}, ink);
        if (bar.marked_key) on.fill({left, by_container, width, thickness}, ink);
    }
}

}  // namespace

drawing timeline_drawing(const std::vector<frame_size>& frames, const std::string& title) {
    return {chart::w, chart::h, [&frames, title](canvas& on) { draw(on, frames, title); }};
}

}  // namespace zelt::tool
