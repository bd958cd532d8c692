// SPDX-License-Identifier: MIT
/** @defgroup zelt_video Pictures of decoders (zelt/video.h)
 *  Pictures as decoders, cameras and screens have them: 4:2:0 and its relatives, planar, semi-planar and packed, of
 *  limited or full range and the matrix of BT.601, BT.709 or BT.2020, to RGB, back, and into one another.
 *
 *  A record is filled once per pair of formats, then converts any number of pictures of any size, or rows of them:
 *  @code
 *  ZELT_VIDEO v = {.src_cs = ZELT_CS_NV12, .dst_cs = ZELT_CS_RGBA8888, .matrix = ZELT_VIDEO_BT709};
 *  if (zelt_video_init(&v)) return unsupported();
 *  void *src[] = {luma, chroma}, *dst[] = {rgba};
 *  const int32_t src_s[] = {luma_stride, chroma_stride}, dst_s[] = {4 * w};
 *  zelt_video_convert(&v, src, src_s, dst, dst_s, w, h);
 *  @endcode
 *
 *  | format            | planes and bytes in order    | FFmpeg   | GStreamer | Android             | V4L2   |
 *  |-------------------|------------------------------|----------|-----------|---------------------|--------|
 *  | ZELT_CS_YUV400    | Y                            | gray     | GRAY8     | Y8                  | GREY   |
 *  | ZELT_CS_YUV420    | Y; U; V, halved both ways    | yuv420p  | I420      | YUV_420_888, step 1 | YU12   |
 *  | ZELT_CS_YUV422    | Y; U; V, halved across       | yuv422p  | Y42B      | YUV_422_888, step 1 | 422P   |
 *  | ZELT_CS_YUV440    | Y; U; V, halved down         | yuv440p  |           |                     |        |
 *  | ZELT_CS_YUV444    | Y; U; V                      | yuv444p  | Y444      | YUV_444_888         | YM24   |
 *  | ZELT_CS_NV12      | Y; U V, halved both ways     | nv12     | NV12      | YUV_420_888, step 2 | NV12   |
 *  | ZELT_CS_NV21      | Y; V U, halved both ways     | nv21     | NV21      | NV21                | NV21   |
 *  | ZELT_CS_NV16      | Y; U V, halved across        | nv16     | NV16      | NV16                | NV16   |
 *  | ZELT_CS_YUYV      | Y0 U Y1 V                    | yuyv422  | YUY2      | YUY2                | YUYV   |
 *  | ZELT_CS_UYVY      | U Y0 V Y1                    | uyvy422  | UYVY      |                     | UYVY   |
 *  | ZELT_CS_RGB888    | R G B                        | rgb24    | RGB       | RGB_888             | RGB3   |
 *  | ZELT_CS_BGR888    | B G R                        | bgr24    | BGR       |                     | BGR3   |
 *  | ZELT_CS_RGBA8888  | R G B A                      | rgba     | RGBA      | RGBA_8888           | AB24   |
 *  | ZELT_CS_BGRA8888  | B G R A                      | bgra     | BGRA      |                     | AR24   |
 *  | ZELT_CS_ARGB8888  | A R G B                      | argb     | ARGB      |                     | BA24   |
 *  | ZELT_CS_RGB565    | words R G B of 5, 6, 5 bits  | rgb565le | RGB16     | RGB_565             | RGBP   |
 *  | ZELT_CS_R8G8B8    | R; G; B                      |          | RGBP      |                     |        |
 *
 *  Of 10 bits, in words of 16, lower byte first. Their other bits are not looked at, and 0 where words are written.
 *
 *  | format            | planes, and which bits       | FFmpeg      | GStreamer | Android    | V4L2 |
 *  |-------------------|------------------------------|-------------|-----------|------------|------|
 *  | ZELT_CS_P010      | as ZELT_CS_YUV420, low       | yuv420p10le | I420_10LE |            |      |
 *  | ZELT_CS_P210      | as ZELT_CS_YUV422, low       | yuv422p10le | I422_10LE |            |      |
 *  | ZELT_CS_P410      | as ZELT_CS_YUV444, low       | yuv444p10le | Y444_10LE |            |      |
 *  | ZELT_CS_P010LE    | as ZELT_CS_NV12, high        | p010le      | P010_10LE | YCBCR_P010 | P010 |
 *  | ZELT_CS_P210LE    | as ZELT_CS_NV16, high        | p210le      |           |            |      |
 *  | ZELT_CS_R10G10B10 | as ZELT_CS_R8G8B8, low       |             |           |            |      |
 *
 *  FFmpeg's gbrp and GStreamer's GBR are ZELT_CS_R8G8B8 with the planes passed in the order R, G, B, gbrp10le and
 *  GBR_10LE ZELT_CS_R10G10B10 likewise, and yv12 is ZELT_CS_YUV420 with U and V passed in that order. A picture of odd
 *  width or height has chroma for its last column or row: halves are rounded up, so that a row of YUYV has 4 bytes for
 *  each two pixels begun.
 *
 *  **To RGB.** With Kr and Kb of the standard (BT.601: 0.299 and 0.114, BT.709: 0.2126 and 0.0722, BT.2020, not of
 *  constant luminance: 0.2627 and 0.0593), Kg = 1 - Kr - Kb, and for limited range y = (Y - 16) 255 / 219 and
 *  d, e = (U - 128, V - 128) 255 / 224, for full range y = Y and d, e = U - 128, V - 128:
 *
 *      R = y + 2 (1 - Kr) e
 *      G = y - 2 (1 - Kb) Kb / Kg d - 2 (1 - Kr) Kr / Kg e
 *      B = y + 2 (1 - Kb) d
 *
 *  rounded and clamped to 0..255. It is done in integers, the same on every processor. With each factor f as
 *  c = round(2^13 f) and p(c, v) = (c v + 64) >> 7, which has 6 fractional bits, every component is
 *
 *      (p(cy, Y - 128) + p(cd, U - 128) + p(ce, V - 128) + k) >> 6
 *
 *  clamped, where cy is 9539 for limited and 8192 for full range, and k, what is constant and the rounding, 8378 and
 *  8223. Over all 2^24 inputs the largest difference from the real formula, and the share that is not the nearest
 *  integer, are (`zelt_v3_kernels --gtest_filter=exhaustive.video*` among the tests prints them):
 *
 *  | matrix, range    | R              | G              | B              |
 *  |------------------|----------------|----------------|----------------|
 *  | BT.601, limited  | 0.512, 0.28 %  | 0.527, 0.49 %  | 0.514, 0.25 %  |
 *  | BT.601, full     | 0.502, 0.28 %  | 0.519, 0.62 %  | 0.504, 0.21 %  |
 *  | BT.709, limited  | 0.514, 0.30 %  | 0.526, 0.52 %  | 0.512, 0.23 %  |
 *  | BT.709, full     | 0.504, 0.47 %  | 0.518, 0.70 %  | 0.502, 0.26 %  |
 *  | BT.2020, limited | 0.514, 0.29 %  | 0.529, 0.57 %  | 0.520, 0.29 %  |
 *  | BT.2020, full    | 0.507, 0.21 %  | 0.519, 0.65 %  | 0.496, 0.00 %  |
 *
 *  Greys are exact. Of 10 bits limited range is 64..940 (U, V: 960), full range 0..1023, and white, to which the
 *  formula is scaled, 255 or 1023. Here p(c, v) = (c v + 256) >> 9 of Y, U and V less 512, so that sums have 6
 *  fractional bits for 8 and 4 for 10. To 8 bits cy is 9539 for limited and 8168 for full range, k 8378 and 8199; to 10
 *  bits cy is 9567 and 8192, k 8379 and 8199, and results are 0..1023. Over every pair of samples beside a third in the
 *  middle, and 2^24 random triples, whose shares these are (the same command prints them):
 *
 *  | matrix, range    | R, 10 to 8    | G             | B             | R, 10 to 10   | G             | B             |
 *  |------------------|---------------|---------------|---------------|---------------|---------------|---------------|
 *  | BT.601, limited  | 0.514, 0.28 % | 0.526, 0.50 % | 0.517, 0.28 % | 0.574, 1.49 % | 0.635, 2.39 % | 0.566, 1.19 % |
 *  | BT.601, full     | 0.521, 0.50 % | 0.524, 0.65 % | 0.518, 0.42 % | 0.538, 1.94 % | 0.581, 2.56 % | 0.544, 1.63 % |
 *  | BT.709, limited  | 0.517, 0.30 % | 0.525, 0.52 % | 0.514, 0.23 % | 0.590, 1.51 % | 0.624, 2.55 % | 0.566, 1.13 % |
 *  | BT.709, full     | 0.515, 0.44 % | 0.527, 0.73 % | 0.521, 0.41 % | 0.545, 1.96 % | 0.583, 2.84 % | 0.533, 1.70 % |
 *  | BT.2020, limited | 0.514, 0.27 % | 0.530, 0.55 % | 0.520, 0.30 % | 0.574, 1.41 % | 0.599, 2.14 % | 0.570, 1.17 % |
 *  | BT.2020, full    | 0.523, 0.50 % | 0.524, 0.65 % | 0.518, 0.39 % | 0.533, 1.91 % | 0.587, 2.82 % | 0.546, 1.80 % |
 *
 *  Black and white are exact. Where smooth chroma is halved across, a pixel takes two products of each kind with a
 *  fractional bit less, (c v + 128) >> 8 or (c v + 512) >> 10, for the samples to its left and to its right or twice
 *  for its own, and the even part of k: the difference is below 0.6, and of results of 10 bits below 0.8. Full-range
 *  BT.601 from ZELT_CS_YUV444 is the transform of csc.h, with its bytes; from ZELT_CS_P410 it is not. RGB565 words take
 *  the high bits of R, G and B without rounding. Alpha is 255.
 *
 *  **From ZELT_CS_R10G10B10** to the YUV formats of 10 bits. With Y' = Kr R + Kg G + Kb B it is for full range Y = Y',
 *  U = 512 + (B - Y') / (2 - 2 Kb), V = 512 + (R - Y') / (2 - 2 Kr), and for limited range Y = 64 + Y' 876 / 1023, and
 *  what is added to 512 is times 896 / 1023. Chroma that pixels share is that of their mean, which is not rounded
 *  before; at an odd edge of the pixels there are. With q(f, v) = (round(2^15 f) 64 (v - 512) + 2^14) >> 15 of each
 *  component, products and sums have 6 fractional bits, and results are clamped to 0..1023. Over 2^22 triples the
 *  largest difference and the share that is not the nearest integer are, and after the way to RGB again the largest
 *  and the mean difference of a component (the same command prints them):
 *
 *  | matrix, range    | Y             | U             | V             | to RGB  |
 *  |------------------|---------------|---------------|---------------|---------|
 *  | BT.601, limited  | 0.523, 0.60 % | 0.529, 0.88 % | 0.530, 0.91 % | 2, 0.40 |
 *  | BT.601, full     | 0.535, 0.89 % | 0.519, 0.75 % | 0.527, 0.84 % | 1, 0.32 |
 *  | BT.709, limited  | 0.523, 0.63 % | 0.527, 0.87 % | 0.527, 0.86 % | 2, 0.40 |
 *  | BT.709, full     | 0.535, 0.92 % | 0.523, 0.81 % | 0.523, 0.80 % | 1, 0.32 |
 *  | BT.2020, limited | 0.523, 0.65 % | 0.533, 0.92 % | 0.526, 0.85 % | 2, 0.40 |
 *  | BT.2020, full    | 0.529, 0.89 % | 0.526, 0.82 % | 0.520, 0.79 % | 1, 0.32 |
 *
 *  **From RGB.** With Y' = Kr R + Kg G + Kb B, for full range Y = Y', U = 128 + (B - Y') / (2 - 2 Kb) and
 *  V = 128 + (R - Y') / (2 - 2 Kr); for limited range Y = 16 + Y' 219 / 255, and what is added to 128 is times
 *  224 / 255. Chroma that pixels share, two or four of them, is that of their mean, which is not rounded before; at an
 *  odd edge it is that of the pixels there are. Alpha is ignored, and the fields of RGB565 words are widened by their
 *  own high bits, so that white is 255 (csc.h has 0 there). In integers, with q(f, v) = (round(2^15 f) v + 2^14) >> 15
 *  and with p : q, which is nearly Kr : Kg, 27 : 53 for BT.601, 22 : 74 for BT.709 and 31 : 80 for BT.2020:
 *
 *      Y = black + ((q(64 s (Kr + Kg) / (p + q), p R + q G) + q(s Kb, 64 B) + 32) >> 6)
 *      U = 128 + ((q(ur, 128 R) + q(ug, 128 G) + q(ub, 128 B) + 64) >> 7)
 *
 *  where s is 219 / 255 or 1, black is 16 or 0, ur, ug and ub are the factors of the formula, R, G and B are those of a
 *  pixel for Y and means for U, and V is like U; only full-range chroma is clamped, and at 255. Over all 2^24 inputs
 *  the largest difference from the real formula, the share that is not the nearest integer, and, after the way to RGB,
 *  the largest and the mean difference of the component of the same place from what it was
 *  (`zelt_v3_kernels --gtest_filter=exhaustive.video_back` prints them):
 *
 *  | matrix, range    | Y             | U             | V             | R       | G       | B       |
 *  |------------------|---------------|---------------|---------------|---------|---------|---------|
 *  | BT.601, limited  | 0.520, 0.75 % | 0.512, 0.44 % | 0.510, 0.28 % | 1, 0.42 | 1, 0.26 | 2, 0.51 |
 *  | BT.601, full     | 0.524, 0.95 % | 0.507, 0.48 % | 0.510, 0.33 % | 1, 0.35 | 1, 0.19 | 1, 0.44 |
 *  | BT.709, limited  | 0.522, 1.03 % | 0.513, 0.44 % | 0.510, 0.28 % | 2, 0.46 | 1, 0.20 | 2, 0.53 |
 *  | BT.709, full     | 0.521, 0.80 % | 0.509, 0.32 % | 0.508, 0.31 % | 1, 0.39 | 1, 0.12 | 1, 0.46 |
 *  | BT.2020, limited | 0.521, 1.00 % | 0.512, 0.44 % | 0.510, 0.28 % | 1, 0.43 | 1, 0.22 | 2, 0.54 |
 *  | BT.2020, full    | 0.520, 0.81 % | 0.508, 0.31 % | 0.509, 0.33 % | 1, 0.37 | 1, 0.15 | 1, 0.47 |
 *
 *  Chroma of greys is 128. Full-range BT.601 to ZELT_CS_YUV444 is the transform of csc.h, with its bytes.
 *
 *  **Chroma** that the destination has more of is replicated, or smooth: bilinear between the places that samples have
 *  if those of 4:2:0 and 4:2:2 are at the left of their pixels, as in MPEG-2, H.264 and HEVC unless they say otherwise.
 *  Across, pixels between two samples get the mean of both; down, each pixel gets 3/4 of the nearer sample and 1/4 of
 *  the other one. At the edges of a picture the outermost sample counts twice. Smooth chroma is not rounded before the
 *  matrix; between YUV formats it is rounded once. Chroma that the destination has less of is the rounded mean of the
 *  samples that share one. From ZELT_CS_YUV400 chroma is 128. Where a YUV format of 10 bits becomes one of 8, samples
 *  are divided by 4 in the same rounding, up to 255, whatever their range.
 *
 *  **Other sizes.** With dst_w and dst_h each plane is resized from its own size straight to the size that the
 *  destination has for it, which to RGB is that of luma, and the result converted; `chroma` has no say then. Without a
 *  filter of its own that is bilinear, with the rule and the phases of zelt_irsz8b_full, whose bytes the planes have.
 *  It takes four samples: below a half of the source's size it misses others, and fine patterns become coarse ones.
 *  ZELT_VIDEO_AREA takes all: from w x h to W x H samples, column s of the source covers s W to (s + 1) W, column x of
 *  the destination x w to (x + 1) w, rows likewise, and with the lengths of what they have in common a sample is
 *
 *      (sum of across(s, x) down(t, y) sample(s, t) + w h / 2) / (w h)
 *
 *  cut off: the rounded mean, in integers, the same on every processor. It may enlarge, too, but makes blocks then.
 *
 *  R, G and B of a source are resized, and then converted. Samples of 10 bits are rounded to 8 first, divided by 4 as
 *  between YUV formats: of another size they become what the formats of 8 bits would. There is no other size of 10
 *  bits, since that would have no more than 8 of them.
 *
 *  **Turned.** With `turn` each plane of the destination is turned after it is converted, a plane of halved chroma as
 *  it is, of an odd picture too. Packed YUV is not turned, and formats with chroma halved one way only not by 90 or 270
 *  degrees: their pixels would share chroma the other way. Such a picture can become ZELT_CS_YUV420, ZELT_CS_NV12 or
 *  ZELT_CS_YUV444, which FFmpeg's transpose and rotation metadata of containers and cameras (EXIF: 90 is orientation 6,
 *  180 is 3, 270 is 8; mirrored 0, 90, 180, 270 are 2, 7, 4, 5) may ask for.
 *  @{ */
