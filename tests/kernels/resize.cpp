// Models and rows of the resizer's row and picture kernels and of the fused converters, at ratios from 1:2 to 40:1.
#include "kernels/resize.h"

#include "kernels/converters.h"
#include "zelt/csc.h"

#include <algorithm>
#include <cstring>

namespace zelt::test {
grid::grid(int src, int dst) {
    static constexpr int shifts[32] = {0, 0, 0, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 3, 3, 3,
                                       3, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4};
    shift = shifts[std::min(src / dst, 31)];
    step = static_cast<long long>((src - 1) >> shift) * 262144 / dst;
}

place grid::operator[](int i) const {
    const long long position = i * step, first = (position / 262144) << shift;
    return {static_cast<int>(first), static_cast<int>(step ? first + (1 << shift) : first),
            static_cast<int>(position % 262144 / 32768)};
}

int interpolated(int tl, int tr, int bl, int br, int fx, int fy) {
    return ((8 - fx) * (8 - fy) * tl + fx * (8 - fy) * tr + (8 - fx) * fy * bl + fx * fy * br) / 64;
}

namespace {
template <int N> fields get_bytes(const u8* p) {
    fields v = {};
    std::copy_n(p, N, v.begin());
    return v;
}
template <int N> void put_bytes(u8* p, const fields& v) {
    for (int i = 0; i < N; ++i) p[i] = static_cast<u8>(v[static_cast<std::size_t>(i)]);
}
fields get_565(const u8* p) {
    const int word = p[0] + 256 * p[1];
    return {word / 2048, word / 32 % 64, word % 32};
}
void put_565(u8* p, const fields& v) {
    const int word = v[0] * 2048 + v[1] * 32 + v[2];
    p[0] = static_cast<u8>(word % 256), p[1] = static_cast<u8>(word / 256);
}
}  // namespace

// clang-format off
#define NAMES(format) "zelt_irsz" #format, zelt_irsz##format, zelt_irsz##format##_line, zelt_irsz##format##_full
const std::vector<resizer> resizers = {
    {NAMES(8b), 20, 1, 1, get_bytes<1>, put_bytes<1>},
    {NAMES(8b8b8b), 21, 3, 3, get_bytes<3>, put_bytes<3>},
    {NAMES(8b8b8b_5b6b5b), 23, 3, 2, get_bytes<3>,
     [](u8* p, const fields& v) { put_565(p, {v[0] / 8, v[1] / 4, v[2] / 8}); }},
    {NAMES(5b6b5b), 25, 2, 2, get_565, put_565},
    {NAMES(8b8b8b8b), 29, 4, 4, get_bytes<4>, put_bytes<4>},
};
#undef NAMES
// clang-format on

void model_row(const resizer& r, const u8* top, const u8* bottom, int phase, const grid& x, int w, u8* dst) {
    for (int i = 0; i < w; ++i) {
        const place at = x[i];
        const fields tl = r.get(top + at.first * r.src_bytes), tr = r.get(top + at.second * r.src_bytes);
        const fields bl = r.get(bottom + at.first * r.src_bytes), br = r.get(bottom + at.second * r.src_bytes);
        fields v;
        for (std::size_t c = 0; c < v.size(); ++c) v[c] = interpolated(tl[c], tr[c], bl[c], br[c], at.phase, phase);
        r.put(dst + i * r.dst_bytes, v);
    }
}

void model_picture(const resizer& r, view src, shape from, view dst, shape to) {
    const grid x(from.w, to.w), y(from.h, to.h);
    for (int i = 0; i < to.h; ++i) {
        const place at = y[i];
        model_row(r, src.p + at.first * src.stride, src.p + at.second * src.stride, at.phase, x, to.w,
                  dst.p + i * dst.stride);
    }
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
    {"1:1", 1, 1, 1, 1},        {"3:2", 3, 2, 3, 2, true}, {"2:3", 2, 3, 2, 3, true},  {"1:2", 1, 2, 1, 2, true},
    {"2:1", 2, 1, 2, 1, true},  {"29:10", 29, 10, 9, 5},   {"1:5", 1, 5, 1, 5},        {"4:1", 4, 1, 4, 1, true},
    {"3:1, 1:3", 3, 1, 1, 3},   {"7:1, 3:2", 7, 1, 3, 2},  {"16:1, 1:1", 16, 1, 1, 1}, {"40:1", 40, 1, 40, 1},
    {"one column", 0, 1, 3, 2}, {"one row", 3, 2, 0, 1},
};

kernel full(const resizer& r, const ratio& q) {
    const auto operands = [&](shape s) -> std::vector<operand> {
        const shape from = q.source(s);
        return {{.width = from.w * r.src_bytes, .rows = from.h},
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

/// Rows, of exactly the samples that are needed; the shape's height is the vertical phase.
kernel line(const resizer& r, const ratio& q) {
    std::vector<shape> widths = q.shapes();
    for (shape& s : widths) s.h = s.w % 8;
    const auto operands = [&](shape s) -> std::vector<operand> {
        const int needed = grid(q.source(s).w, s.w)[s.w - 1].second + 1;
        const operand source = {.width = needed * r.src_bytes, .rows = 1};
        return {source, source, {.width = s.w * r.dst_bytes, .rows = 1, .written = true}};
    };
    const auto call = [&](function f, shape s, const view* v) {
        const grid x(q.source(s).w, s.w);
        const u8* const pair[] = {v[0].p, v[1].p};
        reinterpret_cast<decltype(resizer::line)>(f)(pair, zelt_tbl_bilinear_rszw + 4 * s.h, s.w, x.shift, 1 << x.shift,
                                                     static_cast<int>(x.step), v[2].p);
    };
    const auto model = [&](shape s, const view* v) {
        model_row(r, v[0].p, v[1].p, s.h, grid(q.source(s).w, s.w), s.w, v[2].p);
    };
    return {r.name + "_line " + q.name, reinterpret_cast<function>(r.line), widths, operands, call, model};
}

kernel fused(const char* name, zelt_csc_fn fn, const layout& source, const layout& destination, const ratio& q) {
    const std::size_t n = source.planes.size();
    const auto operands = [&](shape s) { return operands_of(source, q.source(s), destination, s); };
    const auto call = [&, n](function f, shape s, const view* v) {
        convert(f, v, n, n + destination.planes.size(), q.source(s), s, -1);
    };
    const auto model = [&, n](shape s, const view* v) {
        const shape from = q.source(s);
        const grid columns(from.w, s.w), rows(from.h, s.h);
        for (int y = 0; y < s.h; ++y)
            for (int x = 0; x < s.w; ++x) {
                const place across = columns[x], down = rows[y];
                components c = {{0, 0, 0, 255}};
                for (std::size_t i = 0; i < n; ++i) {
                    const u8 *top = v[i].p + down.first * v[i].stride, *bottom = v[i].p + down.second * v[i].stride;
                    c.v[i] = interpolated(top[across.first], top[across.second], bottom[across.first],
                                          bottom[across.second], across.phase, down.phase);
                }
                u8* dst[2];
                for (std::size_t i = 0; i < destination.planes.size(); ++i)
                    dst[i] = v[n + i].p + y * v[n + i].stride + x * destination.bytes[i];
                destination.write(dst, source.yuv ? rgb_of(c) : c);
            }
    };
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
