// SPDX-License-Identifier: MIT
#include "drawing/file.h"

#include "pictures/failure.h"
#include "pictures/module.h"
#include "pictures/writer.h"
#include "repack.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <memory>

namespace zelt::tool {
namespace {

template <class F> F* drawing_function(const char* name) {
    return reinterpret_cast<F*>(module_function("zelt_drawing", name, "drawing needs cairo: install libcairo2-dev"));
}

std::string extension(const std::string& path) {
    std::string text = std::filesystem::path(path).extension();
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

void draw(const drawing& d, canvas* created) {
    const std::unique_ptr<canvas> on(created);
    d.draw(*on);
    on->finish();
}

}  // namespace

picture rendered(const drawing& d) {
    constexpr int most = 32767;  // cairo's
    if (d.w > most || d.h > most)
        throw failure(status::unsupported, "the drawing takes " + std::to_string(d.w) + "x" + std::to_string(d.h) +
                                               " pixels: " + std::to_string(most) + " each way are the most");
    const picture pixels(format_of(ZELT_CS_BGRA8888), d.w, d.h);
    draw(d, drawing_function<pixels_canvas>("zelt_canvas_of_pixels")(pixels));
    picture rgb(format_of(ZELT_CS_RGB888), d.w, d.h);
    repack(pixels, rgb);
    return rgb;
}

bool is_svg(const std::string& path) { return extension(path) == ".svg"; }

void check_drawing(const std::string& path, bool svg) {
    const std::string kind = extension(path);
    if (kind != ".png" && kind != ".ppm" && !(svg && kind == ".svg"))
        throw failure(status::wrong_use, std::string("this is drawn to ") + (svg ? ".svg, " : "") +
                                             ".png or .ppm files, and '" + path + "' is none");
    drawing_function<pixels_canvas>("zelt_canvas_of_pixels");
}

void write_drawing(const std::string& path, const drawing& d) {
    if (is_svg(path)) {
        std::string text;
        draw(d, drawing_function<svg_canvas>("zelt_canvas_of_svg")(d.w, d.h, text));
        output out(path);
        out.write(text);
        out.close();
        out.commit();
        out.keep();
        return;
    }
    const picture pixels = rendered(d);
    clip about;
    about.fmt = pixels.fmt, about.w = pixels.w, about.h = pixels.h;
    writer out(kind_of_output("", path), path, about);
    out.write(pixels, false);
    out.finish();
}

}  // namespace zelt::tool
