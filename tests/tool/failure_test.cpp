// What zelt does when something is wrong: the status, one line, nothing left behind.
#include "tool/pictures.h"
#include "tool/run.h"

#include <png.h>

namespace {

const std::string one_pixel = ppm(1, 1, "abc");

}  // namespace

TEST_F(tool, says_what_it_is) {
    const outcome version = zelt("--version");
    expect_success(version);
    EXPECT_EQ(version.out, "zelt " ZELT_TOOL_VERSION "\n");
    for (const std::string what : {"--help", "convert --help"}) {
        const outcome help = zelt(what);
        expect_success(help);
        EXPECT_NE(help.out.find("Usage"), std::string::npos);
    }
}

TEST_F(tool, ends_with_its_documented_statuses) {
    store("in.ppm", one_pixel);
    store("alpha.png", png(1, 1, PNG_COLOR_TYPE_RGB_ALPHA, 8, false, "abcd"));
    std::filesystem::create_directory(dir() + "/folder.png");
    const auto before = names();
    struct {
        int status;
        const char *arguments, *fragment;
        std::string input;
    } const cases[] = {
        {1, "", "no verb", ""},
        {1, "bogus", "bogus", ""},
        {1, "convert -i in.ppm", "--output", ""},
        {1, "convert -o out.ppm", "--input", ""},
        {1, "convert -i in.ppm -o out.ppm --bogus", "--bogus", ""},
        {1, "convert -i in.ppm -o out.xyz", "--to", ""},
        {1, "convert -i in.ppm -o -", "--to", ""},
        {1, "convert -i in.ppm -o out.ppm --to gif", "gif", ""},
        {1, "convert -i in.ppm -o out.raw", "--pix-fmt", ""},
        {1, "convert -i in.ppm -o out.raw --pix-fmt rgb999", "rgb888", ""},
        {1, "convert -i in.ppm -o out.png --pix-fmt rgb565", "rgb888 or rgba8888", ""},
        {1, "convert -i in.ppm -o out.ppm --pix-fmt rgba8888", "not rgba8888", ""},
        {1, "convert -i in.ppm -o out.y4m --pix-fmt rgb888", "yuv444", ""},
        {1, "convert -i in.ppm -o %d%d.ppm", "more than one", ""},
        {1, "convert -i in.ppm -o out.ppm --limit 0", "--limit", ""},
        {1, "convert -i in.ppm -o out.ppm --skip -1", "--skip", ""},
        {1, "convert -i in.ppm -o out.ppm --skip 0x1", "--skip", ""},
        {1, "convert -i in.ppm -o out.ppm --limit 99999999999999999999", "--limit", ""},
        {1, "convert -i in.ppm -o out.ppm --raw 1x1", "WxH:FORMAT", ""},
        {1, "convert -i in.ppm -o out.ppm --raw 0x1:rgb888", "WxH:FORMAT", ""},
        {1, "convert -i in.ppm -o out.ppm --raw 65536x65536:rgb888", "WxH:FORMAT", ""},
        {1, "convert -i in.ppm -o out.ppm --raw 1x1:nothing", "nothing", ""},
        {1, "compare -i in.ppm", "two clips", ""},
        {1, "compare -i in.ppm -i in.ppm -i in.ppm", "two clips", ""},
        {2, "convert -i none.ppm -o out.ppm", "none.ppm", ""},
        {2, "convert -i folder.png -o out.ppm", "folder.png", ""},
        {2, "convert -i - -o out.ppm", "empty", ""},
        {2, "convert -i - -o out.ppm", "no Y4M", "GIF89a"},
        {2, "convert -i in.ppm -o out.ppm --skip 1", "skip", ""},
        {2, "convert -i - -o out.y4m", "no picture", y4m(1, 1, "C444", {})},
        {2, "convert -i - -o out.ppm", "several sizes", one_pixel + ppm(1, 2, "abcdef")},
        {2, "convert -i - -o out.ppm", "should begin", one_pixel + "x"},
        {2, "convert -i - -o out.ppm --raw 1x1:rgb888", "cut short", "abcd"},
        {3, "convert -i in.ppm -o none/out.ppm", "none/out.ppm", ""},
        {3, "convert -i in.ppm -o folder.png", "folder.png", ""},
        {3, "convert -i in.ppm -o /dev/full --to ppm", "No space", ""},
        {3, "convert -i in.ppm -o /dev/full --to png", "No space", ""},
        {3, "convert -i in.ppm -o - --to ppm >/dev/full", "standard output", ""},
        {3, "formats >/dev/full", "standard output", ""},
        {3, "--version >/dev/full", "standard output", ""},
        {3, "--help >/dev/full", "standard output", ""},
        {4, "convert -i alpha.png -o out.ppm", "rgba8888 can become", ""},
        {4, "convert -i - -o out.ppm --raw 1x1:argb", "no way from argb8888", "abcd"},
        {4, "convert -i - -o out.raw --raw 1x1:r8g8b8a8 --pix-fmt yuv444a8", "r8g8b8a8 can become", "abcd"},
        {4, "convert -i - -o out.ppm", "255", "P6 1 1 65535\nabcdef"},
        {4, "convert -i - -o out.ppm", "P3", "P3 1 1 255 1 2 3"},
        {4, "convert -i - -o out.ppm", "ffmpeg -i", y4m(1, 1, "C444 XCOLORRANGE=LIMITED", {"abc"})},
        {4, "convert -i - -o out.ppm", "C411;", y4m(4, 1, "C411", {"abcdef"})},
        {4, "convert -i - -o out.ppm", "C420p10", y4m(2, 2, "C420p10", {"abcdefabcdef"})},
        {2, "convert -i - -o out.ppm", "cut short", y4m(2, 2, "C420jpeg", {"abcde"})},
        {4, "convert -i - -o out.ppm", "C444p10", y4m(1, 1, "C444p10", {"abcdef"})},
        {4, "convert -i - -o out.ppm", "C\?\?[1m;", y4m(1, 1, "C\x1B\a[1m", {"abcdef"})},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        expect_failure(zelt(c.arguments, c.input), c.status, c.fragment);
        EXPECT_EQ(names(), before);
    }
}

