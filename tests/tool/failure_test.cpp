// SPDX-License-Identifier: MIT
// What zelt does when something is wrong: the status, one line, nothing left behind.
#include "tool/pictures.h"
#include "tool/run.h"
#include "zelt/common.h"

#include <csignal>
#include <fcntl.h>
#include <png.h>
#include <regex>
#include <unistd.h>

namespace {

const std::string one_pixel = ppm(1, 1, "abc");

}  // namespace

TEST_F(tool, says_what_it_is) {
    const outcome version = zelt("--version");
    expect_success(version);
    EXPECT_EQ(version.out, std::string("zelt " ZELT_TOOL_VERSION " (") + zelt_kernels() + ")\n");
    for (const std::string what : {"--help", "convert --help"})
        EXPECT_NE(zelt(what).out.find("Usage"), std::string::npos) << what;
}

TEST_F(tool, ends_with_its_documented_statuses) {
    const std::string frame(192, 'a'), full = "C444 XCOLORRANGE=FULL";
    store("in.ppm", one_pixel);
    store("alpha.png", png(1, 1, PNG_COLOR_TYPE_RGB_ALPHA, 8, false, "abcd"));
    store("none.y4m", y4m(8, 8, full, {}));
    store("one.y4m", y4m(8, 8, full, {frame}));
    store("two.y4m", y4m(8, 8, full, {frame, frame}));
    store("low.y4m", y4m(8, 4, full, {frame.substr(96)}));
    store("tall.raw", std::string(480, 'a'));
    store("text", "no digest\n");
    store("short", "0, 0, 0, 1, 192, 0123456789abcdef\n");
    store("comment", "# nothing\n");
    std::filesystem::create_directory(dir() + "/folder.png");
    const auto before = names();
    const std::string in = "convert -i in.ppm -o ", none = "convert -i none.ppm -o ", to = "convert -o out.ppm -i ";
    const std::string tall = "convert -i tall.raw --raw 4x40:yuv444 --pix-fmt yuv444 -o out.raw ";
    const struct {
        int status;
        const char* said;
        std::string command;
        std::vector<std::string> ends = {""};  // of commands that fail alike
    } of_arguments[] = {
        {1, "no verb", ""},
        {1, "bogus", "bogus"},
        {1, "not expected: formats", "formats formats"},
        {1, "--input", "", {"convert -o out.ppm", "md5", "probe"}},
        {1, "give --to", none, {"out.xyz", "folder.png/out", "-"}},
        {1, "not 'gif'", none + "out.ppm --to gif"},
        {1, "raw output needs --pix-fmt", none + "out.raw"},
        {1, "there are yuv400 yuv420", none + "out.raw --pix-fmt rgb999"},
        {1, "png files hold rgb888 or rgba8888, not rgb565", none + "out.png --pix-fmt rgb565"},
        {1, "ppm files hold rgb888, not rgba8888", none + "out.ppm --pix-fmt rgba8888"},
        {1, "y4m files hold yuv444, yuv400, yuv420, yuv422, p010, p210 or p410, not rgb888",
         none + "x.y4m --pix-fmt rgb888"},
        {1, "drawn to .png or .ppm files", "match -i two.y4m -o ", {"x.svg", "x.y4m", "-"}},
        {1, "drawn to .svg, .png or .ppm files", "compare -i one.y4m -i two.y4m -o ", {"x", "x.svg -o x.gif"}},
        {1, "drawn to .svg, .png or .ppm files", "keyframes -i two.y4m -o svg"},
        {1, "more than one", in + "%d%d.ppm"},
        {1, "--limit takes a whole number from 1 up", in + "out.ppm --limit ", {"0", "99999999999999999999"}},
        {1, "--skip takes a whole number from 0 up", in + "out.ppm --skip ", {"-1", "0x1"}},
        {1, "WxH:FORMAT", in + "out.ppm --raw ", {"1x1", "0x1:rgb24", "1x0:rgb24", "46341x46341:gray"}},
        {1, "WxH:FORMAT", in + "out.ppm --raw ", {"2147483647x2147483647:rgba", "1:rgb24x1"}},
        {1, "no format is called 'nothing'", in + "out.ppm --raw 1x1:nothing"},
        {1, "--size takes", tall + "--size ", {"4", "0x5", "5x0", "4x-5"}},
        {1, "power of two", tall + "--size 8x8 --bands ", {"6", "4294967296"}},
        {1, "--bands goes with --size", tall + "--bands 8"},
        {1, "not by area", tall + "--bands 8 --size 4x8 --filter area"},
        {1, "--range", tall + "--range ", {"tv", "''"}},
        {1, "--matrix", "compare -i two.y4m -i two.y4m --matrix bt470"},
        {1, "two clips", "compare -i in.ppm", {"", " -i in.ppm -i in.ppm"}},
        {1, "--block", "match -i two.y4m --block 12"},
        {1, "--per-frame", "md5 -i one.y4m --verify comment --per-frame"},
        {1, "--seconds", "bench --seconds ", {"-1", "x"}},
        {2, "none.y4m: has no picture", "bench none.y4m --seconds 0"},
        {2, "none.ppm: cannot be opened", to + "none.ppm"},
        {2, "folder.png: cannot be read", to + "folder.png"},
        {2, "none.y4m: has no picture", to + "none.y4m"},
        {2, "in.ppm: has no picture after those to skip", to + "in.ppm --skip 1"},
        {2, "differ in size", "compare -i two.y4m -i low.y4m"},
        {2, "no two pictures", "compare -i none.y4m -i two.y4m"},
        {2, "two.y4m: has more pictures", "compare -i ", {"one.y4m -i two.y4m", "two.y4m -i one.y4m"}},
        {2, "one.y4m: has no picture 1", "match -i one.y4m"},
        {2, "two.y4m: has no picture 7", "match -i two.y4m --frame 7"},
        {2, "without an MD5 digest", "md5 -i one.y4m --verify ", {"text", "short"}},
        {2, "comment: holds no digests", "md5 -i one.y4m --verify comment"},
        {2, "cannot be opened", "md5 -i ", {"one.y4m --verify ''", "nothing"}},
        {3, "none/out.ppm", in + "none/out.ppm"},
        {3, "folder.png: is a folder", in + "folder.png"},
        {3, "No space", in + "/dev/full --to ", {"ppm", "png"}},
        {3, "standard output", in, {"- --to ppm >/dev/full"}},
        {3, "standard output", "", {"formats >/dev/full", "--version >/dev/full", "--help >/dev/full"}},
        {3, "standard output", "bench one.y4m --seconds 0 >/dev/full"},
        {3, "standard output", "", {"md5 -i one.y4m >/dev/full", "compare -i one.y4m -i one.y4m >/dev/full"}},
        {4, "no way from rgba5658 to rgb888; rgba5658 can become rgba5658", to + "in.ppm --raw 1x1:rgba5658"},
        {4, "no way from rgb888 to p010; ", in + "out.y4m --pix-fmt yuv420p10le"},
        {4, "no way from yuv444a8 to rgba8888; ", in + "out.png --raw 1x1:yuva444p"},
        {4, "p410 cannot be resized", in + "out.raw --raw 1x1:p410 --size 2x2 --pix-fmt p410"},
        {4, "nv12 cannot be resized in bands", in + "out.raw --raw 1x1:nv12 --size 2x2 --pix-fmt nv12 --bands 8"},
        {4, "rgba5658 cannot be resized", in + "out.raw --raw 1x1:rgba5658 --size 2x2 --pix-fmt rgba5658"},
        {4, "too short", tall, {"--size 8x4 --bands 8", "--size 8x13 --bands 4", "--size 3x40 --bands 64"}},
    };
    for (const auto& row : of_arguments)
        for (const std::string& end : row.ends) {
            SCOPED_TRACE(row.command + end);
            expect_failure(zelt(row.command + end), row.status, row.said);
            EXPECT_EQ(names(), before);
        }
    const std::string any = to + "-", raw = any + " --raw 1x1:rgb888", p6 = "P6 1 1 ", y4m_head = y4m(1, 1, "C444", {});
    const struct {
        int status;
        const char* said;
        std::string command;
        std::vector<std::string> inputs;
    } of_input[] = {
        {2, "is empty", raw, {""}},
        {2, "standard input: is empty", any, {""}},
        {2, "cut short", raw, {"abcd"}},
        {2, "cut short", any, {y4m(2, 2, "C420jpeg", {"abcde"}), y4m_head + "FRAME"}},
        {2, "no PPM or PGM", any, {"P9 1 1 255 abc", "Pa 1 1 255 abc"}},
        {2, "no sound PNG file: Read Error", any, {"\x89PNG\r\n\x1A\n"}},
        {2, "several sizes", any, {one_pixel + ppm(1, 2, "abcdef"), one_pixel + ppm(2, 1, "abcdef")}},
        {2, "or kinds", any, {one_pixel + "P5 1 1 255 a"}},
        {2, "should begin", any, {one_pixel + "x", y4m_head + "FRAMES\nabc"}},
        {2, "usable size and maxval", any, {p6 + "0\nabc", p6 + "65536\nabc", p6 + "255abc", p6 + "#"}},
        {2, "usable width and height", any, {"YUV4MPEG2 W1 C444\nFRAME\nabc"}},
        {2, "never ends", any, {"YUV4MPEG2 W1 H1 C444 X" + std::string(2000, 'x') + "\nFRAME\nabc"}},
        {4, "maxval of 100;", any, {p6 + "100\nabc"}},
        {4, "maxval of 65535;", any, {p6 + "65535\nabcdef"}},
        {4, "is P3;", any, {"P3 1 1 255 1 2 3"}},
        {4, "is P7;", any, {"P7\nWIDTH 1\n"}},
        {4, "C420p12; ", any, {y4m(2, 2, "C420p12", {"abcdefabcdef"})}},
        {4, "C\?\?[1m; ", any, {y4m(1, 1, "C\x1B\a[1m", {"abcdef"})}},
        {4, "C411; ", any, {y4m(4, 1, "C411", {"abcdef"})}},
        {2, "no size to work with", "md5 -i -", {y4m(65536, 65536, "C444", {"abc"})}},
    };
    for (const auto& row : of_input)
        for (const std::string& input : row.inputs) {
            SCOPED_TRACE(input.substr(0, 60));
            expect_failure(zelt(row.command, input), row.status, row.said);
            EXPECT_EQ(names(), before);
        }
}

