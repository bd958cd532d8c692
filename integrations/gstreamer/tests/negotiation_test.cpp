// SPDX-License-Identifier: MIT
#include "frames.h"

#include <gtest/gtest.h>

// One of what follows can take; the rest of the caps follows from the picture.
TEST(negotiation, what_is_chosen) {
    const struct {
        std::string in, allowed, chosen;
    } rows[] = {
        // passed through, whatever is known of it
        {"I420,width=64,height=48", "", "I420,width=64,height=48"},
        {"I420,width=64,height=48,interlace-mode=interleaved", "",
         "I420,width=64,height=48,interlace-mode=interleaved"},
        {"I420,width=64,height=48", "{RGB,I420}", "I420,width=64,height=48"},
        {"RGB,width=64,height=48", "RGB,colorimetry=sRGB", "RGB,width=64,height=48,colorimetry=sRGB"},
        // the format that loses least
        {"I420,width=64,height=48,colorimetry=bt709", "{GRAY8,RGB16,RGBA,RGB}",
         "RGB,width=64,height=48,colorimetry=1:1:5:1"},
        {"I420,width=64,height=48,colorimetry=bt709", "{GRAY8,NV12,RGB,Y444}",
         "NV12,width=64,height=48,colorimetry=bt709"},
        {"Y42B,width=64,height=48,colorimetry=bt601", "{I420,UYVY,RGB}", "UYVY,width=64,height=48,colorimetry=bt601"},
        {"BGRA,width=64,height=48,colorimetry=sRGB", "{I420,Y444,GRAY8}",
         "Y444,width=64,height=48,colorimetry=2:4:7:1"},
        {"GBRA,width=64,height=48,colorimetry=sRGB", "{RGB,RGBA}", "RGBA,width=64,height=48,colorimetry=sRGB"},
        {"P010_10LE,width=64,height=48,colorimetry=bt2020-10", "{RGB,GBR_10LE,I420}",
         "GBR_10LE,width=64,height=48,colorimetry=1:1:13:7"},
        // the size that keeps the proportions
        {"I420,width=1920,height=1080,colorimetry=bt709", "I420,width=320",
         "I420,width=320,height=180,colorimetry=bt709"},
        {"I420,width=1920,height=1080,colorimetry=bt709", "I420,height=[1,90]",
         "I420,width=160,height=90,colorimetry=bt709"},
        {"I420,width=1920,height=1080,colorimetry=bt709", "I420,width=[1,640],height=[1,640]",
         "I420,width=640,height=360,colorimetry=bt709"},
        {"I420,width=1920,height=1080,colorimetry=bt709", "NV12,width=640,height=640",
         "NV12,width=640,height=640,colorimetry=bt709,pixel-aspect-ratio=16/9"},
        {"I420,width=1920,height=1080,colorimetry=bt709", "NV12,width=640,height=640,pixel-aspect-ratio=1/1",
         "NV12,width=640,height=640,colorimetry=bt709,pixel-aspect-ratio=1/1"},
        {"I420,width=720,height=576,colorimetry=bt601,pixel-aspect-ratio=16/15", "NV12,pixel-aspect-ratio=1/1",
         "NV12,width=768,height=576,colorimetry=bt601,pixel-aspect-ratio=1/1"},
        {"I420,width=720,height=576,colorimetry=bt601,pixel-aspect-ratio=16/15", "NV12,width=360",
         "NV12,width=360,height=288,colorimetry=bt601,pixel-aspect-ratio=16/15"},
        // colours and where chroma lies
        {"RGB,width=64,height=720,colorimetry=sRGB", "I420", "I420,width=64,height=720,colorimetry=2:3:7:1"},
        {"RGB,width=64,height=720,colorimetry=sRGB", "I420,colorimetry={bt2020,bt601}",
         "I420,width=64,height=720,colorimetry=bt2020"},
        {"I420,width=64,height=720", "NV12", "NV12,width=64,height=720,colorimetry=bt709"},
        {"I420,width=64,height=48,colorimetry=1:4:0:0,chroma-site=jpeg", "NV12",
         "NV12,width=64,height=48,colorimetry=1:4:0:0,chroma-site=jpeg"},
        {"I420,width=64,height=48,colorimetry=bt601,chroma-site=jpeg", "Y444",
         "Y444,width=64,height=48,colorimetry=bt601"},
        {"I420,width=64,height=48,colorimetry=bt601", "GRAY8", "GRAY8,width=64,height=48,colorimetry=bt601"},
        // several sets of caps: the first of the best
        {"I420,width=64,height=48,colorimetry=bt601", "GRAY8;video/x-raw,format=RGB,width=32;video/x-raw,format=RGB",
         "RGB,width=32,height=24,colorimetry=1:1:16:4"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.in + " for " + row.allowed);
        const std::string head = "video/x-raw,framerate=25/1,format=";
        element e;
        ASSERT_TRUE(e.set_caps(head + row.in, row.allowed.empty() ? "ANY" : "video/x-raw,format=" + row.allowed))
            << e.error();
        GstCaps *want = gst_caps_from_string((head + row.chosen).c_str()),
                *got = gst_caps_from_string(e.caps().c_str());
        EXPECT_TRUE(gst_caps_is_equal(want, got)) << e.caps() << "\ninstead of\n" << row.chosen;
        gst_caps_unref(want), gst_caps_unref(got);
        EXPECT_EQ(e.error(), "");
    }
}