TEST_F(tool, replaces_a_file_only_with_a_complete_one) {
    store("out.ppm", "old");
    expect_failure(zelt("convert -i - -o out.ppm", ppm(2, 2, "abc")), 2, "cut short");
    EXPECT_EQ(load("out.ppm"), "old");
    std::filesystem::create_symlink("out.ppm", dir() + "/link.ppm");
    expect_success(zelt("convert -i - -o link.ppm", one_pixel));
    EXPECT_EQ(load("out.ppm"), one_pixel);
    EXPECT_TRUE(std::filesystem::is_symlink(dir() + "/link.ppm"));
    expect_success(zelt("convert -i out.ppm -o out.ppm"));
    EXPECT_EQ(load("out.ppm"), one_pixel);
    EXPECT_EQ(names(), (std::vector<std::string>{"link.ppm", "out.ppm"}));
}

TEST_F(tool, leaves_nothing_of_a_broken_run) {
    // The last picture of a series is cut short; the disk fills up; a name of the series is taken by a folder.
    const std::string broken = one_pixel + one_pixel + ppm(1, 1, "ab");
    expect_failure(zelt("convert -i - -o x.png", broken), 2, "cut short");
    expect_failure(zelt("convert -i - -o x.y4m", broken), 2, "cut short");
    const std::string large = ppm(100, 100, std::string(30000, 'x'));
    for (const std::string name : {"x.ppm", "x.y4m"})
        expect_failure(shell("ulimit -f 8; \"$Z\" convert -i - -o " + name, large), 3, "File too large");
    EXPECT_TRUE(names().empty());
    std::filesystem::create_directory(dir() + "/x-0002.ppm");
    expect_failure(zelt("convert -i - -o x.ppm", one_pixel + one_pixel), 3, "x-0002.ppm");
    EXPECT_EQ(names(), std::vector<std::string>{"x-0002.ppm"});
}

TEST_F(tool, cleans_up_when_it_is_stopped) {
    // Two pictures of three arrive, then nothing more.
    store("../part", one_pixel + one_pixel + "P6 ");
    const outcome result =
        shell("mkfifo ../pipe; \"$Z\" convert -i ../pipe -o x.ppm & exec 3>../pipe; cat ../part >&3; "
              "for i in $(seq 100); do sleep 0.1; ls -A | grep -q . && break; done; "
              "ls -A | grep -c zelt; kill -TERM $!; wait $!");
    EXPECT_EQ(result.status, 128 + 15);
    EXPECT_NE(result.out, "0\n");  // it was in the middle of its work
    EXPECT_TRUE(names().empty());
}

TEST_F(tool, reports_a_reader_that_goes_away) {
    const outcome result =
        shell("{ \"$Z\" convert -i " ZELT_SAMPLES "/pan444.y4m -o - --to ppm; echo $? >../code; } | true");
    EXPECT_EQ(load("../code"), "3\n");
    expect_failure({3, "", result.err}, 3, "standard output");
}
