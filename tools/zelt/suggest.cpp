// SPDX-License-Identifier: MIT
#include "suggest.h"

#include "help.h"
#include "pictures/failure.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string_view>

namespace zelt::tool {
namespace {

/// What other tools call something, and what to do here
struct habit {
    std::string_view typed;
    const char* advice;
};

// An option in an advice has to be the verb's. Names that only lack a dash, or are near, need no row.
constexpr habit of_options[] = {
    // ffmpeg
    {"-s", "give --size WxH"},
    {"-video_size", "give --raw WxH:FORMAT"},
    {"-vf", "give --size WxH, --filter, --chroma, --range or --matrix; there are no other filters"},
    {"-sws_flags", "give --filter bilinear or area"},
    {"-f", "give --to KIND"},
    {"-c:v", "give --to KIND"},
    {"-vcodec", "give --to KIND"},
    {"-vframes", "give --limit N"},
    {"-frames:v", "give --limit N"},
    {"-t", "give --limit N, in pictures"},
    {"-ss", "give --skip N, in pictures"},
    {"-y", "leave it out, files are replaced when the new one is complete"},
    {"-an", "leave it out, sound is not read"},
    // vpxdec, aomdec and their encoders
    {"--i420", "give --pix-fmt yuv420"},
    {"--yv12", "give --pix-fmt yuv420, whose planes are Y, U and V"},
    {"--rawvideo", "give --to raw"},
    {"--scale", "give --size WxH"},
    {"--width", "give --raw WxH:FORMAT"},
    {"--height", "give --raw WxH:FORMAT"},
    {"-w", "give --raw WxH:FORMAT"},
    {"--frames", "give --limit N"},
    {"--md5", "the verb md5 prints digests"},
    {"--framemd5", "the verb md5 prints digests, with --per-frame of each picture"},
    {"--psnr", "the verb compare measures it"},
    {"--progress", "leave it out, it shows on a terminal"},
};
constexpr habit of_verbs[] = {
    {"help", "'zelt --help' lists the verbs, 'zelt VERB --help' the options of one"},
    {"version", "'zelt --version' tells it"},
    {"decode", "'zelt convert IN OUT' writes pictures"},
    {"resize", "'zelt convert IN OUT --size WxH' resizes"},
    {"scale", "'zelt convert IN OUT --size WxH' resizes"},
    {"info", "'zelt probe IN' lists tracks"},
    {"psnr", "'zelt compare CLIP CLIP' measures it"},
    {"framemd5", "'zelt md5 IN --per-frame' prints them"},
};

/// How many letters to add, remove, change or swap with the next one
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> before, last, row(b.size() + 1);
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                row[j] = i + j;
                continue;
            }
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] != b[j - 1])});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
        before = std::exchange(last, row);
    }
    return last.back();
}

/// The name that was probably meant, or none: one that begins so, or has up to a third of the letters wrong
std::string nearest(std::string_view typed, const std::vector<std::string>& names) {
    std::string best;
    std::size_t limit = typed.size() / 3 + 1;
    for (const std::string& name : names) {
        const bool begun = typed.size() > 1 && name.starts_with(typed);
        const std::size_t wrong = begun ? 0 : distance(typed, name);
        if (wrong < limit) best = name, limit = wrong;
    }
    return best;
}

/// What was typed without dashes and value, as long names are without dashes
std::string long_name(std::string_view typed) {
    typed.remove_prefix(std::min(typed.find_first_not_of('-'), typed.size()));
    return std::string(typed.substr(0, typed.find('=')));
}

bool has(const CLI::App& of, const std::string& name) { return of.get_option_no_throw(name); }

/// The option of an argument, which may have its value or other flags attached, or null
const CLI::Option* option_of(const CLI::App& of, const std::string& typed) {
    if (typed.starts_with("--")) return of.get_option_no_throw(typed.substr(0, typed.find('=')));
    const std::string name = long_name(typed);
    if (name.size() > 1 && has(of, "--" + name)) return nullptr;  // with a dash too few
    const CLI::Option* option = of.get_option_no_throw(typed.substr(0, 2));
    if (!option || option->get_items_expected_max() > 0 || typed.size() == 2) return option;
    return option_of(of, "-" + typed.substr(2));
}

/// Whether the options that an advice speaks of are there
bool applies(const CLI::App& of, std::string_view advice) {
    const std::size_t at = advice.find("--");
    return !advice.starts_with("give ") || has(of, std::string(advice.substr(at, advice.find_first_of(" ,", at) - at)));
}

[[noreturn]] void fail(const std::string& text, const std::string& help) {
    throw failure(status::wrong_use, text + " (" + help + " says more)");
}

[[noreturn]] void no_option(const CLI::App& of, const std::string& typed) {
    const bool verb = of.get_parent();
    const std::string help = verb ? "zelt " + of.get_name() + " --help" : "zelt --help";
    const std::string name = typed.substr(0, typed.find('='));
    const std::string text = (verb ? of.get_name() + " has" : "there is") + " no option '" + name + "'";
    for (const habit& h : of_options)
        if (h.typed == name && applies(of, h.advice)) fail(text + ": " + h.advice, help);
    std::vector<std::string> names;
    for (const CLI::Option* option : of.get_options())
        names.insert(names.end(), option->get_lnames().begin(), option->get_lnames().end());
    const std::string best = nearest(long_name(typed), names);
    if (best.empty() && !verb) fail(text + ": a verb comes first, such as convert", help);
    fail(text + (best.empty() ? "" : ", is it --" + best + "?"), help);
}

[[noreturn]] void no_verb(const CLI::App& tool, const std::string& typed) {
    const std::string text = "there is no verb '" + typed + "'";
    for (const habit& h : of_verbs)
        if (h.typed == typed) throw failure(status::wrong_use, text + ": " + h.advice);
    std::vector<std::string> names;
    for (const CLI::App* verb : verbs_of(tool)) names.push_back(verb->get_name());
    if (typed.find_first_of("./") != typed.npos)
        fail(text + ": one comes before files, such as convert", "zelt --help");
    const std::string best = nearest(typed, names);
    fail(text + (best.empty() ? "" : ", is it " + best + "?"), "zelt --help");
}

}  // namespace

void check_names(const CLI::App& tool, std::span<char* const> arguments) {
    const CLI::App* of = &tool;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string typed = arguments[i];
        if (typed == "--") return;
        if (typed.size() > 1 && typed[0] == '-') {
            const CLI::Option* option = option_of(*of, typed);
            if (!option) no_option(*of, typed);
            const bool attached = typed.starts_with("--") ? typed.find('=') != typed.npos : typed.size() > 2;
            if (option->get_items_expected_max() > 0 && !attached) ++i;
        } else if (of == &tool) {
            const auto verbs = verbs_of(tool);
            const auto verb = std::ranges::find(verbs, typed, [](const CLI::App* v) { return v->get_name(); });
            if (verb == verbs.end()) no_verb(tool, typed);
            of = *verb;
        }
    }
}

}  // namespace zelt::tool
