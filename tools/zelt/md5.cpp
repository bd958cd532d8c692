// SPDX-License-Identifier: MIT
// zelt md5: digests of the pictures of a clip, as ffmpeg's framemd5 gives them.
#include "digest.h"
#include "input_options.h"
#include "output.h"
#include "pictures/reader.h"
#include "progress.h"
#include "verbs.h"

#include <CLI/CLI.hpp>
#include <cctype>
#include <cinttypes>
#include <cstdio>

namespace zelt::tool {
namespace {

constexpr const char* notes = R"(
  zelt md5 clip.mp4
  zelt md5 clip.mp4 --per-frame >clip.framemd5
  zelt md5 clip.mp4 --verify clip.framemd5

Clips are what 'zelt convert' reads, of any pixel format. One line is printed,
MD5=DIGEST, over the samples of all pictures, as 'ffmpeg -i CLIP -f md5 -'
prints it; with --per-frame a line per picture, as 'ffmpeg -i CLIP -f framemd5 -'
prints them.
--verify compares with what either of them printed: where a digest differs or
is missing the exit status is 2.)";

/// What a file of digests holds: one of the whole clip, or one for each picture.
struct digest_list {
    std::string whole;
    std::vector<std::string> pictures;
};

digest_list read_list(const std::string& path) {
    constexpr std::size_t longest = 4096;
    constexpr const char* whole = "MD5=";
    input in(path);
    digest_list list;
    while (in.peek() != EOF) {
        std::string line = in.line(longest, true);
        if (line.ends_with('\r')) line.pop_back();  // of a CRLF
        if (line.empty() || line[0] == '#') continue;
        const bool of_all = line.starts_with(whole);
        const std::size_t at = line.find_last_of(of_all ? "=" : ", ");
        std::string hex = line.substr(at == line.npos ? 0 : at + 1);
        for (char& c : hex) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (hex.size() != 32 || hex.find_first_not_of("0123456789abcdef") != hex.npos)
            in.bad("has a line without an MD5 digest at its end");
        if (of_all)
            list.whole = hex;
        else
            list.pictures.push_back(hex);
    }
    if (list.whole.empty() && list.pictures.empty()) in.bad("holds no digests");
    return list;
}

void print_head(const clip& about) {
    const auto ratio = [](std::string text, bool turned) {
        const auto colon = text.find(':');
        if (colon == text.npos) return text;
        const std::string first = text.substr(0, colon), second = text.substr(colon + 1);
        return turned ? second + '/' + first : first + '/' + second;
    };
    const std::string step = ratio(about.rate, true);  // a frame's time is the rate upside down
    const std::string aspect = about.aspect == "0:0" ? "0/1" : ratio(about.aspect, false);  // both: unknown
    std::printf("#format: frame checksums\n#version: 2\n#hash: MD5\n#tb 0: %s\n#media_type 0: video\n"
                "#codec_id 0: rawvideo\n#dimensions 0: %dx%d\n#sar 0: %s\n#stream#, dts,        pts, duration,     "
                "size, hash\n",
                step.c_str(), about.w, about.h, aspect.c_str());
}

/// A picture and what becomes of it
struct slot {
    picture pic;
    digest own;
};

/// Calls `use` with each picture's number and slot, in order, where `own` is there if it is wanted, and the line to
/// wipe before anything is printed.
template <class F> void for_each_picture(reader& in, int threads, bool own, const F& use) {
    progress line(in.about().pictures);
    std::size_t n = 0;
    std::vector<slot> slots(static_cast<std::size_t>(threads));
    run_in_order(
        slots,
        [&](slot& s) {
            if (!in.more()) return false;
            in.next(s.pic);
            return true;
        },
        [&](slot& s) {
            if (own) s.own = digest_of(s.pic);
        },
        [&](slot& s) {
            use(n++, s, line);
            line.tick();
        });
}

void list_digests(reader& in, int threads) {
    print_head(in.about());
    for_each_picture(in, threads, true, [](std::size_t n, const slot& s, progress& line) {
        line.make_way();
        std::printf("0, %10zu, %10zu, %8d, %8" PRId64 ", %s\n", n, n, 1, picture_bytes(*s.pic.fmt, s.pic.w, s.pic.h),
                    s.own.text().c_str());
    });
}

void print_digest(reader& in, int threads) {
    digester all;
    for_each_picture(in, threads, false, [&](std::size_t, const slot& s, progress&) { all.add(s.pic); });
    std::printf("MD5=%s\n", all.result().text().c_str());
}

void verify(reader& in, int threads, const digest_list& expected) {
    std::size_t pictures = 0, differing = 0;
    digester all;
    for_each_picture(in, threads, !expected.pictures.empty(), [&](std::size_t n, const slot& s, progress& line) {
        ++pictures;
        if (!expected.whole.empty()) all.add(s.pic);
        if (expected.pictures.empty()) return;
        const std::string is = s.own.text();
        const bool listed = n < expected.pictures.size();
        if (listed && expected.pictures[n] == is) return;
        line.make_way();
        std::printf("picture %zu: %s%s\n", n, is.c_str(),
                    listed ? (", not " + expected.pictures[n]).c_str() : " is not listed");
        ++differing;
    });
    for (std::size_t i = pictures; i < expected.pictures.size(); ++i, ++differing)
        std::printf("picture %zu is listed and missing\n", i);
    if (!expected.whole.empty()) {
        if (const std::string is = all.result().text(); expected.whole != is) {
            std::printf("MD5=%s, not %s\n", is.c_str(), expected.whole.c_str());
            ++differing;
        }
    }
    finish_output();
    if (differing) throw failure(status::bad_input, "the digests differ");
    std::printf("%zu pictures, the digests match\n", pictures);
}

}  // namespace

void add_md5(CLI::App& app) {
    CLI::App* verb = app.add_subcommand("md5", "Prints or verifies MD5 digests of the pictures of a clip");
    struct options {
        std::string in, list;
        input_options input;
        bool per_frame = false;
    };
    const auto opt = std::make_shared<options>();
    verb->add_option("-i,--input,IN", opt->in, "What to read; - is standard input")->required()->type_name("FILE");
    opt->input.add_raw(*verb);
    opt->input.add_threads(*verb);
    CLI::Option* list = verb->add_option("--verify", opt->list, "Digests to compare with")->type_name("FILE");
    verb->add_flag("--per-frame", opt->per_frame, "A digest for each picture")->excludes(list);
    verb->footer(notes);
    verb->callback([opt, list] {
        digest_list expected;
        if (list->count()) expected = read_list(opt->list);
        const std::unique_ptr<reader> in = open_reader(opt->in, opt->input.raw, true, opt->input.threads);
        const int threads = opt->input.threads;
        list->count()    ? verify(*in, threads, expected)
        : opt->per_frame ? list_digests(*in, threads)
                         : print_digest(*in, threads);
        finish_output();
    });
}

}  // namespace zelt::tool
