// SPDX-License-Identifier: MIT
// zelt match: where the blocks of a picture come from in the one before, by full search.
#include "drawing/drawings.h"
#include "drawing/file.h"
#include "input_options.h"
#include "output.h"
#include "pictures/reader.h"
#include "pictures/writer.h"
#include "plane.h"
#include "progress.h"
#include "route.h"
#include "verbs.h"
#include "zelt/sad.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <map>
#include <optional>
#include <utility>

namespace zelt::tool {
namespace {

constexpr const char* notes = R"(
  zelt match clip.mp4 motion.png --frame 1
  zelt match clip.mp4 motion.png --block 8 --metric satd
  zelt match clip.mp4 --csv >vectors.csv

Input is what 'zelt convert' reads. Every block of a picture's luma is compared
with all places within the range in the picture before, whose edges are
replicated outside. Of equal costs the shortest vector wins. --output draws the
vectors as arrows, from where a block was to where it is, in colours by
direction, and beside them the costs, in colours by rank; small pictures are
enlarged. Without --frame all pictures but the first are matched, and drawn into
a numbered series.)";

struct options {
    std::string in, out, metric = "sad";
    input_options input;
    int block = 16, range = 16, frame = 0;
    bool csv = false;
};

/// A metric that is at least `bound(its value)` in absolute differences: what has more cannot be better.
struct metric {
    const char* name;
    uint32_t (*cost)(int n, const uint8_t* a, const uint8_t* b, int sa, int sb);
    double (*bound)(int n, double cost);
};
// In a 4x4 tile the coefficients' magnitudes sum up to at least 4 times the root of the squared differences' sum, and
// that root is at least a quarter of the absolute ones' sum: a tile's SATD is half its SAD or more.
constexpr metric metrics[] = {
    {"sad", nullptr, [](int, double cost) { return cost; }},
    {"satd",
     [](int n, const uint8_t* a, const uint8_t* b, int sa, int sb) {
         return static_cast<uint32_t>(zelt_satd(n, n, a, b, sa, sb));
     },
     [](int, double cost) { return 2 * cost; }},
    {"ssd", [](int n, const uint8_t* a, const uint8_t* b, int sa, int sb) { return zelt_ssd(n, n, a, b, sa, sb); },
     [](int n, double cost) { return n * std::sqrt(cost); }},
};

/// All vectors within the range, the shortest first
std::vector<motion_vector> candidates(int range) {
    std::vector<motion_vector> all;
    for (int y = -range; y <= range; ++y)
        for (int x = -range; x <= range; ++x) all.push_back({x, y});
    std::ranges::stable_sort(all, {}, [](motion_vector v) { return v.x * v.x + v.y * v.y; });
    return all;
}

class searcher {
public:
    searcher(const options& opt)
        : block_(opt.block), margin_(opt.block + opt.range), threads_(static_cast<std::size_t>(opt.input.threads)),
          metric_(*std::ranges::find(metrics, opt.metric, &metric::name)), candidates_(candidates(opt.range)) {}

    plane luma(const picture& pic) const { return {pic, 0, margin_, padding::replicate}; }
    motion_field match(const plane& from, const plane& to, progress& line) {
        motion_field field = {block_, {}};
        std::vector<row> rows(threads_);
        int y = 0;
        run_in_order(
            rows,
            [&](row& r) {
                r = {y};
                return std::exchange(y, y + block_) < to.h;
            },
            [&](row& r) {
                for (int x = 0; x < to.w; x += block_) r.blocks.push_back(match_block(from, to, x, r));
            },
            [&](row& r) {
                field.blocks.insert(field.blocks.end(), r.blocks.begin(), r.blocks.end());
                tried_ += r.tried;
                given_up_ += r.given_up;
                line.tick();
            });
        return field;
    }
    uint64_t tried() const { return tried_; }
    uint64_t given_up() const { return given_up_; }

private:
    /// A row of blocks
    struct row {
        int y;
        std::vector<matched_block> blocks = {};
        uint64_t tried = 0, given_up = 0;
    };

    matched_block match_block(const plane& from, const plane& to, int x, row& r) const {
        const int y = r.y;
        const uint8_t* block = to.at(x, y);
        matched_block best = {x, y, {0, 0}, std::numeric_limits<int>::max()};
        for (const motion_vector v : candidates_) {
            const uint8_t* place = from.at(x + v.x, y + v.y);
            // one less than what could be equal: only a better place is wanted
            const double bound = std::min(metric_.bound(block_, best.cost - 1.0), 2147483647.0);
            const int sad =
                zelt_sad_eskip(block_, block_, block, place, to.stride, from.stride, static_cast<int>(bound));
            ++r.tried;
            if (sad > bound) {
                ++r.given_up;
                continue;
            }
            const uint32_t cost =
                metric_.cost ? metric_.cost(block_, block, place, to.stride, from.stride) : static_cast<uint32_t>(sad);
            if (cost < best.cost) best.from = v, best.cost = cost;
            if (best.cost == 0) break;
        }
        return best;
    }

