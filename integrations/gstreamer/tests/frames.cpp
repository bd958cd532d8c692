// SPDX-License-Identifier: MIT
#include "frames.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <zelt/csc.h>
#include <zelt/video.h>

const std::vector<layout> layouts = {
    {"I420", 11, {0, 1, 2}},
    {"YV12", 11, {0, 2, 1}},
    {"NV12", 800, {0, 1}},
    {"NV21", 801, {0, 1}},
    {"YUY2", 820, {0}},
    {"UYVY", 821, {0}},
    {"Y42B", 12, {0, 1, 2}},
    {"NV16", 802, {0, 1}},
    {"Y444", 13, {0, 1, 2}},
    {"GRAY8", 10, {0}},
    {"I420_10LE", 60, {0, 1, 2}},
    {"P010_10LE", 810, {0, 1}},
    {"I422_10LE", 61, {0, 1, 2}},
    {"Y444_10LE", 62, {0, 1, 2}},
    {"RGB", 400, {0}},
    {"BGR", 840, {0}},
    {"RGBx", 500, {0}},
    {"BGRx", 501, {0}},
    {"xRGB", 502, {0}},
    {"RGBA", 500, {0}},
    {"BGRA", 501, {0}},
    {"ARGB", 502, {0}},
    {"RGB16", 200, {0}},
    {"RGBP", 600, {0, 1, 2}},
    {"BGRP", 600, {2, 1, 0}},
    {"GBR", 600, {2, 0, 1}},
    {"GBRA", 700, {2, 0, 1, 3}},
    {"GBR_10LE", 603, {2, 0, 1}},
};

const layout& layout_of(const std::string& name) { return *std::ranges::find(layouts, name, &layout::name); }

namespace {
/// Bytes of a row that hold samples, and rows of a plane
std::pair<size_t, size_t> extent(const GstVideoInfo& info, unsigned plane) {
    size_t bytes = 0, rows = 0;
    for (unsigned c = 0; c < GST_VIDEO_INFO_N_COMPONENTS(&info); ++c)
        if (GST_VIDEO_INFO_COMP_PLANE(&info, c) == plane) {
            bytes =
                std::max<size_t>(bytes, GST_VIDEO_INFO_COMP_WIDTH(&info, c) * GST_VIDEO_INFO_COMP_PSTRIDE(&info, c));
            rows = GST_VIDEO_INFO_COMP_HEIGHT(&info, c);
        }
    return {bytes, rows};
}

void gather(std::vector<uint8_t>& samples, const GstVideoInfo& info, unsigned plane, const uint8_t* data, int stride) {
    const auto [bytes, rows] = extent(info, plane);
    for (size_t y = 0; y < rows; ++y) samples.insert(samples.end(), data + y * stride, data + y * stride + bytes);
}
}  // namespace

frame::frame(const layout& of, int w, int h, int row_padding, int plane_padding) : layout_(&of) {
    gst_video_info_set_format(&info_, gst_video_format_from_string(of.name), w, h);
    size_t size = 0;
    for (unsigned p = 0; p < GST_VIDEO_INFO_N_PLANES(&info_); ++p) {
        info_.stride[p] += row_padding;
        info_.offset[p] = size + plane_padding;
        size = info_.offset[p] + info_.stride[p] * extent(info_, p).second;
    }
    bytes_.resize(size + plane_padding);
    info_.size = bytes_.size();
}

void frame::fill(uint32_t seed) {
    std::minstd_rand random(seed);
    for (uint8_t& byte : bytes_) byte = static_cast<uint8_t>(random() >> 8);
}

GstBuffer* frame::buffer() const {
    GstVideoInfo info = info_;  // it is not taken as constant
    GstBuffer* buffer = gst_buffer_new_memdup(bytes_.data(), bytes_.size());
    gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_INFO_FORMAT(&info_), w(), h(),
                                   GST_VIDEO_INFO_N_PLANES(&info), info.offset, info.stride);
    return buffer;
}

std::vector<void*> frame::planes() {
    std::vector<void*> planes(4);
    for (size_t i = 0; i < layout_->planes.size(); ++i) planes[i] = bytes_.data() + info_.offset[layout_->planes[i]];
    return planes;
}

std::vector<int32_t> frame::strides() const {
    std::vector<int32_t> strides(4);
    for (size_t i = 0; i < layout_->planes.size(); ++i) strides[i] = info_.stride[layout_->planes[i]];
    return strides;
}

