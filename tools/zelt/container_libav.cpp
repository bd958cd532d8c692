// SPDX-License-Identifier: MIT
// The module behind container.h: tracks and access units through libavformat, start codes through libavcodec's
// bitstream filters.
#include "container.h"
#include "libav.h"
#include "pictures/failure.h"
#include "zelt/fcc2mt.h"

#include <cmath>
#include <limits>

extern "C" {
#include <libavcodec/bsf.h>
}

namespace zelt::tool {
namespace {

/// By the code that a track has in its container or, where that says nothing, by those of its coding in MP4 and AVI
int32_t media_type_of(const AVCodecParameters& par) {
    const bool video = par.codec_type == AVMEDIA_TYPE_VIDEO, audio = par.codec_type == AVMEDIA_TYPE_AUDIO;
    const bool subtitle = par.codec_type == AVMEDIA_TYPE_SUBTITLE;
    const auto lookup = video ? zelt_fcc2mt_vid : audio ? zelt_fcc2mt_aud : subtitle ? zelt_fcc2mt_sub : zelt_fcc2mt;
    const int32_t unknown = lookup(0), own = lookup(par.codec_tag);
    if (own != unknown || !(video || audio)) return own;
    if (par.codec_id == AV_CODEC_ID_HEVC) return lookup(MKTAG('h', 'v', 'c', '1'));  // both have another one first
    using table = const AVCodecTag* const[2];
    const table of_mp4 = {video ? avformat_get_mov_video_tags() : avformat_get_mov_audio_tags(), nullptr};
    const table of_avi = {video ? avformat_get_riff_video_tags() : avformat_get_riff_audio_tags(), nullptr};
    const int32_t in_mp4 = lookup(av_codec_get_tag(of_mp4, par.codec_id));
    return in_mp4 != unknown ? in_mp4 : lookup(av_codec_get_tag(of_avi, par.codec_id));
}

std::string details_of(const AVStream& stream) {
    const AVCodecParameters& par = *stream.codecpar;
    std::string text = avcodec_get_name(par.codec_id);
    if (par.codec_type == AVMEDIA_TYPE_VIDEO) {
        text += ", " + std::to_string(par.width) + "x" + std::to_string(par.height);
        if (stream.avg_frame_rate.num > 0 && stream.avg_frame_rate.den > 0) {
            char rate[32];
            std::snprintf(rate, sizeof rate, ", %.5g frames/s", av_q2d(stream.avg_frame_rate));
            text += rate;
        }
    } else if (par.codec_type == AVMEDIA_TYPE_AUDIO) {
        text += ", " + std::to_string(par.sample_rate) + " Hz, " + std::to_string(par.ch_layout.nb_channels) +
                (par.ch_layout.nb_channels == 1 ? " channel" : " channels");
    }
    return text;
}

track describe(const AVStream& stream) {
    const AVCodecParameters& par = *stream.codecpar;
    const char* kind = av_get_media_type_string(par.codec_type);
    return {kind ? kind : "unknown", par.codec_tag, media_type_of(par), details_of(stream)};
}

/// The filter for a track whose units have lengths in front: its extra data is a configuration record of version 1.
const char* filter_name(const AVCodecParameters& par) {
    if (par.extradata_size < 1 || par.extradata[0] != 1) return nullptr;
    return par.codec_id == AV_CODEC_ID_H264   ? "h264_mp4toannexb"
           : par.codec_id == AV_CODEC_ID_HEVC ? "hevc_mp4toannexb"
                                              : nullptr;
}

class libav_container : public container {
public:
    explicit libav_container(const std::string& path) : path_(path) {
        av_log_set_level(AV_LOG_QUIET);
        const std::string url = path == "-" ? "pipe:0" : "file:" + path;
        AVIOContext* bytes = nullptr;
        check(avio_open(&bytes, url.c_str(), AVIO_FLAG_READ));
        bytes_.reset(bytes);
        whole_.emplace(bytes);
        AVFormatContext* file = avformat_alloc_context();
        if (!file) throw std::bad_alloc();
        file->pb = bytes;
        check(avformat_open_input(&file, url.c_str(), nullptr, nullptr));
        file_.reset(file);
        check(avformat_find_stream_info(file, nullptr));
        for (unsigned i = 0; i < file->nb_streams; ++i) tracks_.push_back(describe(*file->streams[i]));
    }

    std::string format() const override { return file_->iformat->long_name; }
    const std::vector<track>& tracks() const override { return tracks_; }
    void choose(size_t index) override;
    bool start_codes_put_in() const override { return filter_ != nullptr; }
    uint64_t units() const override { return unit_count(*file_, *stream_); }
    bool next(access_unit& unit) override;

private:
    [[noreturn]] void fail(const std::string& why) const { throw failure(status::bad_input, path_ + ": " + why); }
    void check(int error) const {
        if (error < 0) fail(error_text(error));
    }

    std::string path_;
    std::vector<track> tracks_;
    std::unique_ptr<AVIOContext, freed<avio_closep>> bytes_;
    std::optional<whole_file> whole_;
    std::unique_ptr<AVFormatContext, freed<avformat_close_input>> file_;
    std::unique_ptr<AVBSFContext, freed<av_bsf_free>> filter_;
    std::unique_ptr<AVPacket, freed<av_packet_free>> packet_{av_packet_alloc()};
    AVStream* stream_ = nullptr;
};

void libav_container::choose(size_t index) {
    stream_ = file_->streams[index];
    const char* name = filter_name(*stream_->codecpar);
    if (!name) return;
    AVBSFContext* filter = nullptr;
    if (av_bsf_alloc(av_bsf_get_by_name(name), &filter) < 0) throw std::bad_alloc();
    filter_.reset(filter);
    if (avcodec_parameters_copy(filter->par_in, stream_->codecpar) < 0 || av_bsf_init(filter) < 0)
        fail("the parameter sets of the track are damaged");
}

bool libav_container::next(access_unit& unit) {
    AVPacket* packet = packet_.get();
    do {
        av_packet_unref(packet);
        const int error = av_read_frame(file_.get(), packet);
        if (error == AVERROR_EOF && whole_->is_cut()) fail("is cut short");
        if (error == AVERROR_EOF) return false;
        check(error);
    } while (packet->stream_index != stream_->index);

    if (filter_) {  // gives one unit for each
        const bool done =
            av_bsf_send_packet(filter_.get(), packet) == 0 && av_bsf_receive_packet(filter_.get(), packet) == 0;
        if (!done) fail("the lengths within a unit are damaged");
    }
    const int64_t stamp = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
    unit.data = packet->data;
    unit.size = packet->size;
    unit.time = stamp == AV_NOPTS_VALUE ? std::numeric_limits<double>::quiet_NaN()
                                        : static_cast<double>(stamp) * av_q2d(stream_->time_base);
    unit.marked_key = packet->flags & AV_PKT_FLAG_KEY;
    return true;
}

}  // namespace
}  // namespace zelt::tool

extern "C" zelt::tool::container* zelt_open_container(const std::string& path) {
    return new zelt::tool::libav_container(path);
}
