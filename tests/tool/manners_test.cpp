// SPDX-License-Identifier: MIT
// How zelt treats whoever types: help, examples, what was meant, the manual page, completions, and zelt bench.
#include "tool/pictures.h"
#include "tool/run.h"

#include <regex>
#include <sstream>

namespace {

const std::vector<std::string> verbs = {"bench", "compare", "convert", "formats", "keyframes", "match", "md5", "probe"};

class manners : public tool {
protected:
    /// Three pictures, by the names that the examples have
    void store_clips() const {
        const std::string clip = load(ZELT_SAMPLES "/pan420.y4m");
        store("clip.mp4", clip.substr(0, clip.size() - 13 * (176 * 144 * 3 / 2 + sizeof "FRAME")));
        store("coded.mp4", load("clip.mp4"));
        store("camera.yuv", random_bytes(640 * 480 * 3 / 2, 1));
        store("decoded.yuv", load("camera.yuv"));
    }
    bool has(const std::string& program) const { return shell("command -v " + program).status == 0; }
};
using bench = manners;

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

}  // namespace

TEST_F(manners, help_fits_a_screen_and_its_examples_work) {
    store_clips();
    EXPECT_NE(zelt("convert --help").out.find("aliases"), std::string::npos);
    for (std::size_t i = 0; i <= verbs.size(); ++i) {
        const std::vector<std::string> lines = lines_of(zelt(i ? verbs[i - 1] + " --help" : "--help").out);
        SCOPED_TRACE(lines.at(0));
        EXPECT_LE(lines.size(), 23u);  // and one for the prompt
        int examples = 0;
        for (auto line = lines.begin(), heading = lines.end(); line != lines.end(); ++line) {
            EXPECT_LE(line->size(), 80u) << *line;
            if (*line == "Examples:") heading = line;
            if (heading == lines.end() || !line->starts_with("  ")) continue;
            ++examples;
#ifndef ZELT_TOOL_CONTAINERS
            if (std::regex_search(*line, std::regex("zelt (probe|keyframes)"))) continue;
#endif
            SCOPED_TRACE(*line);
            const std::string briefly = std::regex_replace(*line, std::regex("bench"), "bench --seconds 0");
            expect_success(shell("PATH=${Z%/*}:$PATH; " + briefly));
        }
        EXPECT_EQ(examples, 3);
    }
}

TEST_F(manners, files_need_no_option) {
    store("in.ppm", ppm(2, 1, "abcdef"));
    store("-pic.ppm", load("in.ppm"));
    for (const std::string arguments : {"in.ppm out.raw", "-i in.ppm out.raw", "in.ppm -o out.raw",
                                        "-oout.raw -iin.ppm", "--input=in.ppm out.raw", "-- -pic.ppm out.raw"}) {
        expect_success(zelt("convert --pix-fmt rgb24 " + arguments));
        EXPECT_EQ(load("out.raw"), "abcdef") << arguments;
        std::filesystem::remove(dir() + "/out.raw");
    }
    expect_failure(zelt("convert in.ppm out.ppm out.raw"), 1, "not expected: out.raw (zelt convert --help says more)");
    expect_failure(zelt("convert in.ppm"), 1, "--output is required");
}

TEST_F(manners, says_what_may_be_meant) {
    const struct {
        const char *command, *said;
    } rows[] = {
        {"mathc a b", "no verb 'mathc', is it match?"},
        {"comp a b", "is it compare?"},
        {"Md5 a", "is it md5?"},
        {"quality a", "no verb 'quality' (zelt --help says more)"},
        {"info a", "'zelt probe IN'"},
        {"clip.mp4 out.png", "no verb 'clip.mp4': one comes before files, such as convert"},
        {"-i clip.mp4", "a verb comes first"},
        {"--vresion", "zelt: there is no option '--vresion', is it --version?"},
        {"convert a b --skip=1 --lmit 3", "zelt: convert has no option '--lmit', is it --limit? (zelt convert --help"},
        {"convert a b --pix=nv12", "'--pix', is it --pix-fmt?"},
        {"convert -input a b", "is it --input?"},
        {"convert -pix_fmt nv12 -i a b.raw", "'-pix_fmt', is it --pix-fmt?"},
        {"convert a -s 64x64 b.raw", "'-s': give --size WxH"},
        {"convert a b.png -vf scale=64:64", "'-vf': give --size WxH"},
        {"convert a -vframes 1 b.png", "give --limit N"},
        {"convert -y a b.png", "'-y': leave it out, files are replaced"},
        {"convert --i420 -o a b", "'--i420': give --pix-fmt yuv420"},
        {"convert a b.raw --rawvideo", "give --to raw"},
        {"convert a b.raw --md5", "the verb md5"},
        {"md5 --i420 a", "zelt: md5 has no option '--i420' (zelt md5 --help says more)"},
        {"md5 a --verfiy --limit", "is it --verify?"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command);
        expect_failure(zelt(row.command), 1, row.said);
    }
}

TEST_F(manners, manual_is_sound_and_has_every_option) {
    const std::string page = zelt("--manual").out;
    for (const std::string& verb : verbs) {
        EXPECT_NE(page.find("\n.SS zelt " + verb), std::string::npos) << verb;
        const std::string help = zelt(verb + " --help").out;
        const std::regex option("  (-., )?--([a-z0-9-]+)");
        for (auto at = std::sregex_iterator(help.begin(), help.end(), option); at != std::sregex_iterator(); ++at) {
            const std::string name = std::regex_replace((*at)[2].str(), std::regex("-"), R"(\-)");
            EXPECT_NE(page.find(R"(\fB\-\-)" + name + R"(\fR)"), std::string::npos) << verb << " --" << name;
        }
    }
    if (!has("groff")) GTEST_SKIP() << "groff is not installed";
    store("zelt.1", page);
    const outcome shown = shell("groff -man -ww -Tascii -P-cbou zelt.1");
    expect_success(shown);
    EXPECT_NE(shown.out.find("  zelt convert clip.mp4 frame.png --limit 10\n"), std::string::npos);
    EXPECT_TRUE(std::regex_search(shown.out, std::regex(R"('zelt\s+formats'\s+lists)")));
}

