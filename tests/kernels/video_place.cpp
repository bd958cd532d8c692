// SPDX-License-Identifier: MIT
// Models and rows of turning, of other sizes and of both together with conversions.
#include "kernels/resize.h"
#include "kernels/video.h"

#include <algorithm>
#include <cstring>

namespace zelt::test {
namespace {
shape turned(shape s, int turn) { return turn & 1 ? shape{s.h, s.w} : s; }

/// Pixel by pixel, as the names of the turns have it
void model_turn(view src, shape s, int bytes, int turn, view dst) {
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            const int from_left = turn & 4 ? s.w - 1 - x : x;
            const shape places[] = {
                {from_left, y}, {s.h - 1 - y, from_left}, {s.w - 1 - from_left, s.h - 1 - y}, {y, s.w - 1 - from_left}};
            const shape to = places[turn & 3];
            std::memcpy(dst.p + to.h * dst.stride + to.w * bytes, src.p + y * src.stride + x * bytes,
                        static_cast<std::size_t>(bytes));
        }
}

void add_turns(std::vector<kernel>& rows) {
    for (int bytes = 1; bytes <= 4; ++bytes)
        for (int turn = 0; turn < 8; ++turn) {
            const auto operands = [=](shape s) -> std::vector<operand> {
                const shape to = turned(s, turn);
                return {{.width = s.w * bytes, .rows = s.h}, {.width = to.w * bytes, .rows = to.h, .written = true}};
            };
            const auto call = [=](function f, shape s, const view* v) {
                return reinterpret_cast<decltype(&zelt_video_turn)>(f)(v[0].p, static_cast<int>(v[0].stride), v[1].p,
                                                                       static_cast<int>(v[1].stride), s.w, s.h, bytes,
                                                                       turn);
            };
            const auto model = [=](shape s, const view* v) { model_turn(v[0], s, bytes, turn, v[1]); };
            rows.push_back({"zelt_video_turn " + std::to_string(bytes) + " bytes, turn " + std::to_string(turn),
                            reinterpret_cast<function>(zelt_video_turn),
                            {{1, 1}, {3, 5}, {8, 4}, {16, 33}, {33, 16}, {70, 65}, {129, 32}},
                            operands,
                            call,
                            model});
        }
}

// ----------------------------------------------------------------------------------------------------------- pictures

/// A picture in memory of its own
struct held {
    std::vector<std::vector<u8>> memory;
    std::vector<view> planes;

    held(const video_format& f, shape s) {
        for (const operand& o : f.operands(s, false)) memory.emplace_back(static_cast<std::size_t>(o.width * o.rows));
        std::size_t i = 0;
        for (const operand& o : f.operands(s, false)) planes.push_back({memory[i++].data(), o.width});
    }
};
shape halved(shape s, const video_format& f) { return {(s.w + f.half_w) >> f.half_w, (s.h + f.half_h) >> f.half_h}; }

/// The rounded mean of what a sample covers, by the lengths of all overlaps
void model_area(view src, shape from, view dst, shape to) {
    const auto overlap = [](int s, int d, int src_size, int dst_size) {
        return std::max(0, std::min((s + 1) * dst_size, (d + 1) * src_size) - std::max(s * dst_size, d * src_size));
    };
    const u64 all = static_cast<u64>(from.w) * static_cast<u64>(from.h);
    for (int y = 0; y < to.h; ++y)
        for (int x = 0; x < to.w; ++x) {
            u64 sum = all / 2;
            for (int t = y * from.h / to.h; t < from.h && overlap(t, y, from.h, to.h); ++t)
                for (int s = x * from.w / to.w; s < from.w && overlap(s, x, from.w, to.w); ++s)
                    sum += static_cast<u64>(overlap(t, y, from.h, to.h)) *
                           static_cast<u64>(overlap(s, x, from.w, to.w)) * src.p[t * src.stride + s];
            dst.p[y * dst.stride + x] = static_cast<u8>(sum / all);
        }
}

/// Each plane in its new size, then the conversion, then the turn
void model_placed(const ZELT_VIDEO& v, const video_format& from, shape s, const video_format& to, shape upright,
                  const view* planes) {
    const view* out = planes + from.operands(s, false).size();
    held result(to, upright);
    std::vector<view> all;
    if (s.w == upright.w && s.h == upright.h) {
        all.assign(planes, out);
        all.insert(all.end(), result.planes.begin(), result.planes.end());
        model_video(v, from, to, s, all.data());
    } else {
        const auto has = [&](const video_format& f) {
            if (!from.channels()) return f.cs == ZELT_CS_R8G8B8;
            if (from.channels() == 1 || to.channels() == 1) return f.channels() == 1;
            return f.channels() == 3 && f.bits == 8 && f.half_w == to.half_w && f.half_h == to.half_h;
        };
        const auto& formats = video_formats();
        const video_format& between = *std::find_if(formats.begin(), formats.end(), has);  // planar ones come first
        held resized(between, upright);
        for (int c = 0; c < static_cast<int>(resized.planes.size()); ++c) {
            const shape size = c ? halved(s, from) : s, new_size = c ? halved(upright, between) : upright;
            std::vector<u8> plane = bytes_of(from, planes, c, size);
            const view src = {plane.data(), size.w}, dst = resized.planes[static_cast<std::size_t>(c)];
            if (v.filter == ZELT_VIDEO_AREA)
                model_area(src, size, dst, new_size);
            else
                model_picture(resizers.front(), src, size, dst, new_size);
        }
        all = resized.planes;
        all.insert(all.end(), result.planes.begin(), result.planes.end());
        model_video(v, between, to, upright, all.data());
    }
    const std::vector<operand> sizes = to.operands(upright, true);
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        int bytes = i > 0 && sizes.size() == 2 ? 2 : 1;
        if (!to.channels() && to.bits == 8) bytes = layout_of(to.name).bytes[i];
        if (to.packed()) bytes = 4;
        if (to.bits > 8) bytes *= 2;
        model_turn(result.planes[i], {sizes[i].width / bytes, sizes[i].rows}, bytes, v.turn, out[i]);
    }
}

}  // namespace

