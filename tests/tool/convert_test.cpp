// SPDX-License-Identifier: MIT
// Conversions, sizes and files of zelt convert, beside the models of the library's kernels and plain byte layouts.
#include "tool/pictures.h"
#include "tool/run.h"

#include <png.h>
#include <sstream>

namespace {

constexpr int w = 37, h = 24;
const std::string size = "37x24";

/// A picture whose components all have the same samples
std::string by_pixel(const std::string& format, const std::string& samples) {
    const std::size_t planes = format == "gray" ? 1 : format == "yuva444p" || format == "rgba" ? 4 : 3;
    const bool packed = format.starts_with("rgb");
    std::string all;
    for (std::size_t i = 0; i < planes * samples.size(); ++i) all += samples[packed ? i / planes : i % samples.size()];
    return all;
}

class conversions : public tool {
protected:
    /// A raw picture through the tool, its YUV of full range
    void expect(const std::string& given, const std::string& arguments, const std::string& way,
                const std::string& wanted) const {
        SCOPED_TRACE(arguments);
        const outcome result = zelt("convert -v --range full -i - -o out.raw --raw 37x24:" + arguments, given);
        EXPECT_EQ(result.status, 0);
        const std::string from = way.substr(0, way.find(' ')), to = arguments.substr(arguments.find("--pix-fmt ") + 10);
        const auto has = [](const std::string& name, const char* any) { return name.find_first_of(any) != name.npos; };
        EXPECT_EQ(result.err,
                  "37x24: " + way +
                      (has(from, "yp") || has(to, "y") ? "; full range (as told), bt601 (by habit)\n" : "\n") +
                      (has(from, "a") && !has(to, "a") ? "zelt: alpha is dropped, " + to + " has none\n" : "") +
                      "1 written: out.raw\n");
        EXPECT_TRUE(load("out.raw") == wanted);
    }
};
using resizing = conversions;

}  // namespace

TEST_F(conversions, give_what_the_models_give) {
    const struct {
        const char *from, *via, *to;
    } rows[] = {{"yuv444", "", "rgb888 rgba8888 rgb565 rgb565a8 argb8888 bgra8888 r8g8b8"},
                {"yuv444a8", "", "yuv444 rgba8888 rgba5658 rgb565a8 argb8888 bgra8888"},
                {"rgb888", "", "yuv444 rgba8888 bgra8888 r8g8b8"},
                {"rgb565", "", "yuv444"},
                {"rgba8888", "", "yuv444 yuv444a8 rgb888 bgra8888 argb8888"},
                {"r8g8b8", "", "yuv444 rgb888 rgba8888 rgb565 rgb565a8 argb8888 bgra8888"},
                {"r8g8b8a8", "", "rgba8888 rgba5658 rgb565a8 argb8888 bgra8888"},
                {"rgb888", "r8g8b8", "rgb565"},
                {"rgb888", "r8g8b8a8", "rgb565a8 rgba5658"},
                {"rgb565", "yuv444", "rgb888 argb8888"},
                {"rgba8888", "r8g8b8a8", "rgba5658 rgb565a8"},
                {"rgba8888", "r8g8b8", "rgb565"}};
    for (const auto& row : rows) {
        const std::string from = row.from, via = *row.via ? row.via : from;
        const std::string given = random_bytes(w * h * pixel_bytes(from), 1), between = converted(from, via, given);
        std::istringstream names(row.to);
        for (std::string to; names >> to;)
            expect(given, from + " --pix-fmt " + to, from + (*row.via ? " -> " + via : "") + " -> " + to,
                   converted(via, to, between));
    }
}

TEST_F(conversions, of_high_depth) {
    const std::string rgb("\xFF\3\x10\0\0\0\0\2\0\0\1\3", 12), yuv("\x34\1\x88\1\x54\1\xD4\2\0\4\xF3\0", 12),
        again("\xFF\3\x0F\0\1\0\xFF\1\3\0\0\3", 12);  // two pixels, by the formulas
    EXPECT_EQ(zelt("convert -i - --raw 2x1:r10g10b10 -o - --to raw --pix-fmt p410 --range full", rgb).out, yuv);
    EXPECT_EQ(zelt("convert -i - --raw 2x1:p410 -o - --to raw --pix-fmt r10g10b10 --range full", yuv).out, again);
}

