// SPDX-License-Identifier: MIT
// zelt formats: what can be converted to what.
#include "output.h"
#include "pictures/format.h"
#include "route.h"
#include "verbs.h"

#include <CLI/CLI.hpp>
#include <cstdio>

namespace zelt::tool {
namespace {

constexpr const char* notes = R"(
  zelt formats
  zelt formats | grep ^nv12        # what it is and what it becomes in one step
  zelt formats | grep yuv420p10le  # by ffmpeg's name)";

void print_names() {
    std::printf("%-10s %-12s %-6s %-5s %s\n", "format", "ffmpeg's", "planes", "bits", "bytes per pixel");
    for (const format& f : formats())
        std::printf("%-10s %-12s %-6d %-5d %g\n", f.name, f.alias ? f.alias : "-", f.planes, f.bits,
                    static_cast<double>(picture_bytes(f, 2, 2)) / 4);
    std::printf("\np010, p210 and p410 are planar, with 10 bits in the low end of words; p010le and p210le are what\n"
                "ffmpeg calls so, semi-planar with the bits in the high end.\n");
}

void print_conversions() {
    std::printf("\nIn one step, with * to another size too:\n");
    for (const format& from : formats()) {
        std::string list;
        for (const format& to : formats())
            if (const bool resized = resizes(from, to); resized || (from.cs != to.cs && converts(from, to)))
                list += ' ' + std::string(to.name) + (resized ? "*" : "");
        if (!list.empty()) std::printf("%-10s%s\n", from.name, list.c_str());
    }
    std::printf(
        "\nzelt convert also joins two of them where there is no direct one, and resizes before or after them.\n");
}

}  // namespace

void add_formats(CLI::App& app) {
    CLI::App* verb = app.add_subcommand("formats", "Lists the pixel formats and the conversions between them");
    verb->footer(notes);
    verb->callback([] {
        print_names();
        print_conversions();
        finish_output();
    });
}

}  // namespace zelt::tool
