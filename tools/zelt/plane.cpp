#include "plane.h"

#include <algorithm>
#include <cstring>

namespace zelt::tool {

plane::plane(const picture& from, int i, int margin, surroundings outside)
    : w(from.w), h(from.h), stride(w + 2 * margin), margin_(margin),
      memory_(static_cast<std::size_t>(stride) * static_cast<std::size_t>(h + 2 * margin)) {
    const bool edges = outside == surroundings::edges;
    for (int y = edges ? -margin : 0; y < (edges ? h + margin : h); ++y) {
        const uint8_t* row = from.row(i, std::clamp(y, 0, h - 1));
        uint8_t* to = &memory_[static_cast<std::size_t>(index(0, y))];
        std::memcpy(to, row, static_cast<std::size_t>(w));
        if (!edges) continue;
        std::memset(to - margin, row[0], static_cast<std::size_t>(margin));
        std::memset(to + w, row[w - 1], static_cast<std::size_t>(margin));
    }
}

}  // namespace zelt::tool
