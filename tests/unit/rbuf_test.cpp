#include "zelt/rbuf.h"

#include <climits>
#include <cstring>
#include <deque>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>

namespace {
struct ring_deleter {
    void operator()(ZELT_RBUF* rb) const { zelt_rbuf_delete(rb); }
};

/// A ring with text in it, the first byte of which lies at `tail`.
class ring : public std::unique_ptr<ZELT_RBUF, ring_deleter> {
public:
    explicit ring(int size, int tail = 0, const std::string& text = "") : unique_ptr(zelt_rbuf_create(size)) {
        std::memset(get()->buf, '#', static_cast<std::size_t>(size));
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
        length = zelt_rbuf_get_one_line(get(), out.data() + 1, max);
        EXPECT_EQ(out.front(), '.');
        EXPECT_EQ(out.back(), '.');
        if (length) {
            EXPECT_EQ(out[static_cast<std::size_t>(length) + 1], 0);
        }
        return length ? out.substr(1, static_cast<std::size_t>(length)) : "";
    }
    int length = 0;  // of the last line, as it was returned
};

struct indices {
    int head, tail;
    bool operator==(const indices&) const = default;
};
indices of(const ring& r) { return {r->head, r->tail}; }
void PrintTo(indices i, std::ostream* out) { *out << "head " << i.head << " tail " << i.tail; }

/// Random puts, gets and direct accesses beside a deque and two counters of all bytes ever written and read.
TEST(rbuf, agrees_with_a_queue_over_random_calls) {
    for (const int size : {1, 2, 3, 8, 61, 1000}) {
        ring r(size);
        std::mt19937 random(static_cast<unsigned>(size));
        std::deque<char> model;
        long long written = 0, read = 0;
        for (int i = 0; i < 4000; ++i) {
            const int fill = static_cast<int>(model.size()), space = size - 1 - fill;
            int len = std::uniform_int_distribution(-1, size + 2)(random), n;
            const bool direct = random() % 3 == 0;
            uint8_t* at;
            if (random() & 1) {
                ASSERT_EQ(zelt_rbuf_get_head(r.get(), &at, &n), 0);
                ASSERT_EQ(at, space ? r->buf + r->head : nullptr);
                ASSERT_EQ(n, std::min(space, size - r->head));
                if (direct) len = std::min(len, n);
                // An exact fill to the end of the storage is a rule of its own, tested below.
                if (r->tail == 0 && r->head + len == size) continue;
                std::string text;
                while (static_cast<int>(text.size()) < len) text += static_cast<char>(random());
                const bool fits = len > 0 && len <= space;
                if (direct && fits) std::memcpy(at, text.data(), text.size());
                ASSERT_EQ(direct ? zelt_rbuf_skip_head(r.get(), len) : r.put(text), fits ? len : 0);
                if (!fits) text.clear();
                model.insert(model.end(), text.begin(), text.end());
                written += static_cast<long long>(text.size());
            } else {
                ASSERT_EQ(zelt_rbuf_get_tail(r.get(), &at, &n), 0);
                ASSERT_EQ(at, fill ? r->buf + r->tail : nullptr);
                ASSERT_EQ(n, std::min(fill, size - r->tail));
                for (int k = 0; k < n; ++k) ASSERT_EQ(static_cast<char>(at[k]), model[static_cast<size_t>(k)]);
                n = std::clamp(len, 0, fill);
                if (random() % 64 == 0)
                    zelt_rbuf_empty(r.get()), n = fill;
                else if (direct)
                    ASSERT_EQ(zelt_rbuf_skip_tail(r.get(), len), n);
                else
                    ASSERT_EQ(r.take(len), std::string(model.begin(), model.begin() + n));
                model.erase(model.begin(), model.begin() + n);
                read += n;
            }
            ASSERT_EQ(of(r), (indices{static_cast<int>(written % size), static_cast<int>(read % size)}));
            ASSERT_EQ(r->size, size);
            const int now = static_cast<int>(model.size());
            const bool wrapped = r->head < r->tail;
            ASSERT_EQ(zelt_rbuf_get_tot_len(r.get()), size - 1);
            ASSERT_EQ(zelt_rbuf_is_empty(r.get()), now == 0);
            ASSERT_EQ(zelt_rbuf_is_full(r.get()), now == size - 1);
            ASSERT_EQ(zelt_rbuf_get_fill_len(r.get()), wrapped ? now - 1 : now);
            ASSERT_EQ(zelt_rbuf_get_free_len(r.get()), wrapped ? size - 1 - now : size + 1 - now);
            ASSERT_EQ(zelt_rbuf_get_fillc_len(r.get()), std::min(now, size - r->tail));
            ASSERT_EQ(zelt_rbuf_get_freec_len(r.get()), std::min(size - 1 - now, size - r->head));
        }
    }
}

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

TEST(rbuf, skip_head_to_the_end_of_the_storage_commits_nothing_while_tail_is_0) {
    ring r(8);
    EXPECT_EQ(zelt_rbuf_skip_head(r.get(), 8), 7);
    EXPECT_EQ(zelt_rbuf_skip_head(r.get(), INT_MAX), 7);
    EXPECT_EQ(of(r), (indices{0, 0}));
    EXPECT_EQ(zelt_rbuf_skip_head(r.get(), 7), 7);
    EXPECT_EQ(of(r), (indices{7, 0}));
}

TEST(rbuf, moves_nothing_for_negative_lengths) {
    for (const int tail : {0, 5}) {
        ring r(8, tail, "abcdef");
        const indices before = of(r);
        for (const int len : {-1, INT_MIN}) {
            EXPECT_EQ(zelt_rbuf_put(r.get(), nullptr, len), 0);
            EXPECT_EQ(zelt_rbuf_get(r.get(), nullptr, len), 0);
            EXPECT_EQ(zelt_rbuf_skip_head(r.get(), len), 0);
            EXPECT_EQ(zelt_rbuf_skip_tail(r.get(), len), 0);
            EXPECT_EQ(r.line(len), "");
        }
        EXPECT_EQ(of(r), before);
    }
}

struct line_case {
    int tail;
    const char* text;
    int max;
    const char* line;
    int tail_after;
};

/// Rings of 16 bytes; data from 12 on wraps behind its first four bytes.
TEST(rbuf, lines) {
    const line_case cases[] = {
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
        {12, "abc\r\nfgh", 16, "abc\r\n", 1},  // between its two end marks
    };
    for (const line_case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.text << " at " << c.tail << ", max " << c.max);
        ring r(16, c.tail, c.text);
        const int head = r->head;
        std::string line = r.line(c.max);
        if (std::strcmp(c.text, "abc\r\nfgh") == 0) {  // one too many is counted, and that byte is not written
            EXPECT_EQ(line, "abc\r\n.");
            line.pop_back();
        }
        EXPECT_EQ(line, c.line);
        EXPECT_EQ(of(r), (indices{head, c.tail_after}));
    }
}

