// Conversions and files of zelt convert, compared with plain formulas and byte layouts.
#include "tool/pictures.h"
#include "tool/run.h"

#include <png.h>

namespace {

constexpr int w = 13, h = 7;

std::string size_text() { return std::to_string(w) + "x" + std::to_string(h); }

struct conversion {
    std::string from, via, to;
};

/// Two pictures of `from` through the tool as raw files, against the formulas.
class conversions : public tool {
protected:
    void check(const conversion& c) {
        SCOPED_TRACE(c.from + " " + c.via + " " + c.to);
        const layout &from = layout_of(c.from), &to = layout_of(c.to);
        std::string given, wanted;
        for (int n = 0; n < 2; ++n) {
            pixels p = random_pixels(from, w * h, random);
            given += pack(from, p);
            if (!c.via.empty()) p = convert(from, layout_of(c.via), p);
            wanted += pack(to, convert(c.via.empty() ? from : layout_of(c.via), to, p));
        }
        const outcome result =
            zelt("convert -v -i - --raw " + size_text() + ":" + c.from + " -o out.raw --pix-fmt " + c.to, given);
        const std::string steps = c.from + (c.via.empty() ? "" : " -> " + c.via) + " -> " + c.to;
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, size_text() + ": " + steps + "\n2 written: out.raw\n");
        EXPECT_TRUE(load("out.raw") == wanted);
    }
    bool listed(const std::string& from, const std::string& to) {
        const outcome all = zelt("formats");
        std::istringstream lines(all.out);
        std::string head, line, word;
        std::getline(lines, head);
        while (std::getline(lines, line) && !line.starts_with(from + " ")) {
        }
        const std::size_t column = (head + " ").find(" " + to + " ") + 1;
        return column && column < line.size() && line[column] == 'x';
    }
    std::mt19937 random{1};
};

const std::vector<conversion> one_step = {
    {"yuv444", "", "rgb888"},     {"yuv444", "", "rgba8888"},   {"yuv444", "", "rgb565"},
    {"yuv444", "", "rgb565a8"},   {"yuv444", "", "argb8888"},   {"yuv444", "", "bgra8888"},
    {"yuv444", "", "r8g8b8"},     {"yuv444a8", "", "rgba8888"}, {"yuv444a8", "", "rgba5658"},
    {"yuv444a8", "", "rgb565a8"}, {"yuv444a8", "", "argb8888"}, {"yuv444a8", "", "bgra8888"},
    {"rgb888", "", "yuv444"},     {"rgb565", "", "yuv444"},     {"r8g8b8", "", "yuv444"},
    {"rgba8888", "", "yuv444a8"}, {"r8g8b8", "", "rgb888"},     {"r8g8b8", "", "rgba8888"},
    {"r8g8b8", "", "rgb565"},     {"r8g8b8", "", "rgb565a8"},   {"r8g8b8", "", "argb8888"},
    {"r8g8b8", "", "bgra8888"},   {"r8g8b8a8", "", "rgba8888"}, {"r8g8b8a8", "", "rgba5658"},
    {"r8g8b8a8", "", "rgb565a8"}, {"r8g8b8a8", "", "argb8888"}, {"r8g8b8a8", "", "bgra8888"},
};

const std::vector<conversion> two_steps = {
    {"rgb888", "yuv444", "rgb565"},       {"rgb888", "yuv444", "rgba8888"},     {"rgb888", "yuv444", "bgra8888"},
    {"rgb888", "yuv444", "r8g8b8"},       {"rgb888", "yuv444", "rgb565a8"},     {"rgb565", "yuv444", "rgb888"},
    {"rgb565", "yuv444", "argb8888"},     {"rgba8888", "yuv444a8", "bgra8888"}, {"rgba8888", "yuv444a8", "argb8888"},
    {"rgba8888", "yuv444a8", "rgba5658"}, {"rgba8888", "yuv444a8", "rgb565a8"},
};

