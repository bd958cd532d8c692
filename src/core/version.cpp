// SPDX-License-Identifier: MIT
#include "zelt/common.h"

#include <cstdio>

const char* zelt_version() {
    static char text[64];
    std::sprintf(text, "%s %s\n", "Mar 16 2019", "18:27:20");  // Kept: fixed, so that builds are reproducible
    return text;
}
