// SPDX-License-Identifier: MIT
// Clips of many containers, codings and layouts, made by ffmpeg, whose decoders and zscale filter tell what their
// pictures look like.
#include "tool/run.h"

#include <iterator>
#include <sstream>

namespace {

const std::string samples = ZELT_SAMPLES "/", source = " -i " + samples + "pan444.y4m ";

class any_clip : public tool {
protected:
    std::string ffmpeg(const std::string& arguments) const {
        const outcome result = shell("ffmpeg -nostdin -v error " + arguments);
        expect_success(result);
        return result.out;
    }
};

/// What ffmpeg is to make of several inputs in one run
class task {
public:
    /// NAME.ppm of the pictures of an input. zscale refuses odd sizes, so luma of those gets a column and a row that
    /// are cut off again; chroma of 4:2:0 has them already.
    void add(const std::string& input, const std::string& name, const std::string& colours,
             const std::string& odd_layout, const std::string& size) {
        const std::string n = std::to_string(count_++);
        inputs_ += " -threads 1 " + input;
        graph_ += (graph_.empty() ? "[" : ";[") + n + ":v]";
        if (!odd_layout.empty())
            graph_ += "format=" + odd_layout + ",extractplanes=y+u+v[y" + n + "][u" + n + "][v" + n + "];[y" + n +
                      "]pad=52:38[p" + n + "];[p" + n + "][u" + n + "][v" + n + "]mergeplanes=0x001020:" + odd_layout +
                      ",";
        graph_ += "setfield=prog,zscale=cin=left:r=full:m=gbr:f=bilinear:d=none:" + colours + ",format=gbrp";
        if (!odd_layout.empty()) graph_ += ",crop=" + size;
        graph_ += "[out" + n + "]";
        outputs_ += " -map [out" + n + "] -fps_mode passthrough -c:v ppm -f image2pipe " + name + ".ppm";
    }
    /// The samples of the last input as they are
    void add(const std::string& output) {
        outputs_ += " -map " + std::to_string(count_ - 1) + ":v -fps_mode passthrough " + output;
    }
    std::string arguments() const { return inputs_ + " -filter_complex '" + graph_ + "'" + outputs_; }

private:
    int count_ = 0;
    std::string inputs_, graph_, outputs_;
};

/// The largest difference of two samples, 256 where something else differs
int difference(const std::string& a, const std::string& b) {
    if (a.size() != b.size() || a.empty()) return 256;
    int most = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        most = std::max(most, std::abs(static_cast<unsigned char>(a[i]) - static_cast<unsigned char>(b[i])));
    return most;
}

/// The digests of a list of framemd5
std::string digests(const std::string& list) {
    std::istringstream lines(list);
    std::string all;
    for (std::string line; std::getline(lines, line);)
        if (line[0] != '#') all += line.substr(line.rfind(',')) + "\n";
    return all;
}

}  // namespace

