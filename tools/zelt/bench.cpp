// SPDX-License-Identifier: MIT
// zelt bench: what the library's main conversions, resizes and metrics take on this processor.
#include "digest.h"
#include "input_options.h"
#include "interrupt.h"
#include "output.h"
#include "plane.h"
#include "progress.h"
#include "route.h"
#include "verbs.h"
#include "zelt/sad.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>

namespace zelt::tool {
namespace {

constexpr const char* notes = R"(
  zelt bench                      # on a made picture of 1920x1080
  zelt bench clip.mp4             # on the first picture of a clip
  zelt bench --json >here.json

The picture is made yuv420 and from that what each row begins with; then each
conversion, resizing or metric runs again and again, on one thread. A row has
the median time of a run, the pixels of the picture that is begun with by that
time, and the MD5 digest of the result: that of the samples as a raw file has
them, or of the costs as words of 32 bits. Digests are the same on every
processor. Metrics compare each block of luma with the place 3 columns to the
right and 2 rows down in the same picture. Shares of the size are rounded down.)";

struct options {
    std::string in;
    input_options input;
    double seconds = 6;
    bool json = false;
};

/// A conversion, resizing where the size is another share of the picture's
struct conversion {
    const char *from, *to;
    int times = 1, by = 1;
};
// clang-format off
constexpr conversion conversions[] = {
    // of one size
    {"nv12", "rgba8888"}, {"yuv420", "rgba8888"}, {"yuv420", "rgb888"}, {"yuyv", "rgb888"}, {"yuv444", "rgba8888"},
    {"p010le", "rgba8888"}, {"rgba8888", "nv12"}, {"rgb888", "yuv444"}, {"yuv420", "nv12"}, {"yuyv", "yuv420"},
    {"p010le", "nv12"},
    // to others, by area below the half
    {"nv12", "nv12", 2, 3}, {"nv12", "rgba8888", 2, 3}, {"yuv420", "yuv420", 1, 2}, {"yuv420", "yuv420", 1, 3},
    {"yuv420", "yuv420", 2, 1}, {"rgba8888", "rgba8888", 2, 3},
};
// clang-format on

struct metric {
    const char* name;
    int block;
    uint32_t (*cost)(const uint8_t* a, const uint8_t* b, int stride);
};
constexpr metric metrics[] = {
    {"sad 8x8", 8, [](const uint8_t* a, const uint8_t* b, int s) { return zelt_sad8x8(a, b, s, s); }},
    {"sad 16x16", 16, [](const uint8_t* a, const uint8_t* b, int s) { return zelt_sad16x16(a, b, s, s); }},
    {"sad 64x64", 64, [](const uint8_t* a, const uint8_t* b, int s) { return zelt_sad64x64(a, b, s, s); }},
    {"satd 8x8", 8,
     [](const uint8_t* a, const uint8_t* b, int s) { return static_cast<uint32_t>(zelt_satd8x8(a, b, s, s)); }},
    {"ssd 16x16", 16, [](const uint8_t* a, const uint8_t* b, int s) { return zelt_ssd(16, 16, a, b, s, s); }},
};
constexpr std::size_t rows = std::size(conversions) + std::size(metrics) + 1;  // and MD5 itself

struct result {
    std::string name;
    double ms;
    std::size_t runs;
    digest of;
};

/// The median time of `run` in milliseconds, over at least three runs and so many seconds, with what it leads to
template <class F> result timed(std::string name, double seconds, const F& run, digest (*of)(decltype(run()))) {
    using clock = std::chrono::steady_clock;
    const digest found = of(run());  // the first run touches the memory
    std::vector<double> times;
    for (double all = 0; all < seconds || times.size() < 3; all += times.back() / 1000) {
        if (caught_signal()) throw failure(status::output_failed, "interrupted");
        const clock::time_point start = clock::now();
        run();
        times.push_back(std::chrono::duration<double, std::milli>(clock::now() - start).count());
    }
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::ranges::nth_element(times, middle);
    return {std::move(name), *middle, times.size(), found};
}

/// Slopes, edges and some noise, the same everywhere
picture made_picture() {
    picture pic(format_of(ZELT_CS_YUV420), 1920, 1080);
    uint32_t random = 1;
    for (int i = 0; i < pic.fmt->planes; ++i)
        for (int y = 0; y < pic.rows(i); ++y)
            for (int x = 0; x < pic.columns(i); ++x) {
                random = random * 1664525 + 1013904223;
                pic.row(i, y)[x] = static_cast<uint8_t>(32 + ((x + 2 * y) >> 3) % 128 + (x / 64 + y / 64) % 2 * 32 +
                                                        static_cast<int>(random >> 28));
            }
    return pic;
}

/// NV12 in words of 10 bits, with zeros below
picture widened(const picture& nv12) {
    picture pic(format_of(ZELT_CS_P010LE), nv12.w, nv12.h);
    for (int i = 0; i < pic.fmt->planes; ++i)
        for (int y = 0; y < pic.rows(i); ++y)
            for (std::size_t x = 0; x < nv12.row_bytes(i); ++x) {
                pic.row(i, y)[2 * x] = 0;
                pic.row(i, y)[2 * x + 1] = nv12.row(i, y)[x];
            }
    return pic;
}

class bench {
public:
    bench(const picture& yuv420, const colours& meaning, double seconds)
        : yuv420_(yuv420), size_{yuv420.w, yuv420.h}, meaning_(meaning), seconds_(seconds / rows) {}

