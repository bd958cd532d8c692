// SPDX-License-Identifier: MIT
#include "input_options.h"

#include <CLI/CLI.hpp>

namespace zelt::tool {
namespace {

template <std::size_t N>
void add_names(CLI::App& verb, const char* name, std::string& to, const char* about, const char* const (&names)[N]) {
    verb.add_option(name, to, about)->check(CLI::IsMember(std::vector<std::string>(names, names + N)));
}

}  // namespace

void input_options::add_raw(CLI::App& verb) {
    verb.add_option("--raw", raw, "Read raw pictures, such as 640x480:nv12")->type_name("WxH:FORMAT");
}
void input_options::add_range(CLI::App& verb) {
    add_names(verb, "--range", colours.range, "Range of YUV samples, whatever the file says", range_names);
}
void input_options::add_matrix(CLI::App& verb) {
    add_names(verb, "--matrix", colours.matrix, "Matrix of YUV samples, whatever the file says", matrix_names);
}

void input_options::add_threads(CLI::App& verb) {
    verb.add_option("--threads", threads, "Threads to use (default: one per processor)")
        ->check(CLI::Range(1, 1024))
        ->type_name("N");
}

}  // namespace zelt::tool
