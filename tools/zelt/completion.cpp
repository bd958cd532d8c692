// SPDX-License-Identifier: MIT
// Completions for shells: verbs, options, the values that an option takes, else files.
#include "help.h"
#include "pictures/format.h"

#include <CLI/CLI.hpp>

namespace zelt::tool {
namespace {

/// What the value of an option is one of, or none
std::vector<std::string> values_of(const CLI::Option& option) {
    if (value_of(option) != "FORMAT") return choices_of(option);
    std::vector<std::string> names;
    for (const format& f : formats()) names.push_back(f.name);
    return names;
}

std::string all_names(const CLI::App& of) {
    std::string all = "--help";
    for (const CLI::Option* option : options_of(of)) all += ' ' + joined(names_of(*option), " ");
    return all;
}

/// An arm of bash's case for each option with a value other than a file
std::string bash_values(const CLI::App& of, const std::string& verb) {
    std::string arms;
    for (const CLI::Option* option : options_of(of)) {
        const std::string value = value_of(*option);
        if (value.empty() || value == "FILE") continue;
        std::vector<std::string> names = names_of(*option);
        for (std::string& name : names) name = '\'' + verb + ' ' + name + '\'';
        const std::vector<std::string> values = values_of(*option);
        arms += "    " + joined(names, " | ") + ") " +
                (values.empty() ? "compopt +o default" : "words='" + joined(values, " ") + '\'') + " ;;\n";
    }
    return arms;
}

std::string zsh_text(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':') result += '\\';
        result += c == '\'' ? "'\\''" : std::string{c};
    }
    return result;
}

/// Options as _arguments takes them, such as '(-i --input)'{-i,--input}'[What to read]:FILE:_files'
std::string zsh_options(const CLI::App& of) {
    std::string text;
    for (const CLI::Option* option : options_of(of)) {
        const std::vector<std::string> names = names_of(*option), values = values_of(*option);
        const bool repeated = option->get_items_expected_max() >= CLI::detail::expected_max_vector_size;
        text += repeated ? " \\\n        '*'" : " \\\n        '(" + joined(names, " ") + ")'";
        text += names.size() > 1 ? '{' + joined(names, ",") + '}' : names[0];
        text += "'[" + zsh_text(option->get_description()) + ']';
        if (const std::string value = value_of(*option); !value.empty()) {
            text += ':' + zsh_text(value) + ':';
            text += value == "FILE" ? "_files" : values.empty() ? "" : '(' + joined(values, " ") + ')';
        }
        text += '\'';
    }
    return text;
}

}  // namespace

std::string bash_completion(const CLI::App& tool) {
    std::string verbs, arms = bash_values(tool, "--completion");
    for (const CLI::App* verb : verbs_of(tool)) {
        verbs += verb->get_name() + ' ';
        arms += bash_values(*verb, verb->get_name());
        arms += "    '" + verb->get_name() + " '*) [[ $word != -* ]] || words='" + all_names(*verb) + "' ;;\n";
    }
    return "# Completion of zelt for bash\n_zelt() {\n"
           "    local word=${COMP_WORDS[COMP_CWORD]} verb=${COMP_WORDS[1]} words=\n"
           "    [[ $COMP_CWORD != 1 ]] || verb=\n"
           "    case \"$verb ${COMP_WORDS[COMP_CWORD-1]}\" in\n"
           "    ' '*) words='" +
           verbs + all_names(tool) + "' ;;\n" + arms +
           "    esac\n"
           "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")\n"
           "}\ncomplete -o default -F _zelt zelt\n";
}

std::string zsh_completion(const CLI::App& tool) {
    std::string verbs, arms;
    for (const CLI::App* verb : verbs_of(tool)) {
        verbs += " \\\n        '" + verb->get_name() + ':' + zsh_text(verb->get_description()) + '\'';
        arms += "    " + verb->get_name() + ") _arguments --help" + zsh_options(*verb) + " '*:FILE:_files' ;;\n";
    }
    return "#compdef zelt\n"
           "_zelt() {\n"
           "    local curcontext=$curcontext state line\n"
           "    local -a verbs=(" +
           verbs + ")\n    _arguments -C --help" + zsh_options(tool) +
           " '1: :->verb' '*:: :->rest'\n"
           "    if [[ $state == verb ]]; then\n        _describe verb verbs\n        return\n    fi\n"
           "    case $words[1] in\n" +
           arms + "    esac\n}\n_zelt \"$@\"\n";
}

}  // namespace zelt::tool
