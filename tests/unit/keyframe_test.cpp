// SPDX-License-Identifier: MIT
// Frames with start codes in them are those of fuzz/keyframe.cpp.
#include "kernels/guarded.h"
#include "zelt/fcc2mt.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

TEST(keyframe, types_that_search_for_nothing) {
    const uint8_t first_bytes[] = {0x00, 0x3F, 0x40, 0x7F, 0x80, 0xFF};
    for (const uint8_t& b : first_bytes)
        for (int size : {0, 1, -5}) {
            EXPECT_EQ(zelt_is_vkeyfrm(ZELT_MT_VID_WMV1, &b, size), b < 0x40);
            EXPECT_EQ(zelt_is_vkeyfrm(ZELT_MT_VID_DIV3, &b, size), b < 0x40);
            EXPECT_EQ(zelt_is_vkeyfrm(ZELT_MT_VID_WMV2, &b, size), b < 0x80);
        }
    // A key frame to every type that is known, where it is long enough
    const uint8_t all[] = {0, 0, 1, 0x65, 0, 0, 1, 0xB6, 0, 0, 0, 0x80, 2, 8, 0, 0, 0};
    for (int mt = -1; mt < 400; ++mt) {
        const bool one_byte = mt == 105 || mt == 106 || mt == 110, none = mt == ZELT_MT_VID_HFYU;
        const bool known = (mt >= 102 && mt <= 104) || one_byte || mt == 111 || none;
        EXPECT_EQ(zelt_is_vkeyfrm(mt, nullptr, 100), none) << mt;
        EXPECT_EQ(zelt_is_vkeyfrm(mt, all, sizeof all), known) << mt;
        for (int size : {INT32_MIN, -1, 0, 3}) EXPECT_EQ(zelt_is_vkeyfrm(mt, all, size), one_byte || none) << mt;
    }
}

TEST(keyframe, nothing_is_read_past_the_frame) {
    using namespace zelt::test;
    const std::vector<uint8_t> headers[] = {{0, 0, 1, 0x67, 0x40}, {0, 0, 0x80, 2, 0x1C, 0x80, 0}};
    const guarded_memory memory(1);
    uint8_t* const end = memory.start() + memory.size();
    int mt = 0;
    std::ptrdiff_t size = 0;
    EXPECT_TRUE(survives([&] {
        for (const auto& header : headers)
            for (const int fill : {0x00, 0x01, 0xFF})
                for (size = 0; size < 300; ++size)
                    for (std::ptrdiff_t cut = 0; cut <= std::min<std::ptrdiff_t>(size, header.size()); ++cut) {
                        std::memset(end - size, fill, static_cast<size_t>(size));
                        std::copy_n(header.begin(), cut, end - cut);
                        for (int type : {102, 103, 104, 120})
                            zelt_is_vkeyfrm(mt = type, end - size, static_cast<int32_t>(size));
                    }
    })) << "type "
        << mt << ", " << size << " bytes";
}