#ifndef ZELT_VIDEO_H
#define ZELT_VIDEO_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** Formats of this header alone, beside those of ZELT_CS_* that the tables above list. */
enum ZELT_VIDEO_FORMAT {
    ZELT_CS_NV12 = 800,   /**< Y; U and V in turn, chroma halved both ways */
    ZELT_CS_NV21 = 801,   /**< Y; V and U in turn, chroma halved both ways */
    ZELT_CS_NV16 = 802,   /**< Y; U and V in turn, chroma halved in width */
    ZELT_CS_P010LE = 810, /**< Y; U and V in turn, chroma halved both ways, 10 bits in the high end of 16-bit words */
    ZELT_CS_P210LE = 811, /**< the same with chroma halved in width */
    ZELT_CS_YUYV = 820,   /**< bytes Y0, U, Y1, V */
    ZELT_CS_UYVY = 821,   /**< bytes U, Y0, V, Y1 */
    ZELT_CS_BGR888 = 840  /**< bytes B, G, R */
};

/** Matrices */
enum ZELT_VIDEO_MATRIX {
    ZELT_VIDEO_BT601 = 0, /**< BT.601: standard definition, JPEG */
    ZELT_VIDEO_BT709 = 1, /**< BT.709: high definition */
    ZELT_VIDEO_BT2020 = 2 /**< BT.2020, not of constant luminance: ultra-high definition */
};
/** Ranges */
enum ZELT_VIDEO_RANGE {
    ZELT_VIDEO_LIMITED = 0, /**< Y from 16 to 235, U and V from 16 to 240 */
    ZELT_VIDEO_FULL = 1     /**< 0 to 255 or 1023: JPEG, many cameras */
};
/** How chroma gets more samples */
enum ZELT_VIDEO_CHROMA {
    ZELT_VIDEO_REPLICATED = 0, /**< each sample for all pixels that share it */
    ZELT_VIDEO_SMOOTH = 1      /**< bilinear, as above */
};

