#include "zelt/fcc2mt.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

using bytes = std::vector<uint8_t>;

constexpr int h264 = ZELT_MT_VID_H264, hevc = ZELT_MT_VID_HEVC, mpeg4 = ZELT_MT_VID_MPEG4, h263 = ZELT_MT_VID_H263;

int is_key(int mt, const bytes& frame) {
    const bytes exact(frame.begin(), frame.end());  // ends where its memory ends
    return zelt_is_vkeyfrm(mt, exact.data(), static_cast<int32_t>(exact.size()));
}

/// The rules as plain loops. A byte past the end reads as -1, which ends every decision.
int model(int mt, const bytes& d) {
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
        if (picture && (mt == mpeg4 || mt == h263)) {
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

TEST(keyframe, unit_headers) {
    EXPECT_EQ(is_key(h264, {0, 0, 0, 1, 0x67, 9, 0, 0, 1, 0x68, 9, 0, 0, 1, 0x65, 9}), 1);
    EXPECT_EQ(is_key(h264, {0, 0, 1, 0x41, 9, 0, 0, 1, 0x65}), 0);  // the first slice decides
    EXPECT_EQ(is_key(h264, {0, 0, 0, 1, 0x67, 9, 0, 0, 1, 0x68, 9}), 0);
    EXPECT_EQ(is_key(h264, {0, 0, 1, 0x65}), 1);
    EXPECT_EQ(is_key(h264, {0, 0, 1}), 0);
    EXPECT_EQ(is_key(hevc, {0, 0, 1, 0x26, 1}), 1);
    EXPECT_EQ(is_key(hevc, {0, 0, 1, 0x28}), 1);
    EXPECT_EQ(is_key(hevc, {0, 0, 1, 0x40, 1, 9, 0, 0, 1, 0x26, 1}), 0);  // a parameter set in front
    EXPECT_EQ(is_key(hevc, {0, 0, 1, 0x2A, 1}), 0);                       // clean random access
}

TEST(keyframe, picture_headers) {
    EXPECT_EQ(is_key(mpeg4, {0, 0, 1, 0xB6, 0x10}), 1);
    EXPECT_EQ(is_key(mpeg4, {0, 0, 1, 0xB6, 0x50}), 0);
    EXPECT_EQ(is_key(mpeg4, {0, 0, 1, 0xB6}), 0);
    EXPECT_EQ(is_key(mpeg4, {0, 0, 1, 0xB0, 1, 0, 0, 1, 0xB6, 0x10}), 1);  // other units are passed over
    EXPECT_EQ(is_key(mpeg4, {0, 0, 0x80, 2, 8}), 1);
    EXPECT_EQ(is_key(mpeg4, {0, 0, 0x80, 2, 10}), 0);
    EXPECT_EQ(is_key(mpeg4, {0, 0, 0x80, 1, 8, 0, 0, 1, 0xB6, 0x10}), 0);     // no marker: the search ends
    EXPECT_EQ(is_key(mpeg4, {0, 0, 0x83, 2, 0x1C, 0, 0, 1, 0xB6, 0x10}), 1);  // extended: it goes on

    for (int mt : {103, 111}) {
        EXPECT_EQ(is_key(mt, {0, 0, 0x80, 2, 8, 0, 0}), 1);
        EXPECT_EQ(is_key(mt, {0, 0, 0x80, 2, 10, 0, 0}), 0);
        EXPECT_EQ(is_key(mt, {0, 0, 0x80, 2, 8, 0}), 0);
        EXPECT_EQ(is_key(mt, {0, 0, 0x80, 2, 0x1C, 0x0F, 0}), 1);  // extended without the optional part
        EXPECT_EQ(is_key(mt, {0, 0, 0x80, 2, 0x1C, 0x1F, 0}), 0);
        EXPECT_EQ(is_key(mt, {0, 0, 0x80, 2, 0x1C, 0x80, 0, 0xE3}), 1);  // with it
        EXPECT_EQ(is_key(mt, {0, 0, 0x80, 2, 0x1C, 0x80, 0, 0x04}), 0);
        EXPECT_EQ(is_key(mt, {0, 0, 0x80, 2, 0x1C, 0x80, 0}), 0);  // the deciding byte is cut off
    }
}

TEST(keyframe, first_bytes) {
    const uint8_t types[] = {0x00, 0x3F, 0x40, 0x7F, 0x80, 0xFF};
    for (const uint8_t& b : types) {
        for (int size : {0, 1, -5}) {
            EXPECT_EQ(zelt_is_vkeyfrm(ZELT_MT_VID_WMV1, &b, size), b < 0x40);
            EXPECT_EQ(zelt_is_vkeyfrm(ZELT_MT_VID_DIV3, &b, size), b < 0x40);
            EXPECT_EQ(zelt_is_vkeyfrm(ZELT_MT_VID_WMV2, &b, size), b < 0x80);
            EXPECT_EQ(zelt_is_vkeyfrm(ZELT_MT_VID_HFYU, &b, size), 1);
        }
    }
    const bytes all = {0, 0, 1, 0x65, 0, 0, 1, 0xB6, 0, 0, 0, 0x80, 2, 8, 0, 0, 0};
    for (int mt = -1; mt < 400; ++mt) {
        EXPECT_EQ(zelt_is_vkeyfrm(mt, nullptr, 100), mt == ZELT_MT_VID_HFYU);
        for (int size : {INT32_MIN, -1, 0, 3})  // too short to hold a start code
            if (mt != 105 && mt != 106 && mt != 110) {
                EXPECT_EQ(zelt_is_vkeyfrm(mt, all.data(), size), mt == 122);
            }
        const bool known =
            mt == 102 || mt == 103 || mt == 104 || mt == 105 || mt == 106 || mt == 110 || mt == 111 || mt == 122;
        EXPECT_EQ(is_key(mt, all), known) << mt;
    }
}

TEST(keyframe, a_start_code_at_every_place) {
    const std::pair<int, bytes> headers[] = {{h264, {0, 0, 1, 0x65}},
                                             {hevc, {0, 0, 1, 0x26}},
                                             {mpeg4, {0, 0, 1, 0xB6, 0x10}},
                                             {h263, {0, 0, 0x81, 2, 8, 0, 0}}};
    for (const auto& [mt, header] : headers)
        for (uint8_t fill : {0xFF, 0x00, 0x01, 0x80})
            for (size_t at = 0; at < 200; ++at) {
                bytes frame(at, fill);
                frame.insert(frame.end(), header.begin(), header.end());
                const int want = model(mt, frame);
                ASSERT_EQ(is_key(mt, frame), want) << mt << ", fill " << int{fill} << ", at " << at;
                EXPECT_EQ(want, 1);
                frame.pop_back();
                ASSERT_EQ(is_key(mt, frame), model(mt, frame));
                frame.resize(frame.size() + 150, fill);
                ASSERT_EQ(is_key(mt, frame), model(mt, frame));
            }
}

TEST(keyframe, random_frames_follow_the_plain_rules) {
    std::mt19937 rng(5);
    int keys = 0;
    for (int round = 0; round < 40000; ++round) {
        bytes frame(rng() % 160);
        const uint8_t likely[] = {0, 0, 0, 1, 0x80, 2, 0xB6, 0x1C, 0x65, 0x41, 0x26, 0x81};
        for (auto& b : frame) b = rng() % 8 ? likely[rng() % sizeof likely] : static_cast<uint8_t>(rng());
        for (int mt : {h264, hevc, mpeg4, h263}) {
            const int want = model(mt, frame);
            keys += want;
            ASSERT_EQ(is_key(mt, frame), want) << "round " << round << ", type " << mt;
        }
    }
    EXPECT_GT(keys, 4000);  // the frames reach both results
}
