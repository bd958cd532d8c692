#include "pictures/reader.h"

#include "pictures/failure.h"

#include <charconv>
#include <cstring>

namespace zelt::tool {

void reader::shape(const format& fmt, int w, int h) {
    if (!fits(fmt, w, h))
        in_.bad("has pictures of " + std::to_string(w) + "x" + std::to_string(h) + ", which is no size to work with");
    about_.fmt = &fmt;
    about_.w = w;
    about_.h = h;
}

void reader::read_planes(picture& into) {
    in_.expect(picture_bytes(*into.fmt, into.w, into.h));
    for (int i = 0; i < into.fmt->planes; ++i)
        for (int y = 0; y < into.h; ++y) in_.read(into.row(i, y), into.row_bytes(i));
}

void reader::read_grey(picture& into) {
    in_.expect(int64_t{into.w} * into.h);
    for (int y = 0; y < into.h; ++y) {
        in_.read(into.row(0, y), into.row_bytes(0));
        for (const int chroma : {1, 2}) std::memset(into.row(chroma, y), 128, into.row_bytes(chroma));
    }
}

int header_number(std::string_view digits) {
    int value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return error == std::errc() && end == digits.data() + digits.size() && value >= 0 ? value : -1;
}

std::unique_ptr<reader> open_reader(const std::string& path, const std::string& raw_layout) {
    input in(path);
    if (!raw_layout.empty()) return read_raw(std::move(in), raw_layout);
    switch (in.peek()) {
    case 'Y': return read_y4m(std::move(in));
    case 'P': return read_pnm(std::move(in));
    case 0x89: return read_png(std::move(in));
    case EOF: in.bad("is empty");
    default: in.bad("is no Y4M, PNG, PPM or PGM file (raw pictures need --raw WxH:FORMAT)");
    }
}

}  // namespace zelt::tool
