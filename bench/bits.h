// SPDX-License-Identifier: MIT
#pragma once
// What the bit coders and the start-code scan work on, for us and for peers.
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zelt::bench {
using byte_string = std::vector<uint8_t>;

struct field {
    uint32_t value;
    int32_t bits;
};

struct bit_work {
    std::vector<field> plain;      // a million fields of 1 to 24 random bits
    std::vector<field> geometric;  // a million Exp-Golomb values, each twice as rare as the one before; no widths
    byte_string coded_plain, coded_geometric;
    uint32_t plain_sum, geometric_sum;
};
const bit_work& bits();

/// An H.264 unit of 1 MiB that is no slice and has no start code but its own, so that all of it is searched. In a dense
/// one every other byte is 0.
const byte_string& unit(bool dense);

/// Whether a unit type ends the search
inline bool is_slice(int type) { return type == 1 || type == 5; }
}  // namespace zelt::bench
