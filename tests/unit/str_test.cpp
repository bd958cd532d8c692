// SPDX-License-Identifier: MIT
#include "zelt/str.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {
using namespace std::string_literals;

/// Text in memory that ends with its terminator, so that sanitizers see a read past it.
struct text {
    std::vector<char> bytes;
    explicit text(const std::string& s) : bytes(s.c_str(), s.c_str() + s.size() + 1) { bytes.shrink_to_fit(); }
    char* s() { return bytes.data(); }
};

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
    std::vector<char> out(room, '#');
    const int len = convert(t.s(), out.data());
    EXPECT_EQ(out[static_cast<size_t>(len)], 0);
    return {out.data(), static_cast<size_t>(len)};
}

using texts = std::vector<std::pair<std::string, std::string>>;
}  // namespace

TEST(str, steps) {
    const struct {
        const char* name;
        char* (*step)(char*);
        std::vector<std::pair<std::string, int>> cases;  // a text, and where the result lies in it or -1 for null
    } rows[] = {
        // a vertical tab is no whitespace
        {"validw", zelt_str_move_to_validw, {{"", -1}, {" \t\r\n", -1}, {" \t\r\na", 4}, {"\v a", 0}}},
        // the last byte is never a word
        {"nextw", zelt_str_move_to_nextw, {{"a", -1}, {"  a", -1}, {"  ab", 2}, {"  a ", 2}}},
        {"eow",
         zelt_str_move_to_eow,
         {{"", -1}, {"a", 0}, {" ", 0}, {"  ", -1}, {"  a", 2}, {"abc de", 2}, {" a  b", 1}}},
        // a word that ends with the text, or before its last byte, is not found
        {"eow", zelt_str_move_to_eow, {{"abc", -1}, {"abc ", -1}, {"abc  ", 2}}},
        {"nextl",
         zelt_str_move_to_nextl,
         {{"", -1}, {"\n", -1}, {"ab", -1}, {"ab\n", -1}, {"ab\nc", 2}, {"ab\r\nc", 3}}},
        {"nextl", zelt_str_move_to_nextl, {{"ab\r\n", -1}, {"ab\rc", 2}, {"ab\r", -1}}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.step(nullptr), nullptr);
        for (const auto& [s, offset] : row.cases) {
            text t(s);
            const char* p = row.step(t.s());
            EXPECT_EQ(p ? p - t.s() : -1, offset) << row.name << " of " << testing::PrintToString(s);
        }
    }
}

TEST(str, splitting) {
    constexpr int line = -1, string = -2;
    const struct {
        int by;  // a character, or one of the above
        const char *s, *token;
        int result, len, next;  // offset of the rest or -1
    } cases[] = {
        {'=', "key=value", "", 0, 3, 4},
        {'=', "key=", "", 0, 3, -1},
        {'=', "key", "", 0, 3, -1},
        {'=', "", "", -1, 0, -1},
        {'=', "=v", "", 0, 0, 1},
        {'=', "ke\r\ny=v", "", 0, 2, 3},
        {'=', "ke\n", "", 0, 2, -1},
        {0xE9, "a\xE9z", "", 0, 1, 2},
        {0, "abc", "", 0, 3, -1},
        {string, "key::value", "::", 0, 3, 5},
        {string, "key::", "::", 0, 3, -1},
        {string, "key:", "::", -1, 0, -1},
        {string, "", "::", -1, 0, -1},
        {string, "ke\ny::", "::", 0, 2, 3},
        {string, "ke\r\nv", "\r\n", 0, 2, 4},  // the token comes first
        {string, "ke\r", "::", 0, 2, -1},
        {string, "abc", "", 0, 0, 0},
        {line, "", "", -1, 0, -1},
        {line, "abc", "", -1, 3, -1},
        {line, "abc\n", "", 0, 3, -1},
        {line, "abc\nd", "", 0, 3, 4},
        {line, "abc\r\n", "", 0, 3, -1},
        {line, "abc\r\nd", "", 0, 3, 5},
        {line, "abc\rd\n", "", -1, 3, -1},
        {line, "abc\r", "", -1, 3, -1},
        {line, "\n\n", "", 0, 0, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.s));
        text t(c.s);
        for (const bool rest_wanted : {true, false}) {
            int len = -7;
            char *next = t.s(), **const rest = rest_wanted ? &next : nullptr;
            EXPECT_EQ(c.by == string ? zelt_str_parse_by_stok(t.s(), c.token, &len, rest)
                      : c.by == line ? zelt_str_parse_one_line(t.s(), &len, rest)
                                     : zelt_str_parse_by_ctok(t.s(), c.by, &len, rest),
                      c.result);
            EXPECT_EQ(len, c.len);
            EXPECT_EQ(next ? next - t.s() : -1, rest_wanted ? c.next : 0);
        }
    }
}

