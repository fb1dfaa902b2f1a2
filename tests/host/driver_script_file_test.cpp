#include "host/driver_script_file.h"

#include <gtest/gtest.h>

#include <string>

namespace tavrik::test {
namespace {

DriverScript Read(std::string_view text) {
    DriverScript script;
    std::string problem;
    EXPECT_TRUE(ReadDriverScriptText("run.csv", text, script, problem)) << problem;
    return script;
}

std::string Refusal(std::string_view text) {
    DriverScript script;
    script.rows.resize(7);
    std::string problem;
    EXPECT_FALSE(ReadDriverScriptText("run.csv", text, script, problem)) << text;
    EXPECT_EQ(script.rows.size(), 7u) << "a refused file changes nothing";
    EXPECT_TRUE(problem.starts_with("run.csv: ") && problem.ends_with(".")) << problem;
    EXPECT_EQ(problem.find('\n'), std::string::npos) << problem;
    return problem;
}

TEST(DriverScriptFile, GivesEveryColumnItsField) {
    const DriverScript script = Read("0.5, -0.25, 0.75, 0.125, 1, 0\n2,1,0,1,0,1");
    ASSERT_EQ(script.rows.size(), 2u);
    EXPECT_EQ(script.rows[0].seconds, 0.5);
    EXPECT_EQ(script.rows[0].steering, -0.25f);
    EXPECT_EQ(script.rows[0].throttle, 0.75f);
    EXPECT_EQ(script.rows[0].brake, 0.125f);
    EXPECT_TRUE(script.rows[0].handBrake);
    EXPECT_FALSE(script.rows[0].reverse);
    EXPECT_TRUE(script.rows[1].reverse);
}

TEST(DriverScriptFile, PassesOverHeaderBlanksAndComments) {
    EXPECT_EQ(
        Read("\xEF\xBB\xBF# a drive\r\n\r\nseconds,steering,throttle,brake,hand brake,reverse\r\n0,0,+1,0,0,0 # go\r\n\r\n")
            .rows.size(),
        1u);
}

TEST(DriverScriptFileRefuses, WordsThatAreNoNumbers) {
    EXPECT_EQ(Refusal("0,0,0,0,0,0\n1,left,0,0,0,0\n"), "run.csv: line 2: steering is \"left\", not a number.");
    Refusal("0,,0,0,0,0");
    Refusal("0,1 2,0,0,0,0");
    Refusal("0,0x1,0,0,0,0");
    Refusal("0,+-1,0,0,0,0");
}

TEST(DriverScriptFileRefuses, NumbersThatAreNotFinite) {
    for (const char* word : {"nan", "-nan", "inf", "-inf", "1e999"}) {
        Refusal(std::string("0,") + word + ",0,0,0,0");
        Refusal(std::string(word) + ",0,0,0,0,0");
    }
}

TEST(DriverScriptFileRefuses, TooFewOrTooManyColumns) {
    EXPECT_NE(Refusal("0,0,0,0,0\n").find("line 1: it has 5 columns instead of 6"), std::string::npos);
    Refusal("0,0,0,0,0,0,0\n");
}

TEST(DriverScriptFileRefuses, NumbersOutOfRange) {
    EXPECT_NE(Refusal("0,1.5,0,0,0,0").find("steering is \"1.5\", but goes from -1 to 1 only"), std::string::npos);
    Refusal("-1,0,0,0,0,0");
    Refusal("0,0,-0.1,0,0,0");
    Refusal("0,0,0,1.01,0,0");
    Refusal("0,0,0,0,0.5,0");
    Refusal("0,0,0,0,0,2");
}

TEST(DriverScriptFileRefuses, TimesThatDoNotAscend) {
    EXPECT_NE(Refusal("0,0,0,0,0,0\n2,0,0,0,0,0\n2,0,0,0,0,0\n").find("line 3"), std::string::npos);
    Refusal("1,0,0,0,0,0\n0,0,0,0,0,0\n");
}

TEST(DriverScriptFileRefuses, ASecondHeader) { Refusal("seconds,a,b,c,d,e\nseconds,a,b,c,d,e\n0,0,0,0,0,0"); }

TEST(DriverScriptFileRefuses, AFileWithoutRows) {
    Refusal("");
    Refusal("# nothing\nseconds, steering\n");
}

}  // namespace
}  // namespace tavrik::test
