// SPDX-License-Identifier: MIT
#pragma once
// Shrinking by area. A plane of w by h becomes one of W by H; each sample is the mean of what it covers, rounded:
//
//     (sum of across(s, x) down(t, y) sample(s, t) + w h / 2) / (w h)
//
// where across(s, x) is how much of source column s, from s W to (s + 1) W, is in x w to (x + 1) w, and down(t, y)
// likewise. Bytes are added up down first, by registers along the rows. The sums, which are words, are then turned, so
// that a register has a column's of as many rows, and added up across with the same weights for all. Halves are made of
// pairs as they are.
#include "video/area_scalar.h"
#include "video/turn.h"
#include "video/unpack.h"
#if ZELT_SIMD
#include "video/area_simd.h"
#endif

#include <bit>
#include <numeric>

namespace zelt::inline ZELT_LEVEL::video {
/// What of one axis a destination sample covers: samples from first to last, the weights of these two, and that of
/// those between
struct covered {
    s64 first, last;
    u64 first_weight, last_weight;

    std::ptrdiff_t count() const { return static_cast<std::ptrdiff_t>(last - first) + 1; }
};
struct area_axis {
    u64 src, dst;  // without their common divisor

    area_axis(s64 from, s64 to)
        : src(static_cast<u64>(from / std::gcd(from, to))), dst(static_cast<u64>(to / std::gcd(from, to))) {}
    bool whole() const { return dst == 1; }
    bool halves() const { return dst == 1 && src == 2; }
    /// How many of the destination so many of the source make up at least, wherever they begin
    s64 within(s64 n) const { return n > 2 ? (n - 2) * static_cast<s64>(dst) / static_cast<s64>(src) : 0; }

    /// Where a destination sample begins: in this source sample, after so much of it
    struct place {
        u64 sample, rest;
    };
    place at(s64 i) const { return {static_cast<u64>(i) * src / dst, static_cast<u64>(i) * src % dst}; }
    covered next(place& p) const {
        const place begin = p;
        p.sample += src / dst, p.rest += src % dst;
        if (p.rest >= dst) ++p.sample, p.rest -= dst;
        const s64 first = static_cast<s64>(begin.sample), last = static_cast<s64>(p.sample) - (p.rest == 0);
        if (first == last) return {first, last, src, 0};
        return {first, last, dst - begin.rest, p.rest ? p.rest : dst};
    }
};

/// Divides sums of up to 255 n, to the nearest.
class divisor {
public:
    explicit divisor(u64 n)
        : n_(n), shift_(std::max(static_cast<int>(std::bit_width(n)), 8) - 8),
          factor_(static_cast<u32>((u64{1} << 22 << shift_) / n)), words_{static_cast<int>(n), 0, 0} {
        if (!words_fit()) return;
        while ((131072 << words_.shift) / words_.n < 32767) ++words_.shift;
        words_.factor = (65536 << words_.shift) / words_.n + 1;
    }
    /// Whether sums fit 32 bits
    bool fits() const { return n_ <= 1 << 24; }
    /// Of such, one or a register of them. The first quotient lacks at most 1: what shifting cuts off is less than
    /// 1 / 128 of it, and the factor, of sums below 2^16 by then, lacks less than 1 / 64.
    template <class V> V rounded(V sum) const {
        const u32 n = static_cast<u32>(n_);
        sum = sum + n / 2;
        const V quotient = (sum >> shift_) * factor_ >> 22;
        return quotient + ((n - 1 - (sum - quotient * n)) >> 31);
    }
    u8 rounded(u64 sum) const { return static_cast<u8>((sum + n_ / 2) / n_); }

    /// Whether sums fit words, and then a factor of 15 bits, too large by less than 1, with 16 + shift fractional ones
    bool words_fit() const { return n_ > 2 && n_ <= 256; }
    struct of_words {
        int n, shift, factor;
    };
    const of_words& words() const { return words_; }

private:
    u64 n_;
    int shift_;
    u32 factor_;
    of_words words_;
};

/// Interleaved samples, of which some channels are wanted
struct interleaved_plane {
    const u8* p;
    std::ptrdiff_t stride;
    int channels, first[3];
};

/// Some columns of a plane that is shrunk
class shrinking {
public:
    static constexpr int most = 128;

    /// n columns from x on
    shrinking(s64 w, s64 h, s64 to_w, s64 to_h, s64 x, std::ptrdiff_t n, const rsz::pixel_format& pixels)
        : x_(w, to_w), y_(h, to_h), mean_(x_.src * y_.src), n_(n), bytes_(pixels.bytes), pixels_(pixels),
          start_(static_cast<s64>(x_.at(x).sample)) {
        area_axis::place at = x_.at(x);
        for (std::ptrdiff_t i = 0; i < n; ++i) {
            const covered c = x_.next(at);
            columns_[i] = {static_cast<u32>(c.first - start_), static_cast<u32>(c.last - start_),
                           static_cast<u32>(c.first_weight), static_cast<u32>(c.last_weight)};
        }
    }

