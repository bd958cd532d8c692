// SPDX-License-Identifier: MIT
// The part of the module behind pictures/decoder.h: the best video stream of a file, decoded.
#include "libav.h"
#include "pictures/decoder.h"
#include "pictures/failure.h"
#include "zelt/video.h"

#include <algorithm>
#include <cerrno>

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

namespace zelt::tool {
namespace {

// clang-format off
constexpr struct {
    AVPixelFormat libav;
    int32_t cs;
} layouts[] = {
    {AV_PIX_FMT_GRAY8, ZELT_CS_YUV400},
    {AV_PIX_FMT_YUV420P, ZELT_CS_YUV420},      {AV_PIX_FMT_YUVJ420P, ZELT_CS_YUV420},
    {AV_PIX_FMT_YUV422P, ZELT_CS_YUV422},      {AV_PIX_FMT_YUVJ422P, ZELT_CS_YUV422},
    {AV_PIX_FMT_YUV440P, ZELT_CS_YUV440},      {AV_PIX_FMT_YUVJ440P, ZELT_CS_YUV440},
    {AV_PIX_FMT_YUV444P, ZELT_CS_YUV444},      {AV_PIX_FMT_YUVJ444P, ZELT_CS_YUV444},
    {AV_PIX_FMT_YUVA444P, ZELT_CS_YUV444A8},
    {AV_PIX_FMT_NV12, ZELT_CS_NV12},           {AV_PIX_FMT_NV21, ZELT_CS_NV21},
    {AV_PIX_FMT_NV16, ZELT_CS_NV16},
    {AV_PIX_FMT_YUYV422, ZELT_CS_YUYV},        {AV_PIX_FMT_UYVY422, ZELT_CS_UYVY},
    {AV_PIX_FMT_YUV420P10LE, ZELT_CS_P010},    {AV_PIX_FMT_YUV422P10LE, ZELT_CS_P210},
    {AV_PIX_FMT_YUV444P10LE, ZELT_CS_P410},
    {AV_PIX_FMT_P010LE, ZELT_CS_P010LE},       {AV_PIX_FMT_P210LE, ZELT_CS_P210LE},
    {AV_PIX_FMT_RGB565LE, ZELT_CS_RGB565},
    {AV_PIX_FMT_RGB24, ZELT_CS_RGB888},        {AV_PIX_FMT_BGR24, ZELT_CS_BGR888},
    {AV_PIX_FMT_RGBA, ZELT_CS_RGBA8888},       {AV_PIX_FMT_BGRA, ZELT_CS_BGRA8888},
    {AV_PIX_FMT_ARGB, ZELT_CS_ARGB8888},
    {AV_PIX_FMT_GBRP, ZELT_CS_R8G8B8},         {AV_PIX_FMT_GBRAP, ZELT_CS_R8G8B8A8},
    {AV_PIX_FMT_GBRP10LE, ZELT_CS_R10G10B10},
};
// clang-format on

// Threads of frames may hand out a picture before they tell that it is damaged, and may lose one without a word: H.264
// and MPEG-4 do. These codings tell as much as by threads of slices.
constexpr AVCodecID threaded_by_frames[] = {AV_CODEC_ID_HEVC, AV_CODEC_ID_VP9};

const AVPixFmtDescriptor& description_of(int pixel_format) {
    return *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(pixel_format));
}

/// The pixel format that ffmpeg can turn others into and that is taken
std::string near(int pixel_format) {
    const AVPixFmtDescriptor& d = description_of(pixel_format);
    if (d.flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL))
        return d.flags & AV_PIX_FMT_FLAG_ALPHA ? "rgba" : "rgb24";
    const char* chroma = d.log2_chroma_w ? d.log2_chroma_h ? "420p" : "422p" : "444p";
    return std::string("yuv") + chroma + (d.comp[0].depth > 8 ? "10le" : "");
}

#ifdef AV_FRAME_FLAG_KEY
bool is_key(const AVFrame& f) { return f.flags & AV_FRAME_FLAG_KEY; }
bool is_interlaced(const AVFrame& f) { return f.flags & AV_FRAME_FLAG_INTERLACED; }
bool is_top_first(const AVFrame& f) { return f.flags & AV_FRAME_FLAG_TOP_FIELD_FIRST; }
#else
bool is_key(const AVFrame& f) { return f.key_frame; }
bool is_interlaced(const AVFrame& f) { return f.interlaced_frame; }
bool is_top_first(const AVFrame& f) { return f.top_field_first; }
#endif

