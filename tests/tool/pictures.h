#pragma once
// Pictures for the tests: pixels, their layout in each format, the conversion formulas, and PNG files.
#include <cstdint>
#include <random>
#include <string>
#include <vector>

/// Y, U, V or R, G, B, and alpha.
struct pixel {
    int c[4];
};
using pixels = std::vector<pixel>;

/// A format: planes of letters, one for each component of a pixel, `w` for an RGB565 word.
struct layout {
    const char* name;
    bool rgb;
    int bits;
    std::vector<std::string> planes;
    bool alpha() const;
};

const layout& layout_of(const std::string& name);
const std::vector<layout>& layouts();

pixels random_pixels(const layout& of, int count, std::mt19937& random);
std::string pack(const layout& as, const pixels& from);

/// What pixels of one format become in another.
pixels convert(const layout& from, const layout& to, pixels of);

std::string y4m(int w, int h, const std::string& tags, const std::vector<std::string>& frames);
std::string ppm(int w, int h, const std::string& bytes);

/// A PNG file: rows as libpng takes them. A palette of three colours is added where the colour type has one, and
/// `transparent` adds the chunk that makes palette entry 1 or, elsewhere, the value 0 transparent.
std::string png(int w, int h, int colour_type, int depth, bool interlaced, const std::string& rows,
                bool transparent = false);
/// The pixels of a PNG file as bytes RGB or RGBA.
std::string png_pixels(const std::string& bytes, bool alpha);
