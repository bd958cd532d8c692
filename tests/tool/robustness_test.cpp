// Broken input of every kind: each run ends with a documented status and one line, and leaves nothing behind.
#include "tool/pictures.h"
#include "tool/run.h"

#include <png.h>

namespace {

constexpr int w = 9, h = 5, area = w * h;

struct sample {
    std::string name, bytes, arguments;
    std::size_t header, frame;  // bytes before the first frame and of each frame; 0 where only the whole is sound
};

std::vector<sample> samples() {
    std::string noise;
    std::mt19937 random{3};
    for (int i = 0; i < 8 * area; ++i) noise += static_cast<char>(random());
    const std::string grey = noise.substr(0, area), colour = noise.substr(0, 3 * area);
    const std::string clip = y4m(w, h, "F25:1 Ip A1:1 C444 XCOLORRANGE=FULL", {colour, colour});
    const std::string mono = y4m(w, h, "Cmono", {grey, grey}), pgm = "P5\n# grey\n9 5\n255\n" + grey;
    const std::string rgb = ppm(w, h, colour);
    const auto png_of = [&](int type, int depth, bool interlaced, std::size_t row) {
        return png(w, h, type, depth, interlaced, noise.substr(0, row * h));
    };
    return {
        {"clip", clip, "-o out.png", clip.find("FRAME"), colour.size() + 6},
        {"mono", mono, "-o out.y4m", mono.find("FRAME"), grey.size() + 6},
        {"ppm", rgb + rgb, "-o out.png", 0, rgb.size()},
        {"pgm", pgm + pgm, "-o out.ppm", 0, pgm.size()},
        {"raw", noise.substr(0, 4 * area), "--raw 9x5:rgb565 -o out.raw --pix-fmt bgra", 0, 2 * area},
        {"png rgb", png_of(PNG_COLOR_TYPE_RGB, 8, false, 3 * w), "-o out.y4m", 0, 0},
        {"png deep", png_of(PNG_COLOR_TYPE_RGB_ALPHA, 16, true, 8 * w), "-o out.png", 0, 0},
        {"png grey", png_of(PNG_COLOR_TYPE_GRAY, 4, true, w / 2 + 1), "-o out.ppm", 0, 0},
        {"png palette", png(w, h, PNG_COLOR_TYPE_PALETTE, 2, false, std::string(3 * h, '\x24'), true), "-o out.png", 0,
         0},
    };
}

class robustness : public tool {
protected:
    /// Through a pipe and as a file, whose size is known beforehand.
    outcome run(const std::string& arguments, const std::string& bytes, bool piped) {
        store("../in", bytes);
        return shell((piped ? "cat ../in | \"$Z\" convert -i - " : "\"$Z\" convert -i ../in ") + arguments);
    }
    void expect_sound(const outcome& result) {
        if (result.status == 0) {
            expect_success(result);
            EXPECT_FALSE(names().empty());
            for (const std::string& name : names()) {
                EXPECT_TRUE(name.starts_with("out")) << name;
                std::filesystem::remove(dir() + "/" + name);
            }
        } else {
            EXPECT_TRUE(result.status == 2 || result.status == 4) << result.status;
            expect_failure(result, result.status, "");
            EXPECT_TRUE(names().empty());
        }
    }
};

}  // namespace

TEST_F(robustness, cut_anywhere) {
    for (const sample& s : samples()) {
        const std::size_t step = std::max<std::size_t>(1, s.bytes.size() / 24);
        for (std::size_t cut = 0; cut < s.bytes.size(); cut += cut < 14 || cut + 14 > s.bytes.size() ? 1 : step) {
            SCOPED_TRACE(s.name + " cut to " + std::to_string(cut));
            const outcome result = run(s.arguments, s.bytes.substr(0, cut), cut % 2);
            const bool whole = s.frame && cut > s.header && (cut - s.header) % s.frame == 0;
            EXPECT_EQ(result.status, whole ? 0 : 2);
            expect_sound(result);
        }
    }
}

TEST_F(robustness, changed_anywhere) {
    std::mt19937 random{4};
    for (const sample& s : samples())
        for (int n = 0; n < 40; ++n) {
            std::string bytes = s.bytes;
            // Headers, at the start, are where a change matters most.
            const std::size_t reach = n % 3 ? std::min<std::size_t>(bytes.size(), 64) : bytes.size();
            for (unsigned changes = 1 + random() % 3; changes; --changes) {
                const std::size_t at = random() % reach;
                switch (random() % 4) {
                case 0: bytes[at] = static_cast<char>(random()); break;
                case 1: bytes[at] ^= static_cast<char>(1u << random() % 8); break;
                case 2: bytes.insert(at, 1 + random() % 9, "09\n #\xFF"[random() % 6]); break;
                default: bytes.erase(at, 1 + random() % 4);
                }
            }
            SCOPED_TRACE(s.name + " change " + std::to_string(n));
            expect_sound(run(s.arguments, bytes, n % 2));
        }
}

TEST_F(robustness, absurd_sizes) {
    const std::string sizes[][2] = {{"0", "5"},          {"5", "0"},
                                    {"-1", "5"},         {"2147483647", "2147483647"},
                                    {"2147483648", "1"}, {"4294967297", "1"},
                                    {"65536", "65536"},  {"46341", "46341"},
                                    {"1", "2147483647"}, {"30000", "20000"},
                                    {"1e3", "1"},        {"0x10", "1"},
                                    {"", "5"},           {"999999999999999999999999", "1"}};
    for (const auto& [width, height] : sizes)
        for (const bool piped : {false, true}) {
            SCOPED_TRACE(width + " x " + height);
            for (const std::string& bytes :
                 {"YUV4MPEG2 W" + width + " H" + height + " C444\nFRAME\nabc",
                  "P6 " + width + " " + height + " 255\nabc", "P5 " + width + " " + height + " 255\nabc"}) {
                const outcome result = run("-o out.png", bytes, piped);
                expect_failure(result, 2, "");
                EXPECT_TRUE(names().empty());
            }
        }
    // Sound PNG headers (the checksum is right) of pictures that are not there.
    for (const auto& [width, height] : {std::pair(1000000, 1000000), {30000, 30000}, {1, 1000000}, {20000, 20000}}) {
        std::string bytes = png(w, h, PNG_COLOR_TYPE_RGB, 8, false, std::string(3 * area, 'x'));
        const std::string header = png(width, 1, PNG_COLOR_TYPE_GRAY, 1, false, std::string((width + 7) / 8, 'x'));
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        std::string ihdr = header.substr(12, 17);
        for (int i = 0; i < 4; ++i) ihdr[static_cast<std::size_t>(8 + i)] = static_cast<char>(height >> (24 - 8 * i));
        ihdr[12] = 8, ihdr[13] = 2;
        uint32_t crc = ~0u;
        for (const unsigned char c : ihdr) {
            crc ^= c;
            for (int i = 0; i < 8; ++i) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320u : 0);
        }
        for (int i = 0; i < 4; ++i) ihdr += static_cast<char>(~crc >> (24 - 8 * i));
        expect_failure(run("-o out.png", bytes.replace(12, 21, ihdr), false), 2, "");
        EXPECT_TRUE(names().empty());
    }
}
