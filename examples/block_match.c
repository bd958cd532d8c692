// SPDX-License-Identifier: MIT
/* Block matching in padded image buffers: where does each 16x16 block of a picture come from in the one before?
 *
 * A diamond search compares with zelt_sad_eskip, which gives up on a candidate as soon as it is worse than the best one
 * so far, and says at the end what the found places cost by SATD. The pictures are made up: waves that move by a known
 * vector, so that the program can say how many blocks it found. */
#include <math.h>
#include <stdio.h>
#include <string.h>
#include <zelt/zelt.h>

enum { WIDTH = 320, HEIGHT = 192, BLOCK = 16, RANGE = 24, PAD = RANGE + BLOCK };

typedef struct {
    int x, y;
} vector;

/* A sample of the scene, which goes on beyond every picture */
static uint8_t scene(int x, int y) {
    return (uint8_t)(128 + 60 * sin(x * 0.09) * cos(y * 0.05) + 60 * sin(y * 0.08) * cos(x * 0.03));
}

static ZELT_IMGB *take_picture(vector from) {
    const uint32_t pad = (uint32_t)PAD << 16 | PAD;
    ZELT_IMGB *img = zelt_imgb_create(WIDTH, HEIGHT, ZELT_CS_YUV400, 0, NULL, &pad, NULL, NULL, NULL);
    int x, y;
    if (!img) return NULL;
    for (y = 0; y < HEIGHT; ++y) {
        uint8_t *row = (uint8_t *)img->plane[0] + y * img->stride[0];
        for (x = 0; x < WIDTH; ++x) row[x] = scene(x + from.x, y + from.y);
        memset(row - PAD, row[0], PAD); /* edges go on into the padding, where candidates may lie */
        memset(row + WIDTH, row[WIDTH - 1], PAD);
    }
    for (y = 1; y <= PAD; ++y) {
        uint8_t *top = (uint8_t *)img->plane[0] - PAD, *bottom = top + (HEIGHT - 1) * img->stride[0];
        memcpy(top - y * img->stride[0], top, WIDTH + 2 * PAD);
        memcpy(bottom + y * img->stride[0], bottom, WIDTH + 2 * PAD);
    }
    return img;
}

/* The cheapest of the places that a pattern sets around `best` becomes the best; whether one was cheaper. */
static int improve(const uint8_t *block, const uint8_t *around, int stride, const vector *pattern, int places,
                   vector *best, int *cost) {
    const vector centre = *best;
    const int before = *cost;
    int i;
    for (i = 0; i < places; ++i) {
        const vector v = {centre.x + pattern[i].x, centre.y + pattern[i].y};
        int sad;
        if (v.x < -RANGE || v.x > RANGE || v.y < -RANGE || v.y > RANGE) continue;
        sad = zelt_sad_eskip(BLOCK, BLOCK, block, around + v.y * stride + v.x, stride, stride, *cost - 1);
        if (sad < *cost) {
            *cost = sad;
            *best = v;
        }
    }
    return *cost < before;
}

/* A large diamond walks downhill, a small one looks around the end of the way. */
static vector search(const uint8_t *block, const uint8_t *around, int stride, int *cost) {
    static const vector large[8] = {{0, -2}, {1, -1}, {2, 0}, {1, 1}, {0, 2}, {-1, 1}, {-2, 0}, {-1, -1}};
    static const vector small[4] = {{0, -1}, {1, 0}, {0, 1}, {-1, 0}};
    vector best = {0, 0};
    *cost = (int)zelt_sad16x16(block, around, stride, stride);
    while (improve(block, around, stride, large, 8, &best, cost)) continue;
    while (improve(block, around, stride, small, 4, &best, cost)) continue;
    return best;
}

int main(void) {
    const vector start = {40, 40}, motion = {5, -3};
    const vector moved = {start.x + motion.x, start.y + motion.y};
    ZELT_IMGB *before = take_picture(start), *now = take_picture(moved);
    int x, y, blocks = 0, found = 0;
    long satd = 0;

    if (!before || !now) return 1;
    for (y = 0; y < HEIGHT; y += BLOCK) {
        for (x = 0; x < WIDTH; x += BLOCK) {
            const int stride = now->stride[0];
            const uint8_t *block = (const uint8_t *)now->plane[0] + y * stride + x;
            const uint8_t *around = (const uint8_t *)before->plane[0] + y * stride + x;
            int cost;
            const vector v = search(block, around, stride, &cost);
            found += v.x == motion.x && v.y == motion.y;
            satd += zelt_satd(BLOCK, BLOCK, block, around + v.y * stride + v.x, stride, stride);
            ++blocks;
        }
    }
    before->release(before);
    now->release(now);
    printf("%d of %d blocks moved by (%d, %d), mean SATD %ld\n", found, blocks, motion.x, motion.y, satd / blocks);
    return 0;
}
