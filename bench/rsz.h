// SPDX-License-Identifier: MIT
#pragma once  // the rows of resizing, and how a peer joins them
#include "bench.h"

#include <memory>

namespace zelt::bench {
struct sizes {
    const char* name;
    shape from, to;
};
/// What candidates do not write; each has a destination of its own.
struct resize_job {
    shape from, to;
    std::vector<u8> src;  // a packed picture, or planes one after another
    std::vector<u8> dst;

    u8* plane(int i) { return src.data() + static_cast<std::size_t>(from.w) * static_cast<std::size_t>(from.h * i); }
};
using resize_work = std::function<void(resize_job&)>;

extern const std::vector<sizes> resizings;

/// Adds a peer to the rows of a format ("8b", "yuv444_to_rgba8888") at all sizes. Peers have half-pixel centres and
/// more phases, so that their results are compared on a picture that rises slowly.
bool add_resizer(const std::string& format, const std::string& peer, const resize_work& work);
}  // namespace zelt::bench
