#include "drive/controller_setup.h"

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "drive/window_messages.h"
#include "fake_controls.h"
#include "rig/parameter_tables.h"
#include "tests/drive/fake_windows.h"

namespace tavrik {
namespace {

using test::CanvasCall;
using test::ControlParams;
using test::FakePads;
using test::FakeWindows;
using test::MemoryFile;
using test::RecordingCanvas;
using Texts = std::vector<std::string>;

constexpr WindowId kRollout = 77;

/// Shows nothing; keeps what it was told and answers as a test set it.
struct FakeRollout : RolloutLayer {
    std::map<std::int32_t, std::vector<std::string_view>> lists;
    std::map<std::int32_t, std::int32_t> selections;
    std::vector<RolloutItem> shown;
    WindowId shownOn = 0;
    int refreshes = 0;

    void FillCombo(WindowId, std::int32_t control, std::span<const std::string_view> choices) override {
        EXPECT_EQ(refreshes, 0) << "lists are filled before anything is selected in them";
        lists[control].assign(choices.begin(), choices.end());
    }
    std::int32_t GetSelection(WindowId, std::int32_t control) const override {
        const auto found = selections.find(control);
        return found == selections.end() ? kNoSelection : found->second;
    }
    void Show(WindowId rollout, std::span<const RolloutItem> items) override {
        shown.assign(items.begin(), items.end());
        shownOn = rollout;
        ++refreshes;
    }
};

const RolloutItem& Item(const std::vector<RolloutItem>& items, std::int32_t control) {
    for (const RolloutItem& item : items) {
        if (item.control == control) return item;
    }
    throw std::runtime_error("no control " + std::to_string(control));
}

ControlParams ResetParams() {
    ControlParams params;
    ResetControls(params);
    params.sets.clear();
    return params;
}

class ControllerSetup : public ::testing::Test {
 protected:
    ControllerSetup() { setup.master = &params; }

    bool Command(std::int32_t control, std::uint32_t notification = 0) {
        return setup.RolloutMessage(kRollout, kWmCommand, std::uint64_t(notification) << 16 | std::uint64_t(control));
    }
    bool KeyUp(std::uint64_t key) { return setup.PromptMessage(kWmKeyUp, key); }
    bool Tick() { return setup.PromptMessage(kWmTimer, kTimerId); }
    /// The text in the upper part of the prompt as it was last drawn.
    std::string Prompt() {
        std::string last;
        for (const CanvasCall& call : windows.CanvasOf(windows.Last()).calls) {
            if (const auto* line = std::get_if<test::drawn::DrawTextLine>(&call); line != nullptr && line->top == 0)
                last = line->text;
        }
        return last;
    }
    /// One pad with these buttons held, or none where the pad is not there.
    void HoldOnPad(std::uint16_t buttons) {
        pads.pads[0] = true;
        pads.padButtons[0] = buttons;
    }

