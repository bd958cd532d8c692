// SPDX-License-Identifier: MIT
// Stepping over words and lines, splitting text.
#include "zelt/str.h"

#include "core/types.h"

#include <cstring>

using namespace zelt;

namespace {

bool is_space(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool is_line_end(char c) { return c == '\n' || c == '\r'; }

/// Reports a piece of `len` bytes and the text after it, null if nothing follows.
void report(std::size_t len, const char* after, s32* piece, char** next) {
    *piece = static_cast<s32>(len);
    if (next) *next = after && *after ? const_cast<char*>(after) : nullptr;
}

}  // namespace

char* zelt_str_move_to_validw(char* s) {
    if (!s) return nullptr;
    while (is_space(*s)) ++s;
    return *s ? s : nullptr;
}

char* zelt_str_move_to_nextw(char* s) {
    s = zelt_str_move_to_validw(s);
    return s && s[1] ? s : nullptr;  // Kept: the last byte is never a word
}

char* zelt_str_move_to_eow(char* s) {
    if (s && s[0] && !s[1]) return s;  // Kept: even whitespace
    s = zelt_str_move_to_validw(s);
    if (!s || !s[1]) return s;
    // Kept: the last byte is ignored, so neither a word that it ends nor whitespace there is found.
    for (++s; s[1]; ++s)
        if (is_space(*s)) return s - 1;
    return nullptr;
}

char* zelt_str_move_to_nextl(char* s) {
    if (!s || !*s) return nullptr;
    s += std::strcspn(s, "\r\n");
    if (s[0] == '\r' && s[1] == '\n') ++s;
    return s[0] && s[1] ? s : nullptr;  // Kept: an end of line that is the last byte does not count
}

int32_t zelt_str_parse_by_ctok(const char* s, int32_t ctok, int32_t* len, char** next) {
    std::size_t i = 0;
    while (s[i] && s[i] != static_cast<char>(ctok) && !is_line_end(s[i])) ++i;
    report(i, s[i] ? s + i + 1 : nullptr, len, next);
    return *s ? 0 : -1;
}

int32_t zelt_str_parse_by_stok(const char* s, const char* stok, int32_t* len, char** next) {
    const std::size_t token = std::strlen(stok);
    for (std::size_t i = 0; s[i]; ++i) {
        const bool found = std::strncmp(s + i, stok, token) == 0;
        if (!found && !is_line_end(s[i])) continue;
        report(i, s + i + (found ? token : 1), len, next);
        return 0;
    }
    report(0, nullptr, len, next);
    return -1;
}

int32_t zelt_str_parse_one_line(const char* s, int32_t* len, char** next) {
    const std::size_t i = std::strcspn(s, "\r\n");
    const std::size_t end = s[i] == '\n' ? 1 : s[i] == '\r' && s[i + 1] == '\n' ? 2 : 0;
    report(i, end ? s + i + end : nullptr, len, next);
    return end ? 0 : -1;
}

int32_t zelt_str_get_one_az09() { return 0; }