TEST_F(manners, completes_in_bash_and_zsh) {
    const struct {
        const char *typed, *bash, *zsh;  // in zsh the line as a tabulator makes it, or what it lists
    } rows[] = {
        {"co", "compare convert", "<zelt co>"},
        {"conv", "convert", "<zelt convert >"},
        {"convert --fi", "--filter", "<zelt convert --filter >"},
        {"convert --filter ", "bilinear area", "area *bilinear"},
        {"convert -i clip.mp4 --pix-fmt nv1", "nv12 nv16", "nv12 *nv16"},
        {"convert cli", "", "<zelt convert clip.mp4 >"},
        {"md5 -i cli", "", "<zelt md5 -i clip.mp4 >"},
        {"md5 --per", "--per-frame", "<zelt md5 --per-frame >"},
        {"match --metric sa", "sad satd", "sad *satd"},
        {"convert --size ", "+o default:", "<zelt convert --size >"},  // no files
        {"--completion z", "zsh", "<zelt --completion zsh >"},
    };
    store_clips();
    expect_success(zelt("--completion bash >zelt.bash && \"$Z\" --completion zsh >_zelt"));
    store("complete.bash", R"(. ./zelt.bash
compopt() { printf '%s:' "$*"; }
for text; do
    COMP_WORDS=($text)
    [[ $text != *" " ]] || COMP_WORDS+=("")
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _zelt
    echo "${COMPREPLY[*]}"
done
)");
    store("complete.zsh", R"(zmodload zsh/zpty
zpty shell TERM=vt100 zsh -f -i
zpty -w shell 'PS1=; unset zle_bracketed_paste; fpath=($PWD $fpath); autoload -Uz compinit; compinit -D -u'
zpty -w shell 'show() { print -r -- "<$BUFFER>"; BUFFER= }; zle -N show; bindkey "^G" show; echo READY'
zpty -r -m shell text '*READY*READY*'
for typed; do
    zpty -w -n shell $typed$'\t\x07'
    zpty -r -m shell text '*<zelt*>*'
    print -r -- ${text//[[:cntrl:]]/ }
done
)");
    std::string typed;
    for (const auto& row : rows) typed += std::string(" 'zelt ") + row.typed + "'";
    const outcome bash = shell("bash complete.bash" + typed);
    expect_success(bash);
    const std::vector<std::string> in_bash = lines_of(bash.out);
    ASSERT_EQ(in_bash.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) EXPECT_EQ(in_bash[i], rows[i].bash) << rows[i].typed;

    if (!has("zsh")) GTEST_SKIP() << "zsh is not installed";
    const outcome zsh = shell("timeout 60 zsh -f complete.zsh" + typed);
    expect_success(zsh);
    const std::vector<std::string> in_zsh = lines_of(zsh.out);
    ASSERT_EQ(in_zsh.size(), std::size(rows)) << zsh.out;
    for (std::size_t i = 0; i < std::size(rows); ++i)
        EXPECT_TRUE(std::regex_search(in_zsh[i], std::regex(rows[i].zsh))) << rows[i].typed << in_zsh[i];
}

TEST_F(bench, digests_are_those_of_the_conversions) {
    store_clips();
    const outcome result = zelt("bench clip.mp4 --seconds 0 --json");
    expect_success(result);
    EXPECT_EQ(result.out.find("\"width\": 176, \"height\": 144"), result.out.find("\"width\""));
    const struct {
        const char *name, *arguments;
    } rows[] = {
        {"yuv420 -> rgba8888", "--pix-fmt rgba8888"},
        {"yuv420 -> nv12", "--pix-fmt nv12"},
        {"yuv420 -> yuv420 88x72", "--pix-fmt yuv420 --size 88x72"},
        {"yuv420 -> yuv420 58x48", "--pix-fmt yuv420 --size 58x48"},
        {"md5 yuv420", "--pix-fmt yuv420"},
    };
    for (const auto& row : rows) {
        const std::string digest =
            shell(std::string("\"$Z\" convert clip.mp4 - --to raw --limit 1 ") + row.arguments + " | md5sum").out;
        const std::regex wanted("\"name\": \"" + std::string(row.name) + "\", \"ms\": [0-9.]+, \"mpixels_per_s\": " +
                                "[0-9.]+, \"runs\": 3, \"md5\": \"" + digest.substr(0, 32) + "\"");
        EXPECT_TRUE(std::regex_search(result.out, wanted)) << row.name << digest << result.out;
    }
}

TEST_F(bench, digests_are_the_same_everywhere) {
    const outcome result = zelt("bench --seconds 0");
    expect_success(result);
    const std::vector<std::string> lines = lines_of(result.out);
    ASSERT_GT(lines.size(), 2u);
    std::string digests;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_LE(lines[i].size(), 80u) << lines[i];
        if (i > 1) digests += lines[i].substr(lines[i].rfind(' ') + 1) + '\n';
    }
    store("digests", digests);
    EXPECT_EQ(shell("md5sum <digests").out, "98b2ebd16b0915b8d81ae6c3171981e3  -\n") << result.out;
}
