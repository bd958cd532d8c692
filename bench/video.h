// SPDX-License-Identifier: MIT
#pragma once  // the rows of decoder layouts, and how a peer joins them
#include "bench.h"

#include <memory>

namespace zelt::bench {
struct video_plane {
    u8* p;
    int stride;  // bytes, with nothing between rows; planes of a picture follow each other without gaps
};
/// What a candidate reads and writes, its own memory
struct video_job {
    shape size;
    std::vector<video_plane> src, dst;
    std::vector<u8> memory;
};
using video_work = std::function<void(video_job&)>;

/// How far from ours the peer's samples may be: everywhere BT.601 of limited range, rounded in their own ways
constexpr int video_tolerance = 3;

/// Adds a peer to the rows of a conversion ("yuv420_to_rgba8888", "nv12_to_rgba8888 smooth") at all sizes.
bool add_video_peer(const std::string& conversion, const std::string& peer, const video_work& work);
}  // namespace zelt::bench
