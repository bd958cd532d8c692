// SPDX-License-Identifier: MIT
#pragma once
// How pictures of one format and size become pictures of another: by the dispatch of csc.h, which is full-range BT.601,
// or by video.h, in one step where one of them has it, resized on the way or before.
#include "pictures/colours.h"
#include "pictures/picture.h"
#include "zelt/csc.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zelt::tool {

/// How to convert where there is a choice
struct manner {
    colours meaning = {};  // of YUV samples
    int32_t chroma = ZELT_VIDEO_SMOOTH;
    std::optional<int32_t> filter = std::nullopt;  // of other sizes; without one by area below 1:2, else bilinear
    int band_rows = 0;                             // other than 0: how many rows are resized at a time
};

/// Whether there is a conversion in one step, of one size and to another one
bool converts(const format& from, const format& to);
bool resizes(const format& from, const format& to);

class route {
public:
    struct size {
        int w, h;
        bool operator==(const size&) const = default;
    };

    /// Finds the path; a failure that lists what `from` can become if there is none.
    route(const format& from, size from_size, const format& to, size to_size, const manner& how);
    route(const format& from, const format& to, size of_both, const colours& meaning)
        : route(from, of_both, to, of_both, manner{meaning}) {}

    const picture& run(const picture& from);  // the converted picture, which stays the route's
    std::string text() const;                 // the formats passed through, for the user

    using conversion = std::function<void(const picture& from, const picture& to)>;

private:
    struct step {
        conversion convert;
        picture result;
    };
    void add(conversion convert, const format& to, size at) {
        steps_.push_back({std::move(convert), {to, at.w, at.h}});
    }

    const format* from_;
    size from_size_;
    std::vector<step> steps_;  // none: the picture is as it should be already
};

}  // namespace zelt::tool
