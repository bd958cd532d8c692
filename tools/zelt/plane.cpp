#include "plane.h"

#include <algorithm>
#include <cstring>

namespace zelt::tool {

plane::plane(const picture& from, int i, int margin, padding outside)
    : w(from.w), h(from.h), stride(w + 2 * margin), margin_(margin),
      memory_(static_cast<std::size_t>(stride) * static_cast<std::size_t>(h + 2 * margin)) {
    const bool replicates = outside == padding::replicate;
    for (int y = replicates ? -margin : 0; y < (replicates ? h + margin : h); ++y) {
        const uint8_t* row = from.row(i, std::clamp(y, 0, h - 1));
        uint8_t* to = &memory_[static_cast<std::size_t>(index(0, y))];
        std::memcpy(to, row, static_cast<std::size_t>(w));
        if (!replicates) continue;
        std::memset(to - margin, row[0], static_cast<std::size_t>(margin));
        std::memset(to + w, row[w - 1], static_cast<std::size_t>(margin));
    }
}

}  // namespace zelt::tool
