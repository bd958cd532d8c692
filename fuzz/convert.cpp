// Conversion, fused conversion and resizing of any geometry against the models of the kernel tests: padded and negative
// strides, source strides of 0, source and destination in one buffer; whole pictures, rows and bands. All bytes around
// what is written are compared too.
#include "input.h"
#include "kernels/resize.h"

#include <algorithm>
#include <random>

namespace {
using namespace zelt::test;
using block = std::vector<u8>;

ratio sizes = {"at any ratio", 1, 1, 1, 1};  // of the call at hand

std::vector<kernel> conversions() {
    std::vector<kernel> all = converter_kernels();
    for (const auto& family : {high_depth_kernels(), resize_kernels_at(sizes)})
        all.insert(all.end(), family.begin(), family.end());
    return all;
}

// -------------------------------------------------------------------------------------------------------------- memory

/// The first row of an operand in its block
struct place {
    std::size_t at;
    std::ptrdiff_t stride;
};

/// Finds room for an operand from `end` on, and moves that behind it.
place put(fuzz::input& in, const operand& o, std::size_t& end) {
    const uint8_t kind = in.byte(), margins = in.byte();
    const bool negative = kind % 4 == 1, zero = kind % 4 == 2 && !o.written;
    const std::ptrdiff_t row = o.width * o.element, stride = zero ? 0 : row + kind / 4 % 16 * o.element;
    const std::ptrdiff_t last = stride * (o.rows - 1);
    const std::size_t start = end + margins % 16;
    end = start + static_cast<std::size_t>(last + row) + margins / 16;
    if (negative) return {start + static_cast<std::size_t>(last), -stride};
    return {start, stride};
}

/// Whether no pixel is written where a later one is still to be read, which is what sharing memory asks for
bool may_share(shape s, const std::vector<operand>& operands, const std::vector<place>& places, std::size_t size) {
    std::vector<int> last_reader(size, -1);
    for (std::size_t i = 0; i < operands.size(); ++i) {  // sources come first
        const operand& o = operands[i];
        const int pixel_bytes = o.width * o.element / s.w;
        for (int y = 0; y < o.rows; ++y)
            for (int x = 0; x < o.width * o.element; ++x) {
                const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(places[i].at) + y * places[i].stride + x;
                int& reader = last_reader[static_cast<std::size_t>(at)];
                const int pixel = y * s.w + x / pixel_bytes;
                if (o.written && reader > pixel) return false;
                if (!o.written) reader = std::max(reader, pixel);
            }
    }
    return true;
}

/// Takes what is there into the range of 16-bit samples.
void limit(const operand& o, view v) {
    for (int y = 0; y < o.rows; ++y, v.p += v.stride)
        for (int x = 0; x < 2 * o.width; x += 2) {
            const int sample = (v.p[x] | v.p[x + 1] << 8) % (o.high + 1);
            v.p[x] = static_cast<u8>(sample), v.p[x + 1] = static_cast<u8>(sample >> 8);
        }
}

// --------------------------------------------------------------------------------------------------------------- calls

/// Calls a kernel and its model on the same bytes, each operand in a block of its own or all in one.
void check(fuzz::input& in, const kernel& k, shape s) {
    const bool shared = k.in_order && in.byte() % 2;
    if (shared) s.h = 1 + s.h % 3;
    const std::vector<operand> operands = k.operands(s);
    std::vector<block> blocks(shared ? 1 : operands.size());
    const auto block_of = [&](std::size_t i) { return shared ? 0 : i; };
    std::vector<place> places;
    std::size_t source_end = 64, destination_end = shared ? in.byte() : 0;  // where all are in one block
    for (const operand& o : operands) {
        block& own = blocks[block_of(places.size())];
        std::size_t own_end = 0, &shared_end = o.written ? destination_end : source_end;
        std::size_t& end = shared ? shared_end : own_end;
        places.push_back(put(in, o, end));
        own.resize(std::max(own.size(), end));
    }
    if (shared && !may_share(s, operands, places, blocks[0].size())) return;
    const auto views = [&](std::vector<block>& of) {
        std::vector<view> all;
        for (std::size_t i = 0; i < places.size(); ++i)
            all.push_back({of[block_of(i)].data() + places[i].at, places[i].stride});
        return all;
    };
    const std::vector<view> given = views(blocks);

    std::minstd_rand random(in.word());
    const bool shared_words = shared && operands[0].element == 2;  // in range however they lie on each other
    for (block& b : blocks)
        for (u8& v : b) v = static_cast<u8>(random() >> 8 & (shared_words ? 3 : 255));
    for (std::size_t i = 0; i < operands.size(); ++i)
        if (operands[i].element == 2 && !operands[i].written && !shared) limit(operands[i], given[i]);
    std::vector<block> expected = blocks;
    k.call(k.exported, s, given.data());
    k.model(s, views(expected).data());
    fuzz::require(blocks == expected);
}

/// A resizer's handle at work: on a whole picture, or on bands of one, each in memory of its own
kernel handle(fuzz::input& in, shape from) {
    const resizer& r = resizers[in.byte() % resizers.size()];
    const uint8_t how = in.byte();
    const bool bands = how & 1, short_last = how & 2;
    const auto resize = how & 4 ? zelt_irsz : r.resize;
    const int band_rows = 1 << in.byte() % 8;
    const bool in_bytes = r.id == ZELT_IRSZ_5B6B5B;  // the pitches
    const int src_unit = in_bytes ? 1 : r.src_bytes, dst_unit = in_bytes ? 1 : r.dst_bytes;
    const auto operands = [=, &r](shape to) -> std::vector<operand> {
        return {{.width = from.w * r.src_bytes / src_unit, .rows = from.h, .element = src_unit},
                {.width = to.w * r.dst_bytes / dst_unit, .rows = to.h, .element = dst_unit, .written = true}};
    };
    const auto promised = [=](shape to) { return !bands || bands_give_whole(from, to, band_rows); };
    const auto clear = [&r](shape to, view dst) {  // of other bands nothing is compared but that they keep to it
        for (int y = 0; y < to.h; ++y) std::fill_n(dst.p + y * dst.stride, to.w * r.dst_bytes, u8{});
    };
    const auto call = [=, &r](function, shape to, const view* v) {
        const int mode = bands ? ZELT_IRSZ_BANDS : ZELT_IRSZ_WHOLE, stride = static_cast<int>(v[0].stride);
        const int src_pitch = stride / src_unit, dst_pitch = static_cast<int>(v[1].stride) / dst_unit;
        const ZELT_IRSZ_PARAM param = {r.id, mode, from.w, from.h, src_pitch, band_rows, to.w, to.h, dst_pitch, v[1].p};
        ZELT_IRSZ* irsz = zelt_irsz_create(&param, nullptr);
        fuzz::require(irsz);
        if (!bands) resize(irsz, v[0].p, 0, 0);
        for (int y = 0, rows = band_rows; bands && y < from.h; y += rows) {
            while (short_last && rows > 1 && rows / 2 >= from.h - y) rows /= 2;
            const int count = std::min(rows, from.h - y), row = from.w * r.src_bytes;
            block band(static_cast<std::size_t>((count - 1) * std::abs(stride) + row));
            u8* first = band.data() + (stride < 0 ? (1 - count) * stride : 0);
            for (int i = 0; i < count; ++i) std::copy_n(v[0].p + (y + i) * stride, row, first + i * stride);
            resize(irsz, first, y, rows);
        }
        zelt_irsz_delete(irsz);
        if (!promised(to)) clear(to, v[1]);
        return u64{0};
    };
    const auto model = [=, &r](shape to, const view* v) {
        promised(to) ? model_picture(r, v[0], from, v[1], to) : clear(to, v[1]);
        return u64{0};
    };
    return {r.name, nullptr, {}, operands, call, model};
}
}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::vector<kernel> all = conversions();
    fuzz::input in(data, size);
    const std::size_t kind = in.byte();
    const auto length = [&] { return 1 + in.byte() % 80; };
    const shape from = {length(), length()}, to = {length(), length()};
    sizes.x_num = from.w, sizes.x_den = to.w, sizes.y_num = from.h, sizes.y_den = to.h;
    if (kind >= all.size())
        check(in, handle(in, from), to);
    else if (all[kind].name.find("_line") != std::string::npos)
        check(in, all[kind], {to.w, to.h % 8});  // the phase instead of a height
    else
        check(in, all[kind], to);
    return 0;
}
