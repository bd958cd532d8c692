// SPDX-License-Identifier: MIT
#include "help.h"

#include <CLI/CLI.hpp>

namespace zelt::tool {
namespace {

/// A row of two columns
std::string row(std::string left, std::size_t width, const std::string& right) {
    left.resize(std::max(width, left.size() + 2), ' ');
    return left + right + '\n';
}

}  // namespace

std::vector<const CLI::App*> verbs_of(const CLI::App& tool) { return tool.get_subcommands({}); }

std::vector<const CLI::Option*> options_of(const CLI::App& of) {
    return of.get_options([&](const CLI::Option* option) { return option != of.get_help_ptr(); });
}

std::vector<std::string> names_of(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames()) names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
    return names;
}

std::vector<std::string> choices_of(const CLI::Option& option) {
    const std::string type = option.get_type_name();  // such as "TEXT:{smooth,replicate}"
    const std::size_t begin = type.find('{'), end = type.rfind('}');
    if (begin == type.npos || end == type.npos) return {};
    return CLI::detail::split(type.substr(begin + 1, end - begin - 1), ',');
}

std::string value_of(const CLI::Option& option) {
    if (option.get_items_expected_max() == 0) return "";
    const std::vector<std::string> choices = choices_of(option);
    if (!choices.empty()) return joined(choices, "|");
    const std::string type = option.get_type_name();  // such as "N:INT in [1 - 128]"
    const std::size_t check = type.find(' ');
    return check == type.npos ? type : type.substr(0, type.rfind(':', check));
}

std::string usage_of(const CLI::App& of) {
    const bool verb = of.get_parent();
    std::string text = verb ? "zelt " + of.get_name() : "zelt";
    if (!verb) return text + " VERB [OPTIONS] ...";
    if (!options_of(of).empty()) text += " [OPTIONS]";
    for (const CLI::Option* option : options_of(of)) {
        if (!option->get_positional()) continue;
        std::string name = option->get_name(true);
        if (option->get_items_expected_max() >= CLI::detail::expected_max_vector_size) name += "...";
        text += option->get_required() ? " " + name : " [" + name + "]";
    }
    return text;
}

std::vector<std::string> paragraphs_of(const CLI::App& of) {
    std::vector<std::string> all;
    const std::string text = of.get_footer();
    for (std::size_t at = text.find_first_not_of('\n'), end; at != text.npos; at = text.find_first_not_of('\n', end)) {
        end = std::min(text.find("\n\n", at), text.size());
        all.push_back(text.substr(at, end - at));
    }
    return all;
}

std::string joined(const std::vector<std::string>& texts, const char* between) {
    return CLI::detail::join(texts, between);
}

std::string help_text(const CLI::App& of) {
    std::string text = "Usage: " + usage_of(of) + "\n" + of.get_description() + ".\n";
    for (const CLI::App* verb : verbs_of(of)) text += row("  " + verb->get_name(), 13, verb->get_description());
    for (const CLI::Option* option : options_of(of)) {
        const std::string usual = option->get_default_str();
        text += row("  " + joined(names_of(*option), ", ") + " " + value_of(*option), 31,
                    option->get_description() + (usual.empty() ? "" : " [" + usual + "]"));
    }
    const std::vector<std::string> said = paragraphs_of(of);
    if (!said.empty()) text += "\nExamples:\n" + said[0] + '\n';
    text += of.get_parent() ? "'man zelt' says more.\n"
                            : "Exit status: 0 done, 1 wrong use, 2 bad input, 3 output failed, 4 unsupported.\n"
                              "'zelt VERB --help' has the options of a verb, 'man zelt' everything.\n";
    return text;
}

}  // namespace zelt::tool
