// SPDX-License-Identifier: MIT
// Models and rows of the fills, copies and borders: step by step, as their documentation counts.
#include "kernels/kernel.h"
#include "zelt/imgb.h"
#include "zelt/mem.h"

#include <algorithm>

namespace zelt::test {
namespace {
// --------------------------------------------------------------------------------------------------------------- fills

constexpr u32 word = 0x9c3a51e4;

struct fill {
    const char* name;
    function exported;
    int (*length)(int size);      // bytes that are written
    u8 (*byte)(int i, int size);  // the one at place i
    int element = 1;
};

u8 low_byte(int, int) { return word & 255; }
u8 of_word(int i, int) { return static_cast<u8>(word >> i % 4 * 8); }

const fill fills[] = {
    {"zelt_mset_x128", reinterpret_cast<function>(zelt_mset_x128),
     [](int size) {
         int length = 0;
         for (long long left = size; left == size || left > 0; left -= 128) length += 128;
         return length;
     },
     of_word},
    {"zelt_mset_x64", reinterpret_cast<function>(zelt_mset_x64),
     [](int size) { return size < 128 ? 0 : size / 128 * 128; }, low_byte},
    {"zelt_mset_x64a", reinterpret_cast<function>(zelt_mset_x64a), [](int size) { return std::max(size, 0); },
     low_byte},
    {"zelt_mset_x32", reinterpret_cast<function>(zelt_mset_x32),
     [](int size) { return size < 32 ? 0 : size / 32 * 32; }, of_word},
    {"zelt_mset_x32ax4", reinterpret_cast<function>(zelt_mset_x32ax4), [](int size) { return std::max(size, 32); },
     [](int i, int size) { return i < 32 || i < size / 32 * 32 ? of_word(i, size) : low_byte(i, size); }},
    {"zelt_mclr_x64", reinterpret_cast<function>(+[](void* dst, u32, int n) { zelt_mclr_x64(dst, n); }),
     [](int n) { return n < 64 ? 0 : n / 64 * 256; }, [](int, int) { return u8{0}; }},
    {"zelt_mset16", reinterpret_cast<function>(zelt_mset16), [](int n) { return n < 1 ? 0 : 2 * n; },
     [](int i, int) { return of_word(i % 2, 0); }, 2},
};

std::vector<shape> fill_shapes() {
    std::vector<shape> all;
    for (int n = -1; n < 70; ++n) all.push_back({n, 1});
    for (const int n : {95, 96, 127, 128, 129, 160, 192, 255, 256, 257, 300, 511, 520, 1023, 1024, 2047, 2048, 5000})
        all.push_back({n, 1});
    all.push_back({-0x7fffffff - 1, 1});
    return all;
}

kernel row(const fill& f) {
    const auto operands = [=](shape s) -> std::vector<operand> {
        // One sample stays as it is where nothing is to be written.
        const int samples = std::max(f.length(s.w) / f.element, 1);
        return {{.width = samples, .rows = 1, .element = f.element, .written = true}};
    };
    const auto call = [](function fn, shape s, const view* v) {
        reinterpret_cast<void (*)(void*, u32, int)>(fn)(v[0].p, word, s.w);
    };
    const auto model = [=](shape s, const view* v) {
        for (int i = 0; i < f.length(s.w); ++i) v[0].p[i] = f.byte(i, s.w);
    };
    kernel k = {f.name, f.exported, fill_shapes(), operands, call, model};
    k.counted = {"memory", {{128, 1}, {1920, 1}}};
    return k;
}

// -------------------------------------------------------------------------------------------------------------- copies

struct copy {
    std::string name;
    function exported;
    int element;
    bool contiguous;  // both strides are the width
    std::vector<shape> shapes;
    int (*width)(const copy&, shape);  // bytes that are copied of each row, or of the only one
    std::vector<shape> counted = {};