TEST_F(conversions, to_the_same_format_copy) {
    const struct {
        const char *name, *alias;
        int bytes;
    } rows[] = {{"yuv444", "yuv444p", 3},   {"yuv444a8", "yuva444p", 4},   {"p410", "yuv444p10le", 6},
                {"rgb565", "rgb565le", 2},  {"rgb888", "rgb24", 3},        {"rgba5658", "rgba5658", 3},
                {"rgba8888", "rgba", 4},    {"bgra8888", "bgra", 4},       {"argb8888", "argb", 4},
                {"r8g8b8", "r8g8b8", 3},    {"r10g10b10", "r10g10b10", 6}, {"rgb565a8", "rgb565a8", 3},
                {"r8g8b8a8", "r8g8b8a8", 4}};
    for (const auto& row : rows) {
        const std::string name = row.name, bytes = random_bytes(row.bytes * w * h, 1);
        expect(bytes, row.alias + (" --pix-fmt " + name), name + " as it is", bytes);
    }
    // Some lines of the list
    const outcome list = zelt("formats");
    expect_success(list);
    for (const std::string line :
         {"\np410       yuv444p10le  3      10    6\n", "\nyuv420     yuv420p      3      8     1.5\n",
          "\nyuv444a8   yuv444 rgba5658 rgba8888* bgra8888 argb8888 rgb565a8*\n",
          "\nr10g10b10  p010 p210 p410 p010le p210le\n"})
        EXPECT_NE(list.out.find(line), std::string::npos) << line;
}

TEST_F(resizing, before_or_while_converting) {
    const std::pair<std::string, std::string> rows[] = {
        {"yuv444", "yuv444"},     {"rgb565", "rgb565"}, {"rgb888", "rgb888"},  {"rgba8888", "rgba8888"},
        {"rgb565a8", "rgb565a8"}, {"yuv444", "rgb888"}, {"yuv444", "bgra8888"}};
    for (const shape size : {shape{20, 15}, {80, 50}, {37, 48}})
        for (const auto& [from, to] : rows) {
            const std::string at = " " + std::to_string(size.w) + "x" + std::to_string(size.h);
            const std::string given = random_bytes(w * h * pixel_bytes(from), 1);
            const std::string wanted = converted(from, to, resized(from, given, {w, h}, size));
            const std::string first = from + " -> " + from + at + (from == to ? "" : " -> " + to);
            const std::string at_once = from != to ? from + " -> " + to + at + " in one pass" : first;
            for (const std::string bands : {"", " --bands 4", " --bands 16", " --bands 128"})
                expect(given, from + " --pix-fmt " + to + " --size" + at + bands, bands.empty() ? at_once : first,
                       wanted);
        }
    // Bands that are just long enough, and any where there is nothing to resize
    for (const std::string size : {"1x2 --bands 128", "2x2 --bands 1", "2x1 --bands 4"})
        expect_success(zelt("convert -i - --raw 2x2:gray -o - --to raw --pix-fmt yuv444 --size " + size, "abcd"));
}

TEST_F(resizing, by_area_below_a_half) {
    // Of every RGB layout with bytes as of YUV planes: the rounded mean of 3x3 samples
    std::string grey, means;
    for (int i = 0; i < 81; ++i) grey += static_cast<char>(i % 9 / 3 * 60 + i / 27 * 20 + i % 3);
    for (int i = 0; i < 9; ++i) means += static_cast<char>(i % 3 * 60 + i / 3 * 20 + 1);
    for (const std::string format : {"gray", "r8g8b8", "rgb24", "rgba", "yuv444", "yuva444p"})
        for (const std::string how : {"", " --filter area"}) {
            const outcome result =
                zelt("convert -i - -o - --to raw --size 3x3 --raw 9x9:" + format + " --pix-fmt " + format + how,
                     by_pixel(format, grey));
            expect_success(result);
            EXPECT_TRUE(result.out == by_pixel(format, means)) << format << how;
        }
    EXPECT_EQ(zelt("convert -i - -o - --to raw --size 3x3 --raw 9x9:gray --pix-fmt gray --filter bilinear", grey).out,
              resized(1, grey, {9, 9}, {3, 3}));
}

