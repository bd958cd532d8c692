// SPDX-License-Identifier: MIT
#include "conversion.h"

#include <algorithm>

namespace zelt::gst {
namespace {

struct size {
    int w, h;
    bool operator==(const size&) const = default;
};

bool init(ZELT_VIDEO& v, int32_t src_cs, int32_t dst_cs, size src, size dst) {
    v.src_cs = src_cs, v.dst_cs = dst_cs;
    v.dst_w = v.dst_h = v.filter = 0;
    if (src != dst) {
        v.dst_w = dst.w, v.dst_h = dst.h;
        // Further down bilinear misses samples.
        if (2 * int64_t{dst.w} < src.w || 2 * int64_t{dst.h} < src.h) v.filter = ZELT_VIDEO_AREA;
    }
    return zelt_video_init(&v) == ZELT_OK;
}

zelt_csc_fn rgb_to_rgb(const format& src, const format& dst, size from, size to) {
    // To itself R10G10B10 is YUV for the dispatch.
    if (!is_rgb(src.gst) || !is_rgb(dst.gst) || src.cs == dst.cs) return nullptr;
    return zelt_imgp_get_fn_csc(from.w, from.h, src.cs, to.w, to.h, dst.cs, nullptr);
}

bool serves(const format& src, const format& dst, size from, size to) {
    ZELT_VIDEO v = {};
    return init(v, src.cs, dst.cs, from, to) || rgb_to_rgb(src, dst, from, to);
}

int32_t matrix_of(const GstVideoColorimetry& colours) {
    switch (colours.matrix) {
    case GST_VIDEO_COLOR_MATRIX_BT601: return ZELT_VIDEO_BT601;
    case GST_VIDEO_COLOR_MATRIX_BT709: return ZELT_VIDEO_BT709;
    case GST_VIDEO_COLOR_MATRIX_BT2020: return ZELT_VIDEO_BT2020;
    default: return -1;
    }
}

const format* find(const GstVideoInfo& info) {
    const auto f = std::ranges::find(formats, GST_VIDEO_INFO_FORMAT(&info), &format::gst);
    return f == formats.end() ? nullptr : &*f;
}

struct picture {
    void* plane[GST_VIDEO_MAX_PLANES] = {};  // null in the second entry: a packed picture is whole
    int32_t stride[GST_VIDEO_MAX_PLANES] = {};

