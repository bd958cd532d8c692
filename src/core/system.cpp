// SPDX-License-Identifier: MIT
#include "core/mac.h"
#include "zelt/common.h"

#include <cstring>

using namespace zelt;

int32_t zelt_get_temp_path(char* out) {
    static constexpr char path[] = "/tmp/";
    std::memcpy(out, path, sizeof path);
    return sizeof path - 1;
}

int32_t zelt_get_mac_addr(int32_t index, uint8_t out[4]) {
    std::memset(out, 0, 4);
    char path[80];
    std::snprintf(path, sizeof path, "/sys/class/net/wlan%d/address", index);
    std::FILE* file = std::fopen(path, "r");
    if (!file) return -1;
    const bool done = read_mac(file, out);
    std::fclose(file);
    return done ? 0 : -1;
}