TEST_F(any_clip, has_the_colours_that_zscale_gives) {
    const std::string x264 = "libx264 -preset ultrafast -pix_fmt ", vp8 = "libvpx -cpu-used 8 -deadline realtime ",
                      x265 = "libx265 -preset ultrafast -x265-params log-level=none:pools=none -pix_fmt ",
                      vp9 = "libvpx-vp9 -cpu-used 8 -deadline realtime -pix_fmt ";
    const struct {
        std::string file, codec, colours;
        std::string said_by;                     // range and matrix: f, the file, or h, habit
        std::string odd_layout = "", size = "";  // of pictures that are not 176x144
    } rows[] = {
        {"h264.mp4", x264 + "yuv420p -color_range tv -colorspace smpte170m", "rin=limited:min=170m", "ff"},
        {"h264_709.mkv", "libx264 -preset veryfast -color_range tv -colorspace bt709 -pix_fmt yuv420p",
         "rin=limited:min=709", "ff"},
        {"h264_422.mkv", x264 + "yuv422p -color_range tv -colorspace bt709", "rin=limited:min=709", "ff"},
        {"h264_444.mkv", x264 + "yuv444p -color_range pc -colorspace bt709", "rin=full:min=709", "ff"},
        {"h264_gray.mkv", x264 + "gray", "rin=full:min=170m", "fh"},
        {"h264_10.mp4", x264 + "yuv420p10le -color_range tv", "rin=limited:min=170m", "hh"},
        {"h264.ts", x264 + "yuv420p -color_range tv", "rin=limited:min=170m", "hh"},
        {"h264.264", x264 + "yuv420p -color_range tv", "rin=limited:min=170m", "hh"},
        {"high.mp4", x264 + "yuv420p -color_range tv -vf crop=32:18,scale=1280:720", "rin=limited:min=709", "hh"},
        {"hevc.mp4", x265 + "yuv420p -color_range tv", "rin=limited:min=170m", "fh"},
        {"hevc.hevc", x265 + "yuv422p10le -color_range tv -colorspace bt2020nc", "rin=limited:min=2020_ncl", "ff"},
        {"hevc.ts", x265 + "yuv444p10le -color_range pc -colorspace bt709", "rin=full:min=709", "ff"},
        {"vp8.webm", vp8, "rin=limited:min=170m", "ff"},
        {"vp8.ivf", vp8, "rin=limited:min=170m", "ff", "yuv420p", "51:37"},
        {"vp9.webm", vp9 + "yuv440p", "rin=limited:min=170m", "fh"},
        {"vp9.ivf", vp9 + "yuv422p", "rin=limited:min=170m", "fh", "yuv422p", "51:38"},
        {"vp9_10.webm", vp9 + "yuv444p10le -colorspace bt2020nc", "rin=limited:min=2020_ncl", "ff"},
        {"mpeg4.avi", "mpeg4", "rin=limited:min=170m", "hh"},
        {"mpeg2.ts", "mpeg2video -flags +ilme+ildct -top 1", "rin=limited:min=170m", "fh"},
        {"mjpeg.avi", "mjpeg -pix_fmt yuvj422p", "rin=full:min=170m", "ff"},
        {"mjpeg.mkv", "mjpeg -pix_fmt yuvj420p", "rin=full:min=170m", "ff", "yuvj420p", "51:37"},
        {"ffv1_440.mkv", "ffv1 -pix_fmt yuv440p", "rin=limited:min=170m", "fh", "yuv440p", "52:37"},
        {"ffv1_10.mkv", "ffv1 -pix_fmt yuv422p10le -color_range tv", "rin=limited:min=170m", "fh", "yuv422p10le",
         "51:38"},
        {"ffv1_gray.mkv", "ffv1 -pix_fmt gray", "rin=full:min=170m", "fh"},
        {"prores.mov", "prores_ks -pix_fmt yuv422p10le", "rin=limited:min=170m", "fh"},
        {"nv12.nut", "rawvideo -pix_fmt nv12", "rin=limited:min=170m", "hh"},
        {"yuyv.avi", "rawvideo -pix_fmt yuyv422", "rin=limited:min=170m", "hh"},
        {"uyvy.mov", "rawvideo -pix_fmt uyvy422", "rin=limited:min=170m", "hh"},
        {"png.mkv", "png -pix_fmt rgb24", "min=gbr", ""},
        {"bgr24.avi", "rawvideo -pix_fmt bgr24", "min=gbr", ""},
    };
    std::string make = source;
    task wanted;
    for (const auto& row : rows) {
        make += " -frames:v 3 -threads 1 -c:v " + row.codec + (row.size.empty() ? "" : " -vf crop=" + row.size) + " " +
                row.file;
        wanted.add("-i " + row.file, row.file, row.colours, row.odd_layout, row.size);
        wanted.add("-f framemd5 " + row.file + ".md5");
    }
    ffmpeg(make);
    ffmpeg(wanted.arguments());
    for (const auto& row : rows) {
        SCOPED_TRACE(row.file);
        const outcome result = zelt("convert -v -o - --to ppm -i " + row.file);
        EXPECT_EQ(result.status, 0);
        EXPECT_LE(difference(result.out, load(row.file + ".ppm")), 1);
        EXPECT_EQ(digests(zelt("md5 --per-frame -i " + row.file).out), digests(load(row.file + ".md5")));
        if (row.said_by.empty()) continue;
        const auto by = [&](int i) { return row.said_by[i] == 'f' ? " (as the file says)" : " (by habit)"; };
        const auto has = [&](const char* name) { return row.colours.find(name) != row.colours.npos; };
        const std::string said = (has("full") ? "; full range" : "; limited range") + std::string(by(0)) +
                                 (has("170m")  ? ", bt601"
                                  : has("709") ? ", bt709"
                                               : ", bt2020") +
                                 by(1);
        EXPECT_NE(result.err.find(said), std::string::npos) << result.err << said;
    }
}