bool is_damaged(const AVFrame& f) { return f.decode_error_flags || (f.flags & AV_FRAME_FLAG_CORRUPT); }

std::string ratio(AVRational r) { return std::to_string(r.num) + ":" + std::to_string(r.den); }

std::string size_text(int w, int h) { return std::to_string(w) + "x" + std::to_string(h); }

class libav_decoder : public decoder {
public:
    libav_decoder(const std::string& name, FILE* file, bool bytes, int threads) : source_(name, file), bytes_(bytes) {
        open_stream(threads);
        if (decode()) describe(*frame_);
        waiting_ = frame_->width > 0;
    }

    bool next(frame& to) override {
        if (!waiting_ && !decode()) return false;
        waiting_ = false;
        const AVFrame& f = *frame_;
        if (f.width != about.w || f.height != about.h || f.format != format_)
            fail("picture " + std::to_string(count_ - 1) + " is " + size_text(f.width, f.height) + " " +
                 description_of(f.format).name + " and those before are " + size_text(about.w, about.h) + " " +
                 description_of(format_).name + "; one size and format is taken");
        bytes_ ? view_bytes(to) : view(to);
        return true;
    }

private:
    [[noreturn]] void fail(const std::string& why) const { source_.fail(why); }

    void open_stream(int threads) {
        AVFormatContext* file = source_.get();
        const AVCodec* codec = nullptr;
        const int index = av_find_best_stream(file, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
        if (index == AVERROR_DECODER_NOT_FOUND) source_.unsupported("its video is of a coding without a decoder");
        if (index < 0) fail("has no video");
        for (unsigned i = 0; i < file->nb_streams; ++i)
            if (i != static_cast<unsigned>(index)) file->streams[i]->discard = AVDISCARD_ALL;
        stream_ = file->streams[index];
        codec_.reset(avcodec_alloc_context3(codec));
        if (!codec_ || avcodec_parameters_to_context(codec_.get(), stream_->codecpar) < 0) throw std::bad_alloc();
        codec_->pkt_timebase = stream_->time_base;
        codec_->thread_count = threads;
        codec_->thread_type = FF_THREAD_SLICE;
        codec_->err_recognition = AV_EF_CRCCHECK;
        if (std::ranges::count(threaded_by_frames, codec->id)) {
            codec_->thread_type = FF_THREAD_FRAME;
            codec_->err_recognition |= AV_EF_EXPLODE;
        }
        source_.check(avcodec_open2(codec_.get(), codec, nullptr));
    }

    /// Makes frame_ the next picture. Those before the first key frame lack what they are built on.
    bool decode() {
        AVFrame* f = frame_.get();
        for (;;) {
            const int error = avcodec_receive_frame(codec_.get(), f);
            if (error == AVERROR(EAGAIN)) {
                feed();
            } else if (error == AVERROR_EOF) {
                source_.check_end();
                return false;
            } else if (error < 0 || is_damaged(*f)) {
                damaged();
            } else if (count_ || is_key(*f)) {
                ++count_;
                return true;
            } else {
                ++skipped_;
            }
        }
    }

    /// Hands the decoder the next packet of the stream.
    void feed() {
        AVPacket* packet = packet_.get();
        do {
            av_packet_unref(packet);
            const int error = av_read_frame(source_.get(), packet);
            if (error == AVERROR_EOF) {
                avcodec_send_packet(codec_.get(), nullptr);
                return;
            }
            source_.check(error);
        } while (packet->stream_index != stream_->index);
        if ((packet->flags & AV_PKT_FLAG_CORRUPT) || avcodec_send_packet(codec_.get(), packet) < 0) damaged();
    }

    void damaged() const {
        if (count_) fail("is damaged after picture " + std::to_string(count_ - 1));
    }

    void describe(const AVFrame& f) {
        format_ = f.format;
        about.w = f.width;
        about.h = f.height;
        const auto layout = std::ranges::find(layouts, f.format, [](const auto& l) { return int{l.libav}; });
        if (layout == std::end(layouts) && !bytes_)
            source_.unsupported("holds pictures of " + std::string(description_of(f.format).name) +
                                ", which are not taken: ffmpeg -i IN -pix_fmt " + near(f.format) +
                                " -c:v rawvideo OUT.nut");
        cs_ = layout == std::end(layouts) ? 0 : layout->cs;

        AVFormatContext* file = source_.get();
        const AVRational rate = av_guess_frame_rate(file, stream_, nullptr);
        const AVRational aspect = av_guess_sample_aspect_ratio(file, stream_, frame_.get());
        if (rate.num > 0 && rate.den > 0) about.rate = ratio(rate);
        about.pictures = unit_count(*file, *stream_);
        about.aspect = aspect.num > 0 ? ratio(aspect) : "0:0";
        if (is_interlaced(f)) about.interlacing = is_top_first(f) ? 't' : 'b';
        if (skipped_) about.note = std::to_string(skipped_) + " pictures before the first key frame left out";
        about.siting = f.chroma_location == AVCHROMA_LOC_LEFT ? "mpeg2" : "jpeg";
        describe_colours(f);
    }

    void describe_colours(const AVFrame& f) {
        const std::string_view name = description_of(f.format).name;
        if (f.color_range == AVCOL_RANGE_JPEG || name.starts_with("yuvj"))
            about.range = ZELT_VIDEO_FULL;
        else if (f.color_range == AVCOL_RANGE_MPEG)
            about.range = ZELT_VIDEO_LIMITED;
        switch (f.colorspace) {
        case AVCOL_SPC_BT470BG:
        case AVCOL_SPC_SMPTE170M: about.matrix = ZELT_VIDEO_BT601; break;
        case AVCOL_SPC_BT709: about.matrix = ZELT_VIDEO_BT709; break;
        case AVCOL_SPC_BT2020_NCL: about.matrix = ZELT_VIDEO_BT2020; break;
        case AVCOL_SPC_RGB:
        case AVCOL_SPC_UNSPECIFIED: break;
        default: about.other_matrix = av_color_space_name(f.colorspace) ? av_color_space_name(f.colorspace) : "unknown";
        }
    }

    void view(frame& to) {
        const std::shared_ptr<AVFrame> held(av_frame_alloc(), freed<av_frame_free>());
        if (!held) throw std::bad_alloc();
        av_frame_move_ref(held.get(), frame_.get());
        const AVFrame& f = *held;
        const bool planar_rgb = cs_ == ZELT_CS_R8G8B8 || cs_ == ZELT_CS_R8G8B8A8 || cs_ == ZELT_CS_R10G10B10;
        to = {cs_, f.width, f.height, {}, {}, held};
        for (int i = 0; i < 4; ++i) {
            const int from = planar_rgb && i < 3 ? (i + 2) % 3 : i;  // libav's order is G, B, R
            to.plane[i] = f.data[from];
            to.stride[i] = f.linesize[from];
        }
    }

    void view_bytes(frame& to) {
        const AVFrame& f = *frame_;
        const auto format = static_cast<AVPixelFormat>(f.format);
        const int size = av_image_get_buffer_size(format, f.width, f.height, 1);
        source_.check(size);
        const auto held = std::make_shared_for_overwrite<uint8_t[]>(static_cast<std::size_t>(size));
        source_.check(av_image_copy_to_buffer(held.get(), size, f.data, f.linesize, format, f.width, f.height, 1));
        to = {0, size, 1, {held.get()}, {size}, held};
    }

    libav_file source_;
    std::unique_ptr<AVCodecContext, freed<avcodec_free_context>> codec_;
    std::unique_ptr<AVPacket, freed<av_packet_free>> packet_{av_packet_alloc()};
    std::unique_ptr<AVFrame, freed<av_frame_free>> frame_{av_frame_alloc()};
    AVStream* stream_ = nullptr;
    bool bytes_, waiting_ = false;  // whether frame_ has not been shown yet
    int format_ = AV_PIX_FMT_NONE;
    int32_t cs_ = 0;
    int64_t count_ = 0, skipped_ = 0;
};

}  // namespace
}  // namespace zelt::tool

extern "C" zelt::tool::decoder* zelt_open_decoder(const std::string& name, FILE* file, bool bytes, int threads) {
    return new zelt::tool::libav_decoder(name, file, bytes, threads);
}
