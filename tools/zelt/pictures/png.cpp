// PNG pictures of every kind, as 8-bit RGB or, where there is transparency, RGBA.
#include "pictures/reader.h"
#include "pictures/writer.h"
#include "zelt/common.h"

#include <cerrno>
#include <csetjmp>
#include <cstring>
#include <png.h>
#include <vector>

namespace zelt::tool {
namespace {

/// What libpng said last; it reports errors through here and then jumps.
struct complaint {
    char text[128];
};

void on_error(png_structp png, png_const_charp text) {
    complaint* to = static_cast<complaint*>(png_get_error_ptr(png));
    std::strncpy(to->text, text, sizeof to->text - 1);
    png_longjmp(png, 1);
}

void on_warning(png_structp, png_const_charp) {}

/// Runs calls into libpng. An error jumps back here, so `calls` must own nothing.
template <class F> bool attempt(png_structp png, const F& calls) {
    if (setjmp(png_jmpbuf(png))) return false;
    calls();
    return true;
}

std::vector<png_bytep> rows_of(const picture& pic) {
    std::vector<png_bytep> rows(static_cast<std::size_t>(pic.h));
    for (int y = 0; y < pic.h; ++y) rows[static_cast<std::size_t>(y)] = pic.row(0, y);
    return rows;
}

class png_reader : public reader {
public:
    explicit png_reader(input in) : reader(std::move(in)) {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &complaint_, on_error, on_warning);
        if (!png_) throw std::bad_alloc();
        const bool done = attempt(png_, [this] {
            info_ = png_create_info_struct(png_);
            png_init_io(png_, in_.handle());
            png_read_info(png_, info_);
            png_set_expand(png_);
            png_set_scale_16(png_);
            png_set_gray_to_rgb(png_);
            png_set_interlace_handling(png_);
            png_read_update_info(png_, info_);
        });
        if (!done) fail();
        shape(format_of(png_get_channels(png_, info_) == 4 ? ZELT_CS_RGBA8888 : ZELT_CS_RGB888),
              static_cast<int>(png_get_image_width(png_, info_)), static_cast<int>(png_get_image_height(png_, info_)));
    }
    ~png_reader() override { png_destroy_read_struct(&png_, &info_, nullptr); }

    bool more() override { return !read_; }

    void read(picture& into) override {
        read_ = true;
        std::vector<png_bytep> rows = rows_of(into);
        png_bytepp first = rows.data();
        if (!attempt(png_, [&] {
                png_read_image(png_, first);
                png_read_end(png_, nullptr);
            }))
            fail();
    }

private:
    [[noreturn]] void fail() { in_.bad(std::string("is no sound PNG file: ") + complaint_.text); }

    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    complaint complaint_ = {};
    bool read_ = false;
};

} // namespace

std::unique_ptr<reader> read_png(input in) { return std::make_unique<png_reader>(std::move(in)); }

void write_png(output& out, const picture& pic) {
    complaint complaint = {};
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &complaint, on_error, on_warning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    std::vector<png_bytep> rows = rows_of(pic);
    png_bytepp first = rows.data();
    const bool done = info && attempt(png, [&] {
                          png_init_io(png, out.handle());
                          png_set_IHDR(png, info, static_cast<png_uint_32>(pic.w), static_cast<png_uint_32>(pic.h), 8,
                                       pic.fmt->alpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB,
                                       PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
                          png_write_info(png, info);
                          png_write_image(png, first);
                          png_write_end(png, nullptr);
                      });
    const std::string reason = std::ferror(out.handle()) ? std::strerror(errno) : complaint.text;
    png_destroy_write_struct(&png, &info);
    if (!done) out.fail("cannot be written: " + reason);
}

} // namespace zelt::tool
