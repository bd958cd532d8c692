// Key-frame tests of any bytes for every media type. Bytes in front that belong to no start code change nothing where
// the rule searches for one.
#include "input.h"
#include "zelt/fcc2mt.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::input in(data, size);
    const size_t shift = in.byte();
    const auto frame = in.rest();
    std::vector<uint8_t> shifted(shift, 0xFF);
    shifted.insert(shifted.end(), frame.begin(), frame.end());
    shifted.shrink_to_fit();
    const auto test = [](int32_t mt, const std::vector<uint8_t>& f) {
        return zelt_is_vkeyfrm(mt, f.data(), static_cast<int32_t>(f.size()));
    };
    for (int mt : {int{ZELT_MT_VID_MPEG4}, int{ZELT_MT_VID_H263}, 111, int{ZELT_MT_VID_H264}, int{ZELT_MT_VID_HEVC}})
        fuzz::require(test(mt, frame) == test(mt, shifted));
    for (int32_t mt : {ZELT_MT_VID_WMV1, ZELT_MT_VID_WMV2, ZELT_MT_VID_DIV3})
        if (!frame.empty()) fuzz::require(test(mt, frame) == (frame[0] < (mt == ZELT_MT_VID_WMV2 ? 0x80 : 0x40)));
    for (int32_t mt : {ZELT_MT_VID_HFYU, ZELT_MT_VID_VC1, ZELT_MT_UNKNOWN})
        fuzz::require(test(mt, frame) == (mt == ZELT_MT_VID_HFYU));
    return 0;
}
