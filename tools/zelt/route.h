#pragma once
// How pictures of one format become pictures of another: through the library's dispatch, in at most two steps.
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
    /// Finds the way for pictures of w x h; a failure that lists what `from` can become where there is none.
    route(const format& from, const format& to, int w, int h);

    const picture& run(const picture& from);  // the converted picture, which stays the route's
    std::string text() const;                 // the formats passed through, for the user

private:
    struct step {
        zelt_csc_fn convert;
        picture result;
    };
    const format* from_;
    std::vector<step> steps_;  // none: the picture is as it should be already
};

}  // namespace zelt::tool
