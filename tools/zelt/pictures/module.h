// SPDX-License-Identifier: MIT
#pragma once
// The module with what needs libavformat and libavcodec. It is loaded only when it is needed: it brings a hundred
// libraries along.

namespace zelt::tool {

/// A function of the module. Without the module it fails and says what is missing for reading `what`.
void* module_function(const char* name, const char* what);

}  // namespace zelt::tool
