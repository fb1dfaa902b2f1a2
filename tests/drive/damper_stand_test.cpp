#include "drive/damper_stand.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "drive/damper_drawing.h"
#include "drive/window_messages.h"
#include "tests/drive/recording_canvas.h"

namespace tavrik {
namespace {

using test::RecordingCanvas;

constexpr WindowId kDialog = 0x4711;

/// Of a scene in centimetres.
double MasterScale(std::int32_t unit) { return unit == 5 ? 0.01 : 1e9; }

class FakeBlock : public ParamBlock {
 public:
    std::map<std::int32_t, float> values = {{0, 40.0f}, {1, 1.0f}, {2, 50000.0f}, {3, 5000.0f}, {4, 0.0f},      {5, 0.0f},
                                            {6, 10.0f}, {7, 0.0f}, {8, 0.0f},     {9, 0.0f},    {10, 100000.0f}};
    std::vector<std::pair<std::int32_t, float>> writes;

    float GetFloat(std::int32_t id) const override { return values.at(id); }
    std::int32_t GetInt(std::int32_t id) const override { return std::int32_t(values.at(id)); }
    void SetFloat(std::int32_t id, float value) override {
        values[id] = value;
        writes.emplace_back(id, value);
    }
    void SetInt(std::int32_t id, std::int32_t value) override { SetFloat(id, float(value)); }
};

class FakeSpinner : public StandSpinner {
 public:
    std::int32_t control = 0;
    std::vector<std::string> calls;
    float value = 0.0f;
    bool released = false;

    void SetLimits(float low, float high) override {
        calls.push_back("SetLimits " + std::to_string(std::int32_t(low)) + ' ' + std::to_string(std::int32_t(high)));
    }
    void SetAutoScale(bool on) override { calls.push_back(on ? "SetAutoScale on" : "SetAutoScale off"); }
    void LinkToEdit(std::int32_t edit, EditType type) override {
        calls.push_back("LinkToEdit " + std::to_string(edit) + (type == EditType::Float ? " float" : " other"));
    }
    void SetValue(float v, bool notify) override {
        value = v;
        calls.push_back(notify ? "SetValue loud" : "SetValue quiet");
    }
    float GetFVal() override {
        EXPECT_FALSE(released);
        return value;
    }
};

/// Keeps only the calls of the latest picture.
class StandCanvas : public RecordingCanvas {
 public:
    void Erase() override {
        const std::vector<test::CanvasCall> head(calls.end() - 3, calls.end());
        calls = head;
        RecordingCanvas::Erase();
    }
};

/// A dialog without a screen: `script` plays the user, once the dialog is up.
class FakeLayer : public StandLayer {
 public:
    std::function<void(DamperStand&)> script;
    bool hasCanvas = true;
    bool hasDialog = true;
    std::int32_t resultWithoutEnd = -1;  // of a dialog that nobody ends

    std::vector<FakeSpinner> spinners = std::vector<FakeSpinner>(9);
    std::size_t spinnerCount = 0;
    StandCanvas canvas;
    std::int32_t dialogTemplate = 0, frameControl = 0;
    ColorRef background = 0xFFFFFF;
    std::thread::id dialogThread, passThread;
    std::vector<std::int32_t> sleeps;

    std::vector<std::string> Log() {
        const std::lock_guard lock(mutex_);
        return log_;
    }
    /// Waits until the stand has made `count` passes more.
    void WaitPasses(int count) {
        std::unique_lock lock(mutex_);
        const int wanted = passes_ + count;
        passed_.wait(lock, [&] { return passes_ >= wanted; });
    }
    int Passes() {
        const std::lock_guard lock(mutex_);
        return passes_;
    }
    FakeSpinner& Spinner(std::int32_t control) {
        for (FakeSpinner& spinner : spinners)
            if (spinner.control == control) return spinner;
        ADD_FAILURE() << control;
        return spinners[0];
    }

