// SPDX-License-Identifier: MIT
// Conversion, fused conversion and resizing of any geometry against the models of the kernel tests: padded and negative
// strides, source strides of 0; whole pictures, rows and bands. All bytes around what is written are compared too.
#include "blocks.h"
#include "kernels/resize.h"

#include <algorithm>

namespace {
using namespace zelt::test;
using fuzz::block, fuzz::check;

ratio sizes = {"at any ratio", 1, 1, 1, 1};  // of the call at hand

std::vector<kernel> conversions() {
    std::vector<kernel> all = converter_kernels();
    for (const auto& family : {high_depth_kernels(), resize_kernels_at(sizes)})
        all.insert(all.end(), family.begin(), family.end());
    return all;
}

// --------------------------------------------------------------------------------------------------------------- calls

/// A resizer's handle at work: on a whole picture, or on bands of one, each in memory of its own
kernel handle(fuzz::input& in, shape from) {
    const resizer& r = resizers[in.byte() % resizers.size()];
    const uint8_t how = in.byte();
    const bool bands = how & 1, short_last = how & 2;
    const auto resize = how & 4 ? zelt_irsz : r.resize;
    const int band_rows = 1 << in.byte() % 8;
    const bool in_bytes = r.id == ZELT_IRSZ_5B6B5B;  // the pitches
    const int src_unit = in_bytes ? 1 : r.src_bytes, dst_unit = in_bytes ? 1 : r.dst_bytes;
    const auto operands = [=, &r](shape to) -> std::vector<operand> {
        return {{.width = from.w * r.src_bytes / src_unit, .rows = from.h, .element = src_unit},
                {.width = to.w * r.dst_bytes / dst_unit, .rows = to.h, .element = dst_unit, .written = true}};
    };
    const auto promised = [=](shape to) { return !bands || bands_give_whole(from, to, band_rows); };
    const auto clear = [&r](shape to, view dst) {  // of other bands nothing is compared but that they keep to it
        for (int y = 0; y < to.h; ++y) std::fill_n(dst.p + y * dst.stride, to.w * r.dst_bytes, u8{});
    };
    const auto call = [=, &r](function, shape to, const view* v) {
        const int mode = bands ? ZELT_IRSZ_BANDS : ZELT_IRSZ_WHOLE, stride = static_cast<int>(v[0].stride);
        const int src_pitch = stride / src_unit, dst_pitch = static_cast<int>(v[1].stride) / dst_unit;
        const ZELT_IRSZ_PARAM param = {r.id, mode, from.w, from.h, src_pitch, band_rows, to.w, to.h, dst_pitch, v[1].p};
        ZELT_IRSZ* irsz = zelt_irsz_create(&param, nullptr);
        fuzz::require(irsz);
        if (!bands) resize(irsz, v[0].p, 0, 0);
        for (int y = 0, rows = band_rows; bands && y < from.h; y += rows) {
            while (short_last && rows > 1 && rows / 2 >= from.h - y) rows /= 2;
            const int count = std::min(rows, from.h - y), row = from.w * r.src_bytes;
            block band(static_cast<std::size_t>((count - 1) * std::abs(stride) + row));
            u8* first = band.data() + (stride < 0 ? (1 - count) * stride : 0);
            for (int i = 0; i < count; ++i) std::copy_n(v[0].p + (y + i) * stride, row, first + i * stride);
            resize(irsz, first, y, rows);
        }
        zelt_irsz_delete(irsz);
        if (!promised(to)) clear(to, v[1]);
        return u64{0};
    };
    const auto model = [=, &r](shape to, const view* v) {
        promised(to) ? model_picture(r, v[0], from, v[1], to) : clear(to, v[1]);
        return u64{0};
    };
    return {r.name, nullptr, {}, operands, call, model};
}
}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::vector<kernel> all = conversions();
    fuzz::input in(data, size);
    const std::size_t kind = in.byte();
    const auto length = [&] { return 1 + in.byte() % 80; };
    const shape from = {length(), length()}, to = {length(), length()};
    sizes.x_num = from.w, sizes.x_den = to.w, sizes.y_num = from.h, sizes.y_den = to.h;
    if (kind >= all.size())
        check(in, handle(in, from), to);
    else if (all[kind].name.find("_line") != std::string::npos)
        check(in, all[kind], {to.w, to.h % 8});  // the phase instead of a height
    else
        check(in, all[kind], to);
    return 0;
}
