// SPDX-License-Identifier: MIT
// YUV4MPEG2 clips: 4:2:0, 4:2:2, 4:4:4 and grey of 8 bits, and all but the last of 10.
#include "pictures/colours.h"
#include "pictures/reader.h"
#include "pictures/writer.h"

#include <cctype>

namespace zelt::tool {
namespace {

constexpr std::size_t longest_header = 1024;
constexpr std::string_view matrix_tag = "ZELT_MATRIX=";  // there is none that everybody knows

// The kinds of 4:2:0 of 8 bits differ in where chroma lies, by half a sample at most.
constexpr struct {
    std::string_view name;
    int32_t cs;
} kinds[] = {{"420", ZELT_CS_YUV420},      {"420jpeg", ZELT_CS_YUV420}, {"420mpeg2", ZELT_CS_YUV420},
             {"420paldv", ZELT_CS_YUV420}, {"422", ZELT_CS_YUV422},     {"444", ZELT_CS_YUV444},
             {"mono", ZELT_CS_YUV400},     {"420p10", ZELT_CS_P010},    {"422p10", ZELT_CS_P210},
             {"444p10", ZELT_CS_P410}};

std::string_view kind_of(int32_t cs) {
    for (const auto& [name, kind_cs] : kinds)
        if (kind_cs == cs) return name;
    return "";
}

std::string upper_case(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

class y4m_reader : public file_reader {
public:
    explicit y4m_reader(input in) : file_reader(std::move(in)) {
        read_header();
        if (about_.w < 1 || about_.h < 1) in_.bad("has a Y4M header without a usable width and height");
        for (const auto& [name, cs] : kinds)
            if (kind_ == name) shape(format_of(cs), about_.w, about_.h, sizeof "FRAME");
        if (about_.fmt && about_.fmt->cs == ZELT_CS_YUV420) about_.siting = kind_.substr(3);
    }

    bool known() const { return about_.fmt; }
    /// Of another kind the bytes can be had of a file, which is read from its start again.
    std::unique_ptr<reader> other_kind(bool bytes, int threads) {
        if (bytes && std::fseek(in_.handle(), 0, SEEK_SET) == 0) return read_coded(std::move(in_), bytes, threads);
        in_.unsupported("holds pictures of the kind C" + kind_ +
                        "; mono, 4:2:0, 4:2:2 and 4:4:4 of 8 bits and the latter three of 10 are taken: "
                        "ffmpeg -i IN -pix_fmt yuv420p OUT.y4m");
    }

    bool more() override { return in_.peek() != EOF; }

    void read(picture& into) override {
        const std::string text = in_.line(longest_header);
        if (text != "FRAME" && !text.starts_with("FRAME ")) in_.bad("has something else where a frame should begin");
        read_planes(into);
    }

private:
    void read_header() {
        const std::string text = in_.line(longest_header);
        if (!text.starts_with("YUV4MPEG2 ")) in_.bad("is no Y4M file");
        for (std::size_t at = text.find(' '), end; at != text.npos; at = end) {
            end = text.find(' ', at + 1);
            const std::string tag = text.substr(at + 1, end == text.npos ? end : end - at - 1);
            const std::string value = tag.empty() ? "" : tag.substr(1);
            switch (tag.empty() ? ' ' : tag[0]) {
            case 'W': about_.w = header_number(value); break;
            case 'H': about_.h = header_number(value); break;
            case 'C': kind_ = value; break;
            case 'F': about_.rate = value; break;
            case 'A': about_.aspect = value; break;
            case 'I': about_.interlacing = value; break;
            case 'X': extension(value); break;
            default: break;
            }
        }
    }

    void extension(const std::string& text) {
        if (text == "COLORRANGE=LIMITED") about_.range = ZELT_VIDEO_LIMITED;
        if (text == "COLORRANGE=FULL") about_.range = ZELT_VIDEO_FULL;
        for (int32_t i = 0; const char* name : matrix_names) {
            if (text == std::string(matrix_tag) + upper_case(name)) about_.matrix = i;
            ++i;
        }
    }

    std::string kind_ = "420";
};

}  // namespace

std::unique_ptr<reader> read_y4m(input in, bool bytes, int threads) {
    auto clip = std::make_unique<y4m_reader>(std::move(in));
    return clip->known() ? std::move(clip) : clip->other_kind(bytes, threads);
}

void write_y4m_header(output& out, const clip& about) {
    std::string kind(kind_of(about.fmt->cs));
    if (about.fmt->cs == ZELT_CS_YUV420) kind += about.siting;
    std::string text = "YUV4MPEG2 W" + std::to_string(about.w) + " H" + std::to_string(about.h) + " F" + about.rate +
                       " I" + about.interlacing + " A" + about.aspect + " C" + kind;
    if (about.range) text += " XCOLORRANGE=" + upper_case(range_names[*about.range]);
    if (about.matrix && *about.matrix != usual_matrix(about.h))
        text += " X" + std::string(matrix_tag) + upper_case(matrix_names[*about.matrix]);
    out.write(text + "\n");
}

void write_y4m(output& out, const picture& pic) {
    out.write("FRAME\n");
    write_raw(out, pic);
}

}  // namespace zelt::tool
