// SPDX-License-Identifier: MIT
// zelt compare: how far two clips are apart.
#include "drawing/drawings.h"
#include "drawing/file.h"
#include "input_options.h"
#include "output.h"
#include "pictures/reader.h"
#include "plane.h"
#include "progress.h"
#include "route.h"
#include "verbs.h"
#include "zelt/sad.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>

namespace zelt::tool {
namespace {

constexpr const char* notes = R"(
  zelt compare clip.mp4 coded.mp4
  zelt compare clip.mp4 coded.mp4 -o worst.png -o time.svg
  zelt compare camera.yuv decoded.yuv --raw 640x480:nv12

Inputs are what 'zelt convert' reads. Planes of one layout are compared as they
are, of 8 and of 10 bits, packed and semi-planar ones as the planar layout of
the same samples; where the layouts differ both become yuv444, RGB with the
range and matrix of the other clip. Each line has the PSNR of Y, U and V and of
all samples in decibels ('inf' where nothing differs, '-' where there is no such
plane), and for Y the squared difference (SSD), the absolute one (SAD) and its
Hadamard transform's (SATD of 4x4 tiles), as means over the samples. The last
lines are over all pictures, and say which one is the first that differs.
--output draws: to .svg the PSNR of all pictures over time, to .png or .ppm the
picture of the second clip that has the least PSNR of all samples, and beside it
which blocks differ, in colours by rank. It can be given twice.)";

/// Sums over the samples of one plane or more
struct distance {
    uint64_t squares = 0, absolute = 0, transformed = 0, samples = 0;

    void add(const distance& d) {
        squares += d.squares, absolute += d.absolute, transformed += d.transformed, samples += d.samples;
    }
    double mean(uint64_t sum) const { return static_cast<double>(sum) / static_cast<double>(samples); }
    /// Not a number where there are no samples
    double decibels(int bits) const {
        const double peak = (1 << bits) - 1;
        return samples ? 10 * std::log10(peak * peak / mean(squares)) : std::numeric_limits<double>::quiet_NaN();
    }
    std::string psnr(int bits) const {
        char text[32] = "-";
        if (samples) std::snprintf(text, sizeof text, "%.3f", decibels(bits));
        return text;
    }
};

template <class T> struct metrics;
template <> struct metrics<uint8_t> {
    static constexpr auto ssd = zelt_ssd;
    static constexpr auto sad = zelt_sad64x64;
    static constexpr auto satd = zelt_satd;
};
template <> struct metrics<int16_t> {
    static constexpr auto ssd = zelt_ssd_16;
    static constexpr auto sad = zelt_sad64x64_16;
    static constexpr auto satd = zelt_satd_16;
};

/// Whole blocks of 64x64: the zeros beyond the pictures add nothing.
template <class T> distance between(const picture& a, const picture& b, int i) {
    constexpr int block = 64;
    const plane_of<T> pa(a, i, block, padding::zero), pb(b, i, block, padding::zero);
    distance d;
    d.samples = static_cast<uint64_t>(pa.w) * static_cast<uint64_t>(pa.h);
    for (int y = 0; y < pa.h; y += block)
        for (int x = 0; x < pa.w; x += block) {
            const T *sa = pa.at(x, y), *sb = pb.at(x, y);
            d.squares += metrics<T>::ssd(block, block, sa, sb, pa.stride, pb.stride);
            d.absolute += metrics<T>::sad(sa, sb, pa.stride, pb.stride);
            d.transformed += static_cast<uint64_t>(metrics<T>::satd(block, block, sa, sb, pa.stride, pb.stride));
        }
    return d;
}

/// Of the planes Y, U and V, those that there are
struct distances {
    distance plane[3];

