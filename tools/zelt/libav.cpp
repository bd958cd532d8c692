#include "libav.h"

#include "pictures/failure.h"

#include <cerrno>
#include <sys/stat.h>

namespace zelt::tool {
namespace {

constexpr int buffer_size = 1 << 16;

int read_bytes(void* from, uint8_t* to, int bytes) {
    FILE* file = static_cast<FILE*>(from);
    const std::size_t n = std::fread(to, 1, static_cast<std::size_t>(bytes), file);
    return n ? static_cast<int>(n) : std::ferror(file) ? AVERROR(errno ? errno : EIO) : AVERROR_EOF;
}

int64_t seek(void* in, int64_t offset, int whence) {
    FILE* file = static_cast<FILE*>(in);
    struct stat st;
    if (whence & AVSEEK_SIZE) return ::fstat(::fileno(file), &st) == 0 ? int64_t{st.st_size} : AVERROR(errno);
    return ::fseeko(file, offset, whence & ~AVSEEK_FORCE) == 0 ? int64_t{::ftello(file)} : AVERROR(errno);
}

bool is_regular(FILE* file) {
    struct stat st;
    return ::fstat(::fileno(file), &st) == 0 && S_ISREG(st.st_mode);
}

}  // namespace

libav_file::libav_file(const std::string& name, FILE* file) : name_(name) {
    av_log_set_level(AV_LOG_QUIET);
    uint8_t* buffer = static_cast<uint8_t*>(av_malloc(buffer_size));
    if (!buffer) throw std::bad_alloc();
    io_.reset(avio_alloc_context(buffer, buffer_size, 0, file, read_bytes, nullptr, is_regular(file) ? seek : nullptr));
    AVFormatContext* format = io_ ? avformat_alloc_context() : nullptr;
    if (!format) throw std::bad_alloc();
    format->pb = io_.get();
    const int error = avformat_open_input(&format, nullptr, nullptr, nullptr);  // frees what it cannot open
    if (error == AVERROR_INVALIDDATA)
        fail("is no clip or picture of a known kind (raw pictures need --raw WxH:FORMAT)");
    check(error);
    format_.reset(format);
    check(avformat_find_stream_info(format, nullptr));
}

void libav_file::fail(const std::string& why) const { throw failure(status::bad_input, name_ + ": " + why); }
void libav_file::unsupported(const std::string& why) const { throw failure(status::unsupported, name_ + ": " + why); }

void libav_file::check(int error) const {
    if (error < 0) fail(error_text(error));
}

}  // namespace zelt::tool
