// SPDX-License-Identifier: MIT
#pragma once
// What is meant by a verb or an option that there is not.
#include <span>

namespace CLI {
class App;
}

namespace zelt::tool {

/// A failure that names the nearest one, or what it is here that users of other tools are used to.
void check_names(const CLI::App& tool, std::span<char* const> arguments);

}  // namespace zelt::tool
