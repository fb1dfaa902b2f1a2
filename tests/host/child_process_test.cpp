#include "host/child_process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace tavrik::test {
namespace {

TEST(RunInChild, HandsOverTheAnswer) {
    std::string answer;
    EXPECT_EQ(RunInChild([] { return std::string(3'000'000, 'x'); }, 60, answer), ChildEnd::Answered);
    EXPECT_EQ(answer.size(), 3'000'000u);
    EXPECT_EQ(RunInChild([] { return std::string(); }, 60, answer), ChildEnd::Answered);
    EXPECT_EQ(answer, "");
}

TEST(RunInChild, ChangesNothingHere) {
    int here = 1;
    std::string answer;
    EXPECT_EQ(RunInChild([&] { return std::to_string(++here); }, 60, answer), ChildEnd::Answered);
    EXPECT_EQ(answer, "2");
    EXPECT_EQ(here, 1);
}

TEST(RunInChild, SurvivesACrash) {
    std::string answer = "untouched";
    EXPECT_EQ(RunInChild([]() -> std::string { std::abort(); }, 60, answer), ChildEnd::Crashed);
    EXPECT_EQ(RunInChild([]() -> std::string { std::_Exit(3); }, 60, answer), ChildEnd::Crashed);
    EXPECT_EQ(RunInChild([]() -> std::string { throw std::runtime_error("no"); }, 60, answer), ChildEnd::Crashed);
    EXPECT_EQ(answer, "untouched");
}

TEST(RunInChild, EndsWhatNeverEnds) {
    volatile bool always = true;
    std::string answer;
    const auto work = [&]() -> std::string {
        while (always) {
        }
        return "";
    };
    EXPECT_EQ(RunInChild(work, 0.2, answer), ChildEnd::TooSlow);
}

TEST(RunInChild, LetsNothingOntoOurOutputs) {
    testing::internal::CaptureStderr();
    std::string answer;
    RunInChild(
        [] {
            std::fputs("chatter\n", stderr);
            return std::string("done");
        },
        60, answer);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(answer, "done");
}

}  // namespace
}  // namespace tavrik::test
