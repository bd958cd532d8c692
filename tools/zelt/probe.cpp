// SPDX-License-Identifier: MIT
// zelt probe: the tracks of a file and their media types.
#include "container.h"
#include "output.h"
#include "verbs.h"

#include <CLI/CLI.hpp>
#include <cstdio>

namespace zelt::tool {
namespace {

constexpr const char* notes = R"(
  zelt probe clip.mp4
  zelt probe clip.mp4 | grep video
  zelt probe - <clip.mp4

A line has the number of a track, its kind, the code of its coding in the
container, the library's media type for that (zelt/fcc2mt.h), and size and rate.)";

void probe(const std::string& path) {
    const std::unique_ptr<container> file = open_container(path);
    std::printf("%s: %s\n%-5s  %-9s  %-7s  %-18s  %s\n", path.c_str(), file->format().c_str(), "track", "kind", "code",
                "media type", "details");
    int n = 0;
    for (const track& t : file->tracks()) {
        std::printf("%-5d  %-9s  %-7s  %-18s  %s\n", n++, t.kind.c_str(), code_text(t).c_str(),
                    media_type_text(t.media_type).c_str(), t.details.c_str());
    }
    finish_output();
}

}  // namespace

void add_probe(CLI::App& app) {
    CLI::App* verb = app.add_subcommand("probe", "Lists the tracks of a file and their media types");
    const auto in = std::make_shared<std::string>();
    verb->add_option("-i,--input,IN", *in, "What to read; - is standard input")->required()->type_name("FILE");
    verb->footer(notes);
    verb->callback([in] { probe(*in); });
}

}  // namespace zelt::tool
