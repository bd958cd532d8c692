// SPDX-License-Identifier: MIT
#pragma once  // the colour matrices and layouts as the tests know them
#include "kernels/kernel.h"

namespace zelt::test {
/// R, G, B, A or Y, U, V, A
struct components {
    int v[4];
};
components rgb_of(components yuv);
components yuv_of(components rgb);
components rgb10_of(components yuv);  // of 10 bits
components yuv10_of(components rgb);

/// How a colour space lies in memory
struct layout {
    std::string name;
    std::vector<std::string> planes;  // which component each byte of a pixel is; l and h are those of a 5:6:5 word
    std::vector<int> bytes;           // from pixel to pixel of each plane
    bool yuv;

    layout(const std::string& n, const std::vector<std::string>& parts) : name(n), planes(parts), yuv(n[0] == 'y') {
        for (const std::string& p : planes) bytes.push_back(static_cast<int>(p.size()));
    }
    components read(const u8* const* p) const;
    void write(u8* const* p, components c) const;
};
const layout& layout_of(const std::string& name);

std::vector<operand> operands_of(const layout& source, shape from, const layout& destination, shape to);

/// Calls a converter over so many planes, of which those of the source come first.
void convert(function f, const view* v, std::size_t source_planes, std::size_t planes, shape from, shape to,
             int dst_cs);
}  // namespace zelt::test
