// SPDX-License-Identifier: MIT
// Key-frame tests of any frames, made of headers and other bytes, follow the rules written as plain loops. Bytes in
// front and behind, which belong to no start code, move what is searched for to every place of a vector.
#include "input.h"
#include "zelt/fcc2mt.h"

#include <iterator>

namespace {
constexpr int mpeg4 = ZELT_MT_VID_MPEG4, h263 = ZELT_MT_VID_H263, h263_variant = 111, h264 = ZELT_MT_VID_H264,
              hevc = ZELT_MT_VID_HEVC;

/// A byte past the end reads as -1, which ends every decision.
int model(int mt, const std::vector<uint8_t>& d) {
    const int size = static_cast<int>(d.size());
    const auto at = [&](int i) { return i < size ? d[static_cast<size_t>(i)] : -1; };
    const int need = mt == h264 || mt == hevc ? 4 : mt == mpeg4 ? 5 : 7;
    for (int i = 0; i + need <= size; ++i) {
        if (at(i) != 0 || at(i + 1) != 0) continue;
        const bool unit = at(i + 2) == 1, picture = at(i + 2) >= 0x80 && at(i + 2) <= 0x83;
        if (mt == h264 && unit) {
            const int type = at(i + 3) % 32;
            if (type == 1) return 0;
            if (type == 5) return 1;
        }
        if (mt == hevc && unit) return at(i + 3) / 2 % 64 == 19 || at(i + 3) / 2 % 64 == 20;
        if (mt == mpeg4 && unit && at(i + 3) == 0xB6) return at(i + 4) / 64 == 0;
        if (picture && mt != h264 && mt != hevc) {
            const int format = at(i + 4) / 4 % 8, inter = at(i + 4) / 2 % 2;
            if (at(i + 3) % 4 != 2) return 0;
            if (format != 7) return !inter;
            if (mt == mpeg4) continue;
            const int update = at(i + 4) % 4 * 2 + at(i + 5) / 128;
            if (update != 1) return at(i + 5) / 16 % 8 == 0;
            return at(i + 7) >= 0 && at(i + 7) / 4 % 8 == 0;
        }
    }
    return 0;
}
}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::vector<uint8_t> headers[] = {
        {0, 0, 1},    {0, 0, 1, 0x2A}, {0, 0, 0x80, 2}, {0, 0, 0x81, 2, 0x1E}, {0, 0, 0x82, 2, 0x1C, 0x80, 0},
        {0, 0, 0x83}, {0, 0, 0x84, 2}};
    fuzz::input in(data, size);
    while (!in.empty()) {
        std::vector<uint8_t> frame(in.byte() % 160, 0xFF);
        for (int parts = in.byte() % 32; parts > 0; --parts) {
            const uint8_t kind = in.byte() % 16;
            const auto part = kind < std::size(headers) ? headers[kind] : std::vector{in.byte()};
            frame.insert(frame.end(), part.begin(), part.end());
        }
        auto longer = frame;
        longer.resize(frame.size() + 160, 0xFF);
        frame.shrink_to_fit();
        for (int mt : {mpeg4, h263, h263_variant, h264, hevc})
            for (const auto* f : {&frame, &longer})
                fuzz::require(zelt_is_vkeyfrm(mt, f->data(), static_cast<int32_t>(f->size())) == model(mt, *f));
    }
    return 0;
}
