// zelt compare: how far two clips are apart.
#include "interrupt.h"
#include "output.h"
#include "pictures/reader.h"
#include "plane.h"
#include "progress.h"
#include "route.h"
#include "verbs.h"
#include "zelt/sad.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>

namespace zelt::tool {
namespace {

constexpr const char* notes = R"(
Pictures are compared in yuv444, into which others are converted first. Each
line has the PSNR of Y, U and V in decibels ('inf' where nothing differs), and
for Y the absolute difference and its Hadamard transform's (SATD of 4x4 tiles),
both as means over the samples. The last line is over all pictures.)";

/// Sums over the samples of one plane or more
struct distance {
    uint64_t squares = 0, absolute = 0, transformed = 0, samples = 0;

    void add(const distance& d) {
        squares += d.squares, absolute += d.absolute, transformed += d.transformed, samples += d.samples;
    }
    double psnr() const {
        return 10 * std::log10(255.0 * 255 * static_cast<double>(samples) / static_cast<double>(squares));
    }
    double mean(uint64_t sum) const { return static_cast<double>(sum) / static_cast<double>(samples); }
};

/// Whole blocks of 64x64: the zeros beyond the pictures add nothing.
distance between(const picture& a, const picture& b, int i) {
    constexpr int block = 64;
    const plane pa(a, i, block, padding::zero), pb(b, i, block, padding::zero);
    distance d;
    d.samples = static_cast<uint64_t>(a.w) * static_cast<uint64_t>(a.h);
    for (int y = 0; y < a.h; y += block)
        for (int x = 0; x < a.w; x += block) {
            d.squares += zelt_ssd(block, block, pa.at(x, y), pb.at(x, y), pa.stride, pb.stride);
            d.absolute += zelt_sad64x64(pa.at(x, y), pb.at(x, y), pa.stride, pb.stride);
            d.transformed +=
                static_cast<uint64_t>(zelt_satd(block, block, pa.at(x, y), pb.at(x, y), pa.stride, pb.stride));
        }
    return d;
}

void print(const std::string& name, const distance (&d)[3]) {
    std::printf("%7s  %8.3f  %8.3f  %8.3f  %8.4f  %8.4f\n", name.c_str(), d[0].psnr(), d[1].psnr(), d[2].psnr(),
                d[0].mean(d[0].absolute), d[0].mean(d[0].transformed));
}

/// One of the two clips
struct side {
    std::unique_ptr<reader> in;
    route to_yuv;
    picture pic;

    explicit side(std::unique_ptr<reader> opened)
        : in(std::move(opened)), to_yuv(*in->about().fmt, format_of(ZELT_CS_YUV444), in->about().w, in->about().h),
          pic(*in->about().fmt, in->about().w, in->about().h) {}
    const picture& next() {
        in->read(pic);
        return to_yuv.run(pic);
    }
};

void compare(const std::vector<std::string>& paths) {
    side a(open_reader(paths[0], "")), b(open_reader(paths[1], ""));
    if (a.pic.w != b.pic.w || a.pic.h != b.pic.h)
        throw failure(status::bad_input, "the pictures of " + paths[0] + " and " + paths[1] + " differ in size");
    std::printf("%7s  %8s  %8s  %8s  %8s  %8s\n", "picture", "PSNR Y", "PSNR U", "PSNR V", "SAD Y", "SATD Y");
    distance all[3];
    int n = 0;
    progress line(0);
    for (; a.in->more() && b.in->more(); ++n) {
        if (caught_signal()) throw failure(status::output_failed, "interrupted");
        const picture &pa = a.next(), &pb = b.next();
        distance d[3];
        for (int i = 0; i < 3; ++i) d[i] = between(pa, pb, i), all[i].add(d[i]);
        print(std::to_string(n), d);
        line.tick();
    }
    if (!n) throw failure(status::bad_input, "there are no two pictures to compare");
    print("all", all);
    finish_output();
    if (a.in->more() || b.in->more())
        throw failure(status::bad_input, paths[a.in->more() ? 0 : 1] + ": has more pictures than the other clip");
}

}  // namespace

void add_compare(CLI::App& app) {
    CLI::App* verb = app.add_subcommand("compare", "Measures how far two clips are apart: PSNR, SAD, SATD");
    const auto paths = std::make_shared<std::vector<std::string>>();
    verb->add_option("-i,--input", *paths, "What to read, once for each clip; - is standard input")
        ->required()
        ->type_name("FILE");
    verb->footer(notes);
    verb->callback([paths] {
        if (paths->size() != 2)
            throw failure(status::wrong_use, "two clips are compared, each with a --input of its own, not " +
                                                 std::to_string(paths->size()));
        compare(*paths);
    });
}

}  // namespace zelt::tool