    ControlParams params = ResetParams();
    FakeWindows windows;
    FakeRollout rollout;
    FakePads pads;
    MemoryFile file;
    TavrikControllerSetup setup{windows, rollout, pads, file};
};

// ---- What the rollout shows

TEST(RolloutItems, ListButtonsThenCombosThenLabels) {
    std::vector<std::int32_t> controls;
    for (const RolloutItem& item : RolloutItems(ResetParams())) controls.push_back(item.control);
    EXPECT_EQ(controls, (std::vector<std::int32_t>{2000, 1010, 1011, 1018, 1020, 1012, 1023, 1016, 1017, 1019, 1021, 1024, 1137,
                                                   1138, 1139, 1140, 1141, 1142, 1143}));
}

struct ShownText {
    std::int32_t control;
    const char* text;
};
class EachBindingButton : public ::testing::TestWithParam<ShownText> {};
TEST_P(EachBindingButton, ShowsTheNameOfItsValue) {
    const RolloutItem item = Item(RolloutItems(ResetParams()), GetParam().control);
    EXPECT_EQ(item.text, GetParam().text);
    EXPECT_TRUE(item.enabled);
    EXPECT_EQ(item.selection, kNoSelection);
}
INSTANTIATE_TEST_SUITE_P(RolloutItems, EachBindingButton,
                         ::testing::Values(ShownText{2000, "W"}, ShownText{1010, "A"}, ShownText{1011, "D"},
                                           ShownText{1018, "S"}, ShownText{1020, "SP"}, ShownText{1012, "PUP"},
                                           ShownText{1023, "SH"}, ShownText{1016, "Y"}, ShownText{1017, "B"},
                                           ShownText{1019, "X"}, ShownText{1021, "A"}, ShownText{1024, "RB"}),
                         [](const auto& row) { return "Control" + std::to_string(row.param.control); });

TEST(RolloutItems, ADigitKeyReadsUnknown) {
    ControlParams params = ResetParams();
    params.values[MasterParam::CtrlKbdLeft] = 48;
    EXPECT_EQ(Item(RolloutItems(params), 1010).text, "UNK");
}

TEST(RolloutItems, AButtonWithoutNameIsANumber) {
    ControlParams params = ResetParams();
    params.values[MasterParam::CtrlJoyNitro] = 4;
    EXPECT_EQ(Item(RolloutItems(params), 1024).text, "4");
}

TEST(RolloutItems, NitroWithoutKeyOrButtonIsShown) {
    ControlParams params = ResetParams();
    params.values[MasterParam::CtrlKbdNitro] = 0;
    params.values[MasterParam::CtrlJoyNitro] = 0;
    EXPECT_EQ(Item(RolloutItems(params), 1023).text, "UNK");
    EXPECT_EQ(Item(RolloutItems(params), 1024).text, "0");
}

TEST(RolloutItems, CombosSelectTheValuesOfTheirParameters) {
    ControlParams params = ResetParams();
    params.values[MasterParam::CtrlJoyDriver] = 1;
    params.values[MasterParam::CtrlJoyPort] = 4;
    params.values[MasterParam::CtrlJoyWheelCtrl] = 2;
    params.values[MasterParam::CtrlJoyThrottleCtrl] = 3;
    const auto items = RolloutItems(params);
    EXPECT_EQ(Item(items, 1137).selection, 1);
    EXPECT_EQ(Item(items, 1138).selection, 4);
    EXPECT_EQ(Item(items, 1139).selection, 2);
    EXPECT_EQ(Item(items, 1140).selection, 3);
}

TEST(RolloutItems, WhatOnlyXInputHasIsEnabledOnlyWithIt) {
    ControlParams params = ResetParams();
    for (const std::int32_t driver : {0, 1, 2, -1}) {
        params.values[MasterParam::CtrlJoyDriver] = driver;
        const auto items = RolloutItems(params);
        for (const std::int32_t control : {1138, 1139, 1140, 1141, 1142, 1143}) {
            EXPECT_EQ(Item(items, control).enabled, driver == 1) << control << " with driver " << driver;
        }
        EXPECT_TRUE(Item(items, 1137).enabled);
        EXPECT_TRUE(Item(items, 1024).enabled);
    }
}

TEST(RolloutItems, LabelsKeepTheirTexts) {
    const auto items = RolloutItems(ResetParams());
    EXPECT_EQ(Item(items, 1141).text, "Port:");
    EXPECT_EQ(Item(items, 1142).text, "Wheel:");
    EXPECT_EQ(Item(items, 1143).text, "Throttle:");
}

// ---- Messages of the rollout

TEST_F(ControllerSetup, OpeningFillsTheCombosAndRefreshes) {
    EXPECT_TRUE(setup.RolloutMessage(kRollout, kWmInitDialog, 0));
    EXPECT_EQ(rollout.lists.size(), 4u);
    EXPECT_EQ(rollout.lists[1137], (std::vector<std::string_view>{"Multimedia API", "X-Input"}));
    EXPECT_EQ(rollout.lists[1138], (std::vector<std::string_view>{"Auto", "0", "1", "2", "3"}));
    EXPECT_EQ(rollout.lists[1139], (std::vector<std::string_view>{"Left Stick", "Right Stick", "D-Pad"}));
    EXPECT_EQ(rollout.lists[1140],
              (std::vector<std::string_view>{"Left Stick", "Right Stick", "Left Trigger", "Right Trigger"}));
    EXPECT_EQ(rollout.refreshes, 1);
    EXPECT_EQ(rollout.shownOn, kRollout);
}

TEST_F(ControllerSetup, EveryMessageTellsWhichRolloutIsMeant) {
    setup.RolloutMessage(5, kWmPaint, 0);
    EXPECT_EQ(setup.rollout, 5u);
}

TEST_F(ControllerSetup, SaveWritesTheFileAndShowsNothing) {
    EXPECT_TRUE(Command(1022));
    EXPECT_EQ(file.bytes.size(), 64u);
    EXPECT_EQ(rollout.refreshes, 0);
}

TEST_F(ControllerSetup, AFailedSaveIsSilent) {
    file.canWrite = false;
    EXPECT_TRUE(Command(1022));
    EXPECT_TRUE(windows.calls.empty());
    EXPECT_EQ(rollout.refreshes, 0);
}

TEST_F(ControllerSetup, ResetGivesTheDefaultsAndRefreshesButLeavesTheFile) {
    params.values[MasterParam::CtrlKbdLeft] = 90;
    EXPECT_TRUE(Command(1025));
    EXPECT_EQ(params.GetInt(MasterParam::CtrlKbdLeft), 65);
    EXPECT_EQ(Item(rollout.shown, 1010).text, "A");
    EXPECT_EQ(rollout.refreshes, 1);
    EXPECT_EQ(file.state, FileState::Missing);
}

TEST_F(ControllerSetup, TheDriverIsTakenFromItsCombo) {
    rollout.selections = {{1137, 0}, {1138, 3}, {1139, 2}, {1140, 3}};
    EXPECT_TRUE(Command(1137, kCbnSelChange));
    EXPECT_EQ(params.sets, (std::vector<std::pair<std::int32_t, std::int32_t>>{{32, 0}}));
    EXPECT_FALSE(Item(rollout.shown, 1138).enabled);
    EXPECT_EQ(rollout.refreshes, 1);
}

TEST_F(ControllerSetup, ThePortIsTakenFromItsCombo) {
    rollout.selections = {{1137, 0}, {1138, 3}, {1139, 2}, {1140, 3}};
    EXPECT_TRUE(Command(1138, kCbnSelChange));
    EXPECT_EQ(params.sets, (std::vector<std::pair<std::int32_t, std::int32_t>>{{33, 3}}));
    EXPECT_EQ(rollout.refreshes, 1);
}

TEST_F(ControllerSetup, BothAxesAreTakenWhicheverChanged) {
    for (const std::int32_t control : {1139, 1140}) {
        params.sets.clear();
        rollout.refreshes = 0;
        rollout.selections = {{1137, 0}, {1138, 3}, {1139, 2}, {1140, 3}};
        EXPECT_TRUE(Command(control, kCbnSelChange));
        EXPECT_EQ(params.sets, (std::vector<std::pair<std::int32_t, std::int32_t>>{{30, 2}, {31, 3}}));
        EXPECT_EQ(rollout.refreshes, 1);
    }
}

TEST_F(ControllerSetup, OtherNotificationsOfAComboMeanNothing) {
    for (const std::int32_t control : {1137, 1138, 1139, 1140}) {
        for (const std::uint32_t notification : {0u, 3u, 7u, 8u}) EXPECT_FALSE(Command(control, notification));
    }
    EXPECT_TRUE(params.sets.empty());
    EXPECT_EQ(rollout.refreshes, 0);
    EXPECT_EQ(setup.promptWindow, 0u);
}

TEST_F(ControllerSetup, AnUnknownControlMeansNothing) {
    EXPECT_FALSE(Command(1141));
    EXPECT_FALSE(Command(0));
    EXPECT_TRUE(windows.calls.empty());
}

TEST_F(ControllerSetup, OtherMessagesMeanNothing) { EXPECT_FALSE(setup.RolloutMessage(kRollout, kWmKeyUp, 2000)); }

struct Capture {
    std::int32_t control, param;
    std::uint32_t device;
};
class EachCapture : public ControllerSetup, public ::testing::WithParamInterface<Capture> {};
TEST_P(EachCapture, IsStartedByItsButton) {
    EXPECT_TRUE(Command(GetParam().control));
    EXPECT_EQ(setup.bindingParam, std::uint32_t(GetParam().param));
    EXPECT_EQ(setup.bindingDevice, GetParam().device);
    EXPECT_NE(setup.promptWindow, 0u);
}
TEST_P(EachCapture, BindsAFreeValueToItsParameter) {
    Command(GetParam().control);
    if (GetParam().device == 0) {
        KeyUp('Q');
    } else {
        HoldOnPad(16);
        Tick();
    }
    EXPECT_EQ(params.sets,
              (std::vector<std::pair<std::int32_t, std::int32_t>>{{GetParam().param, GetParam().device == 0 ? 'Q' : 16}}));
    EXPECT_EQ(Item(rollout.shown, GetParam().control).text, GetParam().device == 0 ? "Q" : "16");
}
INSTANTIATE_TEST_SUITE_P(ControllerSetup, EachCapture,
                         ::testing::Values(Capture{2000, 18, 0}, Capture{1010, 19, 0}, Capture{1011, 20, 0},
                                           Capture{1018, 22, 0}, Capture{1020, 23, 0}, Capture{1012, 21, 0},
                                           Capture{1023, 24, 0}, Capture{1016, 25, 1}, Capture{1017, 26, 1},
                                           Capture{1019, 27, 1}, Capture{1021, 28, 1}, Capture{1024, 29, 1}),
                         [](const auto& row) { return "Control" + std::to_string(row.param.control); });

// ---- Capture

TEST_F(ControllerSetup, ACaptureOpensThePromptInThisOrder) {
    Command(1010);
    EXPECT_EQ(windows.calls, (Texts{"CreateDialogWindow(Prompt)", "RegisterDlgWnd(1)", "DisableAccelerators()", "SetCapture(1)",
                                    "SetTimer(1, 1, 100)", "GetDC(1)", "ReleaseDC(1)"}));
    EXPECT_EQ(Prompt(), "Press a key for the action");
    EXPECT_EQ(rollout.refreshes, 0);
}

TEST_F(ControllerSetup, AFreeKeyIsBoundAndEndsTheCaptureInThisOrder) {
    Command(1010);
    windows.calls.clear();
    EXPECT_TRUE(KeyUp('Q'));
    EXPECT_EQ(params.GetInt(MasterParam::CtrlKbdLeft), 'Q');
    EXPECT_EQ(windows.calls, (Texts{"KillTimer(1, 1)", "ReleaseCapture()", "EnableAccelerators()", "UnRegisterDlgWnd(1)",
                                    "DestroyWindow(1)"}));
    EXPECT_EQ(setup.promptWindow, 0u);
    EXPECT_EQ(rollout.refreshes, 1);
    EXPECT_EQ(Item(rollout.shown, 1010).text, "Q");
    EXPECT_EQ(file.state, FileState::Missing) << "bound is not saved";
}

TEST_F(ControllerSetup, EveryCaptureGivesTheShortcutsAndTheCanvasBack) {
    Command(1010);
    KeyUp('A');
    KeyUp('Q');
    EXPECT_EQ(windows.AcceleratorBalance(), 0);
    EXPECT_EQ(windows.OpenCanvases(), 0);
}

TEST_F(ControllerSetup, EscapeEndsACaptureOfEitherDeviceAndBindsNothing) {
    for (const std::int32_t control : {1010, 1024}) {
        Command(control);
        rollout.refreshes = 0;
        EXPECT_TRUE(KeyUp(27));
        EXPECT_EQ(setup.promptWindow, 0u);
        EXPECT_EQ(rollout.refreshes, 1);
        EXPECT_TRUE(params.sets.empty());
    }
}

TEST_F(ControllerSetup, ClosingThePromptEndsTheCapture) {
    Command(1010);
    windows.calls.clear();
    EXPECT_TRUE(setup.PromptMessage(kWmClose, 0));
    EXPECT_EQ(windows.calls, (Texts{"KillTimer(1, 1)", "ReleaseCapture()", "EnableAccelerators()", "UnRegisterDlgWnd(1)",
                                    "DestroyWindow(1)"}));
    EXPECT_EQ(setup.promptWindow, 0u);
    EXPECT_EQ(rollout.refreshes, 1);
    EXPECT_TRUE(params.sets.empty());
}

TEST_F(ControllerSetup, EnterCanBeBound) {
    Command(1010);
    KeyUp(13);
    EXPECT_EQ(params.GetInt(MasterParam::CtrlKbdLeft), 13);
    EXPECT_EQ(Item(rollout.shown, 1010).text, "EN");
}

TEST_F(ControllerSetup, ADigitCanBeBoundAndReadsUnknown) {
    Command(1010);
    KeyUp(48);
    EXPECT_EQ(params.GetInt(MasterParam::CtrlKbdLeft), 48);
    EXPECT_EQ(Item(rollout.shown, 1010).text, "UNK");
}

TEST_F(ControllerSetup, AKeyOfAnotherActionIsRefusedAndTheCaptureGoesOn) {
    Command(1010);
    windows.calls.clear();
    EXPECT_TRUE(KeyUp('D'));
    EXPECT_EQ(setup.taken, 1u);
    EXPECT_EQ(Prompt(), "Key is already taken!");
    EXPECT_EQ(windows.calls, (Texts{"GetDC(1)", "ReleaseDC(1)"}));
    EXPECT_TRUE(params.sets.empty());
    EXPECT_EQ(rollout.refreshes, 0);

    KeyUp('Q');
    EXPECT_EQ(params.GetInt(MasterParam::CtrlKbdLeft), 'Q');
    EXPECT_EQ(setup.promptWindow, 0u);
}

TEST_F(ControllerSetup, TheKeyThatTheActionHasAlreadyIsRefusedToo) {
    Command(1010);
    KeyUp('A');
    EXPECT_EQ(setup.taken, 1u);
    EXPECT_EQ(Prompt(), "Key is already taken!");
}

TEST_F(ControllerSetup, AValueOfTheOtherDeviceIsFree) {
    params.values[MasterParam::CtrlJoyNitro] = 64;
    Command(1010);
    KeyUp(64);
    EXPECT_EQ(params.GetInt(MasterParam::CtrlKbdLeft), 64);

    params.values[MasterParam::CtrlKbdRight] = 32;
    Command(1016);
    HoldOnPad(32);
    Tick();
    EXPECT_EQ(params.GetInt(MasterParam::CtrlJoyForward), 32);
}

TEST_F(ControllerSetup, ANewCaptureForgetsThatTheLastTryWasTaken) {
    Command(1010);
    KeyUp('D');
    KeyUp(27);
    Command(1011);
    EXPECT_EQ(setup.taken, 0u);
    EXPECT_EQ(Prompt(), "Press a key for the action");
}

TEST_F(ControllerSetup, AnotherActionTakesOverTheOpenPrompt) {
    Command(1010);
    KeyUp('D');
    windows.calls.clear();
    EXPECT_TRUE(Command(1024));
    EXPECT_TRUE(windows.calls.empty()) << "the same window serves on, undrawn";
    EXPECT_EQ(setup.taken, 0u);
    EXPECT_EQ(setup.bindingParam, std::uint32_t(MasterParam::CtrlJoyNitro));
    EXPECT_EQ(setup.bindingDevice, 1u);
}

TEST_F(ControllerSetup, CodesThatAreNoKeysPass) {
    Command(1023);
    for (const std::uint64_t code : {std::uint64_t(0), std::uint64_t(256), ~std::uint64_t(0), std::uint64_t(1) << 32 | 81}) {
        EXPECT_TRUE(KeyUp(code));
        EXPECT_NE(setup.promptWindow, 0u);
    }
    EXPECT_TRUE(params.sets.empty());
    EXPECT_EQ(setup.taken, 0u);
}

TEST_F(ControllerSetup, AKeyboardCaptureDoesNotLookAtPads) {
    Command(1010);
    HoldOnPad(16);
    pads.joystick = true;
    EXPECT_TRUE(Tick());
    EXPECT_TRUE(pads.asked.empty());
    EXPECT_TRUE(pads.joysticksAsked.empty());
    EXPECT_NE(setup.promptWindow, 0u);
}

TEST_F(ControllerSetup, AGamepadCaptureIgnoresKeys) {
    Command(1024);
    EXPECT_TRUE(KeyUp('Q'));
    EXPECT_TRUE(KeyUp(16));
    EXPECT_NE(setup.promptWindow, 0u);
    EXPECT_TRUE(params.sets.empty());
}

TEST_F(ControllerSetup, ChordsAndNoButtonArePassedOverSilently) {
    Command(1024);
    windows.calls.clear();
    for (const int buttons : {0, 3, 0x8001, 0xFFFF, 4096 + 8192}) {
        HoldOnPad(std::uint16_t(buttons));
        EXPECT_TRUE(Tick());
    }
    EXPECT_TRUE(windows.calls.empty());
    EXPECT_TRUE(params.sets.empty());
    EXPECT_EQ(setup.taken, 0u);
}

TEST_F(ControllerSetup, AButtonInUseIsRefused) {
    Command(1024);
    HoldOnPad(4096);
    Tick();
    EXPECT_EQ(Prompt(), "Key is already taken!");
    HoldOnPad(512);
    Tick();
    EXPECT_EQ(setup.taken, 1u);
    EXPECT_NE(setup.promptWindow, 0u);
}

TEST_F(ControllerSetup, ThePadOfThePortIsRead) {
    params.values[MasterParam::CtrlJoyPort] = 3;
    pads.pads = {true, false, true, false};
    pads.padButtons = {16, 0, 32, 0};
    Command(1024);
    Tick();
    EXPECT_EQ(pads.asked, (std::vector<std::int32_t>{2}));
    EXPECT_EQ(params.GetInt(MasterParam::CtrlJoyNitro), 32);
}

TEST_F(ControllerSetup, AutoReadsTheFirstPadThatAnswers) {
    pads.pads = {false, true, true, false};
    pads.padButtons = {16, 32, 64, 0};
    Command(1024);
    Tick();
    EXPECT_EQ(params.GetInt(MasterParam::CtrlJoyNitro), 32);
}

TEST_F(ControllerSetup, APadThatIsNotThereHasNoButtons) {
    pads.padButtons = {16, 16, 16, 16};
    Command(1024);
    for (std::int32_t port = 0; port <= 5; ++port) {
        params.values[MasterParam::CtrlJoyPort] = port;
        EXPECT_TRUE(Tick());
    }
    EXPECT_TRUE(params.sets.empty());
    EXPECT_NE(setup.promptWindow, 0u);
    KeyUp(27);
    EXPECT_EQ(setup.promptWindow, 0u);
}

TEST_F(ControllerSetup, WithTheMultimediaDriverTheFirstJoystickIsRead) {
    params.values[MasterParam::CtrlJoyDriver] = 0;
    pads.joystick = true;
    pads.joyButtons = 4;
    HoldOnPad(16);
    Command(1024);
    Tick();
    EXPECT_EQ(pads.joysticksAsked, (std::vector<std::uint32_t>{0}));
    EXPECT_TRUE(pads.asked.empty());
    EXPECT_EQ(params.GetInt(MasterParam::CtrlJoyNitro), 4);
    EXPECT_EQ(Item(rollout.shown, 1024).text, "4");
}

TEST_F(ControllerSetup, AJoystickBitThatAPadNamesShowsThatName) {
    params.values[MasterParam::CtrlJoyDriver] = 0;
    pads.joystick = true;
    pads.joyButtons = 256;
    Command(1024);
    Tick();
    EXPECT_EQ(Item(rollout.shown, 1024).text, "LB");
}

TEST_F(ControllerSetup, EachOfThe32JoystickBitsCanBeBound) {
    params.values[MasterParam::CtrlJoyDriver] = 0;
    pads.joystick = true;
    for (int bit = 0; bit < 32; ++bit) {
        for (const BindingRow& row : GamepadBindings()) params.values[row.param] = 0;
        pads.joyButtons = 1u << bit;
        Command(1024);
        Tick();
        EXPECT_EQ(params.GetInt(MasterParam::CtrlJoyNitro), std::int32_t(1u << bit));
        EXPECT_EQ(setup.promptWindow, 0u);
    }
}

TEST_F(ControllerSetup, AJoystickThatIsNotThereHasNoButtons) {
    params.values[MasterParam::CtrlJoyDriver] = 0;
    pads.joyButtons = 4;
    Command(1024);
    EXPECT_TRUE(Tick());
    EXPECT_TRUE(params.sets.empty());
}

TEST_F(ControllerSetup, NitroWithoutAKeyCanBeBoundAgain) {
    params.values[MasterParam::CtrlKbdNitro] = 0;
    Command(1023);
    KeyUp(16);
    EXPECT_EQ(params.GetInt(MasterParam::CtrlKbdNitro), 16);
}

TEST_F(ControllerSetup, LateMessagesOfAClosedPromptMeanNothing) {
    Command(1010);
    KeyUp(27);
    windows.calls.clear();
    rollout.refreshes = 0;
    EXPECT_FALSE(KeyUp('Q'));
    EXPECT_FALSE(Tick());
    EXPECT_FALSE(setup.PromptMessage(kWmClose, 0));
    EXPECT_FALSE(setup.PromptMessage(kWmPaint, 0));
    EXPECT_TRUE(windows.calls.empty());
    EXPECT_TRUE(params.sets.empty());
    EXPECT_EQ(rollout.refreshes, 0);
}

TEST_F(ControllerSetup, APaintMessageDrawsThePromptAsItStands) {
    Command(1010);
    KeyUp('D');
    windows.calls.clear();
    windows.CanvasOf(1).calls.clear();
    EXPECT_TRUE(setup.PromptMessage(kWmPaint, 0));
    EXPECT_EQ(windows.calls, (Texts{"BeginPaint(1)", "EndPaint(1)"}));
    EXPECT_EQ(Prompt(), "Key is already taken!");
}

TEST_F(ControllerSetup, OtherMessagesOfThePromptAreLeftToTheLayer) {
    Command(1010);
    EXPECT_FALSE(setup.PromptMessage(kWmKeyDown, 'Q'));
    EXPECT_FALSE(setup.PromptMessage(kWmMouseMove, 0));
}

TEST_F(ControllerSetup, APromptThatCannotOpenLeavesTheShortcutsAlone) {
    windows.canCreate = false;
    Command(1010);
    EXPECT_EQ(windows.calls, (Texts{"CreateDialogWindow(Prompt)"}));
    EXPECT_FALSE(KeyUp('Q'));
    windows.canCreate = true;
    Command(1010);
    EXPECT_NE(setup.promptWindow, 0u);
}

TEST_F(ControllerSetup, ALayerThatReportsTheClosingWindowAtOnceEndsTheCaptureOnce) {
    windows.onCall = [this](const std::string& call) {
        if (call == "DestroyWindow(1)") setup.PromptMessage(kWmClose, 0);
    };
    Command(1010);
    KeyUp(27);
    EXPECT_EQ(windows.AcceleratorBalance(), 0);
    EXPECT_EQ(rollout.refreshes, 1);
}

TEST_F(ControllerSetup, EndingWithoutACaptureDoesNothing) {
    setup.EndCapture();
    EXPECT_TRUE(windows.calls.empty());
    EXPECT_EQ(rollout.refreshes, 0);
}

TEST_F(ControllerSetup, AnotherMasterObjectIsEditedOnceItIsGiven) {
    ControlParams other = ResetParams();
    setup.master = &other;
    Command(1010);
    KeyUp('Q');
    EXPECT_EQ(other.GetInt(MasterParam::CtrlKbdLeft), 'Q');
    EXPECT_TRUE(params.sets.empty());
}

// ---- The prompt's picture

TEST(DrawPrompt, AsksForAKeyInThisOrder) {
    RecordingCanvas canvas(225, 41);
    DrawPrompt(canvas, false);
    EXPECT_EQ(canvas.Texts(),
              (Texts{"SelectObject(DcPen)", "SelectObject(DcBrush)", "SelectObject(Tahoma14Bold)", "SetDcBrushColor(0x333333)",
                     "SetDcPenColor(0xC097)", "Rectangle(0, 0, 225, 41)", "SetTransparentBackground()", "SetTextColor(0xC097)",
                     "DrawTextLine(\"Press a key for the action\", 0, 0, 225, 26, 0x25)", "SetTextColor(0xC8C8C8)",
                     "SelectObject(Tahoma10)", "DrawTextLine(\"Press ESC to abort\", 0, 26, 225, 41, 0x25)"}));
}

TEST(DrawPrompt, ATakenKeyChangesTheTextAndItsColourOnly) {
    RecordingCanvas asked(225, 41), taken(225, 41);
    DrawPrompt(asked, false);
    DrawPrompt(taken, true);
    Texts wanted = asked.Texts();
    wanted[7] = "SetTextColor(0x180EE0)";
    wanted[8] = "DrawTextLine(\"Key is already taken!\", 0, 0, 225, 26, 0x25)";
    EXPECT_EQ(taken.Texts(), wanted);
}

TEST(DrawPrompt, FollowsTheSizeOfTheWindow) {
    RecordingCanvas canvas(400, 100);
    DrawPrompt(canvas, false);
    EXPECT_EQ(canvas.calls[5], CanvasCall(test::drawn::Rectangle{0, 0, 400, 100}));
    EXPECT_EQ(canvas.calls[8], CanvasCall(test::drawn::DrawTextLine{"Press a key for the action", 0, 0, 400, 85, 0x25}));
    EXPECT_EQ(canvas.calls[11], CanvasCall(test::drawn::DrawTextLine{"Press ESC to abort", 0, 85, 400, 100, 0x25}));
}

}  // namespace
}  // namespace tavrik
