// SPDX-License-Identifier: MIT
// zelt convert: pictures from one kind of file and pixel format to another.
#include "input_options.h"
#include "interrupt.h"
#include "pictures/failure.h"
#include "pictures/reader.h"
#include "pictures/writer.h"
#include "progress.h"
#include "route.h"
#include "verbs.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cinttypes>
#include <cstdio>
#include <limits>

namespace zelt::tool {
namespace {

constexpr const char* notes = R"(
  zelt convert clip.mp4 frame.png --limit 10
  zelt convert clip.mp4 small.y4m --size 320x180
  zelt convert camera.yuv photo.png --raw 640x480:nv12

Input is told by its content: Y4M (mono, 4:2:0, 4:2:2 and 4:4:4 of 8 bits, the
latter three of 10), PNG of any kind, binary PPM and PGM, one or several in a
row, and any clip that libavformat and libavcodec read, where they are
installed. --raw reads bytes without a header.

Output is told by its extension (.png .ppm .y4m .raw .yuv .rgb) or --to, which
standard output needs. PNG files hold rgb888, or rgba8888 where the input has
alpha; PPM files rgb888, Y4M files what the input has or yuv444, raw files the
format of --pix-fmt. An existing file is replaced, when the new one is complete.

Several pictures to PNG or PPM make a numbered series: out.png gives
out-0001.png, out-0002.png and so on; out-%03d.png says where the number goes.
On standard output PPM pictures follow each other, PNG takes one. A series is
written whole or not at all.

The range and the matrix of YUV samples are --range and --matrix, else what the
file says, else what is usual: limited, and bt709 from 720 rows up, bt601 below.
-v says what was taken. YUV that is written from RGB has the same ones, by its
own rows; from YUV it keeps those of the input, and Y4M files say which.

--chroma says how chroma of 4:2:0, 4:2:2 and 4:4:0 gets the size of luma: smooth
or replicated. --size resizes: by --filter bilinear, or area, which is the
default below half of the width or height. There bilinear looks at two samples
of a row or column and misses those between: it aliases, and fine patterns come
out as coarse ones. Where it has to be bilinear, halve the size first, as often
as it takes.
It is one pass with the conversion where the library has that. --bands resizes
in bands of rows, as a decoder would hand them over; the pictures are those of
--filter bilinear.

Full-range bt601 between yuv444 and RGB, such as --pix-fmt yuv444 --range full
from a PNG file and back, is the library's dispatch (zelt/csc.h), and so is
yuv444a8; everything else is zelt/video.h. RGB bytes in another order are exact.
Formats without a direct conversion go through planar RGB or yuv444; -v says so.
'zelt formats' lists them.)";

constexpr uint64_t unlimited = std::numeric_limits<uint64_t>::max();

struct options {
    std::string in, out, to, pix_fmt, size, chroma = "smooth", filter;
    input_options input;
    uint64_t skip = 0, limit = unlimited, bands = 0;
    bool verbose = false;
};

/// A whole number from `least` up. CLI11 would let negative ones wrap and read a leading 0 as octal.
uint64_t count(const char* option, const std::string& text, uint64_t least) {
    uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc() && end == text.data() + text.size() && value >= least) return value;
    throw failure(status::wrong_use, std::string(option) + " takes a whole number from " + std::to_string(least) +
                                         " up, not '" + text + "'");
}

route::size size_of(const std::string& text) {
    const std::size_t x = text.find('x');
    const int w = header_number(text.substr(0, x)), h = x == text.npos ? -1 : header_number(text.substr(x + 1));
    if (w < 1 || h < 1)
        throw failure(status::wrong_use, "--size takes WIDTHxHEIGHT, such as 640x480, not '" + text + "'");
    return {w, h};
}

void check_interrupt() {
    if (caught_signal()) throw failure(status::output_failed, "interrupted");
}

/// How many pictures there may be to convert, 0 where nothing says so
uint64_t expected(const clip& about, const options& opt) {
    if (about.pictures <= opt.skip) return opt.limit == unlimited ? 0 : opt.limit;
    return std::min(about.pictures - opt.skip, opt.limit);
}

/// A picture on its way
struct slot {
    route path;
    picture in = {};
    const picture* result = nullptr;
    std::string code = {};
    bool more = false;  // whether others follow
};

uint64_t write_pictures(reader& in, std::vector<slot> slots, writer& out, const options& opt) {
    progress line(expected(in.about(), opt));
    uint64_t n = 0;
    bool more = true;
    run_in_order(
        slots,
        [&](slot& s) {
            if (!more) return false;
            in.next(s.in);
            s.more = more = ++n < opt.limit && in.more();
            return true;
        },
        [&](slot& s) {
            s.result = &s.path.run(s.in);
            out.encode(s.code, *s.result);
        },
        [&](slot& s) {
            out.write(*s.result, s.code, s.more);
            line.tick();
        });
    out.finish();
    return n;
}

