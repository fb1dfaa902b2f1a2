#include "rig/frame_array.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "rig/recorded_motion.h"

namespace tavrik {
namespace {

/// Room for `room` numbers, of which 1, 2, 3... are frames.
FrameArray<int> Counting(std::size_t room, int frames) {
    FrameArray<int> values;
    values.GrowRoom(room);
    for (int i = 1; i <= frames; ++i) values.push_back(i);
    return values;
}

TEST(FrameArray, StartsWithoutFramesOrRoom) {
    const FrameArray<int> values;
    EXPECT_TRUE(values.empty());
    EXPECT_EQ(values.Room().size(), 0u);
}

TEST(FrameArray, RoomIsFreshAndNoFrameYet) {
    FrameArray<MotionSample> samples;
    samples.GrowRoom(3);
    EXPECT_EQ(samples.size(), 0u);
    ASSERT_EQ(samples.Room().size(), 3u);
    for (const MotionSample& sample : samples.Room()) {
        EXPECT_EQ(sample.frame.row[1].y, 1.0);
        EXPECT_EQ(sample.frame.row[1].z, 0.0);
        EXPECT_EQ(Length(sample.momentum), 0.0);
    }
}

TEST(FrameArray, ForgottenFramesStayInTheRoomUntilOthersTakeTheirPlace) {
    FrameArray<int> values = Counting(5, 4);
    values.SetFrames(1);
    EXPECT_EQ(values, (std::vector<int>{1}));
    values.push_back(7);
    EXPECT_EQ(values, (std::vector<int>{1, 7}));
    EXPECT_EQ(std::vector<int>(values.Room().begin(), values.Room().end()), (std::vector<int>{1, 7, 3, 4, 0}));
}

TEST(FrameArray, GrowingKeepsEveryEntryAndNeverShrinks) {
    FrameArray<int> values = Counting(3, 3);
    values.SetFrames(2);
    values.GrowRoom(4);
    EXPECT_EQ(values.size(), 2u);
    values.GrowRoom(1);
    EXPECT_EQ(std::vector<int>(values.Room().begin(), values.Room().end()), (std::vector<int>{1, 2, 3, 0}));
}

TEST(FrameArray, IsEqualByItsFramesAlone) {
    FrameArray<int> values = Counting(5, 4);
    values.SetFrames(2);
    EXPECT_EQ(values, Counting(2, 2));
    EXPECT_FALSE(values == Counting(5, 3));
}

TEST(FrameArray, MovedFromHasNeitherFramesNorRoom) {
    FrameArray<int> values = Counting(5, 4), into = Counting(9, 9);
    into = std::move(values);
    EXPECT_EQ(into, Counting(4, 4));
    // NOLINTBEGIN(bugprone-use-after-move,clang-analyzer-cplusplus.Move): what is left behind is the point
    EXPECT_TRUE(values.empty());
    EXPECT_EQ(values.Room().size(), 0u);
    const FrameArray<int> constructed = std::move(into);
    EXPECT_EQ(constructed.size(), 4u);
    EXPECT_TRUE(into.empty());
    // NOLINTEND(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
}

}  // namespace
}  // namespace tavrik
