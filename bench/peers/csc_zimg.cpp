// SPDX-License-Identifier: MIT
// zimg's 10-bit matrices, full-range BT.601 both ways in 16-bit words.
#include "bench.h"

#include <memory>
#include <zimg.h>

namespace zelt::bench {
namespace {
/// A graph for pictures of one size, and the memory that it needs
class matrix {
public:
    explicit matrix(bool to_rgb) : to_rgb_(to_rgb) {}

    void run(shape s, const view* v) {
        if (!graph_ || s.w != size_.w || s.h != size_.h) build(s);
        zimg_image_buffer_const src = {ZIMG_API_VERSION, {}};
        zimg_image_buffer dst = {ZIMG_API_VERSION, {}};
        for (int i = 0; i < 3; ++i) {
            src.plane[i] = {v[i].p, v[i].stride, ZIMG_BUFFER_MAX};
            dst.plane[i] = {v[i + 3].p, v[i + 3].stride, ZIMG_BUFFER_MAX};
        }
        zimg_filter_graph_process(graph_.get(), &src, &dst, memory_.get(), nullptr, nullptr, nullptr, nullptr);
    }

private:
    static zimg_image_format format(shape s, bool rgb) {
        zimg_image_format f;
        zimg_image_format_default(&f, ZIMG_API_VERSION);
        f.width = static_cast<unsigned>(s.w), f.height = static_cast<unsigned>(s.h);
        f.pixel_type = ZIMG_PIXEL_WORD, f.depth = 10, f.pixel_range = ZIMG_RANGE_FULL;
        f.color_family = rgb ? ZIMG_COLOR_RGB : ZIMG_COLOR_YUV;
        f.matrix_coefficients = rgb ? ZIMG_MATRIX_RGB : ZIMG_MATRIX_BT470_BG;
        return f;
    }
    void build(shape s) {
        const zimg_image_format from = format(s, !to_rgb_), to = format(s, to_rgb_);
        graph_.reset(zimg_filter_graph_build(&from, &to, nullptr));
        std::size_t size = 0;
        zimg_filter_graph_get_tmp_size(graph_.get(), &size);
        memory_.reset(std::aligned_alloc(64, (size + 63) / 64 * 64));
        size_ = s;
    }
    struct release {
        void operator()(zimg_filter_graph* g) const { zimg_filter_graph_free(g); }
        void operator()(void* p) const { std::free(p); }
    };
    bool to_rgb_;
    shape size_ = {};
    std::unique_ptr<zimg_filter_graph, release> graph_;
    std::unique_ptr<void, release> memory_;
};

/// Words within 4
bool near(const u8* ours, const u8* theirs, int bytes) {
    for (int i = 0; i < bytes; i += 2) {
        const int d = (ours[i] | ours[i + 1] << 8) - (theirs[i] | theirs[i + 1] << 8);
        if (d > 4 || d < -4) return false;
    }
    return true;
}

picture_peer peer(bool to_rgb) {
    const auto m = std::make_shared<matrix>(to_rgb);
    return {"zimg", near, [m](shape s, const view* v) { m->run(s, v); }};
}

const bool added[] = {add_peer("zelt_csc_p410_to_r10g10b10", peer(true)),
                      add_peer("zelt_csc_r10g10b10_to_p410", peer(false))};
}  // namespace
}  // namespace zelt::bench
