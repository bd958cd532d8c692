// SPDX-License-Identifier: MIT
#pragma once  // which of GStreamer's formats the library converts into which
#include <array>
#include <gst/video/video.h>
#include <zelt/csc.h>
#include <zelt/video.h>

namespace zelt::gst {

struct format {
    GstVideoFormat gst;
    int32_t cs;
};
/// Where a format has a plane per component, the library's planes are the components in order.
inline constexpr std::array formats = {
    format{GST_VIDEO_FORMAT_I420, ZELT_CS_YUV420},    format{GST_VIDEO_FORMAT_YV12, ZELT_CS_YUV420},
    format{GST_VIDEO_FORMAT_NV12, ZELT_CS_NV12},      format{GST_VIDEO_FORMAT_NV21, ZELT_CS_NV21},
    format{GST_VIDEO_FORMAT_YUY2, ZELT_CS_YUYV},      format{GST_VIDEO_FORMAT_UYVY, ZELT_CS_UYVY},
    format{GST_VIDEO_FORMAT_Y42B, ZELT_CS_YUV422},    format{GST_VIDEO_FORMAT_NV16, ZELT_CS_NV16},
    format{GST_VIDEO_FORMAT_Y444, ZELT_CS_YUV444},    format{GST_VIDEO_FORMAT_GRAY8, ZELT_CS_YUV400},
    format{GST_VIDEO_FORMAT_I420_10LE, ZELT_CS_P010}, format{GST_VIDEO_FORMAT_P010_10LE, ZELT_CS_P010LE},
    format{GST_VIDEO_FORMAT_I422_10LE, ZELT_CS_P210}, format{GST_VIDEO_FORMAT_Y444_10LE, ZELT_CS_P410},
    format{GST_VIDEO_FORMAT_RGB, ZELT_CS_RGB888},     format{GST_VIDEO_FORMAT_BGR, ZELT_CS_BGR888},
    format{GST_VIDEO_FORMAT_RGBx, ZELT_CS_RGBA8888},  format{GST_VIDEO_FORMAT_BGRx, ZELT_CS_BGRA8888},
    format{GST_VIDEO_FORMAT_xRGB, ZELT_CS_ARGB8888},  format{GST_VIDEO_FORMAT_RGBA, ZELT_CS_RGBA8888},
    format{GST_VIDEO_FORMAT_BGRA, ZELT_CS_BGRA8888},  format{GST_VIDEO_FORMAT_ARGB, ZELT_CS_ARGB8888},
    format{GST_VIDEO_FORMAT_RGB16, ZELT_CS_RGB565},   format{GST_VIDEO_FORMAT_RGBP, ZELT_CS_R8G8B8},
    format{GST_VIDEO_FORMAT_BGRP, ZELT_CS_R8G8B8},    format{GST_VIDEO_FORMAT_GBR, ZELT_CS_R8G8B8},
    format{GST_VIDEO_FORMAT_GBRA, ZELT_CS_R8G8B8A8},  format{GST_VIDEO_FORMAT_GBR_10LE, ZELT_CS_R10G10B10},
};

/// As GStreamer reads caps, but with their range even where they do not tell the matrix
bool read(GstVideoInfo& info, const GstCaps* caps);

/// RGB, and not YUV or grey
bool is_rgb(GstVideoFormat f);

enum class reach { nothing, same_size, any_size };
/// In which sizes one format becomes the other. The library is asked.
reach reach_of(const format& src, const format& dst);

/// Why such pictures are never converted, or null
const char* refusal(const GstVideoInfo& info);

/// Whether YUV of this matrix is converted from and to RGB
bool has_matrix(const GstVideoColorimetry& colours);

/// Whether one picture is the other, whatever else their caps say
bool is_same_picture(const GstVideoInfo& a, const GstVideoInfo& b);

/// A conversion of whole pictures or of bands of them
class conversion {
public:
    /// @return  why there is none, or null
    const char* prepare(const GstVideoInfo& src, const GstVideoInfo& dst);
    void set_chroma(int32_t chroma);
    /// Whether several threads may each make a part
    bool has_bands() const { return !rgb_to_rgb_ || same_size_; }
    /// Makes rows of dst; all of them at once unless has_bands().
    void convert(const GstVideoFrame& src, GstVideoFrame& dst, int y, int rows) const;

private:
    ZELT_VIDEO video_ = {};
    zelt_csc_fn rgb_to_rgb_ = nullptr;  // which zelt/video.h has not
    bool same_size_ = true;
};

}  // namespace zelt::gst
