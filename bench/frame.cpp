// SPDX-License-Identifier: MIT
// The rows and candidates that the files of the families and peers add.
#include "bench.h"

#include <iostream>
#include <map>

namespace zelt::bench {
namespace {
std::vector<row>& all_rows() {
    static std::vector<row> all;
    return all;
}

std::multimap<std::string, std::function<candidate()>>& further_candidates() {
    static std::multimap<std::string, std::function<candidate()>> all;
    return all;
}

bool rejected = false;
}  // namespace

const std::vector<row>& rows() { return all_rows(); }

std::vector<candidate> candidates_of(const row& r) {
    std::vector<candidate> all = r.prepare();
    const auto [first, last] = further_candidates().equal_range(r.family + '/' + r.name);
    for (auto i = first; i != last; ++i) all.push_back(i->second());
    return all;
}

bool all_right() { return !rejected; }

bool add_row(row r) {
    all_rows().push_back(std::move(r));
    return true;
}

bool add_candidate(const std::string& family, const std::string& row_name, std::function<candidate()> prepare) {
    further_candidates().emplace(family + '/' + row_name, std::move(prepare));
    return true;
}

void reject(const std::string& row_name, const std::string& candidate_name) {
    std::cerr << row_name << ": the result of " << candidate_name << " is wrong, it is left out\n";
    rejected = true;
}
}  // namespace zelt::bench