TEST_F(tool, replaces_a_file_only_with_a_complete_one) {
    store("out.ppm", "old");
    expect_failure(zelt("convert -i - -o out.ppm", ppm(2, 2, "abc")), 2, "cut short");
    EXPECT_EQ(load("out.ppm"), "old");
    expect_success(zelt("convert -i - -o out.ppm", one_pixel));
    expect_success(zelt("convert -i out.ppm -o out.ppm"));
    EXPECT_EQ(load("out.ppm"), one_pixel);
    // A killed process of the same number left its temporary file; permissions are what is usual.
    const outcome result = shell("touch .zelt-$$-0; umask 27; exec \"$Z\" convert -i out.ppm -o new.ppm");
    expect_success(result);
    EXPECT_EQ(shell("stat -c %a new.ppm; rm .zelt-*-0").out, "640\n");
    EXPECT_EQ(names(), (std::vector<std::string>{"new.ppm", "out.ppm"}));
}

TEST_F(tool, a_replaced_file_hands_on_its_permissions) {
    for (const std::string mode : {"600", "640", "444", "755"}) {
        const std::string own = geteuid() ? "" : "chown 12:34 out.ppm; ", state = "stat -c '%a %u %g' out.ppm";
        const outcome result = shell("umask 22; touch out.ppm; " + own + "chmod " + mode + " out.ppm; " + state +
                                         " && \"$Z\" convert -i - -o out.ppm && " + state,
                                     one_pixel);
        expect_success(result);
        const std::size_t half = result.out.size() / 2;
        EXPECT_EQ(result.out.substr(0, half), result.out.substr(half));
        EXPECT_TRUE(result.out.starts_with(mode));
        EXPECT_EQ(load("out.ppm"), one_pixel);
        std::filesystem::remove(dir() + "/out.ppm");
    }
}

