// SPDX-License-Identifier: MIT
#pragma once  // the text form of a hardware address
#include "core/types.h"

#include <cstdio>

namespace zelt {
/// Reads six octets such as "aa:bb:cc:dd:ee:ff" and keeps the first four; false, and out as it was, for other text.
inline bool read_mac(std::FILE* file, u8 out[4]) {
    unsigned octet[6];
    const int n =
        std::fscanf(file, "%2x:%2x:%2x:%2x:%2x:%2x", &octet[0], &octet[1], &octet[2], &octet[3], &octet[4], &octet[5]);
    if (n < 6) return false;
    for (int i = 0; i < 4; ++i) out[i] = static_cast<u8>(octet[i]);
    return true;
}
}  // namespace zelt
