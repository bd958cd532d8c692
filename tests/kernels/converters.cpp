// Models and rows of the same-size converters.
#include "kernels/converters.h"

#include "zelt/csc.h"

#include <cmath>
#include <cstring>

namespace zelt::test {
namespace {
int word565(components c) { return c.v[0] / 8 * 2048 + c.v[1] / 4 * 32 + c.v[2] / 8; }
void write565(u8* p, components c) {
    p[0] = static_cast<u8>(word565(c) % 256), p[1] = static_cast<u8>(word565(c) / 256);
}
void write_bytes(u8* p, std::initializer_list<int> values) {
    for (const int v : values) *p++ = static_cast<u8>(v);
}

components read_planes(const u8* const* p) { return {{p[0][0], p[1][0], p[2][0], 255}}; }
components read_planes_alpha(const u8* const* p) { return {{p[0][0], p[1][0], p[2][0], p[3][0]}}; }
void write_planes(u8* const* p, components c) {
    for (int i = 0; i < 3; ++i) *p[i] = static_cast<u8>(c.v[i]);
}
void write_planes_alpha(u8* const* p, components c) {
    for (int i = 0; i < 4; ++i) *p[i] = static_cast<u8>(c.v[i]);
}

const layout layouts[] = {
    {"yuv444", true, {1, 1, 1}, read_planes, write_planes},
    {"yuv444a8", true, {1, 1, 1, 1}, read_planes_alpha, write_planes_alpha},
    {"r8g8b8", false, {1, 1, 1}, read_planes, write_planes},
    {"r8g8b8a8", false, {1, 1, 1, 1}, read_planes_alpha, write_planes_alpha},
    {"rgb888",
     false,  // no block
     {3},
     [](const u8* const* p) {
         return components{{p[0][0], p[0][1], p[0][2], 255}};
     },
     [](u8* const* p, components c) {
         write_bytes(p[0], {c.v[0], c.v[1], c.v[2]});
     }},
    {"rgba8888",
     false,  // no block
     {4},
     [](const u8* const* p) {
         return components{{p[0][0], p[0][1], p[0][2], p[0][3]}};
     },
     [](u8* const* p, components c) {
         write_bytes(p[0], {c.v[0], c.v[1], c.v[2], c.v[3]});
     }},
    {"argb8888",
     false,  // no block
     {4},
     nullptr,
     [](u8* const* p, components c) {
         write_bytes(p[0], {c.v[3], c.v[0], c.v[1], c.v[2]});
     }},
    {"bgra8888",
     false,  // no block
     {4},
     nullptr,
     [](u8* const* p, components c) {
         write_bytes(p[0], {c.v[2], c.v[1], c.v[0], c.v[3]});
     }},
    {"rgb565",
     false,  // no block
     {2},
     [](const u8* const* p) {
         const int word = p[0][0] + 256 * p[0][1];
         return components{{word / 2048 * 8, word / 32 % 64 * 4, word % 32 * 8, 255}};
     },
     [](u8* const* p, components c) { write565(p[0], c); }},
    {"rgb565a8",
     false,  // no block
     {2, 1},
     nullptr,
     [](u8* const* p, components c) { write565(p[0], c), *p[1] = static_cast<u8>(c.v[3]); }},
    {"rgba5658",
     false,  // no block
     {3},
     nullptr,
     [](u8* const* p, components c) { write565(p[0], c), p[0][2] = static_cast<u8>(c.v[3]); }},
};

/// How the packed writers that take four component pointers are given theirs
enum class pointers { per_plane, four_of_one, four_apart };

struct converter {
    zelt_csc_fn exported;
    const layout *source, *destination;
    int dst_cs = 0;
    pointers given = pointers::per_plane;

    void call(zelt_csc_fn fn, shape s, const view* v) const {
        void *src[4], *dst[4] = {};
        int src_s[4], dst_s[4];
        const int from = static_cast<int>(source->bytes.size());
        for (int i = 0; i < from; ++i) src[i] = v[i].p, src_s[i] = static_cast<int>(v[i].stride);
        v += from;
        const int to = given == pointers::per_plane ? static_cast<int>(destination->bytes.size()) : 4;
        for (int i = 0; i < to; ++i) {
            const view& d = given == pointers::four_of_one ? v[0] : v[i];
            dst[i] = d.p + (given == pointers::four_of_one ? i : 0);
            dst_s[i] = static_cast<int>(d.stride);
        }
        fn(src, s.w, s.h, src_s, -1, dst, -1, -1, dst_s, dst_cs);
    }

    void model(shape s, const view* v) const {
        const std::size_t from = source->bytes.size(), to = destination->bytes.size();
        for (int y = 0; y < s.h; ++y)
            for (int x = 0; x < s.w; ++x) {
                u8 *src[4], *dst[4], apart[4];
                for (std::size_t i = 0; i < from; ++i) src[i] = v[i].p + y * v[i].stride + x * source->bytes[i];
                for (std::size_t i = 0; i < to; ++i)
                    dst[i] = v[from + i].p + y * v[from + i].stride + x * destination->bytes[i];
                components c = source->read(src);
                if (source->yuv && !destination->yuv) c = rgb_of(c);
                if (!source->yuv && destination->yuv) c = yuv_of(c);
                if (given == pointers::four_apart) {
                    u8* packed = apart;
                    destination->write(&packed, c);
                    for (int i = 0; i < 4; ++i)
                        v[from + static_cast<std::size_t>(i)]
                            .p[y * v[from + static_cast<std::size_t>(i)].stride + 4 * x] = apart[i];
                } else {
                    destination->write(dst, c);
                }
            }
    }

