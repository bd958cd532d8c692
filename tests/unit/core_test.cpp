#include "zelt/common.h"

#include <gtest/gtest.h>

TEST(core, logarithms) { EXPECT_EQ(zelt_ceil_log2(0), -1); }
