// SPDX-License-Identifier: MIT
#include "pictures/writer.h"

#include "pictures/failure.h"
#include "zelt/video.h"

#include <algorithm>
#include <cctype>

namespace zelt::tool {
namespace {

// clang-format off
const file_kind kinds[] = {
    {"png", {".png"}, {ZELT_CS_RGB888, ZELT_CS_RGBA8888}, true, false, nullptr, encode_png, nullptr},
    {"ppm", {".ppm"}, {ZELT_CS_RGB888}, true, true, nullptr, nullptr, write_ppm},
    {"y4m", {".y4m"}, {ZELT_CS_YUV444, ZELT_CS_YUV400, ZELT_CS_YUV420, ZELT_CS_YUV422, ZELT_CS_P010, ZELT_CS_P210,
                       ZELT_CS_P410}, false, true, write_y4m_header, nullptr, write_y4m},
    {"raw", {".raw", ".yuv", ".rgb"}, {}, false, true, nullptr, nullptr, write_raw},
};
// clang-format on

std::size_t extension_of(const std::string& path) {
    const std::size_t name = path.rfind('/') + 1, dot = path.rfind('.');
    return dot == path.npos || dot <= name ? path.size() : dot;
}

}  // namespace

const file_kind& kind_of_output(std::string_view name, const std::string& path) {
    std::string extension = path.substr(extension_of(path));
    std::ranges::transform(extension, extension.begin(), [](unsigned char c) { return std::tolower(c); });
    for (const file_kind& kind : kinds)
        if (name.empty() ? std::ranges::count(kind.extensions, extension) != 0 : name == kind.name) return kind;
    throw failure(status::wrong_use, name.empty() ? "what '" + path + "' should hold is not clear from its name: " +
                                                        "give --to png, ppm, y4m or raw"
                                                  : "--to takes png, ppm, y4m or raw, not '" + std::string(name) + "'");
}

const format& asked_format(const file_kind& kind, const std::string& asked) {
    const format& fmt = named_format(asked);
    if (kind.formats.empty() || std::ranges::count(kind.formats, fmt.cs)) return fmt;
    std::string held;
    for (const int32_t cs : kind.formats)
        held += (held.empty() ? "" : cs == kind.formats.back() ? " or " : ", ") + std::string(format_of(cs).name);
    throw failure(status::wrong_use,
                  std::string(kind.name) + " files hold " + held + ", not " + fmt.name + "; raw files hold any format");
}

const format& default_format(const file_kind& kind, const format& given) {
    if (kind.formats.empty()) throw failure(status::wrong_use, "raw output needs --pix-fmt");
    for (const int32_t cs : {given.cs, planar_yuv(given).cs})
        if (std::ranges::count(kind.formats, cs)) return format_of(cs);
    return format_of(given.alpha ? kind.formats.back() : kind.formats.front());
}

writer::writer(const file_kind& kind, std::string path, const clip& about)
    : kind_(kind), path_(std::move(path)), about_(about) {
    separate_ = kind_.single && !is_stream(path_);
    if (!separate_) return;
    for (std::size_t percent = path_.find('%'); percent != path_.npos; percent = path_.find('%', percent + 1)) {
        const bool wide = path_.size() > percent + 2 && path_[percent + 1] == '0' && std::isdigit(path_[percent + 2]);
        const std::size_t letter = percent + (wide ? 3 : 1);
        if (letter >= path_.size() || path_[letter] != 'd') continue;
        if (series_) throw failure(status::wrong_use, "'" + path_ + "' has more than one place for a number");
        at_ = percent;
        length_ = letter + 1 - percent;
        digits_ = wide ? path_[percent + 2] - '0' : 1;
        series_ = true;
    }
}

std::string writer::numbered(int n) const {
    const std::string digits = std::to_string(n);
    const std::string zeros(static_cast<std::size_t>(std::max(0, digits_ - static_cast<int>(digits.size()))), '0');
    const std::size_t start = length_ ? at_ : extension_of(path_);
    return path_.substr(0, start) + (length_ ? "" : "-") + zeros + digits + path_.substr(start + length_);
}

void writer::write(const picture& pic, const std::string& code, bool more) {
    if (more && !separate_ && !kind_.piped)
        throw failure(status::wrong_use,
                      std::string("a pipe takes one ") + kind_.name + " picture and there are more: give --limit 1");
    if (separate_ && more) series_ = true;
    ++count_;
    if (separate_ || files_.empty()) {
        last_ = series_ ? numbered(count_) : path_;
        if (first_.empty()) first_ = last_;
        output& out = files_.emplace_back(last_);
        if (kind_.header) kind_.header(out, about_);
    }
    kind_.encode ? files_.back().write(code) : kind_.write(files_.back(), pic);
    if (separate_) files_.back().close();
}

void writer::finish() {
    if (files_.back().handle()) files_.back().close();
    for (output& file : files_) file.commit();
    for (output& file : files_) file.keep();
}

std::string writer::summary() const {
    return first_ == "-" ? "standard output" : first_ == last_ ? first_ : first_ + " to " + last_;
}

void write_raw(output& out, const picture& pic) {
    for_each_run(pic, [&out](const void* from, std::size_t bytes) { out.write(from, bytes); });
}

}  // namespace zelt::tool
