// SPDX-License-Identifier: MIT
// Raw pictures: the rows of every plane without gaps, plane after plane, picture after picture.
#include "pictures/failure.h"
#include "pictures/reader.h"

namespace zelt::tool {
namespace {

class raw_reader : public file_reader {
public:
    raw_reader(input in, const format& fmt, int w, int h) : file_reader(std::move(in)) {
        shape(fmt, w, h);
        if (in_.peek() == EOF) in_.bad("is empty");
    }
    bool more() override { return in_.peek() != EOF; }
    void read(picture& into) override { read_planes(into); }
};

}  // namespace

std::unique_ptr<reader> read_raw(input in, const std::string& layout) {
    const std::size_t x = layout.find('x'), colon = layout.find(':');
    const std::string_view text = layout;
    if (x != text.npos && colon != text.npos && x < colon) {
        const int w = header_number(text.substr(0, x)), h = header_number(text.substr(x + 1, colon - x - 1));
        const format& fmt = named_format(text.substr(colon + 1));
        if (fits(fmt, w, h)) return std::make_unique<raw_reader>(std::move(in), fmt, w, h);
    }
    throw failure(status::wrong_use, "--raw takes WxH:FORMAT, such as 640x480:nv12, not '" + layout + "'");
}

}  // namespace zelt::tool
