#include "tool/pictures.h"

#include <algorithm>
#include <cstdlib>
#include <png.h>

namespace {

int floor_div(int a, int b) { return a / b - (a % b < 0); }

int component(char letter) {
    switch (letter) {
    case 'Y':
    case 'R': return 0;
    case 'U':
    case 'G': return 1;
    case 'V':
    case 'B': return 2;
    default: return 3;
    }
}

/// Full-range BT.601 with the documented coefficients, whose unit is 256 for 8 bits and 1024 for 10.
pixel to_rgb(const pixel& p, int bits) {
    const int k = bits == 8 ? 1 : 4, unit = 256 * k, top = (1 << bits) - 1, half = 1 << (bits - 1);
    const int y = p.c[0], d = p.c[1] - half, e = p.c[2] - half;
    const auto clamp = [top](int v) { return std::clamp(v, 0, top); };
    return {{clamp(y + floor_div(359 * k * e + unit / 2, unit)),
             clamp(y - floor_div(k * (88 * d + 183 * e) + unit / 2, unit)),
             clamp(y + floor_div(454 * k * d + unit / 2, unit)), p.c[3]}};
}

pixel to_yuv(const pixel& p, int bits) {
    const int k = bits == 8 ? 1 : 4, unit = 256 * k, half = 1 << (bits - 1);
    const int r = p.c[0], g = p.c[1], b = p.c[2];
    // Only 8-bit chroma is clamped; pure blue and red give 1024 in the 16-bit words.
    const auto chroma = [&](int sum) {
        const int v = half + floor_div(k * sum + unit / 2, unit);
        return bits == 8 ? std::min(v, 255) : v;
    };
    return {{floor_div(k * (77 * r + 150 * g + 29 * b) + unit / 2, unit), chroma(-43 * r - 85 * g + 128 * b),
             chroma(128 * r - 107 * g - 21 * b), p.c[3]}};
}

void take_bytes(png_structp png, png_bytep from, png_size_t count) {
    static_cast<std::string*>(png_get_io_ptr(png))->append(reinterpret_cast<char*>(from), count);
}

}  // namespace

bool layout::alpha() const {
    return std::any_of(planes.begin(), planes.end(), [](const std::string& p) { return p.find('A') != p.npos; });
}

const std::vector<layout>& layouts() {
    static const std::vector<layout> all = {
        {"yuv444", false, 8, {"Y", "U", "V"}},
        {"yuv444a8", false, 8, {"Y", "U", "V", "A"}},
        {"p410", false, 10, {"Y", "U", "V"}},
        {"rgb565", true, 8, {"w"}},
        {"rgb888", true, 8, {"RGB"}},
        {"rgba5658", true, 8, {"wA"}},
        {"rgba8888", true, 8, {"RGBA"}},
        {"bgra8888", true, 8, {"BGRA"}},
        {"argb8888", true, 8, {"ARGB"}},
        {"r8g8b8", true, 8, {"R", "G", "B"}},
        {"r10g10b10", true, 10, {"R", "G", "B"}},
        {"rgb565a8", true, 8, {"w", "A"}},
        {"r8g8b8a8", true, 8, {"R", "G", "B", "A"}},
    };
    return all;
}

const layout& layout_of(const std::string& name) {
    for (const layout& l : layouts())
        if (l.name == name) return l;
    std::abort();
}

pixels random_pixels(const layout& of, int count, std::mt19937& random) {
    const int top = (1 << of.bits) - 1;
    const bool words = of.planes[0][0] == 'w';
    pixels all(static_cast<std::size_t>(count));
    for (pixel& p : all) {
        // Half of the samples lie at an end of the range, where clamping happens.
        for (int& c : p.c) c = random() % 2 ? static_cast<int>(random()) & top : random() % 2 ? top : 0;
        if (words) p.c[0] &= 0xF8, p.c[1] &= 0xFC, p.c[2] &= 0xF8;
    }
    return all;
}

std::string pack(const layout& as, const pixels& from) {
    std::string bytes;
    const auto add = [&](int value, bool wide) {
        bytes += static_cast<char>(value & 255);
        if (wide) bytes += static_cast<char>(value >> 8);
    };
    for (const std::string& plane : as.planes)
        for (const pixel& p : from)
            for (const char letter : plane)
                if (letter == 'w')
                    add(p.c[0] / 8 * 2048 + p.c[1] / 4 * 32 + p.c[2] / 8, true);
                else
                    add(p.c[component(letter)], as.bits > 8);
    return bytes;
}

pixels convert(const layout& from, const layout& to, pixels of) {
    for (pixel& p : of) {
        if (!from.alpha()) p.c[3] = 255;
        if (from.rgb != to.rgb) p = to.rgb ? to_rgb(p, to.bits) : to_yuv(p, to.bits);
    }
    return of;
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
