// Runs a target over the files of folders, so that a corpus is a test with any compiler.
#include "input.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

int main(int argc, char** argv) {
    int files = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream in(entry.path(), std::ios::binary);
            const std::vector<char> chars{std::istreambuf_iterator<char>(in), {}};
            const std::vector<uint8_t> bytes(chars.begin(), chars.end());
            std::printf("%s\n", entry.path().filename().c_str());
            std::fflush(stdout);  // the last name is the culprit
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
            ++files;
        }
    return files ? 0 : 1;
}
