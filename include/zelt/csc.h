// SPDX-License-Identifier: MIT
/** @defgroup zelt_csc Colour conversion (zelt/csc.h)
 *  Colour conversion: YUV and RGB pictures, planar and packed, and the dispatch that finds a converter for a pair.
 *  @{ */
#ifndef ZELT_CSC_H
#define ZELT_CSC_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** A converter, see the functions below for the arguments. */
typedef void (*zelt_csc_fn)(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s, int32_t src_cs,
                            void *const *dst_a, int32_t dst_w, int32_t dst_h, const int32_t *dst_s, int32_t dst_cs);

/** Finds the converter from one size and colour space to another. Ask once, convert many pictures. Any thread. For
 *  ZELT_CS_R8G8B8A8 to ZELT_CS_RGBA5658 it answers with zelt_csc_r8g8b8a8_to_rgba8888, which writes four bytes a
 *  pixel; call zelt_csc_r8g8b8a8_to_rgba5658 directly for three.
 *  @param src_w   source width in pixels
 *  @param src_h   source height in rows
 *  @param src_cs  source colour space
 *  @param dst_w   destination width in pixels
 *  @param dst_h   destination height in rows
 *  @param dst_cs  destination colour space
 *  @param err     where ZELT_ERR_UNSUPPORTED goes when there is none, or null; not written on success
 *  @return        the converter, or null */
ZELT_API zelt_csc_fn zelt_imgp_get_fn_csc(int32_t src_w, int32_t src_h, int32_t src_cs, int32_t dst_w, int32_t dst_h,
                                          int32_t dst_cs, int32_t *err);

/** Converters to RGB, null where there is none: [sizes differ][source][destination], sources 600, 700, 13, 43, 62,
 *  603, destinations 400, 500, 200, 430, 650, 502, 501, 401, 600, (unused), 603. */
extern ZELT_API const zelt_csc_fn zelt_tbl_fn_csc_to_rgb[2 * 6 * 11];

/** Converters to planar YUV, null where there is none: [sizes differ][source][destination], sources 600, (unused), 13,
 *  43, 200, 603, 400, 500, destinations 13, 43, 62. */
extern ZELT_API const zelt_csc_fn zelt_tbl_fn_csc_to_yuvplanar[2 * 8 * 3];

/** @name YUV to RGB, same size
 *  @{ */
/** Converts a picture from YUV 4:4:4 to RGB of the same size. Layouts are those of the colour space in the name
 *  (ZELT_CS_*); alpha is that of a YUV444A8 source, 255 otherwise.
 *
 *  The transform is full-range BT.601 (ITU-T T.871) in 8 fractional bits. With d = U - 128 and e = V - 128,
 *  R = Y + ((359 e + 128) >> 8), G = Y - ((88 d + 183 e + 128) >> 8), B = Y + ((454 d + 128) >> 8), each clamped to
 *  0..255. RGB565 words take the high bits of R, G and B without rounding.
 *
 *  **ARGB8888 and BGRA8888 take four component pointers**, dst_a[i] for byte i of a pixel in memory order, each with
 *  its stride; where dst_a[1] is null, dst_a[0] is the picture and dst_s[0] its stride. The other layouts read as many
 *  entries of both arrays as they have planes. zelt_csc_yuv444_to_rgba8888 writes A, R, G, B where dst_cs is 502 or
 *  more.
 *
 *  Planes may stand at any address. Source and destination may share memory where each output byte lies at or before
 *  the input bytes still to be read; the result is then that of working pixel by pixel. Nothing is written where a
 *  size is below 1. Any thread.
 *  @param src_a   source planes
 *  @param src_w   width in pixels
 *  @param src_h   height in rows
 *  @param src_s   source strides in bytes, negative ones included
 *  @param src_cs  ignored
 *  @param dst_a   destination planes
 *  @param dst_w   ignored
 *  @param dst_h   ignored
 *  @param dst_s   destination strides in bytes
 *  @param dst_cs  ignored but by zelt_csc_yuv444_to_rgba8888 */
