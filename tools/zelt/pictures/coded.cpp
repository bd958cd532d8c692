// SPDX-License-Identifier: MIT
// Clips of any container and coding, through the module.
#include "pictures/decoder.h"
#include "pictures/module.h"

namespace zelt::tool {
namespace {

constexpr format plain_bytes = {"bytes", nullptr, 0, 1, {{1}}, 8, false, false};

class coded_reader : public reader {
public:
    coded_reader(input in, bool bytes, int threads) : in_(std::move(in)) {
        const auto open = reinterpret_cast<decoder_opener*>(
            libav_function("zelt_open_decoder", "other clips than Y4M, PNG, PPM and raw ones"));
        decoder_.reset(open(in_.name(), in_.handle(), bytes, threads));
        about_ = decoder_->about;
        if (!(ahead_ = decoder_->next(frame_))) in_.bad("has no picture that can be decoded");
        about_.fmt = bytes ? &plain_bytes : &format_of(frame_.cs);
        if (!about_.fmt->yuv) {  // what it says then is not about these samples, nor for YUV that they may become
            about_.matrix = about_.range = std::nullopt;
            about_.other_matrix.clear();
        }
        if (!fits(*about_.fmt, frame_.w, frame_.h)) in_.bad("has pictures that are too large");
    }

    bool more() override { return ahead_ || (ahead_ = decoder_->next(frame_)); }

    void next(picture& into) override {
        if (!more()) in_.bad("has no other picture");
        ahead_ = false;
        into = {*about_.fmt, frame_.w, frame_.h, frame_.plane, frame_.stride, std::move(frame_.memory)};
    }

private:
    input in_;
    std::unique_ptr<decoder> decoder_;
    frame frame_ = {};
    bool ahead_ = false;  // whether frame_ is the next picture
};

}  // namespace

std::unique_ptr<reader> read_coded(input in, bool bytes, int threads) {
    return std::make_unique<coded_reader>(std::move(in), bytes, threads);
}

}  // namespace zelt::tool
