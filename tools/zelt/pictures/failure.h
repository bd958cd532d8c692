// SPDX-License-Identifier: MIT
#pragma once
// What ends a run early: one line for the user, and the exit status that goes with it.
#include <stdexcept>
#include <string>

namespace zelt::tool {

/// Exit statuses; scripts rely on these numbers.
enum class status { done, wrong_use, bad_input, output_failed, unsupported };

struct failure : std::runtime_error {
    failure(status why, const std::string& text) : std::runtime_error(text), code(why) {}
    status code;
};

}  // namespace zelt::tool
