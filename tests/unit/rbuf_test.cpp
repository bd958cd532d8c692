// SPDX-License-Identifier: MIT
// Sequences of calls are those of fuzz/rbuf.cpp; here are the states in which an index leaves the storage, and lines.
#include "zelt/rbuf.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>

namespace {
using namespace std::string_literals;

struct ring_deleter {
    void operator()(ZELT_RBUF* rb) const { zelt_rbuf_delete(rb); }
};

/// A ring with text in it, the first byte of which lies at `tail`, behind a carriage return. Other bytes of the storage
/// are line feeds.
class ring : public std::unique_ptr<ZELT_RBUF, ring_deleter> {
public:
    explicit ring(int size, int tail = 0, const std::string& text = "") : unique_ptr(zelt_rbuf_create(size)) {
        std::memset(get()->buf, '\n', static_cast<std::size_t>(size));
        if (tail) get()->buf[tail - 1] = '\r';
        get()->head = get()->tail = tail;
        EXPECT_EQ(put(text), static_cast<int>(text.size()));
    }
    int put(const std::string& text) {
        return zelt_rbuf_put(get(), reinterpret_cast<const uint8_t*>(text.data()), static_cast<int>(text.size()));
    }
    std::string take(int len) {
        std::string out(static_cast<std::size_t>(std::max(len, 0)) + 2, '.');
        const int n = zelt_rbuf_get(get(), reinterpret_cast<uint8_t*>(out.data()), len);
        EXPECT_EQ(out.substr(static_cast<std::size_t>(n)), std::string(out.size() - static_cast<std::size_t>(n), '.'));
        return out.substr(0, static_cast<std::size_t>(n));
    }
    std::string line(int max) {
        std::string out(1 + static_cast<std::size_t>(std::max(max + 2, get()->size + 1)) + 1, '.');
        const int length = zelt_rbuf_get_one_line(get(), out.data() + 1, max);
        EXPECT_EQ(out.front(), '.');
        EXPECT_EQ(out.back(), '.');
        if (!length) return "";
        EXPECT_EQ(out[static_cast<std::size_t>(length) + 1], 0);
        return out.substr(1, static_cast<std::size_t>(length));
    }
};

using indices = std::pair<int, int>;
indices of(const ring& r) { return {r->head, r->tail}; }

TEST(rbuf, create_refuses_less_than_a_byte) {
    EXPECT_EQ(zelt_rbuf_create(0), nullptr);
    EXPECT_EQ(zelt_rbuf_create(INT_MIN), nullptr);
    zelt_rbuf_delete(nullptr);
}

TEST(rbuf, one_put_may_fill_the_whole_storage) {
    ring r(8);
    EXPECT_EQ(r.put("12345678"), 8);
    EXPECT_EQ(of(r), (indices{8, 0}));
    EXPECT_EQ(zelt_rbuf_is_full(r.get()), 0);  // the formula does not know this state
    EXPECT_EQ(r.put("9"), 0);
    EXPECT_EQ(zelt_rbuf_get_fill_len(r.get()), 8);
    EXPECT_EQ(zelt_rbuf_get_free_len(r.get()), 1);
    EXPECT_EQ(zelt_rbuf_get_freec_len(r.get()), -1);
    EXPECT_EQ(zelt_rbuf_skip_head(r.get(), 3), -1);
    EXPECT_EQ(r.take(3), "123");
    EXPECT_EQ(r.put("ab"), 2);  // wraps at once
    EXPECT_EQ(of(r), (indices{2, 3}));
    EXPECT_EQ(r.take(9), "45678ab");

    ring full(4);
    EXPECT_EQ(full.put("wxyz"), 4);
    EXPECT_EQ(full.take(9), "wxyz");
    EXPECT_EQ(of(full), (indices{4, 4}));  // both past the storage, and empty
    EXPECT_EQ(full.take(1), "");
    EXPECT_EQ(full.put("ab"), 2);
    EXPECT_EQ(of(full), (indices{2, 4}));
    EXPECT_EQ(full.take(1), "a");
}

/// Rings of 16 bytes; data from 12 on wraps behind its first four bytes.
TEST(rbuf, lines) {
    const struct {
        int tail;
        std::string text;
        int max;
        std::string line;
        int tail_after;
    } cases[] = {
        // in one piece
        {0, "ab\r\ncd", 16, "ab\r\n", 4},
        {0, "ab", 16, "", 0},
        {0, "\n.", 16, "\r\n", 2},  // a line feed alone takes the next byte with it
        {0, "a\nbc", 16, "a\r\n", 3},
        {0, "\r\n", 16, "\r\n", 2},
        {0, "ab\r\n", 5, "ab\r\n", 4},
        {0, "ab\r\n", 4, "", 0},  // looks at three bytes
        {0, "ab\r\n", 0, "", 0},
        {3, "abcdefg\n", 9, "abcdefg\r\n", 12},
        {3, "\n.", 16, "\r\n", 5},  // the byte before it was taken
        // in the piece before the wrap, whatever max says
        {12, "a\r\nXefg", 1, "a\r\n", 15},
        {12, "abc\nefg", 0, "abc\r\n", 17},
        // through the wrap
        {12, "abcdef\r\ngh", 16, "abcdef\r\n", 4},
        {12, "abcdef\ngh", 16, "abcdef\r\n", 4},
        {12, "abcd\nfgh", 16, "abcd\r\n", 2},
        {12, "abcdef\r\ngh", 8, "abcdef\r\n", 4},
        {12, "abcdef\r\ngh", 7, "", 12},
        {12, "abcdef\r\ngh", 4, "", 12},
        {12, "abcdefgh", 16, "", 12},
        {12, "abc\r\nfgh", 16, "abc\r\n.", 1},  // between its end marks: counts one more, which is not written
        {12, "abc\r\nfgh", 4, "", 12},
        {12, "abc\r", 16, "", 12},
        // a zero byte hides the line behind it
        {0, "ab\0cd\r\n"s, 16, "", 0},
        {11, "ab\0cd\r\n"s, 16, "", 11},
        {13, "ab\0cd\r\n"s, 16, "", 13},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.text << " at " << c.tail << ", max " << c.max);
        ring r(16, c.tail, c.text);
        const int head = r->head;
        EXPECT_EQ(r.line(c.max), c.line);
        EXPECT_EQ(of(r), (indices{head, c.tail_after}));
    }
}

