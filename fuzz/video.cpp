// SPDX-License-Identifier: MIT
// Decoder layouts of any size and stride, in bands of any height, against the model of the kernel tests, and records
// that ask for what there is not.
#include "kernels/video.h"

#include "blocks.h"
#include "kernels/resize.h"

#include <algorithm>

namespace {
using namespace zelt::test;

/// Mostly a value that there is
int value(fuzz::input& in, int count) {
    const uint8_t v = in.byte();
    return v < 240 ? v % count : in.wild();
}
const video_format* format(fuzz::input& in, ZELT_VIDEO& v, int32_t ZELT_VIDEO::*cs) {
    const auto& all = video_formats();
    const int i = value(in, static_cast<int>(all.size()));
    const bool known = i >= 0 && i < static_cast<int>(all.size());
    v.*cs = known ? all[static_cast<std::size_t>(i)].cs : i;
    return video_format_of(v.*cs);
}
bool can_turn(const video_format* to, int turn) {
    return turn >= 0 && turn < 8 && !(turn && to && to->packed()) && !(turn % 2 && to && to->half_w != to->half_h);
}
}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::input in(data, size);
    ZELT_VIDEO v = {};
    const video_format *from = format(in, v, &ZELT_VIDEO::src_cs), *to = format(in, v, &ZELT_VIDEO::dst_cs);
    v.matrix = value(in, 3), v.range = value(in, 2), v.chroma = value(in, 2);
    v.filter = value(in, 2), v.turn = in.byte() % 2 ? value(in, 8) : 0;
    if (in.byte() == 255) v.reserved[in.byte() % 7] = in.wild();
    const auto below = [](int value, int count) { return value >= 0 && value < count; };
    const bool supported = from && to && converts(*from, *to) && below(v.matrix, 3) && below(v.range, 2) &&
                           below(v.chroma, 2) && below(v.filter, 2) && can_turn(to, v.turn) &&
                           std::count(std::begin(v.reserved), std::end(v.reserved), 0) == 7;
    fuzz::require(zelt_video_init(&v) == (supported ? ZELT_OK : ZELT_ERR_UNSUPPORTED));
    if (!supported) return 0;

    const int w = in.byte() | (in.byte() % 16 == 0 ? 1024 : 0);
    const shape s = {std::max(w, 1), 1 + in.byte() % 12};
    std::vector<int> bands(in.byte() % 4);
    for (int& rows : bands) rows = 1 + in.byte() % 5;
    v.dst_w = to->bits == 8 && in.byte() % 2;
    ratio q = {"", 1, 1, 1, 1};
    if (v.dst_w) q = {"", in.byte() % 8, 1 + in.byte() % 4, in.byte() % 8, 1 + in.byte() % 4};
    fuzz::check(in, placed_kernel(v, *from, *to, q, {}, bands), s);
    return 0;
}
