#pragma once
// One plane of 8-bit samples in memory of its own, with more around it than the picture has.
#include "pictures/picture.h"

#include <vector>

namespace zelt::tool {

enum class padding { zero, replicate };

class plane {
public:
    /// Copies plane `i` of a picture of one byte per sample, with at least `margin` samples on every side. What is
    /// outside the picture is 0, or the nearest sample of its edge.
    plane(const picture& from, int i, int margin, padding outside);

    int w, h, stride;
    const uint8_t* at(int x, int y) const { return &memory_[static_cast<std::size_t>(index(x, y))]; }

private:
    std::ptrdiff_t index(int x, int y) const { return std::ptrdiff_t{y + margin_} * stride + x + margin_; }
    int margin_;
    std::vector<uint8_t> memory_;
};

}  // namespace zelt::tool