/// A bare line feed at the end of the storage leaves the read index one past it, where the piece before the wrap has
/// -1 bytes: what is copied from behind the wrap then starts one before the destination, and that byte is dropped.
TEST(rbuf, reads_on_from_past_the_end_of_the_storage) {
    uint8_t byte = 7;
    const struct {
        const char* behind;  // the wrap
        std::function<int(ring&)> call;
        int result;
        indices after;
    } rows[] = {
        {"", [](ring& r) { return zelt_rbuf_is_full(r.get()); }, 1, {0, 17}},
        {"xyz123", [](ring& r) { return zelt_rbuf_get_fillc_len(r.get()); }, -1, {6, 17}},
        {"xyz123", [](ring& r) { return zelt_rbuf_get_fill_len(r.get()); }, 16 + 6 - 1 - 17, {6, 17}},
        {"xyz123", [](ring& r) { return zelt_rbuf_get_free_len(r.get()); }, 10, {6, 17}},
        {"xyz123", [](ring& r) { return r.take(2) == "yz"; }, 1, {6, 3}},
        {"xyz", [](ring& r) { return zelt_rbuf_skip_tail(r.get(), INT_MAX); }, 2, {3, 3}},
        // nothing before the wrap but the byte too many, and nothing behind it
        {"", [](ring& r) { return zelt_rbuf_skip_tail(r.get(), 3); }, -1, {0, 0}},
        {"", [&](ring& r) { return zelt_rbuf_get(r.get(), &byte, 3); }, -1, {0, 0}},
        {"xy\r\nz", [](ring& r) { return r.line(16) == "y\r\n"; }, 1, {5, 4}},
        {"\nz", [](ring& r) { return r.line(16) == "\n"; }, 1, {2, 2}},
    };
    for (const auto& row : rows) {
        ring r(16, 12, "abc\n");
        EXPECT_EQ(r->head, 0);
        r.put(row.behind);
        EXPECT_EQ(r.line(16), "abc\r\n");
        EXPECT_EQ(r->tail, 17);
        EXPECT_EQ(row.call(r), row.result) << &row - rows;
        EXPECT_EQ(of(r), row.after) << &row - rows;
    }
    EXPECT_EQ(byte, 7);
}
}  // namespace