TEST_F(conversions, of_decoder_layouts) {
    const struct {
        const char* name;
        int cs, bytes;
    } formats[] = {{"gray", ZELT_CS_YUV400, w * h},
                   {"yuv420p", ZELT_CS_YUV420, w * h + 2 * 19 * 12},
                   {"yuv422p", ZELT_CS_YUV422, w * h + 2 * 19 * h},
                   {"yuv440p", ZELT_CS_YUV440, w * h + 2 * w * 12},
                   {"nv12", ZELT_CS_NV12, w * h + 2 * 19 * 12},
                   {"nv21", ZELT_CS_NV21, w * h + 2 * 19 * 12},
                   {"nv16", ZELT_CS_NV16, w * h + 2 * 19 * h},
                   {"yuyv422", ZELT_CS_YUYV, 4 * 19 * h},
                   {"uyvy422", ZELT_CS_UYVY, 4 * 19 * h},
                   {"yuv420p10le", ZELT_CS_P010, 2 * w * h + 4 * 19 * 12},
                   {"yuv422p10le", ZELT_CS_P210, 2 * w * h + 4 * 19 * h},
                   {"p010le", ZELT_CS_P010LE, 2 * w * h + 4 * 19 * 12},
                   {"p210le", ZELT_CS_P210LE, 2 * w * h + 4 * 19 * h},
                   {"rgb24", ZELT_CS_RGB888, 3 * w * h}};
    const std::string matrices[] = {"bt601", "bt709", "bt2020"};
    const std::pair<const char*, int> wanted[] = {{"bgr24", ZELT_CS_BGR888}, {"yuv420p", ZELT_CS_YUV420}};
    for (int n = 0; const auto& f : formats)
        for (const auto& [to, cs] : wanted) {
            if (cs == f.cs || (f.cs == ZELT_CS_RGB888 && cs == ZELT_CS_BGR888)) continue;
            const meaning how = {++n % 3, n / 3 % 2, n / 2 % 2};
            const std::string given = random_bytes(f.bytes, 9),
                              arguments = std::string("convert -i - -o - --to raw --raw ") + size + ":" + f.name +
                                          " --pix-fmt " + to + " --matrix " + matrices[how.matrix] +
                                          (how.range ? " --range full" : " --range limited") +
                                          (how.chroma ? "" : " --chroma replicate");
            const outcome result = zelt(arguments, given);
            expect_success(result);
            EXPECT_TRUE(result.out == by_video(f.cs, cs, how, given, {w, h})) << arguments;
        }
}

