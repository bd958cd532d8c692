// SPDX-License-Identifier: MIT
// Media types of container codes. Compilers turn each switch into a tree of comparisons.
#include "zelt/fcc2mt.h"

#include "core/types.h"

using namespace zelt;

// clang-format off
#define VIDEO_CODES(X)                                                                                                \
    X(VID_MPEG4, "m4s2") X(VID_MPEG4, "M4S2") X(VID_MPEG4, "DX50") X(VID_MPEG4, "dx50") X(VID_MPEG4, "FMP4")          \
    X(VID_MPEG4, "DIV4") X(VID_MPEG4, "div4") X(VID_MPEG4, "XVID") X(VID_MPEG4, "xvid") X(VID_MPEG4, "DIVX")          \
    X(VID_MPEG4, "divx") X(VID_MPEG4, "MP4V") X(VID_MPEG4, "mp4v")                                                    \
    X(VID_H263, "H263") X(VID_H263, "d263") X(VID_H263, "h263") X(VID_H263, "s263")                                   \
    X(VID_H264, "avc1") X(VID_H264, "AVC1") X(VID_H264, "avcC")                                                       \
    X(VID_H264, "H264") X(VID_H264, "h264") X(VID_H264, "x264")                                                       \
    X(VID_WMV1, "WMV1") X(VID_WMV1, "wmv1") X(VID_WMV2, "WMV2") X(VID_WMV2, "wmv2")                                   \
    X(VID_WMV3, "WMV3") X(VID_WMV3, "wmv3") X(VID_DIV3, "DIV3") X(VID_DIV3, "div3")                                   \
    X(VID_RV10, "RV10") X(VID_RV20, "RV20") X(VID_RV30, "RV30") X(VID_RV40, "RV40")                                   \
    X(VID_MP43, "MP43") X(VID_MP43, "mp43") X(VID_VC1, "WVC1") X(VID_VC1, "wvc1") X(VID_VP8, "VP80")                  \
    X(VID_HEVC, "hvc1") X(VID_HEVC, "HVC1") X(VID_HEVC, "hvcC")                                                       \
    X(VID_HEVC, "H265") X(VID_HEVC, "h265") X(VID_HEVC, "x265")                                                       \
    X(VID_HFYU, "HFYU")
#define AUDIO_CODES(X)                                                                                                \
    X(AUD_PCM, 1) X(AUD_ALAW, 6) X(AUD_MULAW, 7) X(AUD_MPEG, 80) X(AUD_MP3, 85)                                       \
    X(AUD_AAC, 255) X(AUD_AAC, "aac ") X(AUD_AAC, "mp4a")                                                             \
    X(AUD_AC3, 8192) X(AUD_DTS, 8193)                                                                                 \
    X(AUD_AMR_NB, "samr") X(AUD_AMR_WB, "sawb") X(AUD_QCELP, "sqcp") X(AUD_QCELP, "dqcp")                             \
    X(AUD_WMA, 352) X(AUD_WMA, 353) X(AUD_WMA_PRO, 354) X(AUD_WMA_LOSSLESS, 355)                                      \
    X(AUD_EVRC, "evrc") X(AUD_SIPR, "sipr") X(AUD_COOK, "cook")
#define SUBTITLE_CODES(X)                                                                                             \
    X(SUB_SRT, "SSRT") X(SUB_TX3G, "TX3G") X(SUB_TX3G, "tx3g") X(SUB_TX3G, "SBTL") X(SUB_TX3G, "sbtl")                \
    X(SUB_ASS, "SASS") X(SUB_SSA, "SSSA")
#define RIGHTS_CODES(X) X(DRM_DIVX, "DIVX") X(DRM_DIVX, "divx")
#define CASE(type, c) case code(c): return ZELT_MT_##type;
// clang-format on

namespace {

constexpr u32 code(u32 tag) { return tag; }
constexpr u32 code(const char (&c)[5]) {
    u32 v = 0;
    for (int i = 3; i >= 0; --i) v = v << 8 | static_cast<u8>(c[i]);
    return v;
}

}  // namespace

int32_t zelt_fcc2mt_vid(uint32_t fcc) {
    switch (fcc) {
        VIDEO_CODES(CASE)
    default: return ZELT_MT_VID_UNKNOWN;
    }
}

int32_t zelt_fcc2mt_aud(uint32_t fcc) {
    switch (fcc) {
        AUDIO_CODES(CASE)
    default: return ZELT_MT_AUD_UNKNOWN;
    }
}

int32_t zelt_fcc2mt_sub(uint32_t fcc) {
    switch (fcc) {
        SUBTITLE_CODES(CASE)
    default: return ZELT_MT_SUB_UNKNOWN;
    }
}

int32_t zelt_fcc2mt_drm(uint32_t fcc) {
    switch (fcc) {
        RIGHTS_CODES(CASE)
    default: return ZELT_MT_DRM_UNKNOWN;
    }
}

int32_t zelt_fcc2mt(uint32_t fcc) {
    s32 mt = zelt_fcc2mt_aud(fcc);
    if (mt != ZELT_MT_AUD_UNKNOWN) return mt;
    mt = zelt_fcc2mt_vid(fcc);  // Kept: before rights management, so DIVX is video
    if (mt != ZELT_MT_VID_UNKNOWN) return mt;
    mt = zelt_fcc2mt_sub(fcc);
    if (mt != ZELT_MT_SUB_UNKNOWN) return mt;
    mt = zelt_fcc2mt_drm(fcc);
    return mt != ZELT_MT_DRM_UNKNOWN ? mt : ZELT_MT_UNKNOWN;
}
