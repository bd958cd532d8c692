// SPDX-License-Identifier: MIT
/* What the levels in one library cost: the time of a call of a small kernel in this program; with the path of a
 * library, what loading that takes. The best of many runs. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdio.h>
#include <time.h>
#include <zelt/sad.h>

static double now(void) {
    struct timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return (double)t.tv_sec * 1e9 + (double)t.tv_nsec;
}

static double calls(void) {
    static unsigned char a[64], b[64];
    enum { N = 100000 };
    double start = now();
    uint32_t sum = 0;
    int i;
    for (i = 0; i < N; ++i) sum += zelt_sad4x4(a + (i & 7), b, 8, 8);
    return sum ? 0 : (now() - start) / N;
}

static double load(const char* path) {
    double start = now();
    void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!library) return 0;
    start = now() - start;
    dlclose(library);
    return start / 1e3;
}

int main(int argc, char** argv) {
    double best = 1e9, t;
    int i;
    for (i = 0; i < 1000; ++i) {
        t = argc > 1 ? load(argv[1]) : calls();
        if (t > 0 && t < best) best = t;
    }
    printf(argc > 1 ? "%.0f us\n" : "%.2f ns\n", best);
    return 0;
}
