// SPDX-License-Identifier: MIT
#include "zelt/video.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace {
ZELT_VIDEO request(int32_t src, int32_t dst, int32_t matrix = 0, int32_t range = 0, int32_t chroma = 0) {
    ZELT_VIDEO v = {};
    v.src_cs = src, v.dst_cs = dst, v.matrix = matrix, v.range = range, v.chroma = chroma;
    return v;
}

struct pixels {
    uint8_t y[16] = {}, u[8] = {}, v[8] = {}, out[16];
    void* src[3] = {y, u, v};
    void* dst[3] = {out, out + 4, out + 8};
    int32_t src_s[3] = {2, 1, 1}, dst_s[3] = {8, 1, 1};

    pixels() { std::fill_n(out, sizeof out, uint8_t{7}); }
    bool untouched() const {
        return std::all_of(out, out + sizeof out, [](uint8_t v) { return v == 7; });
    }
};
}  // namespace

TEST(video, pairs_and_values) {
    const std::vector<int32_t> yuv = {10, 11, 12, 13, 18, 800, 801, 802, 820, 821};
    const std::vector<int32_t> rgb = {200, 400, 500, 501, 502, 600, 840}, ten = {60, 61, 62, 810, 811};
    const auto has = [](const std::vector<int32_t>& all, int32_t cs) { return std::ranges::count(all, cs) > 0; };
    const auto expect = [](ZELT_VIDEO v, bool supported) {
        std::fill_n(v.state, 48, -1);
        EXPECT_EQ(zelt_video_init(&v), supported ? ZELT_OK : ZELT_ERR_UNSUPPORTED) << v.src_cs << " to " << v.dst_cs;
        pixels p;
        zelt_video_convert(&v, p.src, p.src_s, p.dst, p.dst_s, 2, 2);
        EXPECT_NE(p.untouched(), supported) << v.src_cs << " to " << v.dst_cs;
    };
    for (int32_t src = -1; src < 900; ++src)
        for (const int32_t dst :
             {-1,  0,   10,  11,  12,  13,  18,  20,  41,  43,  60,  61,  62,  63,  64,  200, 400, 401, 430,
              500, 501, 502, 503, 600, 603, 650, 700, 800, 801, 802, 803, 810, 811, 820, 821, 840, 841})
            if (has(yuv, src) || has(ten, src) || src % 7 == 0 || has(rgb, src)) {
                const bool bytes = has(yuv, dst) || has(rgb, dst), words = has(ten, dst) || dst == 603;
                const bool back = has(rgb, src) && has(yuv, dst);
                expect(request(src, dst), has(ten, src) ? bytes || words : back || (has(yuv, src) && bytes));
                expect(request(ZELT_CS_R10G10B10, dst), has(ten, dst));
            }
    for (const int32_t value : {-1, 0, 1, 2, 3, INT32_MAX, INT32_MIN}) {
        expect(request(11, 500, value), value >= 0 && value < 3);
        expect(request(11, 500, 0, value), value >= 0 && value < 2);
        expect(request(11, 500, 0, 0, value), value >= 0 && value < 2);
        ZELT_VIDEO v = request(11, 500);
        v.filter = value;
        expect(v, value >= 0 && value < 2);
        for (int32_t ZELT_VIDEO::*size : {&ZELT_VIDEO::dst_w, &ZELT_VIDEO::dst_h}) {
            v = request(11, 500), v.dst_w = v.dst_h = 1;
            v.*size = value;
            if (value < 4) expect(v, value > 0);
        }
        for (int i = 0; i < 7; ++i) {
            v = request(11, 500);
            v.reserved[i] = value;
            expect(v, value == 0);
        }
    }
    for (const int32_t turn : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, INT32_MAX, INT32_MIN})
        for (const int32_t dst : {10, 11, 12, 13, 18, 500, 801, 802, 820, 821}) {
            ZELT_VIDEO v = request(11, dst);
            v.turn = turn;
            const bool packed = dst / 10 == 82, one_way = dst == 12 || dst == 18 || dst == 802;
            expect(v, turn >= 0 && turn < 8 && !(turn && packed) && !(turn % 2 && one_way));
        }
    for (const int32_t src : std::vector<int32_t>{ZELT_CS_RGBA8888, ZELT_CS_R10G10B10, ZELT_CS_P010LE, ZELT_CS_NV12})
        for (const int32_t dst : std::vector<int32_t>{ZELT_CS_YUV420, ZELT_CS_P010}) {
            if (src == ZELT_CS_P010LE || (src == ZELT_CS_R10G10B10) == (dst == ZELT_CS_P010)) {
                ZELT_VIDEO v = request(src, dst);
                expect(v, true);
                v.dst_w = v.dst_h = 2;
                expect(v, dst == ZELT_CS_YUV420);
            }
        }
    EXPECT_EQ(zelt_video_init(nullptr), ZELT_ERR_INVALID_ARG);
}