    shape laid_out(shape s) const {
        const shape area = contiguous ? shape{s.w * s.h, 1} : s;
        return {width(*this, area) / element, area.h};
    }
};

int exact(const copy& c, shape s) { return s.w * c.element; }

/// Pieces of 64 bytes, 32 at the end of a row, and what is left as so many samples of 16 bits
int doubled(const copy& c, shape s) {
    const int bytes = 2 * s.w, left = bytes % 64;
    return bytes < 64 || (left == 32 && !c.contiguous) ? bytes : bytes - left + 2 * left;
}

int block(const copy& c, shape s) {
    for (const int w : {2, 4, 6, 8, 12, 16, 24, 32, 48})
        if (s.w == w) return w * c.element;
    return 64 * c.element;
}

kernel row(const copy& c) {
    const auto operands = [=](shape s) {
        const shape all = c.laid_out(s);
        std::vector<operand> both(2, {.width = all.w, .rows = all.h, .element = c.element});
        both[0].written = true;
        return both;
    };
    const auto call = [=](function fn, shape s, const view* v) {
        const auto samples = [&](int i) { return c.contiguous ? s.w : static_cast<int>(v[i].stride) / c.element; };
        reinterpret_cast<decltype(&zelt_mcpy_pic)>(fn)(v[0].p, v[1].p, samples(0), samples(1), s.w, s.h);
    };
    const auto model = [=](shape s, const view* v) {
        const shape all = c.laid_out(s);
        for (int y = 0; y < all.h; ++y)
            std::copy_n(v[1].p + y * v[1].stride, all.w * c.element, v[0].p + y * v[0].stride);
    };
    kernel k = {c.name, c.exported, c.shapes, operands, call, model};
    k.counted = {"memory", c.counted};
    return k;
}

std::vector<shape> area_shapes() {
    std::vector<shape> all = picture_shapes();
    for (const int w : {36, 40, 80, 112, 128, 176, 320, 511, 512, 513, 1024, 1500, 2100}) all.push_back({w, 1 + w % 4});
    return all;
}

std::vector<shape> block_shapes() {
    std::vector<shape> all;
    for (const int w : {2, 4, 6, 8, 12, 16, 24, 32, 48, 64, 0, 1, 3, 20, 128, -8})
        for (const int h : {1, 2, 3, 4, 8, 13}) all.push_back({w, h});
    return all;
}

// ------------------------------------------------------------------------------------------------------------- borders

/// Copies of a sample beside it, row after row; for 16 bits the stride is one that has to be rounded up to even.
template <class Sample>
kernel sideways(const char* name, void (*expand)(const Sample*, Sample*, int, int, int), std::vector<int> counts) {
    constexpr int size = sizeof(Sample);
    std::vector<shape> shapes;
    for (const int count : counts)
        for (const int rows : {-1, 0, 1, 3, 4, 7}) shapes.push_back({count, rows});
    const auto operands = [](shape s) -> std::vector<operand> {
        return {{.width = 1 + std::max(s.w, 0), .rows = std::max(s.h, 1), .element = size, .written = true}};
    };
    const auto call = [=](function fn, shape s, const view* v) {
        const auto first = reinterpret_cast<Sample*>(v->p);
        reinterpret_cast<decltype(expand)>(fn)(first, first + 1, s.h, static_cast<int>(v->stride) + 1 - size, s.w);
    };
    const auto model = [](shape s, const view* v) {
        for (int y = 0; y < s.h; ++y)
            for (int x = 0; x < s.w * size; ++x) v->p[y * v->stride + size + x] = v->p[y * v->stride + x % size];
    };
    kernel k = {name, reinterpret_cast<function>(expand), shapes, operands, call, model};
    k.counted = {"border", {{16, 64}, {80, 64}}};
    return k;
}

/// A row over and over; in groups of eight rows where its width is an odd multiple of 4.
kernel upwards() {
    const auto rows = [](shape s) { return s.w % 8 && s.h > 0 ? (s.h + 7) / 8 * 8 : s.h; };
    std::vector<shape> shapes;
    for (const int width : {0, 4, 8, 12, 16, 20, 24, 48, 100, 112, 256, 300})
        for (const int count : {-9, -1, 0, 1, 5, 8, 9}) shapes.push_back({width, count});
    const auto operands = [=](shape s) -> std::vector<operand> {
        return {{.width = std::max(s.w * rows(s), 1), .rows = 1, .written = true},
                {.width = std::max(s.w, 1), .rows = 1}};
    };
    const auto call = [](function fn, shape s, const view* v) {
        reinterpret_cast<decltype(&zelt_imgb_expand_hor)>(fn)(v[1].p, v[0].p, s.w, s.h);
    };
    const auto model = [=](shape s, const view* v) {
        for (int y = 0; y < rows(s); ++y) std::copy_n(v[1].p, s.w, v[0].p + y * s.w);
    };
    kernel k = {
        "zelt_imgb_expand_hor", reinterpret_cast<function>(zelt_imgb_expand_hor), shapes, operands, call, model};
    k.counted = {"border", {{80, 16}, {2080, 16}}};
    return k;
}
}  // namespace

std::vector<kernel> memory_kernels() {
    std::vector<kernel> rows;
    for (const fill& f : fills) rows.push_back(row(f));
    const auto pic = reinterpret_cast<function>(zelt_mcpy_pic), pic_16 = reinterpret_cast<function>(zelt_mcpy_pic_16);
    const auto blk = reinterpret_cast<function>(zelt_mcpy_blk), blk_16 = reinterpret_cast<function>(zelt_mcpy_blk_16);
    const std::vector<shape> area{{320, 240}}, blocks{{8, 8}, {16, 16}, {32, 32}, {64, 64}};
    rows.push_back(row({"zelt_mcpy_pic", pic, 1, false, area_shapes(), exact, area}));
    rows.push_back(row({"zelt_mcpy_pic contiguous", pic, 1, true, area_shapes(), exact}));
    rows.push_back(row({"zelt_mcpy_pic_16", pic_16, 2, false, area_shapes(), doubled, area}));
    rows.push_back(row({"zelt_mcpy_pic_16 contiguous", pic_16, 2, true, area_shapes(), doubled}));
    rows.push_back(row({"zelt_mcpy_blk", blk, 1, false, block_shapes(), block, blocks}));
    rows.push_back(row({"zelt_mcpy_blk_16", blk_16, 2, false, block_shapes(), block, blocks}));
    rows.push_back(sideways("zelt_imgb_expand_ver", zelt_imgb_expand_ver, {0, 8, 16, 24, 32, 40, 80}));
    rows.push_back(sideways("zelt_imgb_expand_ver_16", zelt_imgb_expand_ver_16, {-3, 0, 1, 2, 5, 8, 33}));
    rows.push_back(upwards());
    return rows;
}
}  // namespace zelt::test