    std::int32_t RunDialog(std::int32_t which, DamperStand& stand) override {
        Note("RunDialog");
        dialogTemplate = which;
        spinnerCount = 0;
        for (FakeSpinner& spinner : spinners) spinner = {};
        dialogThread = std::this_thread::get_id();
        result_ = resultWithoutEnd;
        if (!hasDialog) return result_;
        EXPECT_TRUE(stand.HandleMessage(kDialog, kWmInitDialog, 0, 0));
        if (script) script(stand);
        return result_;
    }
    void EndDialog(WindowId dialog, std::int32_t result) override {
        EXPECT_EQ(dialog, kDialog);
        result_ = result;
        Note("EndDialog " + std::to_string(result));
    }
    void RegisterDlgWnd(WindowId) override { Note("Register"); }
    void UnRegisterDlgWnd(WindowId) override { Note("UnRegister"); }
    StandSpinner& GetISpinner(WindowId dialog, std::int32_t control) override {
        EXPECT_EQ(dialog, kDialog);
        FakeSpinner& spinner = spinners.at(spinnerCount++);
        spinner.control = control;
        Note("GetISpinner " + std::to_string(control));
        return spinner;
    }
    void ReleaseISpinner(StandSpinner& spinner) override {
        auto& mine = static_cast<FakeSpinner&>(spinner);
        EXPECT_FALSE(mine.released);
        mine.released = true;
        Note("ReleaseISpinner " + std::to_string(mine.control));
    }
    OffScreenCanvas* CreateIOffScreenBuf(WindowId, std::int32_t control, ColorRef color) override {
        Note("CreateIOffScreenBuf");
        frameControl = control;
        background = color;
        return hasCanvas ? &canvas : nullptr;
    }
    void DestroyIOffScreenBuf(OffScreenCanvas&) override { Note("DestroyIOffScreenBuf"); }
    void BeginPaint(WindowId) override { Note("BeginPaint"); }
    void EndPaint(WindowId) override { Note("EndPaint"); }
    void Sleep(std::int32_t milliseconds) override {
        {
            const std::lock_guard lock(mutex_);
            passThread = std::this_thread::get_id();
            sleeps.push_back(milliseconds);
            ++passes_;
        }
        passed_.notify_all();
        std::this_thread::sleep_for(std::chrono::microseconds(50));
    }

 private:
    void Note(std::string line) {
        const std::lock_guard lock(mutex_);
        log_.push_back(std::move(line));
    }

    std::mutex mutex_;
    std::condition_variable passed_;
    std::vector<std::string> log_;
    int passes_ = 0;
    std::int32_t result_ = 0;
};

class DamperStandTest : public ::testing::Test {
 protected:
    DamperStand stand{MasterScale};
    FakeBlock block;
    FakeLayer layer;

