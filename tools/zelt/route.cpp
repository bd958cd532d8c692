// SPDX-License-Identifier: MIT
#include "route.h"

#include "pictures/failure.h"
#include "repack.h"
#include "resize.h"

namespace zelt::tool {
namespace {

using conversion = route::conversion;
using size = route::size;

// Intermediate formats, those with alpha first so that it is not lost, and RGB before what rounds.
constexpr int32_t intermediates[] = {ZELT_CS_R8G8B8A8, ZELT_CS_R8G8B8, ZELT_CS_YUV444A8, ZELT_CS_YUV444};

conversion dispatched(zelt_csc_fn fn) {
    if (!fn) return nullptr;
    // Packed results have one plane; null in the second entry tells the ARGB8888 and BGRA8888 converters so.
    return [fn](const picture& from, const picture& to) {
        fn(from.plane, from.w, from.h, from.stride, from.fmt->cs, to.plane, to.w, to.h, to.stride, to.fmt->cs);
    };
}

zelt_csc_fn converter(const format& from, const format& to) {
    // The dispatch's converter for this pair writes four bytes a pixel instead of three.
    if (from.cs == ZELT_CS_R8G8B8A8 && to.cs == ZELT_CS_RGBA5658) return zelt_csc_r8g8b8a8_to_rgba5658;
    return zelt_imgp_get_fn_csc(1, 1, from.cs, 1, 1, to.cs, nullptr);
}

zelt_csc_fn resizing_converter(const format& from, const format& to) {
    return zelt_imgp_get_fn_csc(2, 2, from.cs, 1, 1, to.cs, nullptr);
}

/// Finds the ways of one size, and those of video.h to another.
class finder {
public:
    explicit finder(const manner& how) : how_(how) {}

    bool by_dispatch(const format& from, const format& to) const {
        const colours& c = how_.meaning;
        return from.yuv == to.yuv || (c.matrix == ZELT_VIDEO_BT601 && c.range == ZELT_VIDEO_FULL);
    }

    conversion by_video(const format& from, const format& to, std::optional<size> at, int32_t filter) const {
        ZELT_VIDEO v = {};
        v.src_cs = from.cs, v.dst_cs = to.cs;
        v.matrix = how_.meaning.matrix, v.range = how_.meaning.range;
        v.chroma = how_.chroma;
        if (at) v.filter = filter, v.dst_w = at->w, v.dst_h = at->h;
        if (zelt_video_init(&v) != ZELT_OK) return nullptr;
        return [v](const picture& p, const picture& to_p) {
            zelt_video_convert(&v, p.plane, p.stride, to_p.plane, to_p.stride, p.w, p.h);
        };
    }

    conversion direct(const format& from, const format& to) const {
        if (by_dispatch(from, to))
            if (const conversion found = dispatched(converter(from, to))) return found;
        if (const conversion found = by_video(from, to, std::nullopt, 0)) return found;
        return repacks(from, to) ? repack : conversion{};
    }

    struct leg {
        const format* to;
        conversion convert;
    };
    std::optional<std::vector<leg>> find(const format& from, const format& to) const {
        if (from.cs == to.cs) return std::vector<leg>{};
        if (conversion one = direct(from, to)) return std::vector<leg>{{&to, one}};
        for (const int32_t cs : intermediates) {
            const format& mid = format_of(cs);
            if (mid.cs == from.cs || mid.cs == to.cs || (from.alpha && to.alpha && !mid.alpha)) continue;
            const conversion first = direct(from, mid), second = direct(mid, to);
            if (first && second) return std::vector<leg>{{&mid, first}, {&to, second}};
        }
        return std::nullopt;
    }