/** How a destination of another size is made */
enum ZELT_VIDEO_FILTER {
    ZELT_VIDEO_BILINEAR = 0, /**< between four samples: for enlarging, and down to 1:2 */
    ZELT_VIDEO_AREA = 1      /**< the mean of what a sample covers: for shrinking further, without moire */
};
/** How a picture is turned: one of these, and ZELT_VIDEO_MIRRORED or not */
enum ZELT_VIDEO_TURN {
    ZELT_VIDEO_UPRIGHT = 0,
    ZELT_VIDEO_90 = 1,      /**< by 90 degrees clockwise: the left column becomes the top row, right to left */
    ZELT_VIDEO_180 = 2,     /**< upside down */
    ZELT_VIDEO_270 = 3,     /**< by 90 degrees counterclockwise: the right column becomes the top row */
    ZELT_VIDEO_MIRRORED = 4 /**< left and right exchanged before that */
};

/** What to convert to what. The caller sets the first fields, 0 being the default of each but the formats, and
 *  zelt_video_init the others; the record owns nothing and may be copied. */
typedef struct ZELT_VIDEO {
    int32_t src_cs;      /**< source format, ZELT_CS_* of the tables */
    int32_t dst_cs;      /**< destination format, likewise */
    int32_t matrix;      /**< ZELT_VIDEO_BT601, ... */
    int32_t range;       /**< ZELT_VIDEO_LIMITED or ZELT_VIDEO_FULL */
    int32_t chroma;      /**< ZELT_VIDEO_REPLICATED or ZELT_VIDEO_SMOOTH */
    int32_t filter;      /**< ZELT_VIDEO_BILINEAR or ZELT_VIDEO_AREA */
    int32_t dst_w;       /**< width of the destination as it is stored, after turning; 0 is the picture's own */
    int32_t dst_h;       /**< its height; both are 0 or neither */
    int32_t turn;        /**< ZELT_VIDEO_UPRIGHT, ... */
    int32_t reserved[7]; /**< 0: requests of later versions */
    int32_t state[48];   /**< the library's */
} ZELT_VIDEO;

