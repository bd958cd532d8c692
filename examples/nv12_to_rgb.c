// SPDX-License-Identifier: MIT
/* The first picture of an NV12 file as a PPM file, which most viewers know.
 *
 *     nv12_to_rgb FILE.nv12 WIDTH HEIGHT OUT.ppm
 *
 * The file says nothing about itself. It is taken for limited range, and for BT.709 from 720 rows on. */
#include <stdio.h>
#include <stdlib.h>
#include <zelt/video.h>

static int32_t size_of(const char *text) {
    char *end;
    const long size = strtol(text, &end, 10);
    return *end == 0 && size > 0 && size <= 16384 ? (int32_t)size : 0;
}

static int fail(const char *what, const char *name) {
    fprintf(stderr, "%s %s\n", what, name);
    return 1;
}

int main(int argc, char **argv) {
    const int32_t w = argc == 5 ? size_of(argv[2]) : 0, h = argc == 5 ? size_of(argv[3]) : 0;
    const int32_t chroma_w = (w + 1) / 2 * 2, chroma_h = (h + 1) / 2; /* of an odd size halves are rounded up */
    const size_t luma_size = (size_t)w * (size_t)h, size = luma_size + (size_t)chroma_w * (size_t)chroma_h;
    ZELT_VIDEO video = {0};
    uint8_t *nv12, *rgb;
    FILE *file;
    int done;

    if (w == 0 || h == 0) {
        fprintf(stderr, "usage: nv12_to_rgb FILE.nv12 WIDTH HEIGHT OUT.ppm\n");
        return 1;
    }
    nv12 = malloc(size);
    rgb = malloc(luma_size * 3);
    if (!nv12 || !rgb) return fail("no memory for", argv[1]);

    file = fopen(argv[1], "rb");
    if (!file) return fail("cannot open", argv[1]);
    done = fread(nv12, 1, size, file) == size;
    fclose(file);
    if (!done) return fail("no picture of this size in", argv[1]);

    video.src_cs = ZELT_CS_NV12;
    video.dst_cs = ZELT_CS_RGB888;
    video.matrix = h >= 720 ? ZELT_VIDEO_BT709 : ZELT_VIDEO_BT601;
    video.chroma = ZELT_VIDEO_SMOOTH;
    if (zelt_video_init(&video) != ZELT_OK) return fail("no conversion for", argv[1]);
    {
        void *src[2], *dst[1];
        const int32_t src_stride[2] = {w, chroma_w}, dst_stride[1] = {3 * w};
        src[0] = nv12;
        src[1] = nv12 + luma_size;
        dst[0] = rgb;
        zelt_video_convert(&video, src, src_stride, dst, dst_stride, w, h);
    }

    file = fopen(argv[4], "wb");
    if (!file) return fail("cannot open", argv[4]);
    fprintf(file, "P6\n%d %d\n255\n", (int)w, (int)h);
    done = fwrite(rgb, 3, luma_size, file) == luma_size;
    if (fclose(file) != 0 || !done) return fail("cannot write", argv[4]);
    free(nv12);
    free(rgb);
    return 0;
}