    distances() = default;
    distances(const picture& a, const picture& b) {
        for (int i = 0; i < a.fmt->planes; ++i)
            plane[i] = a.fmt->bits > 8 ? between<int16_t>(a, b, i) : between<uint8_t>(a, b, i);
    }
    void add(const distances& d) {
        for (int i = 0; i < 3; ++i) plane[i].add(d.plane[i]);
    }
    distance whole() const {
        distance sum;
        for (const distance& d : plane) sum.add(d);
        return sum;
    }
    void print(const std::string& name, int bits) const {
        const distance& y = plane[0];
        std::printf("%7s  %8s  %8s  %8s  %8s  %9.4f  %8.4f  %8.4f\n", name.c_str(), y.psnr(bits).c_str(),
                    plane[1].psnr(bits).c_str(), plane[2].psnr(bits).c_str(), whole().psnr(bits).c_str(),
                    y.mean(y.squares), y.mean(y.absolute), y.mean(y.transformed));
    }
};

/// A picture of each clip, on their way
struct slot {
    route ways[2];
    picture read[2] = {};
    const picture* same[2] = {};  // in one layout
    distances apart = {};
};

/// The layout that two clips are compared in, and what its samples mean: RGB gets the other one's colours.
struct layout {
    const format* fmt;
    colours meaning;

    layout(const clip& a, const clip& b, const told_colours& told) {
        const format &planar_a = planar_yuv(*a.fmt), &planar_b = planar_yuv(*b.fmt);
        const bool rgb = !a.fmt->yuv || !b.fmt->yuv;
        fmt = planar_a.cs == planar_b.cs && !rgb ? &planar_a : &format_of(ZELT_CS_YUV444);
        if (rgb && a.fmt->yuv != b.fmt->yuv) meaning = colours_of(a.fmt->yuv ? a : b, told, a.h);
    }
    route way(const clip& from) const { return {*from.fmt, *fmt, route::size{from.w, from.h}, meaning}; }
};

/// The squared differences of one plane's blocks, and how many samples they are of
template <class T>
void add_blocks(const picture& a, const picture& b, int i, std::vector<double>& squares, std::vector<double>& samples) {
    constexpr int block = difference_field::block;
    const plane_of<T> pa(a, i, block, padding::zero), pb(b, i, block, padding::zero);
    const int w = block >> a.fmt->plane[i].across, h = block >> a.fmt->plane[i].down;
    std::size_t n = 0;
    for (int y = 0; y < pa.h; y += h)
        for (int x = 0; x < pa.w; x += w, ++n) {
            squares[n] += metrics<T>::ssd(w, h, pa.at(x, y), pb.at(x, y), pa.stride, pb.stride);
            samples[n] += std::min(w, pa.w - x) * std::min(h, pa.h - y);
        }
}

std::vector<double> block_differences(const picture& a, const picture& b) {
    constexpr int block = difference_field::block;
    const int count = ((a.w + block - 1) / block) * ((a.h + block - 1) / block);
    std::vector<double> squares(static_cast<std::size_t>(count)), samples(squares);
    for (int i = 0; i < a.fmt->planes; ++i)
        (a.fmt->bits > 8 ? add_blocks<int16_t> : add_blocks<uint8_t>)(a, b, i, squares, samples);
    for (std::size_t n = 0; n < squares.size(); ++n) squares[n] = std::sqrt(squares[n] / samples[n]);
    return squares;
}

picture copy_of(const picture& pic) {
    picture copy(*pic.fmt, pic.w, pic.h);
    for (int i = 0; i < pic.fmt->planes; ++i)
        for (int y = 0; y < pic.rows(i); ++y) std::memcpy(copy.row(i, y), pic.row(i, y), pic.row_bytes(i));
    return copy;
}

/// What is drawn of two clips
class drawer {
public:
    explicit drawer(int bits) : bits_(bits) {}

    void add(const distances& d, const picture& a, const picture& b, const picture& second) {
        const auto [y, u, v] = d.plane;
        const double all = d.whole().decibels(bits_);
        if (pictures_.empty() || all < lowest_) {
            lowest_ = all;
            worst_ = {static_cast<int>(pictures_.size()), (1 << bits_) - 1, block_differences(a, b)};
            shown_.emplace(copy_of(second));
        }
        pictures_.push_back({{y.decibels(bits_), u.decibels(bits_), v.decibels(bits_), all}});
    }

