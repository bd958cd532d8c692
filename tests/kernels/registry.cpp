// SPDX-License-Identifier: MIT
#include "kernels/kernel.h"

namespace zelt::test {
std::vector<kernel> all_kernels() {
    std::vector<kernel> all;
    for (const auto family : {converter_kernels, high_depth_kernels, memory_kernels, metric_kernels, resize_kernels,
                              video_kernels, video_place_kernels})
        for (kernel& k : family()) all.push_back(std::move(k));
    return all;
}

std::vector<shape> picture_shapes() {
    std::vector<shape> shapes;
    for (const int w : {1, 2, 3, 7, 8, 9, 15, 16, 17, 24, 31, 32, 33, 47, 48, 49, 63, 64, 65, 100, 129})
        shapes.push_back({w, 1 + w % 3});
    return shapes;
}
}  // namespace zelt::test
