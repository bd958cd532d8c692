#pragma once
// Shrinking by area. A plane of w by h becomes one of W by H; each sample is the mean of what it covers, rounded:
//
//     (sum of across(s, x) down(t, y) sample(s, t) + w h / 2) / (w h)
//
// where across(s, x) is how much of source column s, from s W to (s + 1) W, is in x w to (x + 1) w, and down(t, y)
// likewise. Rows and columns that are whole in one have the same weight, so that bytes are added up first.
#include "video/chroma.h"

#include <numeric>

namespace zelt::inline ZELT_LEVEL::video {
/// What of one axis a destination sample covers: samples from first to last, the weights of these two, and that of
/// those between
struct covered {
    s64 first, last;
    u64 first_weight, last_weight;
};
struct area_axis {
    u64 src, dst;  // without their common divisor

    area_axis(s64 from, s64 to)
        : src(static_cast<u64>(from / std::gcd(from, to))), dst(static_cast<u64>(to / std::gcd(from, to))) {}
    covered at(s64 i) const {
        const u64 begin = static_cast<u64>(i) * src, end = begin + src;
        const u64 first = begin / dst, last = (end - 1) / dst;
        if (first == last) return {static_cast<s64>(first), static_cast<s64>(last), src, 0};
        return {static_cast<s64>(first), static_cast<s64>(last), (first + 1) * dst - begin, end - last * dst};
    }
};

/// Divides sums of up to 255.5 n.
class divisor {
public:
    explicit divisor(u64 n) : n_(n), reciprocal_((u64{1} << shift) / n + 1) {}
    u8 round(u64 sum) const {
        sum += n_ / 2;
        return static_cast<u8>(n_ <= most ? sum * reciprocal_ >> shift : sum / n_);
    }

private:
    // What the reciprocal is too large by adds less than 256 n / 2^55, and up to 2^23 that is less than 1 / n.
    static constexpr int shift = 55;
    static constexpr u64 most = u64{1} << 23;
    u64 n_, reciprocal_;
};

/// Interleaved samples, of which one or two channels are wanted
struct interleaved_plane {
    const u8* p;
    std::ptrdiff_t stride;
    int channels, first[2];
};

/// Some columns of a plane that is shrunk
class shrinking {
public:
    static constexpr int most = 256;

    /// n columns from x on
    shrinking(s64 w, s64 h, s64 to_w, s64 to_h, s64 x, std::ptrdiff_t n, int bytes)
        : x_(w, to_w), y_(h, to_h), mean_(x_.src * y_.src), n_(n), bytes_(bytes), start_(x_.at(x).first) {
        for (std::ptrdiff_t i = 0; i < n; ++i) {
            const covered c = x_.at(x + i);
            columns_[i] = {static_cast<u32>(c.first - start_), static_cast<u32>(c.last - start_),
                           static_cast<u32>(c.first_weight), static_cast<u32>(c.last_weight)};
        }
    }

    /// Row y of each channel
    void row(const interleaved_plane& src, s64 y, u8* const* out) const {
        const covered rows = y_.at(y);
        const u8* first =
            src.p + static_cast<std::ptrdiff_t>(rows.first) * src.stride + static_cast<std::ptrdiff_t>(start_) * bytes_;
        s16 sums[most_bytes];
        for (std::ptrdiff_t i = 0, end; i < n_; i = end) {
            const auto bytes_to = [&](std::ptrdiff_t k) {
                return (s64{columns_[k].last} + 1 - columns_[i].first) * bytes_;
            };
            for (end = i; end < n_ && bytes_to(end) <= most_bytes;) ++end;
            if (end == i || rows.last - rows.first > 256) {  // not to be added up in 16 bits
                end = i + 1;
                for (int c = 0; c < src.channels; ++c)
                    out[c][i] = mean_of(first + src.first[c], src.stride, rows, columns_[i]);
                continue;
            }
            const summed_rows summed(first + columns_[i].first * std::ptrdiff_t{bytes_}, src.stride, rows, y_.dst, sums,
                                     static_cast<std::ptrdiff_t>(bytes_to(end - 1)));
            const bool same_weights = x_.dst == 1 && !summed.first_weight && !summed.last_weight;
            for (std::ptrdiff_t k = i; k < end; ++k)
                for (int c = 0; c < src.channels; ++c) {
                    const column& of = columns_[k];
                    const std::ptrdiff_t at =
                        static_cast<std::ptrdiff_t>(of.first - columns_[i].first) * bytes_ + src.first[c];
                    out[c][k] = same_weights ? mean_of(summed, at) : mean_of(summed, of, at);
                }
        }
    }

private:
    static constexpr std::ptrdiff_t most_bytes = 4096;
    struct column {
        u32 first, last, first_weight, last_weight;  // from start_ on
    };

