#include "zelt/str.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

/// Text in memory that ends with its terminator, so that sanitizers see a read past it.
struct text {
    std::vector<char> bytes;
    explicit text(const std::string& s) : bytes(s.c_str(), s.c_str() + s.size() + 1) { bytes.shrink_to_fit(); }
    char* s() { return bytes.data(); }
};

/// Offset of the result, -1 for null.
int offset(char* (*step)(char*), const std::string& s) {
    text t(s);
    const char* p = step(t.s());
    return p ? static_cast<int>(p - t.s()) : -1;
}

/// Result, length, offset of the rest or -1.
struct piece {
    int result, len, next;
    bool operator==(const piece&) const = default;
};
std::ostream& operator<<(std::ostream& o, const piece& p) {
    return o << '{' << p.result << ", " << p.len << ", " << p.next << '}';
}

template <class Parse> piece cut(const std::string& s, Parse parse) {
    text t(s);
    piece p{};
    char *next = t.s(), *const start = next;
    p.result = parse(start, &p.len, &next);
    p.next = next ? static_cast<int>(next - start) : -1;
    int len = -7;
    EXPECT_EQ(parse(start, &len, nullptr), p.result);
    EXPECT_EQ(len, p.len);
    return p;
}

piece by_char(const std::string& s, int c) {
    return cut(s, [c](const char* t, int* len, char** next) { return zelt_str_parse_by_ctok(t, c, len, next); });
}
piece by_string(const std::string& s, const char* token) {
    return cut(s,
               [token](const char* t, int* len, char** next) { return zelt_str_parse_by_stok(t, token, len, next); });
}
piece one_line(const std::string& s) { return cut(s, zelt_str_parse_one_line); }

/// The pieces of a URI with bars between them, or the result where it is not 0.
std::string uri(const std::string& s) {
    text t(s);
    std::vector<char> out[4];
    for (auto& o : out) o.resize(s.size() + 1, '#');
    char* rest = t.s();
    const int result = zelt_str_parse_uri(t.s(), out[0].data(), out[1].data(), out[2].data(), out[3].data(), &rest);
    if (result) return std::to_string(result);
    std::string all;
    for (auto& o : out) all += std::string(o.data()) + '|';
    return all + (rest ? rest : "(none)");
}

std::string converted(int (*convert)(const char*, char*), const std::string& s, size_t room) {
    text t(s);
    std::vector<char> out(room);
    const int len = convert(t.s(), out.data());
    EXPECT_EQ(out[static_cast<size_t>(len)], 0);
    return {out.data(), static_cast<size_t>(len)};
}
std::string escaped(const std::string& s) { return converted(zelt_str_conv_a2uri, s, 3 * s.size() + 1); }
std::string unescaped(const std::string& s) { return converted(zelt_str_conv_uri2a, s, s.size() + 1); }

}  // namespace

TEST(str, words) {
    EXPECT_EQ(zelt_str_move_to_validw(nullptr), nullptr);
    EXPECT_EQ(offset(zelt_str_move_to_validw, ""), -1);
    EXPECT_EQ(offset(zelt_str_move_to_validw, " \t\r\n"), -1);
    EXPECT_EQ(offset(zelt_str_move_to_validw, " \t\r\na"), 4);
    EXPECT_EQ(offset(zelt_str_move_to_validw, "\v a"), 0);  // a vertical tab is no whitespace

    EXPECT_EQ(offset(zelt_str_move_to_nextw, "a"), -1);
    EXPECT_EQ(offset(zelt_str_move_to_nextw, "  a"), -1);  // the last byte is never returned
    EXPECT_EQ(offset(zelt_str_move_to_nextw, "  ab"), 2);
    EXPECT_EQ(offset(zelt_str_move_to_nextw, "  a "), 2);

    EXPECT_EQ(offset(zelt_str_move_to_eow, ""), -1);
    EXPECT_EQ(offset(zelt_str_move_to_eow, "a"), 0);
    EXPECT_EQ(offset(zelt_str_move_to_eow, " "), 0);
    EXPECT_EQ(offset(zelt_str_move_to_eow, "  "), -1);
    EXPECT_EQ(offset(zelt_str_move_to_eow, "  a"), 2);
    EXPECT_EQ(offset(zelt_str_move_to_eow, "abc de"), 2);
    EXPECT_EQ(offset(zelt_str_move_to_eow, " a  b"), 1);
    EXPECT_EQ(offset(zelt_str_move_to_eow, "abc"), -1);   // ends with the text
    EXPECT_EQ(offset(zelt_str_move_to_eow, "abc "), -1);  // the blank is the last byte
    EXPECT_EQ(offset(zelt_str_move_to_eow, "abc  "), 2);
}

TEST(str, lines) {
    EXPECT_EQ(offset(zelt_str_move_to_nextl, ""), -1);
    EXPECT_EQ(offset(zelt_str_move_to_nextl, "\n"), -1);
    EXPECT_EQ(offset(zelt_str_move_to_nextl, "ab"), -1);
    EXPECT_EQ(offset(zelt_str_move_to_nextl, "ab\n"), -1);
    EXPECT_EQ(offset(zelt_str_move_to_nextl, "ab\nc"), 2);
    EXPECT_EQ(offset(zelt_str_move_to_nextl, "ab\r\nc"), 3);
    EXPECT_EQ(offset(zelt_str_move_to_nextl, "ab\r\n"), -1);
    EXPECT_EQ(offset(zelt_str_move_to_nextl, "ab\rc"), 2);
    EXPECT_EQ(offset(zelt_str_move_to_nextl, "ab\r"), -1);

    EXPECT_EQ(one_line(""), (piece{-1, 0, -1}));
    EXPECT_EQ(one_line("abc"), (piece{-1, 3, -1}));
    EXPECT_EQ(one_line("abc\n"), (piece{0, 3, -1}));
    EXPECT_EQ(one_line("abc\nd"), (piece{0, 3, 4}));
    EXPECT_EQ(one_line("abc\r\n"), (piece{0, 3, -1}));
    EXPECT_EQ(one_line("abc\r\nd"), (piece{0, 3, 5}));
    EXPECT_EQ(one_line("abc\rd\n").result, -1);
    EXPECT_EQ(one_line("abc\r").result, -1);
    EXPECT_EQ(one_line("\n\n"), (piece{0, 0, 1}));
}