TEST_F(tool, follows_symbolic_links) {
    expect_success(
        shell("mkdir a b; ln -s ../b/two.ppm a/one.ppm; ln -s \"$PWD\"/three.ppm b/two.ppm; ln -s x y; ln -s y x"));
    for (const std::string body : {"abc", "def"}) {  // a file that the links lead to is made, then replaced
        expect_success(zelt("convert -i - -o a/one.ppm", ppm(1, 1, body)));
        EXPECT_EQ(load("three.ppm"), ppm(1, 1, body));
    }
    for (const std::string link : {"/a/one.ppm", "/b/two.ppm"})
        EXPECT_TRUE(std::filesystem::is_symlink(dir() + link)) << link;
    expect_failure(zelt("convert -i - -o x --to ppm", one_pixel), 3, "x: cannot be written: Too many levels");
    EXPECT_EQ(names(), (std::vector<std::string>{"a", "b", "three.ppm", "x", "y"}));
}

TEST_F(tool, respects_permissions) {
    // The superuser may do everything, unless he gives that up.
    const std::string run =
        (geteuid() ? "" : "setpriv --bounding-set=-dac_override,-dac_read_search ") + std::string("\"$Z\" convert -i ");
    store("in.ppm", one_pixel);
    expect_success(shell("mkdir folder; touch folder/out.ppm secret; chmod 555 folder; chmod 0 secret"));
    for (const std::string name : {"out", "new"})
        expect_failure(shell(run + "in.ppm -o folder/" + name + ".ppm"), 3, "Permission denied");
    expect_failure(shell(run + "secret -o out.ppm"), 2, "Permission denied");
    EXPECT_EQ(shell("chmod 755 folder; ls -AR").out, ".:\nfolder\nin.ppm\nsecret\n\n./folder:\nout.ppm\n");
}