    std::vector<leg> path(const format& from, const format& to) const {
        if (auto found = find(from, to)) return *found;
        std::string reached;
        for (const format& other : formats())
            if (find(from, other)) reached += std::string(" ") + other.name;
        throw failure(status::unsupported, std::string("there is no way from ") + from.name + " to " + to.name + "; " +
                                               from.name + " can become" + reached);
    }

private:
    const manner& how_;
};

/// What bands of `from` become so that the end is what it is without bands: planes of the destination's sizes
const format& resized_in_bands(const format& from, const format& to) {
    const format& mid = from.yuv ? planar_yuv(to.yuv ? to : format_of(ZELT_CS_YUV444)) : from;
    return mid.planes == from.planes ? mid : from;
}

}  // namespace

bool converts(const format& from, const format& to) { return from.cs == to.cs || finder(manner{}).direct(from, to); }

bool resizes(const format& from, const format& to) {
    return resizing_converter(from, to) || finder(manner{}).by_video(from, to, size{1, 1}, ZELT_VIDEO_BILINEAR);
}

route::route(const format& from, size from_size, const format& to, size to_size, const manner& asked)
    : from_(&from), from_size_(from_size) {
    manner how = asked;
    if (!from.yuv && !to.yuv) how.meaning = {};  // YUV between them is nobody's, and exact where it is full-range
    const finder ways(how);
    if (from_size == to_size) {
        for (finder::leg& next : ways.path(from, to)) add(next.convert, *next.to, to_size);
        return;
    }

    const bool small = 2 * int64_t{to_size.w} < from_size.w || 2 * int64_t{to_size.h} < from_size.h;
    const int32_t filter = how.filter.value_or(small && !how.band_rows ? ZELT_VIDEO_AREA : ZELT_VIDEO_BILINEAR);
    if (how.band_rows) {
        const format& mid = resized_in_bands(from, to);
        if (!resizable(from) || !resizable(mid))
            throw failure(status::unsupported, std::string("pictures of ") + from.name + " cannot be resized in bands");
        if (!bands_are_exact(how.band_rows, from, from_size.w, from_size.h, mid, to_size.w, to_size.h))
            throw failure(status::unsupported, "bands of " + std::to_string(how.band_rows) +
                                                   " rows are too short for these sizes: not every row would be right");
        add([rows = how.band_rows](const picture& p, const picture& r) { resize_in_bands(p, r, rows); }, mid, to_size);
        for (finder::leg& next : ways.path(mid, to)) add(next.convert, *next.to, to_size);
        return;
    }
    if (filter == ZELT_VIDEO_BILINEAR && ways.by_dispatch(from, to))
        if (const conversion fused = dispatched(resizing_converter(from, to))) {
            add(fused, to, to_size);
            return;
        }

    const auto resizer = [&](const format& f) {
        const conversion video = ways.by_video(f, f, to_size, filter);
        if (video || !resizable(f)) return video;
        return conversion([filter](const picture& p, const picture& r) { resize(p, r, filter); });
    };
    const std::vector<finder::leg> path = ways.path(from, to);
    const conversion first = path.empty() ? nullptr : ways.by_video(from, *path[0].to, to_size, filter);
    const conversion before = resizer(from), after = resizer(to);
    if (!first && !before && !after)
        throw failure(status::unsupported, std::string("pictures of ") + from.name + " cannot be resized");
    size at = first || before ? to_size : from_size;
    if (!first && before) add(before, from, at);
    for (std::size_t i = 0; i < path.size(); ++i) add(i == 0 && first ? first : path[i].convert, *path[i].to, at);
    if (at != to_size) add(after, to, to_size);
}

const picture& route::run(const picture& from) {
    const picture* at = &from;
    for (step& s : steps_) {
        s.convert(*at, s.result);
        at = &s.result;
    }
    return *at;
}

std::string route::text() const {
    if (steps_.empty()) return std::string(from_->name) + " as it is";
    std::string names = from_->name;
    const format* fmt = from_;
    size at = from_size_;
    for (const step& s : steps_) {
        names += std::string(" -> ") + s.result.fmt->name;
        const size now = {s.result.w, s.result.h};
        if (now != at) {
            names += ' ' + std::to_string(now.w) + 'x' + std::to_string(now.h);
            if (fmt->cs != s.result.fmt->cs) names += " in one pass";
        }
        fmt = s.result.fmt;
        at = now;
    }
    return names;
}

}  // namespace zelt::tool
