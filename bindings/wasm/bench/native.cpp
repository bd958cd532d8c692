// SPDX-License-Identifier: MIT
// The rows of bench.js by the native library: of each, milliseconds of processor time and its name.
#include "../src/blocks.cpp"
#include "zelt/csc.h"
#include "zelt/irsz.h"
#include "zelt/md5.h"
#include "zelt/video.h"

#include <cmath>
#include <cstdio>
#include <ctime>

namespace {
constexpr int w = 1920, h = 1080;
uint8_t source[4 * w * h], result[4 * w * h], scenes[2][w * h];

double now() {
    timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec * 1e-6;
}

template <class Call> void row(const char* name, Call call) {
    double least = 1e9;
    for (int turn = 0; turn < 25; ++turn) {
        const double start = now();
        int calls = 0;
        for (; now() - start < 10; ++calls) call();
        least = std::min(least, (now() - start) / calls);
    }
    std::printf("%.6f %s\n", least, name);
}

/// Planes back to back: the strides and rows of up to three
struct layout {
    int stride[3], rows[3];
};

void convert(const char* name, int src_cs, layout from, int dst_cs, layout to, int range) {
    ZELT_VIDEO v{};
    v.src_cs = src_cs;
    v.dst_cs = dst_cs;
    v.range = range;
    void *src[3], *dst[3];
    uint8_t *s = source, *d = result;
    for (int i = 0; i < 3; s += from.stride[i] * from.rows[i], d += to.stride[i] * to.rows[i], ++i) {
        src[i] = s;
        dst[i] = d;
    }
    if (zelt_video_init(&v) == ZELT_OK)
        row(name, [&] { zelt_video_convert(&v, src, from.stride, dst, to.stride, w, h); });
}
}  // namespace

int main() {
    uint32_t state = 1;
    for (uint8_t& s : source) s = static_cast<uint8_t>((state = state * 1664525 + 1013904223) >> 24);
    for (int i = 0; i < w * h; ++i)
        for (int n = 0; n < 2; ++n) {
            const int x = i % w + 6 * n, y = i / w - 4 * n;
            scenes[n][i] = static_cast<uint8_t>(128 + 60 * std::sin(x * .09) * std::cos(y * .05) +
                                                60 * std::sin(y * .08) * std::cos(x * .03));
        }

    const layout yuv420 = {{w, w / 2, w / 2}, {h, h / 2, h / 2}}, rgba = {{4 * w}, {h}};
    convert("YUV 4:2:0 to RGBA", ZELT_CS_YUV420, yuv420, ZELT_CS_RGBA8888, rgba, ZELT_VIDEO_LIMITED);
    convert("NV12 to RGBA", ZELT_CS_NV12, {{w, w}, {h, h / 2}}, ZELT_CS_RGBA8888, rgba, ZELT_VIDEO_LIMITED);
    convert("YUV 4:4:4 to RGB", ZELT_CS_YUV444, {{w, w, w}, {h, h, h}}, ZELT_CS_RGB888, {{3 * w}, {h}},
            ZELT_VIDEO_FULL);
    convert("RGBA to YUV 4:2:0", ZELT_CS_RGBA8888, rgba, ZELT_CS_YUV420, yuv420, ZELT_VIDEO_LIMITED);
    uint32_t across, down;
    bilinear_rsz_step_size(w, h, w / 2, h / 2, &across, &down);
    row("RGBA to a half, bilinear",
        [&] { zelt_irsz8b8b8b8b_full(source, 4 * w, w / 2, h / 2, 2 * w, result, across, down); });

    const plane before = {scenes[0], w, w, h}, now = {scenes[1], w, w, h};
    static vector vectors[w * h / 256 + w];
    static uint32_t costs[w * h / 256 + w];
    row("SAD of 16x16 blocks", [&] { map(0, 2, &before, &now, costs); });
    row("SATD of 16x16 blocks", [&] { map(1, 2, &before, &now, costs); });
    row("motion of 16x16 blocks", [&] { motion(0, 2, &before, &now, 32, 0, vectors, costs); });
    row("MD5", [&] {
        ZELT_MD5 md5;
        zelt_md5_init(&md5);
        zelt_md5_update(&md5, source, w * h * 3 / 2);
        zelt_md5_finish(&md5, result);
    });
}
