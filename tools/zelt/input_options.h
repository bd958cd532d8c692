// SPDX-License-Identifier: MIT
#pragma once
// The options about what is read, which the verbs that read pictures share. They stay with the object.
#include "pictures/colours.h"
#include "pictures/reader.h"
#include "workers.h"

namespace CLI {
class App;
}

namespace zelt::tool {

struct input_options {
    std::string raw;
    int threads = processors();
    told_colours colours;

    void add_raw(CLI::App& verb);
    void add_range(CLI::App& verb);
    void add_matrix(CLI::App& verb);
    void add_threads(CLI::App& verb);
};

}  // namespace zelt::tool
