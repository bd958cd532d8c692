// SPDX-License-Identifier: MIT
#pragma once
// What zelt match finds, and the picture that it makes of it.
#include "pictures/picture.h"

#include <cstdint>
#include <vector>

namespace zelt::tool {

struct motion_vector {
    int x, y;
    bool operator==(const motion_vector&) const = default;
};

/// A block of a picture and where it comes from in the one before
struct matched_block {
    int x, y;
    motion_vector from;
    uint32_t cost;
};

struct motion_field {
    int block;
    std::vector<matched_block> blocks;
};

/// The picture with the blocks' vectors as arrows, and beside it their costs from dark to bright; rgb888.
picture map_of(const motion_field& field, const picture& rgb);

}  // namespace zelt::tool
