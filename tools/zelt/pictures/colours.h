// SPDX-License-Identifier: MIT
#pragma once
// What the samples of YUV pictures mean: their matrix and range, and who says so.
#include "zelt/video.h"

#include <cstdint>
#include <string>

namespace zelt::tool {

struct clip;

struct colours {
    enum class origin { habit, file, user };

    int32_t matrix = ZELT_VIDEO_BT601, range = ZELT_VIDEO_FULL;
    origin matrix_by = origin::habit, range_by = origin::habit;

    std::string text() const;  // "limited range (by habit), bt709 (as the file says)"
};

/// What the user says of them; empty where that is nothing.
struct told_colours {
    std::string range, matrix;  // names of those below
};

/// By the user, else by the file, else by what is usual: limited range, and BT.709 where there are 720 rows or more.
colours colours_of(const clip& about, const told_colours& told, int rows);
int32_t usual_matrix(int rows);

/// Names by ZELT_VIDEO_*
inline constexpr const char *range_names[] = {"limited", "full"}, *matrix_names[] = {"bt601", "bt709", "bt2020"};

}  // namespace zelt::tool
