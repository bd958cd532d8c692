// SPDX-License-Identifier: MIT
// zelt: media building blocks from the command line.
#include "help.h"
#include "interrupt.h"
#include "output.h"
#include "suggest.h"
#include "verbs.h"
#include "zelt/common.h"

#include <CLI/CLI.hpp>
#include <cctype>
#include <cstdio>

namespace zelt::tool {
namespace {

constexpr void (*verbs[])(CLI::App&) = {add_bench,     add_compare, add_convert, add_formats,
                                        add_keyframes, add_match,   add_md5,     add_probe};

/// Reports on one line, whatever bytes of a broken file or name the text quotes.
int report(status code, std::string text) {
    for (char& c : text)
        if (std::iscntrl(static_cast<unsigned char>(c))) c = '?';
    std::fprintf(stderr, "zelt: %s\n", text.c_str());
    return static_cast<int>(code);
}

constexpr const char* examples = R"(
  zelt probe clip.mp4                         # what is in it
  zelt convert clip.mp4 first.png --limit 1   # its first picture
  zelt compare clip.mp4 coded.mp4             # what coding it again has cost)";

/// Ends the parsing with a text, as --help does.
[[noreturn]] void print(const std::string& text) {
    std::fputs(text.c_str(), stdout);
    throw CLI::Success();
}

/// Parses the arguments; the callback of their verb does the work.
void parse(CLI::App& app, int argc, char** argv) {
    check_names(app, {argv, static_cast<std::size_t>(argc)});
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& asked) {
        app.exit(asked);  // prints the help or the version
        finish_output();
        return;
    }
    if (app.get_subcommands().empty()) throw failure(status::wrong_use, "no verb is given (zelt --help lists them)");
}

int run(int argc, char** argv) {
    CLI::App app("Converts, measures and examines pictures and clips", "zelt");
    app.formatter_fn([](const CLI::App* of, const std::string&, CLI::AppFormatMode) { return help_text(*of); });
    app.set_version_flag("--version", std::string("zelt " ZELT_TOOL_VERSION " (") + zelt_kernels() + ")",
                         "Print the version and which kernels are in use");
    app.require_subcommand(0, 1);
    app.footer(examples);
    app.add_flag_callback(
        "--manual", [&app] { print(manual_page(app)); }, "Print the manual page, for man -l -");
    app.add_option_function<std::string>(
           "--completion",
           [&app](const std::string& shell) { print(shell == "zsh" ? zsh_completion(app) : bash_completion(app)); },
           "Print completions for a shell")
        ->check(CLI::IsMember({"bash", "zsh"}));
    for (const auto add : verbs) add(app);
    try {
        parse(app, argc, argv);
    } catch (const CLI::ParseError& e) {
        const std::vector<CLI::App*> verb = app.get_subcommands();
        const std::string call = verb.empty() ? "zelt" : "zelt " + verb[0]->get_name();
        return report(status::wrong_use, std::string(e.what()) + " (" + call + " --help says more)");
    } catch (const failure& e) {
        if (!caught_signal()) return report(e.code, e.what());
    } catch (const std::bad_alloc&) {
        return report(status::bad_input, "there is not enough memory for pictures of this size");
    }
    return 0;
}

}  // namespace
}  // namespace zelt::tool

int main(int argc, char** argv) {
    zelt::tool::watch_signals();
    const int result = zelt::tool::run(argc, argv);
    if (const int sig = zelt::tool::caught_signal()) zelt::tool::end_by_signal(sig);
    return result;
}
