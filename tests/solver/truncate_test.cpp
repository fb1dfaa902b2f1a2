#include "solver/truncate.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavrik {
namespace {

TEST(TruncateToInt, GoesTowardsZeroFromBothSides) {
    EXPECT_EQ(TruncateToInt(2.999), 2);
    EXPECT_EQ(TruncateToInt(-2.999), -2);
    EXPECT_EQ(TruncateToInt(0.5), 0);
    EXPECT_EQ(TruncateToInt(-0.5), 0);
    EXPECT_EQ(TruncateToInt(-7.0), -7);
}

TEST(TruncateToInt, SaturatesWhereAnIntEnds) {
    EXPECT_EQ(TruncateToInt(2147483647.0), 2147483647);
    EXPECT_EQ(TruncateToInt(2147483647.9), 2147483647);
    EXPECT_EQ(TruncateToInt(2147483648.0), 2147483647);
    EXPECT_EQ(TruncateToInt(1e300), 2147483647);
    EXPECT_EQ(TruncateToInt(-2147483648.5), -2147483647 - 1);
    EXPECT_EQ(TruncateToInt(-1e300), -2147483647 - 1);
    EXPECT_EQ(TruncateToInt(HUGE_VAL), 2147483647);
    EXPECT_EQ(TruncateToInt(-HUGE_VAL), -2147483647 - 1);
}

TEST(TruncateToInt, OfNaNIsZero) { EXPECT_EQ(TruncateToInt(std::nan("")), 0); }

}  // namespace
}  // namespace tavrik
