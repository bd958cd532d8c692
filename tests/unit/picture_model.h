// SPDX-License-Identifier: MIT
#pragma once  // pictures under test, and their geometry from the meaning of the formats
#include "unit/test_allocator.h"
#include "zelt/imgb.h"

#include <map>
#include <vector>

using bytes = std::vector<uint8_t>;

/// Samples of luma for one of chroma, across and down, by planar colour space; 0 without chroma
inline const std::map<int32_t, std::pair<int64_t, int64_t>> chroma_of = {
    {10, {0, 0}}, {20, {0, 0}}, {11, {2, 2}}, {41, {2, 2}}, {60, {2, 2}}, {63, {2, 2}}, {12, {2, 1}}, {42, {2, 1}},
    {61, {2, 1}}, {64, {2, 1}}, {13, {1, 1}}, {43, {1, 1}}, {62, {1, 1}}, {18, {1, 2}}, {44, {1, 2}}, {22, {4, 1}}};

struct plane_model {
    int64_t w, h, bytes;  // samples, rows, bytes per sample
    int64_t aw = 0, ah = 0, px = 0, py = 0;
    int64_t stride() const { return (aw + 2 * px) * bytes; }
    int64_t rows() const { return ah + 2 * py; }
};

/// The planes of a picture; empty for a colour space that no picture can have.
inline std::vector<plane_model> picture_model(int32_t cs, int64_t w, int64_t h, const uint32_t* align = nullptr,
                                              const uint32_t* pad = nullptr) {
    std::vector<plane_model> planes;
    if (cs >= 100 && cs < 600) {
        planes.push_back({w, h, cs < 300 ? 2 : cs / 100 == 4 ? 3 : 4});
    } else if (chroma_of.contains(cs)) {
        const auto [across, down] = chroma_of.at(cs);
        const int64_t sample = cs == 20 || cs / 10 == 6 ? 2 : 1;
        planes.push_back({w, h, sample});
        if (across) planes.insert(planes.end(), 2, {(w + across - 1) / across, (h + down - 1) / down, sample});
        if (cs / 10 == 4) planes.push_back({w, h, sample});
    }
    const auto multiple = [](int64_t n, int64_t step) { return step ? (n + step - 1) / step * step : 0; };
    for (size_t i = 0; i < planes.size(); ++i) {
        plane_model& m = planes[i];
        m.aw = align ? multiple(m.w, align[i] >> 16) : m.w;
        m.ah = align ? multiple(m.h, align[i] & 0xffff) : m.h;
        if (pad) m.px = pad[i] >> 16, m.py = pad[i] & 0xffff;
    }
    return planes;
}

inline ZELT_IMGB* create(int32_t w, int32_t h, int32_t cs, uint32_t option = 0, const uint32_t* align = nullptr,
                         const uint32_t* pad = nullptr) {
    return zelt_imgb_create(w, h, cs, option, align, pad, test_allocator::alloc, test_allocator::free, nullptr);
}

inline bytes block(const ZELT_IMGB* img) {
    const auto* start = static_cast<const uint8_t*>(img->base[0]);
    return bytes(start, start + img->size);
}
