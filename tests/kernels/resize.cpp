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

kernel ratio::counting(kernel k) const {
    if (counted) k.counted = {"rsz", {{320, 240}}, true};
    return k;
}

namespace {
constexpr ratio ratios[] = {
    {"1:1", 1, 1, 1, 1},        {"3:2", 3, 2, 3, 2, true}, {"2:3", 2, 3, 2, 3, true},  {"1:2", 1, 2, 1, 2, true},
    {"2:1", 2, 1, 2, 1, true},  {"29:10", 29, 10, 9, 5},   {"1:5", 1, 5, 1, 5},        {"4:1", 4, 1, 4, 1, true},
    {"3:1, 1:3", 3, 1, 1, 3},   {"7:1, 3:2", 7, 1, 3, 2},  {"16:1, 1:1", 16, 1, 1, 1}, {"40:1", 40, 1, 40, 1},
    {"one column", 0, 1, 3, 2}, {"one row", 3, 2, 0, 1},
};

void add_resizer(std::vector<kernel>& rows, const resizer& r, const ratio& q) {
    rows.push_back(q.counting({r.name + "_full " + q.name, reinterpret_cast<function>(r.full), q.shapes(),
                               [&r, &q](shape s) -> std::vector<operand> {
                                   const shape from = q.source(s);
                                   return {{.width = from.w * r.src_bytes, .rows = from.h},
                                           {.width = s.w * r.dst_bytes, .rows = s.h, .written = true}};
                               },
                               [&q](function f, shape s, const view* v) -> u64 {
                                   const shape from = q.source(s);
                                   u32 x, y;
                                   bilinear_rsz_step_size(from.w, from.h, s.w, s.h, &x, &y);
                                   reinterpret_cast<decltype(resizer::full)>(f)(v[0].p, static_cast<int>(v[0].stride),
                                                                                s.w, s.h, static_cast<int>(v[1].stride),
                                                                                v[1].p, x, y);
                                   return 0;
                               },
                               [&r, &q](shape s, const view* v) -> u64 {
                                   model_picture(r, v[0], q.source(s), v[1], s);
                                   return 0;
                               }}));
    // Rows, of exactly the samples that are needed; the shape's height is the vertical phase.
    std::vector<shape> widths = q.shapes();
    for (shape& s : widths) s.h = s.w % 8;
    rows.push_back({r.name + "_line " + q.name, reinterpret_cast<function>(r.line), widths,
                    [&r, &q](shape s) -> std::vector<operand> {
                        const int needed = grid(q.source(s).w, s.w)[s.w - 1].second + 1;
                        return {{.width = needed * r.src_bytes, .rows = 1},
                                {.width = needed * r.src_bytes, .rows = 1},
                                {.width = s.w * r.dst_bytes, .rows = 1, .written = true}};
                    },
                    [&q](function f, shape s, const view* v) -> u64 {
                        const grid x(q.source(s).w, s.w);
                        const u8* const pair[] = {v[0].p, v[1].p};
                        reinterpret_cast<decltype(resizer::line)>(f)(pair, zelt_tbl_bilinear_rszw + 4 * s.h, s.w,
                                                                     x.shift, 1 << x.shift, static_cast<int>(x.step),
                                                                     v[2].p);
                        return 0;
                    },
                    [&r, &q](shape s, const view* v) -> u64 {
                        model_row(r, v[0].p, v[1].p, s.h, grid(q.source(s).w, s.w), s.w, v[2].p);
                        return 0;
                    }});
}

struct fused {
    const char* name;
    zelt_csc_fn exported;
    const char *source, *destination;
};
#define FUSED(from, to) \
    { "zelt_csc_rsz_" #from "_to_" #to, zelt_csc_rsz_##from##_to_##to, #from, #to }
constexpr fused all_fused[] = {
    FUSED(r8g8b8, rgb888),   FUSED(r8g8b8, rgba8888),   FUSED(r8g8b8a8, rgba8888), FUSED(yuv444, rgb888),
    FUSED(yuv444, rgba8888), FUSED(yuv444a8, rgba8888), FUSED(yuv444, rgb565),     FUSED(yuv444a8, rgb565a8),
};

void add_fused(std::vector<kernel>& rows, const fused& f, const ratio& q) {
    const layout *source = &layout_of(f.source), *destination = &layout_of(f.destination);
    const int from_planes = static_cast<int>(source->bytes.size()),
              to_planes = static_cast<int>(destination->bytes.size());
    const bool alpha = from_planes == 4;
    rows.push_back(
        q.counting({f.name + std::string(" ") + q.name, reinterpret_cast<function>(f.exported), q.shapes(),
                    [=, &q](shape s) {
                        const shape from = q.source(s);
                        std::vector<operand> all;
                        for (int i = 0; i < from_planes; ++i) all.push_back({.width = from.w, .rows = from.h});
                        for (const int bytes : destination->bytes)
                            all.push_back({.width = s.w * bytes, .rows = s.h, .written = true});
                        return all;
                    },
                    [=, &q](function fn, shape s, const view* v) -> u64 {
                        const shape from = q.source(s);
                        void* p[6];
                        int stride[6];
                        for (int i = 0; i < from_planes + to_planes; ++i)
                            p[i] = v[i].p, stride[i] = static_cast<int>(v[i].stride);
                        reinterpret_cast<zelt_csc_fn>(fn)(p, from.w, from.h, stride, -1, p + from_planes, s.w, s.h,
                                                          stride + from_planes, -1);
                        return 0;
                    },
                    [=, &q](shape s, const view* v) -> u64 {
                        const shape from = q.source(s);
                        const grid x(from.w, s.w), y(from.h, s.h);
                        for (int j = 0; j < s.h; ++j)
                            for (int i = 0; i < s.w; ++i) {
                                const place across = x[i], down = y[j];
                                components c = {{0, 0, 0, 255}};
                                for (int k = 0; k < 3 + alpha; ++k) {
                                    const u8 *top = v[k].p + down.first * v[k].stride,
                                             *bottom = v[k].p + down.second * v[k].stride;
                                    c.v[k] = interpolated(top[across.first], top[across.second], bottom[across.first],
                                                          bottom[across.second], across.phase, down.phase);
                                }
                                if (source->yuv) c = rgb_of(c);
                                u8* dst[2];
                                for (int k = 0; k < to_planes; ++k) {
                                    const view& to = v[from_planes + k];
                                    dst[k] = to.p + j * to.stride + i * destination->bytes[static_cast<std::size_t>(k)];
                                }
                                destination->write(dst, c);
                            }
                        return 0;
                    }}));
}
}  // namespace

std::vector<kernel> resize_kernels_at(const ratio& q) {
    std::vector<kernel> rows;
    for (const resizer& r : resizers) add_resizer(rows, r, q);
    for (const fused& f : all_fused) add_fused(rows, f, q);
    return rows;
}

std::vector<kernel> resize_kernels() {
    std::vector<kernel> rows;
    for (const ratio& q : ratios)
        for (kernel& k : resize_kernels_at(q)) rows.push_back(std::move(k));
    return rows;
}
}  // namespace zelt::test
