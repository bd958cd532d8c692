// SPDX-License-Identifier: MIT
#pragma once
// One plane of samples in memory of its own, with more around it than the picture has.
#include "pictures/picture.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace zelt::tool {

enum class padding { zero, replicate };

/// Of 8-bit samples, or of 10-bit ones in words
template <class T> class plane_of {
public:
    /// Copies plane `i` of a picture of one T per sample, with at least `margin` samples on every side. What is outside
    /// the picture is 0, or the nearest sample of its edge.
    plane_of(const picture& from, int i, int margin, padding outside)
        : w(from.columns(i)), h(from.rows(i)), stride(w + 2 * margin), margin_(margin),
          memory_(static_cast<std::size_t>(stride) * static_cast<std::size_t>(h + 2 * margin)) {
        const bool replicates = outside == padding::replicate;
        for (int y = replicates ? -margin : 0; y < (replicates ? h + margin : h); ++y) {
            T* to = &memory_[static_cast<std::size_t>(index(0, y))];
            std::memcpy(to, from.row(i, std::clamp(y, 0, h - 1)), from.row_bytes(i));
            if (!replicates) continue;
            std::fill_n(to - margin, margin, to[0]);
            std::fill_n(to + w, margin, to[w - 1]);
        }
    }

    int w, h, stride;
    const T* at(int x, int y) const { return &memory_[static_cast<std::size_t>(index(x, y))]; }

private:
    std::ptrdiff_t index(int x, int y) const { return std::ptrdiff_t{y + margin_} * stride + x + margin_; }
    int margin_;
    std::vector<T> memory_;
};
using plane = plane_of<uint8_t>;

}  // namespace zelt::tool
