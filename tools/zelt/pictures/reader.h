#pragma once
// Picture files as a sequence of pictures of one size and format.
#include "pictures/picture.h"
#include "pictures/stream.h"

#include <memory>
#include <string>
#include <utility>

namespace zelt::tool {

/// What holds for all pictures of a file. The texts are those of a Y4M header.
struct clip {
    const format* fmt = nullptr;
    int w = 0, h = 0;
    std::string rate = "25:1", aspect = "1:1", interlacing = "p";
};

class reader {
public:
    virtual ~reader() = default;
    const clip& about() const { return about_; }
    virtual bool more() = 0;               // whether there is another picture
    virtual void read(picture& into) = 0;  // the next picture, of about()'s size and format

protected:
    explicit reader(input in) : in_(std::move(in)) {}
    void shape(const format& fmt, int w, int h);  // sets what about() says, or a failure
    void read_planes(picture& into);              // rows of all planes, one after the other
    void read_grey(picture& into);                // luma rows, for a YUV444 picture without colour

    input in_;
    clip about_;
};

/// A number in a header, whole and within 31 bits, or -1.
int header_number(std::string_view digits);

/// What a Y4M header says; the clip's format is not set.
struct y4m_header {
    clip about;
    std::string kind = "420";  // of its pictures, and what a header without one means
    int32_t cs = 0;            // their colour space: YUV400, 420, 422 or 444 of 8 bits, or 0 for other kinds
    bool limited = false;      // whether it says so of the range of its samples
};
y4m_header read_y4m_header(input& in);
void read_y4m_frame(input& in);  // the line before each picture

std::unique_ptr<reader> read_y4m(input in);
std::unique_ptr<reader> read_pnm(input in);
std::unique_ptr<reader> read_png(input in);
std::unique_ptr<reader> read_raw(input in, const std::string& layout);

/// Opens a file by what it begins with; raw pictures by their layout, "WxH:FORMAT", which is empty otherwise.
std::unique_ptr<reader> open_reader(const std::string& path, const std::string& raw_layout);

}  // namespace zelt::tool
