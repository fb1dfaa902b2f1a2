// The controls of every panel as a user works them: what can be typed, which limits hold, and what it does.

#include <cmath>
#include <utility>

#include "drive/null_canvas.h"
#include "host/sdk/desktop.h"
#include "host/sdk/imtl.h"
#include "host/sdk/param_block.h"
#include "host/sdk/picking.h"
#include "host/sdk/pickmode.h"
#include "host/sdk/texture_maps.h"
#include "tests/plugin/golden_blocks.h"
#include "tests/plugin/open_panel.h"

namespace plugin_test {
namespace {

class PluginPanelControls : public PluginPanel {};

// ------------------------------------------------------------------------------------------------------ parameters and limits

std::wstring ClassNameOf(Class_ID id) {
    for (const GoldenBlock& golden : GoldenBlocks()) {
        if (golden.id == id) return golden.className;
    }
    return L"";
}

TEST_F(PluginPanelControls, EveryParameterWithAControlIsShownByItWithItsLimits) {
    for (const Class_ID id : kHelperClasses) {
        Open(id);
        const GoldenBlock& golden = GoldenBlockOf(ClassNameOf(id).c_str());
        for (const GoldenParam& param : golden.params) {
            if (param.control.kind == Kind::None) continue;
            for (int entry = 0; entry < param.entries; ++entry) {
                SCOPED_TRACE(testing::Message() << golden.className << ' ' << param.name << ' ' << entry);
                const bool isSpinner = param.control.kind == Kind::Spinner;
                const int number = param.control.ids[std::size_t(isSpinner ? 2 * entry + 1 : 0)];
                const PanelControl control = Control(number, MapID(param.control.map));
                ASSERT_TRUE(control.param);
                EXPECT_EQ(*control.param, param.id);
                EXPECT_EQ(control.paramName, param.name);
                EXPECT_EQ(control.entry, entry);
                if (!isSpinner) continue;
                EXPECT_EQ(control.edit, param.control.ids[std::size_t(2 * entry)]);
                const bool isFloat = param.type == 0 || (param.type & 0xff) == 7;
                EXPECT_EQ(control.low, isFloat ? double(float(*param.low)) : *param.low);
                EXPECT_EQ(control.high, isFloat ? double(float(*param.high)) : *param.high);
                EXPECT_EQ(control.scale, param.control.scale);
                EXPECT_EQ(int(control.editType), param.control.edit);
                EXPECT_EQ(control.value, isFloat ? double(float(*param.byDefault)) : *param.byDefault);
            }
        }
    }
}

TEST_F(PluginPanelControls, WhatIsTypedComesToLieWithinTheLimits) {
    for (const Class_ID id : kHelperClasses) {
        INode& node = Open(id);
        for (const PanelPage& page : ReadPanel()) {
            for (const PanelControl& control : page.controls) {
                if (control.kind != ControlKind::Spinner) continue;
                SCOPED_TRACE(testing::Message() << Narrow(control.paramName) << ' ' << control.id);
                // By the edit field: a spinner may be greyed.
                ASSERT_TRUE(SetControl(*page.window, control.edit, 1e30));
                EXPECT_EQ(ReadControl(*page.window, control.id)->value, control.high);
                ASSERT_TRUE(SetControl(*page.window, control.edit, -1e30));
                EXPECT_EQ(ReadControl(*page.window, control.id)->value, control.low);
                EXPECT_FALSE(SetControl(*page.window, control.edit, std::nan("")));
                EXPECT_EQ(ReadControl(*page.window, control.id)->value, control.low);
            }
        }
        EXPECT_EQ(tavrik_host::PanelNode(), &node);
    }
}

TEST_F(PluginPanelControls, UnitsTellWhatANumberStandsFor) {
    Open(kMasterClass);
    EXPECT_EQ(Control(1097, kCarSetup).unit, UnitKind::Length);
    EXPECT_EQ(Control(1081, kDriving).unit, UnitKind::Angle);
    EXPECT_EQ(Control(1089, kDriving).unit, UnitKind::Time);
    EXPECT_EQ(Control(1079, kDriving).unit, UnitKind::Plain);
    Open(kSuspensionClass);
    EXPECT_EQ(Control(1099).unit, UnitKind::Length);
    EXPECT_EQ(Control(1104).unit, UnitKind::Plain);  // a length, shown as a plain number
}

TEST_F(PluginPanelControls, TypedNumbersReachTheParameter) {
    INode& node = Open(kChassisClass);
    EXPECT_TRUE(SetControl(Page(), 1088, 81.5));
    EXPECT_EQ(FloatOf(node, 0), 81.5f);
    INode& master = Open(kMasterClass);
    EXPECT_TRUE(SetControl(Page(kCarSetup), 1101, 33));
    EXPECT_EQ(FloatOf(master, 0, 0), 20.0f);
    EXPECT_EQ(FloatOf(master, 0, 2), 33.0f);
}

TEST_F(PluginPanelControls, WholeNumbersTakeTheNearest) {
    INode& node = Open(kMasterClass);
    EXPECT_TRUE(SetControl(Page(kAnimation), 1034, 7.6));
    EXPECT_EQ(IntOf(node, kFrameStep), 8);
    EXPECT_TRUE(SetControl(Page(kDriving), 1089, 1234.4));
    EXPECT_EQ(IntOf(node, 13), 1234);
}

TEST_F(PluginPanelControls, ArrowsMoveByTheSpinnersScale) {
    INode& push = Open(kPushClass);
    EXPECT_TRUE(SpinControl(Page(), 1131, 3));
    EXPECT_EQ(IntOf(push, 3), 4060);
    INode& chassis = Open(kChassisClass);
    EXPECT_TRUE(SpinControl(Page(), 1090, -2));
    EXPECT_EQ(FloatOf(chassis, 3), 800.0f);
    INode& master = Open(kMasterClass);
    EXPECT_TRUE(SpinControl(Page(kDriving), 1089, 1));
    EXPECT_EQ(IntOf(master, 13), 4960);
    EXPECT_TRUE(SpinControl(Page(kAnimation), 1034, -100));
    EXPECT_EQ(IntOf(master, kFrameStep), 2);
    EXPECT_FALSE(SpinControl(Page(kAnimation), 1033, 1));  // an edit field has no arrows
}

TEST_F(PluginPanelControls, SizesBelowTheirLimitsShowUntilSomebodyTypes) {
    INode& push = Open(kPushClass);
    EXPECT_EQ(ValueOf(1103), 0.0);
    EXPECT_EQ(FloatOf(push, 0), 0.0f);
    EXPECT_TRUE(SetControl(Page(), 1103, 0.0));
    EXPECT_EQ(FloatOf(push, 0), 0.0001f);
    Open(kStartClass);
    EXPECT_EQ(ValueOf(1064), 0.0);
}

TEST_F(PluginPanelControls, AnimatedNumbersShowAndTakeKeysAtTheCurrentTime) {
    INode& push = Open(kPushClass);
    ASSERT_TRUE(dynamic_cast<tavrik_host::ParamBlock&>(BlockOf(push)).SetKeys(5, {{0, 0.0f}, {1600, 100.0f}}));
    EXPECT_TRUE(SetControl(Page(), 1122, 1));
    GetCOREInterface()->SetTime(800);
    EXPECT_TRUE(Control(1102).isAnimated);
    EXPECT_EQ(ValueOf(1102), 50.0);
    EXPECT_TRUE(SetControl(Page(), 1102, 80.0));
    EXPECT_EQ(ValueOf(1102), 80.0);
    GetCOREInterface()->SetTime(1600);
    EXPECT_EQ(ValueOf(1102), 100.0);
    EXPECT_FALSE(Control(1101).isAnimated);
}

TEST_F(PluginPanelControls, NothingElseTakesANumber) {
    Open(kMasterClass);
    EXPECT_FALSE(SetControl(Page(kCarSetup), 1102, 1.0));
    EXPECT_FALSE(SetControl(Page(kParameters), 1022, 1.0));
    EXPECT_FALSE(SetControl(Page(kParameters), 4711, 1.0));
    EXPECT_FALSE(SetControl(Page(kDriving), 1125, 1.0));
    EXPECT_FALSE(SetControl(Page(kDriving), 1124, 2.0));
    EXPECT_FALSE(SetControl(Page(kDriving), 1086, 4.0));
    EXPECT_FALSE(SetControl(Page(kDriving), 1086, 0.5));
    EXPECT_FALSE(SetControl(Page(kDriving), 1086, -1.0));
}

// ---------------------------------------------------------------------------------------------------------- buttons and
// choices

TEST_F(PluginPanelControls, TickingBikeDrivingEnablesItsBalance) {
    INode& master = Open(kMasterClass);
    EXPECT_FALSE(Control(1095, kDriving).enabled);
    EXPECT_FALSE(Control(1095, kDriving).labelEnabled);
    EXPECT_TRUE(Control(1095, kDriving).editEnabled);
    EXPECT_FALSE(SetControl(Page(kDriving), 1095, 5.0));
    EXPECT_TRUE(ClickControl(Page(kDriving), 1124));
    EXPECT_EQ(IntOf(master, 16), 1);
    EXPECT_TRUE(Control(1095, kDriving).enabled);
    EXPECT_TRUE(Control(1095, kDriving).labelEnabled);
    EXPECT_TRUE(SetControl(Page(kDriving), 1095, 5.0));
    EXPECT_EQ(FloatOf(master, 17), 5.0f);
    EXPECT_TRUE(SetControl(Page(kDriving), 1124, 0));
    EXPECT_EQ(IntOf(master, 16), 0);
    EXPECT_FALSE(Control(1095, kDriving).enabled);
}

TEST_F(PluginPanelControls, RadioButtonsChooseTheDevice) {
    INode& master = Open(kMasterClass);
    EXPECT_EQ(ValueOf(1086, kDriving), 1.0);
    const int kButtons[] = {1086, 1087, 1090, 1091};
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(ClickControl(Page(kDriving), kButtons[i]));
        EXPECT_EQ(IntOf(master, kDrivingType), i);
        EXPECT_EQ(ValueOf(kButtons[i], kDriving), i);
    }
}

TEST_F(PluginPanelControls, ThePushesKindEnablesWhatItReads) {
    INode& push = Open(kPushClass);
    const auto expect = [](bool single) {
        for (const int control : {1131, 1100}) {
            EXPECT_EQ(Control(control).enabled, single) << control;
            EXPECT_EQ(Control(control).labelEnabled, single) << control;
        }
        EXPECT_EQ(Control(1102).enabled, !single);
        EXPECT_EQ(Control(1102).labelEnabled, !single);
        for (const int control : {1103, 1101, 1122, 1063}) EXPECT_TRUE(Control(control).enabled) << control;
    };
    expect(true);
    EXPECT_TRUE(ClickControl(Page(), 1123));
    EXPECT_EQ(IntOf(push, 1), 1);
    expect(false);
    tavrik_host::ClosePanel();
    tavrik_host::OpenPanel(push);
    expect(false);
    EXPECT_TRUE(SetControl(Page(), 1122, 0));
    expect(true);
}

TEST_F(PluginPanelControls, APresetShowsOnTheSpinners) {
    INode& suspension = Open(kSuspensionClass);
    EXPECT_EQ(ValueOf(1110), -1.0);
    EXPECT_TRUE(SetControl(Page(), 1110, 3));
    EXPECT_EQ(ValueOf(1110), 3.0);
    EXPECT_EQ(ValueOf(1114), 2.0);
    EXPECT_EQ(FloatOf(suspension, 10), 150000.0f);
    EXPECT_FALSE(SetControl(Page(), 1110, 4));
    EXPECT_TRUE(SetControl(Page(), 1110, 1));
    EXPECT_EQ(FloatOf(suspension, 10), 100000.0f);
}

TEST_F(PluginPanelControls, BindingButtonsShowTheirKeysAndCombosTheirChoices) {
    Open(kMasterClass);
    EXPECT_EQ(Control(2000, kControllers).text, L"W");
    EXPECT_EQ(Control(2000, kControllers).label, L"Throttle:");
    EXPECT_EQ(ValueOf(1137, kControllers), 1.0);
    EXPECT_TRUE(SetControl(Page(kControllers), 1137, 0));
    for (const int combo : {1138, 1139, 1140}) {
        EXPECT_FALSE(Control(combo, kControllers).enabled) << combo;
        EXPECT_FALSE(Control(combo, kControllers).labelEnabled) << combo;
        EXPECT_FALSE(SetControl(Page(kControllers), combo, 1)) << combo;
    }
    EXPECT_TRUE(Control(1137, kControllers).enabled);
}

TEST_F(PluginPanelControls, AClickOnABindingAsksForAKey) {
    INode& master = Open(kMasterClass);
    EXPECT_TRUE(ClickControl(Page(kControllers), 1010));
    ASSERT_TRUE(windows.IsOpen());
    KeyUp('K');
    EXPECT_EQ(IntOf(master, 19), 'K');
    EXPECT_EQ(Control(1010, kControllers).text, L"K");
}

TEST_F(PluginPanelControls, AMissingChassisIsToldInAMessageBox) {
    Open(kMasterClass);
    EXPECT_TRUE(ClickControl(Page(kCarSetup), kLock));
    EXPECT_EQ(windows.messages, std::vector<std::string>{"Can't find Chassis Object."});
}

/// Message boxes with all that they say; nothing else opens.
class Boxes final : public tavrik::WindowLayer {
 public:
    std::string text, title;
    std::uint32_t flags = 0;

