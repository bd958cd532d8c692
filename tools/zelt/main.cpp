// zelt: media building blocks from the command line.
#include "interrupt.h"
#include "pictures/failure.h"
#include "verbs.h"
#include "zelt/common.h"

#include <CLI/CLI.hpp>
#include <cctype>
#include <cstdio>

namespace zelt::tool {
namespace {

constexpr void (*verbs[])(CLI::App&) = {add_compare, add_convert, add_formats, add_keyframes,
                                        add_match,   add_md5,     add_probe};

std::string version_text() {
    std::string built = zelt_version();
    while (!built.empty() && built.back() == '\n') built.pop_back();
    return "zelt " ZELT_TOOL_VERSION " (library built " + built + ")";
}

/// Reports on one line, whatever bytes of a broken file or name the text quotes.
int report(status code, std::string text) {
    for (char& c : text)
        if (std::iscntrl(static_cast<unsigned char>(c))) c = '?';
    std::fprintf(stderr, "zelt: %s\n", text.c_str());
    return static_cast<int>(code);
}

int run(int argc, char** argv) {
    CLI::App app("Converts pictures and clips with libzelt.", "zelt");
    app.set_version_flag("--version", version_text());
    app.require_subcommand(0, 1);
    app.get_formatter()->label("SUBCOMMAND", "VERB");
    app.get_formatter()->label("Subcommands", "Verbs");
    app.footer("Exit status: 0 done, 1 wrong use, 2 bad input, 3 output failed, 4 unsupported.\n"
               "'zelt VERB --help' says more about a verb.");
    for (const auto add : verbs) add(app);
    try {
        app.parse(argc, argv);
        if (app.get_subcommands().empty())
            throw failure(status::wrong_use, "no verb is given (zelt --help lists them)");
    } catch (const CLI::Success& e) {
        return app.exit(e);
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
