// Conversions, sizes and files of zelt convert, beside the models of the library's kernels and plain byte layouts.
#include "tool/pictures.h"
#include "tool/run.h"

#include <png.h>
#include <sstream>

namespace {

constexpr int w = 37, h = 24;
const std::string size = "37x24";

class conversions : public tool {
protected:
    /// A raw picture through the tool
    void expect(const std::string& given, const std::string& arguments, const std::string& way,
                const std::string& wanted) const {
        SCOPED_TRACE(arguments);
        const outcome result = zelt("convert -v -i - -o out.raw --raw 37x24:" + arguments, given);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "37x24: " + way + "\n1 written: out.raw\n");
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
                {"rgb888", "", "yuv444"},
                {"rgb565", "", "yuv444"},
                {"rgba8888", "", "yuv444a8"},
                {"r8g8b8", "", "yuv444 rgb888 rgba8888 rgb565 rgb565a8 argb8888 bgra8888"},
                {"r8g8b8a8", "", "rgba8888 rgba5658 rgb565a8 argb8888 bgra8888"},
                {"rgb888", "yuv444", "rgb565 rgba8888 bgra8888 r8g8b8 rgb565a8"},
                {"rgb565", "yuv444", "rgb888 argb8888"},
                {"rgba8888", "yuv444a8", "yuv444 bgra8888 argb8888 rgba5658 rgb565a8"}};
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
    EXPECT_EQ(zelt("convert -i - --raw 2x1:r10g10b10 -o - --to raw --pix-fmt p410", rgb).out, yuv);
    EXPECT_EQ(zelt("convert -i - --raw 2x1:p410 -o - --to raw --pix-fmt r10g10b10", yuv).out, again);
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
         {" to  yuv444 yuv444a8 p410 rgb565 rgb888 rgba5658 rgba8888 bgra8888 argb8888 r8g8b8 r10g10b10 rgb565a8\n",
          "\nr8g8b8     x      .        .    x      x +    .        x +      x        x        .      .         x",
          "\np410       yuv444p10le  3      6\n"})
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
            const std::string at_once = from != to && to == "rgb888" ? from + " -> " + to + at + " in one pass" : first;
            for (const std::string bands : {"", " --bands 4", " --bands 16", " --bands 128"})
                expect(given, from + " --pix-fmt " + to + " --size" + at + bands, bands.empty() ? at_once : first,
                       wanted);
        }
    // Bands that are just long enough, and any where there is nothing to resize
    for (const std::string size : {"1x2 --bands 128", "2x2 --bands 1", "2x1 --bands 4"})
        expect_success(zelt("convert -i - --raw 2x2:gray -o - --to raw --pix-fmt yuv444 --size " + size, "abcd"));
}

TEST_F(resizing, reduced_or_no_chroma) {
    const std::string y = random_bytes(w * h, 3), neutral(2 * w * h, static_cast<char>(128));
    const auto expect_planes = [&](const std::string& arguments, const std::string& file, const std::string& chroma) {
        const outcome result = zelt("convert -i - -o - --to raw --pix-fmt yuv444p" + arguments, file);
        expect_success(result);
        EXPECT_TRUE(result.out == y + chroma) << file.substr(0, 30);
    };
    for (const auto& [kind, chroma_h] :
         {std::pair{"C420jpeg", 12}, {"C420mpeg2", 12}, {"C420paldv", 12}, {"C420", 12}, {"F25:1", 12}, {"C422", 24}}) {
        const std::string u = random_bytes(19 * chroma_h, 4), v = random_bytes(19 * chroma_h, 5);
        const shape from = {19, chroma_h}, to = {w, h};
        expect_planes("", y4m(w, h, kind, {y + u + v}), resized(1, u, from, to) + resized(1, v, from, to));
    }
    expect_planes("", y4m(w, h, "Cmono", {y}), neutral);
    expect_planes("", "P5 37 24 255\n" + y, neutral);
    expect_planes(" --raw 37x24:gray", y, neutral);
}

TEST_F(tool, keeps_what_a_y4m_header_says) {
    const std::string frame(3, 'x');
    store("in.y4m", y4m(1, 1, "F30000000:1001000  It A10:11 C444 XCOLORRANGE=FULL XANY=1", {frame, frame}));
    const std::string tags = "F30000000:1001000 It A10:11 C444 XCOLORRANGE=FULL";
    expect_success(zelt("convert -i in.y4m -o out.Y4M"));
    EXPECT_EQ(load("out.Y4M"), y4m(1, 1, tags, {frame, frame}));
    expect_success(zelt("convert -i in.y4m -o large.y4m --size 2x3 --limit 1"));
    EXPECT_EQ(load("large.y4m"), y4m(2, 3, tags, {std::string(18, 'x')}));
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
              y4m(1, 1, "F25:1 Ip A1:1 C444 XCOLORRANGE=FULL", {"\x4D\x55\xFF"}));
    EXPECT_EQ(zelt("convert -i /dev/zero --raw 1x1:rgb888 --limit 1 -o - --to ppm").out, ppm(1, 1, std::string(3, 0)));
    EXPECT_TRUE(names().empty());
    // A file without blocks, one byte larger than 32 bits can tell
    expect_success(shell("truncate -s 4294967297 x && \"$Z\" convert -i x --raw 1x1:rgb888 -o - --to ppm --limit 1"));
}
