// SPDX-License-Identifier: MIT
// The manual page, in the man macros that every roff has.
#include "help.h"

#include <CLI/CLI.hpp>

namespace zelt::tool {
namespace {

/// Text as roff takes it: the characters that are its own, and a line that would be a request
std::string plain(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '.' && (result.empty() || result.back() == '\n')) result += "\\&";
        if (c == '\\')
            result += "\\e";
        else if (c == '\'')
            result += "\\(aq";
        else if (c == '-')
            result += "\\-";
        else
            result += c;
    }
    return result;
}

std::string bold(const std::string& text) { return "\\fB" + plain(text) + "\\fR"; }

std::string options(const CLI::App& of) {
    std::string text;
    for (const CLI::Option* option : options_of(of)) {
        std::vector<std::string> names = names_of(*option);
        for (std::string& name : names) name = bold(name);
        const std::string value = value_of(*option), usual = option->get_default_str();
        text += ".TP\n" + joined(names, ", ") + (value.empty() ? "" : " \\fI" + plain(value) + "\\fR") + '\n' +
                plain(option->get_description() + (usual.empty() ? "" : " [" + usual + "]")) + ".\n";
    }
    return text;
}

std::string verb_section(const CLI::App& verb) {
    std::string text = ".SS " + plain(usage_of(verb)) + '\n' + plain(verb.get_description()) + ".\n" + options(verb);
    const std::vector<std::string> said = paragraphs_of(verb);
    for (std::size_t i = 1; i < said.size(); ++i) text += ".PP\n" + plain(said[i]) + '\n';
    if (!said.empty()) text += ".PP\nExamples:\n.PP\n.nf\n" + plain(said[0]) + "\n.fi\n";
    return text;
}

}  // namespace

std::string manual_page(const CLI::App& tool) {
    std::string text = ".TH ZELT 1 \"\" \"" + plain("zelt " ZELT_TOOL_VERSION) +
                       "\" \"User commands\"\n.SH NAME\nzelt " +
                       plain("- media building blocks from the command line") +
                       "\n.SH SYNOPSIS\n.B zelt\n.I VERB\n[\\fIOPTIONS\\fR] ...\n.SH DESCRIPTION\n" +
                       plain(tool.get_description()) + ".\n" + options(tool) + ".SH VERBS\n";
    for (const CLI::App* verb : verbs_of(tool)) text += verb_section(*verb);
    text += ".SH EXIT STATUS\n"
            ".TP\n.B 0\nDone.\n"
            ".TP\n.B 1\nWrong use: an option or a name that there is not.\n"
            ".TP\n.B 2\nBad input: missing, damaged, or, of \\fBmd5 \\-\\-verify\\fR, another one.\n"
            ".TP\n.B 3\nOutput failed; of a file that was there the old content stays.\n"
            ".TP\n.B 4\nNot supported.\n"
            ".PP\nA run that a signal ends leaves no file half written.\n"
            ".SH SEE ALSO\n.BR ffmpeg (1)\n";
    return text;
}

}  // namespace zelt::tool