TEST(rbuf, a_zero_byte_hides_the_line_behind_it) {
    for (const int tail : {0, 11, 13}) {
        ring r(16, tail, std::string("ab\0cd\r\n", 7));
        EXPECT_EQ(r.line(16), "");
        EXPECT_EQ(r->tail, tail);
    }
}

/// A bare line feed at the end of the storage leaves the read index one past it, where the piece before the wrap has
/// -1 bytes: what is copied from behind the wrap then starts one before the destination, and that byte is dropped.
TEST(rbuf, reads_on_from_past_the_end_of_the_storage) {
    const auto past_end = [](const std::string& rest) {
        ring r(16, 12, "abc\n");
        EXPECT_EQ(r->head, 0);
        EXPECT_EQ(r.put(rest), static_cast<int>(rest.size()));
        EXPECT_EQ(r.line(16), "abc\r\n");
        EXPECT_EQ(r->tail, 17);
        return r;
    };
    EXPECT_EQ(zelt_rbuf_is_full(past_end("").get()), 1);
    ring r = past_end("xyz123");
    EXPECT_EQ(zelt_rbuf_get_fillc_len(r.get()), -1);
    EXPECT_EQ(zelt_rbuf_get_fill_len(r.get()), 16 + 6 - 1 - 17);
    EXPECT_EQ(zelt_rbuf_get_free_len(r.get()), 10);
    EXPECT_EQ(r.take(2), "yz");
    EXPECT_EQ(of(r), (indices{6, 3}));

    r = past_end("xyz");
    EXPECT_EQ(zelt_rbuf_skip_tail(r.get(), INT_MAX), 2);
    EXPECT_EQ(of(r), (indices{3, 3}));

    r = past_end("");  // nothing before the wrap but the byte too many, and nothing behind it
    EXPECT_EQ(zelt_rbuf_skip_tail(r.get(), 3), -1);
    EXPECT_EQ(of(r), (indices{0, 0}));
    uint8_t byte = 7;
    EXPECT_EQ(zelt_rbuf_get(past_end("").get(), &byte, 3), -1);
    EXPECT_EQ(byte, 7);

    r = past_end("xy\r\nz");
    EXPECT_EQ(r.line(16), "y\r\n");
    EXPECT_EQ(of(r), (indices{5, 4}));

    r = past_end("\nz");
    EXPECT_EQ(r.line(16), "\n");
    EXPECT_EQ(of(r), (indices{2, 2}));
}
}  // namespace
