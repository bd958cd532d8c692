// Models and rows of the converters of 10-bit samples and of the plane copy.
#include "kernels/high_depth.h"

#include "zelt/csc.h"

#include <cmath>
#include <cstring>

namespace zelt::test {
namespace {
int shifted(int v) { return static_cast<int>(std::floor((v + 512) / 1024.0)); }

}  // namespace

triple rgb10_of(triple yuv) {
    const auto clamped = [](int v) { return v < 0 ? 0 : v > 1023 ? 1023 : v; };
    const int y = yuv[0], d = yuv[1] - 512, e = yuv[2] - 512;
    return {clamped(y + shifted(1436 * e)), clamped(y - shifted(352 * d + 732 * e)), clamped(y + shifted(1816 * d))};
}

triple yuv10_of(triple rgb) {
    const int r = rgb[0], g = rgb[1], b = rgb[2];
    return {shifted(308 * r + 600 * g + 116 * b), 512 + shifted(-172 * r - 340 * g + 512 * b),
            512 + shifted(512 * r - 428 * g - 84 * b)};
}

namespace {

int word_at(const u8* p) { return p[0] + 256 * p[1]; }
void put_word(u8* p, int v) { p[0] = static_cast<u8>(v % 256), p[1] = static_cast<u8>(v / 256); }

/// A kernel over `planes` source planes and as many destination planes
kernel row(const char* name, zelt_csc_fn fn, int planes, operand source, operand destination, int dst_cs,
           shape (*plane_size)(shape, int), std::function<void(u8* const* src, u8* const* dst)> pixel) {
    const auto sized = [=](operand o, shape s, int plane) {
        const shape size = plane_size(s, plane);
        o.width = size.w, o.rows = size.h;
        return o;
    };
    return {name,
            reinterpret_cast<function>(fn),
            picture_shapes(),
            [=](shape s) {
                std::vector<operand> all;
                for (int i = 0; i < planes; ++i) all.push_back(sized(source, s, i));
                for (int i = 0; i < planes; ++i) all.push_back(sized(destination, s, i));
                return all;
            },
            [=](function f, shape s, const view* v) {
                void* p[8];
                int stride[8];
                for (int i = 0; i < 2 * planes; ++i) p[i] = v[i].p, stride[i] = static_cast<int>(v[i].stride);
                reinterpret_cast<zelt_csc_fn>(f)(p, s.w, s.h, stride, -1, p + planes, -1, -1, stride + planes, dst_cs);
                return u64{0};
            },
            [=](shape s, const view* v) {
                for (int y = 0; y < s.h; ++y)
                    for (int x = 0; x < s.w; ++x) {
                        u8* p[8];
                        for (int i = 0; i < 2 * planes; ++i) {
                            const shape size = plane_size(s, i % planes);
                            const int bytes = i < planes ? source.element : destination.element;
                            p[i] = x < size.w && y < size.h ? v[i].p + y * v[i].stride + x * bytes : nullptr;
                        }
                        pixel(p, p + planes);
                    }
                return u64{0};
            },
            timing::picture,
            false,                                             // no block
            source.element == 2 && destination.element == 2};  // the others go plane by plane
}

shape full_size(shape s, int) { return s; }
shape chroma_halved(shape s, int plane) { return plane ? shape{(s.w + 1) / 2, (s.h + 1) / 2} : s; }

std::function<void(u8* const*, u8* const*)> matrix(triple (*of)(triple)) {
    return [of](u8* const* src, u8* const* dst) {
        const triple v = of({word_at(src[0]), word_at(src[1]), word_at(src[2])});
        for (std::size_t i = 0; i < 3; ++i) put_word(dst[i], v[i]);
    };
}
void reduce(u8* const* src, u8* const* dst) {
    for (int i = 0; i < 3; ++i)
        if (src[i]) *dst[i] = static_cast<u8>(word_at(src[i]) / 4 % 256);
}
void copy3(u8* const* src, u8* const* dst) {
    for (int i = 0; i < 3; ++i) *dst[i] = *src[i];
}
void copy4(u8* const* src, u8* const* dst) {
    copy3(src, dst);
    *dst[3] = *src[3];
}

}  // namespace

std::vector<kernel> high_depth_kernels() {
    const operand bytes_in = {.width = 0, .rows = 0}, bytes_out = {.width = 0, .rows = 0, .written = true};
    const auto words = [](int high, bool written) {
        return operand{.width = 0, .rows = 0, .element = 2, .high = high, .written = written};
    };
    return {row("zelt_csc_p410_to_r10g10b10", zelt_csc_p410_to_r10g10b10, 3, words(1024, false), words(1023, true), -1,
                full_size, matrix(rgb10_of)),
            row("zelt_csc_r10g10b10_to_p410", zelt_csc_r10g10b10_to_p410, 3, words(1023, false), words(1024, true), -1,
                full_size, matrix(yuv10_of)),
            row("zelt_csc_p010_to_yuv420", zelt_csc_p010_to_yuv420, 3, words(65535, false), bytes_out, -1,
                chroma_halved, reduce),
            row("zelt_csc_yuv444x_to_yuv444x", zelt_csc_yuv444x_to_yuv444x, 3, bytes_in, bytes_out, ZELT_CS_YUV444,
                full_size, copy3),
            row("zelt_csc_yuv444x_to_yuv444x alpha", zelt_csc_yuv444x_to_yuv444x, 4, bytes_in, bytes_out,
                ZELT_CS_YUV444A8, full_size, copy4)};
}

}  // namespace zelt::test
