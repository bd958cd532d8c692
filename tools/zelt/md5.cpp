// zelt md5: digests of the pictures of a clip, as ffmpeg's framemd5 gives them.
#include "zelt/md5.h"

#include "interrupt.h"
#include "output.h"
#include "pictures/reader.h"
#include "verbs.h"
#include "zelt/imgb.h"

#include <CLI/CLI.hpp>
#include <cctype>
#include <cstdio>

namespace zelt::tool {
namespace {

constexpr const char* notes = R"(
Clips are Y4M, 4:4:4, 4:2:2, 4:2:0 or grey of 8 bits. One line is printed,
MD5=DIGEST, over the samples of all pictures, as 'ffmpeg -i CLIP -f md5 -'
prints it; with --per-frame a line per picture, as 'ffmpeg -i CLIP -f framemd5 -'
prints them.
--verify compares with what either of them printed: where a digest differs or
is missing the exit status is 2.)";

struct digest {
    uint8_t bytes[16];
    std::string text() const {
        std::string hex;
        for (const uint8_t b : bytes) hex += "0123456789abcdef"[b >> 4], hex += "0123456789abcdef"[b & 15];
        return hex;
    }
};

class clip_reader {
public:
    explicit clip_reader(const std::string& path) : in_(path), header_(read_y4m_header(in_)) {
        if (!header_.cs)
            in_.unsupported("holds pictures of the kind C" + header_.kind +
                            "; 4:4:4, 4:2:2, 4:2:0 and mono of 8 bits are taken: "
                            "ffmpeg -i IN -pix_fmt yuv420p OUT.y4m");
        int32_t err;
        image_.reset(zelt_imgb_create(header_.about.w, header_.about.h, header_.cs, 0, nullptr, nullptr, nullptr,
                                      nullptr, &err));
        if (err == ZELT_ERR_BUFFER_ALLOC) in_.unsupported("holds pictures that are too large");
        if (!image_) throw std::bad_alloc();
        zelt_md5_init(&all_);
    }

    const clip& about() const { return header_.about; }
    int size() const { return image_->size; }
    bool more() { return in_.peek() != EOF; }

    digest next() {
        read_y4m_frame(in_);
        // Without alignment and padding the block is the file's own layout.
        in_.read(image_->base[0], static_cast<std::size_t>(image_->size));
        add_block(all_);
        digest d;
        if (header_.cs == ZELT_CS_YUV420 || header_.cs == ZELT_CS_YUV400) {
            zelt_md5_imgb(image_.get(), d.bytes);
        } else {  // whose chroma the library's digest of a picture takes as halved in both directions
            ZELT_MD5 one;
            zelt_md5_init(&one);
            add_block(one);
            zelt_md5_finish(&one, d.bytes);
        }
        return d;
    }
    digest all() {
        digest d;
        zelt_md5_finish(&all_, d.bytes);
        return d;
    }

private:
    void add_block(ZELT_MD5& ctx) const {
        zelt_md5_update(&ctx, static_cast<const uint8_t*>(image_->base[0]), static_cast<uint32_t>(image_->size));
    }

