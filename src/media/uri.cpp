// SPDX-License-Identifier: MIT
// URIs: their pieces, and the percent form of text.
#include "core/types.h"
#include "zelt/str.h"

#include <cstring>

using namespace zelt;

namespace {

void copy(char* dst, const char* src, s32 len) {
    std::memcpy(dst, src, static_cast<std::size_t>(len));
    dst[len] = 0;
}

void copy_path(char* dst, const char* src, s32 len) {
    if (*src != '/') *dst++ = '/';
    copy(dst, src, len);
}

const char* after_line_end(const char* s) { return s + (s[0] == '\r' && s[1] == '\n' ? 2 : s[0] ? 1 : 0); }

// Kept: hexadecimal letters count as 0.
int digit(char c) { return c >= '0' && c <= '9' ? c - '0' : 0; }

}  // namespace

int32_t zelt_str_parse_uri(const char* uri, char* scheme, char* host, char* port, char* path, char** rest) {
    *scheme = *host = *port = *path = 0;
    *rest = nullptr;
    const char* text = zelt_str_move_to_validw(const_cast<char*>(uri));
    s32 len;
    char* next;
    if (!text || zelt_str_parse_by_stok(text, "://", &len, &next)) return -1;
    copy(scheme, text, len);
    if (!next) return -1;

    text = next;
    zelt_str_parse_by_ctok(text, ':', &len, &next);
    if (text[len] == ':' && next) {  // Kept: the ":" may be in the path
        copy(host, text, len);
        text = next;
        zelt_str_parse_by_ctok(text, '/', &len, &next);
        if (len == 0) return -1;
        copy(port, text, len);
    } else {
        zelt_str_parse_by_ctok(text, '/', &len, &next);
        if (len == 0) {  // Kept: without a host all of the text is the path, further lines too
            copy_path(path, text, static_cast<s32>(std::strlen(text)));
            return 0;
        }
        copy(host, text, len);
    }

    if (text[len] != '/') {
        const char* after = after_line_end(text + len);
        *rest = *after ? const_cast<char*>(after) : nullptr;
    } else if (next) {
        zelt_str_parse_one_line(next, &len, rest);
        if (len > 0) copy_path(path, next, len);
    }
    return 0;
}

int32_t zelt_str_conv_a2uri(const char* s, char* out) {
    char* const start = out;
    for (; *s; ++s) {
        if (*s == ' ') {
            std::memcpy(out, "%20", 3);
            out += 3;
        } else {
            *out++ = *s;
        }
    }
    *out = 0;
    return static_cast<s32>(out - start);
}

int32_t zelt_str_conv_uri2a(const char* s, char* out) {
    char* const start = out;
    while (*s) {
        if (*s != '%') {
            *out++ = *s++;
            continue;
        }
        if (!s[1] || !s[2]) break;  // cut off
        *out++ = static_cast<char>(16 * digit(s[1]) + digit(s[2]));
        s += 3;
    }
    *out = 0;
    return static_cast<s32>(out - start);
}
