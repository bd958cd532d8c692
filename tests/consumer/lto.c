// SPDX-License-Identifier: MIT
/* Built with link-time optimisation together with the library: the compiler then sees both the library's accesses to
 * memory and this program's own, of other types. Every digest must be what separately compiled code gives. */
#include <stdio.h>
#include <zelt/zelt.h>

enum { W = 32, H = 16, N = W * H };

#define DIGEST(name, type)                                            \
    static uint32_t name(const type* p, int n) {                      \
        uint32_t h = 2166136261u;                                     \
        int i;                                                        \
        for (i = 0; i < n; ++i) h = (h ^ (uint32_t)p[i]) * 16777619u; \
        return h;                                                     \
    }
DIGEST(digest16, int16_t)
DIGEST(digest32, uint32_t)

#define NOISE(name, type, mask)                                                               \
    static void name(type* p, int n, uint32_t s) {                                            \
        int i;                                                                                \
        for (i = 0; i < n; ++i) p[i] = (type)((s = s * 1664525u + 1013904223u) >> 16 & mask); \
    }
NOISE(noise8, uint8_t, 255)
NOISE(noise16, int16_t, 1023)
NOISE(noise32, uint32_t, 0xffff)

static uint32_t fills(void) {
    static int16_t words[N];
    static uint32_t dwords[N];
    noise16(words, N, 1);
    words[40] = 1;
    zelt_mset16(words, 7, N);
    words[50] += words[40];
    noise32(dwords, N, 2);
    zelt_mset_x32(dwords, 0x01020304, 256);
    zelt_mset_x128(dwords + 100, 5, 256);
    zelt_mclr_x64(dwords + 200, 64);
    dwords[10] += dwords[110] + dwords[210];
    return digest16(words, N) ^ digest32(dwords, N);
}

static uint32_t conversions(void) {
    static uint8_t yuv[3][N];
    static uint32_t rgba[N];
    static int16_t rgb565[N], p410[3][N], r10g10b10[3][N];
    void *from[3] = {yuv[0], yuv[1], yuv[2]}, *to[2] = {rgba, NULL};
    void *from10[3] = {p410[0], p410[1], p410[2]}, *to10[3] = {r10g10b10[0], r10g10b10[1], r10g10b10[2]};
    const int32_t s8[3] = {W, W, W}, s16[3] = {W * 2, W * 2, W * 2}, s32[2] = {W * 4, 0};
    noise8(yuv[0], 3 * N, 5);
    noise32(rgba, N, 6);
    noise16(rgb565, N, 7);
    noise16(p410[0], 3 * N, 8);
    noise16(r10g10b10[0], 3 * N, 9);
    zelt_csc_yuv444_to_rgba8888(from, W, H, s8, ZELT_CS_YUV444, to, W, H, s32, ZELT_CS_RGBA8888);
    to[0] = rgb565;
    zelt_csc_yuv444_to_rgb565(from, W, H, s8, ZELT_CS_YUV444, to, W, H, s16, ZELT_CS_RGB565);
    zelt_csc_p410_to_r10g10b10(from10, W, H, s16, ZELT_CS_P410, to10, W, H, s16, ZELT_CS_R10G10B10);
    return digest32(rgba, N) ^ digest16(rgb565, N) ^ digest16(r10g10b10[0], 3 * N);
}

static uint32_t metrics(void) {
    static int16_t a[N], b[N], diff[N];
    uint32_t costs[6];
    noise16(a, N, 14);
    noise16(b, N, 15);
    noise16(diff, N, 16);
    zelt_diff16x16_16(a, b, W, W, W, diff);
    costs[0] = zelt_sad16x16_16(a, b, W, W);
    a[5] = diff[5];
    costs[1] = (uint32_t)zelt_satd8x8_16(a, b, W, W);
    a[6] = diff[6];
    costs[2] = zelt_ssd_16(16, 16, a, b, W, W);
    costs[3] = zelt_sad8x8_bi_16(a, diff, W, W);
    costs[4] = digest16(diff, N);
    costs[5] = zelt_sad16x16(a, b, W, W);
    return digest32(costs, 6);
}

int main(void) {
    static const struct {
        const char* name;
        uint32_t (*run)(void);
        uint32_t expected;
    } rows[] = {
        {"fills", fills, 0x5c4407ff}, {"conversions", conversions, 0xa61e87ea}, {"metrics", metrics, 0xaa9c62ae}};
    int i, wrong = 0;
    for (i = 0; i < 3; ++i) {
        const uint32_t digest = rows[i].run();
        if (digest == rows[i].expected) continue;
        printf("%s: %#lx, not %#lx\n", rows[i].name, (unsigned long)digest, (unsigned long)rows[i].expected);
        wrong = 1;
    }
    return wrong;
}
