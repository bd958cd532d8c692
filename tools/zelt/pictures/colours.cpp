// SPDX-License-Identifier: MIT
#include "pictures/colours.h"

#include "pictures/failure.h"
#include "pictures/reader.h"

#include <algorithm>
#include <span>

namespace zelt::tool {
namespace {

using origin = colours::origin;

/// The user's word, else the file's, else what is usual
int32_t settle(const std::string& told, std::span<const char* const> names, std::optional<int32_t> said, int32_t usual,
               origin& by) {
    by = !told.empty() ? origin::user : said ? origin::file : origin::habit;
    const auto name = std::ranges::find(names, told);
    return name != names.end() ? static_cast<int32_t>(name - names.begin()) : said.value_or(usual);
}

}  // namespace

std::string colours::text() const {
    constexpr const char* origins[] = {" (by habit)", " (as the file says)", " (as told)"};
    return range_names[range] + std::string(" range") + origins[static_cast<int>(range_by)] + ", " +
           matrix_names[matrix] + origins[static_cast<int>(matrix_by)];
}

int32_t usual_matrix(int rows) { return rows >= 720 ? ZELT_VIDEO_BT709 : ZELT_VIDEO_BT601; }

colours colours_of(const clip& about, const told_colours& told, int rows) {
    if (told.matrix.empty() && !about.other_matrix.empty())
        throw failure(status::unsupported, "the matrix of the clip is " + about.other_matrix +
                                               ", which the library has not: give the nearest one by --matrix");
    colours c;
    c.matrix = settle(told.matrix, matrix_names, about.matrix, usual_matrix(rows), c.matrix_by);
    c.range = settle(told.range, range_names, about.range, ZELT_VIDEO_LIMITED, c.range_by);
    return c;
}

}  // namespace zelt::tool
