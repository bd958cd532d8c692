// SPDX-License-Identifier: MIT
#pragma once
// The coded tracks of a file, as the container holds them. libavformat reads, out of a module of its own: it brings a
// hundred libraries along, which the other verbs need not wait for.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zelt::tool {

struct track {
    std::string kind;     // video, audio, subtitle, or what else the container has
    uint32_t code;        // FourCC or number that the container has for the coding, or 0
    int32_t media_type;   // ZELT_MT_*, by the coding's usual code where that one is unknown
    std::string details;  // coding, size, rate
};

struct access_unit {
    const uint8_t* data;  // until the next unit is read
    int32_t size;
    double time;      // seconds, or not a number
    bool marked_key;  // what the container says
};

class container {
public:
    virtual ~container() = default;
    virtual std::string format() const = 0;
    virtual const std::vector<track>& tracks() const = 0;

    /// Chooses the track that `next` reads. H.264 and HEVC get start codes where the container has lengths.
    virtual void choose(size_t index) = 0;
    virtual bool start_codes_put_in() const = 0;
    virtual uint64_t units() const = 0;  // how many there may be of the track, 0 where the container does not say
    virtual bool next(access_unit& unit) = 0;
};

/// Opens a file. Without the module it fails and says what is missing.
std::unique_ptr<container> open_container(const std::string& path);
/// What the module exports as zelt_open_container; the caller deletes the result.
using container_opener = container*(const std::string& path);

/// Name and number of a media type: "H264 (104)".
std::string media_type_text(int32_t media_type);
/// The container's code: a FourCC as its characters, anything else as a number, or "none".
std::string code_text(const track& t);

}  // namespace zelt::tool
