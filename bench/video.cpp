// SPDX-License-Identifier: MIT
// Whole pictures in decoder layouts to RGB, back, and into one another: BT.601 of limited range, which all peers have.
#include "video.h"

#include "zelt/video.h"

#include <algorithm>
#include <cstdint>
#include <random>

namespace zelt::bench {
namespace {
struct layout {
    const char* name;
    int32_t cs;
    struct {
        int bytes, across, down;  // bytes for so many pixels and rows
    } planes[3];
};
constexpr layout layouts[] = {
    {"yuv420", ZELT_CS_YUV420, {{1, 1, 1}, {1, 2, 2}, {1, 2, 2}}},
    {"yuv422", ZELT_CS_YUV422, {{1, 1, 1}, {1, 2, 1}, {1, 2, 1}}},
    {"yuv444", ZELT_CS_YUV444, {{1, 1, 1}, {1, 1, 1}, {1, 1, 1}}},
    {"nv12", ZELT_CS_NV12, {{1, 1, 1}, {2, 2, 2}}},
    {"yuyv", ZELT_CS_YUYV, {{4, 2, 1}}},
    {"p010le", ZELT_CS_P010LE, {{2, 1, 1}, {4, 2, 2}}},
    {"rgba8888", ZELT_CS_RGBA8888, {{4, 1, 1}}},
    {"bgra8888", ZELT_CS_BGRA8888, {{4, 1, 1}}},
    {"argb8888", ZELT_CS_ARGB8888, {{4, 1, 1}}},
    {"rgb888", ZELT_CS_RGB888, {{3, 1, 1}}},
    {"bgr888", ZELT_CS_BGR888, {{3, 1, 1}}},
    {"rgb565", ZELT_CS_RGB565, {{2, 1, 1}}},
};

struct conversion {
    const layout *src, *dst;
    bool smooth;