kernel placed_kernel(const ZELT_VIDEO& request, const video_format& from, const video_format& to, const ratio& q,
                     std::vector<shape> shapes, const std::vector<int>& bands) {
    const auto operands = [=, &from, &to, turn = request.turn](shape s) {
        std::vector<operand> all = from.operands(q.source(s), false);
        for (const operand& o : to.operands(turned(s, turn), true)) all.push_back(o);
        return all;
    };
    const auto call = [=, &from, &to](function, shape s, const view* planes) {
        ZELT_VIDEO v = request;
        const shape stored = turned(s, v.turn);
        if (v.dst_w) v.dst_w = stored.w, v.dst_h = stored.h;
        const int status = zelt_video_init(&v);
        call_video(v, from, to, q.source(s), planes, bands, stored.h);
        return static_cast<u64>(status);
    };
    const auto model = [=, &from, &to](shape s, const view* planes) {
        model_placed(request, from, q.source(s), to, s, planes);
    };
    std::string name = "zelt_video_convert " + from.name + " to " + to.name + ", turn " + std::to_string(request.turn);
    if (request.dst_w) name += std::string(request.filter ? ", area " : ", bilinear ") + q.name;
    return {name, reinterpret_cast<function>(zelt_video_convert), std::move(shapes), operands, call, model};
}

namespace {
constexpr ratio same = {"", 1, 1, 1, 1};

/// Every pair, with ways to turn, ratios, filters, matrices and bands in turn
void add_pictures(std::vector<kernel>& turns, std::vector<kernel>& sizes) {
    static constexpr ratio ratios[] = {{"3:2", 3, 2, 3, 2},       {"2:3", 2, 3, 2, 3},        {"2:1", 2, 1, 2, 1},
                                       {"5:1", 5, 1, 5, 1},       {"29:10", 29, 10, 9, 5},    {"1:3, 4:1", 1, 3, 4, 1},
                                       {"12:1", 12, 1, 9, 1},     {"one column", 0, 1, 3, 2}, {"603:10", 3, 2, 603, 10},
                                       {"300 rows", 0, 1, 300, 1}};
    int i = 0;
    for (const video_format& from : video_formats())
        for (const video_format& to : video_formats()) {
            if (!converts(from, to)) continue;
            ++i;
            ZELT_VIDEO v = {};
            v.src_cs = from.cs, v.dst_cs = to.cs, v.matrix = i % 3, v.range = i / 2 % 2, v.chroma = i / 3 % 2;
            const std::vector<int> bands = i / 4 % 2 ? std::vector<int>{1, 2, 3, 40} : std::vector<int>{};
            for (const int turn : {1 + i % 7, 1 + (i / 7 + 3 + i) % 7}) {
                v.turn = turn;
                if (to.packed() || (turn & 1 && to.half_w != to.half_h)) continue;
                turns.push_back(placed_kernel(
                    v, from, to, same,
                    i % 10 ? std::vector<shape>{{1, 1}, {3, 6}, {33, 18}} : std::vector<shape>{{67, 131}}, bands));
            }
            if (to.bits > 8) continue;
            if (to.packed() || (v.turn & 1 && to.half_w != to.half_h) || i % 3) v.turn = 0;
            v.dst_w = 1, v.filter = i / 2 % 2;
            std::vector<shape> shapes = {{1, 1}, {3, 5}, {37, 11}, {70, 4}};
            if (i % 11 == 0) shapes = {{259, 17}};
            if (i % 10 > 5) shapes = {{3, 5}, {38, 5}};  // of large sources
            sizes.push_back(placed_kernel(v, from, to, ratios[i % 10], shapes, bands));
        }
}
}  // namespace

std::vector<kernel> video_place_kernels() {
    std::vector<kernel> turns, sizes;
    add_turns(turns);
    add_pictures(turns, sizes);
    for (kernel& k : turns) k.family = "video_turn";
    for (kernel& k : sizes) k.family = "video_size", turns.push_back(std::move(k));
    return turns;
}
}  // namespace zelt::test
