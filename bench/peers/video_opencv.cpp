// SPDX-License-Identifier: MIT
// OpenCV's conversions of 4:2:0 and YUYV, and to 4:2:0, where it takes the chroma of one pixel of four, on this thread
// alone. It has BT.601 of limited range only.
#include "video.h"

#include <opencv2/imgproc.hpp>

namespace zelt::bench {
namespace {
/// The source as one picture of bytes, 3/2 as high for 4:2:0, or as pairs of bytes
video_work convert(int code, int channels) {
    cv::setNumThreads(1);
    return [=](video_job& j) {
        const bool packed = j.src.size() == 1;
        const cv::Mat src(packed ? j.size.h : j.size.h * 3 / 2, j.size.w, packed ? CV_8UC2 : CV_8UC1, j.src[0].p);
        cv::Mat dst(j.size.h, j.size.w, CV_8UC(channels), j.dst[0].p);
        cv::cvtColor(src, dst, code);
    };
}
video_work to_planar(int code, int channels) {
    cv::setNumThreads(1);
    return [=](video_job& j) {
        const cv::Mat src(j.size.h, j.size.w, CV_8UC(channels), j.src[0].p);
        cv::Mat dst(j.size.h * 3 / 2, j.size.w, CV_8UC1, j.dst[0].p);
        cv::cvtColor(src, dst, code);
    };
}

const bool added[] = {
    add_video_peer("yuv420_to_rgba8888", "OpenCV cvtColor", convert(cv::COLOR_YUV2RGBA_I420, 4)),
    add_video_peer("yuv420_to_bgra8888", "OpenCV cvtColor", convert(cv::COLOR_YUV2BGRA_I420, 4)),
    add_video_peer("yuv420_to_rgb888", "OpenCV cvtColor", convert(cv::COLOR_YUV2RGB_I420, 3)),
    add_video_peer("nv12_to_rgba8888", "OpenCV cvtColor", convert(cv::COLOR_YUV2RGBA_NV12, 4)),
    add_video_peer("nv12_to_bgra8888", "OpenCV cvtColor", convert(cv::COLOR_YUV2BGRA_NV12, 4)),
    add_video_peer("nv12_to_rgb888", "OpenCV cvtColor", convert(cv::COLOR_YUV2RGB_NV12, 3)),
    add_video_peer("yuyv_to_rgba8888", "OpenCV cvtColor", convert(cv::COLOR_YUV2RGBA_YUY2, 4)),
    add_video_peer("yuyv_to_bgra8888", "OpenCV cvtColor", convert(cv::COLOR_YUV2BGRA_YUY2, 4)),
    add_video_peer("yuyv_to_rgb888", "OpenCV cvtColor", convert(cv::COLOR_YUV2RGB_YUY2, 3)),
    add_video_peer("rgba8888_to_yuv420", "OpenCV cvtColor", to_planar(cv::COLOR_RGBA2YUV_I420, 4)),
    add_video_peer("bgra8888_to_yuv420", "OpenCV cvtColor", to_planar(cv::COLOR_BGRA2YUV_I420, 4)),
    add_video_peer("rgb888_to_yuv420", "OpenCV cvtColor", to_planar(cv::COLOR_RGB2YUV_I420, 3)),
    add_video_peer("bgr888_to_yuv420", "OpenCV cvtColor", to_planar(cv::COLOR_BGR2YUV_I420, 3)),
};
}  // namespace
}  // namespace zelt::bench
