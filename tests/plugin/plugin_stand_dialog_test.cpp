// The dialog behind "Additional Damper Settings", as the suspension's panel opens it.

#include <chrono>
#include <functional>
#include <map>
#include <thread>

#include "drive/damper_stand.h"
#include "drive/window_messages.h"
#include "host/sdk/desktop.h"
#include "host/sdk/panel_controls.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

constexpr tavrik::WindowId kDialog = 77;
constexpr int kStandButton = 1013;
constexpr int kKnolls = 1094, kMass = 1090, kGravity = 1112, kFactor = 1114, kSpring = 1092, kOil = 1036, kShift = 1042,
              kBuffer = 1044;
constexpr ParamID kRuggednessFactor = 1, kRuggedness = 2, kDamping = 3, kDamperShift = 6, kBufferRuggedness = 10;

class Spinner final : public tavrik::StandSpinner {
 public:
    float low = 0.0f, high = 0.0f, value = 0.0f;
    int edit = 0;
    void SetLimits(float from, float to) override {
        low = from;
        high = to;
    }
    void SetAutoScale(bool) override {}
    void LinkToEdit(std::int32_t control, tavrik::EditType) override { edit = control; }
    void SetValue(float v, bool) override { value = v; }
    float GetFVal() override { return value; }
};

/// A dialog on no screen: `user` is asked what to do as soon as it is open.
class Screen final : public tavrik::StandLayer {
 public:
    std::map<int, Spinner> spinners;
    std::function<void(Screen&)> user;
    int opened = 0, dialog = 0, held = 0;

    /// Turns a spinner and lets it go.
    void Turn(int control, float value) {
        spinners[control].value = value;
        stand_->HandleMessage(kDialog, tavrik::kCcSpinnerButtonUp, std::uint64_t(control), 0);
    }
    void Press(int control) { stand_->HandleMessage(kDialog, tavrik::kWmCommand, std::uint64_t(control), 0); }

    std::int32_t RunDialog(std::int32_t dialogTemplate, tavrik::DamperStand& stand) override {
        ++opened;
        dialog = dialogTemplate;
        stand_ = &stand;
        result_ = -1;
        stand.HandleMessage(kDialog, tavrik::kWmInitDialog, 0, 0);
        if (user) user(*this);
        return result_;
    }
    void EndDialog(tavrik::WindowId, std::int32_t result) override { result_ = result; }
    void RegisterDlgWnd(tavrik::WindowId) override { ++held; }
    void UnRegisterDlgWnd(tavrik::WindowId) override { --held; }
    tavrik::StandSpinner& GetISpinner(tavrik::WindowId, std::int32_t control) override {
        ++held;
        return spinners[control];
    }
    void ReleaseISpinner(tavrik::StandSpinner&) override { --held; }
    tavrik::OffScreenCanvas* CreateIOffScreenBuf(tavrik::WindowId, std::int32_t, tavrik::ColorRef) override { return nullptr; }
    void DestroyIOffScreenBuf(tavrik::OffScreenCanvas&) override {}
    void BeginPaint(tavrik::WindowId) override {}
    void EndPaint(tavrik::WindowId) override {}
    void Sleep(std::int32_t) override { std::this_thread::sleep_for(std::chrono::milliseconds(1)); }

 private:
    tavrik::DamperStand* stand_ = nullptr;
    std::int32_t result_ = -1;
};

class PluginStandDialog : public PluginScene {
 public:
    PluginStandDialog() { tavrik::TheDesktop().stand = &screen; }
    ~PluginStandDialog() override { tavrik::TheDesktop().stand = nullptr; }
    PluginStandDialog(const PluginStandDialog&) = delete;
    PluginStandDialog& operator=(const PluginStandDialog&) = delete;

    void OpenWith(std::function<void(Screen&)> user) {
        screen.user = std::move(user);
        tavrik_host::OpenPanel(suspension);
        EXPECT_TRUE(tavrik_host::ClickControl(*tavrik_host::PageOf(0), kStandButton));
    }

    Screen screen;
    INode& suspension = AddNode(kSuspensionClass, Matrix3(TRUE));
};

TEST_F(PluginStandDialog, ItOpensWithTheSuspensionsValues) {
    Set(suspension, kRuggednessFactor, 2.0f);
    Set(suspension, kDamping, 4000.0f);
    OpenWith([](Screen& dialog) { dialog.Press(tavrik::kStandCancelControl); });
    EXPECT_EQ(screen.opened, 1);
    EXPECT_EQ(screen.dialog, 128);
    const std::map<int, float> kShown = {{kKnolls, 1.0f},    {1096, 1.0f},    {kMass, 400.0f},
                                         {kGravity, 980.0f}, {kFactor, 2.0f}, {kSpring, 50000},
                                         {kOil, 4000.0f},    {kShift, 10.0f}, {kBuffer, 100000.0f}};
    for (const auto& [control, value] : kShown) EXPECT_EQ(screen.spinners.at(control).value, value) << control;
    EXPECT_EQ(screen.spinners.size(), kShown.size());
    EXPECT_EQ(screen.held, 0);
}

