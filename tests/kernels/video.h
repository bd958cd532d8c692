// SPDX-License-Identifier: MIT
#pragma once  // decoder layouts as the tests know them
#include "kernels/converters.h"
#include "zelt/video.h"

namespace zelt::test {
struct video_format {
    std::string name;
    int cs;
    /// Y, U, V: the plane, the first byte, bytes from sample to sample; of RGB formats there is a layout instead
    struct {
        int plane, first, step;
    } samples[3];
    int half_w, half_h;       // 1 if chroma is halved
    int bits = 8, above = 0;  // of a sample; those of 10 are in words, above so many others

    int channels() const;  // 0 of RGB formats
    bool packed() const { return channels() && samples[0].step == (bits > 8 ? 4 : 2); }
    std::vector<operand> operands(shape s, bool written) const;
};
const std::vector<video_format>& video_formats();
/// The one with this identifier, null where there is none
const video_format* video_format_of(int cs);

/// Whether there is a conversion
bool converts(const video_format& from, const video_format& to);

/// A channel, of Y, U, V or R, G, B, as the bytes that other sizes are made of
std::vector<u8> bytes_of(const video_format& f, const view* planes, int channel, shape size);

/// What a record gives of a picture, its planes in front of the destination's
void model_video(const ZELT_VIDEO& v, const video_format& from, const video_format& to, shape s, const view* planes);
/// Calls zelt_video_convert, or zelt_video_convert_rows for bands of these heights in turn.
void call_video(const ZELT_VIDEO& v, const video_format& from, const video_format& to, shape s, const view* planes,
                const std::vector<int>& bands, int dst_h = 0);  // where it is not the source's

/// What a record gives of a picture that is resized or turned; shapes are those of the upright destination, and dst_w
/// says only whether they have a say.
struct ratio;
kernel placed_kernel(const ZELT_VIDEO& request, const video_format& from, const video_format& to, const ratio& q,
                     std::vector<shape> shapes, const std::vector<int>& bands);

/// R, G, B in 0..1, of Y, U, V in so many bits, by the standard
void real_rgb(int matrix, int range, const int (&yuv)[3], double (&rgb)[3], int bits = 8);
/// And back, not rounded
void real_yuv(int matrix, int range, const double (&rgb)[3], double (&yuv)[3], int bits = 8);
}  // namespace zelt::test