std::vector<uint8_t> frame::samples() const {
    std::vector<uint8_t> samples;
    for (unsigned p = 0; p < GST_VIDEO_INFO_N_PLANES(&info_); ++p)
        gather(samples, info_, p, bytes_.data() + info_.offset[p], info_.stride[p]);
    return samples;
}

std::vector<uint8_t> frame::samples(GstBuffer* buffer, const GstCaps* caps) {
    std::vector<uint8_t> samples;
    GstVideoInfo info;
    GstVideoFrame mapped;
    EXPECT_TRUE(gst_video_info_from_caps(&info, caps) && gst_video_frame_map(&mapped, &info, buffer, GST_MAP_READ));
    for (unsigned p = 0; p < GST_VIDEO_INFO_N_PLANES(&info); ++p)
        gather(samples, info, p, static_cast<uint8_t*>(mapped.data[p]), mapped.info.stride[p]);
    gst_video_frame_unmap(&mapped);
    return samples;
}

way convert(frame& src, frame& dst, int32_t matrix, int32_t range, int32_t chroma) {
    const bool resized = src.w() != dst.w() || src.h() != dst.h();
    ZELT_VIDEO v = {};
    v.src_cs = src.of().cs, v.dst_cs = dst.of().cs;
    v.matrix = matrix, v.range = range, v.chroma = chroma;
    if (resized) v.dst_w = dst.w(), v.dst_h = dst.h();
    if (2 * dst.w() < src.w() || 2 * dst.h() < src.h()) v.filter = ZELT_VIDEO_AREA;
    if (zelt_video_init(&v) == ZELT_OK) {
        zelt_video_convert(&v, src.planes().data(), src.strides().data(), dst.planes().data(), dst.strides().data(),
                           src.w(), src.h());
        return way::video;
    }
    // Planar RGB to packed
    if ((v.src_cs != 600 && v.src_cs != 700) || v.dst_cs < 200) return way::none;
    const zelt_csc_fn fn = zelt_imgp_get_fn_csc(src.w(), src.h(), v.src_cs, dst.w(), dst.h(), v.dst_cs, nullptr);
    if (!fn) return way::none;
    fn(src.planes().data(), src.w(), src.h(), src.strides().data(), v.src_cs, dst.planes().data(), dst.w(), dst.h(),
       dst.strides().data(), v.dst_cs);
    return way::dispatch;
}

element::element(const std::string& properties) : bus_(gst_bus_new()) {
    harness_ = gst_harness_new_parse(("zeltconvert " + properties).c_str());
    gst_element_set_bus(harness_->element, bus_);
}

element::~element() {
    gst_element_set_bus(harness_->element, nullptr);
    gst_harness_teardown(harness_);
    gst_object_unref(bus_);
}

bool element::set_caps(const std::string& in, const std::string& out) {
    gst_harness_set_sink_caps_str(harness_, out.c_str());
    GstCaps* caps = gst_caps_from_string(in.c_str());
    GstSegment segment;
    gst_segment_init(&segment, GST_FORMAT_TIME);
    gst_harness_push_event(harness_, gst_event_new_caps(caps));  // which is taken for sent, whatever comes of it
    gst_harness_push_event(harness_, gst_event_new_segment(&segment));
    gst_caps_unref(caps);
    return error().empty();
}

std::string element::caps() {
    GstCaps* caps = gst_pad_get_current_caps(harness_->sinkpad);
    if (!caps) return "none";
    char* text = gst_caps_to_string(caps);
    const std::string result = text;
    g_free(text);
    gst_caps_unref(caps);
    return result;
}

std::vector<uint8_t> element::pull() {
    GstBuffer* buffer = gst_harness_try_pull(harness_);
    if (!buffer) return {};
    GstCaps* caps = gst_pad_get_current_caps(harness_->sinkpad);
    const auto samples = frame::samples(buffer, caps);
    gst_caps_unref(caps);
    gst_buffer_unref(buffer);
    return samples;
}

const std::string& element::error() {
    while (GstMessage* message = gst_bus_pop_filtered(bus_, GST_MESSAGE_ERROR)) {
        GError* error = nullptr;
        gst_message_parse_error(message, &error, nullptr);
        error_ += error->message;
        g_error_free(error);
        gst_message_unref(message);
    }
    return error_;
}

std::string caps_of(const std::string& format, int w, int h, const std::string& more) {
    return "video/x-raw,format=" + format + ",width=" + std::to_string(w) + ",height=" + std::to_string(h) +
           ",framerate=25/1" + more;
}
