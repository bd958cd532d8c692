// SPDX-License-Identifier: MIT
/**
 * SECTION:element-zeltconvert
 * @title: zeltconvert
 * @short_description: Converts pictures from one format and size to another
 *
 * Converts the formats that decoders and cameras give to RGB, back, and into one another, and resizes on the way, with
 * the matrix and range of the caps. It has the bytes of libzelt's zelt/video.h (and zelt/csc.h between formats of RGB),
 * on every processor and with any number of threads.
 *
 * A picture of another size is bilinear, and the mean of what each pixel covers below a half of the source's width or
 * height. Chroma is taken to lie as in MPEG-2, H.264 and HEVC. RGB is of full range, its alpha, if it has no source,
 * 255. Interlaced pictures are refused, and YUV keeps its matrix and range on the way to YUV.
 *
 * ## Example launch lines
 * |[
 * gst-launch-1.0 filesrc location=clip.mp4 ! decodebin ! zeltconvert ! pngenc snapshot=true ! filesink location=a.png
 * ]| The first picture of a clip.
 * |[
 * gst-launch-1.0 v4l2src ! zeltconvert n-threads=0 ! video/x-raw,format=RGB16,width=320,height=240 ! fbdevsink
 * ]| A camera on a small screen, with all processors.
 *
 * Since: 1.1
 */
#include "conversion.h"
#include "negotiation.h"

#include <algorithm>
#include <gst/video/gstvideofilter.h>
#include <gst/video/gstvideometa.h>

GST_DEBUG_CATEGORY_STATIC(zelt_convert_debug);
#define GST_CAT_DEFAULT zelt_convert_debug

using namespace zelt::gst;

struct ZeltConvert {
    GstVideoFilter parent;
    conversion convert;    // under the object's lock
    gint chroma;           // likewise
    guint n_threads;       // fixed from READY on
    GstTaskPool* threads;  // null for one
};
struct ZeltConvertClass {
    GstVideoFilterClass parent_class;
};
G_DEFINE_TYPE(ZeltConvert, zelt_convert, GST_TYPE_VIDEO_FILTER)
GST_ELEMENT_REGISTER_DEFINE(zeltconvert, "zeltconvert", GST_RANK_NONE, zelt_convert_get_type())

namespace {

enum { PROP_CHROMA_MODE = 1, PROP_N_THREADS };
constexpr guint most_threads = 64;
constexpr int band_unit = 16;  // rows; bands of a multiple of it are fastest

ZeltConvert* self_of(gpointer object) { return reinterpret_cast<ZeltConvert*>(object); }

void set_property(GObject* object, guint id, const GValue* value, GParamSpec* pspec) {
    ZeltConvert* self = self_of(object);
    GST_OBJECT_LOCK(self);
    switch (id) {
    case PROP_CHROMA_MODE:
        self->chroma = g_value_get_enum(value);
        self->convert.set_chroma(self->chroma);
        break;
    case PROP_N_THREADS: self->n_threads = g_value_get_uint(value); break;
    default: G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, pspec);
    }
    GST_OBJECT_UNLOCK(self);
}

void get_property(GObject* object, guint id, GValue* value, GParamSpec* pspec) {
    ZeltConvert* self = self_of(object);
    GST_OBJECT_LOCK(self);
    switch (id) {
    case PROP_CHROMA_MODE: g_value_set_enum(value, self->chroma); break;
    case PROP_N_THREADS: g_value_set_uint(value, self->n_threads); break;
    default: G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, pspec);
    }
    GST_OBJECT_UNLOCK(self);
}

// ------------------------------------------------------------------------------------------------------ threads

gboolean start(GstBaseTransform* trans) {
    ZeltConvert* self = self_of(trans);
    const guint n = std::min(self->n_threads ? self->n_threads : g_get_num_processors(), most_threads);
    if (n < 2) return TRUE;
    self->threads = gst_shared_task_pool_new();
    gst_shared_task_pool_set_max_threads(GST_SHARED_TASK_POOL(self->threads), n - 1);  // beside the stream's own
    GError* error = nullptr;
    gst_task_pool_prepare(self->threads, &error);
    if (!error) return TRUE;
    GST_ELEMENT_ERROR(self, RESOURCE, FAILED, ("No threads: %s", error->message), (nullptr));
    g_error_free(error);
    gst_clear_object(&self->threads);
    return FALSE;
}

gboolean stop(GstBaseTransform* trans) {
    ZeltConvert* self = self_of(trans);
    if (self->threads) gst_task_pool_cleanup(self->threads);
    gst_clear_object(&self->threads);
    return TRUE;
}

struct band {
    const conversion* convert;
    const GstVideoFrame* src;
    GstVideoFrame* dst;
    int y, rows;
    gpointer task;
};

void convert_band(gpointer data) {
    const band& b = *static_cast<const band*>(data);
    b.convert->convert(*b.src, *b.dst, b.y, b.rows);
}

