// zelt formats: what can be converted to what.
#include "output.h"
#include "pictures/format.h"
#include "route.h"
#include "verbs.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zelt::tool {
namespace {

using formats_list = std::vector<const format*>;

/// The formats for which `has(format, other)` holds for any other.
template <class F> formats_list with_any(const F& has) {
    formats_list list;
    for (const format& f : formats())
        if (std::ranges::any_of(formats(), [&](const format& other) { return has(f, other); })) list.push_back(&f);
    return list;
}

void print_matrix() {
    const auto pair = [](const format& from, const format& to) {
        return same_size_converter(from, to) || resizing_converter(from, to);
    };
    const formats_list from = with_any(pair), to = with_any([&](const format&a, const format&b) { return pair(b, a); });
    std::printf("%-10s", "from \\ to");
    for (const format* t : to) std::printf(" %s", t->name);
    for (const format* f : from) {
        std::printf("\n%-10s", f->name);
        for (const format* t : to) {
            const bool same = same_size_converter(*f, *t), resized = resizing_converter(*f, *t);
            std::printf(" %-*s", static_cast<int>(std::strlen(t->name)),
                        same && resized ? "x +"
                        : same          ? "x"
                        : resized       ? "+"
                                        : ".");
        }
    }
    std::printf("\n\nx same size, + resized too. zelt convert also joins two of them where there is no direct one.\n");
}

void print_names() {
    std::printf("\n%-10s %-12s %-6s %s\n", "format", "alias", "planes", "bytes per pixel");
    for (const format& f : formats())
        std::printf("%-10s %-12s %-6d %d\n", f.name, f.alias ? f.alias : "-", f.planes,
                    static_cast<int>(picture_bytes(f, 1, 1)));
}

}  // namespace

void add_formats(CLI::App& app) {
    app.add_subcommand("formats", "Lists the pixel formats and the conversions between them")->callback([] {
        print_matrix();
        print_names();
        finish_output();
    });
}

}  // namespace zelt::tool
