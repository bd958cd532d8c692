// SPDX-License-Identifier: MIT
#include "zelt/fcc2mt.h"

#include <gtest/gtest.h>
#include <string>

namespace {

uint32_t fcc(const std::string& c) {
    uint32_t v = 0;
    for (size_t i = 0; i < 4; ++i) v |= static_cast<uint32_t>(static_cast<uint8_t>(c[i])) << 8 * i;
    return v;
}

}  // namespace

/// Of all 16-bit tags and all codes of the characters that are used, those that are known and what each class says.
TEST(fcc2mt, digest_of_all_codes) {
    const std::string characters = " 0123456789ABCDFGHILMPRSTUVWXYabcdeghiklmopqrstvwx";
    int known = 0;
    uint64_t digest = 0;
    const auto add = [&](uint32_t code) {
        if (zelt_fcc2mt(code) == ZELT_MT_UNKNOWN) return;
        ++known;
        for (auto type : {zelt_fcc2mt, zelt_fcc2mt_vid, zelt_fcc2mt_aud, zelt_fcc2mt_sub, zelt_fcc2mt_drm})
            digest = (digest * 31 + code) * 1099511628211 + static_cast<uint32_t>(type(code));
    };
    for (uint32_t tag = 0; tag < 65536; ++tag) add(tag);
    for (char a : characters)
        for (char b : characters)
            for (char c : characters)
                for (char d : characters) add(fcc({a, b, c, d}));
    EXPECT_EQ(zelt_fcc2mt(fcc("DIVX")), ZELT_MT_VID_MPEG4);
    EXPECT_EQ(zelt_fcc2mt_drm(fcc("DIVX")), ZELT_MT_DRM_DIVX);
    EXPECT_EQ(known, 75);
    EXPECT_EQ(digest, 4990071468663624945u);
}