    std::vector<operand> operands(shape s) const {
        std::vector<operand> all;
        for (const int bytes : source->bytes) all.push_back({.width = s.w * bytes, .rows = s.h});
        if (given == pointers::four_apart)
            all.insert(all.end(), 4, {.width = 4 * s.w - 3, .rows = s.h, .written = true});
        else
            for (const int bytes : destination->bytes)
                all.push_back({.width = s.w * bytes, .rows = s.h, .written = true});
        return all;
    }

    kernel row(const std::string& name) const {
        return {name,
                reinterpret_cast<function>(exported),
                picture_shapes(),
                [*this](shape s) { return operands(s); },
                [*this](function fn, shape s, const view* v) {
                    call(reinterpret_cast<zelt_csc_fn>(fn), s, v);
                    return u64{0};
                },
                [*this](shape s, const view* v) {
                    model(s, v);
                    return u64{0};
                },
                given == pointers::per_plane && !dst_cs ? timing::picture : timing::none,
                false,  // no block
                given != pointers::four_apart};
    }
};
}  // namespace

const layout& layout_of(const std::string& name) {
    for (const layout& l : layouts)
        if (l.name == name) return l;
    std::abort();
}

components rgb_of(components c) {
    const auto shifted = [](int v) { return static_cast<int>(std::floor((v + 128) / 256.0)); };
    const auto clamped = [](int v) { return v < 0 ? 0 : v > 255 ? 255 : v; };
    const int y = c.v[0], d = c.v[1] - 128, e = c.v[2] - 128;
    return {
        {clamped(y + shifted(359 * e)), clamped(y - shifted(88 * d + 183 * e)), clamped(y + shifted(454 * d)), c.v[3]}};
}

components yuv_of(components c) {
    const auto shifted = [](int v) { return static_cast<int>(std::floor((v + 128) / 256.0)); };
    const int r = c.v[0], g = c.v[1], b = c.v[2];
    const int u = 128 + shifted(-43 * r - 85 * g + 128 * b), v = 128 + shifted(128 * r - 107 * g - 21 * b);
    return {{shifted(77 * r + 150 * g + 29 * b), u > 255 ? 255 : u, v > 255 ? 255 : v, c.v[3]}};
}

std::vector<kernel> converter_kernels() {
    std::vector<kernel> rows;
    const auto add = [&](const char* name, zelt_csc_fn fn, const char* from, const char* to) {
        const bool four = !std::strcmp(to, "argb8888") || !std::strcmp(to, "bgra8888");
        const converter plain = {fn, &layout_of(from), &layout_of(to)};
        rows.push_back(plain.row(name));  // for the four-pointer writers this is the null second pointer
        if (!four) return;
        for (const pointers given : {pointers::four_of_one, pointers::four_apart}) {
            converter other = plain;
            other.given = given;
            rows.push_back(other.row(name + std::string(given == pointers::four_apart ? " apart" : " pointers")));
        }
    };
#define ROW(from, to) add("zelt_csc_" #from "_to_" #to, zelt_csc_##from##_to_##to, #from, #to)
    ROW(yuv444, rgb888);
    ROW(yuv444, rgba8888);
    ROW(yuv444, rgb565);
    ROW(yuv444, rgb565a8);
    ROW(yuv444, argb8888);
    ROW(yuv444, bgra8888);
    ROW(yuv444, r8g8b8);
    ROW(yuv444a8, rgba8888);
    ROW(yuv444a8, rgba5658);
    ROW(yuv444a8, rgb565a8);
    ROW(yuv444a8, argb8888);
    ROW(yuv444a8, bgra8888);
    ROW(rgb888, yuv444);
    ROW(r8g8b8, yuv444);
    ROW(rgb565, yuv444);
    ROW(rgba8888, yuv444a8);
    ROW(r8g8b8a8, yuv444a8);
    ROW(r8g8b8, rgb888);
    ROW(r8g8b8, rgba8888);
    ROW(r8g8b8, rgb565);
    ROW(r8g8b8, argb8888);
    ROW(r8g8b8, bgra8888);
    ROW(r8g8b8a8, rgba8888);
    ROW(r8g8b8a8, rgba5658);
    ROW(r8g8b8a8, argb8888);
    ROW(r8g8b8a8, bgra8888);
#undef ROW
    add("zelt_csc_x8y8z8_to_xyz565a8", zelt_csc_x8y8z8_to_xyz565a8, "r8g8b8", "rgb565a8");
    add("zelt_csc_x8y8z8a8_to_xyz565a8", zelt_csc_x8y8z8a8_to_xyz565a8, "r8g8b8a8", "rgb565a8");

    converter alpha_first = {zelt_csc_yuv444_to_rgba8888, &layout_of("yuv444"), &layout_of("argb8888")};
    alpha_first.dst_cs = ZELT_CS_ARGB8888;
    rows.push_back(alpha_first.row("zelt_csc_yuv444_to_rgba8888 alpha-first"));
    return rows;
}
}  // namespace zelt::test
