#pragma once  // the colour matrices and layouts as the tests know them
#include "kernels/kernel.h"

namespace zelt::test {
/// R, G, B, A or Y, U, V, A
struct components {
    int v[4];
};
components rgb_of(components yuv);
components yuv_of(components rgb);

/// How a colour space lies in memory
struct layout {
    const char* name;
    bool yuv;
    std::vector<int> bytes;  // bytes a pixel of each plane
    components (*read)(const u8* const* p);
    void (*write)(u8* const* p, components c);
};
const layout& layout_of(const std::string& name);
}  // namespace zelt::test
