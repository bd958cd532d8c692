// SPDX-License-Identifier: MIT
#include "frames.h"

#include <gtest/gtest.h>

namespace {
const struct {
    const char* name;
    int32_t matrix, range;
} colours[] = {{"bt601", 0, 0},   {"1:4:7:1", 0, 1}, {"bt709", 1, 0},
               {"1:3:5:1", 1, 1}, {"bt2020", 2, 0},  {"1:6:5:7", 2, 1}};

bool is_yuv(const layout& l) { return l.cs < 200 || (l.cs >= 800 && l.cs != 840); }
}  // namespace

// All of them, each with the next colours: those that the library serves give its bytes, the others are refused.
TEST(conversion, every_pair) {
    int served = 0, refused = 0;
    for (const auto& [w, h] : {std::pair{37, 19}, {40, 23}, {15, 9}})
        for (const layout& a : layouts)
            for (const layout& b : layouts) {
                const auto& [name, matrix, range] = colours[(served + refused) % 6];
                const std::string colorimetry = std::string(",colorimetry=") + name;
                SCOPED_TRACE(std::string(a.name) + " to " + b.name + ", " + name + ", " + std::to_string(w));
                frame src(a, 37, 19), dst(b, w, h);
                src.fill(static_cast<uint32_t>(served));
                const bool same = &a == &b && w == 37;
                const way possible = same ? way::video : convert(src, dst, matrix, range, 1);
                element e;
                const bool taken = e.set_caps(caps_of(a.name, 37, 19, is_yuv(a) ? colorimetry : ""),
                                              caps_of(b.name, w, h, !is_yuv(a) && is_yuv(b) ? colorimetry : ""));
                ASSERT_EQ(taken, possible != way::none) << e.error();
                ++(taken ? served : refused);
                if (!taken) {
                    EXPECT_EQ(e.push(src.buffer()), GST_FLOW_NOT_NEGOTIATED);
                    EXPECT_NE(e.error(), "");
                    continue;
                }
                ASSERT_EQ(e.push(src.buffer()), GST_FLOW_OK);
                ASSERT_EQ(e.pull(), same ? src.samples() : dst.samples());
            }
    EXPECT_GT(served, 800);
    EXPECT_GT(refused, 800);
}

// Which numbers the names of colours stand for, as tables of the standards have them
TEST(conversion, known_colours) {
    using bytes = std::vector<uint8_t>;
    const struct {
        const char *in, *out;
        int h;
        bytes from, to;
    } rows[] = {
        {"Y444,colorimetry=bt601", "RGB", 2, {81, 90, 240}, {254, 0, 0}},
        {"Y444,colorimetry=bt709", "BGR", 2, {63, 102, 240}, {0, 1, 255}},
        {"Y444,colorimetry=1:3:5:1", "RGB", 2, {54, 99, 255}, {254, 0, 0}},
        {"Y444,colorimetry=bt2020", "RGB", 2, {29, 240, 119}, {0, 0, 255}},
        {"Y444,colorimetry=1:4:7:1", "xRGB", 2, {255, 128, 128}, {255, 255, 255, 255}},
        {"Y444,colorimetry=2:0:0:0", "RGB", 2, {81, 90, 240}, {254, 0, 0}},  // of decoders that know no more
        {"Y444,colorimetry=1:0:0:0", "RGB", 2, {16, 128, 128}, {16, 16, 16}},
        {"Y444", "RGB", 576, {81, 90, 240}, {254, 0, 0}},  // unnamed: by the size
        {"Y444", "RGB", 720, {63, 102, 240}, {255, 1, 0}},
        {"GRAY8", "RGB", 2, {16}, {16, 16, 16}},  // unnamed: full range
        {"GRAY8,colorimetry=bt709", "RGB", 2, {16}, {0, 0, 0}},
        {"RGB", "Y444,colorimetry=bt601", 2, {255, 0, 0}, {81, 90, 240}},
        {"RGBx", "Y444,colorimetry=bt709", 2, {255, 0, 0, 7}, {63, 102, 240}},
        {"RGB", "Y444", 576, {255, 0, 0}, {81, 90, 240}},
        {"RGB", "Y444", 720, {255, 0, 0}, {63, 102, 240}},
        {"RGB", "GRAY8", 720, {255, 255, 255}, {255}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.in) + " to " + row.out + ", " + std::to_string(row.h) + " rows");
        const std::string size = ",width=2,framerate=25/1,height=" + std::to_string(row.h);
        const std::string name = row.in, format = name.substr(0, name.find(','));
        element e;
        ASSERT_TRUE(
            e.set_caps("video/x-raw,format=" + name + size, "video/x-raw,format=" + std::string(row.out) + size))
            << e.error();
        // Planes hold a component each, packed pixels all of them.
        frame src(layout_of(format), 2, row.h);
        const bool packed = src.of().planes.size() == 1;
        const auto planes = src.planes();
        for (size_t c = 0; c < row.from.size(); ++c)
            for (int y = 0; y < row.h; ++y)
                for (size_t x = 0; x < 2; ++x) {
                    const size_t plane = packed ? 0 : c, at = packed ? x * row.from.size() + c : x;
                    static_cast<uint8_t*>(planes[plane])[y * src.strides()[plane] + at] = row.from[c];
                }
        ASSERT_EQ(e.push(src.buffer()), GST_FLOW_OK);
        const bytes all = e.pull();
        const size_t pixels = 2 * row.h, apart = row.out[0] == 'Y' ? pixels : 1;
        ASSERT_EQ(all.size(), row.to.size() * pixels);
        bytes got;
        for (size_t c = 0; c < row.to.size(); ++c) got.push_back(all[c * apart]);
        EXPECT_EQ(got, row.to);
    }
}