TEST(str, splitting) {
    EXPECT_EQ(by_char("key=value", '='), (piece{0, 3, 4}));
    EXPECT_EQ(by_char("key=", '='), (piece{0, 3, -1}));
    EXPECT_EQ(by_char("key", '='), (piece{0, 3, -1}));
    EXPECT_EQ(by_char("", '='), (piece{-1, 0, -1}));
    EXPECT_EQ(by_char("=v", '='), (piece{0, 0, 1}));
    EXPECT_EQ(by_char("ke\r\ny=v", '='), (piece{0, 2, 3}));
    EXPECT_EQ(by_char("ke\n", '='), (piece{0, 2, -1}));
    EXPECT_EQ(by_char("a\xE9z", 0xE9), (piece{0, 1, 2}));
    EXPECT_EQ(by_char("abc", 0), (piece{0, 3, -1}));

    EXPECT_EQ(by_string("key::value", "::"), (piece{0, 3, 5}));
    EXPECT_EQ(by_string("key::", "::"), (piece{0, 3, -1}));
    EXPECT_EQ(by_string("key:", "::"), (piece{-1, 0, -1}));
    EXPECT_EQ(by_string("", "::"), (piece{-1, 0, -1}));
    EXPECT_EQ(by_string("ke\ny::", "::"), (piece{0, 2, 3}));
    EXPECT_EQ(by_string("ke\r\nv", "\r\n"), (piece{0, 2, 4}));  // the token comes first
    EXPECT_EQ(by_string("ke\r", "::"), (piece{0, 2, -1}));
    EXPECT_EQ(by_string("abc", ""), (piece{0, 0, 0}));
}

TEST(uri, pieces) {
    EXPECT_EQ(uri("x://h:554/p/q"), "x|h|554|/p/q|(none)");
    EXPECT_EQ(uri("x://h/p/q"), "x|h||/p/q|(none)");
    EXPECT_EQ(uri(" \n x://h"), "x|h|||(none)");
    EXPECT_EQ(uri("x://h/"), "x|h|||(none)");
    EXPECT_EQ(uri("x://h//p"), "x|h||/p|(none)");
    EXPECT_EQ(uri("x://h:80"), "x|h|80||(none)");
    EXPECT_EQ(uri("x://:80/p"), "x||80|/p|(none)");
    EXPECT_EQ(uri("://h"), "|h|||(none)");
    EXPECT_EQ(uri("x://h:"), "x|h:|||(none)");  // nothing follows the colon
    EXPECT_EQ(uri("x://h/p:q/r"), "x|h/p|q|/r|(none)");
    EXPECT_EQ(uri("x:///p/q"), "x|||/p/q|(none)");
    EXPECT_EQ(uri("x:///p\nq"), "x|||/p\nq|(none)");
    EXPECT_EQ(uri("x://\nq"), "x|||/\nq|(none)");
    EXPECT_EQ(uri("x\nh/p"), "x|h||/p|(none)");  // a line end in place of "://"
}

TEST(uri, rest) {
    EXPECT_EQ(uri("x://h/p\r\nmore\n"), "x|h||/p|more\n");
    EXPECT_EQ(uri("x://h/p\n"), "x|h||/p|(none)");
    EXPECT_EQ(uri("x://h/\nmore"), "x|h|||more");
    EXPECT_EQ(uri("x://h\r\nmore"), "x|h|||more");
    EXPECT_EQ(uri("x://h:1\nmore/p"), "x|h|1||more/p");
    EXPECT_EQ(uri("x://h\nk:v"), "x|h|||k:v");  // a colon of the next line is no port
}

TEST(uri, errors) {
    for (const char* s : {"", "  \r\n", "abc", "x:/h", "x://", "x://h:/p", "x://h:\np"}) EXPECT_EQ(uri(s), "-1") << s;
    char out[4] = {'#', '#', '#', '#'}, *rest = out;
    EXPECT_EQ(zelt_str_parse_uri(nullptr, out, out + 1, out + 2, out + 3, &rest), -1);
    EXPECT_EQ(rest, nullptr);
    EXPECT_EQ(std::string(out, 4), std::string(4, '\0'));
}

TEST(uri, percent_form) {
    EXPECT_EQ(escaped("a b"), "a%20b");
    EXPECT_EQ(escaped(""), "");
    EXPECT_EQ(escaped("  %\t/"), "%20%20%\t/");
    EXPECT_EQ(unescaped("a%20b%2Fc%41%G9"), "a b cA\t");  // letters count as 0
    EXPECT_EQ(unescaped("%00x"), std::string("\0x", 2));
    EXPECT_EQ(unescaped("%99"), "\x99");
    EXPECT_EQ(unescaped("ab%"), "ab");  // cut off
    EXPECT_EQ(unescaped("ab%2"), "ab");
    EXPECT_EQ(unescaped(""), "");
    text in_place("%41%42c");
    EXPECT_EQ(zelt_str_conv_uri2a(in_place.s(), in_place.s()), 3);
    EXPECT_STREQ(in_place.s(), "ABc");
    EXPECT_EQ(zelt_str_get_one_az09(), 0);
}