    void write(const std::vector<std::string>& paths, const distance& all, const colours& meaning) const {
        char lowest[32], title[160] = "No picture differs";
        std::snprintf(lowest, sizeof lowest, "%.3f", lowest_);
        if (std::isfinite(lowest_))
            std::snprintf(title, sizeof title, "PSNR: %s dB over all pictures; the lowest is picture %d with %s dB",
                          all.psnr(bits_).c_str(), worst_.number, lowest);
        route to_pixels(*shown_->fmt, format_of(ZELT_CS_BGRA8888), {shown_->w, shown_->h}, meaning);
        for (const std::string& path : paths)
            write_drawing(path, is_svg(path) ? quality_drawing(pictures_, title)
                                             : difference_drawing(worst_, to_pixels.run(*shown_), lowest));
    }

private:
    int bits_;
    double lowest_ = 0;
    difference_field worst_;
    std::optional<picture> shown_;
    std::vector<quality> pictures_;
};

void compare(const std::vector<std::string>& paths, const std::vector<std::string>& drawn, const input_options& how) {
    for (const std::string& path : drawn) check_drawing(path);
    const auto open = [&how](const std::string& path) { return open_reader(path, how.raw, false, how.threads); };
    const std::unique_ptr<reader> in[] = {open(paths[0]), open(paths[1])};
    const clip &a = in[0]->about(), &b = in[1]->about();
    if (a.w != b.w || a.h != b.h)
        throw failure(status::bad_input, "the pictures of " + paths[0] + " and " + paths[1] + " differ in size");
    const layout common(a, b, how.colours);
    const int bits = common.fmt->bits;
    std::vector<slot> slots;
    for (int i = 0; i < how.threads; ++i) slots.push_back({{common.way(a), common.way(b)}});
    std::printf("%7s  %8s  %8s  %8s  %8s  %9s  %8s  %8s\n", "picture", "PSNR Y", "PSNR U", "PSNR V", "PSNR", "SSD Y",
                "SAD Y", "SATD Y");
    distances all;
    drawer drawings(bits);
    int n = 0, first = -1;
    progress line(std::min(a.pictures, b.pictures));
    run_in_order(
        slots,
        [&](slot& s) {
            if (!in[0]->more() || !in[1]->more()) return false;
            for (int i = 0; i < 2; ++i) in[i]->next(s.read[i]);
            return true;
        },
        [](slot& s) {
            for (int i = 0; i < 2; ++i) s.same[i] = &s.ways[i].run(s.read[i]);
            s.apart = {*s.same[0], *s.same[1]};
        },
        [&](slot& s) {
            line.make_way();
            s.apart.print(std::to_string(n), bits);
            all.add(s.apart);
            if (!drawn.empty()) drawings.add(s.apart, *s.same[0], *s.same[1], s.read[1]);
            if (first < 0 && s.apart.whole().squares) first = n;
            ++n;
            line.tick();
        });
    if (!n) throw failure(status::bad_input, "there are no two pictures to compare");
    line.make_way();
    all.print("all", bits);
    if (first < 0)
        std::printf("no picture differs\n");
    else
        std::printf("the first picture that differs is %d\n", first);
    finish_output();
    if (!drawn.empty()) drawings.write(drawn, all.whole(), b.fmt->yuv ? colours_of(b, how.colours, b.h) : colours{});
    if (in[0]->more() || in[1]->more())
        throw failure(status::bad_input, paths[in[0]->more() ? 0 : 1] + ": has more pictures than the other clip");
}

}  // namespace

void add_compare(CLI::App& app) {
    CLI::App* verb = app.add_subcommand("compare", "Measures how far two clips are apart: PSNR, SSD, SAD, SATD");
    struct options {
        std::vector<std::string> paths, drawn;
        input_options input;
    };
    const auto opt = std::make_shared<options>();
    verb->add_option("-i,--input,CLIP", opt->paths, "Each of the two clips; - is standard input")
        ->required()
        ->type_name("FILE");
    verb->add_option("-o,--output", opt->drawn, "Draw .svg: PSNR over time; .png: what differs")->type_name("FILE");
    opt->input.add_raw(*verb);
    opt->input.add_range(*verb);
    opt->input.add_matrix(*verb);
    opt->input.add_threads(*verb);
    verb->footer(notes);
    verb->callback([opt] {
        if (opt->paths.size() != 2)
            throw failure(status::wrong_use, "two clips are compared, each with a --input of its own, not " +
                                                 std::to_string(opt->paths.size()));
        compare(opt->paths, opt->drawn, opt->input);
    });
}

}  // namespace zelt::tool
