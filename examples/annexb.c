// SPDX-License-Identifier: MIT
/* The size and the frame rate of an H.264 stream: finds the sequence parameter set in a file with start codes (Annex B)
 * and reads it up to its timing. A refill callback removes the emulation prevention bytes on the way.
 *
 *     annexb FILE.h264 */
#include <stdio.h>
#include <stdlib.h>
#include <zelt/bsr.h>

/* Within a unit 00 00 03 stands for 00 00: the 03 keeps start codes out of the payload. */
static int32_t refill(ZELT_BSR *bs, int32_t byte) {
    bs->code = 0;
    bs->leftbits = 0;
    for (; bs->cur <= bs->end && bs->leftbits < 8 * byte; ++bs->cur) {
        if (*bs->cur == 3 && bs->cur - bs->beg >= 2 && bs->cur[-1] == 0 && bs->cur[-2] == 0) continue;
        bs->code |= (uint32_t)*bs->cur << (24 - bs->leftbits);
        bs->leftbits += 8;
    }
    return bs->leftbits > 0 ? 0 : -1;
}

static void skip_scaling_list(ZELT_BSR *bs, int entries) {
    int32_t last = 8, next = 8;
    int i;
    for (i = 0; i < entries; ++i) {
        if (next != 0) next = (last + zelt_bsr_read_se(bs)) & 255;
        if (next != 0) last = next;
    }
}

/* Fields that only the high profiles have: chroma format, bit depths, scaling lists. Returns the chroma format. */
static uint32_t read_high_profile(ZELT_BSR *bs) {
    const uint32_t chroma_format = zelt_bsr_read_ue(bs);
    int i;
    if (chroma_format == 3) zelt_bsr_skip(bs, 1); /* separate planes */
    zelt_bsr_read_ue(bs);                         /* luma depth */
    zelt_bsr_read_ue(bs);                         /* chroma depth */
    zelt_bsr_skip(bs, 1);                         /* lossless */
    if (zelt_bsr_read1(bs) == 1) {
        for (i = 0; i < (chroma_format == 3 ? 12 : 8); ++i) {
            if (zelt_bsr_read1(bs) == 1) skip_scaling_list(bs, i < 6 ? 16 : 64);
        }
    }
    return chroma_format;
}

/* Rec. ITU-T H.264, 7.3.2.1.1. Past the end of a damaged set the reader gives -1 or -2 and never leaves the buffer. */
static int print_parameter_set(const uint8_t *unit, int32_t size) {
    uint32_t profile, level, chroma_format = 1, width, height, frames_only, x_unit, y_unit, i;
    uint32_t crop[4] = {0, 0, 0, 0}; /* left, right, top, bottom */
    ZELT_BSR bs;

    zelt_bsr_init(&bs, unit, size, refill);
    profile = zelt_bsr_read(&bs, 8);
    zelt_bsr_skip(&bs, 8); /* constraints */
    level = zelt_bsr_read(&bs, 8);
    zelt_bsr_read_ue(&bs); /* identifier */
    if (profile >= 100 || profile == 44 || profile == 83 || profile == 86) chroma_format = read_high_profile(&bs);
    zelt_bsr_read_ue(&bs);           /* frame number length */
    switch (zelt_bsr_read_ue(&bs)) { /* picture order */
    case 0: zelt_bsr_read_ue(&bs); break;
    case 1:
        zelt_bsr_skip(&bs, 1);
        zelt_bsr_read_se(&bs);
        zelt_bsr_read_se(&bs);
        for (i = zelt_bsr_read_ue(&bs); i > 0 && i < 256; --i) zelt_bsr_read_se(&bs);
        break;
    default: break;
    }
    zelt_bsr_read_ue(&bs); /* reference frames */
    zelt_bsr_skip(&bs, 1); /* gaps allowed */
    width = 16 * (zelt_bsr_read_ue(&bs) + 1);
    height = 16 * (zelt_bsr_read_ue(&bs) + 1);
    frames_only = zelt_bsr_read(&bs, 1);
    if (!frames_only) zelt_bsr_skip(&bs, 1); /* field or frame macroblocks */
    height *= 2 - (frames_only & 1);
    zelt_bsr_skip(&bs, 1); /* direct 8x8 */
    if (zelt_bsr_read1(&bs) == 1) {
        for (i = 0; i < 4; ++i) crop[i] = zelt_bsr_read_ue(&bs);
    }
    x_unit = chroma_format == 1 || chroma_format == 2 ? 2 : 1;
    y_unit = (chroma_format == 1 ? 2 : 1) * (2 - (frames_only & 1));
    width -= x_unit * (crop[0] + crop[1]);
    height -= y_unit * (crop[2] + crop[3]);
    if (width == 0 || height == 0 || width > 16384 || height > 16384) return -1;
    printf("%ux%u, profile %u, level %u.%u", (unsigned)width, (unsigned)height, (unsigned)profile,
           (unsigned)(level / 10), (unsigned)(level % 10));

    if (zelt_bsr_read1(&bs) == 1) { /* usability information */
        if (zelt_bsr_read1(&bs) == 1 && zelt_bsr_read(&bs, 8) == 255) zelt_bsr_skip(&bs, 32); /* sample aspect */
        if (zelt_bsr_read1(&bs) == 1) zelt_bsr_skip(&bs, 1);                                  /* overscan */
        if (zelt_bsr_read1(&bs) == 1) {                                                       /* signal type */
            zelt_bsr_skip(&bs, 4);
            if (zelt_bsr_read1(&bs) == 1) zelt_bsr_skip(&bs, 24);
        }
        if (zelt_bsr_read1(&bs) == 1) { /* chroma location */
            zelt_bsr_read_ue(&bs);
            zelt_bsr_read_ue(&bs);
        }
        if (zelt_bsr_read1(&bs) == 1) { /* timing, in fields: half of it are frames */
            const uint32_t tick = zelt_bsr_read(&bs, 32), scale = zelt_bsr_read(&bs, 32);
            if (tick > 0) printf(", %.3f frames a second", scale / 2.0 / tick);
        }
    }
    printf("\n");
    return 0;
}

/* Offset of the first byte behind the next start code, or size. */
static long next_unit(const uint8_t *data, long size, long at) {
    for (; at + 3 <= size; ++at) {
        if (data[at] == 0 && data[at + 1] == 0 && data[at + 2] == 1) return at + 3;
    }
    return size;
}

int main(int argc, char **argv) {
    static uint8_t data[1 << 20]; /* parameter sets come first */
    FILE *file = argc == 2 ? fopen(argv[1], "rb") : NULL;
    long size, at, end;
    if (!file) {
        fprintf(stderr, "usage: annexb FILE.h264\n");
        return 1;
    }
    size = (long)fread(data, 1, sizeof data, file);
    fclose(file);
    for (at = next_unit(data, size, 0); at < size; at = end) {
        end = next_unit(data, size, at);
        if ((data[at] & 31) != 7) continue;
        if (print_parameter_set(data + at + 1, (int32_t)(end - at - 1)) == 0) return 0;
        break;
    }
    fprintf(stderr, "no sequence parameter set\n");
    return 2;
}