// As tables of the standards' colours have them
TEST(video, known_colours) {
    const struct {
        int32_t matrix, range;
        uint8_t yuv[3], rgb[3];
    } colours[] = {
        {ZELT_VIDEO_BT601, ZELT_VIDEO_LIMITED, {16, 128, 128}, {0, 0, 0}},
        {ZELT_VIDEO_BT601, ZELT_VIDEO_LIMITED, {235, 128, 128}, {255, 255, 255}},
        {ZELT_VIDEO_BT601, ZELT_VIDEO_LIMITED, {81, 90, 240}, {254, 0, 0}},
        {ZELT_VIDEO_BT709, ZELT_VIDEO_LIMITED, {63, 102, 240}, {255, 1, 0}},
        {ZELT_VIDEO_BT709, ZELT_VIDEO_FULL, {54, 99, 255}, {254, 0, 0}},
        {ZELT_VIDEO_BT2020, ZELT_VIDEO_LIMITED, {29, 240, 119}, {0, 0, 255}},
        {ZELT_VIDEO_BT2020, ZELT_VIDEO_FULL, {0, 128, 128}, {0, 0, 0}},
        {ZELT_VIDEO_BT2020, ZELT_VIDEO_FULL, {255, 128, 128}, {255, 255, 255}},
    };
    for (const auto& c : colours) {
        pixels p;
        p.y[0] = c.yuv[0], p.u[0] = c.yuv[1], p.v[0] = c.yuv[2];
        ZELT_VIDEO v = request(ZELT_CS_YUV420, ZELT_CS_BGRA8888, c.matrix, c.range);
        ASSERT_EQ(zelt_video_init(&v), ZELT_OK);
        zelt_video_convert(&v, p.src, p.src_s, p.dst, p.dst_s, 1, 1);
        const std::vector<int> got(p.out, p.out + 5), want = {c.rgb[2], c.rgb[1], c.rgb[0], 255, 7};
        EXPECT_EQ(got, want) << int{c.yuv[0]} << " of matrix " << c.matrix << ", range " << c.range;

        pixels back;
        for (int i = 0; i < 3; ++i) back.y[2 - i] = c.rgb[i] > 128 ? 255 : 0;  // what the colour is exactly
        v = request(ZELT_CS_BGRA8888, ZELT_CS_YUV420, c.matrix, c.range);
        ASSERT_EQ(zelt_video_init(&v), ZELT_OK);
        zelt_video_convert(&v, back.src, back.src_s, back.dst, back.dst_s, 1, 1);
        const std::vector<int> yuv = {back.out[0], back.out[4], back.out[8]}, known(c.yuv, c.yuv + 3);
        EXPECT_EQ(yuv, known) << "matrix " << c.matrix << ", range " << c.range;
    }
}

