// SPDX-License-Identifier: MIT
// zelt_count [FILTER]: runs every candidate of the rows whose "family/name" the regular expression FILTER matches, for
// the emulator's plugin (count_plugin.c) to count its instructions. Prints a line a candidate: family, row, unit,
// units, candidate, and the counts, which the plugin prints.
#include "bench.h"
#include "operands.h"

#include <iostream>
#include <regex>

namespace zelt::bench {
namespace {
/// Larger rows say the same as smaller ones of their kind.
constexpr double most_units = 1 << 20;

struct export_entry {
    const char* name;
    function f;
};
extern "C" {
#define EXPORT(name) void name();
#include "exports.inc"
#undef EXPORT
}
const export_entry exports[] = {
#define EXPORT(name) {#name, name},
#include "exports.inc"
#undef EXPORT
};

int written_bytes(const kernel& k, shape s) {
    int bytes = 0;
    for (const operand& o : k.operands(s))
        if (o.written) bytes += o.width * o.rows * o.element;
    return bytes;
}

/// Rows of kernels that the benchmark times in other ways, or not at all
void add_counted_rows() {
    for (const kernel& k : all_kernels())
        for (const shape s : k.counted.shapes) {
            const std::string size = std::to_string(s.w) + (s.h > 1 ? 'x' + std::to_string(s.h) : "");
            const std::string name =
                k.counted.pictures ? family_and_rest(k.name).second : k.name.substr(std::strlen("zelt_")) + ' ' + size;
            add_row({k.counted.family, name, k.counted.pictures ? "pixel" : "byte",
                     static_cast<double>(k.counted.pictures ? s.w * s.h : written_bytes(k, s)),
                     [k, s]() -> std::vector<candidate> {
                         return {{"zelt", [k, s, data = std::make_shared<memory>(k.operands(s))] {
                                      k.call(k.exported, s, data->views());
                                  }}};
                     }});
        }
}

/// A system call that nothing here makes: the plugin sees it and starts or ends a count. Not by libc, which would look
/// for its errno then.
inline void mark() {
#if defined __x86_64__
    long result = 9999;
    asm volatile("syscall" : "+a"(result) : : "rcx", "r11", "memory");
#else
#ifdef __aarch64__
    register long number asm("x8") = 9999, result asm("x0");
#else
    register long number asm("r7") = 9999, result asm("r0");
#endif
    asm volatile("svc #0" : "=r"(result) : "r"(number) : "memory");
#endif
}

[[gnu::noinline]] void count_row(const row& r) {
    for (const candidate& c : candidates_of(r)) {
        c.run();  // what is done but once is not to be counted
        std::cout << r.family << '\t' << r.name << '\t' << r.unit << '\t' << static_cast<long>(r.units) << '\t'
                  << c.name << std::flush;
        mark();
        c.run();
        mark();
        std::cout << std::endl;
    }
}
}  // namespace

const std::vector<library>& libraries() {
    static const std::vector<library> all = {{"zelt"}};
    return all;
}

function library::find(const std::string& export_name) const {
    for (const export_entry& e : exports)
        if (e.name == export_name) return e.f;
    std::cerr << "There is no " << export_name << '\n';
    std::exit(2);
}
}  // namespace zelt::bench

int main(int argc, char** argv) {
    using namespace zelt::bench;
    add_kernel_rows();
    add_counted_rows();
    const std::regex filter(argc > 1 ? argv[1] : ".");
    for (const row& r : rows())
        if (r.units <= most_units && std::regex_search(r.family + '/' + r.name, filter)) count_row(r);
    return all_right() ? 0 : 1;
}
