// SPDX-License-Identifier: MIT
#pragma once
// Pictures for the tests: random samples, what the models of the kernels make of them, and files.
#include "kernels/kernel.h"
#include "zelt/video.h"

#include <string>
#include <vector>

using zelt::test::shape;

std::string random_bytes(int count, unsigned seed);

/// Bytes of a pixel in all planes together
int pixel_bytes(const std::string& format);

/// A raw picture in another format.
std::string converted(const std::string& from, const std::string& to, std::string picture);

/// A raw picture, or a plane whose pixels have so many bytes, at another size.
std::string resized(const std::string& format, const std::string& picture, shape from, shape to);
std::string resized(int bytes, std::string plane, shape from, shape to);

/// What zelt/video.h is documented to give of a raw picture of one of its formats
struct meaning {
    int matrix, range, chroma;
};
std::string by_video(int src_cs, int dst_cs, const meaning& how, std::string picture, shape size);

std::string y4m(int w, int h, const std::string& tags, const std::vector<std::string>& frames);
std::string ppm(int w, int h, const std::string& bytes);

/// A PNG file: rows as libpng takes them. A palette of three colours is added where the colour type has one, and
/// `transparent` adds the chunk that makes palette entry 1 or, elsewhere, the value 0 transparent.
std::string png(int w, int h, int colour_type, int depth, bool interlaced, const std::string& rows,
                bool transparent = false);
/// The pixels of a PNG file as bytes RGB or RGBA.
std::string png_pixels(const std::string& bytes, bool alpha);
