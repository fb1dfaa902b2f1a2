#include "drive/devices.h"

#include <gtest/gtest.h>

#include "session_fixture.h"

namespace tavrik {
namespace {

using Calls = std::vector<std::string>;

struct ResolvePortTest : testing::Test {
    test::FakeWindows log;
    test::FakeDevices devices{log};
};

TEST(ResolveDriver, OneIsXInput) { EXPECT_EQ(ResolveDriver(1), 1); }

TEST(ResolveDriver, AnyOtherValueIsTheMultimediaJoystick) {
    for (const std::int32_t value : {0, 2, 10, -1}) EXPECT_EQ(ResolveDriver(value), 0) << value;
}

TEST_F(ResolvePortTest, OneToFourAreUsersZeroToThree) {
    for (std::int32_t value = 1; value <= 4; ++value) EXPECT_EQ(ResolvePort(value, devices), value - 1);
}

TEST_F(ResolvePortTest, AFixedPortAsksNoDevice) {
    for (const std::int32_t value : {1, 2, 3, 4, 5, -1}) ResolvePort(value, devices);
    EXPECT_EQ(log.calls, Calls{});
}

TEST_F(ResolvePortTest, AnyOtherValueIsUserZero) {
    for (const std::int32_t value : {5, 10, -1, 1000}) EXPECT_EQ(ResolvePort(value, devices), 0) << value;
}

TEST_F(ResolvePortTest, AutoTakesTheFirstPadThatAnswers) {
    devices.pads[2] = devices.pads[3] = test::Pad{};
    EXPECT_EQ(ResolvePort(0, devices), 2);
    EXPECT_EQ(log.calls, (Calls{"XInputGetState(0)", "XInputGetState(1)", "XInputGetState(2)"}));
}

TEST_F(ResolvePortTest, AutoWithoutAPadIsNoPad) {
    EXPECT_EQ(ResolvePort(0, devices), -1);
    EXPECT_EQ(log.calls, (Calls{"XInputGetState(0)", "XInputGetState(1)", "XInputGetState(2)", "XInputGetState(3)"}));
}

TEST_F(ResolvePortTest, AutoZeroesTheRecordBeforeEachTry) {
    ResolvePort(0, devices);  // each try that fails leaves rubbish in its record
    EXPECT_TRUE(devices.everyStateCameZeroed);
}

TEST_F(ResolvePortTest, AutoScansAtEachCall) {
    ResolvePort(0, devices);
    devices.pads[1] = test::Pad{};
    EXPECT_EQ(ResolvePort(0, devices), 1);
}

}  // namespace
}  // namespace tavrik