TEST_F(conversions, of_y4m_kinds) {
    // What a clip does not say is usual: limited range, and a matrix by its rows.
    const struct {
        const char *tags, *format;
        int cs, matrix, range, bytes;
    } rows[] = {{"C420jpeg", "yuv420p", ZELT_CS_YUV420, 0, 0, 12},
                {"C420mpeg2 XCOLORRANGE=LIMITED", "yuv420p", ZELT_CS_YUV420, 0, 0, 12},
                {"C420paldv XCOLORRANGE=FULL", "yuv420p", ZELT_CS_YUV420, 0, 1, 12},
                {"C420", "yuv420p", ZELT_CS_YUV420, 0, 0, 12},
                {"F25:1", "yuv420p", ZELT_CS_YUV420, 0, 0, 12},
                {"C422", "yuv422p", ZELT_CS_YUV422, 0, 0, 16},
                {"C444", "yuv444p", ZELT_CS_YUV444, 0, 0, 24},
                {"Cmono", "gray", ZELT_CS_YUV400, 0, 0, 8},
                {"C420p10", "yuv420p10le", ZELT_CS_P010, 0, 0, 24},
                {"C422p10 XZELT_MATRIX=BT2020", "yuv422p10le", ZELT_CS_P210, 2, 0, 32},
                {"C444p10", "yuv444p10le", ZELT_CS_P410, 0, 0, 48}};
    for (const auto& row : rows)
        for (const int height : {2, 718, 720}) {
            const std::string given = random_bytes(row.bytes * height / 2, 1), file = y4m(4, height, row.tags, {given});
            const int matrix = row.matrix || height < 720 ? row.matrix : ZELT_VIDEO_BT709;
            EXPECT_TRUE(zelt("convert -i - -o - --to raw --pix-fmt rgb24", file).out ==
                        by_video(row.cs, ZELT_CS_RGB888, {matrix, row.range, ZELT_VIDEO_SMOOTH}, given, {4, height}))
                << row.tags << " " << height;
            EXPECT_TRUE(zelt(std::string("convert -i - -o - --to raw --pix-fmt ") + row.format, file).out == given);
            // A Y4M file keeps layout, range and matrix.
            const std::string again = zelt("convert -i - -o - --to y4m", file).out;
            EXPECT_TRUE(again.ends_with("FRAME\n" + given));
            EXPECT_NE(again.find(row.range ? " XCOLORRANGE=FULL" : " XCOLORRANGE=LIMITED"), std::string::npos);
            EXPECT_EQ(again.find(" XZELT_MATRIX=BT2020") != std::string::npos, row.matrix == 2);
            EXPECT_EQ(zelt("convert -i - -o - --to ppm", again).out, zelt("convert -i - -o - --to ppm", file).out);
        }
}

TEST_F(conversions, there_and_back_keep_colours) {
    for (const int rows : {64, 718, 720, 722}) {
        std::string rgb;
        for (int i = 0; i < 16 * rows; ++i)
            rgb += {static_cast<char>(i % 16 * 17), static_cast<char>(i / 16 * 255 / rows), static_cast<char>(i * 5)};
        store("in.ppm", ppm(16, rows, rgb));
        const struct {
            const char* options;
            int bound;
        } ways[] = {{"", 2}, {"--range full", 2}, {"--matrix bt2020", 2}, {"--matrix bt601 --pix-fmt yuv444", 2}};
        for (const auto& way : ways) {
            expect_success(zelt("convert -i in.ppm -o clip.y4m " + std::string(way.options)));
            const std::string back = zelt("convert -i clip.y4m -o - --to raw --pix-fmt rgb24").out;
            ASSERT_EQ(back.size(), rgb.size());
            int most = 0;
            for (std::size_t i = 0; i < rgb.size(); ++i)
                most = std::max(most, std::abs(static_cast<uint8_t>(rgb[i]) - static_cast<uint8_t>(back[i])));
            EXPECT_LE(most, way.bound) << way.options << " " << rows;
        }
    }
    // Grey of PGM files is of full range, and stays so.
    EXPECT_EQ(zelt("convert -i - -o - --to y4m", "P5 2 1 255\nab").out,
              y4m(2, 1, "F25:1 Ip A1:1 Cmono XCOLORRANGE=FULL", {"ab"}));
    EXPECT_EQ(zelt("convert -i - -o - --to ppm", "P5 2 1 255\nab").out, ppm(2, 1, "aaabbb"));
}

TEST_F(tool, keeps_what_a_y4m_header_says) {
    const std::string frame(3, 'x');
    store("in.y4m", y4m(1, 1, "F30000000:1001000  It A10:11 C444 XCOLORRANGE=FULL XANY=1", {frame, frame}));
    const std::string tags = "F30000000:1001000 It A10:11 C444 XCOLORRANGE=FULL";
    expect_success(zelt("convert -i in.y4m -o out.Y4M"));
    EXPECT_EQ(load("out.Y4M"), y4m(1, 1, tags, {frame, frame}));
    expect_success(zelt("convert -i in.y4m -o large.y4m --size 2x3 --limit 1"));
    EXPECT_EQ(load("large.y4m"), y4m(2, 3, tags, {std::string(18, 'x')}));
    for (const std::string kind : {"420", "420jpeg", "420mpeg2", "420paldv"}) {
        const std::string clip = y4m(2, 2, "F25:1 Ip A0:0 C" + kind + " XCOLORRANGE=LIMITED", {"abcdef"});
        EXPECT_EQ(zelt("convert -i - -o - --to y4m", clip).out, clip);
    }
}

