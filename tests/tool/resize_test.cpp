// zelt convert --size and --bands, and clips of reduced chroma, against plain interpolation.
#include "tool/pictures.h"
#include "tool/run.h"

namespace {
constexpr int w = 37, h = 24;

class resizing : public tool {
protected:
    std::string plane(int width, int height) {
        std::string bytes(static_cast<std::size_t>(width * height), '\0');
        for (char& c : bytes) c = static_cast<char>(random());
        return bytes;
    }
    std::mt19937 random{1};
};

/// A plane at another size; ratios stay below 3.
std::string scaled(const std::string& from, int from_w, int from_h, int to_w, int to_h) {
    const long x_step = (from_w - 1) * 262144L / to_w, y_step = (from_h - 1) * 262144L / to_h;
    std::string to;
    for (int y = 0; y < to_h; ++y)
        for (int x = 0; x < to_w; ++x) {
            const long left = x * x_step / 262144, top = y * y_step / 262144;
            const long fx = x * x_step / 32768 % 8, fy = y * y_step / 32768 % 8;
            const auto at = [&](long i, long j) {
                return static_cast<unsigned char>(from[static_cast<std::size_t>(j * from_w + i)]);
            };
            const long right = left + (x_step > 0), bottom = top + (y_step > 0);
            to += static_cast<char>(((8 - fx) * (8 - fy) * at(left, top) + fx * (8 - fy) * at(right, top) +
                                     (8 - fx) * fy * at(left, bottom) + fx * fy * at(right, bottom)) /
                                    64);
        }
    return to;
}

pixels yuv_pixels(const std::string& y, const std::string& u, const std::string& v) {
    pixels all;
    for (std::size_t i = 0; i < y.size(); ++i)
        all.push_back({{static_cast<unsigned char>(y[i]), static_cast<unsigned char>(u[i]),
                        static_cast<unsigned char>(v[i]), 255}});
    return all;
}
}  // namespace

TEST_F(resizing, before_or_while_converting) {
    const std::string y = plane(w, h), u = plane(w, h), v = plane(w, h);
    for (const auto& [to_w, to_h] : {std::pair{20, 15}, {80, 50}, {37, 48}}) {
        const std::string size = std::to_string(to_w) + "x" + std::to_string(to_h);
        const std::string planes[] = {scaled(y, w, h, to_w, to_h), scaled(u, w, h, to_w, to_h),
                                      scaled(v, w, h, to_w, to_h)};
        const auto run = [&](const std::string& format, const std::string& text, const std::string& more) {
            SCOPED_TRACE(size + " " + format + more);
            const outcome result =
                zelt("convert -v -i - --raw 37x24:yuv444 -o out.raw --size " + size + " --pix-fmt " + format + more,
                     y + u + v);
            EXPECT_EQ(result.err, "37x24: yuv444 -> " + text + "\n1 written: out.raw\n");
            return load("out.raw");
        };
        const layout &yuv = layout_of("yuv444"), &rgb = layout_of("rgb888"), &bgra = layout_of("bgra8888");
        const pixels all = yuv_pixels(planes[0], planes[1], planes[2]);
        EXPECT_TRUE(run("yuv444", "yuv444 " + size, "") == planes[0] + planes[1] + planes[2]);
        EXPECT_TRUE(run("rgb888", "rgb888 " + size + " in one pass", "") == pack(rgb, convert(yuv, rgb, all)));
        EXPECT_TRUE(run("bgra8888", "yuv444 " + size + " -> bgra8888", "") == pack(bgra, convert(yuv, bgra, all)));
        for (const char* bands : {" --bands 4", " --bands 16", " --bands 64"})
            EXPECT_TRUE(run("rgb888", "yuv444 " + size + " -> rgb888", bands) == pack(rgb, convert(yuv, rgb, all)));
    }
}

TEST_F(resizing, reduced_chroma) {
    for (const auto& [kind, chroma_h] : {std::pair{"C420jpeg", 12}, {"F25:1", 12}, {"C422", 24}}) {
        const std::string y = plane(w, h), u = plane(19, chroma_h), v = plane(19, chroma_h);
        expect_success(zelt("convert -i - -o out.raw --pix-fmt yuv444", y4m(w, h, kind, {y + u + v})));
        EXPECT_TRUE(load("out.raw") == y + scaled(u, 19, chroma_h, w, h) + scaled(v, 19, chroma_h, w, h)) << kind;
    }
}

TEST_F(resizing, is_refused) {
    const std::string in = "convert -i - --raw 4x40:yuv444 -o out.raw --pix-fmt yuv444 ", bytes(480, 'a');
    const struct {
        int status;
        const char *arguments, *fragment;
    } cases[] = {
        {1, "--size 4", "--size takes"},    {1, "--size 0x5", "--size takes"},
        {1, "--size 4x-5", "--size takes"}, {1, "--size 8x8 --bands 6", "power"},
        {1, "--bands 8", "--size"},         {4, "--size 8x4 --bands 8", "too short"},
        {4, "--size 4x40 --bands 8", ""},   {4, "--size 3x40 --bands 64", "too short"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        if (*c.fragment)
            expect_failure(zelt(in + c.arguments, bytes), c.status, c.fragment);
        else
            expect_success(zelt(in + c.arguments, bytes));  // nothing to resize
    }
    expect_failure(zelt("convert -i - --raw 1x1:p410 -o out.raw --size 2x2 --pix-fmt p410", "abcdef"), 4, "resized");
}