    std::ptrdiff_t count() const { return n_; }
    bool as_it_is() const { return x_.src * y_.src == 1 && x_.dst * y_.dst == 1; }
    /// A row of these columns, as it is or in memory
    const u8* bytes(const interleaved_plane& src, s64 row, u8* memory) const {
        return bytes_at(src, row, 1, 0, n_ * bytes_, memory).p;
    }

    /// Rows of each channel from y on
    void rows(const interleaved_plane& src, s64 y, std::ptrdiff_t count, u8* const* out, const s32* out_s) const {
        if (x_.halves() && y_.halves() && bytes_ < 3 && !pixels_.unpack) return halve(src, y, count, out, out_s);
        constexpr std::ptrdiff_t most_rows = column_sums::rows;
        area_axis::place at = y_.at(y);
        for (std::ptrdiff_t top = 0; top < count; top += most_rows) {
            covered_rows rows = {{}, std::min(count - top, most_rows)};
            std::ptrdiff_t tallest = 0;
            for (std::ptrdiff_t i = 0; i < rows.count; ++i) {
                rows.of[i] = y_.next(at);
                tallest = std::max(tallest, rows.of[i].count());
            }
            const bool fits = mean_.fits() && tallest <= most_in_words;
            const std::ptrdiff_t most_here =
                pixels_.unpack ? std::min(most_bytes, most_unpacked / tallest) : most_bytes;
            u8* to[3];
            for (int c = 0; c < src.channels; ++c) to[c] = out[c] + top * out_s[c];
            const s64 at_least = fits ? x_.within(most_here / bytes_) : 0;
            for (std::ptrdiff_t i = 0, end; i < n_; i = end) {
                end = static_cast<std::ptrdiff_t>(std::min<s64>(n_, i + at_least));
                while (fits && end < n_ && bytes_of(i, end + 1) <= most_here) ++end;
                if (end > i) {
                    add_up(src, rows, i, end, to, out_s);
                    continue;
                }
                for (std::ptrdiff_t k = 0; k < rows.count; ++k)
                    for (int c = 0; c < src.channels; ++c)
                        to[c][k * out_s[c] + i] = mean_of(src, rows.of[k], i, src.first[c]);
                end = i + 1;
            }
        }
    }

private:
    static constexpr std::ptrdiff_t most_bytes = 384;      // of a source row that is added up at once
    static constexpr std::ptrdiff_t most_unpacked = 8192;  // of all rows that a row of the destination covers
    static constexpr int most_in_words = 257;              // bytes whose sum fits a word
    static constexpr std::ptrdiff_t most_means = most * column_sums::rows + 32;  // stored by registers
    struct column {
        u32 first, last, first_weight, last_weight;  // from start_ on
    };
    struct covered_rows {
        covered of[column_sums::rows];
        std::ptrdiff_t count;
    };

    std::ptrdiff_t bytes_of(std::ptrdiff_t begin, std::ptrdiff_t end) const {
        return static_cast<std::ptrdiff_t>(s64{columns_[end - 1].last} + 1 - columns_[begin].first) * bytes_;
    }
    const u8* place(const interleaved_plane& src, s64 row, std::ptrdiff_t i) const {
        return src.p + static_cast<std::ptrdiff_t>(row) * src.stride +
               static_cast<std::ptrdiff_t>(start_ + columns_[i].first) * pixels_.src_bytes;
    }

    // --------------------------------------------------------------------------------------------------------- halves

    template <class V> static V mean_of_four(const V (&upper)[2], const V (&lower)[2]) {
        const auto pairs = [&](int i) { return add_pair_sums(pair_sums(upper[i]), lower[i]); };
        return narrow_ordered((both_halves(pairs(0), pairs(1)) + 2) >> 2);
    }
    void halve(const interleaved_plane& src, s64 y, std::ptrdiff_t count, u8* const* out, const s32* out_s) const {
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            const u8 *upper = place(src, 2 * (y + i), 0), *lower = upper + src.stride;
            u8* const first = out[0] + i * out_s[0];
            if (bytes_ == 1) {
                for_each(n_, [=](auto v, std::ptrdiff_t k) {
                    constexpr std::ptrdiff_t next = sizeof v;
                    decltype(v) a[2], b[2];
                    load(upper + 2 * k, a[0]), load(upper + 2 * k + next, a[1]);
                    load(lower + 2 * k, b[0]), load(lower + 2 * k + next, b[1]);
                    store(first + k, mean_of_four(a, b));
                });
                continue;
            }
            u8* const second = src.channels > 1 ? out[1] + i * out_s[1] : nullptr;
            const bool odd_first = src.first[0] > 0;
            for_each(n_, [=](auto v, std::ptrdiff_t k) {
                constexpr std::ptrdiff_t next = 2 * sizeof v;
                decltype(v) a[2], b[2], c[2], d[2];  // the even bytes of both rows, the odd ones
                load2(upper + 4 * k, a[0], c[0]), load2(upper + 4 * k + next, a[1], c[1]);
                load2(lower + 4 * k, b[0], d[0]), load2(lower + 4 * k + next, b[1], d[1]);
                const auto even = mean_of_four(a, b), odd = mean_of_four(c, d);
                store(first + k, odd_first ? odd : even);
                if (second) store(second + k, odd_first ? even : odd);
            });
        }
    }