TEST_F(tool, replaces_a_series_whole_or_not_at_all) {
    store("../three", one_pixel + one_pixel + one_pixel + "P6 ");
    store("x-0001.ppm", "old");
    // When three of four are written a folder takes the name of the third.
    const outcome result = shell("mkfifo ../pipe; { cat ../three; for i in $(seq 100); do sleep 0.05; "
                                 "[ $(ls -A | grep -c zelt) = 3 ] && break; done; mkdir x-0003.ppm; "
                                 "printf '1 1 255 abc'; } >../pipe & \"$Z\" convert -i ../pipe -o x.ppm");
    expect_failure(result, 3, "x-0003.ppm");
    EXPECT_EQ(load("x-0001.ppm"), "old");
    EXPECT_EQ(names(), (std::vector<std::string>{"x-0001.ppm", "x-0003.ppm"}));
    std::filesystem::remove(dir() + "/x-0003.ppm");
    expect_success(zelt("convert -i - -o x.ppm", one_pixel + one_pixel));
    EXPECT_EQ(load("x-0001.ppm"), one_pixel);
    EXPECT_EQ(names(), (std::vector<std::string>{"x-0001.ppm", "x-0002.ppm"}));
}

TEST_F(tool, leaves_nothing_of_a_broken_run) {
    // The last picture of a series is cut short; the disk fills up; a name of the series is taken by a folder; there
    // are more pictures than files that may be open.
    const std::string broken = one_pixel + one_pixel + ppm(1, 1, "ab");
    expect_failure(zelt("convert -i - -o x.png", broken), 2, "cut short");
    expect_failure(zelt("convert -i - -o x.y4m", broken), 2, "cut short");
    const std::string large = ppm(100, 100, random_bytes(30000, 1));
    for (const std::string name : {"x.ppm", "x.y4m", "x.png"})
        expect_failure(shell("ulimit -f 8; \"$Z\" convert -i - -o " + name, large), 3, "File too large");
    EXPECT_TRUE(names().empty());
    std::filesystem::create_directory(dir() + "/x-0002.ppm");
    expect_failure(zelt("convert -i - -o x.ppm", one_pixel + one_pixel), 3, "x-0002.ppm");
    EXPECT_EQ(names(), std::vector<std::string>{"x-0002.ppm"});
    std::string many;
    for (int i = 0; i < 40; ++i) many += one_pixel;
    expect_success(shell("ulimit -n 20; \"$Z\" convert -i - -o y.ppm", many));
    EXPECT_EQ(names().size(), 41u);
}