TEST(conversion, bands_make_the_same_picture) {
    const struct {
        const char *src, *dst;
        int w, h;
    } rows[] = {
        {"I420", "RGBA", 64, 151},      {"NV12", "RGBP", 64, 151}, {"I420", "NV12", 64, 151}, {"I420", "RGB", 50, 230},
        {"P010_10LE", "BGRx", 64, 151}, {"NV12", "RGB16", 20, 40}, {"RGB", "I420", 64, 151},  {"GBR", "RGBA", 64, 151},
        {"GBR", "RGB", 50, 230},        {"GBRA", "ARGB", 64, 151},
    };
    for (const auto& row : rows)
        for (const int n : {0, 1, 2, 3, 7, 64}) {
            SCOPED_TRACE(std::string(row.src) + " to " + row.dst + ", threads: " + std::to_string(n));
            frame src(layout_of(row.src), 64, 151), dst(layout_of(row.dst), row.w, row.h);
            element e("n-threads=" + std::to_string(n));
            ASSERT_TRUE(e.set_caps(caps_of(row.src, 64, 151), caps_of(row.dst, row.w, row.h))) << e.error();
            for (const uint32_t seed : {1, 2, 3}) {
                src.fill(seed);
                ASSERT_NE(convert(src, dst, 0, 0, 1), way::none);
                ASSERT_EQ(e.push(src.buffer()), GST_FLOW_OK);
                ASSERT_EQ(e.pull(), dst.samples());
            }
        }
}

TEST(conversion, chroma_mode) {
    frame src(layout_of("I420"), 33, 20), dst(layout_of("RGB"), 33, 20);
    src.fill(5);
    element e("chroma-mode=replicate");
    ASSERT_TRUE(e.set_caps(caps_of("I420", 33, 20), caps_of("RGB", 33, 20)));
    GstElement* inner = gst_harness_find_element(e.harness(), "zeltconvert");
    for (const int32_t chroma : {0, 1, 0}) {
        gst_util_set_object_arg(G_OBJECT(inner), "chroma-mode", chroma ? "smooth" : "replicate");
        convert(src, dst, 0, 0, chroma);
        ASSERT_EQ(e.push(src.buffer()), GST_FLOW_OK);
        EXPECT_EQ(e.pull(), dst.samples());
    }
    gst_object_unref(inner);
}
