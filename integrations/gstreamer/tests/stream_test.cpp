// SPDX-License-Identifier: MIT
#include "frames.h"

#include <gst/video/gstvideopool.h>
#include <gtest/gtest.h>
#include <zelt/common.h>

int main(int argc, char** argv) {
    gst_init(&argc, &argv);
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    gst_deinit();  // tells what is still alive
    return result;
}

namespace {
/// Answers an allocation query with a pool whose pictures have padding on all sides.
GstPadProbeReturn offer_padded_pool(GstPad*, GstPadProbeInfo* info, gpointer) {
    GstQuery* query = GST_PAD_PROBE_INFO_QUERY(info);
    if (GST_QUERY_TYPE(query) != GST_QUERY_ALLOCATION) return GST_PAD_PROBE_OK;
    GstCaps* caps;
    GstVideoInfo video;
    gst_query_parse_allocation(query, &caps, nullptr);
    gst_video_info_from_caps(&video, caps);
    GstVideoAlignment padding;
    gst_video_alignment_reset(&padding);
    padding.padding_left = 32, padding.padding_top = 6, padding.padding_right = 24, padding.padding_bottom = 10;
    GstBufferPool* pool = gst_video_buffer_pool_new();
    GstStructure* config = gst_buffer_pool_get_config(pool);
    gst_buffer_pool_config_set_params(config, caps, static_cast<guint>(video.size), 0, 0);
    gst_buffer_pool_config_add_option(config, GST_BUFFER_POOL_OPTION_VIDEO_META);
    gst_buffer_pool_config_add_option(config, GST_BUFFER_POOL_OPTION_VIDEO_ALIGNMENT);
    gst_buffer_pool_config_set_video_alignment(config, &padding);
    gst_buffer_pool_set_config(pool, config);
    gst_query_add_allocation_pool(query, pool, static_cast<guint>(video.size), 0, 0);
    gst_query_add_allocation_meta(query, GST_VIDEO_META_API_TYPE, nullptr);
    gst_object_unref(pool);
    return GST_PAD_PROBE_HANDLED;
}
}  // namespace

// Pictures with long rows and planes apart, in and out
TEST(stream, padding) {
    for (const auto& [src_name, dst_name, w, h] : {std::tuple{"I420", "RGB", 36, 20},
                                                   {"NV12", "YV12", 36, 20},
                                                   {"YUY2", "GBR", 36, 20},
                                                   {"GBRA", "ARGB", 36, 20},
                                                   {"P010_10LE", "I420_10LE", 36, 20},
                                                   {"I420", "NV12", 60, 50},
                                                   {"RGB16", "Y444", 36, 20}}) {
        SCOPED_TRACE(std::string(src_name) + " to " + dst_name);
        frame src(layout_of(src_name), 36, 20, 52, 400), dst(layout_of(dst_name), w, h);
        src.fill(9);
        ASSERT_NE(convert(src, dst, 0, 0, 1), way::none);
        element e("n-threads=2");
        gst_pad_add_probe(e.harness()->sinkpad, GST_PAD_PROBE_TYPE_QUERY_DOWNSTREAM, offer_padded_pool, nullptr,
                          nullptr);
        ASSERT_TRUE(e.set_caps(caps_of(src_name, 36, 20), caps_of(dst_name, w, h)));
        ASSERT_EQ(e.push(src.buffer()), GST_FLOW_OK);
        GstBuffer* buffer = gst_harness_pull(e.harness());
        const GstVideoMeta* meta = gst_buffer_get_video_meta(buffer);
        ASSERT_NE(meta, nullptr);
        EXPECT_GT(meta->offset[0], 0u);
        GstCaps* caps = gst_caps_from_string(e.caps().c_str());
        EXPECT_EQ(frame::samples(buffer, caps), dst.samples());
        gst_caps_unref(caps);
        gst_buffer_unref(buffer);
    }
}

