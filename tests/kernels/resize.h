#pragma once  // bilinear resizing as the tests know it
#include "kernels/kernel.h"
#include "zelt/irsz.h"

#include <array>

namespace zelt::test {
/// Where a destination sample lies on an axis: its two source samples and the phase between them
struct place {
    int first, second, phase;
};

/// The sampling grid of an axis, from the documented table and formula
struct grid {
    int shift;
    long long step;

    grid(int src, int dst);
    place operator[](int i) const;
};

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

int interpolated(int tl, int tr, int bl, int br, int fx, int fy);

/// The fields of a pixel, as many as its format has
using fields = std::array<int, 4>;

/// A format of the resizer
struct resizer {
    std::string name;
    int32_t (*resize)(ZELT_IRSZ*, const u8*, int32_t, int32_t);
    void (*line)(const u8* const*, const u8*, int32_t, int32_t, int32_t, int32_t, u8*);
    void (*full)(const u8*, int32_t, int32_t, int32_t, int32_t, u8*, u32, u32);
    int id, src_bytes, dst_bytes;
    fields (*get)(const u8*);
    void (*put)(u8*, const fields&);
};
extern const std::vector<resizer> resizers;

void model_row(const resizer& r, const u8* top, const u8* bottom, int phase, const grid& x, int w, u8* dst);
void model_picture(const resizer& r, view src, shape from, view dst, shape to);

/// Whether bands of so many rows give what the whole picture gives
bool bands_give_whole(shape from, shape to, int band_rows);
}  // namespace zelt::test
