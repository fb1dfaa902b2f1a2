#include "wizard/part_names.h"

#include <gtest/gtest.h>

namespace tavrik::test {
namespace {

using Words = std::vector<std::string>;

TEST(WordsOf, CutsAtSignsCapitalsAndDigits) {
    EXPECT_EQ(WordsOf("wheelFront_L.001"), (Words{"wheel", "front", "l", "001"}));
    EXPECT_EQ(WordsOf("FLWheel"), (Words{"fl", "wheel"}));
    EXPECT_EQ(WordsOf("wheel-back-left"), (Words{"wheel", "back", "left"}));
    EXPECT_EQ(WordsOf("__"), Words{});
}

TEST(HintsOf, KnowsWheelsInSeveralLanguages) {
    for (const char* name : {"wheel_FL", "Wheels.001", "Tire", "tyre-3", "RimBackLeft", "Felge_VL", "Rad_hinten", "Reifen",
                             "wheelfl", "frontwheel", "roue_avant"}) {
        EXPECT_TRUE(HintsOf(name).wheel) << name;
        EXPECT_FALSE(HintsOf(name).notAWheel) << name;
    }
    for (const char* name : {"body", "radio", "radiator", "trim", "entire_car", "Primary", "grille"}) {
        EXPECT_FALSE(HintsOf(name).wheel) << name;
    }
}

TEST(HintsOf, TellsWhatOnlyHasToDoWithWheels) {
    for (const char* name : {"SteeringWheel", "steering_wheel", "wheelArch_L", "spare wheel", "wheel well", "Lenkrad"}) {
        EXPECT_TRUE(HintsOf(name).notAWheel) << name;
    }
}

TEST(HintsOf, ReadsEndsAndSides) {
    struct Case {
        const char* name;
        int end, side;
    };
    for (const Case& c :
         {Case{"wheel-front-left", 1, -1}, Case{"wheel_RR", -1, 1}, Case{"wheel-bl", -1, -1}, Case{"Rad VR", 1, 1},
          Case{"wheelHL", -1, -1}, Case{"tire_rear", -1, 0}, Case{"wheelfr", 1, 1}, Case{"wheel", 0, 0}}) {
        EXPECT_EQ(HintsOf(c.name).end, c.end) << c.name;
        EXPECT_EQ(HintsOf(c.name).side, c.side) << c.name;
    }
}

TEST(MatchesPattern, TakesStarsAndQuestionMarksAndNoCase) {
    EXPECT_TRUE(MatchesPattern("Wheel_FL", "wheel*"));
    EXPECT_TRUE(MatchesPattern("Wheel_FL", "*_f?"));
    EXPECT_TRUE(MatchesPattern("aXbXc", "a*X*c"));
    EXPECT_TRUE(MatchesPattern("", "*"));
    EXPECT_FALSE(MatchesPattern("Wheel_FL", "wheel"));
    EXPECT_FALSE(MatchesPattern("Wheel_FL", "*_f"));
    EXPECT_FALSE(MatchesPattern("", "?"));
}

}  // namespace
}  // namespace tavrik::test
