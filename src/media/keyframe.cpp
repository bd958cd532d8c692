// SPDX-License-Identifier: MIT
// Key frames: the picture and unit headers of each codec.
#include "media/start_code.h"
#include "simd/export.h"
#include "zelt/fcc2mt.h"

using namespace zelt;

namespace {

/// Offset of the first start code at or after `from` that has `need` bytes (4 or more) before `size`, or -1.
template <class Kind> s32 find_start_code(const u8* data, s32 from, s32 size, s32 need) {
    s32 i = from;
    while (size - i >= need - 1 + fast::places && !fast::any_start<Kind>(data + i)) i += fast::places;
    for (; size - i >= need; ++i)
        if (starts<Kind>(data[i], data[i + 1], data[i + 2])) return i;
    return -1;
}

constexpr s32 h263_variant = 111;  // Kept: no code maps to it, but its frames are examined as H.263

bool h264(const u8* data, s32 size) {
    for (s32 i = 0; (i = find_start_code<unit_start>(data, i, size, 4)) >= 0; i += 3) {
        const int type = data[i + 3] & 0x1F;
        if (type == 1 || type == 5) return type == 5;
    }
    return false;
}

bool hevc(const u8* data, s32 size) {
    const s32 i = find_start_code<unit_start>(data, 0, size, 4);
    if (i < 0) return false;
    const int type = data[i + 3] >> 1 & 0x3F;
    return type == 19 || type == 20;  // Kept: the first unit alone decides, clean random access does not count
}

/// The fields of a short-header picture: 5 bits of time stamp, the marker 10, three flags, the source format (7:
/// extended) and the coding type.
bool marked(const u8* picture) { return (picture[3] & 3) == 2; }
bool extended(const u8* picture) { return (picture[4] & 0x1C) == 0x1C; }
bool intra(const u8* picture) { return (picture[4] & 2) == 0; }

bool mpeg4(const u8* data, s32 size) {
    for (s32 i = 0; (i = find_start_code<unit_or_picture_start>(data, i, size, 5)) >= 0; i += 3) {
        const u8* unit = data + i;
        if (unit[2] != 1) {
            if (!marked(unit)) return false;
            if (!extended(unit)) return intra(unit);
        } else if (unit[3] == 0xB6) {
            return unit[4] < 0x40;
        }
    }
    return false;
}

bool h263(const u8* data, s32 size) {
    const s32 i = find_start_code<picture_start>(data, 0, size, 7);
    if (i < 0) return false;
    const u8* picture = data + i;
    if (!marked(picture)) return false;
    if (!extended(picture)) return intra(picture);
    const int update = (picture[4] << 1 & 6) | picture[5] >> 7;  // UFEP; 1: the optional part precedes the type
    if (update != 1) return (picture[5] & 0x70) == 0;
    return i < size - 7 && (picture[7] & 0x1C) == 0;
}

}  // namespace

ZELT_EXPORT(int32_t, zelt_is_vkeyfrm)(int32_t mt, const uint8_t* data, int32_t size) {
    if (mt == ZELT_MT_VID_HFYU) return 1;
    if (!data) return 0;
    switch (mt) {
    case ZELT_MT_VID_WMV1:
    case ZELT_MT_VID_DIV3: return data[0] < 0x40;  // Kept: the size is ignored
    case ZELT_MT_VID_WMV2: return data[0] < 0x80;
    case ZELT_MT_VID_H264: return h264(data, size);
    case ZELT_MT_VID_HEVC: return hevc(data, size);
    case ZELT_MT_VID_MPEG4: return mpeg4(data, size);
    case ZELT_MT_VID_H263:
    case h263_variant: return h263(data, size);
    default: return 0;
    }
}
