// SPDX-License-Identifier: MIT
/** @defgroup zelt_fcc2mt Media types, key frames (zelt/fcc2mt.h)
 *  Media types: what a FourCC or an audio format tag stands for, and which video frames can be decoded on their own.
 *  @{ */
#ifndef ZELT_FCC2MT_H
#define ZELT_FCC2MT_H

#include "zelt/common.h"

ZELT_BEGIN_DECLS

/** Media types, a range a class; the last value of a range stands for all that the class does not know. */
enum ZELT_MT {
    ZELT_MT_UNKNOWN = 0, /**< unknown to every class */

    ZELT_MT_VID_MPEG4 = 102,   /**< MPEG-4 part 2: m4s2 M4S2 DX50 dx50 FMP4 DIV4 div4 XVID xvid DIVX divx MP4V mp4v */
    ZELT_MT_VID_H263 = 103,    /**< H.263: H263 d263 h263 s263 */
    ZELT_MT_VID_H264 = 104,    /**< H.264: avc1 AVC1 avcC H264 h264 x264 */
    ZELT_MT_VID_WMV1 = 105,    /**< Windows Media Video 7: WMV1 wmv1 */
    ZELT_MT_VID_WMV2 = 106,    /**< Windows Media Video 8: WMV2 wmv2 */
    ZELT_MT_VID_WMV3 = 107,    /**< Windows Media Video 9: WMV3 wmv3 */
    ZELT_MT_VID_DIV3 = 110,    /**< MS MPEG-4 version 3 under its DivX name: DIV3 div3 */
    ZELT_MT_VID_RV10 = 113,    /**< RealVideo 1: RV10 */
    ZELT_MT_VID_RV20 = 114,    /**< RealVideo 2: RV20 */
    ZELT_MT_VID_RV30 = 115,    /**< RealVideo 3: RV30 */
    ZELT_MT_VID_RV40 = 116,    /**< RealVideo 4: RV40 */
    ZELT_MT_VID_MP43 = 117,    /**< MS MPEG-4 version 3: MP43 mp43 */
    ZELT_MT_VID_VC1 = 118,     /**< VC-1 advanced profile: WVC1 wvc1 */
    ZELT_MT_VID_VP8 = 119,     /**< VP8: VP80 */
    ZELT_MT_VID_HEVC = 120,    /**< HEVC: hvc1 HVC1 hvcC H265 h265 x265 */
    ZELT_MT_VID_HFYU = 122,    /**< HuffYUV: HFYU */
    ZELT_MT_VID_UNKNOWN = 299, /**< no video code known here */

    ZELT_MT_AUD_PCM = 300,          /**< linear PCM: tag 1 */
    ZELT_MT_AUD_ALAW = 301,         /**< G.711 A-law: tag 6 */
    ZELT_MT_AUD_MULAW = 302,        /**< G.711 mu-law: tag 7 */
    ZELT_MT_AUD_MPEG = 304,         /**< MPEG audio layers I and II: tag 80 */
    ZELT_MT_AUD_MP3 = 305,          /**< MPEG audio layer III: tag 85 */
    ZELT_MT_AUD_AAC = 306,          /**< AAC: tag 255, "aac ", mp4a */
    ZELT_MT_AUD_AC3 = 307,          /**< AC-3: tag 8192 */
    ZELT_MT_AUD_DTS = 308,          /**< DTS: tag 8193 */
    ZELT_MT_AUD_AMR_NB = 309,       /**< AMR narrow band: samr */
    ZELT_MT_AUD_AMR_WB = 310,       /**< AMR wide band: sawb */
    ZELT_MT_AUD_QCELP = 311,        /**< QCELP: sqcp dqcp */
    ZELT_MT_AUD_WMA = 312,          /**< Windows Media Audio 1 and 2: tags 352, 353 */
    ZELT_MT_AUD_WMA_PRO = 313,      /**< Windows Media Audio Professional: tag 354 */
    ZELT_MT_AUD_WMA_LOSSLESS = 314, /**< Windows Media Audio Lossless: tag 355 */
    ZELT_MT_AUD_EVRC = 321,         /**< EVRC: evrc */
    ZELT_MT_AUD_SIPR = 331,         /**< RealAudio SIPRO: sipr */
    ZELT_MT_AUD_COOK = 332,         /**< RealAudio Cook: cook */
    ZELT_MT_AUD_UNKNOWN = 499,      /**< no audio code known here */

    ZELT_MT_DRM_DIVX = 1100,    /**< DivX rights management: DIVX divx */
    ZELT_MT_DRM_UNKNOWN = 1299, /**< no rights management known here */

    ZELT_MT_SUB_SRT = 3000,    /**< SubRip: SSRT */
    ZELT_MT_SUB_TX3G = 3006,   /**< 3GPP timed text: TX3G tx3g SBTL sbtl */
    ZELT_MT_SUB_ASS = 3007,    /**< Advanced SubStation Alpha: SASS */
    ZELT_MT_SUB_SSA = 3008,    /**< SubStation Alpha: SSSA */
    ZELT_MT_SUB_UNKNOWN = 3199 /**< no subtitle code known here */
};

/** @name Codes of one class
 *  @{ */
/** Media type of a container's code, within one class. Codes are compared exactly, case included. Any thread.
 *  @param fcc  a FourCC, its first character in the lowest byte; for audio also a WAVE format tag
 *  @return     the media type, or the class's unknown value: ZELT_MT_VID_UNKNOWN, ZELT_MT_AUD_UNKNOWN,
 *              ZELT_MT_SUB_UNKNOWN, ZELT_MT_DRM_UNKNOWN */
ZELT_API int32_t zelt_fcc2mt_vid(uint32_t fcc);
ZELT_API int32_t zelt_fcc2mt_aud(uint32_t fcc);
ZELT_API int32_t zelt_fcc2mt_sub(uint32_t fcc);
ZELT_API int32_t zelt_fcc2mt_drm(uint32_t fcc);
/** @} */

/** Media type of a container's code in the first class that knows it: audio, video, subtitles, rights management. DIVX
 *  and divx are video here. Any thread.
 *  @param fcc  as above
 *  @return     the media type, or ZELT_MT_UNKNOWN */
ZELT_API int32_t zelt_fcc2mt(uint32_t fcc);

/** Tells whether a compressed video frame is intra coded, so that decoding can start there, from the headers at its
 *  beginning. No byte at or past `size` is read; a frame whose deciding byte lies there is none. Any thread.
 *
 *  - H.264: the first slice unit (types 1 and 5) behind a start code is an IDR slice.
 *  - HEVC: the first unit behind a start code, whatever it is, has type 19 or 20; a frame that begins with a parameter
 *    set is none.
 *  - MPEG-4 part 2: the first VOP has coding type I; pictures with a short header count by their type bit.
 *  - H.263, and 111, which no code maps to: the first picture header, extended ones included, says intra.
 *  - WMV1, DIV3, WMV2: the leading type bits of the first byte are 0.
 *  - HuffYUV: always; every other type: never.
 *  @param mt    the media type, ZELT_MT_VID_*
 *  @param data  the frame as a container delivers it, H.264 and HEVC with start codes; null is no key frame (HuffYUV
 *               does not look)
 *  @param size  its bytes; WMV1, WMV2 and DIV3 read the first one whatever it says
 *  @return      1 or 0 */
ZELT_API int32_t zelt_is_vkeyfrm(int32_t mt, const uint8_t *data, int32_t size);

ZELT_END_DECLS

/** @} */

#endif
