// SPDX-License-Identifier: MIT
#pragma once  // caps
#include <gst/gst.h>

namespace zelt::gst {

/// What the other pad can have if this one has caps: pair by pair, so that all of it can be converted.
GstCaps* other_caps(GstPadDirection direction, const GstCaps* caps);

/// The best of `others`, which it takes, for fixed caps: the same picture if that may be, else the format that loses
/// least, the size that is nearest and keeps the proportions, and the colours as they are.
GstCaps* best_caps(GstPadDirection direction, GstCaps* caps, GstCaps* others);

/// The formats of both pads' templates
GstCaps* template_caps();

/// The formats in caps, for messages; to be freed
char* format_list(const GstCaps* caps);

}  // namespace zelt::gst
