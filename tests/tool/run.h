// SPDX-License-Identifier: MIT
#pragma once
// Runs the built tool as a user types it, in a folder of its own.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <vector>

struct outcome {
    int status;
    std::string out, err;
};

class tool : public testing::Test {
protected:
    tool() {
        std::string path = std::filesystem::temp_directory_path() / "zelt-tool-XXXXXX";
        if (!mkdtemp(path.data())) std::abort();
        root = path;
        std::filesystem::create_directory(dir());
        // A sanitizer's report must not look like a status of the tool.
        setenv("ASAN_OPTIONS", "exitcode=99", 1);
        setenv("UBSAN_OPTIONS", "exitcode=99", 1);
        setenv("TSAN_OPTIONS", "exitcode=99", 1);
        // fontconfig finds its memory by offsets, which look like leaks.
        store("../leaks", "leak:libfontconfig\n");
        setenv("LSAN_OPTIONS", ("print_suppressions=0:suppressions=" + root + "/leaks").c_str(), 1);
    }
    ~tool() override { std::filesystem::remove_all(root); }

    std::string dir() const { return root + "/dir"; }

    /// A shell command in the folder, where $Z is the tool.
    outcome shell(const std::string& command, const std::string& input = "") const {
        store("../stdin", input);
        const std::string all =
            "cd '" + dir() + "' && Z='" ZELT_TOOL_PATH "'; { " + command + "\n} <../stdin >../stdout 2>../stderr";
        const int code = std::system(all.c_str());
        return {WIFEXITED(code) ? WEXITSTATUS(code) : 128 + WTERMSIG(code), load("../stdout"), load("../stderr")};
    }
    outcome zelt(const std::string& arguments, const std::string& input = "") const {
        return shell("\"$Z\" " + arguments, input);
    }

    /// Names are those of files in the folder, or absolute.
    void store(const std::string& name, const std::string& bytes) const {
        std::ofstream(std::filesystem::path(dir()) / name, std::ios::binary) << bytes;
    }
    std::string load(const std::string& name) const {
        std::ifstream in(std::filesystem::path(dir()) / name, std::ios::binary);
        EXPECT_TRUE(in) << name;
        return {std::istreambuf_iterator<char>(in), {}};
    }
    std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const auto& entry : std::filesystem::directory_iterator(dir())) all.push_back(entry.path().filename());
        std::sort(all.begin(), all.end());
        return all;
    }

    std::string root;
};

inline void expect_success(const outcome& result) {
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
}

/// A failure has its status and exactly one line to say why.
inline void expect_failure(const outcome& result, int status, const std::string& fragment) {
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_TRUE(result.err.starts_with("zelt: ") && result.err.ends_with("\n")) << result.err;
    EXPECT_NE(result.err.find(fragment), std::string::npos) << result.err;
}