TEST_F(tool, cleans_up_when_it_is_stopped) {
    store("../part", one_pixel + one_pixel + "P6 ");
    store("x-0001.ppm", "old");
    const struct {
        const char *before, *signal;
        int status;
    } rows[] = {{"", "INT", 128 + 2},
                {"", "TERM", 128 + 15},
                {"", "HUP", 128 + 1},
                {"ulimit -c 0; ", "QUIT", 128 + 3},
                {"trap '' HUP; ", "HUP", 2}};
    for (const int sig : {SIGINT, SIGHUP}) std::signal(sig, SIG_DFL);  // whatever runs the tests may ignore them
    for (const auto& row : rows) {
        // Two pictures of three arrive, then the signal, then the end.
        const outcome result =
            shell(row.before +
                  std::string("mkfifo ../pipe; { exec 3>../pipe; cat ../part >&3; for i in $(seq 100); do "
                              "sleep 0.05; ls -A | grep -q zelt && break; done; ls -A | grep -c zelt; kill -") +
                  row.signal + " $$; sleep 0.05; } & exec \"$Z\" convert -i ../pipe -o x.ppm");
        EXPECT_EQ(result.status, row.status) << row.signal;
        EXPECT_NE(result.out, "0\n");  // it was in the middle of its work
        EXPECT_EQ(result.err.empty(), row.status != 2) << result.err;
        EXPECT_EQ(names(), std::vector<std::string>{"x-0001.ppm"});
        EXPECT_EQ(load("x-0001.ppm"), "old");
        std::filesystem::remove(root + "/pipe");
    }
}

TEST_F(tool, reports_a_reader_that_goes_away) {
    const outcome result =
        shell("{ \"$Z\" convert -i " ZELT_SAMPLES "/pan444.y4m -o - --to ppm; echo $? >../code; } | true");
    EXPECT_EQ(load("../code"), "3\n");
    expect_failure({3, "", result.err}, 3, "standard output");
}

TEST_F(tool, shows_progress_on_a_terminal_alone) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    ASSERT_TRUE(grantpt(terminal) == 0 && unlockpt(terminal) == 0);
    const std::string to = std::string(">") + ptsname(terminal), slowly = "{ cat ../part; sleep 0.5; cat ../part; } | ";
    store("../part", one_pixel);
    const std::string clip = load(ZELT_SAMPLES "/pan444.y4m");
    store("../three.y4m", clip.substr(0, clip.size() - 13 * (176 * 144 * 3 + sizeof "FRAME")));
    const struct {
        std::string command;
        const char* shown;
    } rows[] = {
        {slowly + "\"$Z\" convert -i - -o x.ppm 2" + to, R"(\r[12] pictures, \d\.\d/s\x1B\[K\r\x1B\[K)"},
        {slowly + "\"$Z\" convert -i - -o y.ppm --limit 4 2" + to,
         R"(\r[12] of 4 pictures, (25|50) %, \d\.\d/s, 0:0\d left\x1B\[K\r\x1B\[K)"},
        {slowly + "\"$Z\" md5 -i - --per-frame " + to + " 2>&1",
         R"(#[^]*0, +0, [^\r]*\r\n0, +1, [^\r]*\r\n\r[12] pictures, \d\.\d/s\x1B\[K\r\x1B\[K)"},
        {"\"$Z\" match -i ../three.y4m -o z.png --block 4 --range 70 " + to + " 2>&1",
         R"([^]*\r\d+ of 72 rows of blocks, \d+ %, [0-9.]+/s, 0:\d\d left\x1B\[K\r\x1B\[K +\d [^]*)"},
    };
    for (const auto& row : rows) {
        expect_success(shell(row.command));
        std::string shown;
        char text[4000];
        for (ssize_t length; (length = read(terminal, text, sizeof text)) > 0;)  // a terminal gives it in pieces
            shown.append(text, static_cast<std::size_t>(length));
        EXPECT_TRUE(std::regex_match(shown, std::regex(row.shown))) << row.command << shown;
    }
    close(terminal);
    expect_success(shell(slowly + "\"$Z\" convert -i - -o pipe.ppm"));
}