TEST_F(PluginStandDialog, ItsSpinnersAreThoseOfItsTemplate) {
    OpenWith([](Screen& dialog) { dialog.Press(tavrik::kStandCancelControl); });
    std::size_t found = 0;
    for (const auto& control : tavrik_host::FindDialogTemplate(128)->controls) {
        if (control.kind != tavrik_host::ControlKind::Spinner) continue;
        ASSERT_TRUE(screen.spinners.contains(control.id)) << control.id;
        EXPECT_EQ(screen.spinners.at(control.id).edit, control.edit);
        ++found;
    }
    EXPECT_EQ(found, 9u);
    EXPECT_EQ(screen.spinners.at(kKnolls).high, 10.0f);
    EXPECT_EQ(screen.spinners.at(kMass).high, 10000000.0f);
    EXPECT_EQ(screen.spinners.at(kShift).low, -1000000.0f);
    EXPECT_EQ(screen.spinners.at(kOil).low, 0.0f);
}

TEST_F(PluginStandDialog, SetupWritesTheSuspensionsFive) {
    OpenWith([](Screen& dialog) {
        dialog.Turn(kFactor, 3.0f);
        dialog.Turn(kSpring, 111.0f);
        dialog.Turn(kOil, 222.0f);
        dialog.Turn(kShift, -5.0f);
        dialog.Turn(kBuffer, 333.0f);
        dialog.Turn(kMass, 900.0f);
        dialog.Press(tavrik::kStandSetupControl);
    });
    EXPECT_EQ(FloatOf(suspension, kRuggednessFactor), 3.0f);
    EXPECT_EQ(FloatOf(suspension, kRuggedness), 111.0f);
    EXPECT_EQ(FloatOf(suspension, kDamping), 222.0f);
    EXPECT_EQ(FloatOf(suspension, kDamperShift), -5.0f);
    EXPECT_EQ(FloatOf(suspension, kBufferRuggedness), 333.0f);
    EXPECT_EQ(FloatOf(suspension, 0), 50.0f);
    EXPECT_EQ(tavrik_host::ReadControl(*tavrik_host::PageOf(0), 1114)->value, 3.0);  // and the page shows it
}

TEST_F(PluginStandDialog, CancelWritesNothing) {
    OpenWith([](Screen& dialog) {
        dialog.Turn(kSpring, 111.0f);
        dialog.Press(tavrik::kStandCancelControl);
    });
    EXPECT_EQ(FloatOf(suspension, kRuggedness), 50000.0f);
}

TEST_F(PluginStandDialog, ItsOwnSettingsStayWithTheSuspension) {
    OpenWith([](Screen& dialog) {
        dialog.Turn(kMass, 900.0f);
        dialog.Turn(kKnolls, 0.0f);
        dialog.Turn(kSpring, 111.0f);
        dialog.Press(tavrik::kStandCancelControl);
    });
    OpenWith([](Screen& dialog) { dialog.Press(tavrik::kStandCancelControl); });
    EXPECT_EQ(screen.opened, 2);
    EXPECT_EQ(screen.spinners.at(kMass).value, 900.0f);
    EXPECT_EQ(screen.spinners.at(kKnolls).value, 0.0f);
    EXPECT_EQ(screen.spinners.at(kSpring).value, 50000.0f);
}

TEST_F(PluginStandDialog, GravityIsThatOfTheScenesUnit) {
    tavrik_host::SetMetresPerUnit(1.0);
    tavrik_host::OpenPanel(AddNode(kSuspensionClass, Matrix3(TRUE)));
    screen.user = [](Screen& dialog) { dialog.Press(tavrik::kStandCancelControl); };
    tavrik_host::ClickControl(*tavrik_host::PageOf(0), kStandButton);
    EXPECT_EQ(screen.spinners.at(kGravity).value, 9.8f);
}

TEST_F(PluginStandDialog, ItShowsWhatAPresetHasSet) {
    tavrik_host::OpenPanel(suspension);
    EXPECT_TRUE(tavrik_host::SetControl(*tavrik_host::PageOf(0), 1110, 3));
    OpenWith([](Screen& dialog) { dialog.Press(tavrik::kStandCancelControl); });
    EXPECT_EQ(screen.spinners.at(kBuffer).value, 150000.0f);
    EXPECT_EQ(screen.spinners.at(kFactor).value, 2.0f);
}

TEST_F(PluginStandDialog, WhileItIsOpenItsButtonOpensNoOther) {
    OpenWith([](Screen& dialog) {
        tavrik_host::ClickControl(*tavrik_host::PageOf(0), kStandButton);
        dialog.Press(tavrik::kStandCancelControl);
    });
    EXPECT_EQ(screen.opened, 1);
}

TEST_F(PluginStandDialog, ASuspensionWithoutLengthOpensItTheSame) {
    Set(suspension, 0, 0.0f);
    OpenWith([](Screen& dialog) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));  // for a pass or two in a model that has no finite number
        dialog.Turn(kOil, 7.0f);
        dialog.Press(tavrik::kStandSetupControl);
    });
    EXPECT_EQ(FloatOf(suspension, kDamping), 7.0f);
}

TEST_F(PluginStandDialog, WithoutAScreenItsButtonDoesNothing) {
    tavrik::TheDesktop().stand = nullptr;
    OpenWith({});
    EXPECT_EQ(screen.opened, 0);
    EXPECT_EQ(FloatOf(suspension, kRuggedness), 50000.0f);
}

}  // namespace
}  // namespace plugin_test
