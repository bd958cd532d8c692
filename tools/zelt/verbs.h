// SPDX-License-Identifier: MIT
#pragma once
// The verbs of the tool. A verb is a file of its own: a function that adds a subcommand with its options, and a
// callback that does the work and throws a failure. A line here and one in main.cpp register it. Its footer begins
// with three examples, as help.h tells.

namespace CLI {
class App;
}

namespace zelt::tool {

void add_bench(CLI::App& app);
void add_compare(CLI::App& app);
void add_convert(CLI::App& app);
void add_formats(CLI::App& app);
void add_keyframes(CLI::App& app);
void add_match(CLI::App& app);
void add_md5(CLI::App& app);
void add_probe(CLI::App& app);

}  // namespace zelt::tool