TEST_F(tool, reads_png_pictures_of_every_kind) {
    struct kind {
        int colour_type, depth;
        bool transparent;
        std::string rows, wanted;  // two pixels, one above the other
    };
    const std::vector<kind> kinds = {
        {PNG_COLOR_TYPE_GRAY, 1, false, std::string("\x80\0", 2), std::string("\xFF\xFF\xFF\0\0\0", 6)},
        {PNG_COLOR_TYPE_GRAY, 8, false, "\x10\xF1", "\x10\x10\x10\xF1\xF1\xF1"},
        {PNG_COLOR_TYPE_GRAY, 8, true, std::string("\x10\0", 2), std::string("\x10\x10\x10\xFF\0\0\0\0", 8)},
        {PNG_COLOR_TYPE_GRAY, 16, false, "\x20\xF0\x20\x01", "\x21\x21\x21\x20\x20\x20"},
        {PNG_COLOR_TYPE_GRAY_ALPHA, 8, false, "\x10\x20\xF1\x02", "\x10\x10\x10\x20\xF1\xF1\xF1\x02"},
        {PNG_COLOR_TYPE_PALETTE, 2, false, std::string("\x40\0", 2), "\x28\x32\x3C\x01\x02\x03"},
        {PNG_COLOR_TYPE_PALETTE, 8, true, std::string("\x01\x02", 2), "\x28\x32\x3C\x07\xFF\xFE\xFD\xFF"},
        {PNG_COLOR_TYPE_RGB, 8, false, "abcdef", "abcdef"},
        {PNG_COLOR_TYPE_RGB, 16, false, "\x10\x10\x20\x20\x30\x30\xF1\xF1\x01\x01\xFF\xFF", "\x10\x20\x30\xF1\x01\xFF"},
        {PNG_COLOR_TYPE_RGB_ALPHA, 8, false, "abcdefgh", "abcdefgh"},
    };
    for (const kind& k : kinds)
        for (const bool interlaced : {false, true}) {
            SCOPED_TRACE(testing::Message() << k.colour_type << " " << k.depth << " " << interlaced);
            store("in.png", png(1, 2, k.colour_type, k.depth, interlaced, k.rows, k.transparent));
            expect_success(zelt("convert -i in.png -o out.png"));
            EXPECT_EQ(png_pixels(load("out.png"), k.wanted.size() == 8), k.wanted);
        }
    const std::string wide =
        png(9, 9, PNG_COLOR_TYPE_RGB, 8, true, std::string(9 * 27, 'x').replace(40, 9, "123456789"));
    store("in.png", wide);
    expect_success(zelt("convert -i in.png -o out.png"));
    EXPECT_EQ(png_pixels(load("out.png"), false), png_pixels(wide, false));
}

TEST_F(tool, reads_ppm_headers_as_written_by_hand) {
    for (const std::string header : {"P6 2 1 255\n", "P6\n# a\n2 #b\n\t1\r\n#c # d\n255 ", "P6#\n2#\n1 255#x\n"}) {
        const outcome result = zelt("convert -i - -o - --to ppm", header + "abcdef");
        expect_success(result);
        EXPECT_EQ(result.out, ppm(2, 1, "abcdef")) << header;
    }
}

