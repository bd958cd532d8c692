// The exports: every converter of the table, and the one whose byte order depends on an argument.
#include "csc/convert.h"

#include "csc/converters.h"
#include "zelt/csc.h"

using namespace zelt::csc;

#define CONVERTER(name, source, matrix, dest)                                                             \
    void zelt_csc_##name(void* const* src_a, int32_t src_w, int32_t src_h, const int32_t* src_s, int32_t, \
                         void* const* dst_a, int32_t, int32_t, const int32_t* dst_s, int32_t) {           \
        convert<source, matrix, dest>(src_a, src_w, src_h, src_s, dst_a, dst_s);                          \
    }
ZELT_CONVERTERS(CONVERTER)

void zelt_csc_yuv444_to_rgba8888(void* const* src_a, int32_t src_w, int32_t src_h, const int32_t* src_s, int32_t,
                                 void* const* dst_a, int32_t, int32_t, const int32_t* dst_s, int32_t dst_cs) {
    // Kept: every colour space from ARGB8888 up, not ARGB8888 alone, puts alpha first.
    const auto form =
        dst_cs >= ZELT_CS_ARGB8888 ? convert<planar<3>, to_rgb, argb8888_packed> : convert<planar<3>, to_rgb, rgba8888>;
    form(src_a, src_w, src_h, src_s, dst_a, dst_s);
}
