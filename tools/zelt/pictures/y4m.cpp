// YUV4MPEG2 clips of full-range pictures: 4:4:4, grey, and 4:2:0 or 4:2:2, whose chroma is brought to full size.
#include "pictures/reader.h"
#include "pictures/writer.h"
#include "zelt/irsz.h"

#include <vector>

namespace zelt::tool {
namespace {

constexpr std::size_t longest_header = 1024;
constexpr const char* recipe = "; full-range 8-bit 4:4:4, 4:2:2, 4:2:0 and mono are taken: "
                               "ffmpeg -i IN -vf scale=out_range=full -pix_fmt yuv444p -color_range pc OUT.y4m";

// The kinds of 4:2:0 differ in where chroma lies, by half a sample at most.
constexpr struct {
    const char* name;
    int32_t cs;
} kinds[] = {{"420", ZELT_CS_YUV420},      {"420jpeg", ZELT_CS_YUV420}, {"420mpeg2", ZELT_CS_YUV420},
             {"420paldv", ZELT_CS_YUV420}, {"422", ZELT_CS_YUV422},     {"444", ZELT_CS_YUV444},
             {"mono", ZELT_CS_YUV400}};

class y4m_reader : public reader {
public:
    explicit y4m_reader(input in) : reader(std::move(in)) {
        const y4m_header header = read_y4m_header(in_);
        about_ = header.about;
        if (header.limited) in_.unsupported("holds limited-range pictures" + std::string(recipe));
        if (!header.cs) in_.unsupported("holds pictures of the kind C" + header.kind + recipe);
        const int w = about_.w, h = about_.h;
        grey_ = header.cs == ZELT_CS_YUV400;
        if (header.cs == ZELT_CS_YUV420) chroma_ = {w / 2 + w % 2, h / 2 + h % 2};
        if (header.cs == ZELT_CS_YUV422) chroma_ = {w / 2 + w % 2, h};
        shape(format_of(ZELT_CS_YUV444), w, h);
    }

    bool more() override { return in_.peek() != EOF; }

    void read(picture& into) override {
        read_y4m_frame(in_);
        grey_ ? read_grey(into) : chroma_.w ? read_reduced(into) : read_planes(into);
    }

private:
    struct {
        int w = 0, h = 0;
    } chroma_;  // where it has not the picture's size
    std::vector<uint8_t> plane_;
    bool grey_ = false;

    void read_reduced(picture& into) {
        const int64_t size = int64_t{chroma_.w} * chroma_.h;
        in_.expect(int64_t{into.w} * into.h + 2 * size);
        for (int y = 0; y < into.h; ++y) in_.read(into.row(0, y), into.row_bytes(0));
        uint32_t x_step, y_step;
        bilinear_rsz_step_size(chroma_.w, chroma_.h, into.w, into.h, &x_step, &y_step);
        plane_.resize(static_cast<std::size_t>(size));
        for (const int i : {1, 2}) {
            in_.read(plane_.data(), plane_.size());
            zelt_irsz8b_full(plane_.data(), chroma_.w, into.w, into.h, into.stride[i], into.row(i, 0), x_step, y_step);
        }
    }
};

}  // namespace

y4m_header read_y4m_header(input& in) {
    const std::string text = in.line(longest_header);
    if (!text.starts_with("YUV4MPEG2 ")) in.bad("is no Y4M file");
    y4m_header header;
    for (std::size_t at = text.find(' '), end; at != text.npos; at = end) {
        end = text.find(' ', at + 1);
        const std::string tag = text.substr(at + 1, end == text.npos ? end : end - at - 1);
        const std::string value = tag.empty() ? "" : tag.substr(1);
        switch (tag.empty() ? ' ' : tag[0]) {
        case 'W': header.about.w = header_number(value); break;
        case 'H': header.about.h = header_number(value); break;
        case 'C': header.kind = value; break;
        case 'F': header.about.rate = value; break;
        case 'A': header.about.aspect = value; break;
        case 'I': header.about.interlacing = value; break;
        case 'X': header.limited |= value == "COLORRANGE=LIMITED"; break;
        default: break;
        }
    }
    if (header.about.w < 1 || header.about.h < 1) in.bad("has a Y4M header without a usable width and height");
    for (const auto& [kind, cs] : kinds)
        if (header.kind == kind) header.cs = cs;
    return header;
}

void read_y4m_frame(input& in) {
    const std::string text = in.line(longest_header);
    if (text != "FRAME" && !text.starts_with("FRAME ")) in.bad("has something else where a frame should begin");
}

std::unique_ptr<reader> read_y4m(input in) { return std::make_unique<y4m_reader>(std::move(in)); }

void write_y4m_header(output& out, const clip& about) {
    out.write("YUV4MPEG2 W" + std::to_string(about.w) + " H" + std::to_string(about.h) + " F" + about.rate + " I" +
              about.interlacing + " A" + about.aspect + " C444 XCOLORRANGE=FULL\n");
}

void write_y4m(output& out, const picture& pic) {
    out.write("FRAME\n");
    write_raw(out, pic);
}

}  // namespace zelt::tool
