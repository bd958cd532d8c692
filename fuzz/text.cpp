// SPDX-License-Identifier: MIT
// Text and URI scanners of any text: results lie within it, pieces fit, and a URI form turns back into its text.
#include "input.h"
#include "zelt/str.h"

#include <cstring>
#include <string>

namespace {
using text = std::vector<char>;  // ends with its terminator and with its memory

text make(const std::vector<uint8_t>& bytes) {
    text t(bytes.begin(), bytes.end());
    t.push_back(0);
    return text(t.begin(), t.begin() + static_cast<std::ptrdiff_t>(std::strlen(t.data())) + 1);
}

size_t length(const text& t) { return t.size() - 1; }

void require_inside(const text& t, const char* p) { fuzz::require(!p || (p >= t.data() && p < t.data() + length(t))); }

void scan(text& t) {
    for (auto step : {zelt_str_move_to_validw, zelt_str_move_to_nextw, zelt_str_move_to_eow, zelt_str_move_to_nextl})
        require_inside(t, step(t.data()));
}

void split(const text& t, const text& token) {
    int32_t len;
    char* next;
    const auto check = [&](int32_t result) {
        require_inside(t, next);
        fuzz::require(result == 0 || result == -1);
        fuzz::require(len >= 0 && static_cast<size_t>(len) <= length(t));
    };
    check(zelt_str_parse_by_ctok(t.data(), token[0], &len, &next));
    check(zelt_str_parse_by_stok(t.data(), token.data(), &len, &next));
    check(zelt_str_parse_one_line(t.data(), &len, &next));
}

void parse(const text& t) {
    std::vector<char> part[4];
    for (auto& p : part) p.assign(t.size(), 1);
    char* rest;
    if (zelt_str_parse_uri(t.data(), part[0].data(), part[1].data(), part[2].data(), part[3].data(), &rest) == 0)
        fuzz::require(part[1][0] || part[2][0] || part[3][0]);  // some address
    require_inside(t, rest);
}

void convert(const text& t) {
    std::string uri(3 * length(t) + 1, '\1'), back(t.size(), '\1');
    uri.resize(static_cast<size_t>(zelt_str_conv_a2uri(t.data(), uri.data())));
    fuzz::require(uri.find(' ') == std::string::npos);
    const int32_t len = zelt_str_conv_uri2a(t.data(), back.data());
    fuzz::require(len >= 0 && static_cast<size_t>(len) <= length(t));
    if (std::strchr(t.data(), '%')) return;
    back.assign(uri.size() + 1, '\1');
    back.resize(static_cast<size_t>(zelt_str_conv_uri2a(uri.c_str(), back.data())));
    fuzz::require(back == t.data());
}
}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::input in(data, size);
    const text token = make(in.bytes(in.byte() % 5));
    text t = make(in.rest());
    scan(t);
    split(t, token);
    parse(t);
    convert(t);
    return 0;
}
