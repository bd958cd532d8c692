// SPDX-License-Identifier: MIT
#pragma once
// Decoded pictures of a clip. libavformat and libavcodec decode, out of the module that container.h tells about.
#include "pictures/reader.h"

#include <cstdio>

namespace zelt::tool {

/// A picture in the decoder's memory
struct frame {
    int32_t cs, w, h;
    void* plane[4];
    int32_t stride[4];
};

class decoder {
public:
    virtual ~decoder() = default;
    /// The next picture, which stays until the call after the next; false where there is none.
    virtual bool next(frame& to) = 0;

    clip about;  // but for the format
};

/// What the module exports as zelt_open_decoder; the caller deletes the result and keeps the file. With `bytes` each
/// picture is one plane of a single row, its samples in the order that ffmpeg writes raw video in, of any pixel format.
using decoder_opener = decoder*(const std::string& name, FILE* file, bool bytes);

}  // namespace zelt::tool
