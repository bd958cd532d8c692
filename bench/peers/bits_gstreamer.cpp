// SPDX-License-Identifier: MIT
// GStreamer's GstBitReader, GstBitWriter and GstByteReader. They have no Exp-Golomb codes: these are put together from
// their calls. Where there is a form without checks, that one is timed.
#define G_DISABLE_ASSERT
#include "bench.h"
#include "bits.h"

#include <algorithm>
#include <bit>
#include <gst/base/gstbitreader.h>
#include <gst/base/gstbitwriter.h>
#include <gst/base/gstbytereader.h>
#include <memory>

namespace zelt::bench {
namespace {
uint32_t get_field(GstBitReader* r, const field& f) {
    return gst_bit_reader_get_bits_uint32_unchecked(r, static_cast<guint>(f.bits));
}

/// Zeros one by one
uint32_t get_code_bitwise(GstBitReader* r, const field&) {
    guint zeros = 0;
    for (guint8 bit = 0; gst_bit_reader_get_bits_uint8(r, &bit, 1) && !bit;) ++zeros;
    guint32 rest = 0;
    gst_bit_reader_get_bits_uint32(r, &rest, zeros);
    return rest + (1u << zeros) - 1;
}

/// Zeros counted in 16 bits ahead
uint32_t get_code_peeking(GstBitReader* r, const field&) {
    const guint left = gst_bit_reader_get_remaining(r), ahead = left < 16 ? left : 16;
    const guint32 v = gst_bit_reader_peek_bits_uint32_unchecked(r, ahead);
    const auto zeros = static_cast<guint>(std::countl_zero(v << (32 - ahead)));
    gst_bit_reader_skip_unchecked(r, zeros);
    return gst_bit_reader_get_bits_uint32_unchecked(r, zeros + 1) - 1;
}

template <auto Get> uint32_t read(const std::vector<field>& fields, const byte_string& data) {
    GstBitReader r{};
    r.data = data.data(), r.size = static_cast<guint>(data.size());
    uint32_t sum = 0;
    for (const field& f : fields) sum += Get(&r, f);
    return sum;
}

void put_field(GstBitWriter* w, const field& f) {
    gst_bit_writer_put_bits_uint32_unchecked(w, f.value, static_cast<guint>(f.bits));
}
void put_code(GstBitWriter* w, const field& f) {
    gst_bit_writer_put_bits_uint32_unchecked(w, f.value + 1, 2 * static_cast<guint>(std::bit_width(f.value + 1)) - 1);
}

/// `out` is cleared first: the writer only sets bits.
template <auto Put> void write(const std::vector<field>& fields, byte_string& out) {
    std::fill(out.begin(), out.end(), 0);
    GstBitWriter w{};
    w.data = out.data(), w.bit_capacity = static_cast<guint>(8 * out.size());
    for (const field& f : fields) Put(&w, f);
    gst_bit_writer_align_bytes(&w, 0);
}

template <auto Get>
void add_reader(const char* row_name, const char* name, std::vector<field> bit_work::*fields,
                byte_string bit_work::*data, uint32_t bit_work::*sum) {
    add_candidate("bits", row_name, [=]() -> candidate {
        return {name, [=] {
                    if (read<Get>(bits().*fields, bits().*data) != bits().*sum) reject(row_name, name);
                }};
    });
}

template <auto Put>
void add_writer(const char* row_name, std::vector<field> bit_work::*fields, byte_string bit_work::*data) {
    add_candidate("bits", row_name, [=]() -> candidate {
        auto out = std::make_shared<byte_string>((bits().*data).size() + 8);
        write<Put>(bits().*fields, *out);
        if (!std::equal((bits().*data).begin(), (bits().*data).end(), out->begin())) reject(row_name, "GstBitWriter");
        return {"GstBitWriter", [=] { write<Put>(bits().*fields, *out); }};
    });
}

#ifdef __x86_64__  // elsewhere there is no library, but the functions of its headers
void add_scan(const char* row_name, bool dense) {
    add_candidate("bits", row_name, [=]() -> candidate {
        return {"GstByteReader", [=] {
                    const byte_string& data = unit(dense);
                    const auto size = static_cast<guint>(data.size());
                    GstByteReader r;
                    gst_byte_reader_init(&r, data.data(), size);
                    for (guint at = 0; at + 4 <= size; at += 3) {
                        at = gst_byte_reader_masked_scan_uint32(&r, 0xFFFFFF00, 0x00000100, at, size - at);
                        if (at == G_MAXUINT) break;
                        if (is_slice(data[at + 3] & 31)) reject(row_name, "GstByteReader");
                    }
                }};
    });
}
#endif

const bool added = [] {
    add_reader<get_code_bitwise>("read_ue", "GstBitReader bit by bit", &bit_work::geometric, &bit_work::coded_geometric,
                                 &bit_work::geometric_sum);
    add_reader<get_code_peeking>("read_ue", "GstBitReader peeking", &bit_work::geometric, &bit_work::coded_geometric,
                                 &bit_work::geometric_sum);
    add_reader<get_field>("read_fields", "GstBitReader", &bit_work::plain, &bit_work::coded_plain,
                          &bit_work::plain_sum);
    add_writer<put_code>("write_ue", &bit_work::geometric, &bit_work::coded_geometric);
    add_writer<put_field>("write_fields", &bit_work::plain, &bit_work::coded_plain);
#ifdef __x86_64__
    add_scan("scan_plain", false);
    add_scan("scan_zeros", true);
#endif
    return true;
}();
}  // namespace
}  // namespace zelt::bench
