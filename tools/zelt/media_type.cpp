// SPDX-License-Identifier: MIT
// Names of media types and codes.
#include "container.h"
#include "zelt/fcc2mt.h"

#include <algorithm>
#include <cctype>

namespace zelt::tool {
namespace {

// clang-format off
#define MEDIA_TYPES(X)                                                                                     \
    X(VID_MPEG4) X(VID_H263) X(VID_H264) X(VID_WMV1) X(VID_WMV2) X(VID_WMV3) X(VID_DIV3) X(VID_RV10)       \
    X(VID_RV20) X(VID_RV30) X(VID_RV40) X(VID_MP43) X(VID_VC1) X(VID_VP8) X(VID_HEVC) X(VID_HFYU)          \
    X(AUD_PCM) X(AUD_ALAW) X(AUD_MULAW) X(AUD_MPEG) X(AUD_MP3) X(AUD_AAC) X(AUD_AC3) X(AUD_DTS)            \
    X(AUD_AMR_NB) X(AUD_AMR_WB) X(AUD_QCELP) X(AUD_WMA) X(AUD_WMA_PRO) X(AUD_WMA_LOSSLESS) X(AUD_EVRC)     \
    X(AUD_SIPR) X(AUD_COOK) X(DRM_DIVX) X(SUB_SRT) X(SUB_TX3G) X(SUB_ASS) X(SUB_SSA)
#define NAME(type) case ZELT_MT_##type: return &#type[4];
// clang-format on

const char* name_of(int32_t media_type) {
    switch (media_type) {
        MEDIA_TYPES(NAME)
    default: return "unknown";
    }
}

}  // namespace

std::string media_type_text(int32_t media_type) {
    return std::string(name_of(media_type)) + " (" + std::to_string(media_type) + ")";
}

std::string code_text(const track& t) {
    if (!t.code) return "none";
    std::string text;
    for (int i = 0; i < 4; ++i) text += static_cast<char>(t.code >> 8 * i & 255);
    const bool printable = std::ranges::all_of(text, [](unsigned char c) { return std::isprint(c); });
    return printable ? text : std::to_string(t.code);
}

}  // namespace zelt::tool
