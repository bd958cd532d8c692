// SPDX-License-Identifier: MIT
#include "tool/pictures.h"

#include "kernels/converters.h"
#include "kernels/resize.h"
#include "kernels/video.h"

#include <algorithm>
#include <numeric>
#include <png.h>
#include <random>

using namespace zelt::test;

namespace {

/// Starts of the planes of a raw picture
std::array<u8*, 4> planes_of(const layout& format, std::string& picture, std::size_t pixels) {
    std::array<u8*, 4> planes = {};
    std::size_t at = 0;
    for (std::size_t i = 0; i < format.bytes.size(); ++i) {
        planes[i] = reinterpret_cast<u8*>(picture.data()) + at;
        at += pixels * static_cast<std::size_t>(format.bytes[i]);
    }
    return planes;
}

void take_bytes(png_structp png, png_bytep from, png_size_t count) {
    static_cast<std::string*>(png_get_io_ptr(png))->append(reinterpret_cast<char*>(from), count);
}

}  // namespace

std::string random_bytes(int count, unsigned seed) {
    std::mt19937 random(seed);
    std::string bytes(static_cast<std::size_t>(count), '\0');
    for (char& c : bytes) c = static_cast<char>(random());
    return bytes;
}

int pixel_bytes(const std::string& format) {
    const std::vector<int>& planes = layout_of(format).bytes;
    return std::accumulate(planes.begin(), planes.end(), 0);
}

std::string converted(const std::string& from, const std::string& to, std::string picture) {
    if (from == to) return picture;
    const layout &in = layout_of(from), &out = layout_of(to);
    const std::size_t pixels = picture.size() / static_cast<std::size_t>(pixel_bytes(from));
    std::string result(pixels * static_cast<std::size_t>(pixel_bytes(to)), '\0');
    std::array<u8*, 4> src = planes_of(in, picture, pixels), dst = planes_of(out, result, pixels);
    for (std::size_t n = 0; n < pixels; ++n) {
        components c = in.read(src.data());
        if (in.yuv != out.yuv) c = in.yuv ? rgb_of(c) : yuv_of(c);
        out.write(dst.data(), c);
        for (std::size_t i = 0; i < in.bytes.size(); ++i) src[i] += in.bytes[i];
        for (std::size_t i = 0; i < out.bytes.size(); ++i) dst[i] += out.bytes[i];
    }
    return result;
}

std::string resized(int bytes, std::string plane, shape from, shape to) {
    static constexpr std::size_t models[] = {0, 0, 3, 1, 4};  // of pixels of so many bytes
    std::string result(static_cast<std::size_t>(to.w * to.h * bytes), '\0');
    model_picture(resizers[models[bytes]], {reinterpret_cast<u8*>(plane.data()), from.w * bytes}, from,
                  {reinterpret_cast<u8*>(result.data()), to.w * bytes}, to);
    return result;
}

std::string resized(const std::string& format, const std::string& picture, shape from, shape to) {
    std::string result;
    std::size_t at = 0;
    for (const int bytes : layout_of(format).bytes) {
        const std::size_t size = static_cast<std::size_t>(from.w * from.h * bytes);
        result += resized(bytes, picture.substr(at, size), from, to);
        at += size;
    }
    return result;
}

std::string by_video(int src_cs, int dst_cs, const meaning& how, std::string picture, shape size) {
    ZELT_VIDEO request = {};
    request.src_cs = src_cs, request.dst_cs = dst_cs;
    request.matrix = how.matrix, request.range = how.range, request.chroma = how.chroma;
    const auto named = [](int cs) -> const video_format& {
        return *std::ranges::find(video_formats(), cs, &video_format::cs);
    };
    const video_format &from = named(src_cs), &to = named(dst_cs);
    std::vector<view> planes;
    std::size_t at = 0;
    const auto add_planes = [&](const video_format& f, std::string& bytes) {
        for (const operand& plane : f.operands(size, false)) {
            if (&bytes != &picture) bytes.resize(at + static_cast<std::size_t>(plane.width * plane.rows));
            planes.push_back({reinterpret_cast<u8*>(bytes.data()) + at, plane.width});
            at += static_cast<std::size_t>(plane.width * plane.rows);
        }
    };
    std::string result;
    result.reserve(static_cast<std::size_t>(size.w * size.h * 8 + 64));  // so that planes stay where they are
    add_planes(from, picture);
    at = 0;
    add_planes(to, result);
    model_video(request, from, to, size, planes.data());
    return result;
}

std::string y4m(int w, int h, const std::string& tags, const std::vector<std::string>& frames) {
    std::string bytes = "YUV4MPEG2 W" + std::to_string(w) + " H" + std::to_string(h) + " " + tags + "\n";
    for (const std::string& frame : frames) bytes += "FRAME\n" + frame;
    return bytes;
}

std::string ppm(int w, int h, const std::string& bytes) {
    return "P6\n" + std::to_string(w) + " " + std::to_string(h) + "\n255\n" + bytes;
}

std::string png(int w, int h, int colour_type, int depth, bool interlaced, const std::string& rows, bool transparent) {
    std::string bytes;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &bytes, take_bytes, nullptr);
    png_set_IHDR(png, info, static_cast<png_uint_32>(w), static_cast<png_uint_32>(h), depth, colour_type,
                 interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    const png_color palette[] = {{1, 2, 3}, {40, 50, 60}, {255, 254, 253}};
    if (colour_type == PNG_COLOR_TYPE_PALETTE) png_set_PLTE(png, info, palette, 3);
    const png_byte see_through[] = {255, 7};
    const png_color_16 black = {};
    if (transparent) png_set_tRNS(png, info, see_through, 2, &black);
    png_write_info(png, info);
    const std::size_t stride = rows.size() / static_cast<std::size_t>(h);
    std::vector<png_bytep> starts;
    for (std::size_t y = 0; y < static_cast<std::size_t>(h); ++y)
        starts.push_back(reinterpret_cast<png_bytep>(const_cast<char*>(rows.data() + y * stride)));
    png_write_image(png, starts.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return bytes;
}

std::string png_pixels(const std::string& bytes, bool alpha) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&image, bytes.data(), bytes.size())) return "unreadable";
    if (((image.format & PNG_FORMAT_FLAG_ALPHA) != 0) != alpha) return "other kind of PNG";
    image.format = alpha ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    std::string out(PNG_IMAGE_SIZE(image), 0);
    png_image_finish_read(&image, nullptr, out.data(), 0, nullptr);
    return out;
}
