#include "studio/driving/drive_profile.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace tavrik_studio {
namespace {

using namespace std::chrono_literals;

TEST(DriveProfile, ReportGivesMeansHighsWorstsAndTheRate) {
    DriveProfile profile;
    const DriveProfile::Time start{};
    profile.Begin(start);
    for (int i = 0; i < 100; ++i) profile.AddTick(start + i * 25ms, i == 7 ? 20ms : 10ms, 1ms, 4ms);
    EXPECT_EQ(profile.Ticks(), 100);
    EXPECT_DOUBLE_EQ(profile.FramesPerSecond(), 40.0);
    const QStringList rows = profile.Report().split('\n');
    EXPECT_EQ(rows[0], "Frames     100 at 40.0 a second");
    EXPECT_EQ(rows[1].simplified(), "ms a frame mean 95 % worst");
    EXPECT_EQ(rows[2].simplified(), "solver 10.10 10.00 20.00");
    EXPECT_EQ(rows[3].simplified(), "views 4.00 4.00 4.00");
    EXPECT_EQ(rows[4].simplified(), "display 1.00 1.00 1.00");
    EXPECT_EQ(rows[5].simplified(), "all 15.10 15.00 25.00");
}

TEST(DriveProfile, ViewsThatAreDrawnLaterCountForTheirTick) {
    DriveProfile profile;
    profile.AddViewTime(9ms);  // before any tick: somebody else's
    profile.AddTick({}, 1ms, 1ms, 2ms);
    profile.AddViewTime(3ms);
    EXPECT_TRUE(profile.Report().split('\n')[3].simplified() == "views 5.00 5.00 5.00") << profile.Report().toStdString();
}

TEST(DriveProfile, ASingleTickHasNoRate) {
    DriveProfile profile;
    EXPECT_EQ(profile.FramesPerSecond(), 0.0);
    profile.AddTick({}, 1ms, 1ms, 2ms);
    EXPECT_EQ(profile.FramesPerSecond(), 0.0);
}

TEST(DriveProfile, ANewRunForgetsTheOneBefore) {
    DriveProfile profile;
    profile.AddTick({}, 1ms, 1ms, 2ms);
    profile.Begin({});
    EXPECT_EQ(profile.Report(), "Nothing was driven.\n");
}

}  // namespace
}  // namespace tavrik_studio
