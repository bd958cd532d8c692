// SPDX-License-Identifier: MIT
#pragma once
// Picture files as a sequence of pictures of one size and format.
#include "pictures/picture.h"
#include "pictures/stream.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace zelt::tool {

/// What holds for all pictures of a file. The texts are those of a Y4M header.
struct clip {
    const format* fmt = nullptr;
    int w = 0, h = 0;
    std::string rate = "25:1", aspect = "1:1", interlacing = "p";
    std::string siting = "jpeg";           // where chroma of 4:2:0 lies, after "420"
    std::optional<int32_t> matrix, range;  // ZELT_VIDEO_*, where the file says so
    std::string other_matrix;              // the name of one that the library has not
    std::string note;                      // what else the user may want to know
    uint64_t pictures = 0;                 // how many, by the file's size or its container; 0: not known
};

class reader {
public:
    virtual ~reader() = default;
    const clip& about() const { return about_; }
    virtual bool more() = 0;  // whether there is another picture
    /// The next one, of about()'s size and format. `into` is an earlier one, whose memory it may get, or none.
    virtual void next(picture& into) = 0;
    const picture& next() {  // it stays until the next call
        next(last_);
        return last_;
    }

protected:
    clip about_;

private:
    picture last_;
};

/// A reader that fills one picture after the other from bytes
class file_reader : public reader {
public:
    void next(picture& into) final;

protected:
    explicit file_reader(input in) : in_(std::move(in)) {}
    virtual void read(picture& into) = 0;
    /// Sets what about() says, or a failure. The pictures that are still to come have headers of so many bytes.
    void shape(const format& fmt, int w, int h, int64_t header = 0);
    void read_planes(picture& into);  // rows of all planes, one after the other

    input in_;
};

/// A number in a header, whole and within 31 bits, or -1.
int header_number(std::string_view digits);

// With `bytes` what the tool has no format for may come as rows of bytes, see decoder.h.
std::unique_ptr<reader> read_y4m(input in, bool bytes, int threads);
std::unique_ptr<reader> read_pnm(input in);
std::unique_ptr<reader> read_png(input in);
std::unique_ptr<reader> read_raw(input in, const std::string& layout);
std::unique_ptr<reader> read_coded(input in, bool bytes, int threads);  // by the module

/// Opens a file by what it begins with; raw pictures by their layout, "WxH:FORMAT", which is empty otherwise. With
/// `bytes` what only the module reads may have any layout, and comes as a row of bytes.
/// Clips are decoded by so many threads, for 0 by as many as there are processors.
std::unique_ptr<reader> open_reader(const std::string& path, const std::string& raw_layout, bool bytes = false,
                                    int threads = 0);

}  // namespace zelt::tool
