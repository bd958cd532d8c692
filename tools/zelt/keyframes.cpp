// SPDX-License-Identifier: MIT
// zelt keyframes: the frames of a video track, and which of them are key frames.
#include "container.h"
#include "drawing/drawings.h"
#include "drawing/file.h"
#include "interrupt.h"
#include "output.h"
#include "progress.h"
#include "verbs.h"
#include "zelt/fcc2mt.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zelt::tool {
namespace {

constexpr const char* notes = R"(
  zelt keyframes clip.mp4
  zelt keyframes clip.mp4 timeline.svg
  zelt keyframes clip.mp4 --csv >frames.csv

A line has the number of a unit, its time and bytes, whether it is a key frame
by the library's rule for its media type (zelt/fcc2mt.h), and whether the
container says so. H.264 and HEVC get start codes where a container has lengths,
as that rule takes them.)";

struct counts {
    int units = 0, key = 0, marked = 0, differing = 0;

    std::string text() const {
        return std::to_string(units) + " units, " + std::to_string(key) + " key frames; " + std::to_string(marked) +
               " by the container, " + std::to_string(differing) + " differ";
    }
};

/// Why the rule of a media type and the container may differ, or null where they should not.
const char* reason(int32_t media_type) {
    switch (media_type) {
    case ZELT_MT_VID_HEVC:
        return "Of an HEVC frame the rule looks at the first unit alone; one that begins with a parameter set or a\n"
               "message, as key frames from files do, is none by it.";
    case ZELT_MT_VID_H264: return "Of H.264 frames only those with IDR slices are key frames by the rule.";
    case ZELT_MT_VID_MPEG4:
    case ZELT_MT_VID_H263:
    case ZELT_MT_VID_WMV1:
    case ZELT_MT_VID_WMV2:
    case ZELT_MT_VID_DIV3:
    case ZELT_MT_VID_HFYU: return nullptr;
    default: return "There is no rule for frames of this media type: none is a key frame by it.";
    }
}

void print_unit(bool csv, int n, const access_unit& unit, int32_t media_type, bool key) {
    char time[32] = "";
    if (!std::isnan(unit.time)) std::snprintf(time, sizeof time, "%.3f", unit.time);
    if (csv)
        std::printf("%d,%s,%d,%d,%d,%d\n", n, time, unit.size, media_type, key, unit.marked_key);
    else
        std::printf("%6d  %9s  %9d  %-3s  %s\n", n, time, unit.size, key ? "yes" : "no",
                    unit.marked_key ? "yes" : "no");
}

counts list_units(container& file, bool csv, int32_t media_type, std::vector<frame_size>& frames) {
    counts t;
    progress line(file.units(), "units");
    for (access_unit unit; file.next(unit); ++t.units, line.tick()) {
        if (caught_signal()) throw failure(status::output_failed, "interrupted");
        line.make_way();
        const bool key = zelt_is_vkeyfrm(media_type, unit.data, unit.size);
        print_unit(csv, t.units, unit, media_type, key);
        frames.push_back({unit.size, key, unit.marked_key});
        t.key += key;
        t.marked += unit.marked_key;
        t.differing += key != unit.marked_key;
    }
    return t;
}

void keyframes(const std::string& path, const std::string& drawn, bool csv) {
    if (!drawn.empty()) check_drawing(drawn);
    const std::unique_ptr<container> opened = open_container(path);
    container& file = *opened;
    const auto video = std::ranges::find(file.tracks(), "video", &track::kind);
    if (video == file.tracks().end()) throw failure(status::bad_input, path + ": has no video");
    file.choose(static_cast<size_t>(video - file.tracks().begin()));

    const int32_t media_type = video->media_type;
    if (csv)
        std::printf("unit,time,bytes,media_type,key,container_key\n");
    else
        std::printf("%s: %s, %s%s\n%6s  %9s  %9s  %-3s  %s\n", path.c_str(), code_text(*video).c_str(),
                    media_type_text(media_type).c_str(),
                    file.start_codes_put_in() ? ", start codes put in place of lengths" : "", "unit", "time", "bytes",
                    "key", "container");
    std::vector<frame_size> frames;
    const counts t = list_units(file, csv, media_type, frames);
    if (!drawn.empty() && frames.empty()) throw failure(status::bad_input, path + ": has no frames to draw");
    if (!drawn.empty()) write_drawing(drawn, timeline_drawing(frames, media_type_text(media_type) + ": " + t.text()));
    if (!csv) {
        std::printf("%s\n", t.text().c_str());
        if (const char* why = reason(media_type); why && t.differing) std::printf("%s\n", why);
    }
    finish_output();
}

}  // namespace

void add_keyframes(CLI::App& app) {
    CLI::App* verb = app.add_subcommand("keyframes", "Lists the frames of a video and which are key frames");
    struct options {
        std::string in, out;
        bool csv = false;
    };
    const auto opt = std::make_shared<options>();
    verb->add_option("-i,--input,IN", opt->in, "What to read; - is standard input")->required()->type_name("FILE");
    verb->add_option("-o,--output,OUT", opt->out, "Draw the frames by size: .svg, .png or .ppm")->type_name("FILE");
    verb->add_flag("--csv", opt->csv, "Write comma-separated values");
    verb->footer(notes);
    verb->callback([opt] { keyframes(opt->in, opt->out, opt->csv); });
}

}  // namespace zelt::tool
