#pragma once
// What the parts of the module share.
#include <cstdio>
#include <memory>
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

/// A file that is open already, as libavformat reads it
class libav_file {
public:
    libav_file(const std::string& name, FILE* file);
    AVFormatContext* get() const { return format_.get(); }

    [[noreturn]] void fail(const std::string& why) const;
    [[noreturn]] void unsupported(const std::string& why) const;
    void check(int error) const;  // a failure for what is below 0

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
    std::unique_ptr<AVFormatContext, freed<avformat_close_input>> format_;
};

}  // namespace zelt::tool
