#pragma once
// How pictures of one format and size become pictures of another: through the library's dispatch, in at most two steps,
// or in one that resizes, or resized first.
#include "pictures/picture.h"
#include "zelt/csc.h"

#include <string>
#include <vector>

namespace zelt::tool {

/// The converter that the dispatch has for pictures of one size, or of two sizes, or null.
zelt_csc_fn same_size_converter(const format& from, const format& to);
zelt_csc_fn resizing_converter(const format& from, const format& to);

class route {
public:
    struct size {
        int w, h;
        bool operator==(const size&) const = default;
    };

    /// Finds the path; a failure that lists what `from` can become if there is none. Other than 0, band_rows is how
    /// many rows are resized at a time.
    route(const format& from, size from_size, const format& to, size to_size, int band_rows);
    route(const format& from, const format& to, int w, int h) : route(from, {w, h}, to, {w, h}, 0) {}  // of one size

    const picture& run(const picture& from);  // the converted picture, which stays the route's
    std::string text() const;                 // the formats passed through, for the user

private:
    struct step {
        zelt_csc_fn convert;  // null: resizes only
        picture result;
    };
    const format* from_;
    size from_size_;
    int band_rows_;
    std::vector<step> steps_;  // none: the picture is as it should be already
};

}  // namespace zelt::tool
