// SPDX-License-Identifier: MIT
#pragma once
// MD5 digests of pictures.
#include "pictures/picture.h"
#include "zelt/md5.h"

#include <string>

namespace zelt::tool {

struct digest {
    uint8_t bytes[16];
    std::string text() const {
        std::string hex;
        for (const uint8_t b : bytes) hex += "0123456789abcdef"[b >> 4], hex += "0123456789abcdef"[b & 15];
        return hex;
    }
};

class digester {
public:
    digester() { zelt_md5_init(&context_); }

    void add(const void* from, std::size_t bytes) {
        zelt_md5_update(&context_, static_cast<const uint8_t*>(from), static_cast<uint32_t>(bytes));
    }
    /// A picture as ffmpeg writes raw video: its rows without gaps
    void add(const picture& pic) {
        for_each_run(pic, [this](const uint8_t* from, std::size_t bytes) { add(from, bytes); });
    }
    digest result() {
        digest d;
        zelt_md5_finish(&context_, d.bytes);
        return d;
    }

private:
    ZELT_MD5 context_;
};

inline digest digest_of(const picture& pic) {
    digester one;
    one.add(pic);
    return one.result();
}

}  // namespace zelt::tool