TEST_F(any_clip, raw_layouts_by_the_names_of_ffmpeg) {
    const std::pair<std::string, std::string> rows[] = {
        {"yuv420p", "yuv420p"},
        {"yuv422p", "yuv422p"},
        {"yuv440p", "yuv440p"},
        {"yuv444p", "yuv444p"},
        {"nv12", "yuv420p"},
        {"nv21", "yuv420p"},
        {"yuyv422", "yuv422p"},
        {"uyvy422", "yuv422p"},
        {"yuv420p10le", "yuv420p10le"},
        {"yuv422p10le", "yuv422p10le"},
        {"yuv444p10le", "yuv444p10le"},
        {"p010le", "yuv420p10le"},
        {"p210le", "yuv422p10le"},
    };
    const std::string raw = " -f rawvideo -pix_fmt ";
    const auto size_of = [](const std::string& layout, const std::string& planar, char between) {
        const bool packed = layout.ends_with("y422") || layout.ends_with("v422");  // ffmpeg has no half a pair there
        const auto halved = [&](const char* how) { return planar.find(how) != planar.npos; };
        return std::string(packed || halved("440") ? "52" : "51") + between + (packed || halved("422") ? "38" : "37");
    };
    std::string make = source;
    task wanted;
    for (const auto& [layout, planar] : rows) {
        const std::string size = size_of(layout, planar, ':'), file = layout + ".raw";
        make += " -frames:v 2 -vf crop=" + size + ",scale=out_range=limited" + raw + layout + " " + file;
        const bool even = size == "52:38" || planar.starts_with("yuv444p");
        wanted.add(raw + layout + " -s " + size_of(layout, planar, 'x') + " -i " + file, file, "rin=limited:min=709",
                   even ? "" : planar, size);
        wanted.add(raw + planar + " " + file + ".apart");
    }
    ffmpeg(make);
    ffmpeg(wanted.arguments());
    for (const auto& [layout, planar] : rows) {
        SCOPED_TRACE(layout);
        const std::string file = layout + ".raw", apart = file + ".apart";
        const std::string convert = "convert -o - --raw " + size_of(layout, planar, 'x') + ":";
        const outcome rgb = zelt(convert + layout + " --to ppm --matrix bt709 -i " + file);
        expect_success(rgb);
        EXPECT_LE(difference(rgb.out, load(file + ".ppm")), 1);
        EXPECT_EQ(difference(zelt(convert + layout + " --to raw --pix-fmt " + planar + " -i " + file).out, load(apart)),
                  0);
        EXPECT_EQ(difference(zelt(convert + planar + " --to raw --pix-fmt " + layout + " -i " + apart).out, load(file)),
                  0);
    }
}

TEST_F(any_clip, psnr_is_that_of_ffmpeg) {
    for (const std::string layout : {"yuv420p", "yuv422p", "yuv444p", "gray", "yuv420p10le"}) {
        SCOPED_TRACE(layout);
        const std::string coding = " -c:v ffv1 -pix_fmt " + layout;
        ffmpeg(source + "-frames:v 3" + coding + " -y a.mkv");
        ffmpeg("-i a.mkv -vf noise=c0s=9:c1s=5:c2s=30" + coding + " -y b.mkv");
        ffmpeg("-i a.mkv -i b.mkv -lavfi psnr=stats_file=../psnr -f null -");
        const outcome result = zelt("compare -i a.mkv -i b.mkv");
        expect_success(result);
        // Lines of a number and the PSNR of Y, U, V and all of them; and of that of all, Y, U and V
        std::istringstream ours(result.out), theirs(shell("sed 's/.*psnr_avg/avg/; s/[a-z_]*://g' ../psnr").out);
        const auto fields = [](std::istream& from) {
            std::string line;
            std::getline(from, line);
            std::istringstream in(line);
            return std::vector<std::string>{std::istream_iterator<std::string>(in), {}};
        };
        fields(ours);  // the head
        for (int n = 0; n < 3; ++n) {
            const std::vector<std::string> is = fields(ours), wanted = fields(theirs);
            ASSERT_TRUE(is.size() > 4 && wanted.size() >= 2) << result.out;
            EXPECT_NEAR(std::stod(is[4]), std::stod(wanted[0]), 0.01);
            for (std::size_t i = 1; i < wanted.size(); ++i) EXPECT_NEAR(std::stod(is[i]), std::stod(wanted[i]), 0.01);
        }
    }
}