    void Open(std::function<void(DamperStand&)> script) {
        layer.script = std::move(script);
        stand.OpenStand(block, layer);
    }
    static bool Press(DamperStand& s, std::uint64_t button) { return s.HandleMessage(kDialog, kWmCommand, button, 0); }
    static void PressSetup(DamperStand& s) { EXPECT_TRUE(Press(s, 1014)); }
    static void PressCancel(DamperStand& s) { EXPECT_TRUE(Press(s, 1013)); }
};

// A new stand.

TEST_F(DamperStandTest, NewStandHasItsOwnFourSettingsAndIsClosed) {
    EXPECT_EQ(stand.mass, 400.0f);
    EXPECT_EQ(stand.knollRate, 1.0f);
    EXPECT_EQ(stand.holeRate, 1.0f);
    EXPECT_EQ(stand.gravity, 980.0f);
    EXPECT_EQ(stand.window, WindowId(0));
}

TEST_F(DamperStandTest, GravityIsNinePointEightMetresInSceneUnitsNarrowedOnce) {
    const DamperStand inches([](std::int32_t unit) { return unit == 5 ? 0.0254 : 0.0; });
    EXPECT_EQ(inches.gravity, float(9.8 / 0.0254));
    const DamperStand metres([](std::int32_t) { return 1.0; });
    EXPECT_EQ(metres.gravity, 9.8f);
}

// The dialog's rows.

struct ExpectedRow {
    std::int32_t spinner, edit;
    const char* label;
    std::atomic<float> DamperStand::*field;
    float low, high;
    const char* group;
};
const ExpectedRow kExpectedRows[] = {
    {1094, 1093, "Road Knoll Rate:", &DamperStand::knollRate, 0, 10, "Running-in Stand Setting"},
    {1096, 1095, "Road Hole Rate:", &DamperStand::holeRate, 0, 10, "Running-in Stand Setting"},
    {1090, 1089, "Mass per Damper:", &DamperStand::mass, 0, 10000000, "Running-in Stand Setting"},
    {1112, 1111, "Gravity:", &DamperStand::gravity, 0, 1000000, "Running-in Stand Setting"},
    {1114, 1113, "Rigidity Factor:", &DamperStand::rigidityFactor, 0, 1000000, "Damper Setting"},
    {1092, 1091, "Spring Rigidity:", &DamperStand::springRigidity, 0, 1000000, "Damper Setting"},
    {1036, 1035, "Oil Damping:", &DamperStand::oilDamping, 0, 1000000, "Damper Setting"},
    {1042, 1041, "Damper Shift:", &DamperStand::damperShift, -1000000, 1000000, "Damper Setting"},
    {1044, 1043, "Buffer Rigidity:", &DamperStand::bufferRigidity, 0, 1000000, "Damper Setting"},
};

class StandRowTest : public DamperStandTest, public ::testing::WithParamInterface<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(Rows, StandRowTest, ::testing::Range(std::size_t(0), std::size_t(9)));

TEST_P(StandRowTest, RowHasItsControlsLabelFieldLimitsAndGroup) {
    const StandRow& row = StandRows()[GetParam()];
    const ExpectedRow& expected = kExpectedRows[GetParam()];
    EXPECT_EQ(row.spinner, expected.spinner);
    EXPECT_EQ(row.edit, expected.edit);
    EXPECT_EQ(row.label, expected.label);
    EXPECT_EQ(row.field, expected.field);
    EXPECT_EQ(row.low, expected.low);
    EXPECT_EQ(row.high, expected.high);
    EXPECT_EQ(row.group, expected.group);
}

TEST_P(StandRowTest, SpinnerIsSetUpQuietlyWithLimitsStepEditAndValue) {
    const ExpectedRow& row = kExpectedRows[GetParam()];
    Open([&](DamperStand& s) {
        const FakeSpinner& spinner = layer.spinners[GetParam()];
        EXPECT_EQ(spinner.control, row.spinner);
        const std::vector<std::string> calls = {
            "SetLimits " + std::to_string(std::int32_t(row.low)) + ' ' + std::to_string(std::int32_t(row.high)),
            "SetAutoScale on", "LinkToEdit " + std::to_string(row.edit) + " float", "SetValue quiet"};
        EXPECT_EQ(spinner.calls, calls);
        EXPECT_EQ(spinner.value, s.*row.field);
        EXPECT_EQ(s.spinners[GetParam()], &spinner);
        PressCancel(s);
    });
}

TEST_P(StandRowTest, ReleasedSpinnerSetsTheField) {
    const ExpectedRow& row = kExpectedRows[GetParam()];
    Open([&](DamperStand& s) {
        layer.Spinner(row.spinner).value = 7.5f;
        EXPECT_TRUE(s.HandleMessage(kDialog, 1626, std::uint64_t(row.spinner), 0));
        EXPECT_EQ(s.*row.field, 7.5f);
        PressCancel(s);
    });
}

TEST_P(StandRowTest, EnterInTheEditFieldSetsTheField) {
    const ExpectedRow& row = kExpectedRows[GetParam()];
    Open([&](DamperStand& s) {
        layer.Spinner(row.spinner).value = 2.25f;
        EXPECT_TRUE(s.HandleMessage(kDialog, 1709, std::uint64_t(row.edit), 0));
        EXPECT_EQ(s.*row.field, 2.25f);
        PressCancel(s);
    });
}

TEST_P(StandRowTest, MessageOfOneRowLeavesTheOthersAlone) {
    const ExpectedRow& row = kExpectedRows[GetParam()];
    Open([&](DamperStand& s) {
        std::vector<float> before;
        for (const ExpectedRow& other : kExpectedRows) before.push_back(s.*other.field);
        for (FakeSpinner& spinner : layer.spinners) spinner.value = 3.0f;
        s.HandleMessage(kDialog, 1626, std::uint64_t(row.edit), 0);
        for (std::size_t i = 0; i < 9; ++i) EXPECT_EQ(s.*kExpectedRows[i].field, i == GetParam() ? 3.0f : before[i]) << i;
        PressCancel(s);
    });
}

// Opening.

TEST_F(DamperStandTest, OpeningReadsFiveSettingsAndTheSizeOfTheSuspension) {
    block.values = {{0, 37.0f}, {1, 1.5f}, {2, 40000.0f}, {3, 3000.0f}, {6, -4.0f}, {10, 90000.0f}};
    Open([](DamperStand& s) {
        EXPECT_EQ(s.rigidityFactor, 1.5f);
        EXPECT_EQ(s.springRigidity, 40000.0f);
        EXPECT_EQ(s.oilDamping, 3000.0f);
        EXPECT_EQ(s.damperShift, -4.0f);
        EXPECT_EQ(s.bufferRigidity, 90000.0f);
        EXPECT_EQ(s.sizeScale, 37.0f * 0.3f);
        PressCancel(s);
    });
}

TEST_F(DamperStandTest, SizeIsScaledInSinglePrecision) {
    block.values[0] = 50.0f;  // in double precision the product would round to 15
    Open([](DamperStand& s) {
        EXPECT_EQ(s.sizeScale, 0x1.e00002p+3f);
        PressCancel(s);
    });
}

TEST_F(DamperStandTest, OpeningRunsTheDialogAndSetsItUpInOrder) {
    Open([&](DamperStand& s) {
        EXPECT_EQ(s.window, kDialog);
        EXPECT_EQ(s.pblock, &block);
        EXPECT_EQ(s.core, &layer);
        EXPECT_EQ(s.offscreen, &layer.canvas);
        const std::vector<std::string> expected = {"RunDialog",        "Register",         "GetISpinner 1094",
                                                   "GetISpinner 1096", "GetISpinner 1090", "GetISpinner 1112",
                                                   "GetISpinner 1114", "GetISpinner 1092", "GetISpinner 1036",
                                                   "GetISpinner 1042", "GetISpinner 1044", "CreateIOffScreenBuf"};
        EXPECT_EQ(layer.Log(), expected);
        PressCancel(s);
    });
    EXPECT_EQ(layer.dialogTemplate, 128);
    EXPECT_EQ(layer.frameControl, 1115);
    EXPECT_EQ(layer.background, 0u);
}

TEST_F(DamperStandTest, OpeningWhileOpenDoesNothing) {
    FakeBlock other;
    FakeLayer otherLayer;
    Open([&](DamperStand& s) {
        s.OpenStand(other, otherLayer);
        EXPECT_EQ(s.pblock, &block);
        PressCancel(s);
    });
    EXPECT_TRUE(otherLayer.Log().empty());
    EXPECT_TRUE(other.writes.empty());
}

TEST_F(DamperStandTest, OpeningFromWithinAClosingDialogDoesNothing) {
    FakeLayer otherLayer;
    Open([&](DamperStand& s) {
        PressSetup(s);
        s.OpenStand(block, otherLayer);  // the dialog's loop is still on its way out
    });
    EXPECT_TRUE(otherLayer.Log().empty());
    EXPECT_EQ(block.writes.size(), 5u);
}

TEST_F(DamperStandTest, EachOpeningStartsFromRestOnAnEmptyRoad) {
    stand.knollRate = 10.0f;
    Open([&](DamperStand& s) {
        layer.WaitPasses(20);
        PressCancel(s);
    });
    EXPECT_NE(stand.model.bodyHeight, 0.0);
    layer.hasDialog = false;
    stand.OpenStand(block, layer);
    EXPECT_EQ(stand.model.bodyHeight, 0.0);
    EXPECT_EQ(stand.model.bodyVelocity, 0.0);
    EXPECT_EQ(stand.model.damperTravel, 0.0);
    for (const double height : stand.model.history) ASSERT_EQ(height, 0.0);
    for (const RoadBump& bump : stand.model.bumps) ASSERT_EQ(bump.position, 2.0);
}

TEST_F(DamperStandTest, EachOpeningDrawsTheSameRoad) {
    stand.knollRate = stand.holeRate = 10.0f;
    const auto script = [&](DamperStand& s) {
        layer.WaitPasses(20);
        PressCancel(s);
    };
    Open(script);
    const auto place = [&](int passes) { return stand.model.bumps[0].position - 0.033 * passes; };
    const double first = place(layer.Passes());
    const int before = layer.Passes();
    Open(script);
    EXPECT_NEAR(place(layer.Passes() - before), first, 1e-12);
}

TEST_F(DamperStandTest, OwnFourSettingsOutliveADialogAndTheOtherFiveDoNot) {
    Open([&](DamperStand& s) {
        for (FakeSpinner& spinner : layer.spinners) spinner.value = 6.0f;
        for (const ExpectedRow& row : kExpectedRows) s.HandleMessage(kDialog, 1626, std::uint64_t(row.spinner), 0);
        PressCancel(s);
    });
    Open([&](DamperStand& s) {
        EXPECT_EQ(s.mass, 6.0f);
        EXPECT_EQ(s.knollRate, 6.0f);
        EXPECT_EQ(s.holeRate, 6.0f);
        EXPECT_EQ(s.gravity, 6.0f);
        EXPECT_EQ(s.rigidityFactor, 1.0f);
        EXPECT_EQ(s.springRigidity, 50000.0f);
        EXPECT_EQ(s.oilDamping, 5000.0f);
        EXPECT_EQ(s.damperShift, 10.0f);
        EXPECT_EQ(s.bufferRigidity, 100000.0f);
        PressCancel(s);
    });
}

TEST_F(DamperStandTest, DialogThatCannotBeMadeChangesNothing) {
    layer.hasDialog = false;
    stand.OpenStand(block, layer);
    EXPECT_TRUE(block.writes.empty());
    EXPECT_EQ(stand.window, WindowId(0));
    EXPECT_EQ(layer.Passes(), 0);
}

// Closing.

TEST_F(DamperStandTest, SetupWritesFiveParametersInOrderAndNothingElse) {
    Open([&](DamperStand& s) { PressSetup(s); });
    const std::vector<std::pair<std::int32_t, float>> expected = {
        {1, 1.0f}, {2, 50000.0f}, {3, 5000.0f}, {6, 10.0f}, {10, 100000.0f}};
    EXPECT_EQ(block.writes, expected);
}

TEST_F(DamperStandTest, SetupWritesWhatWasSetDuringTheRun) {
    Open([&](DamperStand& s) {
        float value = 1.0f;
        for (const ExpectedRow& row : kExpectedRows) {
            layer.WaitPasses(1);
            layer.Spinner(row.spinner).value = value++;
            s.HandleMessage(kDialog, 1709, std::uint64_t(row.edit), 0);
        }
        PressSetup(s);
    });
    const std::vector<std::pair<std::int32_t, float>> expected = {{1, 5.0f}, {2, 6.0f}, {3, 7.0f}, {6, 8.0f}, {10, 9.0f}};
    EXPECT_EQ(block.writes, expected);
}

TEST_F(DamperStandTest, SpinnerThatIsStillDraggedIsNotWritten) {
    Open([&](DamperStand& s) {
        layer.Spinner(1092).value = 1.0f;
        PressSetup(s);
    });
    EXPECT_EQ(block.values[2], 50000.0f);
}

TEST_F(DamperStandTest, ValueBeyondTheLimitsIsWrittenBackAsItWasRead) {
    block.values[2] = 5e9f;
    Open([&](DamperStand& s) { PressSetup(s); });
    EXPECT_EQ(block.values[2], 5e9f);
}

TEST_F(DamperStandTest, CancelChangesNoParameter) {
    Open([&](DamperStand& s) {
        layer.Spinner(1092).value = 1.0f;
        s.HandleMessage(kDialog, 1626, 1092, 0);
        PressCancel(s);
    });
    EXPECT_TRUE(block.writes.empty());
    EXPECT_EQ(layer.Log().back(), "EndDialog 0");
}

TEST_F(DamperStandTest, CloseOfTheWindowIsACancel) {
    Open([&](DamperStand& s) { EXPECT_TRUE(s.HandleMessage(kDialog, kWmClose, 0, 0)); });
    EXPECT_TRUE(block.writes.empty());
    EXPECT_EQ(layer.Log().back(), "EndDialog 0");
}

TEST_F(DamperStandTest, ClosingReleasesAllAndLetsTheThreadEndBeforeTheDialog) {
    Open([&](DamperStand& s) {
        layer.WaitPasses(2);
        PressSetup(s);
        EXPECT_EQ(s.window, WindowId(0));
        for (const StandSpinner* spinner : s.spinners) EXPECT_EQ(spinner, nullptr);
    });
    const auto log = layer.Log();
    const std::vector<std::string> expected = {"ReleaseISpinner 1094", "ReleaseISpinner 1096", "ReleaseISpinner 1090",
                                               "ReleaseISpinner 1112", "ReleaseISpinner 1114", "ReleaseISpinner 1092",
                                               "ReleaseISpinner 1036", "ReleaseISpinner 1042", "ReleaseISpinner 1044",
                                               "UnRegister",           "DestroyIOffScreenBuf", "EndDialog 1"};
    ASSERT_EQ(log.size(), 24u);
    EXPECT_EQ(std::vector<std::string>(log.begin() + 12, log.end()), expected);
}

TEST_F(DamperStandTest, NoPassIsMadeOnceTheDialogIsClosed) {
    int passes = 0;
    Open([&](DamperStand& s) {
        layer.WaitPasses(3);
        PressCancel(s);
        passes = layer.Passes();
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(layer.Passes(), passes);
}

TEST_F(DamperStandTest, DialogTakenDownWithoutAWordLeavesTheStandClosed) {
    Open([&](DamperStand&) { layer.WaitPasses(2); });
    EXPECT_EQ(stand.window, WindowId(0));
    EXPECT_EQ(layer.Log().back(), "DestroyIOffScreenBuf");
    EXPECT_TRUE(block.writes.empty());
}

TEST_F(DamperStandTest, StandCanBeOpenedAgainAtOnceManyTimes) {
    stand.knollRate = stand.holeRate = 10.0f;
    for (int i = 0; i < 50; ++i) {
        Open([&](DamperStand& s) {
            if (i % 2) layer.WaitPasses(1);
            layer.Spinner(1090).value = float(100 + i);
            s.HandleMessage(kDialog, 1626, 1090, 0);
            if (i % 3) {
                PressSetup(s);
            } else {
                PressCancel(s);
            }
        });
        ASSERT_EQ(stand.window, WindowId(0));
        ASSERT_EQ(stand.mass, float(100 + i));
    }
}

// Messages.

TEST_F(DamperStandTest, PaintDrawsNothingItself) {
    Open([&](DamperStand& s) {
        EXPECT_TRUE(s.HandleMessage(kDialog, kWmPaint, 0, 0));
        const auto log = layer.Log();
        EXPECT_EQ(log[log.size() - 2], "BeginPaint");
        EXPECT_EQ(log.back(), "EndPaint");
        PressCancel(s);
    });
}

TEST_F(DamperStandTest, MessageOfAnUnknownControlIsNotHandled) {
    Open([&](DamperStand& s) {
        EXPECT_FALSE(s.HandleMessage(kDialog, 1626, 1115, 0));
        EXPECT_FALSE(s.HandleMessage(kDialog, 1709, 0, 0));
        EXPECT_FALSE(Press(s, 2));
        EXPECT_FALSE(Press(s, 1094));
        EXPECT_FALSE(s.HandleMessage(kDialog, kWmTimer, 1, 0));
        EXPECT_FALSE(s.HandleMessage(kDialog + 1, kWmClose, 0, 0));
        EXPECT_EQ(s.window, kDialog);
        PressCancel(s);
    });
}

TEST_F(DamperStandTest, ControlIsTheLowWordOfTheParameter) {
    Open([&](DamperStand& s) {
        layer.Spinner(1112).value = 12.0f;
        EXPECT_TRUE(s.HandleMessage(kDialog, 1626, 0xABCD0000u | 1112u, 99));
        EXPECT_EQ(s.gravity, 12.0f);
        EXPECT_TRUE(Press(s, 0x00010000u | 1014u));
    });
    EXPECT_EQ(block.writes.size(), 5u);
}

TEST_F(DamperStandTest, MessagesBeforeAndAfterTheDialogAreNotHandled) {
    EXPECT_FALSE(stand.HandleMessage(kDialog, kWmInitDialog, 0, 0));
    EXPECT_FALSE(Press(stand, 1014));
    Open([&](DamperStand& s) {
        EXPECT_FALSE(s.HandleMessage(kDialog, kWmInitDialog, 0, 0)) << "it is up already";
        PressSetup(s);
        EXPECT_FALSE(s.HandleMessage(kDialog, 1626, 1094, 0));
        EXPECT_FALSE(Press(s, 1013));
    });
    EXPECT_EQ(block.writes.size(), 5u) << "a late press of \"Cancel\" must not take \"Setup\" back";
    EXPECT_FALSE(Press(stand, 1014));
}

// The thread.

TEST_F(DamperStandTest, ThreadOfItsOwnDrawsSimulatesAndSleepsThirtyThreeMilliseconds) {
    Open([&](DamperStand& s) {
        layer.WaitPasses(5);
        PressCancel(s);
    });
    EXPECT_NE(layer.passThread, layer.dialogThread);
    for (const std::int32_t milliseconds : layer.sleeps) EXPECT_EQ(milliseconds, 33);
    EXPECT_NE(stand.model.history[0], 0.0);
}

TEST_F(DamperStandTest, PassDrawsBeforeItSimulates) {
    Open([&](DamperStand& s) {
        layer.WaitPasses(1);
        PressCancel(s);  // however soon it ends, its pictures are one behind the model
    });
    DamperModel model;
    RandomStream random(1000);
    RecordingCanvas expected;
    ASSERT_GT(layer.Passes(), 0);
    for (int i = 0; i < layer.Passes(); ++i) {
        expected.calls.clear();
        DrawStand(model, expected);
        StandStep(model, stand.Settings(), random);
    }
    EXPECT_EQ(layer.canvas.calls, expected.calls);
}

TEST_F(DamperStandTest, ThreadRunsTheSameModelAsThePassesAlone) {
    stand.knollRate = stand.holeRate = 10.0f;
    Open([&](DamperStand& s) {
        layer.WaitPasses(100);
        PressCancel(s);
    });
    DamperModel model;
    RandomStream random(1000);
    for (int i = 0; i < layer.Passes(); ++i) StandStep(model, stand.Settings(), random);
    EXPECT_EQ(stand.model.history, model.history);
    EXPECT_EQ(stand.model.damperTravel, model.damperTravel);
}

TEST_F(DamperStandTest, FedNumbersLayTheRoad) {
    const double sequence[] = {0.0, 0.5, 0.9};  // a knoll with each pass, no hole
    stand.random.Feed(sequence);
    Open([&](DamperStand& s) {
        layer.WaitPasses(3);
        PressCancel(s);
    });
    for (int i = 0; i < std::min(layer.Passes(), 100); ++i) {
        EXPECT_EQ(stand.model.bumps[std::size_t(i)].amplitude, 1.0);
        EXPECT_NEAR(stand.model.bumps[std::size_t(i)].position, -2.0 - 0.033 * 0.5 + 0.033 * (layer.Passes() - 1 - i), 1e-12);
    }
}

TEST_F(DamperStandTest, SettingChangedDuringTheRunReachesTheModel) {
    stand.knollRate = stand.holeRate = 0.0f;
    stand.gravity = 0.0f;
    block.values[6] = 0.0f;
    Open([&](DamperStand& s) {
        layer.WaitPasses(3);
        layer.Spinner(1112).value = 980.0f;
        s.HandleMessage(kDialog, 1626, 1112, 0);
        layer.WaitPasses(3);
        PressCancel(s);
    });
    EXPECT_LT(stand.model.bodyHeight, 0.0);
}

TEST_F(DamperStandTest, SuspensionWithoutLengthRunsToInfinityAndCloses) {
    block.values[0] = 0.0f;
    Open([&](DamperStand& s) {
        layer.WaitPasses(5);
        PressSetup(s);
    });
    EXPECT_EQ(stand.sizeScale, 0.0f);
    EXPECT_FALSE(std::isfinite(stand.model.bodyHeight));
    EXPECT_EQ(block.writes.size(), 5u);
}

TEST_F(DamperStandTest, StandWithoutAPictureStillRuns) {
    layer.hasCanvas = false;
    Open([&](DamperStand& s) {
        layer.WaitPasses(3);
        PressSetup(s);
    });
    EXPECT_NE(stand.model.history[0], 0.0);
    EXPECT_EQ(block.writes.size(), 5u);
    EXPECT_TRUE(layer.canvas.calls.empty());
}

}  // namespace
}  // namespace tavrik
