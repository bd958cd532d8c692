// Calls every timed kernel of the registry once, for the emulator's plugin (count_plugin.c) to count its instructions,
// and once with a function that does nothing in its place, for what the call itself takes. Prints a line a kernel:
// family, row, unit, units, then the two counts, which the plugin prints.
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
}  // namespace

int main() {
    for (const kernel& k : all_kernels()) {
        if (k.timed == timing::none || k.timed == timing::early_exit) continue;
        const bool picture = k.timed == timing::picture || k.timed == timing::counted_picture;
        const shape s = picture ? shape{320, 240} : k.shapes.front();
        const memory data(k.operands(s));
        const auto [family, rest] = family_and_rest(k.name);
        std::printf("%s\t%s\t%s\t%d", family.c_str(), rest.c_str(), picture ? "pixel" : "block",
                    picture ? s.w * s.h : 1);
        std::fflush(stdout);
        count(k, k.exported, s, data.views());
        count(k, reinterpret_cast<function>(nothing), s, data.views());
        std::puts("");
    }
}