ZELT_API void zelt_csc_yuv444_to_rgb888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                        int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_yuv444_to_rgba8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                          int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                          const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_yuv444a8_to_rgba8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                            int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                            const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_yuv444_to_rgb565(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                        int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_yuv444_to_rgb565a8(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                          int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                          const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_yuv444_to_argb8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                          int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                          const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_yuv444_to_bgra8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                          int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                          const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_yuv444_to_r8g8b8(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                        int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_yuv444a8_to_rgba5658(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                            int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                            const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_yuv444a8_to_rgb565a8(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                            int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                            const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_yuv444a8_to_argb8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                            int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                            const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_yuv444a8_to_bgra8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                            int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                            const int32_t *dst_s, int32_t dst_cs);
/** @} */

/** @name RGB to YUV, same size
 *  @{ */
/** Converts a picture from RGB to YUV 4:4:4 of the same size. Arguments, sharing of memory and threads are as for the
 *  converters to RGB.
 *
 *  The transform is full-range BT.601 in 8 fractional bits: Y = (77 R + 150 G + 29 B + 128) >> 8,
 *  U = 128 + ((-43 R - 85 G + 128 B + 128) >> 8), V = 128 + ((128 R - 107 G - 21 B + 128) >> 8), U and V at most 255.
 *  RGB565 fields become the high bits of bytes whose low bits are 0. Alpha is copied.
 *  @param src_a   source planes
 *  @param src_w   width in pixels
 *  @param src_h   height in rows
 *  @param src_s   source strides in bytes
 *  @param src_cs  ignored
 *  @param dst_a   destination planes
 *  @param dst_w   ignored
 *  @param dst_h   ignored
 *  @param dst_s   destination strides in bytes
 *  @param dst_cs  ignored */
ZELT_API void zelt_csc_rgb888_to_yuv444(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                        int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_r8g8b8_to_yuv444(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                        int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_rgb565_to_yuv444(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                        int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_rgba8888_to_yuv444a8(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                            int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                            const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_r8g8b8a8_to_yuv444a8(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                            int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                            const int32_t *dst_s, int32_t dst_cs);
/** @} */

/** @name RGB to RGB, same size
 *  @{ */
/** Packs planar RGB into another RGB layout of the same size. Arguments, component pointers of ARGB8888 and BGRA8888,
 *  sharing of memory and threads are as for the converters to RGB. Alpha is that of a four-plane source, 255
 *  otherwise; RGB565 words take the high bits without rounding. The x8y8z8 converters serve any component order:
 *  plane 0 goes to bits 15..11, plane 1 to bits 10..5, plane 2 to bits 4..0.
 *  @param src_a   source planes
 *  @param src_w   width in pixels
 *  @param src_h   height in rows
 *  @param src_s   source strides in bytes
 *  @param src_cs  ignored
 *  @param dst_a   destination planes
 *  @param dst_w   ignored
 *  @param dst_h   ignored
 *  @param dst_s   destination strides in bytes
 *  @param dst_cs  ignored */
ZELT_API void zelt_csc_r8g8b8_to_rgb888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                        int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_r8g8b8_to_rgba8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                          int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                          const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_r8g8b8a8_to_rgba8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                            int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                            const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_r8g8b8_to_rgb565(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                        int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_x8y8z8_to_xyz565a8(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                          int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                          const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_x8y8z8a8_to_xyz565a8(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                            int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                            const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_r8g8b8_to_argb8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                          int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                          const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_r8g8b8_to_bgra8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                          int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                          const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_r8g8b8a8_to_argb8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                            int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                            const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_r8g8b8a8_to_bgra8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                            int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                            const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_r8g8b8a8_to_rgba5658(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                            int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                            const int32_t *dst_s, int32_t dst_cs);
/** @} */

/** @name 10 bits, same size
 *  @{ */
/** Converts a picture of 10-bit samples to another of the same size. Samples stand in the low bits of 16-bit words at
 *  any address, 0 to 1023, chroma centred on 512. Arguments, sharing of memory and threads are as for the converters to
 *  RGB; strides are in bytes.
 *
 *  The transform is full-range BT.601 in 10 fractional bits. With d = U - 512, e = V - 512,
 *  R = Y + ((1436 e + 512) >> 10), G = Y - ((352 d + 732 e + 512) >> 10), B = Y + ((1816 d + 512) >> 10), each clamped
 *  to 0..1023, and back Y = (308 R + 600 G + 116 B + 512) >> 10, U = 512 + ((-172 R - 340 G + 512 B + 512) >> 10),
 *  V = 512 + ((512 R - 428 G - 84 B + 512) >> 10). Pure blue and pure red give U and V of 1024, which P410 sources may
 *  have; larger words give any values.
 *  @param src_a   source planes
 *  @param src_w   width in pixels
 *  @param src_h   height in rows
 *  @param src_s   source strides in bytes, negative ones included
 *  @param src_cs  ignored
 *  @param dst_a   destination planes
 *  @param dst_w   ignored
 *  @param dst_h   ignored
 *  @param dst_s   destination strides in bytes
 *  @param dst_cs  ignored */
ZELT_API void zelt_csc_p410_to_r10g10b10(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                         int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                         const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_r10g10b10_to_p410(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                         int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                         const int32_t *dst_s, int32_t dst_cs);
/** @} */

/** Reduces a 4:2:0 picture of 10-bit samples to 8 bits: the low 8 bits of each 16-bit word >> 2. Three planes on either
 *  side, the chroma planes of (w + 1) >> 1 by (h + 1) >> 1 samples. Called directly, the dispatch does not know it.
 *  Sharing of memory and threads are as for the converters to RGB.
 *  @param src_a   source planes Y, U, V of 16-bit words at any address
 *  @param src_w   width in luma samples
 *  @param src_h   height in luma rows
 *  @param src_s   source strides in bytes, negative ones included
 *  @param src_cs  ignored
 *  @param dst_a   destination planes Y, U, V of bytes
 *  @param dst_w   ignored
 *  @param dst_h   ignored
 *  @param dst_s   destination strides in bytes
 *  @param dst_cs  ignored */
ZELT_API void zelt_csc_p010_to_yuv420(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                      int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                      const int32_t *dst_s, int32_t dst_cs);

/** Copies the planes Y, U, V of a 4:4:4 picture, and the alpha plane where dst_cs is ZELT_CS_YUV444A8. Sharing of
 *  memory and threads are as for the converters to RGB.
 *  @param src_a   source planes
 *  @param src_w   width in pixels
 *  @param src_h   height in rows
 *  @param src_s   source strides in bytes, negative ones included
 *  @param src_cs  ignored
 *  @param dst_a   destination planes
 *  @param dst_w   ignored
 *  @param dst_h   ignored
 *  @param dst_s   destination strides in bytes
 *  @param dst_cs  ZELT_CS_YUV444A8 copies four planes, anything else three */
ZELT_API void zelt_csc_yuv444x_to_yuv444x(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                          int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                          const int32_t *dst_s, int32_t dst_cs);

/** @name To RGB of another size
 *  @{ */
/** Converts a picture to RGB of another size in one pass. Source samples are interpolated bilinearly by the rule of
 *  zelt/irsz.h, each plane by itself, and then converted as by the converter of one size. Nothing is allocated, no
 *  sample outside the source picture is read, and nothing is written where a size is below 1. Source and destination
 *  lie apart, at any address. Any thread.
 *  @param src_a   source planes
 *  @param src_w   source width in pixels
 *  @param src_h   source height in rows
 *  @param src_s   source strides in bytes, one per plane, negative ones included
 *  @param src_cs  ignored
 *  @param dst_a   destination planes; for RGB565A8 the words and the alpha bytes
 *  @param dst_w   destination width in pixels
 *  @param dst_h   destination height in rows
 *  @param dst_s   destination strides in bytes
 *  @param dst_cs  ignored */
ZELT_API void zelt_csc_rsz_r8g8b8_to_rgb888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                            int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                            const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_rsz_r8g8b8_to_rgba8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                              int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                              const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_rsz_r8g8b8a8_to_rgba8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                                int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                                const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_rsz_yuv444_to_rgb888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                            int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                            const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_rsz_yuv444_to_rgba8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                              int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                              const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_rsz_yuv444a8_to_rgba8888(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                                int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                                const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_rsz_yuv444_to_rgb565(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                            int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                            const int32_t *dst_s, int32_t dst_cs);
ZELT_API void zelt_csc_rsz_yuv444a8_to_rgb565a8(void *const *src_a, int32_t src_w, int32_t src_h, const int32_t *src_s,
                                                int32_t src_cs, void *const *dst_a, int32_t dst_w, int32_t dst_h,
                                                const int32_t *dst_s, int32_t dst_cs);
/** @} */

ZELT_END_DECLS

/** @} */

#endif
