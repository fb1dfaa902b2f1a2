#include "drive/drive_settings.h"

#include <gtest/gtest.h>

#include "rig/parameter_tables.h"

namespace tavrik {
namespace {

TEST(DriveSettings, StartAsANewMasterObjectDoes) {
    const ParamTable& master = *FindParamTable("Tavrik");
    const DriveSettings settings;
    EXPECT_EQ(settings.Gravity, DefaultFloat(master, 1));
    EXPECT_EQ(settings.Frame_Step, DefaultInt(master, 4));
    EXPECT_EQ(settings.Sample_Step, DefaultInt(master, 5));
    EXPECT_EQ(settings.Rudder_Sensitivity, DefaultFloat(master, 6));
    EXPECT_EQ(settings.Rudder_Angle, DefaultFloat(master, 7));
    EXPECT_EQ(settings.Throttle_Sensitivity, DefaultFloat(master, 8));
    EXPECT_EQ(settings.Brake_Sensitivity, DefaultFloat(master, 9));
    EXPECT_EQ(settings.Max_Drift_Speed, DefaultFloat(master, 14));
    EXPECT_EQ(settings.Differencial_Drive_Sensitivity, DefaultFloat(master, 15));
    EXPECT_EQ(settings.Bike_Drive, DefaultInt(master, 16));
    EXPECT_EQ(settings.Balance_Force, DefaultFloat(master, 17));
}

TEST(ApplySettings, TurnsKilometresAnHourIntoUnitsASecond) {
    DriveSettings settings;
    settings.Max_Drift_Speed = 36.0f;
    DriveInput input;
    ApplySettings(settings, 1e-5, input);
    EXPECT_FLOAT_EQ(input.maxDriftSpeed, 1000.0f);  // 36 km/h is 10 m/s, 1000 centimetres a second
}

TEST(ApplySettings, LeavesWhatTheDriverAsksForAlone) {
    DriveInput input;
    input.throttle = 4.0f;
    input.steerTarget = 0.5f;
    input.handBrake = 1;
    ApplySettings(DriveSettings{}, 1e-5, input);
    EXPECT_EQ(input.throttle, 4.0f);
    EXPECT_EQ(input.steerTarget, 0.5f);
    EXPECT_EQ(input.handBrake, 1);
}

}  // namespace
}  // namespace tavrik
