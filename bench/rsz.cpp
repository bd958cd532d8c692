// SPDX-License-Identifier: MIT
// Whole pictures to another size: the formats of the resizer and the fused converters.
#include "rsz.h"

#include "zelt/csc.h"
#include "zelt/irsz.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace zelt::bench {
const std::vector<sizes> resizings = counting ? std::vector<sizes>{
    {"320x240 to 213x160", {320, 240}, {213, 160}}, {"320x240 to 480x360", {320, 240}, {480, 360}},
    {"320x240 to 160x120", {320, 240}, {160, 120}}, {"320x240 to 640x480", {320, 240}, {640, 480}},
    {"320x240 to 107x80", {320, 240}, {107, 80}}, {"320x240 to 80x60", {320, 240}, {80, 60}},
} : std::vector<sizes>{
    {"1080 to 720", {1920, 1080}, {1280, 720}},   {"720 to 1080", {1280, 720}, {1920, 1080}},
    {"1080 to 2160", {1920, 1080}, {3840, 2160}}, {"1080 to 540", {1920, 1080}, {960, 540}},
    {"2160 to 1080", {3840, 2160}, {1920, 1080}}, {"2160 to 720", {3840, 2160}, {1280, 720}},
    {"1080 to 270", {1920, 1080}, {480, 270}},
    {"240 to 160", {320, 240}, {213, 160}},
};