    struct release {
        void operator()(ZELT_IMGB* img) const { img->release(img); }
    };
    input in_;
    y4m_header header_;
    std::unique_ptr<ZELT_IMGB, release> image_;
    ZELT_MD5 all_;
};

/// What a file of digests holds: one of the whole clip, or one for each picture.
struct digest_list {
    std::string whole;
    std::vector<std::string> pictures;
};

digest_list read_list(const std::string& path) {
    constexpr std::size_t longest = 4096;
    constexpr const char* whole = "MD5=";
    input in(path);
    digest_list list;
    while (in.peek() != EOF) {
        std::string line = in.line(longest, true);
        if (line.ends_with('\r')) line.pop_back();  // of a CRLF
        if (line.empty() || line[0] == '#') continue;
        const bool of_all = line.starts_with(whole);
        const std::size_t at = line.find_last_of(of_all ? "=" : ", ");
        std::string hex = line.substr(at == line.npos ? 0 : at + 1);
        for (char& c : hex) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (hex.size() != 32 || hex.find_first_not_of("0123456789abcdef") != hex.npos)
            in.bad("has a line without an MD5 digest at its end");
        if (of_all)
            list.whole = hex;
        else
            list.pictures.push_back(hex);
    }
    if (list.whole.empty() && list.pictures.empty()) in.bad("holds no digests");
    return list;
}

void print_head(const clip_reader& in) {
    const auto ratio = [](std::string text, bool turned) {
        const auto colon = text.find(':');
        if (colon == text.npos) return text;
        const std::string first = text.substr(0, colon), second = text.substr(colon + 1);
        return turned ? second + '/' + first : first + '/' + second;
    };
    const std::string step = ratio(in.about().rate, true);  // a frame's time is the rate upside down
    std::printf("#format: frame checksums\n#version: 2\n#hash: MD5\n#tb 0: %s\n#media_type 0: video\n"
                "#codec_id 0: rawvideo\n#dimensions 0: %dx%d\n#sar 0: %s\n#stream#, dts,        pts, duration,     "
                "size, hash\n",
                step.c_str(), in.about().w, in.about().h, ratio(in.about().aspect, false).c_str());
}

void list_digests(clip_reader& in, bool per_frame) {
    if (per_frame) print_head(in);
    for (int n = 0; in.more(); ++n) {
        if (caught_signal()) throw failure(status::output_failed, "interrupted");
        const digest d = in.next();
        if (per_frame) std::printf("0, %10d, %10d, %8d, %8d, %s\n", n, n, 1, in.size(), d.text().c_str());
    }
    if (!per_frame) std::printf("MD5=%s\n", in.all().text().c_str());
}

void verify(clip_reader& in, const digest_list& expected) {
    std::size_t n = 0, differing = 0;
    const bool listed = !expected.pictures.empty();
    for (; in.more(); ++n) {
        if (caught_signal()) throw failure(status::output_failed, "interrupted");
        const std::string is = in.next().text();
        if (!listed || (n < expected.pictures.size() && expected.pictures[n] == is)) continue;
        std::printf("picture %zu: %s%s\n", n, is.c_str(),
                    n < expected.pictures.size() ? (", not " + expected.pictures[n]).c_str() : " is not listed");
        ++differing;
    }
    for (std::size_t i = n; i < expected.pictures.size(); ++i, ++differing)
        std::printf("picture %zu is listed and missing\n", i);
    if (const std::string is = in.all().text(); !expected.whole.empty() && expected.whole != is) {
        std::printf("MD5=%s, not %s\n", is.c_str(), expected.whole.c_str());
        ++differing;
    }
    finish_output();
    if (differing) throw failure(status::bad_input, "the digests differ");
    std::printf("%zu pictures, the digests match\n", n);
}

}  // namespace

void add_md5(CLI::App& app) {
    CLI::App* verb = app.add_subcommand("md5", "Prints or verifies MD5 digests of the pictures of a clip");
    struct options {
        std::string in, list;
        bool per_frame = false;
    };
    const auto opt = std::make_shared<options>();
    verb->add_option("-i,--input", opt->in, "What to read; - is standard input")->required()->type_name("FILE");
    CLI::Option* list = verb->add_option("--verify", opt->list, "Digests to compare with")->type_name("FILE");
    verb->add_flag("--per-frame", opt->per_frame, "A digest for each picture")->excludes(list);
    verb->footer(notes);
    verb->callback([opt, list] {
        if (!list->count()) {
            clip_reader in(opt->in);
            list_digests(in, opt->per_frame);
        } else {
            const digest_list expected = read_list(opt->list);
            clip_reader in(opt->in);
            verify(in, expected);
        }
        finish_output();
    });
}

}  // namespace zelt::tool