    int block_, margin_;
    std::size_t threads_;
    const metric& metric_;
    std::vector<motion_vector> candidates_;
    uint64_t tried_ = 0, given_up_ = 0;
};

void print_csv(const motion_field& field, int frame) {
    for (const matched_block& b : field.blocks)
        std::printf("%d,%d,%d,%d,%d,%u\n", frame, b.x, b.y, b.from.x, b.from.y, b.cost);
}

/// The mean cost, and the most frequent vector
void print_row(const motion_field& field, int frame) {
    std::map<std::pair<int, int>, int> counts;
    double cost = 0;
    for (const matched_block& b : field.blocks) ++counts[{b.from.x, b.from.y}], cost += b.cost;
    const auto most = std::ranges::max_element(counts, {}, [](const auto& entry) { return entry.second; });
    const double blocks = static_cast<double>(field.blocks.size());
    char vector[32];
    std::snprintf(vector, sizeof vector, "(%d, %d)", most->first.first, most->first.second);
    std::printf("%7d  %6zu  %10.1f  %7zu  %12s  %5.1f %%\n", frame, field.blocks.size(), cost / blocks, counts.size(),
                vector, 100 * most->second / blocks);
}

/// Draws what is found, if that is wanted.
class motion_writer {
public:
    motion_writer(const options& opt, const clip& about, const colours& meaning) : opt_(opt) {
        if (opt.out.empty()) return;
        to_pixels_.emplace(*about.fmt, format_of(ZELT_CS_BGRA8888), route::size{about.w, about.h}, meaning);
        clip drawn = about;
        drawn.fmt = &format_of(ZELT_CS_RGB888);
        out_.emplace(kind_of_output("", opt.out), opt.out, drawn);
    }
    void write(const motion_field& field, const picture& pic, int n, bool more) {
        if (out_) out_->write(rendered(motion_drawing(field, to_pixels_->run(pic), n, opt_.metric)), more);
    }
    void finish() {
        if (out_) out_->finish();
    }
    std::string summary() const { return out_ ? "; " + out_->summary() : ""; }

private:
    const options& opt_;
    std::optional<route> to_pixels_;
    std::optional<writer> out_;
};

void match(const options& opt) {
    if (!opt.out.empty()) check_drawing(opt.out, false);
    const std::unique_ptr<reader> in = open_reader(opt.in, opt.input.raw, false, opt.input.threads);
    const clip about = in->about();
    const route::size size = {about.w, about.h};
    const colours meaning = about.fmt->yuv ? colours_of(about, opt.input.colours, about.h) : colours{};
    searcher search(opt);
    motion_writer out(opt, about, meaning);

    if (opt.csv)
        std::printf("picture,x,y,from_x,from_y,cost\n");
    else
        std::printf("%7s  %6s  %10s  %7s  %12s  %7s\n", "picture", "blocks", ("mean " + opt.metric).c_str(), "vectors",
                    "most often", "share");
    route to_yuv(*about.fmt, format_of(ZELT_CS_YUV444), size, meaning);
    std::optional<plane> before;
    const uint64_t wanted = opt.frame ? 1 : about.pictures ? about.pictures - 1 : 0;
    progress line(wanted * static_cast<uint64_t>((about.h + opt.block - 1) / opt.block), "rows of blocks");
    int matched = 0;
    for (int n = 0; in->more() && (opt.frame == 0 || n <= opt.frame); ++n) {
        const picture& pic = in->next();
        const std::optional<plane> last = std::exchange(before, search.luma(to_yuv.run(pic)));
        if (n == 0 || (opt.frame != 0 && n != opt.frame)) continue;
        const motion_field field = search.match(*last, *before, line);
        line.make_way();
        opt.csv ? print_csv(field, n) : print_row(field, n);
        out.write(field, pic, n, opt.frame == 0 && in->more());
        ++matched;
    }
    if (!matched)
        throw failure(status::bad_input, opt.in + ": has no picture " + std::to_string(std::max(opt.frame, 1)) +
                                             " (the first is 0, and is not matched)");
    out.finish();
    line.make_way();
    if (!opt.csv)
        std::printf("%llu places, %.1f %% given up early%s\n", static_cast<unsigned long long>(search.tried()),
                    100.0 * static_cast<double>(search.given_up()) / static_cast<double>(search.tried()),
                    out.summary().c_str());
    finish_output();
}

}  // namespace

void add_match(CLI::App& app) {
    CLI::App* verb = app.add_subcommand("match", "Finds where the blocks of a picture come from in the one before");
    const auto opt = std::make_shared<options>();
    verb->add_option("-i,--input,IN", opt->in, "A clip; - is standard input")->required()->type_name("FILE");
    verb->add_option("-o,--output,OUT", opt->out, "A picture of the motion: .png or .ppm")->type_name("FILE");
    opt->input.add_raw(*verb);
    opt->input.add_threads(*verb);
    opt->input.add_matrix(*verb);  // --range is how far to look
    verb->add_option("--block", opt->block, "Size of a block")
        ->check(CLI::IsMember({4, 8, 16, 32, 64}))
        ->capture_default_str();
    verb->add_option("--range", opt->range, "How far to look, in samples")
        ->check(CLI::Range(1, 128))
        ->type_name("N")
        ->capture_default_str();
    verb->add_option("--metric", opt->metric, "What to compare by")
        ->check(CLI::IsMember({"sad", "satd", "ssd"}))
        ->capture_default_str();
    verb->add_option("--frame", opt->frame, "Match this picture only (0 is the first)")
        ->check(CLI::Range(1, 1 << 30))
        ->type_name("N");
    verb->add_flag("--csv", opt->csv, "Write all vectors as comma-separated values");
    verb->footer(notes);
    verb->callback([opt] { match(*opt); });
}

}  // namespace zelt::tool
