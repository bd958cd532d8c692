#include "route.h"

#include "pictures/failure.h"
#include "resize.h"

#include <optional>

namespace zelt::tool {
namespace {

// Intermediate formats, those with alpha first so that it is not lost.
constexpr int32_t intermediates[] = {ZELT_CS_YUV444A8, ZELT_CS_R8G8B8A8, ZELT_CS_YUV444, ZELT_CS_R8G8B8};

struct conversion {
    const format* to;
    zelt_csc_fn convert;
};

zelt_csc_fn converter(const format& from, const format& to) {
    // The dispatch's converter for this pair writes four bytes a pixel instead of three.
    if (from.cs == ZELT_CS_R8G8B8A8 && to.cs == ZELT_CS_RGBA5658) return zelt_csc_r8g8b8a8_to_rgba5658;
    return same_size_converter(from, to);
}

std::optional<std::vector<conversion>> find(const format& from, const format& to) {
    if (from.cs == to.cs) return std::vector<conversion>{};
    if (const zelt_csc_fn direct = converter(from, to)) return std::vector<conversion>{{&to, direct}};
    for (const int32_t cs : intermediates) {
        const format& mid = format_of(cs);
        if (mid.cs == from.cs || mid.cs == to.cs) continue;
        const zelt_csc_fn first = converter(from, mid), second = converter(mid, to);
        if (first && second) return std::vector<conversion>{{&mid, first}, {&to, second}};
    }
    return std::nullopt;
}

}  // namespace

zelt_csc_fn same_size_converter(const format& from, const format& to) {
    return zelt_imgp_get_fn_csc(1, 1, from.cs, 1, 1, to.cs, nullptr);
}

zelt_csc_fn resizing_converter(const format& from, const format& to) {
    return zelt_imgp_get_fn_csc(2, 2, from.cs, 1, 1, to.cs, nullptr);
}

route::route(const format& from, size from_size, const format& to, size to_size, int band_rows)
    : from_(&from), from_size_(from_size), band_rows_(band_rows) {
    const bool resizes = from_size != to_size;
    if (const zelt_csc_fn fused = resizing_converter(from, to); resizes && fused && !band_rows) {
        steps_.push_back({fused, picture(to, to_size.w, to_size.h)});
        return;
    }
    if (resizes) {
        if (!resizable(from))
            throw failure(status::unsupported, std::string("pictures of ") + from.name + " cannot be resized");
        if (band_rows && !bands_are_exact(band_rows, from_size.w, from_size.h, to_size.w, to_size.h))
            throw failure(status::unsupported, "bands of " + std::to_string(band_rows) +
                                                   " rows are too short for these sizes: not every row would be right");
        steps_.push_back({nullptr, picture(from, to_size.w, to_size.h)});
    }
    const auto path = find(from, to);
    if (!path) {
        std::string reached;
        for (const format& other : formats())
            if (find(from, other)) reached += std::string(" ") + other.name;
        throw failure(status::unsupported, std::string("there is no way from ") + from.name + " to " + to.name + "; " +
                                               from.name + " can become" + reached);
    }
    for (const conversion& next : *path) steps_.push_back({next.convert, picture(*next.to, to_size.w, to_size.h)});
}

const picture& route::run(const picture& from) {
    const picture* at = &from;
    for (step& s : steps_) {
        if (!s.convert) {
            resize(*at, s.result, band_rows_);
            at = &s.result;
            continue;
        }
        // Packed results have one plane; null in the second entry tells the ARGB8888 and BGRA8888 converters so.
        s.convert(at->plane, at->w, at->h, at->stride, at->fmt->cs, s.result.plane, s.result.w, s.result.h,
                  s.result.stride, s.result.fmt->cs);
        at = &s.result;
    }
    return *at;
}

std::string route::text() const {
    if (steps_.empty()) return std::string(from_->name) + " as it is";
    std::string names = from_->name;
    size at = from_size_;
    for (const step& s : steps_) {
        names += std::string(" -> ") + s.result.fmt->name;
        const size now = {s.result.w, s.result.h};
        if (now == at) continue;
        names += ' ' + std::to_string(now.w) + 'x' + std::to_string(now.h);
        if (s.convert) names += " in one pass";
        at = now;
    }
    return names;
}

}  // namespace zelt::tool