// Whatever is in the bits that are no part of a sample
TEST(video, known_colours_of_10_bits) {
    const struct {
        int32_t matrix, range, yuv[3];
        std::vector<int> rgb, bytes;
    } colours[] = {
        {ZELT_VIDEO_BT709, ZELT_VIDEO_LIMITED, {64, 512, 512}, {0, 0, 0}, {0, 0, 0}},
        {ZELT_VIDEO_BT709, ZELT_VIDEO_LIMITED, {940, 512, 512}, {1023, 1023, 1023}, {255, 255, 255}},
        {ZELT_VIDEO_BT709, ZELT_VIDEO_LIMITED, {503, 512, 512}, {513, 513, 513}, {128, 128, 128}},
        {ZELT_VIDEO_BT709, ZELT_VIDEO_LIMITED, {250, 409, 960}, {1023, 0, 0}, {255, 0, 0}},
        {ZELT_VIDEO_BT601, ZELT_VIDEO_LIMITED, {164, 960, 439}, {0, 0, 1023}, {0, 0, 255}},
        {ZELT_VIDEO_BT2020, ZELT_VIDEO_FULL, {1023, 512, 512}, {1023, 1023, 1023}, {255, 255, 255}},
        {ZELT_VIDEO_BT2020, ZELT_VIDEO_FULL, {693, 143, 36}, {0, 1023, 0}, {0, 255, 0}},
    };
    for (const auto& c : colours)
        for (const int32_t src_cs : std::vector<int32_t>{ZELT_CS_P410, ZELT_CS_P210LE}) {
            const bool low = src_cs == ZELT_CS_P410;
            uint16_t in[4], words[3] = {}, bytes[3] = {};
            for (int i = 0; i < 3; ++i) in[i] = static_cast<uint16_t>(low ? c.yuv[i] | 0xA400 : c.yuv[i] << 6 | 0x29);
            void *const src[] = {in, in + 1, in + 2}, *const ten[] = {words, words + 1, words + 2};
            void* const eight[] = {bytes, bytes + 1, bytes + 2};
            const int32_t none[3] = {};
            ZELT_VIDEO v = request(src_cs, ZELT_CS_R10G10B10, c.matrix, c.range);
            ZELT_VIDEO w = request(src_cs, ZELT_CS_R8G8B8, c.matrix, c.range);
            ASSERT_TRUE(zelt_video_init(&v) == ZELT_OK && zelt_video_init(&w) == ZELT_OK);
            zelt_video_convert(&v, src, none, ten, none, 1, 1);
            zelt_video_convert(&w, src, none, eight, none, 1, 1);
            EXPECT_EQ(std::vector<int>(words, words + 3), c.rgb) << c.yuv[0] << " of matrix " << c.matrix;
            EXPECT_EQ(std::vector<int>(bytes, bytes + 3), c.bytes) << c.yuv[0] << " of matrix " << c.matrix;
        }
}

TEST(video, rows_outside_the_picture_do_not_count) {
    for (const int32_t dst : std::vector<int32_t>{ZELT_CS_RGBA8888, ZELT_CS_NV12}) {
        ZELT_VIDEO v = request(ZELT_CS_YUV420, dst);
        ASSERT_EQ(zelt_video_init(&v), ZELT_OK);
        for (const int32_t none : {0, -1, INT32_MIN}) {
            pixels p;
            zelt_video_convert(&v, p.src, p.src_s, p.dst, p.dst_s, none, 2);
            zelt_video_convert(&v, p.src, p.src_s, p.dst, p.dst_s, 2, none);
            zelt_video_convert_rows(&v, p.src, p.src_s, p.dst, p.dst_s, 2, 2, 0, none);
            zelt_video_convert_rows(&v, p.src, p.src_s, p.dst, p.dst_s, 2, 2, std::max(none, -INT32_MAX) - 1, 1);
            zelt_video_convert_rows(&v, p.src, p.src_s, p.dst, p.dst_s, 2, 2, 2, INT32_MAX);
            EXPECT_TRUE(p.untouched());
        }
        pixels all, whole;
        zelt_video_convert_rows(&v, all.src, all.src_s, all.dst, all.dst_s, 2, 2, -5, INT32_MAX);
        zelt_video_convert(&v, whole.src, whole.src_s, whole.dst, whole.dst_s, 2, 2);
        EXPECT_TRUE(std::equal(all.out, all.out + 16, whole.out) && !all.untouched());
    }
}