manner manner_of(const options& opt) {
    const bool power_of_two = opt.bands <= 1 << 30 && (opt.bands & (opt.bands - 1)) == 0;
    if (!power_of_two) throw failure(status::wrong_use, "--bands takes a power of two");
    if (opt.bands && opt.size.empty()) throw failure(status::wrong_use, "--bands goes with --size");
    if (opt.bands && opt.filter == "area") throw failure(status::wrong_use, "--bands resizes bilinearly, not by area");
    manner how;
    how.band_rows = static_cast<int>(opt.bands);
    how.chroma = opt.chroma == "smooth" ? ZELT_VIDEO_SMOOTH : ZELT_VIDEO_REPLICATED;
    if (!opt.filter.empty()) how.filter = opt.filter == "area" ? ZELT_VIDEO_AREA : ZELT_VIDEO_BILINEAR;
    return how;
}

/// What is written: the input's pictures in another format and size
clip result_of(const clip& about, const format& fmt, route::size at, const colours& meaning) {
    clip result = about;
    result.fmt = &fmt, result.w = at.w, result.h = at.h;
    result.matrix = meaning.matrix, result.range = meaning.range;
    return result;
}

void say_how(const clip& about, const format& to, const route& path, const colours& meaning) {
    std::string text = path.text();
    if (about.fmt->yuv || to.yuv) text += "; " + meaning.text();
    if (about.interlacing != "p" && about.interlacing != "?") text += "; interlaced, pictures as they are";
    if (!about.note.empty()) text += "; " + about.note;
    std::fprintf(stderr, "%dx%d: %s\n", about.w, about.h, text.c_str());
}

void convert(const options& opt) {
    const file_kind& kind = kind_of_output(opt.to, opt.out);
    // What is wrong with the arguments is said before any file is read.
    const format* asked = opt.pix_fmt.empty() ? nullptr : &asked_format(kind, opt.pix_fmt);
    if (!asked && kind.formats.empty()) throw failure(status::wrong_use, "raw output needs --pix-fmt");
    manner how = manner_of(opt);
    const route::size wanted = opt.size.empty() ? route::size{} : size_of(opt.size);

    const std::unique_ptr<reader> in = open_reader(opt.in, opt.input.raw, false, opt.input.threads);
    clip about = in->about();
    const format& to = asked ? *asked : default_format(kind, *about.fmt);
    if (to.yuv) about.other_matrix.clear();  // it has no say
    const route::size given = {about.w, about.h}, at = opt.size.empty() ? given : wanted;
    how.meaning = colours_of(about, opt.input.colours, about.fmt->yuv ? given.h : at.h);
    std::vector<slot> slots;
    for (int i = 0; i < opt.input.threads; ++i) slots.push_back({{*about.fmt, given, to, at, how}});
    if (opt.verbose) say_how(about, to, slots[0].path, how.meaning);
    if (about.fmt->alpha && !to.alpha) std::fprintf(stderr, "zelt: alpha is dropped, %s has none\n", to.name);

    for (uint64_t n = 0; n < opt.skip && in->more(); ++n, check_interrupt()) in->next();
    if (!in->more())
        throw failure(status::bad_input,
                      opt.in + (opt.skip ? ": has no picture after those to skip" : ": has no picture"));

    writer out(kind, opt.out, result_of(about, to, at, how.meaning));
    const uint64_t written = write_pictures(*in, std::move(slots), out, opt);
    if (opt.verbose) std::fprintf(stderr, "%" PRIu64 " written: %s\n", written, out.summary().c_str());
}

}  // namespace

void add_convert(CLI::App& app) {
    CLI::App* verb = app.add_subcommand("convert", "Converts pictures between files and pixel formats");
    const auto opt = std::make_shared<options>();
    verb->add_option("-i,--input,IN", opt->in, "What to read; - is standard input")->required()->type_name("FILE");
    verb->add_option("-o,--output,OUT", opt->out, "What to write; - is standard output")->required()->type_name("FILE");
    verb->add_option("--to", opt->to, "Kind of output, else by the name of OUT")->type_name("KIND:{png,ppm,y4m,raw}");
    opt->input.add_raw(*verb);
    opt->input.add_range(*verb);
    opt->input.add_matrix(*verb);
    opt->input.add_threads(*verb);
    verb->add_option("--pix-fmt", opt->pix_fmt, "Pixel format to write (see zelt formats)")->type_name("FORMAT");
    const auto add_count = [verb](const char* name, uint64_t& to, uint64_t least, const char* about) {
        const auto set = [name, &to, least](const std::string& text) { to = count(name, text, least); };
        verb->add_option_function<std::string>(name, set, about)->type_name("N");
    };
    verb->add_option("--size", opt->size, "Size of the pictures written")->type_name("WxH");
    verb->add_option("--filter", opt->filter, "Below 1:2 bilinear aliases; area is the default")
        ->check(CLI::IsMember({"bilinear", "area"}));
    verb->add_option("--chroma", opt->chroma, "How to give chroma the size of luma")
        ->check(CLI::IsMember({"smooth", "replicate"}))
        ->capture_default_str();
    add_count("--bands", opt->bands, 1, "Resize so many rows at a time, a power of two");
    add_count("--skip", opt->skip, 0, "Pictures to pass over first");
    add_count("--limit", opt->limit, 1, "Pictures to convert at most");
    verb->add_flag("-v,--verbose", opt->verbose, "Say how pictures are converted");
    verb->footer(notes);
    verb->callback([opt] { convert(*opt); });
}

}  // namespace zelt::tool
