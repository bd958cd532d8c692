// SPDX-License-Identifier: MIT
#include "libav.h"

#include "pictures/failure.h"

#include <bit>
#include <cerrno>
#include <cstring>
#include <span>
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

/// A size as EBML has it (RFC 8794, 4): as many zeros as bytes follow, a one, the value; 0 where all its bits say that
/// it is not known. Moves `at` past it.
int64_t ebml_size(std::span<const uint8_t> head, std::size_t& at) {
    const int more = at < head.size() ? std::countl_zero(head[at]) : 8;
    if (more == 8 || head.size() - at <= static_cast<std::size_t>(more)) return 0;
    int64_t most = 0x7F >> more, value = head[at++] & most;
    for (int i = 0; i < more; ++i) value = value << 8 | head[at++], most = most << 8 | 255;
    return value == most ? 0 : value;
}

/// The bytes of a Matroska, WebM or AVI file by what it begins with, or 0 where that does not say
int64_t stated_size(std::span<const uint8_t> head) {
    const auto has = [&](std::size_t at, const char* code) {
        return head.size() >= 4 && at <= head.size() - 4 && std::memcmp(&head[at], code, 4) == 0;
    };
    if (has(0, "RIFF") && has(8, "AVI ")) {
        const uint32_t rest = head[4] | head[5] << 8 | head[6] << 16 | uint32_t{head[7]} << 24;
        return rest == 0xFFFFFFFF ? 0 : rest + int64_t{8};  // where it was not known
    }
    if (!has(0, "\x1A\x45\xDF\xA3")) return 0;
    std::size_t at = 4;
    const int64_t rest_of_head = ebml_size(head, at);
    at += static_cast<std::size_t>(rest_of_head);
    if (!has(at, "\x18\x53\x80\x67")) return 0;  // a segment: the rest of the file
    at += 4;
    const int64_t segment = ebml_size(head, at);
    return segment ? static_cast<int64_t>(at) + segment : 0;
}

}  // namespace

uint64_t unit_count(AVFormatContext& file, AVStream& stream) {
    if (stream.nb_frames > 0) return static_cast<uint64_t>(stream.nb_frames);
    const AVRational rate = av_guess_frame_rate(&file, &stream, nullptr);
    if (file.duration <= 0 || rate.num <= 0 || rate.den <= 0) return 0;
    return static_cast<uint64_t>(av_rescale(file.duration, rate.num, int64_t{rate.den} * AV_TIME_BASE));
}

whole_file::whole_file(AVIOContext* bytes) : bytes_(bytes) {
    uint8_t head[256];  // stays in the buffer, also that of a pipe
    const int length = avio_read(bytes, head, sizeof head);
    if (length > 0) size_ = stated_size({head, static_cast<std::size_t>(length)});
    avio_seek(bytes, 0, SEEK_SET);
}

bool whole_file::is_cut() const {
    uint8_t rest[4096];
    while (avio_read(bytes_, rest, sizeof rest) > 0) continue;
    return avio_tell(bytes_) < size_;
}

libav_file::libav_file(const std::string& name, FILE* file) : name_(name) {
    av_log_set_level(AV_LOG_QUIET);
    uint8_t* buffer = static_cast<uint8_t*>(av_malloc(buffer_size));
    if (!buffer) throw std::bad_alloc();
    io_.reset(avio_alloc_context(buffer, buffer_size, 0, file, read_bytes, nullptr, is_regular(file) ? seek : nullptr));
    AVFormatContext* format = io_ ? avformat_alloc_context() : nullptr;
    if (!format) throw std::bad_alloc();
    whole_.emplace(io_.get());
    format->pb = io_.get();
    const int error = avformat_open_input(&format, nullptr, nullptr, nullptr);  // frees what it cannot open
    if (error == AVERROR_INVALIDDATA)
        fail("is no clip or picture of a known kind (raw pictures need --raw WxH:FORMAT)");
    check(error);
    format_.reset(format);
    check(avformat_find_stream_info(format, nullptr));
}

void libav_file::check_end() const {
    if (whole_->is_cut()) fail("is cut short");
}

void libav_file::fail(const std::string& why) const { throw failure(status::bad_input, name_ + ": " + why); }
void libav_file::unsupported(const std::string& why) const { throw failure(status::unsupported, name_ + ": " + why); }

void libav_file::check(int error) const {
    if (error < 0) fail(error_text(error));
}

}  // namespace zelt::tool