    conversion(const char* from, const char* to, bool smooth_chroma = false)
        : src(find(from)), dst(find(to)), smooth(smooth_chroma) {}
    std::string name() const { return std::string(src->name) + "_to_" + dst->name + (smooth ? " smooth" : ""); }

private:
    static const layout* find(const std::string& name) {
        return std::find_if(std::begin(layouts), std::end(layouts), [&](const layout& l) { return name == l.name; });
    }
};
const std::vector<conversion>& conversions() {
    static const std::vector<conversion> all = [] {
        std::vector<conversion> list;
        for (const char* src : {"yuv420", "nv12", "yuyv", "yuv422"})
            for (const char* dst : {"rgba8888", "bgra8888", "argb8888", "rgb888", "rgb565"})
                list.emplace_back(src, dst);
        for (const char* dst : {"rgba8888", "bgra8888"}) list.emplace_back("p010le", dst);
        for (const char* src : {"yuv420", "nv12", "p010le"}) list.emplace_back(src, "rgba8888", true);
        list.emplace_back("nv12", "yuv420");
        list.emplace_back("yuv420", "nv12");
        list.emplace_back("yuyv", "yuv420");
        for (const bool smooth : {false, true}) list.emplace_back("yuv420", "yuv444", smooth);
        for (const char* src : {"rgba8888", "bgra8888", "argb8888", "rgb888", "bgr888", "rgb565"})
            list.emplace_back(src, "yuv420");
        for (const char* src : {"rgba8888", "bgra8888", "rgb888"}) list.emplace_back(src, "nv12");
        for (const char* dst : {"yuv422", "yuv444", "yuyv"}) list.emplace_back("bgra8888", dst);
        return list;
    }();
    return all;
}
constexpr shape sizes[] = {{1920, 1080}, {320, 240}};

std::string title(const std::string& conversion, shape s) {
    return conversion + ' ' + std::to_string(s.w) + 'x' + std::to_string(s.h);
}

std::vector<video_plane> planes_of(const layout& l, shape s) {
    std::vector<video_plane> planes;
    for (const auto& p : l.planes)
        if (p.bytes) planes.push_back({nullptr, s.w / p.across * p.bytes});
    return planes;
}
std::size_t rows_of(const layout& l, std::size_t plane, shape s) {
    return static_cast<std::size_t>(s.h / l.planes[plane].down);
}
std::size_t bytes_of(const layout& l, const std::vector<video_plane>& planes, shape s) {
    std::size_t size = 0;
    for (std::size_t i = 0; i < planes.size(); ++i)
        size += static_cast<std::size_t>(planes[i].stride) * rows_of(l, i, s);
    return size;
}

/// Random samples, none blacker than black, which OpenCV would make black; smoothly rising ones where the places of
/// chroma are not the same everywhere, or where it is not everywhere the mean: of another colour than grey; of 10 bits
/// at the high end of words
void fill(const conversion& c, video_job& job) {
    std::mt19937 random(1);
    for (std::size_t i = 0; i < job.src.size(); ++i) {
        const video_plane& plane = job.src[i];
        const auto rows = static_cast<int>(rows_of(*c.src, i, job.size));
        const bool rgb = c.src->planes[0].bytes > 1 && c.src->planes[0].across == 1;
        const auto rising = [&](int x, int y) {
            const int colour = rgb ? x % c.src->planes[0].bytes * 30 : 0;
            return 64 + colour + x * 60 / plane.stride + y * 40 / rows;
        };
        for (int y = 0; y < rows; ++y)
            for (int x = 0; x < plane.stride; ++x)
                plane.p[y * plane.stride + x] =
                    static_cast<u8>((c.smooth || rgb ? rising(x, y) : 16 + random() % 240) &
                                    (c.src->cs == ZELT_CS_P010LE && x % 2 == 0 ? 0xC0 : 0xFF));
    }
}

std::shared_ptr<video_job> make_job(const conversion& c, shape s) {
    constexpr std::size_t line = 64;  // both pictures start at one, as decoders have them
    const auto job = std::make_shared<video_job>();
    job->size = s, job->src = planes_of(*c.src, s), job->dst = planes_of(*c.dst, s);
    const std::size_t src_bytes = (bytes_of(*c.src, job->src, s) + line - 1) / line * line;
    job->memory.resize(src_bytes + bytes_of(*c.dst, job->dst, s) + 2 * line);
    const auto place = [&](const layout& l, std::vector<video_plane>& planes, u8* p) {
        for (std::size_t i = 0; i < planes.size(); ++i) {
            planes[i].p = p;
            p += static_cast<std::size_t>(planes[i].stride) * rows_of(l, i, s);
        }
    };
    u8* const start = job->memory.data() + line - reinterpret_cast<std::uintptr_t>(job->memory.data()) % line;
    place(*c.src, job->src, start), place(*c.dst, job->dst, start + src_bytes);
    fill(c, *job);
    return job;
}

video_work ours(const conversion& c, const library& l) {
    const auto convert = l.find<decltype(zelt_video_convert)>("zelt_video_convert");
    ZELT_VIDEO v = {};
    v.src_cs = c.src->cs, v.dst_cs = c.dst->cs, v.chroma = c.smooth ? ZELT_VIDEO_SMOOTH : ZELT_VIDEO_REPLICATED;
    if (l.find<decltype(zelt_video_init)>("zelt_video_init")(&v)) std::abort();
    return [=](video_job& j) {
        void *src[3] = {}, *dst[3] = {};
        int32_t src_s[3] = {}, dst_s[3] = {};
        for (std::size_t i = 0; i < j.src.size(); ++i) src[i] = j.src[i].p, src_s[i] = j.src[i].stride;
        for (std::size_t i = 0; i < j.dst.size(); ++i) dst[i] = j.dst[i].p, dst_s[i] = j.dst[i].stride;
        convert(&v, src, src_s, dst, dst_s, j.size.w, j.size.h);
    };
}
candidate run_by(const conversion& c, shape s, const std::string& name, const video_work& work) {
    return {name, [work, job = make_job(c, s)] { work(*job); }};
}

/// A peer whose result is near ours, on memory of its own
candidate checked(const conversion& c, shape s, const std::string& name, const video_work& work) {
    const auto expected = make_job(c, s), job = make_job(c, s);
    ours(c, libraries().front())(*expected);
    work(*job);
    const auto bytes = static_cast<int>(bytes_of(*c.dst, job->dst, s));
    comparison near_enough = c.dst->cs == ZELT_CS_RGB565 ? fields_within_1 : bytes_within<video_tolerance>;
    if (c.src->cs == ZELT_CS_P010LE) near_enough = bytes_within<video_tolerance + 1>;  // they drop bits of chroma
    if (!near_enough(expected->dst[0].p, job->dst[0].p, bytes)) reject(title(c.name(), s), name);
    return {name, [work, job] { work(*job); }};
}

void add_conversion(const conversion& c, shape s) {
    const double pixels = static_cast<double>(s.w) * s.h;
    const auto bytes = [&](const layout& l) { return static_cast<double>(bytes_of(l, planes_of(l, s), s)); };
    const double read = bytes(*c.src), written = bytes(*c.dst);
    const work all = {.read = read, .written = written, .footprint = read + written};
    add_row({"video", title(c.name(), s), "pixel", pixels,
             [&c, s] {
                 std::vector<candidate> list;
                 for (const library& l : libraries()) list.push_back(run_by(c, s, l.name, ours(c, l)));
                 return list;
             },
             all});
    if (!c.smooth) return;
    add_row(
        {"video", title(c.name() + " and replicated", s), "pixel", pixels, [&c, s]() -> std::vector<candidate> {
             const library& l = libraries().front();
             const conversion replicated(c.src->name, c.dst->name);
             return {run_by(c, s, l.name, ours(c, l)), run_by(replicated, s, "zelt replicated", ours(replicated, l))};
         }});
}

const bool added = [] {
    for (const conversion& c : conversions())
        for (const shape s : sizes) add_conversion(c, s);
    return true;
}();
}  // namespace

bool add_video_peer(const std::string& name, const std::string& peer, const video_work& work) {
    for (const conversion& c : conversions())
        if (c.name() == name)
            for (const shape s : sizes)
                add_candidate("video", title(name, s), [=, &c] { return checked(c, s, peer, work); });
    return true;
}
}  // namespace zelt::bench
