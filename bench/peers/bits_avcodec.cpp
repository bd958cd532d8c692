// SPDX-License-Identifier: MIT
// libavcodec's two ways of looking for start codes, as its parsers drive them. On ARM: no header declares one of them.
#include "bench.h"
#include "bits.h"

namespace zelt::bench {
namespace {
#ifdef __aarch64__
#define CANDIDATE ff_startcode_find_candidate_c
#else
#define CANDIDATE ff_startcode_find_candidate_armv6
#endif
extern "C" int CANDIDATE(const u8*, int);
extern "C" const u8* avpriv_find_start_code(const u8* p, const u8* end, u32* state);

int slices_by_words(const byte_string& data) {
    int slices = 0;
    u32 state = ~0u;
    for (const u8 *p = data.data(), *const end = p + data.size(); p < end;) {
        p = avpriv_find_start_code(p, end, &state);
        if (state >> 8 == 1) slices += is_slice(state & 31);
    }
    return slices;
}

/// From a zero that something found, byte by byte: after one zero, after two, after a start code
int slices_by_candidates(const byte_string& data) {
    enum { none, zero, zeros, code } seen = none;
    const int size = static_cast<int>(data.size());
    const u8* const p = data.data();
    int slices = 0;
    for (int i = 0; i < size; ++i) {
        if (seen == none) {
            i += CANDIDATE(p + i, size - i);
            if (i < size) seen = zero;
        } else if (seen == code) {
            slices += is_slice(p[i] & 31);
            seen = none;
        } else if (p[i] == 0) {
            seen = zeros;
        } else {
            seen = seen == zeros && p[i] == 1 ? code : none;
        }
    }
    return slices;
}

void add_scan(const char* row_name, bool dense, const char* name, int (*slices)(const byte_string&)) {
    add_candidate("bits", row_name, [=]() -> candidate {
        return {name, [=] {
                    if (slices(unit(dense))) reject(row_name, name);
                }};
    });
}

const bool added = [] {
    for (const bool dense : {false, true}) {
        const char* const row_name = dense ? "scan_zeros" : "scan_plain";
        add_scan(row_name, dense, "avpriv_find_start_code", slices_by_words);
        add_scan(row_name, dense, "ff_startcode_find_candidate", slices_by_candidates);
    }
    return true;
}();
}  // namespace
}  // namespace zelt::bench
