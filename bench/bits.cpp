// SPDX-License-Identifier: MIT
// The family `bits`: reading and writing fields and Exp-Golomb codes, and the start-code scan of the key-frame test.
#include "bits.h"

#include "bench.h"
#include "zelt/bsr.h"
#include "zelt/bsw.h"
#include "zelt/fcc2mt.h"

#include <cstring>
#include <memory>
#include <random>

namespace zelt::bench {
namespace {
constexpr int count = 1000000;

void put_field(ZELT_BSW* bs, const field& f) { zelt_bsw_write(bs, f.value, f.bits); }
void put_code(ZELT_BSW* bs, const field& f) { zelt_bsw_write_ue(bs, f.value); }
uint32_t get_field(ZELT_BSR* bs, const field& f) { return zelt_bsr_read(bs, f.bits); }
uint32_t get_code(ZELT_BSR* bs, const field&) { return zelt_bsr_read_ue(bs); }

/// Writes all fields; the bytes written.
template <auto Put> size_t write(const std::vector<field>& fields, byte_string& out) {
    ZELT_BSW bs;
    zelt_bsw_init(&bs, out.data(), static_cast<int32_t>(out.size()), nullptr);
    for (const field& f : fields) Put(&bs, f);
    zelt_bsw_sink(&bs);
    return static_cast<size_t>(bs.cur - bs.beg);
}

template <auto Get> uint32_t read(const std::vector<field>& fields, const byte_string& data) {
    ZELT_BSR bs;
    zelt_bsr_init(&bs, data.data(), static_cast<int32_t>(data.size()), nullptr);
    uint32_t sum = 0;
    for (const field& f : fields) sum += Get(&bs, f);
    return sum;
}

template <auto Put> byte_string coded(const std::vector<field>& fields) {
    byte_string out(5 * fields.size());
    out.resize(write<Put>(fields, out));
    return out;
}

uint32_t sum(const std::vector<field>& fields) {
    uint32_t total = 0;
    for (const field& f : fields) total += f.value;
    return total;
}

bit_work make_bits() {
    std::mt19937 rng(1);
    std::geometric_distribution<uint32_t> geometric(0.5);
    bit_work work{};
    for (int i = 0; i < count; ++i) {
        const auto bits = static_cast<int32_t>(rng() % 24 + 1);
        work.plain.push_back({static_cast<uint32_t>(rng() & ((1u << bits) - 1)), bits});
        work.geometric.push_back({geometric(rng), 0});
    }
    work.coded_plain = coded<put_field>(work.plain);
    work.coded_geometric = coded<put_code>(work.geometric);
    work.plain_sum = sum(work.plain);
    work.geometric_sum = sum(work.geometric);
    return work;
}

byte_string make_unit(bool dense) {
    std::mt19937 rng(2);
    byte_string data(1 << 20);
    for (auto& b : data) b = static_cast<uint8_t>(dense && rng() % 2 ? 0 : rng());
    for (size_t i = 2; i < data.size(); ++i)
        if (data[i - 1] == 0 && data[i - 2] == 0 && data[i] < 3) data[i] = 3;  // emulation prevention
    const uint8_t start[] = {0, 0, 1, 6};
    std::memcpy(data.data(), start, sizeof start);
    return data;
}

template <auto Put> void add_writer(const char* name, std::vector<field> bit_work::*fields) {
    add_row({"bits", name, "value", count, [=]() -> std::vector<candidate> {
                 auto out = std::make_shared<byte_string>(5 * count);
                 return {{"zelt", [=] { write<Put>(bits().*fields, *out); }}};
             }});
}

template <auto Get>
void add_reader(const char* name, int steps, std::vector<field> bit_work::*fields, byte_string bit_work::*data,
                uint32_t bit_work::*sum) {
    add_row({"bits",
             name,
             "value",
             count,
             [=]() -> std::vector<candidate> {
                 return {{"zelt", [=] {
                              if (read<Get>(bits().*fields, bits().*data) != bits().*sum) reject(name, "zelt");
                          }}};
             },
             {.steps = 1.0 * steps * count}});
}

void add_scan(const char* name, bool dense) {
    add_row({"bits",
             name,
             "byte",
             static_cast<double>(unit(dense).size()),
             [=] {
                 std::vector<candidate> list;
                 for (const library& l : libraries()) {
                     const auto test = l.find<decltype(zelt_is_vkeyfrm)>("zelt_is_vkeyfrm");
                     list.push_back({l.name, [=] {
                                         const byte_string& data = unit(dense);
                                         if (test(ZELT_MT_VID_H264, data.data(), static_cast<int32_t>(data.size())))
                                             reject(name, l.name);
                                     }});
                 }
                 list.push_back({"memmem", [=] {
                                     const uint8_t code[] = {0, 0, 1}, *p = unit(dense).data();
                                     const uint8_t* const end = p + unit(dense).size();
                                     while ((p = static_cast<const uint8_t*>(
                                                 memmem(p, static_cast<size_t>(end - p), code, sizeof code))) &&
                                            end - p > 3) {
                                         if (is_slice(p[3] & 31)) reject(name, "memmem");
                                         p += sizeof code;
                                     }
                                 }});
                 return list;
             },
             {.read = static_cast<double>(unit(dense).size()), .footprint = static_cast<double>(unit(dense).size())}});
}

const bool added = [] {
    // Where a value begins is known when the one before has been shifted out: a count of zeros (3), an addition, a
    // shift.
    add_reader<get_code>("read_ue", 5, &bit_work::geometric, &bit_work::coded_geometric, &bit_work::geometric_sum);
    add_reader<get_field>("read_fields", 1, &bit_work::plain, &bit_work::coded_plain, &bit_work::plain_sum);
    add_writer<put_code>("write_ue", &bit_work::geometric);
    add_writer<put_field>("write_fields", &bit_work::plain);
    add_scan("scan_plain", false);
    add_scan("scan_zeros", true);
    return true;
}();
}  // namespace

const bit_work& bits() {
    static const bit_work work = make_bits();
    return work;
}

const byte_string& unit(bool dense) {
    static const byte_string units[] = {make_unit(false), make_unit(true)};
    return units[dense];
}
}  // namespace zelt::bench
