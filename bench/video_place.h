// SPDX-License-Identifier: MIT
#pragma once  // the rows of pictures that are turned or get another size, and how a peer joins them
#include "video.h"

namespace zelt::bench {
/// Adds a peer to a row ("nv12_to_yuv420 turned by 90"). Turned, it must give our bytes; of another size it has another
/// rule, and is not compared.
bool add_placed_peer(const std::string& row, const std::string& peer, const video_work& work);
}  // namespace zelt::bench