    struct rows_of_bytes {
        const u8* p;
        std::ptrdiff_t stride;
    };
    /// n bytes of some rows from a column on, as they are or in memory
    rows_of_bytes bytes_at(const interleaved_plane& src, s64 row, std::ptrdiff_t rows, std::ptrdiff_t column,
                           std::ptrdiff_t n, u8* memory) const {
        const u8* p = place(src, row, column);
        if (!pixels_.unpack) return {p, src.stride};
        for (std::ptrdiff_t i = 0; i < rows; ++i) pixels_.unpack(p + i * src.stride, memory + i * n, n / bytes_);
        return {memory, n};
    }

    // ------------------------------------------------------------------------------------------------- down, in words

    template <class V> static wide_of<V> sum_of_rows(const u8* p, std::ptrdiff_t stride, std::ptrdiff_t count) {
        V v, w;
        wide_of<V> sum{};
        for (; count > 1; count -= 2, p += 2 * stride) {
            load(p, v), load(p + stride, w);
            sum = sum + dot<1, 1>(v, w);
        }
        if (count == 0) return sum;
        load(p, v);
        return sum + widen(v);
    }
    /// n bytes of rows
    static void add_rows(rows_of_bytes rows, std::ptrdiff_t count, s16* sums, std::ptrdiff_t n) {
        for_each(n, [=](auto v, std::ptrdiff_t i) {
            store_widened(sums + i, sum_of_rows<decltype(v)>(rows.p + i, rows.stride, count));
        });
    }
    void weigh_rows(rows_of_bytes from, const covered& rows, s16* sums, std::ptrdiff_t n) const {
        const int weight = static_cast<int>(y_.dst), upper = static_cast<int>(rows.first_weight),
                  lower = static_cast<int>(rows.last_weight);
        const u8 *first = from.p, *last = first + (rows.count() - 1) * from.stride;
        for_each(n, [=, stride = from.stride, between = rows.count() - 2](auto v, std::ptrdiff_t i) {
            using V = decltype(v);
            V w;
            load(first + i, v), load(last + i, w);
            wide_of<V> sum = widen(v) * upper + widen(w) * lower;
            if (between > 0) sum = sum + sum_of_rows<V>(first + stride + i, stride, between) * weight;
            store_widened(sums + i, sum);
        });
    }

    // --------------------------------------------------------------------------------------------------------- across

    template <class Sum> Sum sum_across(const u16* p, const column& c) const {
        const std::ptrdiff_t step = bytes_ * std::ptrdiff_t{column_sums::rows};
        const auto count = static_cast<std::ptrdiff_t>(c.last - c.first) + 1;
        const auto sum_of = [step](const u16* first, std::ptrdiff_t left) {
            Sum sum(first);
            while (--left > 0) sum = sum + Sum(first += step);
            return sum;
        };
        if (x_.whole()) return sum_of(p, count);
        Sum sum = Sum(p) * c.first_weight;
        if (count > 1) sum = sum + Sum(p + (count - 1) * step) * c.last_weight;
        if (count > 2) sum = sum + sum_of(p + step, count - 2) * static_cast<u32>(x_.dst);
        return sum;
    }

    /// Calls body(k, sum) for columns from begin to end.
    template <class Sum, class Body>
    void each_column(const u16* p, std::ptrdiff_t begin, std::ptrdiff_t end, Body body) const {
        for (std::ptrdiff_t k = begin; k < end; ++k) {
            const auto at = static_cast<std::ptrdiff_t>(columns_[k].first - columns_[begin].first) * bytes_;
            body(k - begin, sum_across<Sum>(p + at * column_sums::rows, columns_[k]));
        }
    }