GstFlowReturn transform_frame(GstVideoFilter* filter, GstVideoFrame* src, GstVideoFrame* dst) {
    ZeltConvert* self = self_of(filter);
    GST_OBJECT_LOCK(self);
    const conversion convert = self->convert;
    GST_OBJECT_UNLOCK(self);

    const int h = GST_VIDEO_FRAME_HEIGHT(dst);
    int rows = h;
    if (self->threads && convert.has_bands()) {
        const int n = 1 + static_cast<int>(gst_shared_task_pool_get_max_threads(GST_SHARED_TASK_POOL(self->threads)));
        rows = ((h + n - 1) / n + band_unit - 1) / band_unit * band_unit;
    }
    band bands[most_threads];
    int count = 0;
    for (int y = 0; y < h; y += rows) bands[count++] = {&convert, src, dst, y, std::min(rows, h - y), nullptr};
    for (band* b = bands + 1; b < bands + count; ++b) {
        b->task = gst_task_pool_push(self->threads, convert_band, b, nullptr);
        if (!b->task) convert_band(b);
    }
    convert_band(bands);
    for (const band* b = bands + 1; b < bands + count; ++b)
        if (b->task) gst_task_pool_join(self->threads, b->task);
    return GST_FLOW_OK;
}

// -------------------------------------------------------------------------------------------------- negotiation

GstCaps* transform_caps(GstBaseTransform* trans, GstPadDirection direction, GstCaps* caps, GstCaps* filter) {
    GstCaps* result = other_caps(direction, caps);
    if (filter) gst_caps_take(&result, gst_caps_intersect_full(filter, result, GST_CAPS_INTERSECT_FIRST));
    GST_DEBUG_OBJECT(trans, "%" GST_PTR_FORMAT " on one side, %" GST_PTR_FORMAT " on the other", caps, result);
    return result;
}

GstCaps* fixate_caps(GstBaseTransform* trans, GstPadDirection direction, GstCaps* caps, GstCaps* others) {
    GstCaps* result = best_caps(direction, caps, others);
    GST_DEBUG_OBJECT(trans, "%" GST_PTR_FORMAT " becomes %" GST_PTR_FORMAT, caps, result);
    return result;
}

gboolean set_info(GstVideoFilter* filter, GstCaps* in_caps, GstVideoInfo*, GstCaps* out_caps, GstVideoInfo*) {
    GstVideoInfo in, out;
    if (!read(in, in_caps) || !read(out, out_caps)) return FALSE;
    if (is_same_picture(in, out)) {
        gst_base_transform_set_passthrough(GST_BASE_TRANSFORM(filter), TRUE);
        return TRUE;
    }
    ZeltConvert* self = self_of(filter);
    GST_OBJECT_LOCK(self);
    const char* reason = self->convert.prepare(in, out);
    GST_OBJECT_UNLOCK(self);
    if (reason)
        GST_ELEMENT_ERROR(self, STREAM, FORMAT, ("%s", reason),
                          ("from %" GST_PTR_FORMAT " to %" GST_PTR_FORMAT, in_caps, out_caps));
    return !reason;
}

/// Tells what is wrong with caps of which nothing can be made for what follows: they never come to set_info().
void explain(GstBaseTransform* trans, GstCaps* caps) {
    GstCaps* possible = other_caps(GST_PAD_SINK, caps);
    GstCaps* allowed = gst_pad_peer_query_caps(GST_BASE_TRANSFORM_SRC_PAD(trans), possible);
    GstVideoInfo info;
    if (gst_caps_is_empty(allowed)) {
        const char* reason = read(info, caps) ? refusal(info) : nullptr;
        char* list = format_list(possible);
        if (reason)
            GST_ELEMENT_ERROR(trans, STREAM, FORMAT, ("%s", reason), ("%" GST_PTR_FORMAT, caps));
        else
            GST_ELEMENT_ERROR(trans, STREAM, FORMAT,
                              ("What follows takes nothing that %" GST_PTR_FORMAT " can become: %s", caps, list),
                              ("YUV keeps its matrix and range on the way to YUV, and only the matrices of BT.601, "
                               "BT.709 and BT.2020 are converted to RGB"));
        g_free(list);
    }
    gst_caps_unref(allowed);
    gst_caps_unref(possible);
}

gboolean sink_event(GstBaseTransform* trans, GstEvent* event) {
    GstCaps* caps = nullptr;
    if (GST_EVENT_TYPE(event) == GST_EVENT_CAPS) {
        gst_event_parse_caps(event, &caps);
        gst_caps_ref(caps);
    }
    const gboolean done = GST_BASE_TRANSFORM_CLASS(zelt_convert_parent_class)->sink_event(trans, event);
    if (caps && !done) explain(trans, caps);
    gst_clear_caps(&caps);
    return done;
}

// ----------------------------------------------------------------------------------------------------- metadata

