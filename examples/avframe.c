// SPDX-License-Identifier: MIT
/* The first picture of a clip as a PPM file: FFmpeg's libraries decode it, and the frame's planes and strides are
 * converted as they are.
 *
 *     avframe CLIP OUT.ppm */
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <stdio.h>
#include <stdlib.h>
#include <zelt/video.h>

/* The frame's own description as a request. What it leaves open is guessed from its height, as players do. */
static int32_t prepare(ZELT_VIDEO *video, const AVFrame *frame, int32_t dst_cs) {
    static const struct {
        enum AVPixelFormat format;
        int32_t cs;
    } known[] = {
        {AV_PIX_FMT_GRAY8, ZELT_CS_YUV400},    {AV_PIX_FMT_YUV420P, ZELT_CS_YUV420},
        {AV_PIX_FMT_YUVJ420P, ZELT_CS_YUV420}, {AV_PIX_FMT_YUV422P, ZELT_CS_YUV422},
        {AV_PIX_FMT_YUVJ422P, ZELT_CS_YUV422}, {AV_PIX_FMT_YUV440P, ZELT_CS_YUV440},
        {AV_PIX_FMT_YUV444P, ZELT_CS_YUV444},  {AV_PIX_FMT_YUVJ444P, ZELT_CS_YUV444},
        {AV_PIX_FMT_NV12, ZELT_CS_NV12},       {AV_PIX_FMT_NV21, ZELT_CS_NV21},
        {AV_PIX_FMT_NV16, ZELT_CS_NV16},       {AV_PIX_FMT_YUYV422, ZELT_CS_YUYV},
        {AV_PIX_FMT_UYVY422, ZELT_CS_UYVY},
    };
    const int old_full_range = frame->format == AV_PIX_FMT_YUVJ420P || frame->format == AV_PIX_FMT_YUVJ422P ||
                               frame->format == AV_PIX_FMT_YUVJ444P;
    ZELT_VIDEO request = {0};
    size_t i;
    for (i = 0; i < sizeof known / sizeof *known; ++i) {
        if (known[i].format == frame->format) request.src_cs = known[i].cs;
    }
    request.dst_cs = dst_cs;
    switch (frame->colorspace) {
    case AVCOL_SPC_BT709: request.matrix = ZELT_VIDEO_BT709; break;
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M: request.matrix = ZELT_VIDEO_BT601; break;
    case AVCOL_SPC_BT2020_NCL: request.matrix = ZELT_VIDEO_BT2020; break;
    default: request.matrix = frame->height >= 720 ? ZELT_VIDEO_BT709 : ZELT_VIDEO_BT601; break;
    }
    request.range = old_full_range || frame->color_range == AVCOL_RANGE_JPEG ? ZELT_VIDEO_FULL : ZELT_VIDEO_LIMITED;
    request.chroma = ZELT_VIDEO_SMOOTH;
    *video = request;
    return zelt_video_init(video); /* no source format: unsupported */
}

/* Whether there was a picture */
static int decode_first(AVFormatContext *clip, AVFrame *frame) {
    const AVCodec *codec;
    const int track = av_find_best_stream(clip, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    AVCodecContext *decoder = track >= 0 ? avcodec_alloc_context3(codec) : NULL;
    AVPacket *packet = av_packet_alloc();
    int found = 0;
    if (decoder && packet && avcodec_parameters_to_context(decoder, clip->streams[track]->codecpar) == 0 &&
        avcodec_open2(decoder, codec, NULL) == 0) {
        while (!found && av_read_frame(clip, packet) == 0) {
            if (packet->stream_index == track && avcodec_send_packet(decoder, packet) == 0)
                found = avcodec_receive_frame(decoder, frame) == 0;
            av_packet_unref(packet);
        }
        if (!found) /* a decoder that waits for more */
            found = avcodec_send_packet(decoder, NULL) == 0 && avcodec_receive_frame(decoder, frame) == 0;
    }
    av_packet_free(&packet);
    avcodec_free_context(&decoder);
    return found;
}

static int write_ppm(const char *name, const uint8_t *rgb, int w, int h) {
    FILE *file = fopen(name, "wb");
    const size_t pixels = (size_t)w * (size_t)h;
    int done;
    if (!file) return 0;
    fprintf(file, "P6\n%d %d\n255\n", w, h);
    done = fwrite(rgb, 3, pixels, file) == pixels;
    return fclose(file) == 0 && done;
}

int main(int argc, char **argv) {
    AVFormatContext *clip = NULL;
    AVFrame *frame = av_frame_alloc();
    const char *problem = NULL;
    ZELT_VIDEO video;

    if (argc != 3 || !frame) {
        fprintf(stderr, "usage: avframe CLIP OUT.ppm\n");
        return 1;
    }
    if (avformat_open_input(&clip, argv[1], NULL, NULL) != 0) {
        problem = "cannot open";
    } else if (avformat_find_stream_info(clip, NULL) < 0 || !decode_first(clip, frame)) {
        problem = "no picture in";
    } else if (prepare(&video, frame, ZELT_CS_RGB888) != ZELT_OK) {
        problem = "no conversion for";
    } else {
        const int32_t stride = 3 * frame->width;
        void *rgb = malloc((size_t)stride * (size_t)frame->height);
        if (!rgb) return 1;
        zelt_video_convert(&video, (void *const *)frame->data, frame->linesize, &rgb, &stride, frame->width,
                           frame->height);
        if (!write_ppm(argv[2], rgb, frame->width, frame->height)) problem = "cannot write the picture of";
        free(rgb);
    }
    if (problem) fprintf(stderr, "%s %s\n", problem, argv[1]);
    av_frame_free(&frame);
    avformat_close_input(&clip);
    return problem != NULL;
}
