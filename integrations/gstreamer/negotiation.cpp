// SPDX-License-Identifier: MIT
#include "negotiation.h"

#include "conversion.h"

#include <algorithm>
#include <bitset>
#include <cmath>

namespace zelt::gst {
namespace {

using format_set = std::bitset<formats.size()>;

bool has_string(const GValue* value, const char* text) {
    if (G_VALUE_HOLDS_STRING(value)) return g_str_equal(g_value_get_string(value), text);
    if (GST_VALUE_HOLDS_LIST(value))
        for (guint i = 0; i < gst_value_list_get_size(value); ++i)
            if (has_string(gst_value_list_get_value(value, i), text)) return true;
    return false;
}

format_set formats_of(const GstStructure* s) {
    const GValue* value = gst_structure_get_value(s, "format");
    format_set set;
    for (size_t i = 0; i < formats.size(); ++i)
        set[i] = !value || has_string(value, gst_video_format_to_string(formats[i].gst));
    return set;
}

bool may_be_progressive(const GstStructure* s) {
    const GValue* value = gst_structure_get_value(s, "interlace-mode");
    return !value || has_string(value, "progressive");
}

/// False if all YUV that it can be has another matrix
bool may_have_matrix(const GValue* colorimetry) {
    if (!colorimetry) return true;
    if (GST_VALUE_HOLDS_LIST(colorimetry)) {
        for (guint i = 0; i < gst_value_list_get_size(colorimetry); ++i)
            if (may_have_matrix(gst_value_list_get_value(colorimetry, i))) return true;
        return false;
    }
    GstVideoColorimetry parsed;
    if (!G_VALUE_HOLDS_STRING(colorimetry)) return false;
    if (!gst_video_colorimetry_from_string(&parsed, g_value_get_string(colorimetry))) return false;
    return parsed.matrix == GST_VIDEO_COLOR_MATRIX_UNKNOWN || has_matrix(parsed);
}

void set_formats(GstStructure* s, format_set set) {
    GValue list = G_VALUE_INIT;
    gst_value_list_init(&list, static_cast<guint>(set.count()));
    for (size_t i = 0; i < formats.size(); ++i)
        if (set[i]) {
            GValue name = G_VALUE_INIT;
            g_value_init(&name, G_TYPE_STRING);
            g_value_set_static_string(&name, gst_video_format_to_string(formats[i].gst));
            gst_value_list_append_and_take_value(&list, &name);
        }
    if (set.count() == 1)
        gst_structure_set_value(s, "format", gst_value_list_get_value(&list, 0));
    else
        gst_structure_set_value(s, "format", &list);
    g_value_unset(&list);
}

/// Adds `s`, which it takes, with these formats.
void add(GstCaps* caps, GstStructure* s, format_set set) {
    if (set.none()) return gst_structure_free(s);
    set_formats(s, set);
    gst_caps_append_structure(caps, s);
}

/// Adds what the other pad can have of RGB, or of YUV and grey, for those formats of s that are of one of the two.
void add_family(GstCaps* caps, GstPadDirection direction, const GstStructure* s, bool rgb, bool other_rgb) {
    const format_set given = formats_of(s);
    format_set same, any;
    for (size_t i = 0; i < formats.size(); ++i)
        for (size_t j = 0; given[i] && is_rgb(formats[i].gst) == rgb && j < formats.size(); ++j) {
            if (is_rgb(formats[j].gst) != other_rgb) continue;
            const reach r =
                direction == GST_PAD_SINK ? reach_of(formats[i], formats[j]) : reach_of(formats[j], formats[i]);
            same[j] = same[j] || r == reach::same_size;
            any[j] = any[j] || r == reach::any_size;
        }
    for (const bool resized : {true, false}) {
        GstStructure* other = gst_structure_copy(s);
        if (gst_structure_has_field(other, "interlace-mode"))
            gst_structure_set(other, "interlace-mode", G_TYPE_STRING, "progressive", nullptr);
        gst_structure_remove_field(other, "chroma-site");
        if (rgb != other_rgb) gst_structure_remove_field(other, "colorimetry");
        if (resized) {
            gst_structure_set(other, "width", GST_TYPE_INT_RANGE, 1, G_MAXINT, "height", GST_TYPE_INT_RANGE, 1,
                              G_MAXINT, nullptr);
            gst_structure_remove_field(other, "pixel-aspect-ratio");
        }
        add(caps, other, resized ? any : same & ~any);
    }
}

/// What a picture loses: the smaller the better
int loss(const GstVideoFormatInfo* from, const GstVideoFormatInfo* to) {
    int sum = 0;
    if (GST_VIDEO_FORMAT_INFO_IS_GRAY(to) && !GST_VIDEO_FORMAT_INFO_IS_GRAY(from)) sum += 32;
    if (GST_VIDEO_FORMAT_INFO_DEPTH(from, 0) > GST_VIDEO_FORMAT_INFO_DEPTH(to, 0)) sum += 16;
    if (GST_VIDEO_FORMAT_INFO_HAS_ALPHA(from) && !GST_VIDEO_FORMAT_INFO_HAS_ALPHA(to)) sum += 8;
    if (!GST_VIDEO_FORMAT_INFO_IS_GRAY(from)) {
        if (GST_VIDEO_FORMAT_INFO_W_SUB(from, 1) < GST_VIDEO_FORMAT_INFO_W_SUB(to, 1)) sum += 4;
        if (GST_VIDEO_FORMAT_INFO_H_SUB(from, 1) < GST_VIDEO_FORMAT_INFO_H_SUB(to, 1)) sum += 4;
    }
    if (GST_VIDEO_FORMAT_INFO_IS_RGB(from) != GST_VIDEO_FORMAT_INFO_IS_RGB(to)) sum += 2;
    if (!GST_VIDEO_FORMAT_INFO_HAS_ALPHA(from) && GST_VIDEO_FORMAT_INFO_HAS_ALPHA(to)) sum += 1;
    return sum;
}

/// The structure of caps with the format that loses least, as a copy
GstStructure* least_loss(const GstCaps* caps, GstVideoFormat from) {
    const GstVideoFormatInfo* info = gst_video_format_get_info(from);
    const GstStructure* best = nullptr;
    size_t format = 0;
    for (guint i = 0; i < gst_caps_get_size(caps); ++i) {
        const GstStructure* s = gst_caps_get_structure(caps, i);
        const format_set set = formats_of(s);
        const auto loss_of = [&](size_t f) { return loss(info, gst_video_format_get_info(formats[f].gst)); };
        for (size_t f = 0; f < formats.size(); ++f)
            if (set[f] && (!best || loss_of(f) < loss_of(format))) best = s, format = f;
    }
    if (!best) return nullptr;
    GstStructure* copy = gst_structure_copy(best);
    gst_structure_set(copy, "format", G_TYPE_STRING, gst_video_format_to_string(formats[format].gst), nullptr);
    return copy;
}

int nearest(GstStructure* s, const char* field, double wanted) {
    int value = static_cast<int>(std::lround(std::clamp(wanted, 1.0, 1e9)));
    gst_structure_fixate_field_nearest_int(s, field, value);
    gst_structure_get_int(s, field, &value);
    return value;
}

/// Fixes width, height and the shape of pixels so that the picture keeps its proportions, as far as it may.
void fix_size(GstStructure* s, const GstVideoInfo& of) {
    static const char field[] = "pixel-aspect-ratio";
    int n = of.par_n, d = of.par_d;
    const GValue* par = gst_structure_get_value(s, field);
    const bool fixed = par && GST_VALUE_HOLDS_FRACTION(par);
    if (fixed) n = gst_value_get_fraction_numerator(par), d = gst_value_get_fraction_denominator(par);
    const double shape = 1.0 * of.width * of.par_n * d / (1.0 * of.height * of.par_d * n);  // width per height

    GstStructure* trial = gst_structure_copy(s);
    double h = nearest(trial, "height", of.height);
    const int limited = nearest(trial, "width", h * shape);
    gst_structure_free(trial);
    if (std::abs(limited - h * shape) > 1) h = limited / shape;
    h = nearest(s, "height", h);
    const int w = nearest(s, "width", h * shape);

    if (fixed) return;
    if (std::abs(w - h * shape) > 1)
        gst_util_fraction_multiply(n, d, of.width, w, &n, &d) &&
            gst_util_fraction_multiply(n, d, static_cast<int>(h), of.height, &n, &d);
    if (par)
        gst_structure_fixate_field_nearest_fraction(s, field, n, d);
    else if (n != d)
        gst_structure_set(s, field, GST_TYPE_FRACTION, n, d, nullptr);
}

/// Says which colours the picture has now: its own, or in the other family what is usual there for the size.
void fix_colours(GstStructure* s, const GstStructure* caps, const GstVideoInfo& of) {
    const GstVideoFormat from = GST_VIDEO_INFO_FORMAT(&of);
    const GstVideoFormat to = gst_video_format_from_string(gst_structure_get_string(s, "format"));
    GstVideoColorimetry colours = of.colorimetry;
    if (is_rgb(from) != is_rgb(to)) {
        GstVideoInfo usual;
        int w = 0, h = 0;
        gst_structure_get(s, "width", G_TYPE_INT, &w, "height", G_TYPE_INT, &h, nullptr);
        if (!gst_video_info_set_format(&usual, to, static_cast<guint>(w), static_cast<guint>(h))) return;
        colours.range = usual.colorimetry.range;
        colours.matrix = usual.colorimetry.matrix;
    }
    char* text = gst_video_colorimetry_to_string(&colours);
    if (text && gst_structure_has_field(s, "colorimetry"))
        gst_structure_fixate_field_string(s, "colorimetry", text);
    else if (text)
        gst_structure_set(s, "colorimetry", G_TYPE_STRING, text, nullptr);
    g_free(text);

    const GstVideoFormatInfo *a = gst_video_format_get_info(from), *b = gst_video_format_get_info(to);
    const GValue* site = gst_structure_get_value(caps, "chroma-site");
    if (site && !is_rgb(to) && a->w_sub[1] == b->w_sub[1] && a->h_sub[1] == b->h_sub[1] &&
        !gst_structure_has_field(s, "chroma-site"))
        gst_structure_set_value(s, "chroma-site", site);
}

}  // namespace

GstCaps* other_caps(GstPadDirection direction, const GstCaps* caps) {
    GstCaps* result = gst_caps_new_empty();
    for (guint i = 0; i < gst_caps_get_size(caps); ++i) {
        const GstCapsFeatures* features = gst_caps_get_features(caps, i);
        if (features && !gst_caps_features_is_equal(features, GST_CAPS_FEATURES_MEMORY_SYSTEM_MEMORY)) continue;
        const GstStructure* s = gst_caps_get_structure(caps, i);
        add(result, gst_structure_copy(s), formats_of(s));  // passed through
        if (!may_be_progressive(s)) continue;
        for (const bool rgb : {false, true})
            for (const bool other_rgb : {false, true})
                if (rgb || !other_rgb || may_have_matrix(gst_structure_get_value(s, "colorimetry")))
                    add_family(result, direction, s, rgb, other_rgb);
    }
    return result;
}

GstCaps* best_caps(GstPadDirection direction, GstCaps* caps, GstCaps* others) {
    GstCaps* same = gst_caps_intersect(others, caps);
    GstVideoInfo info;
    GstStructure* best = nullptr;
    if (gst_caps_is_empty(same) && read(info, caps)) best = least_loss(others, GST_VIDEO_INFO_FORMAT(&info));
    if (best) {
        fix_size(best, info);
        if (direction == GST_PAD_SINK) fix_colours(best, gst_caps_get_structure(caps, 0), info);
        gst_caps_take(&same, gst_caps_new_full(best, nullptr));
    } else if (gst_caps_is_empty(same)) {
        gst_caps_replace(&same, others);
    }
    gst_caps_unref(others);
    return gst_caps_fixate(same);
}

GstCaps* template_caps() {
    GstCaps* caps = gst_caps_from_string(GST_VIDEO_CAPS_MAKE("{}"));
    set_formats(gst_caps_get_structure(caps, 0), ~format_set{});
    return caps;
}

char* format_list(const GstCaps* caps) {
    format_set set;
    for (guint i = 0; i < gst_caps_get_size(caps); ++i) set |= formats_of(gst_caps_get_structure(caps, i));
    GString* text = g_string_new(nullptr);
    for (size_t i = 0; i < formats.size(); ++i)
        if (set[i])
            g_string_append_printf(text, "%s%s", text->len ? ", " : "", gst_video_format_to_string(formats[i].gst));
    return g_string_free(text, FALSE);
}

}  // namespace zelt::gst
