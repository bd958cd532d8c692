// SPDX-License-Identifier: MIT
// PNG pictures of every kind, as 8-bit RGB or, where there is transparency, RGBA.
#include "pictures/failure.h"
#include "pictures/reader.h"
#include "pictures/writer.h"
#include "zelt/common.h"

#include <csetjmp>
#include <cstring>
#include <png.h>
#include <vector>
#include <zlib.h>

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

void append(png_structp png, png_bytep from, std::size_t bytes) {
    try {
        static_cast<std::string*>(png_get_io_ptr(png))->append(reinterpret_cast<char*>(from), bytes);
    } catch (const std::bad_alloc&) {
        png_error(png, "there is not enough memory");
    }
}

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

/// libpng's two records, freed also where a constructor fails.
struct handles {
    png_structp png = nullptr;
    png_infop info = nullptr;
    ~handles() { png_destroy_read_struct(&png, &info, nullptr); }
};

class png_reader : public file_reader {
public:
    explicit png_reader(input in) : file_reader(std::move(in)) {
        libpng_.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &complaint_, on_error, on_warning);
        if (!libpng_.png) throw std::bad_alloc();
        const bool done = attempt(libpng_.png, [this] {
            libpng_.info = png_create_info_struct(libpng_.png);
            png_init_io(libpng_.png, in_.handle());
            png_read_info(libpng_.png, libpng_.info);
            png_set_expand(libpng_.png);
            png_set_scale_16(libpng_.png);
            png_set_gray_to_rgb(libpng_.png);
            png_set_interlace_handling(libpng_.png);
            png_read_update_info(libpng_.png, libpng_.info);
        });
        if (!done) fail();
        shape(format_of(png_get_channels(libpng_.png, libpng_.info) == 4 ? ZELT_CS_RGBA8888 : ZELT_CS_RGB888),
              static_cast<int>(png_get_image_width(libpng_.png, libpng_.info)),
              static_cast<int>(png_get_image_height(libpng_.png, libpng_.info)));
        about_.pictures = 1;
    }

    bool more() override { return !read_; }

    void read(picture& into) override {
        read_ = true;
        std::vector<png_bytep> rows = rows_of(into);
        png_bytepp first = rows.data();
        if (!attempt(libpng_.png, [&] {
                png_read_image(libpng_.png, first);
                png_read_end(libpng_.png, nullptr);
            }))
            fail();
    }

private:
    [[noreturn]] void fail() { in_.bad(std::string("is no sound PNG file: ") + complaint_.text); }

    handles libpng_;
    complaint complaint_ = {};
    bool read_ = false;
};

}  // namespace

std::unique_ptr<reader> read_png(input in) { return std::make_unique<png_reader>(std::move(in)); }

void encode_png(std::string& to, const picture& pic) {
    to.clear();
    std::vector<png_bytep> rows = rows_of(pic);
    png_bytepp first = rows.data();
    complaint complaint = {};
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &complaint, on_error, on_warning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    const bool done = info && attempt(png, [&] {
                          png_set_write_fn(png, &to, append, nullptr);
                          png_set_IHDR(png, info, static_cast<png_uint_32>(pic.w), static_cast<png_uint_32>(pic.h), 8,
                                       pic.fmt->alpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB,
                                       PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
                          // Only runs are looked for: a fifth of the default's time, and files of photographs are no
                          // larger; those of drawings are.
                          png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_PAETH);
                          png_set_compression_strategy(png, Z_RLE);
                          png_set_compression_level(png, 1);
                          png_write_info(png, info);
                          png_write_image(png, first);
                          png_write_end(png, nullptr);
                      });
    png_destroy_write_struct(&png, &info);
    if (!done) throw failure(status::output_failed, std::string("the PNG file cannot be made: ") + complaint.text);
}

}  // namespace zelt::tool
