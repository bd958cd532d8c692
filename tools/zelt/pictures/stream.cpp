// SPDX-License-Identifier: MIT
#include "pictures/stream.h"

#include "pictures/failure.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace zelt::tool {
namespace {

static_assert(sizeof(off_t) == sizeof(int64_t), "files of 2 GiB and more need _FILE_OFFSET_BITS=64");

std::string reason() { return std::strerror(errno); }

/// The path with symbolic links followed, also one that leads to nothing yet, so that renaming leaves the link as it
/// is; empty where links go in a circle.
std::string followed(std::filesystem::path path) {
    for (int links = 0; links < 40; ++links) {
        std::error_code none;
        const auto to = std::filesystem::read_symlink(path, none);
        if (none) return path;
        path = path.parent_path() / to;  // `to` alone where it is absolute
    }
    return "";
}

std::string folder_of(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

/// Kind and permissions of what a path leads to, 0 where that is nothing.
mode_t mode_of(const std::string& path) {
    struct stat st;
    return ::stat(path.c_str(), &st) == 0 ? st.st_mode : 0;
}

/// Gives a file the owner and the permissions of the one that it will replace, as far as the user may.
void take_after(int fd, const struct stat& old) {
    const bool same_group = ::fchown(fd, old.st_uid, old.st_gid) == 0 || ::fchown(fd, -1u, old.st_gid) == 0;
    mode_t mode = old.st_mode & 0777;
    if (!same_group) mode = (mode & ~070u) | (mode & 7) << 3;  // another group may do what others may
    ::fchmod(fd, mode);
}

}  // namespace

bool is_stream(const std::string& path) {
    const mode_t mode = path == "-" ? 0 : mode_of(path);
    return path == "-" || (mode && !S_ISREG(mode) && !S_ISDIR(mode));
}

void close_file::operator()(FILE* f) const {
    if (f != stdin && f != stdout) std::fclose(f);
}

input::input(const std::string& path)
    : name_(path == "-" ? "standard input" : path), file_(path == "-" ? stdin : std::fopen(path.c_str(), "rb")) {
    if (!file_) bad("cannot be opened: " + reason());
    struct stat st;
    if (::fstat(::fileno(handle()), &st) == 0 && S_ISREG(st.st_mode)) size_ = st.st_size;
}

void input::check() const {
    if (std::ferror(handle())) bad("cannot be read: " + reason());
}

int input::get() {
    const int c = std::getc(handle());
    if (c == EOF) check();
    return c;
}

int input::peek() { return std::ungetc(get(), handle()); }

void input::read(void* to, std::size_t bytes) {
    if (std::fread(to, 1, bytes, handle()) == bytes) return;
    check();
    bad("is cut short");
}

int64_t input::left() const {
    const off_t at = size_ < 0 ? -1 : ::ftello(handle());
    return at < 0 ? -1 : size_ - at;
}

void input::expect(int64_t bytes) {
    const int64_t rest = left();
    if (rest >= 0 && rest < bytes)
        bad("is cut short: a picture takes " + std::to_string(bytes) + " bytes, " + std::to_string(rest) + " are left");
}

std::string input::line(std::size_t longest, bool or_end) {
    std::string text;
    for (int c = get(); c != '\n'; c = get()) {
        if (c == EOF && or_end) break;
        if (c == EOF) bad("is cut short");
        if (text.size() == longest) bad("has a header line that never ends");
        text += static_cast<char>(c);
    }
    return text;
}

void input::bad(const std::string& text) const { throw failure(status::bad_input, name_ + ": " + text); }
void input::unsupported(const std::string& text) const { throw failure(status::unsupported, name_ + ": " + text); }

output::output(const std::string& path) : name_(path == "-" ? "standard output" : path) {
    if (is_stream(path)) {
        file_.reset(path == "-" ? stdout : std::fopen(path.c_str(), "wb"));
    } else {
        struct stat old;
        const bool replaces = ::stat(path.c_str(), &old) == 0;
        if (replaces && S_ISDIR(old.st_mode)) fail("is a folder");
        target_ = followed(path);
        if (target_.empty()) fail("cannot be written: " + std::string(std::strerror(ELOOP)));
        const std::string stem = folder_of(target_) + ".zelt-" + std::to_string(::getpid()) + "-";
        static int serial = 0;  // names for all files of a series; one left by a killed process is passed over
        int fd;
        do {
            temporary_ = stem + std::to_string(serial++);
            fd = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, replaces ? 0600 : 0666);
        } while (fd < 0 && errno == EEXIST);
        if (fd >= 0 && replaces) take_after(fd, old);
        if (fd >= 0) file_.reset(::fdopen(fd, "wb"));
    }
    if (!file_) {
        temporary_.clear();
        fail("cannot be written: " + reason());
    }
}

output::~output() {
    if (temporary_.empty()) return;
    if (!committed_) ::unlink(temporary_.c_str());
    if (!former_.empty()) {
        ::rename(former_.c_str(), target_.c_str());
        ::unlink(former_.c_str());  // where both were names of one file, which rename leaves alone
    } else if (committed_) {
        ::unlink(target_.c_str());
    }
}

void output::write(const void* from, std::size_t bytes) {
    if (std::fwrite(from, 1, bytes, handle()) != bytes) fail("cannot be written: " + reason());
}

void output::close() {
    FILE* f = file_.release();
    if ((f == stdout ? std::fflush(f) : std::fclose(f)) != 0) fail("cannot be written: " + reason());
}

void output::commit() {
    if (temporary_.empty()) return;
    if (S_ISREG(mode_of(target_))) {
        // A second name, so that there is a file of this one at all times; not every file system has them.
        const std::string former = temporary_ + "-former";
        if (::link(target_.c_str(), former.c_str()) != 0 && ::rename(target_.c_str(), former.c_str()) != 0)
            fail("cannot be replaced: " + reason());
        former_ = former;
    }
    committed_ = ::rename(temporary_.c_str(), target_.c_str()) == 0;
    if (!committed_) fail("cannot be written: " + reason());
}

void output::keep() {
    if (!former_.empty()) ::unlink(former_.c_str());
    temporary_.clear();
}

void output::fail(const std::string& text) const { throw failure(status::output_failed, name_ + ": " + text); }

}  // namespace zelt::tool