TEST_F(any_clip, begins_with_a_picture_that_is_whole) {
    for (const std::string name : {"pan_h264.mp4", "pan_mpeg4.avi"}) {
        const std::string in = samples + name;
        ffmpeg("-i " + in + " -c copy -copyinkf -bsf:v 'noise=drop=lt(n\\,5)' -y late.mkv");
        const outcome late = zelt("convert -o - --to ppm --limit 1 -i late.mkv");
        expect_success(late);
        EXPECT_EQ(difference(late.out, zelt("convert -o - --to ppm --limit 1 --skip 12 -i " + in).out), 0) << name;
    }
}

TEST_F(any_clip, is_right_or_refused) {
    const std::string to = "convert -o out.ppm -i ", h264 = " -c:v libx264 -preset ultrafast ";
    ffmpeg(source + "-frames:v 2" + h264 + "-f h264 large.264 -frames:v 2 -vf scale=96:80" + h264 +
           "-f h264 small.264 -frames:v 2 -c:v ffv1 -pix_fmt yuv420p12le deep.mkv -frames:v 2 -c:v ffv1 -pix_fmt "
           "yuv411p few.mkv "
           "-frames:v 2 -c:v mpeg2video -flags +ilme+ildct -top 1 fields.mpg");
    ffmpeg("-f lavfi -i anullsrc -t 0.1 sound.wav");
    expect_success(shell("cat large.264 small.264 >both.264; printf '' >empty.mp4; head -c 5000 /dev/zero >zero.mp4"));
    const auto before = names();
    const struct {
        int status;
        std::string said, file;
    } rows[] = {
        {2, "picture 2 is 96x80", "both.264"}, {4, "yuv420p12le", "deep.mkv"}, {4, "yuv411p", "few.mkv"},
        {2, "is empty", "empty.mp4"},          {2, "zero.mp4", "zero.mp4"},    {2, "has no video", "sound.wav"},
    };
    for (const auto& row : rows) {
        expect_failure(zelt(to + row.file), row.status, row.said);
        EXPECT_EQ(names(), before);
    }
    EXPECT_NE(zelt("convert -v -o - --to ppm -i fields.mpg").err.find("interlaced"), std::string::npos);
    expect_success(zelt("convert -o - --to ppm --limit 2 -i both.264"));
}

TEST_F(any_clip, that_is_cut_or_damaged_is_told) {
    const std::string to = "convert -o - --to ppm -i ";
    const struct {
        std::string name;
        bool told;  // whether container or coding can tell that something is missing
    } rows[] = {{"pan_h264.mp4", true},  {"pan_sound.mkv", true}, {"pan_hfyu.avi", true},
                {"pan_mpeg4.avi", true}, {"pan_h264.ts", true},   {"pan.h264", false}};
    for (const auto& row : rows) {
        const std::string whole = load(samples + row.name), pictures = zelt(to + samples + row.name).out;
        for (const std::size_t parts : {4, 7}) {
            SCOPED_TRACE(row.name + " " + std::to_string(parts));
            store("clip", whole.substr(0, whole.size() - whole.size() / parts));
            const outcome cut = zelt(to + "clip");
            row.told || cut.status ? expect_failure(cut, 2, "clip: ") : expect_success(cut);
            // All are right but for the last ones where the unit that is cut counts as a whole one.
            const std::size_t sound = row.told ? cut.out.size() : cut.out.size() - 3 * (15 + 176 * 144 * 3);
            EXPECT_TRUE(sound < pictures.size() && pictures.starts_with(cut.out.substr(0, sound)));

            std::string damaged = whole;
            damaged.replace(whole.size() / parts, 100, std::string(100, '\xA5'));
            store("clip", damaged);
            const outcome result = zelt(to + "clip");
            result.status ? expect_failure(result, 2, "clip: ") : expect_success(result);
        }
    }
}
