// SPDX-License-Identifier: MIT
#include "core/mac.h"
#include "zelt/common.h"

#include <array>
#include <climits>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace {

TEST(system, temporary_directory) {
    char out[8] = "#######";
    EXPECT_EQ(zelt_get_temp_path(out), 5);
    EXPECT_EQ(std::memcmp(out, "/tmp/\0#", 8), 0);
}

TEST(system, hardware_address_text) {
    using octets = std::array<uint8_t, 4>;
    const auto parse = [](const std::string& text) {
        octets out{9, 9, 9, 9};
        std::FILE* file = std::tmpfile();
        std::fwrite(text.data(), 1, text.size(), file);
        std::rewind(file);
        const bool done = zelt::read_mac(file, out.data());
        std::fclose(file);
        return std::pair{done, out};
    };
    EXPECT_EQ(parse("aa:bb:cc:dd:ee:ff\n"), (std::pair{true, octets{0xaa, 0xbb, 0xcc, 0xdd}}));
    EXPECT_EQ(parse("0:1:02:FE:4:5"), (std::pair{true, octets{0, 1, 2, 0xfe}}));
    for (const char* text : {"", "\n", "aa:bb:cc:dd:ee", "aa:bb:cc:dd:ee:", "aa-bb-cc-dd-ee-ff", "aa:bb:xx:dd:ee:ff"})
        EXPECT_EQ(parse(text), (std::pair{false, octets{9, 9, 9, 9}})) << text;
}

TEST(system, hardware_address_of_no_interface) {
    for (const int index : {-1, 4711, INT_MAX, INT_MIN}) {
        uint8_t out[4] = {1, 2, 3, 4};
        EXPECT_EQ(zelt_get_mac_addr(index, out), -1);
        EXPECT_EQ(std::memcmp(out, "\0\0\0\0", 4), 0);
    }
}

}  // namespace