// Other pictures, or other wishes of what follows, in the middle of a stream
TEST(stream, renegotiation) {
    const struct {
        const char *in, *out;
        int in_w, in_h, out_w, out_h;
    } parts[] = {
        {"I420", "RGB", 64, 48, 64, 48},  {"I420", "RGB", 50, 31, 64, 48},  {"NV12", "RGB", 50, 31, 64, 48},
        {"NV12", "I420", 50, 31, 50, 31}, {"NV12", "NV12", 50, 31, 50, 31}, {"GBR", "RGBA", 64, 48, 64, 48},
        {"GBR", "RGBA", 64, 48, 20, 30},  {"I420", "RGB", 64, 48, 64, 48},
    };
    element e("n-threads=3");
    for (const auto& part : parts) {
        SCOPED_TRACE(std::string(part.in) + " to " + part.out);
        ASSERT_TRUE(e.set_caps(caps_of(part.in, part.in_w, part.in_h), caps_of(part.out, part.out_w, part.out_h)));
        frame src(layout_of(part.in), part.in_w, part.in_h), dst(layout_of(part.out), part.out_w, part.out_h);
        for (const uint32_t seed : {1, 2}) {
            src.fill(seed);
            ASSERT_NE(convert(src, dst, 0, 0, 1), way::none);
            GstBuffer* buffer = src.buffer();
            GST_BUFFER_PTS(buffer) = seed * GST_SECOND;
            ASSERT_EQ(e.push(buffer), GST_FLOW_OK);
            ASSERT_EQ(e.pull(), dst.samples());
        }
    }
    // What follows asks for something else while the source goes on.
    frame src(layout_of("I420"), 64, 48), dst(layout_of("NV12"), 32, 24);
    convert(src, dst, 0, 0, 1);
    gst_harness_set_sink_caps_str(e.harness(), caps_of("NV12", 32, 24).c_str());
    ASSERT_EQ(e.push(src.buffer()), GST_FLOW_OK);
    EXPECT_EQ(e.pull(), dst.samples());
    EXPECT_EQ(e.error(), "");
}

// Memory is asked for and offered with strides of its own; regions to crop to are not.
TEST(stream, allocation_query) {
    element e;
    gst_harness_add_propose_allocation_meta(e.harness(), GST_VIDEO_CROP_META_API_TYPE, nullptr);
    ASSERT_TRUE(e.set_caps(caps_of("I420", 64, 48), caps_of("RGB", 64, 48)));
    GstCaps* caps = gst_caps_from_string(caps_of("I420", 64, 48).c_str());
    GstQuery* query = gst_query_new_allocation(caps, TRUE);
    ASSERT_TRUE(gst_pad_peer_query(e.harness()->srcpad, query));
    EXPECT_TRUE(gst_query_find_allocation_meta(query, GST_VIDEO_META_API_TYPE, nullptr));
    EXPECT_FALSE(gst_query_find_allocation_meta(query, GST_VIDEO_CROP_META_API_TYPE, nullptr));
    EXPECT_GT(gst_query_get_n_allocation_pools(query), 0u);
    gst_query_unref(query);
    gst_caps_unref(caps);
}

TEST(stream, what_goes_with_a_picture) {
    element e;
    ASSERT_TRUE(e.set_caps(caps_of("I420", 64, 48), caps_of("RGB", 32, 12)));
    frame src(layout_of("I420"), 64, 48);
    GstBuffer* buffer = src.buffer();
    GstVideoCropMeta* crop = gst_buffer_add_video_crop_meta(buffer);
    crop->x = 8, crop->y = 4, crop->width = 40, crop->height = 20;
    GstCaps* reference = gst_caps_new_empty_simple("timestamp/x-unix");
    gst_buffer_add_reference_timestamp_meta(buffer, reference, 7, GST_CLOCK_TIME_NONE);
    gst_caps_unref(reference);
    GST_BUFFER_PTS(buffer) = 3 * GST_SECOND, GST_BUFFER_DURATION(buffer) = GST_SECOND / 25;
    ASSERT_EQ(e.push(buffer), GST_FLOW_OK);
    buffer = gst_harness_pull(e.harness());
    EXPECT_EQ(GST_BUFFER_PTS(buffer), 3 * GST_SECOND);
    EXPECT_EQ(GST_BUFFER_DURATION(buffer), GST_SECOND / 25);
    crop = gst_buffer_get_video_crop_meta(buffer);
    ASSERT_NE(crop, nullptr);
    EXPECT_EQ((std::vector<guint>{crop->x, crop->y, crop->width, crop->height}), (std::vector<guint>{4, 1, 20, 5}));
    const auto* time = gst_buffer_get_reference_timestamp_meta(buffer, nullptr);
    EXPECT_TRUE(time && time->timestamp == 7);
    gst_buffer_unref(buffer);
}

// The tracer of leaks watches all tests; here it would see what a change of state forgets.
TEST(stream, states) {
    element e("n-threads=3");
    GstElement* inner = gst_harness_find_element(e.harness(), "zeltconvert");
    frame src(layout_of("I420"), 64, 48), dst(layout_of("RGB"), 64, 48);
    convert(src, dst, 0, 0, 1);
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(gst_element_set_state(inner, GST_STATE_PLAYING), GST_STATE_CHANGE_SUCCESS);
        gst_harness_push_event(e.harness(), gst_event_new_stream_start("again"));
        ASSERT_TRUE(e.set_caps(caps_of("I420", 64, 48), caps_of("RGB", 64, 48)));
        ASSERT_EQ(e.push(src.buffer()), GST_FLOW_OK);
        ASSERT_EQ(e.pull(), dst.samples());
        ASSERT_EQ(gst_element_set_state(inner, i % 2 ? GST_STATE_NULL : GST_STATE_READY), GST_STATE_CHANGE_SUCCESS);
    }
    gst_object_unref(inner);
}