    /// Columns from begin to end, of rows whose sums fit words. If they would not with their weights, rows of each
    /// weight have sums of their own.
    void add_up(const interleaved_plane& src, const covered_rows& rows, std::ptrdiff_t begin, std::ptrdiff_t end,
                u8* const* out, const s32* out_s) const {
        constexpr std::ptrdiff_t most_rows = column_sums::rows;
        enum { upper, lower, between, weights };
        alignas(64) s16 sums[most_rows][most_bytes];
        alignas(64) u16 turned_sums[most_bytes * most_rows];
        u8 means[most_means], memory[most_unpacked];
        const std::ptrdiff_t n = bytes_of(begin, end);
        const auto turn = [&] {
            transpose<2>(reinterpret_cast<const u8*>(sums), sizeof sums[0], reinterpret_cast<u8*>(turned_sums),
                         sizeof(u16) * most_rows, std::max<std::ptrdiff_t>(n, 8), most_rows);
        };
        if (y_.src <= most_in_words) {
            for (std::ptrdiff_t i = 0; i < rows.count; ++i) {
                const covered& of = rows.of[i];
                const rows_of_bytes from = bytes_at(src, of.first, of.count(), begin, n, memory);
                y_.whole() ? add_rows(from, of.count(), sums[i], n) : weigh_rows(from, of, sums[i], n);
            }
            turn();
            for (int c = 0; c < src.channels; ++c) {
                const auto store = [&](std::ptrdiff_t k, const auto& sum) {
                    sum.store_means(mean_, means + k * most_rows);
                };
                const u16* from = turned_sums + src.first[c] * most_rows;
                mean_.words_fit() ? each_column<column_words>(from, begin, end, store)
                                  : each_column<column_sums>(from, begin, end, store);
                put(means, end - begin, out[c] + begin, out_s[c], rows.count);
            }
            return;
        }
        column_sums totals[most];
        for (int c = 0; c < src.channels; ++c) {
            std::fill_n(totals, end - begin, column_sums{});
            for (int part = upper; part < weights; ++part) {
                column_sums factors{};
                for (std::ptrdiff_t i = 0; i < rows.count; ++i) {
                    const covered& of = rows.of[i];
                    const u64 weight_of[] = {of.first_weight, of.last_weight, y_.dst};
                    const s64 first_of[] = {of.first, of.last, of.first + 1};
                    const std::ptrdiff_t count = part == between ? std::max<std::ptrdiff_t>(of.count() - 2, 0) : 1;
                    factors.set_row(static_cast<int>(i), static_cast<u32>(weight_of[part]));
                    add_rows(bytes_at(src, first_of[part], count, begin, n, memory), count, sums[i], n);
                }
                turn();
                const auto add = [&](std::ptrdiff_t k, const auto& sum) { totals[k] = totals[k] + sum * factors; };
                each_column<column_sums>(turned_sums + src.first[c] * most_rows, begin, end, add);
            }
            for (std::ptrdiff_t k = 0; k < end - begin; ++k) totals[k].store_means(mean_, means + k * most_rows);
            put(means, end - begin, out[c] + begin, out_s[c], rows.count);
        }
    }
    static void put(const u8* means, std::ptrdiff_t n, u8* out, std::ptrdiff_t out_s, std::ptrdiff_t rows) {
        constexpr std::ptrdiff_t most_rows = column_sums::rows, least = 32;  // that registers turn
        u8 turned_means[most_rows][most];
        transpose<1>(means, most_rows, turned_means[0], most, most_rows, std::max(n, least));
        for (std::ptrdiff_t i = 0; i < rows; ++i)
            std::memcpy(out + i * out_s, turned_means[i], static_cast<std::size_t>(n));
    }

    /// As it is defined
    u8 mean_of(const interleaved_plane& src, const covered& rows, std::ptrdiff_t i, int channel) const {
        const column& c = columns_[i];
        u64 sum = 0;
        for (s64 t = rows.first; t <= rows.last; ++t) {
            const u8* p = place(src, t, i);
            u64 of_row = 0;
            for (u32 s = c.first; s <= c.last; ++s, p += pixels_.src_bytes) {
                u8 pixel[4];
                if (pixels_.unpack) pixels_.unpack(p, pixel, 1);
                of_row += (s == c.first  ? c.first_weight
                           : s == c.last ? c.last_weight
                                         : x_.dst) *
                          (pixels_.unpack ? pixel : p)[channel];
            }
            sum += (t == rows.first ? rows.first_weight : t == rows.last ? rows.last_weight : y_.dst) * of_row;
        }
        return mean_.rounded(sum);
    }

    const area_axis x_, y_;
    const divisor mean_;
    const std::ptrdiff_t n_;
    const int bytes_;
    const rsz::pixel_format pixels_;
    const s64 start_;  // source column where they begin
    column columns_[most];
};
}  // namespace zelt::inline ZELT_LEVEL::video