const std::vector<conversion> high_depth_and_copies = {{"p410", "", "r10g10b10"},
                                                       {"r10g10b10", "", "p410"},
                                                       {"yuv444a8", "", "yuv444"},
                                                       {"rgba8888", "yuv444a8", "yuv444"}};

}  // namespace

TEST_F(conversions, give_what_the_formulas_give) {
    for (const conversion& c : one_step) check(c);
    for (const conversion& c : two_steps) check(c);
}

TEST_F(conversions, of_high_depth_and_of_yuv_planes) {
    for (const conversion& c : high_depth_and_copies) check(c);
}

TEST_F(conversions, are_listed) {
    for (const conversion& c : one_step) EXPECT_TRUE(listed(c.from, c.to)) << c.from << " " << c.to;
    for (const conversion& c : two_steps) EXPECT_FALSE(listed(c.from, c.to)) << c.from << " " << c.to;
}

TEST_F(conversions, to_the_same_format_copy) {
    for (const layout& l : layouts()) {
        const std::string bytes = pack(l, random_pixels(l, 2 * w * h, random));
        expect_success(
            zelt("convert -i - --raw " + size_text() + ":" + l.name + " -o out.raw --pix-fmt " + l.name, bytes));
        EXPECT_TRUE(load("out.raw") == bytes) << l.name;
    }
}

TEST_F(tool, takes_aliases_of_formats) {
    std::mt19937 random{2};
    const layout& l = layout_of("yuv444");
    const pixels p = random_pixels(l, w * h, random);
    for (const auto& [alias, name] : {std::pair("rgb24", "rgb888"),
                                      {"rgba", "rgba8888"},
                                      {"bgra", "bgra8888"},
                                      {"argb", "argb8888"},
                                      {"rgb565le", "rgb565"},
                                      {"yuv444p", "yuv444"}}) {
        const outcome result = zelt(
            "convert -i - --raw " + size_text() + ":yuv444p -o - --to raw --pix-fmt " + std::string(alias), pack(l, p));
        expect_success(result);
        EXPECT_TRUE(result.out == pack(layout_of(name), convert(l, layout_of(name), p))) << alias;
    }
}

TEST_F(tool, gives_grey_input_neutral_chroma) {
    std::string grey;
    for (int i = 0; i < w * h; ++i) grey += static_cast<char>(i * 37);
    const std::string wanted = grey + std::string(2 * w * h, static_cast<char>(128));
    store("in.pgm", "P5 " + std::to_string(w) + " " + std::to_string(h) + " 255\n" + grey);
    store("in.y4m", y4m(w, h, "Cmono", {grey}));
    store("in.raw", grey);
    for (const std::string in : {"-i in.pgm", "-i in.y4m", "-i in.raw --raw 13x7:gray"}) {
        const outcome result = zelt("convert " + in + " -o - --to y4m");
        expect_success(result);
        EXPECT_TRUE(result.out.ends_with("FRAME\n" + wanted)) << in;
    }
}

TEST_F(tool, round_trips_between_kinds_of_files) {
    const std::string photograph = ZELT_SAMPLES "/chelsea.png", clip = ZELT_SAMPLES "/pan444.y4m";
    const std::string steps[] = {photograph + " -o a.ppm",
                                 "a.ppm -o b.png",
                                 "b.png -o c.ppm",
                                 "c.ppm -o d.rgb --pix-fmt rgb888",
                                 "d.rgb --raw 451x300:rgb888 -o e.ppm",
                                 clip + " -o f.yuv --pix-fmt yuv444",
                                 "f.yuv --raw 176x144:yuv444 -o g.y4m",
                                 "g.y4m -o h.yuv --pix-fmt yuv444p"};
    for (const std::string& step : steps) expect_success(zelt("convert -i " + step));
    std::ifstream original(photograph, std::ios::binary);
    EXPECT_TRUE(load("a.ppm") == ppm(451, 300, png_pixels({std::istreambuf_iterator<char>(original), {}}, false)));
    EXPECT_TRUE(load("c.ppm") == load("a.ppm"));
    EXPECT_TRUE(load("e.ppm") == load("a.ppm"));
    EXPECT_EQ(load("f.yuv").size(), 16u * 3 * 176 * 144);
    EXPECT_TRUE(load("h.yuv") == load("f.yuv"));
}