TEST(negotiation, what_is_refused_and_why) {
    const struct {
        std::string in, allowed, reason;
    } rows[] = {
        {"I420,interlace-mode=interleaved", "RGB", "put a deinterlace element before"},
        {"I420,colorimetry=smpte240m", "RGB", "can become: I420, YV12"},
        {"RGB", "I420,colorimetry=smpte240m", "only the matrices of BT.601"},
        {"RGB,colorimetry=2:1:7:1", "I420", "RGB of limited range"},
        {"RGB", "BGR", "can become: I420, YV12"},
        {"I420", "NV12,colorimetry=bt709", "keeps its matrix and range"},
        {"I420", "GRAY8,colorimetry=1:4:0:0", "keeps its matrix and range"},
        {"I420,colorimetry=bt601", "NV12,colorimetry=bt709", "What follows takes nothing that"},
        {"GBR", "RGB16,width=32,height=24", "What follows takes nothing that"},
        {"GBR_10LE", "GBR_10LE,width=32,height=24", "What follows takes nothing that"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.in + " for " + row.allowed);
        element e;
        EXPECT_FALSE(e.set_caps("video/x-raw,framerate=25/1,width=64,height=48,format=" + row.in,
                                "video/x-raw,format=" + row.allowed));
        const std::string error = e.error();
        EXPECT_NE(error.find(row.reason), std::string::npos) << error;
    }
    // What is no picture in memory is not even offered.
    for (const char* other : {"video/x-raw(memory:DMABuf)", "video/x-raw,format=v210", "video/x-h264"}) {
        element e;
        GstCaps* caps = gst_caps_from_string(other);
        EXPECT_FALSE(gst_pad_peer_query_accept_caps(e.harness()->srcpad, caps)) << other;
        gst_caps_unref(caps);
    }
}

// Either pad knows what the other one leaves to it, pair by pair.
TEST(negotiation, what_is_offered) {
    const struct {
        const char *allowed, *offered, *not_offered;
    } rows[] = {
        {"GBR_10LE", "{I420_10LE,I422_10LE,Y444_10LE,P010_10LE,GBR_10LE}", "{I420,RGB,GBR}"},
        {"RGBA", "{I420,NV12,YUY2,GRAY8,P010_10LE,GBR,GBRA,RGBA}", "{RGB,BGRA,RGB16,GBR_10LE}"},
        {"GBRA", "GBRA", "{I420,RGBA,GBR}"},
        {"RGB16,width=32,height=24", "{I420,NV12,Y444}", "{GBR,RGBP}"},
        {"I420_10LE", "{GBR_10LE,Y444_10LE}", "{I420,RGB}"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.allowed);
        element e;
        gst_harness_set_sink_caps_str(e.harness(), ("video/x-raw,format=" + std::string(row.allowed)).c_str());
        GstCaps* caps = gst_pad_peer_query_caps(e.harness()->srcpad, nullptr);
        for (const layout& l : layouts) {
            GstCaps* one = gst_caps_from_string(caps_of(l.name, 64, 48).c_str());
            const auto in = [&](const char* list) {
                GstCaps* listed = gst_caps_from_string(("video/x-raw,format=" + std::string(list)).c_str());
                const bool result = gst_caps_can_intersect(one, listed);
                gst_caps_unref(listed);
                return result;
            };
            const bool offered = gst_caps_can_intersect(caps, one);
            EXPECT_TRUE(offered || !in(row.offered)) << l.name;
            EXPECT_FALSE(offered && in(row.not_offered)) << l.name;
            gst_caps_unref(one);
        }
        gst_caps_unref(caps);
    }
}
