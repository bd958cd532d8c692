// SPDX-License-Identifier: MIT
#pragma once
// The end of what a verb prints.
#include "pictures/failure.h"

#include <cstdio>

namespace zelt::tool {

/// A full disk or a closed pipe behind standard output is a failure like any other.
inline void finish_output() {
    if (std::fflush(stdout) != 0 || std::ferror(stdout))
        throw failure(status::output_failed, "standard output: cannot be written");
}

}  // namespace zelt::tool
