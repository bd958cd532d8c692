// SPDX-License-Identifier: MIT
// OpenCV's merge of planes, on this thread alone.
#include "bench.h"

#include <opencv2/core.hpp>

namespace zelt::bench {
namespace {
cv::Mat matrix(shape s, int channels, const view& v) {
    return {s.h, s.w, CV_8UC(channels), v.p, static_cast<std::size_t>(v.stride)};
}

/// Planes in the order given into a packed picture, which is the operand after them
picture_peer merge(std::vector<int> order) {
    cv::setNumThreads(1);
    return {"OpenCV merge", bytes_within<0>, [order = std::move(order)](shape s, const view* v) {
                const int channels = static_cast<int>(order.size());
                std::vector<cv::Mat> planes;
                for (const int i : order) planes.push_back(matrix(s, 1, v[i]));
                cv::Mat packed = matrix(s, channels, v[channels]);
                cv::merge(planes, packed);
            }};
}

const bool added[] = {
    add_peer("zelt_csc_r8g8b8_to_rgb888", merge({0, 1, 2})),
    add_peer("zelt_csc_r8g8b8a8_to_rgba8888", merge({0, 1, 2, 3})),
    add_peer("zelt_csc_r8g8b8a8_to_argb8888", merge({3, 0, 1, 2})),
    add_peer("zelt_csc_r8g8b8a8_to_bgra8888", merge({2, 1, 0, 3})),
};
}  // namespace
}  // namespace zelt::bench
