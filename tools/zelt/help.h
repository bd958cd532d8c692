// SPDX-License-Identifier: MIT
#pragma once
// What users read of the verbs: help, manual page and completions, all made from the descriptions that the verbs give
// to their parser. The footer of a verb begins with a paragraph of examples; that and the options make up its help,
// which fits a screen of 24 lines. The manual has the rest of the footer too.
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}

namespace zelt::tool {

std::string help_text(const CLI::App& of);
std::string manual_page(const CLI::App& tool);  // for man(1)
std::string bash_completion(const CLI::App& tool);
std::string zsh_completion(const CLI::App& tool);

// What they share
std::vector<const CLI::App*> verbs_of(const CLI::App& tool);
std::vector<const CLI::Option*> options_of(const CLI::App& of);  // without --help, which every verb has
std::vector<std::string> names_of(const CLI::Option& option);    // "-i", "--input"
std::vector<std::string> choices_of(const CLI::Option& option);  // that its value is one of, or none
std::string value_of(const CLI::Option& option);                 // "FILE", "smooth|replicate"; "" of a flag
std::string usage_of(const CLI::App& of);                        // "zelt md5 [OPTIONS] IN"
std::vector<std::string> paragraphs_of(const CLI::App& of);      // of the footer: examples, then notes
std::string joined(const std::vector<std::string>& texts, const char* between);

}  // namespace zelt::tool
