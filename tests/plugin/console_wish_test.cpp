#include "plugin/console_wish.h"

#include <gtest/gtest.h>

namespace tavrik_plugin {
namespace {

TEST(ConsoleWish, IsNoneWithoutTheVariable) { EXPECT_FALSE(WantsConsole(nullptr)); }

TEST(ConsoleWish, IsANumberOtherThanZero) {
    for (const char* yes : {"1", "-3", " 7", "0x10", "010", "2 please", "+1"}) EXPECT_TRUE(WantsConsole(yes)) << yes;
}

TEST(ConsoleWish, IsNeitherZeroNorAWord) {
    for (const char* no : {"0", "yes", "", "0x0", "-0", "true"}) EXPECT_FALSE(WantsConsole(no)) << no;
}

}  // namespace
}  // namespace tavrik_plugin