TEST_F(tool, numbers_a_series) {
    std::string stream;
    for (const char* body : {"aaa", "bbb", "ccc", "ddd"}) stream += ppm(1, 1, body);
    const struct {
        const char *arguments, *files, *said;
    } rows[] = {
        {"-o x.png", "x-0001.png=aaa x-0002.png=bbb x-0003.png=ccc x-0004.png=ddd",
         "4 written: x-0001.png to x-0004.png"},
        {"-o x.png --limit 1", "x.png=aaa", "1 written: x.png"},
        {"-o x.y.ppm --skip 2", "x.y-0001.ppm=ccc x.y-0002.ppm=ddd", "2 written: x.y-0001.ppm to x.y-0002.ppm"},
        {"-o x.PPM.PpM --skip 3", "x.PPM.PpM=ddd", "1 written: x.PPM.PpM"},
        {"-o x%02d.ppm --skip 1 --limit 2", "x01.ppm=bbb x02.ppm=ccc", "2 written: x01.ppm to x02.ppm"},
        {"-o %dx.ppm --limit 1", "1x.ppm=aaa", "1 written: 1x.ppm"},
        {"-o 5%.ppm --limit 1 --skip 1", "5%.ppm=bbb", "1 written: 5%.ppm"},
        {"-o x%12d.ppm --limit 1", "x%12d.ppm=aaa", "1 written: x%12d.ppm"},
        {"-o .ppm --to ppm --limit 2", ".ppm-0001=aaa .ppm-0002=bbb", "2 written: .ppm-0001 to .ppm-0002"},
        {"-o ../dir/x --to ppm --limit 2", "x-0001=aaa x-0002=bbb", "2 written: ../dir/x-0001 to ../dir/x-0002"},
    };
    for (const auto& row : rows) {
        const outcome result = zelt("convert -v -i - " + std::string(row.arguments), stream);
        EXPECT_EQ(result.err.substr(result.err.find('\n') + 1), std::string(row.said) + "\n");
        std::string all;
        for (const std::string& name : names()) {
            const std::string bytes = load(name);
            all += (all.empty() ? "" : " ") + name + "=" +
                   (bytes.starts_with("P6") ? bytes.substr(bytes.size() - 3) : png_pixels(bytes, false));
            std::filesystem::remove(dir() + "/" + name);
        }
        EXPECT_EQ(all, row.files);
    }
}

TEST_F(tool, streams) {
    const std::string stream = ppm(1, 1, "aaa") + "\n" + ppm(1, 1, "bbb"), both = ppm(1, 1, "aaa") + ppm(1, 1, "bbb");
    EXPECT_EQ(zelt("convert -i - -o - --to ppm", stream).out, both);
    EXPECT_EQ(zelt("convert -i - -o - --to raw --pix-fmt rgb24", stream).out, "aaabbb");
    EXPECT_EQ(zelt("convert -v -i - -o - --to png --limit 1", stream).err,
              "1x1: rgb888 as it is\n1 written: standard output\n");
    EXPECT_EQ(png_pixels(zelt("convert -i - -o - --to png --limit 1", stream).out, false), "aaa");
    const outcome several = zelt("convert -i - -o - --to png", stream);
    expect_failure(several, 1, "--limit 1");
    EXPECT_EQ(several.out, "");
    EXPECT_EQ(shell("\"$Z\" convert -i - -o /dev/stdout --to ppm | cat", stream).out, both);
    EXPECT_EQ(zelt("convert -i - -o - --to y4m", ppm(1, 1, std::string("\xFF\0\0", 3))).out,
              y4m(1, 1, "F25:1 Ip A1:1 C444 XCOLORRANGE=LIMITED", {"\x51\x5A\xF0"}));
    EXPECT_EQ(zelt("convert -i - -o - --to y4m --range full", ppm(1, 1, std::string("\xFF\0\0", 3))).out,
              y4m(1, 1, "F25:1 Ip A1:1 C444 XCOLORRANGE=FULL", {"\x4D\x55\xFF"}));
    EXPECT_EQ(zelt("convert -i /dev/zero --raw 1x1:rgb888 --limit 1 -o - --to ppm").out, ppm(1, 1, std::string(3, 0)));
    EXPECT_TRUE(names().empty());
    // A file without blocks, one byte larger than 32 bits can tell
    expect_success(shell("truncate -s 4294967297 x && \"$Z\" convert -i x --raw 1x1:rgb888 -o - --to ppm --limit 1"));
}
