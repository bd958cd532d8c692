// Digests of clips, beside those that ffmpeg printed for the same files.
#include "run.h"

namespace {
/// Sample x, y of plane p is 85 p + 31 y + 7 x, and 1 more in each further picture.
std::string clip(const std::string& kind, int w, int h, int pictures) {
    std::string bytes = "YUV4MPEG2 W" + std::to_string(w) + " H" + std::to_string(h) + " F25:1 Ip A1:1 C" + kind + "\n";
    const int planes = kind == "mono" ? 1 : 3, across = kind == "444" ? 1 : 2, down = kind.starts_with("420") ? 2 : 1;
    for (int n = 0; n < pictures; ++n) {
        bytes += "FRAME\n";
        for (int p = 0; p < planes; ++p)
            for (int y = 0; y < (p ? (h + down - 1) / down : h); ++y)
                for (int x = 0; x < (p ? (w + across - 1) / across : w); ++x)
                    bytes += static_cast<char>(85 * p + 31 * y + 7 * x + n);
    }
    return bytes;
}

const std::string first = "dcaec71547ba330f54c6e270a274111b", second = "0cc3ef42a72a01a1da8db1f3281ad318",
                  whole = "MD5=932d5d02f0f19e5f1beac2919e6bc838\n";
}  // namespace

TEST_F(tool, digests_are_those_of_other_programs) {
    store("in.y4m", clip("420jpeg", 5, 3, 2));
    const outcome all = zelt("md5 -i in.y4m");
    expect_success(all);
    EXPECT_EQ(all.out, whole);
    const outcome each = zelt("md5 --per-frame -i in.y4m");
    expect_success(each);
    EXPECT_EQ(each.out, "#format: frame checksums\n#version: 2\n#hash: MD5\n#tb 0: 1/25\n#media_type 0: video\n"
                        "#codec_id 0: rawvideo\n#dimensions 0: 5x3\n#sar 0: 1/1\n"
                        "#stream#, dts,        pts, duration,     size, hash\n"
                        "0,          0,          0,        1,       27, " +
                            first +
                            "\n"
                            "0,          1,          1,        1,       27, " +
                            second + "\n");
    const std::pair<const char*, const char*> others[] = {{"mono", "183778073057f006787141e0fca4c2a2"},
                                                          {"422", "f65c8081e4155cba6c911ad5ccdda423"},
                                                          {"444", "ea854c5983421be4b17e0504af4795af"}};
    for (const auto& [kind, digest] : others) {  // of one picture, hence the same in both forms
        store("in.y4m", clip(kind, 5, 3, 1));
        EXPECT_EQ(zelt("md5 -i in.y4m").out, std::string("MD5=") + digest + "\n");
        const std::string lines = zelt("md5 --per-frame -i in.y4m").out;
        EXPECT_NE(lines.find(std::string(", ") + digest + "\n"), std::string::npos) << lines;
    }
}

TEST_F(tool, digests_are_verified) {
    const std::string line = "0, 0, 0, 1, 27, ";
    store("in.y4m", clip("420", 5, 3, 2));
    std::string capitals = first;
    for (char& c : capitals) c = static_cast<char>(std::toupper(c));
    for (const std::string& list : {"#a comment\n" + line + first + "\n" + line + second + "\n", whole,
                                    "#of an editor\r\n\r\n" + line + capitals + "\r\n" + line + second}) {
        store("list", list);
        const outcome same = zelt("md5 -i in.y4m --verify list");
        expect_success(same);
        EXPECT_EQ(same.out, "2 pictures, the digests match\n");
    }
    const std::pair<std::string, const char*> others[] = {
        {line + first + "\n" + line + first + "\n", "picture 1: "},
        {line + first + "\n", "is not listed"},
        {line + first + "\n" + line + second + "\n" + line + first + "\n", "picture 2 is listed and missing"},
        {"MD5=" + first + "\n", "MD5="}};
    for (const auto& [list, fragment] : others) {
        store("other", list);
        const outcome differing = zelt("md5 -i in.y4m --verify other");
        EXPECT_EQ(differing.status, 2);
        EXPECT_NE(differing.out.find(fragment), std::string::npos) << differing.out;
    }
}

TEST_F(tool, digests_need_a_clip_and_a_list) {
    store("in.y4m", clip("420", 5, 3, 1));
    store("cut.y4m", clip("420", 5, 3, 1).substr(0, 60));
    store("411.y4m", "YUV4MPEG2 W1 H1 C411\nFRAME\nabc");
    store("text", "no digest\n");
    store("empty", "# nothing\n");
    expect_failure(zelt("md5"), 1, "--input");
    expect_failure(zelt("md5 -i in.y4m --verify empty --per-frame"), 1, "--per-frame");
    expect_failure(zelt("md5 -i nothing.y4m"), 2, "nothing.y4m");
    expect_failure(zelt("md5 -i cut.y4m"), 2, "cut.y4m");
    expect_failure(zelt("md5 -i text"), 2, "no Y4M");
    expect_failure(zelt("md5 -i in.y4m --verify text"), 2, "without an MD5 digest");
    expect_failure(zelt("md5 -i in.y4m --verify empty"), 2, "no digests");
    expect_failure(zelt("md5 -i in.y4m --verify ''"), 2, "cannot be opened");
    expect_failure(zelt("md5 -i 411.y4m"), 4, "C411");
    expect_failure(zelt("md5 -i in.y4m >/dev/full"), 3, "standard output");
}
