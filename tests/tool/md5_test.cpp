// SPDX-License-Identifier: MIT
// Digests of clips, beside those that ffmpeg printed for the same files.
#include "tool/pictures.h"
#include "tool/run.h"

namespace {
/// Sample x, y of plane p is 85 p + 31 y + 7 x, and 1 more in each further picture.
std::string clip(const std::string& kind, int w, int h, int pictures) {
    const int planes = kind == "mono" ? 1 : 3, across = kind == "444" ? 1 : 2, down = kind.starts_with("420") ? 2 : 1;
    std::vector<std::string> frames(static_cast<std::size_t>(pictures));
    for (std::size_t n = 0; n < frames.size(); ++n)
        for (int p = 0; p < planes; ++p)
            for (int y = 0; y < (p ? (h + down - 1) / down : h); ++y)
                for (int x = 0; x < (p ? (w + across - 1) / across : w); ++x)
                    frames[n] += static_cast<char>(85 * p + 31 * y + 7 * x + static_cast<int>(n));
    return y4m(w, h, "F30000:1001 Ip A10:11 C" + kind, frames);
}

const char *first = "dcaec71547ba330f54c6e270a274111b", *second = "0cc3ef42a72a01a1da8db1f3281ad318",
           *whole = "932d5d02f0f19e5f1beac2919e6bc838";
}  // namespace

TEST_F(tool, digests_are_those_of_other_programs) {
    const struct {
        const char *kind, *size, *all;
        std::vector<std::string> each;
    } rows[] = {{"420jpeg", "27", whole, {first, second}},
                {"mono", "15", "183778073057f006787141e0fca4c2a2", {"183778073057f006787141e0fca4c2a2"}},
                {"422", "33", "f65c8081e4155cba6c911ad5ccdda423", {"f65c8081e4155cba6c911ad5ccdda423"}},
                {"444", "45", "ea854c5983421be4b17e0504af4795af", {"ea854c5983421be4b17e0504af4795af"}}};
    for (const auto& row : rows) {
        store("in.y4m", clip(row.kind, 5, 3, static_cast<int>(row.each.size())));
        const outcome all = zelt("md5 -i in.y4m"), each = zelt("md5 --per-frame -i in.y4m");
        expect_success(all);
        EXPECT_EQ(all.out, std::string("MD5=") + row.all + "\n");
        std::string lines = "#format: frame checksums\n#version: 2\n#hash: MD5\n#tb 0: 1001/30000\n"
                            "#media_type 0: video\n#codec_id 0: rawvideo\n#dimensions 0: 5x3\n#sar 0: 10/11\n"
                            "#stream#, dts,        pts, duration,     size, hash\n";
        for (std::size_t n = 0; n < row.each.size(); ++n) {
            const std::string time = std::string(10, ' ') + std::to_string(n);
            lines += "0," + time + "," + time + ",        1,       " + row.size + ", " + row.each[n] + "\n";
        }
        expect_success(each);
        EXPECT_EQ(each.out, lines);
    }
}

TEST_F(tool, digests_of_raw_pictures) {
    const std::string samples = "abcdefghijklmnopqr";  // of pictures of 3x2
    const std::pair<const char*, std::size_t> rows[] = {{"gray", 6}, {"nv12", 10}, {"yuyv422", 16}, {"rgb24", 18}};
    const char* digests[] = {"e80b5017098950fc58aad83c8c14978e", "a925576942e94b2ef57a066101b48876",
                             "1d64dce239c4437b7736041db089e1b9", "fbaf6ecf6acbe54aa33858818d351197"};
    for (std::size_t i = 0; i < std::size(rows); ++i)
        EXPECT_EQ(zelt(std::string("md5 -i - --raw 3x2:") + rows[i].first, samples.substr(0, rows[i].second)).out,
                  std::string("MD5=") + digests[i] + "\n");
}

TEST_F(tool, digests_are_verified) {
    store("in.y4m", clip("420", 5, 3, 2));
    const std::string line = "0, 0, 0, 1, 27, ", one = line + first, two = line + second, all = "MD5=";
    std::string capitals = first;
    for (char& c : capitals) c = static_cast<char>(std::toupper(c));
    const std::pair<std::string, std::string> rows[] = {
        {"#a comment\n" + one + "\n" + two + "\n", ""},
        {all + whole + "\n", ""},
        {all + whole + "\n" + one + "\n" + two, ""},
        {"#of an editor\r\n\r\n" + line + capitals + "\r\n" + two, ""},
        {one + "\n" + one + "\n", std::string("picture 1: ") + second + ", not " + first},
        {one + "\n", std::string("picture 1: ") + second + " is not listed"},
        {one + "\n" + two + "\n" + one + "\n", "picture 2 is listed and missing"},
        {all + first + "\n" + one + "\n" + two, all + whole + ", not " + first},
    };
    for (const auto& [list, difference] : rows) {
        store("list", list);
        const outcome result = zelt("md5 -i in.y4m --verify list");
        EXPECT_EQ(result.out, (difference.empty() ? "2 pictures, the digests match" : difference) + "\n");
        difference.empty() ? expect_success(result) : expect_failure(result, 2, "the digests differ");
    }
}
