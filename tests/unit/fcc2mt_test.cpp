#include "zelt/fcc2mt.h"

#include <gtest/gtest.h>
#include <map>
#include <string>

namespace {

uint32_t fcc(const std::string& c) {
    uint32_t v = 0;
    for (size_t i = 0; i < 4; ++i) v |= static_cast<uint32_t>(static_cast<uint8_t>(c[i])) << 8 * i;
    return v;
}

const std::map<std::string, int> video = {
    {"m4s2", 102}, {"M4S2", 102}, {"DX50", 102}, {"dx50", 102}, {"FMP4", 102}, {"DIV4", 102}, {"div4", 102},
    {"XVID", 102}, {"xvid", 102}, {"DIVX", 102}, {"divx", 102}, {"MP4V", 102}, {"mp4v", 102}, {"H263", 103},
    {"d263", 103}, {"h263", 103}, {"s263", 103}, {"avc1", 104}, {"AVC1", 104}, {"avcC", 104}, {"H264", 104},
    {"h264", 104}, {"x264", 104}, {"WMV1", 105}, {"wmv1", 105}, {"WMV2", 106}, {"wmv2", 106}, {"WMV3", 107},
    {"wmv3", 107}, {"DIV3", 110}, {"div3", 110}, {"RV10", 113}, {"RV20", 114}, {"RV30", 115}, {"RV40", 116},
    {"MP43", 117}, {"mp43", 117}, {"WVC1", 118}, {"wvc1", 118}, {"VP80", 119}, {"hvc1", 120}, {"HVC1", 120},
    {"hvcC", 120}, {"H265", 120}, {"h265", 120}, {"x265", 120}, {"HFYU", 122}};
const std::map<std::string, int> audio = {{"aac ", 306}, {"mp4a", 306}, {"samr", 309}, {"sawb", 310}, {"sqcp", 311},
                                          {"dqcp", 311}, {"evrc", 321}, {"sipr", 331}, {"cook", 332}};
const std::map<uint32_t, int> tags = {{1, 300},   {6, 301},   {7, 302},   {80, 304},  {85, 305},   {255, 306},
                                      {352, 312}, {353, 312}, {354, 313}, {355, 314}, {8192, 307}, {8193, 308}};
const std::map<std::string, int> subtitles = {{"SSRT", 3000}, {"TX3G", 3006}, {"tx3g", 3006}, {"SBTL", 3006},
                                              {"sbtl", 3006}, {"SASS", 3007}, {"SSSA", 3008}};
const std::map<std::string, int> rights = {{"DIVX", 1100}, {"divx", 1100}};

template <class Map, class Key> int look_up(const Map& map, const Key& key, int otherwise) {
    const auto it = map.find(key);
    return it == map.end() ? otherwise : it->second;
}

/// What every class, and all of them together, make of a code, against the maps above.
void expect_types(uint32_t code) {
    std::string c;
    for (int i = 0; i < 4; ++i) c += static_cast<char>(code >> 8 * i);
    const int aud = look_up(tags, code, look_up(audio, c, 499)), vid = look_up(video, c, 299);
    const int sub = look_up(subtitles, c, 3199), drm = look_up(rights, c, 1299);
    const int any = aud != 499 ? aud : vid != 299 ? vid : sub != 3199 ? sub : drm != 1299 ? drm : 0;
    ASSERT_EQ(zelt_fcc2mt_aud(code), aud) << c;
    ASSERT_EQ(zelt_fcc2mt_vid(code), vid) << c;
    ASSERT_EQ(zelt_fcc2mt_sub(code), sub) << c;
    ASSERT_EQ(zelt_fcc2mt_drm(code), drm) << c;
    ASSERT_EQ(zelt_fcc2mt(code), any) << c;
}

}  // namespace

TEST(fcc2mt, every_16_bit_tag) {
    for (uint32_t tag = 0; tag < 65536; ++tag) expect_types(tag);
}

TEST(fcc2mt, every_code_and_all_that_differ_from_one_in_a_byte) {
    for (const auto* map : {&video, &audio, &subtitles, &rights})
        for (const auto& [c, type] : *map) {
            const uint32_t code = fcc(c);
            ASSERT_NO_FATAL_FAILURE(expect_types(code));
            for (uint32_t other = 0; other < 4 * 256; ++other) {
                const uint32_t shift = other / 256 * 8;
                ASSERT_NO_FATAL_FAILURE(expect_types((code & ~(0xFFu << shift)) | (other & 255) << shift));
            }
            ASSERT_NO_FATAL_FAILURE(expect_types(__builtin_bswap32(code)));
        }
}

TEST(fcc2mt, gaps_that_stay) {
    for (const char* c : {"abcd", "e263", "r263", "Avc1", "hev1", "vp80", "hfyu", "MP42"})
        EXPECT_EQ(zelt_fcc2mt(fcc(c)), 0);
    EXPECT_EQ(zelt_fcc2mt(fcc("DIVX")), ZELT_MT_VID_MPEG4);
    EXPECT_EQ(zelt_fcc2mt_drm(fcc("DIVX")), ZELT_MT_DRM_DIVX);
    EXPECT_EQ(zelt_fcc2mt(2), 0);
}
