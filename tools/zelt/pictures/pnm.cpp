// SPDX-License-Identifier: MIT
// Binary PPM and PGM, one picture or several of a kind in a row.
#include "pictures/reader.h"
#include "pictures/writer.h"
#include "zelt/video.h"

#include <cctype>

namespace zelt::tool {
namespace {

class pnm_reader : public file_reader {
public:
    explicit pnm_reader(input in) : file_reader(std::move(in)) {
        const header first = read_header();
        kind_ = first.kind;
        shape(format_of(kind_ == '5' ? ZELT_CS_YUV400 : ZELT_CS_RGB888), first.w, first.h);
        if (kind_ == '5') about_.range = ZELT_VIDEO_FULL;
    }

    bool more() override {
        if (header_read_) return true;
        while (std::isspace(in_.peek())) in_.get();
        return in_.peek() != EOF;
    }

    void read(picture& into) override {
        if (!header_read_) {
            const header next = read_header();
            if (next.kind != kind_ || next.w != into.w || next.h != into.h)
                in_.bad("holds pictures of several sizes or kinds");
        }
        header_read_ = false;
        read_planes(into);
    }

private:
    struct header {
        int kind, w, h;
    };

    header read_header() {
        if (in_.get() != 'P') in_.bad("has something else where a picture should begin");
        const int kind = in_.get();
        if (kind < '1' || kind > '7') in_.bad("is no PPM or PGM file");
        if (kind != '5' && kind != '6')
            in_.unsupported("is P" + std::string(1, static_cast<char>(kind)) +
                            "; the binary kinds P5 (PGM) and P6 (PPM) are taken");
        const int w = number(), h = number(), most = number();
        if (w < 1 || h < 1 || most < 1 || most > 65535) in_.bad("has a header without a usable size and maxval");
        if (most != 255) in_.unsupported("has a maxval of " + std::to_string(most) + "; 255 is taken");
        header_read_ = true;
        return {kind, w, h};
    }

    /// The next number of the header, with the one white space or comment character that ends it.
    int number() {
        int c = in_.get();
        while (c == '#' || std::isspace(c)) {
            if (c == '#') skip_line();
            c = in_.get();
        }
        std::string digits;
        for (; std::isdigit(c) && digits.size() < 20; c = in_.get()) digits += static_cast<char>(c);
        if (c == '#') skip_line();
        return c == '#' || std::isspace(c) ? header_number(digits) : -1;
    }

    void skip_line() {
        for (int c = in_.get(); c != '\n' && c != EOF;) c = in_.get();
    }

    int kind_;
    bool header_read_ = false;
};

}  // namespace

std::unique_ptr<reader> read_pnm(input in) { return std::make_unique<pnm_reader>(std::move(in)); }

void write_ppm(output& out, const picture& pic) {
    out.write("P6\n" + std::to_string(pic.w) + " " + std::to_string(pic.h) + "\n255\n");
    write_raw(out, pic);
}

}  // namespace zelt::tool