TEST(uri, pieces_and_rest) {
    const texts cases = {
        {"x://h:554/p/q", "x|h|554|/p/q|(none)"},
        {"x://h/p/q", "x|h||/p/q|(none)"},
        {" \n x://h", "x|h|||(none)"},
        {"x://h/", "x|h|||(none)"},
        {"x://h//p", "x|h||/p|(none)"},
        {"x://h:80", "x|h|80||(none)"},
        {"x://:80/p", "x||80|/p|(none)"},
        {"://h", "|h|||(none)"},
        {"x://h:", "x|h:|||(none)"},  // nothing follows the colon
        {"x://h/p:q/r", "x|h/p|q|/r|(none)"},
        {"x:///p/q", "x|||/p/q|(none)"},
        {"x:///p\nq", "x|||/p\nq|(none)"},
        {"x://\nq", "x|||/\nq|(none)"},
        {"x\nh/p", "x|h||/p|(none)"},  // a line end in place of "://"
        {"x://h/p\r\nmore\n", "x|h||/p|more\n"},
        {"x://h/p\n", "x|h||/p|(none)"},
        {"x://h/\nmore", "x|h|||more"},
        {"x://h\r\nmore", "x|h|||more"},
        {"x://h\rmore", "x|h|||more"},
        {"x://h:1\nmore/p", "x|h|1||more/p"},
        {"x://h\nk:v", "x|h|||k:v"},  // a colon of the next line is no port
    };
    for (const auto& [s, pieces] : cases) EXPECT_EQ(uri(s), pieces);
}

TEST(uri, errors) {
    for (const char* s : {"", "  \r\n", "abc", "x:/h", "x://", "x://h:/p", "x://h:\np"}) EXPECT_EQ(uri(s), "-1") << s;
    char out[4] = {'#', '#', '#', '#'}, *rest = out;
    EXPECT_EQ(zelt_str_parse_uri(nullptr, out, out + 1, out + 2, out + 3, &rest), -1);
    EXPECT_EQ(rest, nullptr);
    EXPECT_EQ(std::string(out, 4), std::string(4, '\0'));
}

TEST(uri, percent_form) {
    for (const auto& [s, form] : texts{{"a b", "a%20b"}, {"", ""}, {"  %\t/", "%20%20%\t/"}})
        EXPECT_EQ(converted(zelt_str_conv_a2uri, s, 3 * s.size() + 1), form);
    // letters count as 0; what is cut off is dropped
    const texts back = {
        {"a%20b%2Fc%41%G9", "a b cA\t"}, {"%00x", "\0x"s}, {"%99", "\x99"}, {"ab%", "ab"}, {"ab%2", "ab"}};
    for (const auto& [form, s] : back) EXPECT_EQ(converted(zelt_str_conv_uri2a, form, form.size() + 1), s);
    text in_place("%41%42c");
    EXPECT_EQ(zelt_str_conv_uri2a(in_place.s(), in_place.s()), 3);
    EXPECT_STREQ(in_place.s(), "ABc");
    EXPECT_EQ(zelt_str_get_one_az09(), 0);
}
