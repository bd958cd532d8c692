// SPDX-License-Identifier: MIT
#pragma once
// Drawings to files. cairo draws, out of a module of its own: the other verbs need not wait for the libraries that it
// brings along.
#include "drawing/canvas.h"

namespace zelt::tool {

/// As rgb888
picture rendered(const drawing& d);

bool is_svg(const std::string& path);
/// Told early, for verbs that have much to do before they draw: a failure where cairo is missing, or where drawings are
/// not written to files of this extension.
void check_drawing(const std::string& path, bool svg = true);
void write_drawing(const std::string& path, const drawing& d);

/// What the module exports as zelt_canvas_of_pixels and zelt_canvas_of_svg: a canvas that draws into a bgra8888
/// picture, and one that makes a text of it. The caller deletes it.
using pixels_canvas = canvas*(const picture& into);
using svg_canvas = canvas*(int w, int h, std::string& into);

}  // namespace zelt::tool
