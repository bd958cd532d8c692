#include <gtest/gtest.h>

#include "zelt/common.h"

TEST(core, logarithms) {
    EXPECT_EQ(zelt_ceil_log2(0), -1);
}
