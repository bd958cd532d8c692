// SPDX-License-Identifier: MIT
// zelt_bench [FILTER] [--benchmark_...]: times the rows whose "family/name" the regular expression FILTER matches, and
// writes one JSON document. The candidates of a row are interleaved with each other and with nothing else, so that
// what the machine does meanwhile meets all of them alike.
#include "bench.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <dlfcn.h>
#include <iostream>
#include <regex>
#include <unistd.h>

namespace zelt::bench {
namespace {
/// One JSON document over many runs
class joined_report : public benchmark::JSONReporter {
public:
    bool ReportContext(const Context& context) override {
        if (!started_) JSONReporter::ReportContext(context);
        return started_ = true;
    }
    void Finalize() override {}
    void end() {
        if (started_) JSONReporter::Finalize();
    }

private:
    bool started_ = false;
};

void time_row(const row& r, joined_report& report) {
    const std::string title = r.family + '/' + r.name;
    const std::vector<candidate> candidates = candidates_of(r);
    for (const candidate& c : candidates)
        benchmark::RegisterBenchmark((title + '/' + c.name).c_str(), [&](benchmark::State& state) {
            c.run();  // what a neighbour left in the caches is not to be timed
            for (auto _ : state) c.run();
            state.counters["units"] = r.units;
            state.counters["read"] = r.work.read;
            state.counters["written"] = r.work.written;
            state.counters["steps"] = r.work.steps;
            state.counters["footprint"] = r.work.footprint;
            state.SetLabel(r.unit);
        });
    benchmark::RunSpecifiedBenchmarks(&report, ".");
    benchmark::ClearRegisteredBenchmarks();
}
}  // namespace

const std::vector<library>& libraries() {
    static const std::vector<library> all = [] {
        // with its own copies of what the exports call, whatever is loaded already
        void* scalar = dlopen(ZELT_SCALAR_LIBRARY, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
        if (!scalar) std::cerr << dlerror() << '\n', std::exit(2);
        return std::vector<library>{{"zelt", dlopen(nullptr, RTLD_NOW)}, {"scalar", scalar}};
    }();
    return all;
}

function library::find(const std::string& export_name) const {
    void* found = dlsym(handle, export_name.c_str());
    if (!found) std::cerr << name << " does not export " << export_name << '\n', std::exit(2);
    return reinterpret_cast<function>(found);
}
}  // namespace zelt::bench

int main(int argc, char** argv) {
    using namespace zelt::bench;
    benchmark::Initialize(&argc, argv);
    add_kernel_rows();
    const std::regex filter(argc > 1 ? argv[1] : ".");
    joined_report report;
    report.SetOutputStream(&std::cout);
    report.SetErrorStream(&std::cerr);
    int done = 0;
    for (const row& r : rows())
        if (std::regex_search(r.family + '/' + r.name, filter)) {
            if (isatty(STDERR_FILENO))
                std::cerr << '\r' << done + 1 << ' ' << r.family << '/' << r.name << "\033[K" << std::flush;
            time_row(r, report);
            ++done;
        }
    report.end();
    if (isatty(STDERR_FILENO)) std::cerr << "\r\033[K";
    if (!done) std::cerr << "no row matches\n";
    return all_right() && done ? 0 : 1;
}
