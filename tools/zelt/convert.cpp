// zelt convert: pictures from one kind of file and pixel format to another.
#include "interrupt.h"
#include "pictures/failure.h"
#include "pictures/reader.h"
#include "pictures/writer.h"
#include "progress.h"
#include "route.h"
#include "verbs.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cinttypes>
#include <cstdio>
#include <limits>

namespace zelt::tool {
namespace {

constexpr const char* notes = R"(
Input is told by its content: Y4M (4:4:4, 4:2:2, 4:2:0 or mono, full range),
PNG of any kind, binary PPM and PGM, one or several in a row. Grey pictures and
those with reduced chroma become yuv444.

Output is told by its extension (.png .ppm .y4m .raw .yuv .rgb) or --to, which
standard output needs. PNG files hold rgb888, or rgba8888 where the input has
alpha; PPM files rgb888, Y4M files yuv444, raw files the format of --pix-fmt.
An existing file is replaced, when the new one is complete.

Several pictures to PNG or PPM make a numbered series: out.png gives
out-0001.png, out-0002.png and so on; out-%03d.png says where the number goes.
On standard output PPM pictures follow each other, PNG takes one. A series is
written whole or not at all.

--size resizes, bilinearly: in one pass with the conversion where the library
has a converter for that, otherwise before it. --bands does it in bands of rows,
as a decoder would hand them over; the pictures are the same.

Formats without a direct converter go through yuv444, yuv444a8 or planar RGB
(8-bit YUV loses a little); -v says so. 'zelt formats' lists the converters.)";

constexpr uint64_t unlimited = std::numeric_limits<uint64_t>::max();

struct options {
    std::string in, out, to, raw, pix_fmt, size;
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

uint64_t write_pictures(reader& in, route& path, picture& pic, writer& out, uint64_t limit) {
    progress line(limit == unlimited ? 0 : limit);
    uint64_t n = 0;
    for (bool more = true; more;) {
        check_interrupt();
        in.read(pic);
        more = ++n < limit && in.more();
        out.write(path.run(pic), more);
        line.tick();
    }
    out.finish();
    return n;
}

void convert(const options& opt) {
    const file_kind& kind = kind_of_output(opt.to, opt.out);
    if (kind.formats.empty() || !opt.pix_fmt.empty()) format_for(kind, opt.pix_fmt, false);  // before any file is read

    const bool power_of_two = opt.bands <= 1 << 30 && (opt.bands & (opt.bands - 1)) == 0;
    if (!power_of_two) throw failure(status::wrong_use, "--bands takes a power of two");
    if (opt.bands && opt.size.empty()) throw failure(status::wrong_use, "--bands goes with --size");
    const route::size wanted = opt.size.empty() ? route::size{} : size_of(opt.size);

    const std::unique_ptr<reader> in = open_reader(opt.in, opt.raw);
    const clip about = in->about();
    const route::size given = {about.w, about.h};
    clip result = about;
    if (!opt.size.empty()) result.w = wanted.w, result.h = wanted.h;
    route path(*about.fmt, given, format_for(kind, opt.pix_fmt, about.fmt->alpha), {result.w, result.h},
               static_cast<int>(opt.bands));
    if (opt.verbose) std::fprintf(stderr, "%dx%d: %s\n", about.w, about.h, path.text().c_str());

    picture pic(*about.fmt, about.w, about.h);
    for (uint64_t n = 0; n < opt.skip && in->more(); ++n, check_interrupt()) in->read(pic);
    if (!in->more())
        throw failure(status::bad_input,
                      opt.in + (opt.skip ? ": has no picture after those to skip" : ": has no picture"));

    writer out(kind, opt.out, result);
    const uint64_t written = write_pictures(*in, path, pic, out, opt.limit);
    if (opt.verbose) std::fprintf(stderr, "%" PRIu64 " written: %s\n", written, out.summary().c_str());
}

}  // namespace

void add_convert(CLI::App& app) {
    CLI::App* verb = app.add_subcommand("convert", "Converts pictures between files and pixel formats");
    const auto opt = std::make_shared<options>();
    verb->add_option("-i,--input", opt->in, "What to read; - is standard input")->required()->type_name("FILE");
    verb->add_option("-o,--output", opt->out, "What to write; - is standard output")->required()->type_name("FILE");
    verb->add_option("--to", opt->to, "Kind of output: png, ppm, y4m or raw")->type_name("KIND");
    verb->add_option("--raw", opt->raw, "Read raw pictures of this layout, such as 640x480:rgb888")
        ->type_name("WxH:FORMAT");
    verb->add_option("--pix-fmt", opt->pix_fmt, "Pixel format to write (see zelt formats)")->type_name("FORMAT");
    const auto add_count = [verb](const char* name, uint64_t& to, uint64_t least, const char* about) {
        const auto set = [name, &to, least](const std::string& text) { to = count(name, text, least); };
        verb->add_option_function<std::string>(name, set, about)->type_name("N");
    };
    verb->add_option("--size", opt->size, "Size of the pictures written")->type_name("WxH");
    add_count("--bands", opt->bands, 1, "Resize so many rows at a time, a power of two");
    add_count("--skip", opt->skip, 0, "Pictures to pass over first");
    add_count("--limit", opt->limit, 1, "Pictures to convert at most");
    verb->add_flag("-v,--verbose", opt->verbose, "Say how pictures are converted and what was written");
    verb->footer(notes);
    verb->callback([opt] { convert(*opt); });
}

}  // namespace zelt::tool
