// SPDX-License-Identifier: MIT
/* What a pixel costs as pictures grow: a line for each work and size, with the bytes that it visits and the least time
 * of many rounds, each in nanoseconds a pixel of the picture that it reads. scripts/growth.sh draws it. */
#define _GNU_SOURCE
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <zelt/csc.h>
#include <zelt/irsz.h>
#include <zelt/md5.h>

enum { ROUNDS = 50, MAX_W = 7680, MAX_H = 4320 };
static const int sizes[][2] = {{64, 64},    {96, 96},     {160, 120},   {320, 240},    {640, 480},
                               {1280, 720}, {1920, 1080}, {3840, 2160}, {MAX_W, MAX_H}};
enum { SIZES = sizeof sizes / sizeof *sizes };

/* Planes or a packed picture, and where the result goes */
static unsigned char *src, *dst;

static int reduced(int n) { return n * 2 / 3; }

static void convert(int w, int h) {
    void *from[] = {src, src + (size_t)w * h, src + (size_t)w * h * 2}, *to[] = {dst};
    const int32_t src_s[] = {w, w, w}, dst_s[] = {4 * w};
    zelt_csc_yuv444_to_rgba8888(from, w, h, src_s, 0, to, w, h, dst_s, 0);
}

static void resize(int w, int h) {
    uint32_t x, y;
    bilinear_rsz_step_size(w, h, reduced(w), reduced(h), &x, &y);
    zelt_irsz8b8b8b8b_full(src, 4 * w, reduced(w), reduced(h), 4 * reduced(w), dst, x, y);
}

static void resize_and_convert(int w, int h) {
    void *from[] = {src, src + (size_t)w * h, src + (size_t)w * h * 2}, *to[] = {dst};
    const int32_t src_s[] = {w, w, w}, dst_s[] = {4 * reduced(w)};
    zelt_csc_rsz_yuv444_to_rgba8888(from, w, h, src_s, 0, to, reduced(w), reduced(h), dst_s, 0);
}

static void digest(int w, int h) {
    ZELT_MD5 md5;
    zelt_md5_init(&md5);
    zelt_md5_update(&md5, src, (uint32_t)w * (uint32_t)h);
    zelt_md5_finish(&md5, dst);
}

/* What the machine's memory alone costs */
static void copy(int w, int h) { memcpy(dst, src, (size_t)w * h * 4); }

static const struct {
    const char* name;
    double bytes; /* a pixel, read and written */
    void (*run)(int w, int h);
} works[] = {{"MD5 of a plane", 1, digest},
             {"YUV 4:4:4 resized to 2/3 as RGBA", 3 + 4 * 4 / 9.0, resize_and_convert},
             {"RGBA resized to 2/3", 4 + 4 * 4 / 9.0, resize},
             {"YUV 4:4:4 to RGBA", 3 + 4, convert},
             {"memcpy of RGBA", 4 + 4, copy}};
enum { WORKS = sizeof works / sizeof *works };

static double now(void) {
    struct timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return (double)t.tv_sec * 1e9 + (double)t.tv_nsec;
}

int main(void) {
    static double best[WORKS][SIZES];
    const size_t bytes = (size_t)MAX_W * MAX_H * 4;
    int round, w, s, i;
    src = malloc(bytes), dst = malloc(bytes);
    if (!src || !dst) return 1;
    for (i = 0; i < (int)(bytes / 4); ++i) ((uint32_t*)src)[i] = (uint32_t)i * 2654435761u;
    memset(dst, 1, bytes);
    for (round = 0; round < ROUNDS; ++round)
        for (w = 0; w < WORKS; ++w)
            for (s = 0; s < SIZES; ++s) {
                const double pixels = (double)sizes[s][0] * sizes[s][1];
                const int times = 1 + (int)(1e6 / pixels);
                double t;
                works[w].run(sizes[s][0], sizes[s][1]); /* for the caches */
                t = now();
                for (i = 0; i < times; ++i) works[w].run(sizes[s][0], sizes[s][1]);
                t = (now() - t) / times / pixels;
                if (!round || t < best[w][s]) best[w][s] = t;
            }
    for (w = 0; w < WORKS; ++w)
        for (s = 0; s < SIZES; ++s)
            printf("%s\t%dx%d\t%.0f\t%.4f\n", works[w].name, sizes[s][0], sizes[s][1],
                   works[w].bytes * sizes[s][0] * sizes[s][1], best[w][s]);
    free(src), free(dst);
    return 0;
}
