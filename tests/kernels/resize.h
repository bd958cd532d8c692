// SPDX-License-Identifier: MIT
#pragma once  // bilinear resizing as the tests know it
#include "kernels/kernel.h"
#include "zelt/irsz.h"

namespace zelt::test {
/// Source size for a destination size
struct ratio {
    const char* name;
    int x_num, x_den, y_num, y_den;
    bool counted = false;  // how many instructions it takes is of interest

    shape source(shape s) const;
    std::vector<shape> shapes() const;
};

/// The rows at a ratio, which each call looks up.
std::vector<kernel> resize_kernels_at(const ratio& q);

/// A format of the resizer
struct resizer {
    std::string name;
    int32_t (*resize)(ZELT_IRSZ*, const u8*, int32_t, int32_t);
    void (*line)(const u8* const*, const u8*, int32_t, int32_t, int32_t, int32_t, u8*);
    void (*full)(const u8*, int32_t, int32_t, int32_t, int32_t, u8*, u32, u32);
    int id, src_bytes, dst_bytes;
    const char *source, *destination;  // layouts
};
extern const std::vector<resizer> resizers;

void model_picture(const resizer& r, view src, shape from, view dst, shape to);

/// Whether bands of so many rows give what the whole picture gives
bool bands_give_whole(shape from, shape to, int band_rows);
}  // namespace zelt::test
