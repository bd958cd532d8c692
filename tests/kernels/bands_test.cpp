// Band mode: against its documented recurrence for every band height, and against whole pictures where it promises
// that.
#include "kernels/guarded.h"
#include "kernels/resize.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace zelt::test {
namespace {
struct job {
    const resizer* format;
    shape from, to;
    int band_rows;
    bool short_last;  // the last band is the smallest power of two that covers what remains

    int src_row() const { return from.w * format->src_bytes; }
    int dst_row() const { return to.w * format->dst_bytes; }
};

/// The recurrence, row by row. Rows that are not in the band at hand give no destination row.
class recurrence {
public:
    recurrence(const job& j, u8* dst)
        : j_(j), y_(j.from.h, j.to.h), x_(j.from.w, j.to.w), buffer_(static_cast<std::size_t>(j.src_row())), dst_(dst) {
    }

    void band(const u8* start, int y0, int rows) {
        const int mask = rows - 1, end = y0 + rows;
        while (end > source_row(position_)) {
            if (row_ >= j_.to.h && !pending_) break;
            const u8 *top, *bottom;
            if (pending_) {
                position_ -= y_.step, row_ -= 1, pending_ = false;
                top = buffer_.data(), bottom = at(start, y0, rows, carried_);
                if (carried_ >= j_.band_rows) {
                    pending_ = true;
                    break;
                }
            } else {
                long long upper = source_row(position_) & mask, lower = upper + (y_.step ? 1 << y_.shift : 0);
                top = at(start, y0, rows, upper);
                if (carry_) top = buffer_.data(), lower = carried_;
                bottom = at(start, y0, rows, lower);
                if (lower >= j_.band_rows) {
                    carried_ = lower - j_.band_rows, pending_ = true;
                    row_ += 1, position_ += y_.step;
                    if (top && top != buffer_.data()) std::memcpy(buffer_.data(), top, buffer_.size());
                    break;
                }
            }
            if (top && bottom && row_ >= 0 && row_ < j_.to.h)
                model_row(*j_.format, top, bottom, static_cast<int>(position_ >> 15 & 7), x_, j_.to.w,
                          dst_ + row_ * j_.dst_row());
            row_ += 1, position_ += y_.step;
            if (carry_ && (bits(position_) & mask) < (bits(position_ - y_.step) & mask)) carry_ = false;
        }
        const bool enlarging = j_.to.w > j_.from.w || j_.to.h > j_.from.h;
        if (enlarging && (bits((position_ - y_.step) ^ position_) & mask) == 0) carry_ = true;
    }

private:
    long long source_row(long long position) const { return (position >> 18) * (1 << y_.shift); }
    long long bits(long long position) const { return position >> (18 - y_.shift); }
    const u8* at(const u8* start, int y0, int rows, long long row) const {
        return row >= 0 && row < rows && y0 + row < j_.from.h ? start + row * j_.src_row() : nullptr;
    }

    const job& j_;
    const grid y_, x_;
    long long position_ = 0, carried_ = 0;
    int row_ = 0;
    bool pending_ = false, carry_ = false;
    std::vector<u8> buffer_;
    u8* dst_;
};

/// Hands a picture over band by band, each from memory of its own.
template <class F> void for_bands(const job& j, const std::vector<u8>& picture, guarded_memory& memory, F f) {
    for (int y0 = 0, rows = j.band_rows; y0 < j.from.h; y0 += rows) {
        while (j.short_last && rows > 1 && rows / 2 >= j.from.h - y0) rows /= 2;
        const std::size_t size = static_cast<std::size_t>(std::min(rows, j.from.h - y0) * j.src_row());
        u8* start = memory.start() + memory.size() - size;
        std::memcpy(start, &picture[static_cast<std::size_t>(y0 * j.src_row())], size);
        f(start, y0, rows);
        std::memset(start, 0xA5, size);
    }
}

void check(const job& j, guarded_memory& memory, std::mt19937& random) {
    std::vector<u8> picture(static_cast<std::size_t>(j.src_row() * j.from.h));
    for (u8& v : picture) v = static_cast<u8>(random());
    const std::size_t size = static_cast<std::size_t>(j.dst_row() * j.to.h);
    std::vector<u8> got(size, 0x5A), want(size, 0x5A), whole(size);

    recurrence model(j, want.data());
    for_bands(j, picture, memory, [&](const u8* start, int y0, int rows) { model.band(start, y0, rows); });

    const bool words = j.format->id == ZELT_IRSZ_5B6B5B;
    const ZELT_IRSZ_PARAM param = {
        j.format->id, ZELT_IRSZ_BANDS,          j.from.w,  j.from.h, j.from.w * (words ? 2 : 1), j.band_rows, j.to.w,
        j.to.h,       j.to.w * (words ? 2 : 1), got.data()};
    ZELT_IRSZ* irsz = zelt_irsz_create(&param, nullptr);
    ASSERT_NE(irsz, nullptr);
    const bool survived = survives([&] {
        for_bands(j, picture, memory, [&](const u8* start, int y0, int rows) { zelt_irsz(irsz, start, y0, rows); });
    });
    zelt_irsz_delete(irsz);
    ASSERT_TRUE(survived);
    ASSERT_EQ(got, want);
    if (!bands_give_whole(j.from, j.to, j.band_rows)) return;
    model_picture(*j.format, {picture.data(), j.src_row()}, j.from, {whole.data(), j.dst_row()}, j.to);
    ASSERT_EQ(got, whole);
}
}  // namespace

TEST(bands, recurrence_and_whole_pictures) {
    std::mt19937 random(1);
    guarded_memory memory(1 << 16);
    const auto all_bands = [&](const resizer& r, shape from, shape to) {
        for (int band = 1; band <= 256; band *= 2)
            for (const bool short_last : {false, true}) {
                check({&r, from, to, band, short_last}, memory, random);
                ASSERT_FALSE(HasFailure()) << r.name << " " << from.w << "x" << from.h << " to " << to.w << "x" << to.h
                                           << ", bands of " << band << (short_last ? ", short last" : "");
            }
    };
    const shape sources[] = {{37, 53}, {64, 64}, {5, 130}, {1, 16}, {33, 1}, {3, 2}};
    for (const resizer& r : resizers)
        for (const shape from : sources)
            for (const int w : {from.w, 1 + from.w / 2, from.w * 3 / 2 + 1})
                for (const int h : {1, 2, 5, 13, 40, 53, 54, 64, 80, 107, 130, 200})
                    if (&r == &resizers[0] || random() % 8 == 0) all_bands(r, from, {w, h});
}
}  // namespace zelt::test
