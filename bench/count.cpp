// Calls every kernel of the registry that is timed or counted, for the emulator's plugin (count_plugin.c) to count its
// instructions, and once with a function that does nothing in its place, for what the call itself takes. Prints a line
// a call: family, row, unit, units, then the two counts, which the plugin prints.
#include "operands.h"

#include <cstdio>
#include <unistd.h>

namespace {
using namespace zelt::bench;

long nothing() { return 0; }

/// A system call that no kernel has: the plugin sees it and starts or ends a count.
void mark() { syscall(9999); }

void count(const kernel& k, function f, shape s, const view* v) {
    mark();
    k.call(f, s, v);
    mark();
}

void count_row(const kernel& k, shape s, const std::string& family, const std::string& row, const char* unit,
               int units) {
    const memory data(k.operands(s));
    std::printf("%s\t%s\t%s\t%d", family.c_str(), row.c_str(), unit, units);
    std::fflush(stdout);
    count(k, k.exported, s, data.views());
    count(k, reinterpret_cast<function>(nothing), s, data.views());
    std::puts("");
}

int written_bytes(const kernel& k, shape s) {
    int bytes = 0;
    for (const operand& o : k.operands(s))
        if (o.written) bytes += o.width * o.rows * o.element;
    return bytes;
}
}  // namespace

int main() {
    for (const kernel& k : all_kernels()) {
        const auto [family, rest] = family_and_rest(k.name);
        if (k.timed == timing::picture)
            count_row(k, {320, 240}, family, rest, "pixel", 320 * 240);
        else if (k.timed != timing::none && k.timed != timing::early_exit)
            count_row(k, k.shapes.front(), family, rest, "block", 1);
        for (const shape s : k.counted.shapes) {
            if (k.counted.pictures) {
                count_row(k, s, k.counted.family, rest, "pixel", s.w * s.h);
                continue;
            }
            const std::string size = std::to_string(s.w) + (s.h > 1 ? 'x' + std::to_string(s.h) : "");
            count_row(k, s, k.counted.family, k.name.substr(std::strlen("zelt_")) + ' ' + size, "byte",
                      written_bytes(k, s));
        }
    }
}
