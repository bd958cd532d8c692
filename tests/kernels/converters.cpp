// SPDX-License-Identifier: MIT
// Models and rows of the same-size converters.
#include "kernels/converters.h"

#include "zelt/csc.h"

#include <algorithm>

namespace zelt::test {
const layout& layout_of(const std::string& name) {
    static const layout layouts[] = {
        {"y8", {"0"}},          {"yuv444", {"0", "1", "2"}}, {"yuv444a8", {"0", "1", "2", "3"}},
        {"rgb888", {"012"}},    {"r8g8b8", {"0", "1", "2"}}, {"r8g8b8a8", {"0", "1", "2", "3"}},
        {"rgba8888", {"0123"}}, {"argb8888", {"3012"}},      {"bgra8888", {"2103"}},
        {"rgb565", {"lh"}},     {"rgb565a8", {"lh", "3"}},   {"rgba5658", {"lh3"}},
        {"bgr888", {"210"}},
    };
    return *std::find_if(std::begin(layouts), std::end(layouts), [&](const layout& l) { return l.name == name; });
}

components layout::read(const u8* const* p) const {
    components c = {{0, 0, 0, 255}};
    for (std::size_t i = 0; i < planes.size(); ++i)
        for (std::size_t k = 0; k < planes[i].size(); ++k) {
            const char what = planes[i][k];
            const int byte = p[i][k];
            if (what == 'l')
                c.v[2] = byte % 32 * 8, c.v[1] = byte / 32 * 4;
            else if (what == 'h')
                c.v[1] += byte % 8 * 32, c.v[0] = byte / 8 * 8;
            else
                c.v[what - '0'] = byte;
        }
    return c;
}
void layout::write(u8* const* p, components c) const {
    const int word = c.v[0] / 8 * 2048 + c.v[1] / 4 * 32 + c.v[2] / 8;
    for (std::size_t i = 0; i < planes.size(); ++i)
        for (std::size_t k = 0; k < planes[i].size(); ++k) {
            const char what = planes[i][k];
            p[i][k] = static_cast<u8>(what == 'l' ? word % 256 : what == 'h' ? word / 256 : c.v[what - '0']);
        }
}

std::vector<operand> operands_of(const layout& source, shape from, const layout& destination, shape to) {
    std::vector<operand> all;
    for (const layout* l : {&source, &destination})
        for (std::size_t i = 0; i < l->planes.size(); ++i) {
            const bool written = l == &destination;
            const shape s = written ? to : from;
            const int pixel = static_cast<int>(l->planes[i].size());
            all.push_back({.width = (s.w - 1) * l->bytes[i] + pixel, .rows = s.h, .written = written});
        }
    return all;
}

void convert(function f, const view* v, std::size_t source_planes, std::size_t planes, shape from, shape to,
             int dst_cs) {
    void* p[8] = {};
    int stride[8] = {};
    for (std::size_t i = 0; i < planes; ++i) p[i] = v[i].p, stride[i] = static_cast<int>(v[i].stride);
    reinterpret_cast<zelt_csc_fn>(f)(p, from.w, from.h, stride, -1, p + source_planes, to.w, to.h,
                                     stride + source_planes, dst_cs);
}

// ------------------------------------------------------------------------------------------------------------ matrices

namespace {
/// A sum of products with so many fractional bits, rounded
int rounded(int v, int bits) { return (v + (1 << bits >> 1)) >> bits; }
}  // namespace

components rgb_of(components c) {
    const auto clamped = [](int v) { return std::clamp(v, 0, 255); };
    const int y = c.v[0], d = c.v[1] - 128, e = c.v[2] - 128;
    return {{clamped(y + rounded(359 * e, 8)), clamped(y - rounded(88 * d + 183 * e, 8)),
             clamped(y + rounded(454 * d, 8)), c.v[3]}};
}
components yuv_of(components c) {
    const int r = c.v[0], g = c.v[1], b = c.v[2];
    return {{rounded(77 * r + 150 * g + 29 * b, 8), std::min(128 + rounded(-43 * r - 85 * g + 128 * b, 8), 255),
             std::min(128 + rounded(128 * r - 107 * g - 21 * b, 8), 255), c.v[3]}};
}
components rgb10_of(components c) {
    const auto clamped = [](int v) { return std::clamp(v, 0, 1023); };
    const int y = c.v[0], d = c.v[1] - 512, e = c.v[2] - 512;
    return {{clamped(y + rounded(1436 * e, 10)), clamped(y - rounded(352 * d + 732 * e, 10)),
             clamped(y + rounded(1816 * d, 10)), c.v[3]}};
}
components yuv10_of(components c) {
    const int r = c.v[0], g = c.v[1], b = c.v[2];
    return {{rounded(308 * r + 600 * g + 116 * b, 10), 512 + rounded(-172 * r - 340 * g + 512 * b, 10),
             512 + rounded(512 * r - 428 * g - 84 * b, 10), c.v[3]}};
}

// ---------------------------------------------------------------------------------------------------------------- rows

namespace {
/// How the packed writers that take four component pointers are given theirs
enum class pointers { per_plane, four_of_one, four_apart };

kernel row(const std::string& name, zelt_csc_fn fn, const layout& from, layout to, pointers given, int dst_cs = 0) {
    const std::size_t n = from.planes.size();
    if (given == pointers::four_apart) {  // a pixel's bytes each in memory of its own
        const std::string packed = to.planes[0];
        to.planes.clear();
        for (const char component : packed) to.planes.emplace_back(1, component);
        to.bytes.assign(4, 4);
    }
    const auto operands = [=](shape s) { return operands_of(from, s, to, s); };
    const auto call = [=](function f, shape s, const view* v) {
        std::vector<view> views(v, v + n + to.planes.size());
        if (given == pointers::four_of_one)
            for (int i = 1; i < 4; ++i) views.push_back({v[n].p + i, v[n].stride});
        convert(f, views.data(), n, views.size(), s, {-1, -1}, dst_cs);
    };
    const auto model = [=](shape s, const view* v) {
        for (int y = 0; y < s.h; ++y)
            for (int x = 0; x < s.w; ++x) {
                u8* p[8];
                const auto pixel = [&](const layout& l, std::size_t first) {
                    for (std::size_t i = 0; i < l.planes.size(); ++i)
                        p[first + i] = v[first + i].p + y * v[first + i].stride + x * l.bytes[i];
                };
                pixel(from, 0), pixel(to, n);
                const components c = from.read(p);
                to.write(p + n, from.yuv == to.yuv ? c : to.yuv ? yuv_of(c) : rgb_of(c));
            }
    };
    kernel k = {name, reinterpret_cast<function>(fn), picture_shapes(), operands, call, model};
    k.timed = given == pointers::per_plane && !dst_cs ? timing::picture : timing::none;
    k.in_order = given != pointers::four_apart;
    return k;
}
}  // namespace

std::vector<kernel> converter_kernels() {
    std::vector<kernel> rows;
    const auto add = [&](const std::string& name, zelt_csc_fn fn, const std::string& from, const std::string& to) {
        // the writers of four pointers here have a null second one
        rows.push_back(row(name, fn, layout_of(from), layout_of(to), pointers::per_plane));
        if (to != "argb8888" && to != "bgra8888") return;
        rows.push_back(row(name + " pointers", fn, layout_of(from), layout_of(to), pointers::four_of_one));
        rows.push_back(row(name + " apart", fn, layout_of(from), layout_of(to), pointers::four_apart));
    };
#define ROW(from, to) add("zelt_csc_" #from "_to_" #to, zelt_csc_##from##_to_##to, #from, #to)
    ROW(yuv444, rgb888), ROW(yuv444, rgba8888), ROW(yuv444, rgb565), ROW(yuv444, rgb565a8), ROW(yuv444, argb8888),
        ROW(yuv444, bgra8888), ROW(yuv444, r8g8b8);
    ROW(yuv444a8, rgba8888), ROW(yuv444a8, rgba5658), ROW(yuv444a8, rgb565a8), ROW(yuv444a8, argb8888),
        ROW(yuv444a8, bgra8888);
    ROW(rgb888, yuv444), ROW(r8g8b8, yuv444), ROW(rgb565, yuv444), ROW(rgba8888, yuv444a8), ROW(r8g8b8a8, yuv444a8);
    ROW(r8g8b8, rgb888), ROW(r8g8b8, rgba8888), ROW(r8g8b8, rgb565), ROW(r8g8b8, argb8888), ROW(r8g8b8, bgra8888);
    ROW(r8g8b8a8, rgba8888), ROW(r8g8b8a8, rgba5658), ROW(r8g8b8a8, argb8888), ROW(r8g8b8a8, bgra8888);
#undef ROW
    add("zelt_csc_x8y8z8_to_xyz565a8", zelt_csc_x8y8z8_to_xyz565a8, "r8g8b8", "rgb565a8");
    add("zelt_csc_x8y8z8a8_to_xyz565a8", zelt_csc_x8y8z8a8_to_xyz565a8, "r8g8b8a8", "rgb565a8");
    rows.push_back(row("zelt_csc_yuv444_to_rgba8888 alpha-first", zelt_csc_yuv444_to_rgba8888, layout_of("yuv444"),
                       layout_of("argb8888"), pointers::per_plane, ZELT_CS_ARGB8888));
    return rows;
}
}  // namespace zelt::test