    void ShowMessageBox(tavrik::WindowId, std::string_view what, std::string_view above, std::uint32_t how) override {
        text = what;
        title = above;
        flags = how;
    }
    tavrik::WindowId CreateDialogWindow(tavrik::WindowKind, tavrik::WindowMessages&) override { return 0; }
    void DestroyWindow(tavrik::WindowId) override {}
    void RegisterDlgWnd(tavrik::WindowId) override {}
    void UnRegisterDlgWnd(tavrik::WindowId) override {}
    void SetAlpha(tavrik::WindowId, std::uint8_t) override {}
    void SetCapture(tavrik::WindowId) override {}
    void ReleaseCapture() override {}
    void SetTimer(tavrik::WindowId, std::uint32_t, std::uint32_t) override {}
    void KillTimer(tavrik::WindowId, std::uint32_t) override {}
    void BeginDrag(tavrik::WindowId) override {}
    tavrik::Canvas& GetDC(tavrik::WindowId) override { return canvas_; }
    void ReleaseDC(tavrik::WindowId) override {}
    tavrik::Canvas& BeginPaint(tavrik::WindowId) override { return canvas_; }
    void EndPaint(tavrik::WindowId) override {}
    void DisableAccelerators() override {}
    void EnableAccelerators() override {}

 private:
    tavrik::NullCanvas canvas_;
};

TEST_F(PluginPanelControls, MessagesStandUnderTheProductsNameWithTheStopIcon) {
    Boxes boxes;
    tavrik::TheDesktop().windows = &boxes;
    Open(kMasterClass);
    ClickControl(Page(kCarSetup), kLock);
    EXPECT_EQ(boxes.text, "Can't find Chassis Object.");
    EXPECT_EQ(boxes.title, "Tavrik");
    EXPECT_EQ(boxes.flags, 16u);
    boxes.text.clear();
    ClickControl(Page(kAnimation), kResetAnimation);
    EXPECT_EQ(boxes.text, "");
    tavrik_host::ClosePanel();
    tavrik::TheDesktop().windows = &windows;
}

TEST_F(PluginPanelControls, AKeysValueIsFreeForAPad) {
    INode& master = Open(kMasterClass);
    pad.plugged = true;
    ClickControl(Page(kControllers), 1016);
    pad.state.wButtons = 32;  // of a key: the space bar
    windows.Send(0x0113, 1, 0);
    EXPECT_FALSE(windows.IsOpen());
    EXPECT_EQ(IntOf(master, 25), 32);
    EXPECT_EQ(Control(1016, kControllers).text, L"32");
}

TEST_F(PluginPanelControls, WhateverFlagsTheHostOpensAPanelWithItIsTheSame) {
    INode& push = AddNode(kPushClass, Matrix3(TRUE));
    for (const ULONG flags : {0u, 1u, 0xffffffffu}) {
        push.GetObjectRef()->BeginEditParams(GetCOREInterface(), flags, nullptr);
        ASSERT_EQ(ReadPanel().size(), 1u);
        EXPECT_FALSE(ReadPanel()[0].controls[5].enabled);
        push.GetObjectRef()->EndEditParams(GetCOREInterface(), flags, nullptr);
        EXPECT_TRUE(ReadPanel().empty());
    }
}

TEST_F(PluginPanelControls, AClosedPageTakesNothing) {
    Open(kMasterClass);
    PanelWindow& page = Page(kDriving);
    // A page that is gone is only compared, never looked into.
    tavrik_host::ClosePanel();
    EXPECT_TRUE(tavrik_host::ReadControls(page).empty());
    EXPECT_FALSE(SetControl(page, 1124, 1));
    EXPECT_FALSE(ClickControl(page, kDrive));
}

// ------------------------------------------------------------------------------------------------------------------- picking

TEST_F(PluginPanelControls, APickButtonWaitsForAClickOnANode) {
    INode& master = Open(kMasterClass);
    INode& ground = AddGround();
    EXPECT_EQ(Control(1022, kParameters).text, L"None");
    EXPECT_TRUE(ClickControl(Page(kParameters), 1022));
    EXPECT_TRUE(Control(1022, kParameters).checked);
    EXPECT_TRUE(tavrik_host::ClickNode(&ground));
    EXPECT_FALSE(Control(1022, kParameters).checked);
    EXPECT_EQ(Control(1022, kParameters).node, &ground);
    EXPECT_EQ(Control(1022, kParameters).text, ground.GetName());
    EXPECT_EQ(BlockOf(master).GetINode(kSurfaceNode), &ground);
    EXPECT_EQ(GetCOREInterface()->GetCurPickMode(), nullptr);
}

TEST_F(PluginPanelControls, PickingEndsWithASecondClickTheRightButtonOrThePage) {
    Open(kMasterClass);
    ClickControl(Page(kParameters), 1022);
    ClickControl(Page(kParameters), 1022);
    EXPECT_EQ(GetCOREInterface()->GetCurPickMode(), nullptr);
    ClickControl(Page(kParameters), 1022);
    ClickControl(Page(kParameters), 1024);  // another button takes over
    EXPECT_FALSE(Control(1022, kParameters).checked);
    EXPECT_TRUE(Control(1024, kParameters).checked);
    tavrik_host::RightClickView();
    EXPECT_FALSE(Control(1024, kParameters).checked);
    ClickControl(Page(kParameters), 1024);
    tavrik_host::ClosePanel();
    EXPECT_EQ(GetCOREInterface()->GetCurPickMode(), nullptr);
}

TEST_F(PluginPanelControls, AHitchTakesTonguesAlone) {
    INode& wheel = AddNode(kWheelClass, Matrix3(TRUE));
    INode& tongue = AddNode(kTongueClass, Matrix3(TRUE));
    INode* const empty = tavrik_host::CreateNode(nullptr, L"Empty");
    Open(kHitchClass);
    ClickControl(Page(), 1121);
    EXPECT_FALSE(tavrik_host::ClickNode(&wheel));
    EXPECT_FALSE(tavrik_host::ClickNode(empty));
    EXPECT_TRUE(Control(1121).checked);
    EXPECT_TRUE(tavrik_host::ClickNode(&tongue));
    EXPECT_EQ(Control(1121).node, &tongue);
    for (INode* const refused : {&wheel, empty}) {
        EXPECT_FALSE(tavrik_host::PickForControl(Page(), 1121, refused));
        EXPECT_EQ(Control(1121).node, &tongue);
    }
    EXPECT_TRUE(tavrik_host::PickForControl(Page(), 1121, nullptr));
    EXPECT_EQ(Control(1121).node, nullptr);
}

TEST_F(PluginPanelControls, APushTakesMastersAlone) {
    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
    INode& tongue = AddNode(kTongueClass, Matrix3(TRUE));
    Open(kPushClass);
    EXPECT_FALSE(tavrik_host::PickForControl(Page(), 1063, &tongue));
    EXPECT_TRUE(tavrik_host::PickForControl(Page(), 1063, &master));
    EXPECT_EQ(Control(1063).text, master.GetName());
    EXPECT_TRUE(tavrik_host::PickForControl(Page(), 1063, nullptr));
    EXPECT_EQ(Control(1063).text, L"None");
}

TEST_F(PluginPanelControls, SurfaceStartAndTargetTakeAnyNode) {
    INode* const empty = tavrik_host::CreateNode(nullptr, L"Empty");
    Open(kMasterClass);
    EXPECT_TRUE(tavrik_host::PickForControl(Page(kParameters), 1022, empty));
    EXPECT_TRUE(tavrik_host::PickForControl(Page(kParameters), 1024, empty));
    EXPECT_TRUE(tavrik_host::PickForControl(Page(kDriving), 1016, empty));
    EXPECT_FALSE(tavrik_host::PickForControl(Page(kDriving), kDrive, empty));
}

TEST_F(PluginPanelControls, ATreadGoesOntoItsButton) {
    INode& wheel = Open(kWheelClass);
    EXPECT_EQ(Control(1117).text, L"None");
    auto* const map = static_cast<Texmap*>(static_cast<ReferenceTarget*>(tavrik_host::CheckerMapClass().Create(FALSE)));
    EXPECT_TRUE(tavrik_host::SetControlMap(Page(), 1117, map));
    EXPECT_EQ(Control(1117).map, map);
    EXPECT_NE(Control(1117).text, L"None");
    EXPECT_EQ(BlockOf(wheel).GetFloat(0), 50.0f);
    EXPECT_TRUE(tavrik_host::SetControlMap(Page(), 1117, nullptr));
    EXPECT_EQ(Control(1117).map, nullptr);
}

// ------------------------------------------------------------------------------------------------------------- live updates

TEST_F(PluginPanelControls, EverythingThatShowsMovesTheRevisionOn) {
    INode& master = Open(kMasterClass);
    INode& ground = AddGround();
    int told = 0;
    tavrik_host::SetPanelListener([&told] { ++told; });
    unsigned long last = tavrik_host::PanelRevision();
    const auto moved = [&last] { return std::exchange(last, tavrik_host::PanelRevision()) != last; };
    EXPECT_FALSE(moved());
    EXPECT_EQ(told, 0);
    Set(master, 1, 500.0f);
    EXPECT_TRUE(moved());
    EXPECT_EQ(ValueOf(1112, kParameters), 500.0);
    EXPECT_FALSE(moved());  // looking changes nothing
    GetCOREInterface()->SetTime(160);
    EXPECT_TRUE(moved());
    Set(master, kSurfaceNode, &ground);
    EXPECT_TRUE(moved());
    ground.SetName(L"Hill");
    EXPECT_TRUE(moved());
    EXPECT_EQ(Control(1022, kParameters).text, L"Hill");
    tavrik_host::SetMetresPerUnit(1.0);
    EXPECT_TRUE(moved());
    ClickControl(Page(kParameters), 1024);
    EXPECT_TRUE(moved());
    GetCOREInterface()->DeleteNode(&ground);
    EXPECT_TRUE(moved());
    EXPECT_EQ(Control(1022, kParameters).text, L"None");
    tavrik_host::ClosePanel();
    EXPECT_TRUE(moved());
    EXPECT_GT(told, 6);
    tavrik_host::SetPanelListener(nullptr);
}

TEST_F(PluginPanelControls, ADragIntoTheSceneShowsOnTheOpenPanel) {
    INode& chassis = Open(kChassisClass);
    const unsigned long before = tavrik_host::PanelRevision();
    Set(chassis, 0, 12.0f);
    BlockOf(chassis).GetDesc()->InvalidateUI();
    EXPECT_GT(tavrik_host::PanelRevision(), before + 1);
    EXPECT_EQ(ValueOf(1088), 12.0);
}

}  // namespace
}  // namespace plugin_test
