// SPDX-License-Identifier: MIT
// zelt: media building blocks from the command line.
#include "interrupt.h"
#include "output.h"
#include "verbs.h"
#include "zelt/common.h"

#include <CLI/CLI.hpp>
#include <cctype>
#include <cstdio>

namespace zelt::tool {
namespace {

constexpr void (*verbs[])(CLI::App&) = {add_compare, add_convert, add_formats, add_keyframes,
                                        add_match,   add_md5,     add_probe};

/// Reports on one line, whatever bytes of a broken file or name the text quotes.
int report(status code, std::string text) {
    for (char& c : text)
        if (std::iscntrl(static_cast<unsigned char>(c))) c = '?';
    std::fprintf(stderr, "zelt: %s\n", text.c_str());
    return static_cast<int>(code);
}

/// Parses the arguments; the callback of their verb does the work.
void parse(CLI::App& app, int argc, char** argv) {
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
    CLI::App app("Converts pictures and clips with libzelt.", "zelt");
    app.set_version_flag("--version", std::string("zelt " ZELT_TOOL_VERSION " (") + zelt_kernels() + ")");
    app.require_subcommand(0, 1);
    app.get_formatter()->label("SUBCOMMAND", "VERB");
    app.get_formatter()->label("Subcommands", "Verbs");
    app.footer("Exit status: 0 done, 1 wrong use, 2 bad input, 3 output failed, 4 unsupported.\n"
               "'zelt VERB --help' says more about a verb.");
    for (const auto add : verbs) add(app);
    try {
        parse(app, argc, argv);
    } catch (const CLI::ParseError& e) {
        return report(status::wrong_use, std::string(e.what()) + " (zelt --help says more)");
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
