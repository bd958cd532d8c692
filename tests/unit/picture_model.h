#pragma once  // geometry of pictures, from the meaning of the formats
#include <cstdint>
#include <vector>

struct plane_model {
    int64_t w, h, bytes;  // samples, rows, bytes per sample
};

/// The planes of a picture; empty for a colour space that no picture can have.
inline std::vector<plane_model> picture_model(int32_t cs, int64_t w, int64_t h) {
    if (cs >= 100 && cs < 600) return {{w, h, cs < 300 ? 2 : cs / 100 == 4 ? 3 : 4}};
    int64_t across = 1, down = 1;  // samples of luma for one of chroma
    bool colour = true;
    switch (cs) {
    case 10:
    case 20: colour = false; break;
    case 11:
    case 41:
    case 60:
    case 63: across = down = 2; break;
    case 12:
    case 42:
    case 61:
    case 64: across = 2; break;
    case 13:
    case 43:
    case 62: break;
    case 18:
    case 44: down = 2; break;
    case 22: across = 4; break;
    default: return {};
    }
    const int64_t bytes = cs == 20 || cs / 10 == 6 ? 2 : 1;
    std::vector<plane_model> planes{{w, h, bytes}};
    if (colour) planes.insert(planes.end(), 2, {(w + across - 1) / across, (h + down - 1) / down, bytes});
    if (cs / 10 == 4) planes.push_back({w, h, bytes});
    return planes;
}
