// SPDX-License-Identifier: MIT
/* What scripts/wasm.sh times under node and natively: for each work the least of many times in milliseconds, and a
 * digest of what it gave. Pictures are of 1920x1080. */
#define _GNU_SOURCE
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <zelt/csc.h>
#include <zelt/irsz.h>
#include <zelt/sad.h>
#include <zelt/video.h>

enum { W = 1920, H = 1080, W2 = 1280, H2 = 720, ROUNDS = 40, BYTES = W * H * 4 };

static unsigned char *src, *dst;
static void *planes[3], *out[3];
static const int32_t row[] = {W, W, W}, row_3[] = {3 * W}, row_4[] = {4 * W}, row_565[] = {2 * W};

static void video(int from, int to, int chroma, void* const* s, const int32_t* s_s, void* const* d,
                  const int32_t* d_s) {
    ZELT_VIDEO v = {0};
    v.src_cs = from, v.dst_cs = to, v.chroma = chroma;
    if (zelt_video_init(&v)) abort();
    zelt_video_convert(&v, s, s_s, d, d_s, W, H);
}
static const int32_t row_420[] = {W, W / 2, W / 2}, row_nv12[] = {W, W};

static void i420_to_rgba_of(int chroma) {
    void* from[] = {src, src + W * H, src + W * H * 5 / 4};
    video(ZELT_CS_YUV420, ZELT_CS_RGBA8888, chroma, from, row_420, out, row_4);
}
static void i420_to_rgba(void) { i420_to_rgba_of(ZELT_VIDEO_REPLICATED); }
static void i420_to_rgba_smooth(void) { i420_to_rgba_of(ZELT_VIDEO_SMOOTH); }
static void nv12_to_rgb(void) {
    void* from[] = {src, src + W * H};
    video(ZELT_CS_NV12, ZELT_CS_RGB888, ZELT_VIDEO_REPLICATED, from, row_nv12, out, row_3);
}
static void rgba_to_i420(void) {
    void *from[] = {src}, *to[] = {dst, dst + W * H, dst + W * H * 5 / 4};
    video(ZELT_CS_RGBA8888, ZELT_CS_YUV420, ZELT_VIDEO_REPLICATED, from, row_4, to, row_420);
}
static void to_rgb888(void) { zelt_csc_yuv444_to_rgb888(planes, W, H, row, 0, out, W, H, row_3, 0); }
static void to_rgba8888(void) { zelt_csc_yuv444_to_rgba8888(planes, W, H, row, 0, out, W, H, row_4, 0); }
static void to_rgb565(void) { zelt_csc_yuv444_to_rgb565(planes, W, H, row, 0, out, W, H, row_565, 0); }
static void from_planes(void) { zelt_csc_r8g8b8_to_yuv444(planes, W, H, row, 0, out, W, H, row, 0); }
static void from_rgb888(void) { zelt_csc_rgb888_to_yuv444(planes, W, H, row_3, 0, out, W, H, row, 0); }
static void resized_rgb888(void) {
    const int32_t to_s[] = {3 * W2};
    zelt_csc_rsz_yuv444_to_rgb888(planes, W, H, row, 0, out, W2, H2, to_s, 0);
}
static void resize_rgba(int w, int h) {
    uint32_t x, y;
    bilinear_rsz_step_size(W, H, w, h, &x, &y);
    zelt_irsz8b8b8b8b_full(src, 4 * W, w, h, 4 * w, dst, x, y);
}
static void resized_rgba(void) { resize_rgba(W2, H2); }
static void quartered_rgba(void) { resize_rgba(W / 4, H / 4); }

static uint32_t ssd_of_16(const void* a, const void* b, int sa, int sb) { return zelt_ssd(16, 16, a, b, sa, sb); }

/* A map of blocks, each beside one that lies a little apart */
#define MAP(name, kernel, size)                                                            \
    static void name(void) {                                                               \
        uint32_t* map = (uint32_t*)dst;                                                    \
        int x, y;                                                                          \
        for (y = 0; y + size <= H; y += size)                                              \
            for (x = 0; x + size <= W; x += size)                                          \
                *map++ = kernel(src + y * W + x, src + W * H + y * W + x + (x & 7), W, W); \
    }
MAP(sad_16, zelt_sad16x16, 16)
MAP(sad_8, zelt_sad8x8, 8)
MAP(ssd_16, ssd_of_16, 16)
MAP(satd_8, (uint32_t)zelt_satd8x8, 8)

static const struct {
    const char* name;
    void (*run)(void);
} works[] = {{"I420 to RGBA", i420_to_rgba},
             {"I420 to RGBA, smooth chroma", i420_to_rgba_smooth},
             {"NV12 to RGB", nv12_to_rgb},
             {"RGBA to I420", rgba_to_i420},
             {"YUV 4:4:4 to RGB", to_rgb888},
             {"YUV 4:4:4 to RGBA", to_rgba8888},
             {"YUV 4:4:4 to RGB565", to_rgb565},
             {"planes of RGB to YUV 4:4:4", from_planes},
             {"RGB to YUV 4:4:4", from_rgb888},
             {"YUV 4:4:4 to RGB of 1280x720", resized_rgb888},
             {"RGBA resized to 1280x720", resized_rgba},
             {"RGBA resized to 480x270", quartered_rgba},
             {"map of SAD 16x16", sad_16},
             {"map of SAD 8x8", sad_8},
             {"map of SSD 16x16", ssd_16},
             {"map of SATD 8x8", satd_8}};
enum { WORKS = sizeof works / sizeof *works };

static double now(void) {
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return (double)t.tv_sec * 1e3 + (double)t.tv_nsec / 1e6;
}

int main(void) {
    static double best[WORKS];
    uint32_t sums[WORKS], noise = 1;
    int round, w, i;
    src = malloc(BYTES + 8), dst = malloc(BYTES);
    if (!src || !dst) return 1;
    for (i = 0; i < BYTES; ++i) noise = noise * 1664525 + 1013904223, src[i] = (unsigned char)(noise >> 24);
    for (i = 0; i < 3; ++i) planes[i] = src + i * W * H, out[i] = dst + i * W * H;
    for (round = 0; round < ROUNDS; ++round)
        for (w = 0; w < WORKS; ++w) {
            double t;
            if (!round) memset(dst, 0, BYTES);
            t = now();
            works[w].run();
            t = now() - t;
            if (!round || t < best[w]) best[w] = t;
            if (round) continue;
            sums[w] = 2166136261u;
            for (i = 0; i < BYTES; ++i) sums[w] = (sums[w] ^ dst[i]) * 16777619u;
        }
    for (w = 0; w < WORKS; ++w) printf("%s\t%.3f\t%08x\n", works[w].name, best[w], (unsigned)sums[w]);
    free(src), free(dst);
    return 0;
}
