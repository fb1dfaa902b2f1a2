// In the program that takes the allocator's place: what loading does when there is no memory left.

#include <gtest/gtest.h>

#include <cstring>
#include <new>

#include "rig/recording_bytes.h"
#include "tests/rig/failing_memory.h"
#include "tests/rig/random_car.h"

namespace tavrik {
namespace {

TEST(LoadRecording, ThatRunsOutOfMemoryLeavesTheRecordingAsItWas) {
    test::TestRandom random(test::TestSeed(102));
    const auto rig = test::RandomRun(random, 30, 0, 32);
    const std::string before = SaveRecording(rig->motion), image = SaveRecording(test::RandomRun(random, 600, 0, 32)->motion);

    // One allocation more at each attempt, so that every array once is the one that fails.
    int failures = 0;
    for (bool loaded = false; !loaded;) {
        std::string problem;
        test::allocationsLeft = failures;
        try {
            loaded = LoadRecording(image, rig->motion, problem);
        } catch (const std::bad_alloc&) {
            ++failures;
        }
        test::allocationsLeft = -1;
        ASSERT_LT(failures, 100);
        ASSERT_TRUE(SaveRecording(rig->motion) == (loaded ? image : before)) << failures;
    }
    EXPECT_EQ(failures, 3 + 2 * 4);  // one for each array
}

TEST(LoadRecording, AllocatesNothingForCountsThatDoNotFitTheLength) {
    std::string image(20'000, '\0');
    const std::int32_t head[] = {1, kMaxComponents, 1, 1'000'000, kBeforeAllTime};
    std::memcpy(image.data(), head, sizeof head);
    RecordedMotion motion;
    std::string problem;
    problem.reserve(1000);
    test::allocationsLeft = 20;  // short texts on the way to the sentence; the arrays would ask for hundreds
    EXPECT_FALSE(LoadRecording(image, motion, problem));
    test::allocationsLeft = -1;
    EXPECT_NE(problem, "");
}

}  // namespace
}  // namespace tavrik
