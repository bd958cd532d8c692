// SPDX-License-Identifier: MIT
// Models and rows of the resizer's row and picture kernels and of the fused converters, at ratios from 1:2 to 40:1.
#include "kernels/resize.h"

#include "kernels/converters.h"
#include "zelt/csc.h"

#include <algorithm>

namespace zelt::test {
// clang-format off
#define NAMES(format) "zelt_irsz" #format, zelt_irsz##format, zelt_irsz##format##_line, zelt_irsz##format##_full
const std::vector<resizer> resizers = {
    {NAMES(8b), 20, 1, 1, "y8", "y8"},
    {NAMES(8b8b8b), 21, 3, 3, "rgb888", "rgb888"},
    {NAMES(8b8b8b_5b6b5b), 23, 3, 2, "rgb888", "rgb565"},
    {NAMES(5b6b5b), 25, 2, 2, "rgb565", "rgb565"},
    {NAMES(8b8b8b8b), 29, 4, 4, "rgba8888", "rgba8888"},
};
#undef NAMES
// clang-format on

namespace {
/// Where a destination sample lies on an axis: its two source samples and the phase between them
struct place {
    int first, second, phase;
};

/// The sampling grid of an axis, from the documented table and formula
struct grid {
    int shift;
    long long step;

    grid(int src, int dst) {
        static constexpr int shifts[32] = {0, 0, 0, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 3, 3, 3,
                                           3, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4};
        shift = shifts[std::min(src / dst, 31)];
        step = static_cast<long long>((src - 1) >> shift) * 262144 / dst;
    }
    place operator[](int i) const {
        const long long position = i * step, first = (position / 262144) << shift;
        return {static_cast<int>(first), static_cast<int>(step ? first + (1 << shift) : first),
                static_cast<int>(position % 262144 / 32768)};
    }
};

/// A row of w pixels, converted to RGB if the destination is. Fields of less than 8 bits are as good as interpolated
/// themselves: what comes in below them is cut off again.
void model_row(const layout& from, const view* src, place y, const grid& columns, const layout& to, const view* dst,
               int dst_y, int w) {
    for (int i = 0; i < w; ++i) {
        const place x = columns[i];
        const auto at = [&](int column, int row) {
            u8* p[4];
            for (std::size_t k = 0; k < from.planes.size(); ++k)
                p[k] = src[k].p + row * src[k].stride + column * from.bytes[k];
            return from.read(p);
        };
        const components tl = at(x.first, y.first), tr = at(x.second, y.first);
        const components bl = at(x.first, y.second), br = at(x.second, y.second);
        components c;
        for (int k = 0; k < 4; ++k)
            c.v[k] = ((8 - y.phase) * ((8 - x.phase) * tl.v[k] + x.phase * tr.v[k]) +
                      y.phase * ((8 - x.phase) * bl.v[k] + x.phase * br.v[k])) /
                     64;
        u8* p[4];
        for (std::size_t k = 0; k < to.planes.size(); ++k) p[k] = dst[k].p + dst_y * dst[k].stride + i * to.bytes[k];
        to.write(p, from.yuv && !to.yuv ? rgb_of(c) : c);
    }
}
void model_picture(const layout& source, const view* src, shape from, const layout& destination, const view* dst,
                   shape to) {
    const grid columns(from.w, to.w), rows(from.h, to.h);
    for (int y = 0; y < to.h; ++y) model_row(source, src, rows[y], columns, destination, dst, y, to.w);
}
}  // namespace

void model_picture(const resizer& r, view src, shape from, view dst, shape to) {
    model_picture(layout_of(r.source), &src, from, layout_of(r.destination), &dst, to);
}

bool bands_give_whole(shape from, shape to, int band_rows) {
    const bool near_the_end = from.h == to.h && to.w <= from.w && band_rows < 128;
    return band_rows > from.h / to.h + 1 && !near_the_end;
}

shape ratio::source(shape s) const {
    const auto apply = [](int n, int num, int den) { return std::max(1, (n * num + den - 1) / den); };
    return {apply(s.w, x_num, x_den), apply(s.h, y_num, y_den)};
}

/// Large pictures only where the ratio is small; some so wide that they are done in parts
std::vector<shape> ratio::shapes() const {
    std::vector<shape> all;
    for (const shape s : picture_shapes()) {
        const shape to = {s.w, 1 + s.w % 11}, from = source(to);
        if (from.w * from.h < 6000) all.push_back(to);
    }
    if (x_num > 0 && x_num <= 4 && x_den <= 3) all.insert(all.end(), {{1501, 2}, {5103, 1}});
    return all;
}

namespace {
constexpr ratio ratios[] = {
    {"1:1", 1, 1, 1, 1},        {"3:2", 3, 2, 3, 2, true},  {"2:3", 2, 3, 2, 3, true},  {"1:2", 1, 2, 1, 2, true},
    {"2:1", 2, 1, 2, 1, true},  {"29:10", 29, 10, 9, 5},    {"1:5", 1, 5, 1, 5},        {"4:1", 4, 1, 4, 1, true},
    {"3:1, 1:3", 3, 1, 1, 3},   {"44:7, 3:2", 44, 7, 3, 2}, {"16:1, 1:1", 16, 1, 1, 1}, {"40:1", 40, 1, 40, 1},
    {"one column", 0, 1, 3, 2}, {"one row", 3, 2, 0, 1},
};

/// How many samples are read, from the first one on
int needed(int from, int to) { return grid(from, to)[to - 1].second + 1; }

/// Pictures of exactly those samples
kernel full(const resizer& r, const ratio& q) {
    const auto operands = [&](shape s) -> std::vector<operand> {
        const shape from = q.source(s);
        return {{.width = needed(from.w, s.w) * r.src_bytes, .rows = needed(from.h, s.h)},
                {.width = s.w * r.dst_bytes, .rows = s.h, .written = true}};
    };
    const auto call = [&](function f, shape s, const view* v) {
        const shape from = q.source(s);
        u32 x, y;
        bilinear_rsz_step_size(from.w, from.h, s.w, s.h, &x, &y);
        reinterpret_cast<decltype(resizer::full)>(f)(v[0].p, static_cast<int>(v[0].stride), s.w, s.h,
                                                     static_cast<int>(v[1].stride), v[1].p, x, y);
    };
    const auto model = [&](shape s, const view* v) { model_picture(r, v[0], q.source(s), v[1], s); };
    return {r.name + "_full " + q.name, reinterpret_cast<function>(r.full), q.shapes(), operands, call, model};
}

/// Rows of exactly those samples; the shape's height is the vertical phase.
kernel line(const resizer& r, const ratio& q) {
    std::vector<shape> widths = q.shapes();
    for (shape& s : widths) s.h = s.w % 8;
    const auto operands = [&](shape s) -> std::vector<operand> {
        const operand source = {.width = needed(q.source(s).w, s.w) * r.src_bytes, .rows = 1};
        return {source, source, {.width = s.w * r.dst_bytes, .rows = 1, .written = true}};
    };
    const auto call = [&](function f, shape s, const view* v) {
        const grid x(q.source(s).w, s.w);
        const u8* const pair[] = {v[0].p, v[1].p};
        reinterpret_cast<decltype(resizer::line)>(f)(pair, zelt_tbl_bilinear_rszw + 4 * s.h, s.w, x.shift, 1 << x.shift,
                                                     static_cast<int>(x.step), v[2].p);
    };
    const auto model = [&](shape s, const view* v) {
        const view both = {v[0].p, v[1].p - v[0].p};  // the rows as those of a picture
        model_row(layout_of(r.source), &both, {0, 1, s.h}, grid(q.source(s).w, s.w), layout_of(r.destination), &v[2], 0,
                  s.w);
    };
    return {r.name + "_line " + q.name, reinterpret_cast<function>(r.line), widths, operands, call, model};
}

kernel fused(const char* name, zelt_csc_fn fn, const layout& source, const layout& destination, const ratio& q) {
    const std::size_t n = source.planes.size();
    const auto operands = [&](shape s) { return operands_of(source, q.source(s), destination, s); };
    const auto call = [&, n](function f, shape s, const view* v) {
        convert(f, v, n, n + destination.planes.size(), q.source(s), s, -1);
    };
    const auto model = [&, n](shape s, const view* v) { model_picture(source, v, q.source(s), destination, v + n, s); };
    return {std::string(name) + ' ' + q.name, reinterpret_cast<function>(fn), q.shapes(), operands, call, model};
}
}  // namespace

std::vector<kernel> resize_kernels_at(const ratio& q) {
    std::vector<kernel> rows;
    const auto count = [&](kernel k) {
        if (q.counted) k.counted = {"rsz", {{320, 240}}, true};
        rows.push_back(std::move(k));
    };
    for (const resizer& r : resizers) count(full(r, q)), rows.push_back(line(r, q));
#define FUSED(from, to) \
    count(fused("zelt_csc_rsz_" #from "_to_" #to, zelt_csc_rsz_##from##_to_##to, layout_of(#from), layout_of(#to), q))
    FUSED(r8g8b8, rgb888), FUSED(r8g8b8, rgba8888), FUSED(r8g8b8a8, rgba8888), FUSED(yuv444, rgb888);
    FUSED(yuv444, rgba8888), FUSED(yuv444a8, rgba8888), FUSED(yuv444, rgb565), FUSED(yuv444a8, rgb565a8);
#undef FUSED
    return rows;
}

std::vector<kernel> resize_kernels() {
    std::vector<kernel> rows;
    for (const ratio& q : ratios)
        for (kernel& k : resize_kernels_at(q)) rows.push_back(std::move(k));
    return rows;
}
}  // namespace zelt::test
