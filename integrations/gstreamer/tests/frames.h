// SPDX-License-Identifier: MIT
#pragma once  // pictures in GStreamer's layouts, and what the library itself makes of them
#include <cstdint>
#include <gst/check/gstharness.h>
#include <gst/video/video.h>
#include <string>
#include <vector>

/// A format of GStreamer's with the library's name for it, and with the planes in the library's order
struct layout {
    const char* name;
    int32_t cs;
    std::vector<unsigned> planes;
};
extern const std::vector<layout> layouts;
const layout& layout_of(const std::string& name);

/// A picture in memory of its own; rows may be longer than they need to be, and planes apart.
class frame {
public:
    frame(const layout& of, int w, int h, int row_padding = 0, int plane_padding = 0);

    int w() const { return info_.width; }
    int h() const { return info_.height; }
    const layout& of() const { return *layout_; }
    void fill(uint32_t seed);
    /// As a buffer that says where the planes are
    GstBuffer* buffer() const;
    /// Its planes in the library's order
    std::vector<void*> planes();
    std::vector<int32_t> strides() const;
    /// The samples alone
    std::vector<uint8_t> samples() const;
    /// Takes them from a buffer that has caps.
    static std::vector<uint8_t> samples(GstBuffer* buffer, const GstCaps* caps);

private:
    const layout* layout_;
    GstVideoInfo info_;
    std::vector<uint8_t> bytes_;
};

enum class way { none, video, dispatch };
/// How the library itself converts src to dst, or that it does not
way convert(frame& src, frame& dst, int32_t matrix, int32_t range, int32_t chroma);

/// An element between two pads, with a bus. It is PLAYING.
class element {
public:
    explicit element(const std::string& properties = "");
    ~element();
    element(const element&) = delete;

    GstHarness* harness() { return harness_; }
    /// Whether it takes pictures of these caps without an error; what follows takes those of `out`.
    bool set_caps(const std::string& in, const std::string& out);
    GstFlowReturn push(GstBuffer* buffer) { return gst_harness_push(harness_, buffer); }
    /// The caps of the source pad
    std::string caps();
    /// The samples of the picture that comes out
    std::vector<uint8_t> pull();
    /// The messages of all errors so far, or ""
    const std::string& error();

private:
    GstHarness* harness_;
    GstBus* bus_;
    std::string error_;
};

/// "video/x-raw" with a format, a size, and whatever follows
std::string caps_of(const std::string& format, int w, int h, const std::string& more = "");
