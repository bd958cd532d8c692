// SPDX-License-Identifier: MIT
/* loaded LIBRARY NAME...: where the functions of a library, loaded by its path, are in its file. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <link.h>
#include <stdio.h>

int main(int argc, char** argv) {
    struct link_map* map;
    int i;
    void* library = dlopen(argv[1], RTLD_NOW);
    if (!library || dlinfo(library, RTLD_DI_LINKMAP, &map)) {
        fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    for (i = 2; i < argc; ++i) printf("%016lx %s\n", (unsigned long)dlsym(library, argv[i]) - map->l_addr, argv[i]);
    return 0;
}