    explicit picture(const GstVideoFrame& frame) {
        const bool by_component = GST_VIDEO_FRAME_N_PLANES(&frame) == GST_VIDEO_FRAME_N_COMPONENTS(&frame);
        for (unsigned i = 0; i < GST_VIDEO_FRAME_N_PLANES(&frame); ++i) {
            const unsigned p = by_component ? GST_VIDEO_FRAME_COMP_PLANE(&frame, i) : i;
            plane[i] = GST_VIDEO_FRAME_PLANE_DATA(&frame, p);
            stride[i] = GST_VIDEO_FRAME_PLANE_STRIDE(&frame, p);
        }
    }
    /// From row y on; of formats whose planes have as many rows as the picture
    void skip(int y) {
        for (unsigned i = 0; i < GST_VIDEO_MAX_PLANES && plane[i]; ++i)
            plane[i] = static_cast<uint8_t*>(plane[i]) + static_cast<ptrdiff_t>(y) * stride[i];
    }
};

}  // namespace

bool read(GstVideoInfo& info, const GstCaps* caps) {
    if (!gst_video_info_from_caps(&info, caps)) return false;
    const char* text = gst_structure_get_string(gst_caps_get_structure(caps, 0), "colorimetry");
    GstVideoColorimetry told;
    if (text && gst_video_colorimetry_from_string(&told, text) && told.range) info.colorimetry.range = told.range;
    return true;
}

bool is_rgb(GstVideoFormat f) { return GST_VIDEO_FORMAT_INFO_IS_RGB(gst_video_format_get_info(f)); }

reach reach_of(const format& src, const format& dst) {
    if (!serves(src, dst, {2, 2}, {2, 2})) return reach::nothing;
    return serves(src, dst, {2, 2}, {3, 3}) && serves(src, dst, {5, 5}, {2, 2}) ? reach::any_size : reach::same_size;
}

const char* refusal(const GstVideoInfo& info) {
    if (info.interlace_mode != GST_VIDEO_INTERLACE_MODE_PROGRESSIVE)
        return "interlaced pictures are not converted: put a deinterlace element before";
    if (is_rgb(GST_VIDEO_INFO_FORMAT(&info)) && info.colorimetry.range == GST_VIDEO_COLOR_RANGE_16_235)
        return "RGB of limited range is not converted";
    return nullptr;
}

bool has_matrix(const GstVideoColorimetry& colours) { return matrix_of(colours) >= 0; }

bool is_same_picture(const GstVideoInfo& a, const GstVideoInfo& b) {
    const GstVideoColorimetry &of_a = a.colorimetry, &of_b = b.colorimetry;
    return GST_VIDEO_INFO_FORMAT(&a) == GST_VIDEO_INFO_FORMAT(&b) && a.width == b.width && a.height == b.height &&
           a.interlace_mode == b.interlace_mode && of_a.range == of_b.range && of_a.matrix == of_b.matrix;
}

const char* conversion::prepare(const GstVideoInfo& src, const GstVideoInfo& dst) {
    const format *from = find(src), *to = find(dst);
    if (!from || !to) return "these formats are not known";
    for (const GstVideoInfo* info : {&src, &dst})
        if (const char* reason = refusal(*info)) return reason;
    const bool from_rgb = is_rgb(from->gst), to_rgb = is_rgb(to->gst);
    const GstVideoColorimetry& yuv = (from_rgb ? dst : src).colorimetry;
    if (!from_rgb && !to_rgb) {
        const bool grey = from->cs == ZELT_CS_YUV400 || to->cs == ZELT_CS_YUV400;
        if (yuv.range != dst.colorimetry.range || (yuv.matrix != dst.colorimetry.matrix && !grey))
            return "YUV keeps its matrix and range on the way to YUV: convert to RGB in between to change them";
    } else if (from_rgb != to_rgb && from->cs != ZELT_CS_YUV400 && !has_matrix(yuv)) {
        return "only the matrices of BT.601, BT.709 and BT.2020 are converted";
    }
    video_.matrix = std::max(matrix_of(yuv), 0);  // of grey sources it makes no difference
    video_.range = yuv.range == GST_VIDEO_COLOR_RANGE_0_255 ? ZELT_VIDEO_FULL : ZELT_VIDEO_LIMITED;

    const size in = {src.width, src.height}, out = {dst.width, dst.height};
    rgb_to_rgb_ = nullptr;
    same_size_ = in == out;
    if (init(video_, from->cs, to->cs, in, out)) return nullptr;
    rgb_to_rgb_ = rgb_to_rgb(*from, *to, in, out);
    return rgb_to_rgb_ ? nullptr : "there is no conversion between these formats and sizes";
}

void conversion::set_chroma(int32_t chroma) {
    video_.chroma = chroma;
    zelt_video_init(&video_);  // it fails where it has failed before
}

void conversion::convert(const GstVideoFrame& src, GstVideoFrame& dst, int y, int rows) const {
    picture from(src), to(dst);
    const int w = GST_VIDEO_FRAME_WIDTH(&src), h = GST_VIDEO_FRAME_HEIGHT(&src);
    if (!rgb_to_rgb_) {
        zelt_video_convert_rows(&video_, from.plane, from.stride, to.plane, to.stride, w, h, y, rows);
        return;
    }
    from.skip(y), to.skip(y);
    rgb_to_rgb_(from.plane, w, same_size_ ? rows : h, from.stride, video_.src_cs, to.plane, GST_VIDEO_FRAME_WIDTH(&dst),
                rows, to.stride, video_.dst_cs);
}

}  // namespace zelt::gst