/// A region to crop to would be asked for upstream in the wrong size.
gboolean filter_meta(GstBaseTransform*, GstQuery*, GType api, const GstStructure*) {
    return api != GST_VIDEO_CROP_META_API_TYPE;
}

/// What speaks of the picture stays with it, in its new size; what speaks of its memory or its colours does not.
gboolean transform_meta(GstBaseTransform* trans, GstBuffer* out, GstMeta* meta, GstBuffer* in) {
    static const char* const kept[] = {GST_META_TAG_VIDEO_STR, GST_META_TAG_VIDEO_ORIENTATION_STR,
                                       GST_META_TAG_VIDEO_SIZE_STR, nullptr};
    const gchar* const* tags = gst_meta_api_type_get_tags(meta->info->api);
    for (; tags && *tags; ++tags)
        if (!g_strv_contains(kept, *tags))
            return GST_BASE_TRANSFORM_CLASS(zelt_convert_parent_class)->transform_meta(trans, out, meta, in);
    if (!gst_meta_api_type_has_tag(meta->info->api, g_quark_from_static_string(GST_META_TAG_VIDEO_SIZE_STR)))
        return TRUE;
    GstVideoFilter* filter = GST_VIDEO_FILTER(trans);
    GstVideoMetaTransform sizes = {&filter->in_info, &filter->out_info};
    const auto scale = meta->info->transform_func;
    if (scale) scale(out, meta, in, gst_video_meta_transform_scale_get_quark(), &sizes);
    return FALSE;  // it is there already
}

void add_template(GstElementClass* element, const char* name, GstPadDirection direction) {
    GstCaps* caps = template_caps();
    gst_element_class_add_pad_template(element, gst_pad_template_new(name, direction, GST_PAD_ALWAYS, caps));
    gst_caps_unref(caps);
}

}  // namespace

static void zelt_convert_class_init(ZeltConvertClass* klass) {
    GST_DEBUG_CATEGORY_INIT(zelt_convert_debug, "zeltconvert", 0, "conversion of pictures");

    static const GEnumValue chroma_modes[] = {
        {ZELT_VIDEO_SMOOTH, "Bilinear between the places of its samples", "smooth"},
        {ZELT_VIDEO_REPLICATED, "Each sample for all pixels that share it", "replicate"},
        {},
    };
    const GType chroma_mode = g_enum_register_static("ZeltConvertChromaMode", chroma_modes);
    gst_type_mark_as_plugin_api(chroma_mode, GstPluginAPIFlags(0));

    GObjectClass* object = G_OBJECT_CLASS(klass);
    object->set_property = set_property;
    object->get_property = get_property;
    const auto flags = GParamFlags(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
    g_object_class_install_property(
        object, PROP_CHROMA_MODE,
        g_param_spec_enum("chroma-mode", "Chroma mode", "How pixels that share chroma get more of it, at the same size",
                          chroma_mode, ZELT_VIDEO_SMOOTH, GParamFlags(flags | GST_PARAM_MUTABLE_PLAYING)));
    g_object_class_install_property(object, PROP_N_THREADS,
                                    g_param_spec_uint("n-threads", "Threads",
                                                      "How many threads share a picture (0 = one per processor)", 0,
                                                      most_threads, 1, GParamFlags(flags | GST_PARAM_MUTABLE_READY)));

    GstElementClass* element = GST_ELEMENT_CLASS(klass);
    gst_element_class_set_static_metadata(
        element, "libzelt picture converter", "Filter/Converter/Video/Scaler/Colorspace",
        "Converts pictures from one format and size to another, exactly and fast", "libzelt's maintainers");
    add_template(element, "sink", GST_PAD_SINK);
    add_template(element, "src", GST_PAD_SRC);

    GstBaseTransformClass* trans = GST_BASE_TRANSFORM_CLASS(klass);
    trans->start = start;
    trans->stop = stop;
    trans->transform_caps = transform_caps;
    trans->fixate_caps = fixate_caps;
    trans->sink_event = sink_event;
    trans->filter_meta = filter_meta;
    trans->transform_meta = transform_meta;
    trans->passthrough_on_same_caps = TRUE;
    GST_VIDEO_FILTER_CLASS(klass)->set_info = set_info;
    GST_VIDEO_FILTER_CLASS(klass)->transform_frame = transform_frame;
}

static void zelt_convert_init(ZeltConvert* self) {
    self->convert = {};
    self->n_threads = 1;
    self->chroma = ZELT_VIDEO_SMOOTH;
    self->convert.set_chroma(self->chroma);
}

static gboolean plugin_init(GstPlugin* plugin) { return GST_ELEMENT_REGISTER(zeltconvert, plugin); }

#define PACKAGE "libzelt"
GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, zelt, "libzelt's conversion of pictures", plugin_init,
                  ZELT_VERSION, "MIT/X11", PACKAGE, PACKAGE)
