// SPDX-License-Identifier: MIT
// The module that draws with cairo.
#include "drawing/file.h"
#include "pictures/failure.h"

#include <cairo-svg.h>
#include <cairo.h>
#include <memory>

namespace zelt::tool {
namespace {

struct release {
    void operator()(cairo_surface_t* s) const { cairo_surface_destroy(s); }
    void operator()(cairo_t* c) const { cairo_destroy(c); }
};
using surface = std::unique_ptr<cairo_surface_t, release>;

/// cairo remembers its first failure, and finish() tells it.
class cairo_canvas : public canvas {
public:
    explicit cairo_canvas(cairo_surface_t* on) : surface_(on), cairo_(cairo_create(on)) {
        cairo_select_font_face(get(), "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
        cairo_set_line_cap(get(), CAIRO_LINE_CAP_ROUND);
        cairo_set_line_join(get(), CAIRO_LINE_JOIN_ROUND);
    }

    void area(const std::vector<point>& corners, const colour& c) override {
        path(corners, c);
        cairo_fill(get());
    }
    void line(const std::vector<point>& through, double width, const colour& c) override {
        path(through, c);
        cairo_set_line_width(get(), width);
        cairo_stroke(get());
    }
    void text(point at, anchor where, double size, const colour& c, const std::string& text) override {
        cairo_set_font_size(get(), size);
        cairo_text_extents_t extents;
        cairo_text_extents(get(), text.c_str(), &extents);
        const double before = where == anchor::start ? 0 : where == anchor::middle ? 0.5 : 1;
        cairo_move_to(get(), at.x - before * extents.x_advance, at.y);
        set(c);
        cairo_show_text(get(), text.c_str());
        cairo_new_path(get());
    }
    void image(point at, int times, const picture& pixels) override {
        const surface source = surface_of(pixels);
        cairo_save(get());
        cairo_translate(get(), at.x, at.y);
        cairo_scale(get(), times, times);
        cairo_set_source_surface(get(), source.get(), 0, 0);
        cairo_pattern_set_filter(cairo_get_source(get()), CAIRO_FILTER_NEAREST);
        cairo_paint(get());
        cairo_restore(get());
    }
    void clip(const box& to) override {
        cairo_reset_clip(get());
        cairo_rectangle(get(), to.x, to.y, to.w, to.h);
        cairo_clip(get());
    }
    void finish() override {
        const cairo_status_t drawn = cairo_status(get());
        cairo_surface_finish(surface_.get());
        for (const cairo_status_t s : {drawn, cairo_surface_status(surface_.get())})
            if (s != CAIRO_STATUS_SUCCESS)
                throw failure(status::output_failed,
                              std::string("the drawing cannot be made: ") + cairo_status_to_string(s));
    }

    static surface surface_of(const picture& pixels) {
        return surface(cairo_image_surface_create_for_data(pixels.row(0, 0), CAIRO_FORMAT_RGB24, pixels.w, pixels.h,
                                                           pixels.stride[0]));
    }

private:
    cairo_t* get() const { return cairo_.get(); }
    void set(const colour& c) { cairo_set_source_rgba(get(), c.r / 255.0, c.g / 255.0, c.b / 255.0, c.alpha); }
    void path(const std::vector<point>& points, const colour& c) {
        for (const point& p : points) cairo_line_to(get(), p.x, p.y);
        set(c);
    }

    surface surface_;
    std::unique_ptr<cairo_t, release> cairo_;
};

cairo_status_t append(void* text, const unsigned char* bytes, unsigned count) {
    static_cast<std::string*>(text)->append(reinterpret_cast<const char*>(bytes), count);
    return CAIRO_STATUS_SUCCESS;
}

}  // namespace
}  // namespace zelt::tool

extern "C" {
zelt::tool::pixels_canvas zelt_canvas_of_pixels;
zelt::tool::svg_canvas zelt_canvas_of_svg;
}

zelt::tool::canvas* zelt_canvas_of_pixels(const zelt::tool::picture& into) {
    return new zelt::tool::cairo_canvas(zelt::tool::cairo_canvas::surface_of(into).release());
}

zelt::tool::canvas* zelt_canvas_of_svg(int w, int h, std::string& into) {
    cairo_surface_t* svg = cairo_svg_surface_create_for_stream(zelt::tool::append, &into, w, h);
    cairo_svg_surface_set_document_unit(svg, CAIRO_SVG_UNIT_PX);
    return new zelt::tool::cairo_canvas(svg);
}
