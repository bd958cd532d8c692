// SPDX-License-Identifier: MIT
// Runs a target over the files of folders, then over random inputs, so that it is a test with any compiler.
#include "input.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace {
void run(const std::string& name, const std::vector<uint8_t>& bytes) {
    std::printf("%s\n", name.c_str());
    std::fflush(stdout);  // the last name is the culprit
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

/// Half of the bytes are such as parsers look for: bounds, separators, start codes and what follows them.
std::vector<uint8_t> random_input(unsigned seed) {
    static constexpr uint8_t likely[] = {0,    0,    0,    1,    2,    3,    0x7F, 0x80, 0x81, 0xFF, 0x10,
                                         0x1C, 0x26, 0x41, 0x65, 0xB6, '\n', '\r', ' ',  '%',  '/',  ':'};
    std::mt19937 random(seed);
    std::vector<uint8_t> bytes(random() % 400);
    for (uint8_t& b : bytes) {
        const auto r = static_cast<uint32_t>(random());
        b = r & 1 ? likely[(r >> 8) % sizeof likely] : static_cast<uint8_t>(r >> 8);
    }
    return bytes;
}
}  // namespace

int main(int argc, char** argv) {
    int files = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream in(entry.path(), std::ios::binary);
            const std::vector<char> chars{std::istreambuf_iterator<char>(in), {}};
            run(entry.path().filename().string(), {chars.begin(), chars.end()});
            ++files;
        }
    for (unsigned seed = 0; seed < 3000; ++seed) run("random " + std::to_string(seed), random_input(seed));
    return files ? 0 : 1;
}
