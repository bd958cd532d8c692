// SPDX-License-Identifier: MIT
#pragma once
// Decoded pictures of a clip. libavformat and libavcodec decode, out of the module that container.h tells about.
#include "pictures/reader.h"

#include <cstdio>

namespace zelt::tool {

/// A picture in memory that the decoder leaves alone as long as it is held
struct frame {
    int32_t cs, w, h;
    void* plane[4];
    int32_t stride[4];
    std::shared_ptr<void> memory;
};

class decoder {
public:
    virtual ~decoder() = default;
    virtual bool next(frame& to) = 0;  // the next picture; false where there is none

    clip about;  // but for the format
};

/// What the module exports as zelt_open_decoder; the caller deletes the result and keeps the file. With `bytes` each
/// picture is one plane of a single row, its samples in the order that ffmpeg writes raw video in, of any pixel format.
/// By so many threads; 0: as there are processors.
using decoder_opener = decoder*(const std::string& name, FILE* file, bool bytes, int threads);

}  // namespace zelt::tool
