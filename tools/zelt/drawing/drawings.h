// SPDX-License-Identifier: MIT
#pragma once
// What the verbs draw, as they found it. A drawing refers to what it is made from.
#include "drawing/canvas.h"

#include <cstdint>
#include <string>
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

/// Blocks row by row
struct motion_field {
    int block;
    std::vector<matched_block> blocks;
};

/// The picture with the blocks' vectors as arrows, and beside it their costs; the picture is bgra8888.
drawing motion_drawing(const motion_field& field, const picture& pixels, int number, const std::string& metric);

/// How far the blocks of two pictures are apart, row by row: the root of the samples' mean squared difference
struct difference_field {
    static constexpr int block = 16;
    int number, peak;  // of the picture, and the largest difference that there can be
    std::vector<double> blocks;
};

/// The second clip's picture, as bgra8888, and beside it what differs.
drawing difference_drawing(const difference_field& field, const picture& pixels, const std::string& psnr);

/// Decibels of a picture: Y, U, V, all samples. Infinite where nothing differs, not a number where there is no plane.
struct quality {
    double psnr[4];
};

/// The decibels of a clip's pictures over their numbers
drawing quality_drawing(const std::vector<quality>& pictures, const std::string& title);

struct frame_size {
    int32_t bytes;
    bool key, marked_key;  // by the stream and by the container
};

/// The sizes of a clip's frames, and which are key frames
drawing timeline_drawing(const std::vector<frame_size>& frames, const std::string& title);

}  // namespace zelt::tool