    std::vector<result> run() {
        progress line(rows, "measurements");
        std::vector<result> all;
        const auto add = [&](result r) { all.push_back(std::move(r)), line.tick(); };
        for (const conversion& c : conversions) add(convert(c));
        for (const metric& m : metrics) add(compare(m));
        add(timed(
            "md5 yuv420", seconds_, [&] { return digest_of(yuv420_); }, [](digest d) { return d; }));
        return all;
    }

private:
    result convert(const conversion& c) const {
        const format &from = named_format(c.from), &to = named_format(c.to);
        const auto share = [&](int64_t n) { return std::clamp<int64_t>(n * c.times / c.by, 1, INT32_MAX); };
        const route::size at = {static_cast<int>(share(size_.w)), static_cast<int>(share(size_.h))};
        const bool wide = from.cs == ZELT_CS_P010LE;
        route way(*yuv420_.fmt, wide ? format_of(ZELT_CS_NV12) : from, size_, meaning_);
        const picture& given = way.run(yuv420_);
        const std::optional<picture> words = wide ? std::optional(widened(given)) : std::nullopt;
        route path(from, size_, to, at, manner{meaning_});
        std::string name = std::string(c.from) + " -> " + c.to;
        if (at != size_) name += ' ' + std::to_string(at.w) + 'x' + std::to_string(at.h);
        return timed(
            name, seconds_, [&]() -> const picture& { return path.run(words ? *words : given); }, digest_of);
    }

    result compare(const metric& m) const {
        const plane luma(yuv420_, 0, m.block, padding::replicate);
        std::vector<uint32_t> costs;
        const auto run = [&]() -> const std::vector<uint32_t>& {
            costs.clear();
            for (int y = 0; y < luma.h; y += m.block)
                for (int x = 0; x < luma.w; x += m.block)
                    costs.push_back(m.cost(luma.at(x, y), luma.at(x + 3, y + 2), luma.stride));
            return costs;
        };
        return timed(m.name, seconds_, run, [](const std::vector<uint32_t>& words) {
            digester all;
            all.add(words.data(), words.size() * sizeof words[0]);
            return all.result();
        });
    }

    const picture& yuv420_;
    route::size size_;
    colours meaning_;
    double seconds_;  // for a row
};

void print(const std::vector<result>& results, const picture& pic, bool json) {
    const double pixels = static_cast<double>(pic.w) * pic.h;
    if (json)
        std::printf("{\"version\": \"" ZELT_TOOL_VERSION "\", \"kernels\": \"%s\", \"width\": %d, \"height\": %d, "
                    "\"results\": [",
                    zelt_kernels(), pic.w, pic.h);
    else
        std::printf("zelt " ZELT_TOOL_VERSION " (%s), a picture of %dx%d, one thread\n%-29s%8s%9s  %s\n",
                    zelt_kernels(), pic.w, pic.h, "", "ms", "Mpixel/s", "MD5 of the result");
    const char* separator = "\n";
    for (const result& r : results) {
        const double rate = pixels / 1000 / r.ms;
        if (json)
            std::printf("%s  {\"name\": \"%s\", \"ms\": %.6f, \"mpixels_per_s\": %.3f, \"runs\": %zu, \"md5\": \"%s\"}",
                        separator, r.name.c_str(), r.ms, rate, r.runs, r.of.text().c_str());
        else
            std::printf("%-29s%8.3f%9.0f%34s\n", r.name.c_str(), r.ms, rate, r.of.text().c_str());
        separator = ",\n";
    }
    if (json) std::printf("\n]}\n");
    finish_output();
}

void measure(const picture& yuv420, const colours& meaning, const options& opt) {
    print(bench(yuv420, meaning, opt.seconds).run(), yuv420, opt.json);
}

void measure_clip(const options& opt) {
    const std::unique_ptr<reader> in = open_reader(opt.in, opt.input.raw);
    const clip& about = in->about();
    if (!in->more()) throw failure(status::bad_input, opt.in + ": has no picture");
    const colours meaning = colours_of(about, opt.input.colours, about.h);
    route way(*about.fmt, format_of(ZELT_CS_YUV420), route::size{about.w, about.h}, meaning);
    measure(way.run(in->next()), meaning, opt);
}

}  // namespace

void add_bench(CLI::App& app) {
    CLI::App* verb = app.add_subcommand("bench", "Times the library on this processor");
    const auto opt = std::make_shared<options>();
    verb->add_option("-i,--input,IN", opt->in, "A clip or picture instead of a made one")->type_name("FILE");
    opt->input.add_raw(*verb);
    verb->add_option("--seconds", opt->seconds, "How long to measure in all")
        ->check(CLI::Range(0., 3600.))
        ->type_name("S")
        ->capture_default_str();
    verb->add_flag("--json", opt->json, "Print JSON instead of a table");
    verb->footer(notes);
    verb->callback([opt] {
        opt->in.empty() ? measure(made_picture(), {ZELT_VIDEO_BT709, ZELT_VIDEO_LIMITED}, *opt) : measure_clip(*opt);
    });
}

}  // namespace zelt::tool
