// SPDX-License-Identifier: MIT
// Pictures of 1920 x 1080 in decoder layouts, turned, or of another size.
#include "video_place.h"

#include "zelt/video.h"

#include <algorithm>
#include <random>

namespace zelt::bench {
namespace {
constexpr shape source = {1920, 1080};

/// Planes in memory: bytes of each pixel, halved both ways or not
struct layout {
    int32_t cs;
    std::vector<std::pair<int, int>> planes;
};
const layout yuv420 = {ZELT_CS_YUV420, {{1, 1}, {1, 2}, {1, 2}}}, nv12 = {ZELT_CS_NV12, {{1, 1}, {2, 2}}};
const layout rgba8888 = {ZELT_CS_RGBA8888, {{4, 1}}}, plane = {0, {{1, 1}}};

struct placing {
    std::string name;
    const layout &src, &dst;
    int turn;
    shape to;  // as it is stored
    int filter;
    bool same_size() const { return to.w * to.h == source.w * source.h; }
};
const std::vector<placing>& placings() {
    static const std::vector<placing> all = [] {
        std::vector<placing> list;
        const auto turned = [&](const std::string& name, const layout& src, const layout& dst) {
            for (const int quarters : {1, 2, 3})
                list.push_back({name + " turned by " + std::to_string(90 * quarters), src, dst, quarters,
                                quarters % 2 ? shape{source.h, source.w} : source, 0});
        };
        turned("plane", plane, plane), turned("rgba8888", rgba8888, rgba8888), turned("yuv420", yuv420, yuv420);
        turned("nv12_to_yuv420", nv12, yuv420), turned("nv12_to_rgba8888", nv12, rgba8888);
        list.push_back({"nv12_to_rgba8888 of 1280x720", nv12, rgba8888, 0, {1280, 720}, ZELT_VIDEO_BILINEAR});
        for (const int part : {3, 6}) {
            const shape to = {source.w / part, source.h / part};
            const std::string size = std::to_string(to.w) + 'x' + std::to_string(to.h);
            list.push_back({"nv12_to_rgba8888 of " + size + " by area", nv12, rgba8888, 0, to, ZELT_VIDEO_AREA});
        }
        return list;
    }();
    return all;
}

std::shared_ptr<video_job> make_job(const placing& p) {
    const auto job = std::make_shared<video_job>();
    job->size = p.to;
    const auto bytes = [](const layout& l, shape s, std::vector<video_plane>& planes, u8* at) {
        std::size_t size = 0;
        for (const auto& [width, halves] : l.planes) {
            planes.push_back({at ? at + size : nullptr, s.w / halves * width});
            size += static_cast<std::size_t>(planes.back().stride) * static_cast<std::size_t>(s.h / halves);
        }
        return size;
    };
    std::vector<video_plane> none;
    job->memory.resize(bytes(p.src, source, none, nullptr) + bytes(p.dst, p.to, none, nullptr));
    std::mt19937 random(1);
    for (u8& v : job->memory) v = static_cast<u8>(random());
    const std::size_t src_bytes = bytes(p.src, source, job->src, job->memory.data());
    bytes(p.dst, p.to, job->dst, job->memory.data() + src_bytes);
    return job;
}

video_work ours(const placing& p, const library& l) {
    if (&p.src == &p.dst && p.src.planes.size() == 1) {
        const auto turn = l.find<decltype(zelt_video_turn)>("zelt_video_turn");
        return [=, &p](video_job& j) {
            turn(j.src[0].p, j.src[0].stride, j.dst[0].p, j.dst[0].stride, source.w, source.h, p.src.planes[0].first,
                 p.turn);
        };
    }
    ZELT_VIDEO v = {};
    v.src_cs = p.src.cs, v.dst_cs = p.dst.cs, v.turn = p.turn, v.filter = p.filter;
    v.dst_w = p.to.w, v.dst_h = p.to.h;
    if (l.find<decltype(zelt_video_init)>("zelt_video_init")(&v)) std::abort();
    const auto convert = l.find<decltype(zelt_video_convert)>("zelt_video_convert");
    return [=](video_job& j) {
        void *src[3] = {}, *dst[3] = {};
        int32_t src_s[3] = {}, dst_s[3] = {};
        for (std::size_t i = 0; i < j.src.size(); ++i) src[i] = j.src[i].p, src_s[i] = j.src[i].stride;
        for (std::size_t i = 0; i < j.dst.size(); ++i) dst[i] = j.dst[i].p, dst_s[i] = j.dst[i].stride;
        convert(&v, src, src_s, dst, dst_s, source.w, source.h);
    };
}

const bool added = [] {
    for (const placing& p : placings())
        add_row({"video", p.name, "pixel", static_cast<double>(p.to.w) * p.to.h, [&p] {
                     std::vector<candidate> list;
                     for (const library& l : libraries())
                         list.push_back({l.name, [work = ours(p, l), job = make_job(p)] { work(*job); }});
                     return list;
                 }});
    return true;
}();
}  // namespace

bool add_placed_peer(const std::string& row, const std::string& peer, const video_work& work) {
    const placing& p = *std::ranges::find(placings(), row, &placing::name);
    return add_candidate("video", row, [=, &p]() -> candidate {
        const auto expected = make_job(p), job = make_job(p);
        ours(p, libraries().front())(*expected);
        work(*job);
        const bool converted = p.dst.cs == ZELT_CS_RGBA8888 && &p.src != &p.dst;
        if (p.same_size() && !converted && job->memory != expected->memory) reject(row, peer);
        return {peer, [work, job] { work(*job); }};
    });
}
}  // namespace zelt::bench