namespace {
struct format {
    const char* name;
    int src_bytes, dst_bytes;  // a pixel, over all planes
    bool fused;
};
const format formats[] = {
    {"8b", 1, 1, false},
    {"8b8b8b", 3, 3, false},
    {"8b8b8b8b", 4, 4, false},
    {"5b6b5b", 2, 2, false},
    {"8b8b8b_5b6b5b", 3, 2, false},
    {"yuv444_to_rgba8888", 3, 4, true},
    {"yuv444_to_rgb888", 3, 3, true},
    {"yuv444_to_rgb565", 3, 2, true},
    {"yuv444a8_to_rgba8888", 4, 4, true},
    {"r8g8b8_to_rgb888", 3, 3, true},
    {"r8g8b8_to_rgba8888", 3, 4, true},
};

const format& find(const std::string& name) {
    for (const format& f : formats)
        if (name == f.name) return f;
    std::abort();
}

std::size_t area(shape s) { return static_cast<std::size_t>(s.w) * static_cast<std::size_t>(s.h); }

std::string title(const std::string& format, const sizes& s) { return format + " " + s.name; }

/// Grey that rises by 1 every few pixels, where other sampling points and phases make no great difference
u8 rising(shape s, int x, int y) { return static_cast<u8>(x * 120 / s.w + y * 120 / s.h); }

/// Whether that comes out. RGB565 is not looked at.
bool right(const format& f, resize_job& j, const resize_work& work) {
    if (f.dst_bytes == 2) return true;
    const bool yuv = std::strncmp(f.name, "yuv", 3) == 0;
    const int packed = f.fused ? 1 : f.src_bytes, planes = f.fused ? f.src_bytes : 1;
    u8* src = j.src.data();
    for (int plane = 0; plane < planes; ++plane)
        for (int y = 0; y < j.from.h; ++y)
            for (int x = 0; x < j.from.w; ++x, src += packed)
                std::memset(src, yuv && (plane == 1 || plane == 2) ? 128 : rising(j.from, x, y),
                            static_cast<std::size_t>(packed));
    std::fill(j.dst.begin(), j.dst.end(), u8{0});
    work(j);
    const bool opaque = f.fused && f.dst_bytes > f.src_bytes;
    const u8* dst = j.dst.data();
    for (int y = 0; y < j.to.h; ++y)
        for (int x = 0; x < j.to.w; ++x)
            for (int c = 0; c < f.dst_bytes; ++c, ++dst)
                if (std::abs(*dst - (opaque && c == 3 ? 255 : rising(j.to, x, y))) > 4) return false;
    return true;
}

candidate make(const format& f, const sizes& s, const std::string& name, const resize_work& work) {
    const auto job = std::make_shared<resize_job>();
    job->from = s.from, job->to = s.to;
    job->src.resize(area(s.from) * static_cast<std::size_t>(f.src_bytes));
    job->dst.resize(area(s.to) * static_cast<std::size_t>(f.dst_bytes));
    if (!right(f, *job, work)) reject(title(f.name, s), name);
    std::mt19937 random(1);
    for (u8& v : job->src) v = static_cast<u8>(random());
    return {name, [job, work] { work(*job); }};
}

resize_work ours(const format& f, const library& l) {
    if (f.fused) {
        const auto fn = l.find<std::remove_pointer_t<zelt_csc_fn>>((std::string("zelt_csc_rsz_") + f.name).c_str());
        return [fn, bytes = f.dst_bytes](resize_job& j) {
            void* const src[] = {j.plane(0), j.plane(1), j.plane(2), j.plane(3)};
            void* const dst[] = {j.dst.data()};
            const int src_s[] = {j.from.w, j.from.w, j.from.w, j.from.w}, dst_s[] = {j.to.w * bytes};
            fn(src, j.from.w, j.from.h, src_s, 0, dst, j.to.w, j.to.h, dst_s, 0);
        };
    }
    const auto full = l.find<decltype(zelt_irsz8b_full)>((std::string("zelt_irsz") + f.name + "_full").c_str());
    const auto step = l.find<decltype(bilinear_rsz_step_size)>("bilinear_rsz_step_size");
    return [=, &f](resize_job& j) {
        uint32_t x, y;
        step(j.from.w, j.from.h, j.to.w, j.to.h, &x, &y);
        full(j.src.data(), j.from.w * f.src_bytes, j.to.w, j.to.h, j.to.w * f.dst_bytes, j.dst.data(), x, y);
    };
}

/// The resizer of one channel fed with 16 rows at a time
resize_work in_bands(const library& l) {
    const auto create = l.find<decltype(zelt_irsz_create)>("zelt_irsz_create");
    const auto resize = l.find<decltype(zelt_irsz)>("zelt_irsz");
    const auto free = l.find<decltype(zelt_irsz_delete)>("zelt_irsz_delete");
    return [=](resize_job& j) {
        const ZELT_IRSZ_PARAM param = {ZELT_IRSZ_8B, ZELT_IRSZ_BANDS, j.from.w, j.from.h, j.from.w,
                                       16,           j.to.w,          j.to.h,   j.to.w,   j.dst.data()};
        ZELT_IRSZ* const irsz = create(&param, nullptr);
        for (int y = 0; y < j.from.h; y += 16) resize(irsz, j.src.data() + y * j.from.w, y, 16);
        free(irsz);
    };
}

/// The source or, where there is more of it, four pixels for each of the destination
work work_of(const format& f, const sizes& s) {
    const double from = area(s.from), to = area(s.to);
    return {.read = f.src_bytes * std::min(from, 4 * to),
            .written = f.dst_bytes * to,
            .footprint = f.src_bytes * from + f.dst_bytes * to};
}

const bool added = [] {
    for (const format& f : formats)
        for (const sizes& s : resizings)
            add_row({"rsz", title(f.name, s), "pixel", static_cast<double>(area(s.to)),
                     [&f, &s] {
                         std::vector<candidate> list;
                         for (const library& l : libraries()) list.push_back(make(f, s, l.name, ours(f, l)));
                         return list;
                     },
                     work_of(f, s)});
    const sizes& s = resizings[0];
    add_row({"rsz", title("8b in bands of 16", s), "pixel", static_cast<double>(area(s.to)),
             [&s] {
                 std::vector<candidate> list;
                 for (const library& l : libraries()) list.push_back(make(formats[0], s, l.name, in_bands(l)));
                 return list;
             },
             work_of(formats[0], s)});
    return true;
}();
}  // namespace

bool add_resizer(const std::string& name, const std::string& peer, const resize_work& work) {
    for (const sizes& s : resizings)
        add_candidate("rsz", title(name, s), [=, &s] { return make(find(name), s, peer, work); });
    return true;
}
}  // namespace zelt::bench
