// Bit reading and writing beside GStreamer's GstBitReader and GstBitWriter (Exp-Golomb codes composed from their
// calls), and the start-code scan beside GstByteReader's and memmem. Names are row/who; every peer's result is checked
// first.
#include "zelt/bsr.h"
#include "zelt/bsw.h"
#include "zelt/fcc2mt.h"

#include <benchmark/benchmark.h>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>
#ifdef ZELT_BENCH_GST
#define G_DISABLE_ASSERT
#include <gst/base/gstbitreader.h>
#include <gst/base/gstbitwriter.h>
#include <gst/base/gstbytereader.h>
#endif

namespace {
constexpr int fields = 1000000;
constexpr int unit_size = 1 << 20;

struct field {
    uint32_t value;
    int32_t bits;
};
using bytes = std::vector<uint8_t>;
std::mt19937 rng(1);

std::vector<field> random_fields() {
    std::vector<field> list(fields);
    for (auto& f : list) f = {static_cast<uint32_t>(rng()), static_cast<int32_t>(rng() % 24 + 1)};
    for (auto& f : list) f.value &= (1u << f.bits) - 1;
    return list;
}

/// As small values of a bit stream fall: each twice as rare as the one before.
std::vector<field> geometric_fields() {
    std::geometric_distribution<uint32_t> values(0.5);
    std::vector<field> list(fields);
    for (auto& f : list) f.value = values(rng);
    return list;
}

/// An H.264 unit that is no slice, as long as asked for, without a start code in it. Dense ones are half zeros.
bytes unit(bool dense) {
    bytes data(unit_size);
    for (auto& b : data) b = static_cast<uint8_t>(dense && rng() % 2 ? 0 : rng());
    for (size_t i = 2; i < data.size(); ++i)
        if (data[i - 1] == 0 && data[i - 2] == 0 && data[i] < 3) data[i] = 3;
    const uint8_t start[] = {0, 0, 1, 6};
    std::memcpy(data.data(), start, sizeof start);
    return data;
}

const auto plain = random_fields(), geometric = geometric_fields();
bytes buffer(5 * fields);

template <bool Golomb> const std::vector<field>& list() { return Golomb ? geometric : plain; }

/// Writers: all fields into `buffer`; the bytes written.
template <bool Golomb> size_t write_zelt() {
    ZELT_BSW bs;
    zelt_bsw_init(&bs, buffer.data(), static_cast<int32_t>(buffer.size()), nullptr);
    for (const field& f : list<Golomb>()) {
        if constexpr (Golomb)
            zelt_bsw_write_ue(&bs, f.value);
        else
            zelt_bsw_write(&bs, f.value, f.bits);
    }
    zelt_bsw_sink(&bs);
    return static_cast<size_t>(bs.cur - bs.beg);
}

/// Readers: the sum of all fields in `data`.
template <bool Golomb> uint32_t read_zelt(const bytes& data) {
    ZELT_BSR bs;
    zelt_bsr_init(&bs, data.data(), static_cast<int32_t>(data.size()), nullptr);
    uint32_t sum = 0;
    for (const field& f : list<Golomb>()) {
        if constexpr (Golomb)
            sum += zelt_bsr_read_ue(&bs);
        else
            sum += zelt_bsr_read(&bs, f.bits);
    }
    return sum;
}

int scan_zelt(const bytes& data) { return zelt_is_vkeyfrm(ZELT_MT_VID_H264, data.data(), unit_size); }

int scan_memmem(const bytes& data) {
    const uint8_t code[] = {0, 0, 1};
    const uint8_t *p = data.data(), *const end = p + data.size();
    while ((p = static_cast<const uint8_t*>(memmem(p, static_cast<size_t>(end - p), code, 3))) && end - p > 3) {
        const int type = p[3] & 31;
        if (type == 1 || type == 5) return type == 5;
        p += 3;
    }
    return 0;
}

#ifdef ZELT_BENCH_GST
/// It sets bits only: the buffer has to be clear.
template <bool Golomb> size_t write_gst() {
    static size_t used = buffer.size();
    std::memset(buffer.data(), 0, used);
    GstBitWriter w;
    gst_bit_writer_init_with_data(&w, buffer.data(), static_cast<guint>(buffer.size()), FALSE);
    for (const field& f : list<Golomb>()) {
        if constexpr (Golomb) {
            const uint32_t x = f.value + 1;
            gst_bit_writer_put_bits_uint32_unchecked(&w, x, 2 * static_cast<guint>(std::bit_width(x)) - 1);
        } else {
            gst_bit_writer_put_bits_uint32_unchecked(&w, f.value, static_cast<guint>(f.bits));
        }
    }
    gst_bit_writer_align_bytes(&w, 0);
    return used = gst_bit_writer_get_size(&w) / 8;
}

enum class golomb { none, bitwise, peeking };

/// Exp-Golomb in the two ways that the calls allow: zeros one by one, or counted in a peeked word.
template <golomb How> uint32_t read_gst(const bytes& data) {
    GstBitReader r;
    gst_bit_reader_init(&r, data.data(), static_cast<guint>(data.size()));
    uint32_t sum = 0;
    for (const field& f : list<How != golomb::none>()) {
        guint32 v = 0;
        if constexpr (How == golomb::none) {
            v = gst_bit_reader_get_bits_uint32_unchecked(&r, static_cast<guint>(f.bits));
        } else if constexpr (How == golomb::bitwise) {
            guint8 bit = 0;
            guint zeros = 0;
            while (gst_bit_reader_get_bits_uint8(&r, &bit, 1) && !bit) ++zeros;
            gst_bit_reader_get_bits_uint32(&r, &v, zeros);
            v += (1u << zeros) - 1;
        } else {
            const guint left = gst_bit_reader_get_remaining(&r), seen = left < 16 ? left : 16;
            gst_bit_reader_peek_bits_uint32(&r, &v, seen);
            const int zeros = std::countl_zero(v << (32 - seen));
            gst_bit_reader_skip_unchecked(&r, static_cast<guint>(zeros));
            gst_bit_reader_get_bits_uint32(&r, &v, static_cast<guint>(zeros) + 1);
            --v;
        }
        sum += v;
    }
    return sum;
}

int scan_gst(const bytes& data) {
    GstByteReader r;
    gst_byte_reader_init(&r, data.data(), static_cast<guint>(data.size()));
    for (guint at = 0; at + 4 <= data.size();) {
        const guint found = gst_byte_reader_masked_scan_uint32(&r, 0xFFFFFF00, 0x00000100, at, unit_size - at);
        if (found == static_cast<guint>(-1)) break;
        const int type = data[found + 3] & 31;
        if (type == 1 || type == 5) return type == 5;
        at = found + 3;
    }
    return 0;
}
#endif

template <class Run> void add(const char* name, double items, Run run) {
    const auto want = run();
    benchmark::RegisterBenchmark(name, [=](benchmark::State& state) {
        for (auto _ : state) {
            auto got = run();
            benchmark::DoNotOptimize(got);
            if (got != want) state.SkipWithError("the result changed");
        }
        state.counters["per_item"] =
            benchmark::Counter(items, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    });
}

void check(bool same, const char* what) {
    if (same) return;
    std::fprintf(stderr, "%s: results differ\n", what);
    std::exit(1);
}

template <bool Golomb> bytes written(size_t (*write)()) {
    const size_t size = write();
    return {buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(size)};
}
}  // namespace

int main(int argc, char** argv) {
    static const bytes coded = written<true>(write_zelt<true>), packed = written<false>(write_zelt<false>);
    static const bytes unit_plain = unit(false), unit_zeros = unit(true);
    add("read_ue/zelt", fields, [] { return read_zelt<true>(coded); });
    add("read_fields/zelt", fields, [] { return read_zelt<false>(packed); });
    add("write_ue/zelt", fields, write_zelt<true>);
    add("write_fields/zelt", fields, write_zelt<false>);
    add("scan/zelt", unit_size, [] { return scan_zelt(unit_plain); });
    add("scan/memmem", unit_size, [] { return scan_memmem(unit_plain); });
    add("scan_zeros/zelt", unit_size, [] { return scan_zelt(unit_zeros); });
    add("scan_zeros/memmem", unit_size, [] { return scan_memmem(unit_zeros); });
#ifdef ZELT_BENCH_GST
    check(written<true>(write_gst<true>) == coded && written<false>(write_gst<false>) == packed, "writers");
    check(read_gst<golomb::bitwise>(coded) == read_zelt<true>(coded), "Exp-Golomb, zeros one by one");
    check(read_gst<golomb::peeking>(coded) == read_zelt<true>(coded), "Exp-Golomb, peeked");
    check(read_gst<golomb::none>(packed) == read_zelt<false>(packed), "fields");
    add("read_ue/gst_bitwise", fields, [] { return read_gst<golomb::bitwise>(coded); });
    add("read_ue/gst_peeking", fields, [] { return read_gst<golomb::peeking>(coded); });
    add("read_fields/gst", fields, [] { return read_gst<golomb::none>(packed); });
    add("write_ue/gst", fields, write_gst<true>);
    add("write_fields/gst", fields, write_gst<false>);
    add("scan/gst", unit_size, [] { return scan_gst(unit_plain); });
    add("scan_zeros/gst", unit_size, [] { return scan_gst(unit_zeros); });
#endif
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