/** Fills a record. Pairs are every YUV format with every format of the tables, and every RGB format with every YUV
 *  format; but none of 8 bits with one of 10, nor RGB of 10 bits with one of 8. Any thread.
 *  @param v  the record, its request set and `reserved` 0
 *  @return   ZELT_OK; ZELT_ERR_INVALID_ARG for null; ZELT_ERR_UNSUPPORTED for a pair or a value that is unknown: such a
 *            record converts nothing */
ZELT_API int32_t zelt_video_init(ZELT_VIDEO *v);

/** Converts a picture. Planes may stand at any address and with any stride, but source and destination must not share
 *  memory. Nothing is read or written outside the rows of the planes, nothing is done where a size is below 1. Any
 *  number of threads may use one record.
 *  @param v      a record that zelt_video_init has filled
 *  @param src_a  source planes, as many as the format has
 *  @param src_s  their strides in bytes, negative ones included
 *  @param dst_a  destination planes
 *  @param dst_s  their strides
 *  @param w      width of the source in pixels
 *  @param h      its height in rows */
ZELT_API void zelt_video_convert(const ZELT_VIDEO *v, void *const *src_a, const int32_t *src_s, void *const *dst_a,
                                 const int32_t *dst_s, int32_t w, int32_t h);

/** Converts rows of a picture: bands of any height give together what zelt_video_convert gives. Smooth chroma and
 *  means of two rows read rows next to the band, too. Bands are rows of the destination, and those of a multiple of 16
 *  rows are fastest where it is resized or turned. A row of chroma that two rows of the destination share is written
 *  with the upper one.
 *  @param v      a record that zelt_video_init has filled
 *  @param src_a  source planes, of the whole picture
 *  @param src_s  their strides in bytes
 *  @param dst_a  destination planes, of the whole picture
 *  @param dst_s  their strides
 *  @param w      width of the source in pixels
 *  @param h      its height in rows
 *  @param y      first row of the destination to make
 *  @param rows   their number; those outside it do not count */
ZELT_API void zelt_video_convert_rows(const ZELT_VIDEO *v, void *const *src_a, const int32_t *src_s, void *const *dst_a,
                                      const int32_t *dst_s, int32_t w, int32_t h, int32_t y, int32_t rows);

/** Turns or mirrors a plane. Source and destination must not share memory. Any thread.
 *  @param src         its first pixel
 *  @param src_stride  bytes from row to row, negative ones included
 *  @param dst         the first pixel of the destination, h pixels wide and w high at 90 and 270 degrees
 *  @param dst_stride  its stride in bytes
 *  @param w           width of the source in pixels; nothing is done where a size is below 1
 *  @param h           its height in rows
 *  @param bytes       of a pixel: 1, of 8-bit planes, 2, of interleaved chroma and RGB565, 3 or 4
 *  @param turn        ZELT_VIDEO_UPRIGHT, ...
 *  @return            ZELT_OK; ZELT_ERR_INVALID_ARG for other `bytes` or `turn` */
ZELT_API int32_t zelt_video_turn(const uint8_t *src, int32_t src_stride, uint8_t *dst, int32_t dst_stride, int32_t w,
                                 int32_t h, int32_t bytes, int32_t turn);

ZELT_END_DECLS

/** @} */

#endif