    /// Rows of some columns: a sum of those that are covered whole, and those that are covered in part, which have no
    /// weight where there are none
    struct summed_rows {
        const s16* whole;
        const u8 *first, *last;
        u64 whole_weight, first_weight, last_weight;

        summed_rows(const u8* p, std::ptrdiff_t stride, const covered& rows, u64 weight, s16* sums, std::ptrdiff_t n)
            : whole(sums), first(p), last(p), whole_weight(weight), first_weight(rows.first_weight),
              last_weight(rows.last_weight) {
            auto count = static_cast<std::ptrdiff_t>(rows.last - rows.first) + 1;
            const u8* from = p;
            if (last_weight > 0 && last_weight < weight)
                last = p + (count - 1) * stride, --count;
            else
                last_weight = 0;
            if (first_weight != weight)
                --count, from = count > 0 ? p + stride : p;
            else
                first_weight = 0;
            for_each(n, [=](auto v, std::ptrdiff_t i) {
                wide_of<decltype(v)> sum{};
                const u8* row = from;
                for (std::ptrdiff_t t = count; t > 0; --t) {
                    load(row + i, v);
                    sum = sum + widen(v);
                    if (t > 1) row += stride;
                }
                store_widened(sums + i, sum);
            });
        }
        /// Of n columns from byte i on
        u64 sum(std::ptrdiff_t i, std::ptrdiff_t n, int bytes) const {
            const auto add = [=](auto* p) {
                u32 all = 0;
                for (std::ptrdiff_t k = i, left = n; left > 0; --left, k += bytes) all += p[k];
                return all;
            };
            u64 all = whole_weight * add(reinterpret_cast<const u16*>(whole));
            if (first_weight) all += first_weight * add(first);
            if (last_weight) all += last_weight * add(last);
            return all;
        }
    };
    u8 mean_of(const summed_rows& rows, std::ptrdiff_t at) const {
        const s16* p = rows.whole + at;
        u32 sum = 0;
        for (u64 left = x_.src; left > 0; --left, p += bytes_) sum += static_cast<u16>(*p);
        return mean_.round(rows.whole_weight * sum);
    }
    u8 mean_of(const summed_rows& rows, const column& c, std::ptrdiff_t at) const {
        const std::ptrdiff_t more = static_cast<std::ptrdiff_t>(c.last - c.first);
        u64 sum = c.first_weight * rows.sum(at, 1, bytes_);
        if (more > 0) sum += c.last_weight * rows.sum(at + more * bytes_, 1, bytes_);
        if (more > 1) sum += x_.dst * rows.sum(at + bytes_, more - 1, bytes_);
        return mean_.round(sum);
    }
    /// As it is defined
    u8 mean_of(const u8* p, std::ptrdiff_t stride, const covered& rows, const column& c) const {
        u64 sum = 0;
        for (s64 t = rows.first; t <= rows.last; ++t) {
            const u8* row = p + static_cast<std::ptrdiff_t>(t - rows.first) * stride;
            u64 of_row = 0;
            for (s64 s = c.first; s <= c.last; ++s)
                of_row += (s == c.first  ? c.first_weight
                           : s == c.last ? c.last_weight
                                         : x_.dst) *
                          row[static_cast<std::ptrdiff_t>(s) * bytes_];
            sum += (t == rows.first ? rows.first_weight : t == rows.last ? rows.last_weight : y_.dst) * of_row;
        }
        return mean_.round(sum);
    }

    const area_axis x_, y_;
    const divisor mean_;
    const std::ptrdiff_t n_;
    const int bytes_;
    const s64 start_;  // source column where they begin
    column columns_[most];
};
}  // namespace zelt::inline ZELT_LEVEL::video
