// SPDX-License-Identifier: MIT
#pragma once
// Modules hold what needs libraries that are not everywhere. They are loaded only when they are needed: libavformat
// brings a hundred others along.
#include <string>

namespace zelt::tool {

/// A function of a module. Without the module it fails and says what is missing: "drawing needs cairo: install ...".
void* module_function(const char* module, const char* name, const std::string& missing);
/// Of the one that reads containers and codings
void* libav_function(const char* name, const std::string& what);

}  // namespace zelt::tool
