#include "drive/controls_config.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "fake_controls.h"
#include "rig/parameter_tables.h"

namespace tavrik {
namespace {

using test::ControlParams;
using test::MemoryFile;

struct Binding {
    std::size_t place;  // in its table
    std::int32_t param, control;
    const char* name;
    std::int32_t resetValue;
    const char* label;
};

constexpr Binding kKeyboard[] = {
    {0, 18, 2000, "CtrlKbdThrottle", 87, "Throttle:"},    {1, 19, 1010, "CtrlKbdLeft", 65, "Left:"},
    {2, 20, 1011, "CtrlKbdRight", 68, "Right:"},          {3, 22, 1018, "CtrlKbdBreak", 83, "Break:"},
    {4, 23, 1020, "CtrlKbdHandBreak", 32, "Hand Break:"}, {5, 21, 1012, "CtrlKbdFwdBkwd", 33, "Fwd / Bwd:"},
    {6, 24, 1023, "CtrlKbdNitro", 16, "Nitro:"},
};

constexpr Binding kGamepad[] = {
    {0, 25, 1016, "CtrlJoyForward", 32768, "Forward:"}, {1, 26, 1017, "CtrlJoyBackward", 8192, "Backward:"},
    {2, 27, 1019, "CtrlJoyBreak", 16384, "Break:"},     {3, 28, 1021, "CtrlJoyHandBreak", 4096, "Hand Break:"},
    {4, 29, 1024, "CtrlJoyNitro", 512, "Nitro:"},
};

struct Choice {
    std::size_t place;
    std::int32_t param, control, labelId;
    const char* name;
    const char* label;
    std::vector<std::string_view> choices;
    std::int32_t resetValue;
};

const Choice kChoices[] = {
    {0, 32, 1137, 0, "CtrlJoyDriver", "Driver:", {"Multimedia API", "X-Input"}, 1},
    {1, 33, 1138, 1141, "CtrlJoyPort", "Port:", {"Auto", "0", "1", "2", "3"}, 0},
    {2, 30, 1139, 1142, "CtrlJoyWheelCtrl", "Wheel:", {"Left Stick", "Right Stick", "D-Pad"}, 0},
    {3, 31, 1140, 1143, "CtrlJoyThrottleCtrl", "Throttle:", {"Left Stick", "Right Stick", "Left Trigger", "Right Trigger"}, 1},
};

void ExpectRow(const BindingRow& row, const Binding& wanted) {
    EXPECT_EQ(row.param, wanted.param);
    EXPECT_EQ(row.control, wanted.control);
    EXPECT_EQ(row.label, wanted.label);
    EXPECT_EQ(ControlName(row.param), wanted.name);
    EXPECT_EQ(ResetValue(row.param), wanted.resetValue);
}

template <typename Row>
std::string NameOfRow(const ::testing::TestParamInfo<Row>& row) {
    return row.param.name;
}

class EachKeyboardBinding : public ::testing::TestWithParam<Binding> {};
TEST_P(EachKeyboardBinding, StandsInItsPlace) { ExpectRow(KeyboardBindings()[GetParam().place], GetParam()); }
INSTANTIATE_TEST_SUITE_P(ControlsConfig, EachKeyboardBinding, ::testing::ValuesIn(kKeyboard), NameOfRow<Binding>);

class EachGamepadBinding : public ::testing::TestWithParam<Binding> {};
TEST_P(EachGamepadBinding, StandsInItsPlace) { ExpectRow(GamepadBindings()[GetParam().place], GetParam()); }
INSTANTIATE_TEST_SUITE_P(ControlsConfig, EachGamepadBinding, ::testing::ValuesIn(kGamepad), NameOfRow<Binding>);

class EachChoice : public ::testing::TestWithParam<Choice> {};
TEST_P(EachChoice, StandsInItsPlace) {
    const Choice& wanted = GetParam();
    const ChoiceRow& row = ControlChoices()[wanted.place];
    EXPECT_EQ(row.param, wanted.param);
    EXPECT_EQ(row.control, wanted.control);
    EXPECT_EQ(row.labelId, wanted.labelId);
    EXPECT_EQ(row.label, wanted.label);
    EXPECT_EQ(std::vector(row.choices.begin(), row.choices.end()), wanted.choices);
    EXPECT_EQ(ControlName(row.param), wanted.name);
    EXPECT_EQ(ResetValue(row.param), wanted.resetValue);
}
INSTANTIATE_TEST_SUITE_P(ControlsConfig, EachChoice, ::testing::ValuesIn(kChoices), NameOfRow<Choice>);

TEST(ControlTables, HoldNothingElse) {
    EXPECT_EQ(KeyboardBindings().size(), 7u);
    EXPECT_EQ(GamepadBindings().size(), 5u);
    EXPECT_EQ(ControlChoices().size(), 4u);
}

TEST(ControlTables, ResetSuitsOtherPadsThanTheDeclaredDefaultsInTwoPlacesOnly) {
    std::set<std::int32_t> different;
    for (std::int32_t param = MasterParam::CtrlKbdThrottle; param <= MasterParam::CtrlJoyPort; ++param) {
        if (ResetValue(param) != DefaultInt(*FindParamTable("Tavrik"), param)) different.insert(param);
    }
    EXPECT_EQ(different, (std::set<std::int32_t>{MasterParam::CtrlJoyDriver, MasterParam::CtrlJoyThrottleCtrl}));
}

TEST(ControlTables, NitroAdmitsNoKeyAtAll) {
    const ParamRow& keyboard = *FindParam(*FindParamTable("Tavrik"), MasterParam::CtrlKbdNitro);
    EXPECT_EQ(ClampToRange(keyboard, 0), 0);
    const ParamRow& gamepad = *FindParam(*FindParamTable("Tavrik"), MasterParam::CtrlJoyNitro);
    EXPECT_EQ(ClampToRange(gamepad, 0), 0);
}

TEST(FindHolder, IsTheRowThatHasTheValue) {
    ControlParams params;
    ResetControls(params);
    EXPECT_EQ(FindHolder(KeyboardBindings(), params, 83)->param, MasterParam::CtrlKbdBreak);
    EXPECT_EQ(FindHolder(GamepadBindings(), params, 4096)->param, MasterParam::CtrlJoyHandBreak);
}

TEST(FindHolder, LooksAtOneDeviceOnly) {
    ControlParams params;
    ResetControls(params);
    EXPECT_EQ(FindHolder(KeyboardBindings(), params, 4096), nullptr);
    EXPECT_EQ(FindHolder(GamepadBindings(), params, 83), nullptr);
}

// Offset and parameter, as users' files have them.
struct Slot {
    std::size_t offset;
    std::int32_t param;
    const char* name;
};
constexpr Slot kSlots[] = {
    {0, 18, "CtrlKbdThrottle"},   {4, 19, "CtrlKbdLeft"},     {8, 20, "CtrlKbdRight"},      {12, 22, "CtrlKbdBreak"},
    {16, 23, "CtrlKbdHandBreak"}, {20, 21, "CtrlKbdFwdBkwd"}, {24, 24, "CtrlKbdNitro"},     {28, 25, "CtrlJoyForward"},
    {32, 26, "CtrlJoyBackward"},  {36, 27, "CtrlJoyBreak"},   {40, 28, "CtrlJoyHandBreak"}, {44, 29, "CtrlJoyNitro"},
    {48, 32, "CtrlJoyDriver"},    {52, 33, "CtrlJoyPort"},    {56, 30, "CtrlJoyWheelCtrl"}, {60, 31, "CtrlJoyThrottleCtrl"},
};

class EachSlot : public ::testing::TestWithParam<Slot> {};

TEST_P(EachSlot, IsWrittenAtItsOffsetLowByteFirst) {
    ControlParams params;
    params.values[GetParam().param] = 0x04030201;
    const ControlsImage image = MakeControlsImage(params);
    for (std::size_t i = 0; i < image.size(); ++i) {
        const bool own = i >= GetParam().offset && i < GetParam().offset + 4;
        EXPECT_EQ(std::to_integer<std::size_t>(image[i]), own ? i - GetParam().offset + 1 : 0) << i;
    }
}

TEST_P(EachSlot, IsReadFromItsOffsetLowByteFirst) {
    ControlsImage image{};
    for (std::size_t i = 0; i < 4; ++i) image[GetParam().offset + i] = std::byte(0xF1 + i);
    ControlParams params;
    ApplyControlsImage(image, params);
    for (const Slot& slot : kSlots) {
        EXPECT_EQ(params.GetInt(slot.param), slot.param == GetParam().param ? std::int32_t(0xF4F3F2F1u) : 0) << slot.name;
    }
}

INSTANTIATE_TEST_SUITE_P(ControlsImage, EachSlot, ::testing::ValuesIn(kSlots), NameOfRow<Slot>);

std::vector<std::byte> Bytes(std::initializer_list<int> values) {
    std::vector<std::byte> bytes;
    for (const int value : values) bytes.push_back(std::byte(value));
    return bytes;
}

/// What a new user's file holds after "Save".
std::vector<std::byte> DefaultImage() {
    return Bytes({87, 0,  0, 0, 65, 0,  0, 0, 68, 0,  0, 0, 83, 0, 0, 0, 32, 0, 0, 0, 33, 0, 0, 0, 16, 0, 0, 0, 0, 128, 0, 0,
                  0,  32, 0, 0, 0,  64, 0, 0, 0,  16, 0, 0, 0,  2, 0, 0, 1,  0, 0, 0, 0,  0, 0, 0, 0,  0, 0, 0, 1, 0,   0, 0});
}

/// Each parameter has a value of its own, from 101 on in the order of the file.
ControlParams NumberedParams() {
    ControlParams params;
    for (std::int32_t i = 0; i < 16; ++i) params.values[kSlots[i].param] = 101 + i;
    return params;
}

MemoryFile FileOf(std::vector<std::byte> bytes) {
    MemoryFile file;
    file.state = FileState::Read;
    file.bytes = std::move(bytes);
    return file;
}

/// The sixteen values in the order of the file.
std::vector<std::int32_t> Values(const ControlParams& params) {
    std::vector<std::int32_t> values;
    for (const Slot& slot : kSlots) values.push_back(params.GetInt(slot.param));
    return values;
}

const std::vector<std::int32_t> kResetValues = {87, 65, 68, 83, 32, 33, 16, 32768, 8192, 16384, 4096, 512, 1, 0, 0, 1};

TEST(ResetControls, GivesAllSixteenTheirValues) {
    ControlParams params = NumberedParams();
    ResetControls(params);
    EXPECT_EQ(Values(params), kResetValues);
}

TEST(ResetControls, SetsTheParametersInTheOrderOfTheFile) {
    ControlParams params;
    ResetControls(params);
    ASSERT_EQ(params.sets.size(), 16u);
    for (std::size_t i = 0; i < 16; ++i) EXPECT_EQ(params.sets[i].first, kSlots[i].param);
}

TEST(LoadControls, AMissingFileResets) {
    ControlParams params = NumberedParams();
    MemoryFile file;
    EXPECT_EQ(LoadControls(file, params), FileState::Missing);
    EXPECT_EQ(Values(params), kResetValues);
    EXPECT_EQ(file.state, FileState::Missing) << "nothing is written before somebody saves";
}

TEST(LoadControls, AnUnreadableFileChangesNothing) {
    ControlParams params = NumberedParams();
    MemoryFile file;
    file.state = FileState::Unreadable;
    EXPECT_EQ(LoadControls(file, params), FileState::Unreadable);
    EXPECT_EQ(Values(params), Values(NumberedParams()));
    EXPECT_TRUE(params.sets.empty());
}

TEST(LoadControls, ReadsTheFileOfANewUser) {
    ControlParams params = NumberedParams();
    MemoryFile file = FileOf(DefaultImage());
    EXPECT_EQ(LoadControls(file, params), FileState::Read);
    EXPECT_EQ(Values(params), kResetValues);
}

TEST(LoadControls, SetsTheParametersInTheOrderOfTheFile) {
    ControlParams params;
    MemoryFile file = FileOf(DefaultImage());
    LoadControls(file, params);
    ASSERT_EQ(params.sets.size(), 16u);
    for (std::size_t i = 0; i < 16; ++i) EXPECT_EQ(params.sets[i], std::pair(kSlots[i].param, kResetValues[i]));
}

TEST(LoadControls, AsksForNoMoreThanAnImage) {
    ControlParams params;
    MemoryFile file = FileOf(DefaultImage());
    LoadControls(file, params);
    EXPECT_EQ(file.askedFor, 64u);
}

TEST(LoadControls, ALongFileCountsByItsFront) {
    std::vector<std::byte> bytes = DefaultImage();
    bytes.resize(1000, std::byte(0xEE));
    ControlParams params;
    ApplyControlsImage(bytes, params);
    EXPECT_EQ(Values(params), kResetValues);
}

TEST(LoadControls, AnEmptyFileGivesZeroToAll) {
    ControlParams params = NumberedParams();
    MemoryFile file = FileOf({});
    LoadControls(file, params);
    EXPECT_EQ(Values(params), std::vector<std::int32_t>(16, 0));
}

TEST(LoadControls, LessThanOneIntegerGivesZeroToAll) {
    ControlParams params = NumberedParams();
    MemoryFile file = FileOf(Bytes({7, 7, 7}));
    LoadControls(file, params);
    EXPECT_EQ(Values(params), std::vector<std::int32_t>(16, 0));
}

TEST(LoadControls, OneIntegerGoesToAll) {
    ControlParams params;
    MemoryFile file = FileOf(Bytes({87, 0, 0, 0}));
    LoadControls(file, params);
    EXPECT_EQ(Values(params), std::vector<std::int32_t>(16, 87));
}

TEST(LoadControls, TheLastWholeIntegerOfAShortFileGoesToAllThatFollow) {
    for (std::size_t length = 0; length < 64; ++length) {
        ControlsImage image = MakeControlsImage(NumberedParams());
        ControlParams params;
        MemoryFile file = FileOf({image.begin(), image.begin() + std::ptrdiff_t(length)});
        LoadControls(file, params);

        std::vector<std::int32_t> wanted;
        const auto whole = std::int32_t(length / 4);
        for (std::int32_t i = 0; i < 16; ++i) wanted.push_back(i < whole ? 101 + i : whole == 0 ? 0 : 100 + whole);
        EXPECT_EQ(Values(params), wanted) << length << " bytes";
    }
}

TEST(LoadControls, TakesValuesOutsideOfAnyRange) {
    ControlParams params;
    MemoryFile file = FileOf(std::vector<std::byte>(64, std::byte(0xFF)));
    LoadControls(file, params);
    EXPECT_EQ(Values(params), std::vector<std::int32_t>(16, -1));
}

TEST(SaveControls, WritesTheFileOfANewUser) {
    ControlParams params;
    ResetControls(params);
    MemoryFile file;
    EXPECT_TRUE(SaveControls(params, file));
    EXPECT_EQ(file.bytes, DefaultImage());
}

TEST(SaveControls, WhatWasSavedIsLoadedAgain) {
    const ControlParams saved = NumberedParams();
    MemoryFile file;
    ASSERT_TRUE(SaveControls(saved, file));
    ASSERT_EQ(file.bytes.size(), 64u);
    ControlParams loaded;
    LoadControls(file, loaded);
    EXPECT_EQ(Values(loaded), Values(saved));
}

TEST(SaveControls, AFailedSaveSaysSoAndLeavesTheOldFile) {
    MemoryFile file = FileOf(DefaultImage());
    file.canWrite = false;
    EXPECT_FALSE(SaveControls(NumberedParams(), file));
    EXPECT_EQ(file.bytes, DefaultImage());
}

TEST(SaveControls, AnUnknownDigitKeyIsKeptByItsCode) {
    ControlParams params = NumberedParams();
    params.values[MasterParam::CtrlKbdNitro] = 48;
    MemoryFile file;
    SaveControls(params, file);
    EXPECT_EQ(file.bytes[24], std::byte(48));
}

}  // namespace
}  // namespace tavrik
