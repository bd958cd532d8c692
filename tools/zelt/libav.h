// SPDX-License-Identifier: MIT
#pragma once
// What the parts of the module share.
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace zelt::tool {

template <auto Free> struct freed {
    template <class T> void operator()(T* p) const { Free(&p); }
};

inline std::string error_text(int error) {
    char text[AV_ERROR_MAX_STRING_SIZE];
    return av_strerror(error, text, sizeof text) == 0 ? text : "unknown error";
}

/// How many units a track of video may have: by the container's count, else by its duration; 0 where it has neither.
uint64_t unit_count(AVFormatContext& file, AVStream& stream);

/// Matroska and AVI files begin with their length. libavformat just ends with the last whole packet of one that is cut.
class whole_file {
public:
    explicit whole_file(AVIOContext* bytes);  // at the start, where it stays
    bool is_cut() const;                      // reads up to the end

private:
    AVIOContext* bytes_;
    int64_t size_ = 0;  // or it is not known
};

/// A file that is open already, as libavformat reads it
class libav_file {
public:
    libav_file(const std::string& name, FILE* file);
    AVFormatContext* get() const { return format_.get(); }

    [[noreturn]] void fail(const std::string& why) const;
    [[noreturn]] void unsupported(const std::string& why) const;
    void check(int error) const;  // a failure for what is below 0
    void check_end() const;       // a failure where more should come

private:
    /// The buffer of the context is replaced while it is in use.
    struct free_io {
        void operator()(AVIOContext* io) const {
            av_freep(&io->buffer);
            avio_context_free(&io);
        }
    };
    std::string name_;
    std::unique_ptr<AVIOContext, free_io> io_;
    std::optional<whole_file> whole_;
    std::unique_ptr<AVFormatContext, freed<avformat_close_input>> format_;
};

}  // namespace zelt::tool
