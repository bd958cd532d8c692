// Decoder layouts of any size and stride, in bands of any height, against the model of the kernel tests, and records
// that ask for what there is not.
#include "kernels/video.h"

#include "blocks.h"

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
    const auto found = std::ranges::find(all, v.*cs, &video_format::cs);
    return found == all.end() ? nullptr : &*found;
}
}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::input in(data, size);
    ZELT_VIDEO v = {};
    const video_format *from = format(in, v, &ZELT_VIDEO::src_cs), *to = format(in, v, &ZELT_VIDEO::dst_cs);
    v.matrix = value(in, 3), v.range = value(in, 2), v.chroma = value(in, 2);
    if (in.byte() == 255) v.reserved[in.byte() % 11] = in.wild();
    const auto below = [](int value, int count) { return value >= 0 && value < count; };
    const bool supported = from && to && converts(*from, *to) && below(v.matrix, 3) && below(v.range, 2) &&
                           below(v.chroma, 2) && std::ranges::count(v.reserved, 0) == 11;
    fuzz::require(zelt_video_init(&v) == (supported ? ZELT_OK : ZELT_ERR_UNSUPPORTED));
    if (!supported) return 0;

    const int w = in.byte() | (in.byte() % 16 == 0 ? 1024 : 0);
    const shape s = {std::max(w, 1), 1 + in.byte() % 12};
    std::vector<int> bands(in.byte() % 4);
    for (int& rows : bands) rows = 1 + in.byte() % 5;
    const auto operands = [&](shape of) {
        std::vector<operand> all = from->operands(of, false);
        for (const operand& o : to->operands(of, true)) all.push_back(o);
        return all;
    };
    const auto call = [&](function, shape of, const view* planes) {
        call_video(v, *from, *to, of, planes, bands);
        return u64{0};
    };
    const auto model = [&](shape of, const view* planes) {
        model_video(v, *from, *to, of, planes);
        return u64{0};
    };
    fuzz::check(in, {"video", nullptr, {}, operands, call, model}, s);
    return 0;
}