TEST_F(tool, keeps_what_a_y4m_header_says) {
    const std::string frame(3, 'x');
    store("in.y4m", y4m(1, 1, "F30000:1001 It A10:11 C444 XCOLORRANGE=FULL XANY=1", {frame, frame}));
    expect_success(zelt("convert -i in.y4m -o out.y4m"));
    EXPECT_EQ(load("out.y4m"), y4m(1, 1, "F30000:1001 It A10:11 C444 XCOLORRANGE=FULL", {frame, frame}));
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
            const std::string fmt = k.wanted.size() == 8 ? "rgba8888" : "rgb888";
            expect_success(zelt("convert -i in.png -o out.raw --pix-fmt " + fmt));
            EXPECT_EQ(load("out.raw"), k.wanted);
            expect_success(zelt("convert -i in.png -o out.png"));
            EXPECT_EQ(png_pixels(load("out.png"), fmt == "rgba8888"), k.wanted);
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
    const auto files_of = [&](const std::string& arguments) {
        expect_success(zelt("convert -i - " + arguments, stream));
        std::string all;
        for (const std::string& name : names()) {
            const std::string bytes = load(name);
            all += name + "=" + (bytes.starts_with("P6") ? bytes.substr(bytes.size() - 3) : png_pixels(bytes, false)) +
                   " ";
            std::filesystem::remove(dir() + "/" + name);
        }
        return all;
    };
    EXPECT_EQ(files_of("-o x.png"), "x-0001.png=aaa x-0002.png=bbb x-0003.png=ccc x-0004.png=ddd ");
    EXPECT_EQ(files_of("-o x.png --limit 1"), "x.png=aaa ");
    EXPECT_EQ(files_of("-o x.y.ppm --skip 2"), "x.y-0001.ppm=ccc x.y-0002.ppm=ddd ");
    EXPECT_EQ(files_of("-o x.PPM.ppm --skip 3"), "x.PPM.ppm=ddd ");
    EXPECT_EQ(files_of("-o x%02d.ppm --skip 1 --limit 2"), "x01.ppm=bbb x02.ppm=ccc ");
    EXPECT_EQ(files_of("-o %dx.ppm --limit 1"), "1x.ppm=aaa ");
    EXPECT_EQ(files_of("-o 5%.ppm --limit 1 --skip 1"), "5%.ppm=bbb ");
    EXPECT_EQ(files_of("-o ./x --to ppm --limit 2"), "x-0001=aaa x-0002=bbb ");
}

TEST_F(tool, streams) {
    const std::string stream = ppm(1, 1, "aaa") + "\n" + ppm(1, 1, "bbb");
    EXPECT_EQ(zelt("convert -i - -o - --to ppm", stream).out, ppm(1, 1, "aaa") + ppm(1, 1, "bbb"));
    EXPECT_EQ(zelt("convert -i - -o - --to raw --pix-fmt rgb888", stream).out, "aaabbb");
    EXPECT_EQ(png_pixels(zelt("convert -i - -o - --to png --limit 1", stream).out, false), "aaa");
    const outcome several = zelt("convert -i - -o - --to png", stream);
    expect_failure(several, 1, "--limit 1");
    EXPECT_EQ(several.out, "");
    const outcome piped =
        shell("\"$Z\" convert -i - -o - --to y4m | \"$Z\" convert -i - -o - --to raw --pix-fmt yuv444",
              ppm(1, 1, std::string("\xFF\0\0", 3)));
    EXPECT_EQ(piped.out, "\x4D\x55\xFF");
    EXPECT_EQ(shell("\"$Z\" convert -i - -o /dev/stdout --to ppm | cat", stream).out,
              ppm(1, 1, "aaa") + ppm(1, 1, "bbb"));
    EXPECT_TRUE(names().empty());
}
