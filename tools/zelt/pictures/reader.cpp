// SPDX-License-Identifier: MIT
#include "pictures/reader.h"

#include <algorithm>
#include <charconv>

namespace zelt::tool {

void file_reader::next(picture& into) {
    if (!into.fmt) into = picture(*about_.fmt, about_.w, about_.h);
    read(into);
}

void file_reader::shape(const format& fmt, int w, int h, int64_t header) {
    if (!fits(fmt, w, h))
        in_.bad("has pictures of " + std::to_string(w) + "x" + std::to_string(h) + ", which is no size to work with");
    about_.fmt = &fmt;
    about_.w = w;
    about_.h = h;
    about_.pictures = static_cast<uint64_t>(std::max(in_.left(), int64_t{0}) / (header + picture_bytes(fmt, w, h)));
}

void file_reader::read_planes(picture& into) {
    in_.expect(picture_bytes(*into.fmt, into.w, into.h));
    for_each_run(into, [this](void* to, std::size_t bytes) { in_.read(to, bytes); });
}

int header_number(std::string_view digits) {
    int value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return error == std::errc() && end == digits.data() + digits.size() && value >= 0 ? value : -1;
}

std::unique_ptr<reader> open_reader(const std::string& path, const std::string& raw_layout, bool bytes, int threads) {
    input in(path);
    if (!raw_layout.empty()) return read_raw(std::move(in), raw_layout);
    switch (in.peek()) {
    case 'Y': return read_y4m(std::move(in), bytes, threads);
    case 'P': return read_pnm(std::move(in));
    case 0x89: return read_png(std::move(in));
    case EOF: in.bad("is empty");
    default: return read_coded(std::move(in), bytes, threads);
    }
}

}  // namespace zelt::tool
