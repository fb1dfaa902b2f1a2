#include "host/sdk/panel_controls.h"

#include <gtest/gtest.h>

#include "host/sdk/panel_pages.h"
#include "host/sdk/picking.h"
#include "host/sdk/standin.h"
#include "tests/sdk/edited_object.h"

namespace tavrik_host {
namespace {

/// An object whose library keeps its templates to itself.
class PanelControls : public testing::Test {
 public:
    PanelControls() {
        ResetScene();
        object = new edited::EditedObject;
        node = CreateNode(object, L"Edited");
        plain = CreateNode(nullptr, L"Plain");
        edited::GuestValidator().welcome = nullptr;
        OpenPanel(*node);
    }
    ~PanelControls() override { ResetScene(); }
    PanelControls(const PanelControls&) = delete;
    PanelControls& operator=(const PanelControls&) = delete;

    edited::EditedObject* object = nullptr;
    INode *node = nullptr, *plain = nullptr;
};

TEST_F(PanelControls, WithoutATemplateParametersStandUnderTheirNames) {
    const std::vector<PanelPage> panel = ReadPanel();
    ASSERT_EQ(panel.size(), 2u);
    ASSERT_EQ(panel[0].controls.size(), 3u);
    for (int i = 0; i < 3; ++i) {
        const PanelControl& spinner = panel[0].controls[std::size_t(i)];
        EXPECT_EQ(spinner.kind, ControlKind::Spinner);
        EXPECT_EQ(spinner.label, L"Dummy_Size");
        EXPECT_EQ(spinner.entry, i);
        EXPECT_EQ(spinner.edit, 1096 + 2 * i);
        EXPECT_EQ(spinner.id, 1097 + 2 * i);
        EXPECT_EQ(spinner.unit, UnitKind::Length);
    }
    std::vector<ControlKind> kinds;
    for (const PanelControl& control : panel[1].controls) kinds.push_back(control.kind);
    EXPECT_EQ(kinds, (std::vector<ControlKind>{ControlKind::PickButton, ControlKind::PickButton, ControlKind::CheckBox,
                                               ControlKind::MapButton, ControlKind::RadioGroup, ControlKind::PickButton}));
    ASSERT_EQ(panel[1].controls[4].buttons.size(), 4u);
    EXPECT_EQ(panel[1].controls[4].buttons[2].id, 1090);
}

TEST_F(PanelControls, TheyCanBeSetAllTheSame) {
    EXPECT_TRUE(SetControl(*PageOf(0), 1099, 1e9));
    EXPECT_EQ(object->block->GetFloat(edited::kSize, 0, 1), 100000.0f);
    EXPECT_TRUE(ClickControl(*PageOf(1), 1124));
    EXPECT_EQ(object->block->GetInt(edited::kFlag), 0);
    EXPECT_TRUE(ClickControl(*PageOf(1), 1091));
    EXPECT_EQ(object->block->GetInt(edited::kKind), 3);
}

TEST_F(PanelControls, AGreyedRadioButtonIsNotChosen) {
    EnableWindow(GetDlgItem(PageOf(1), 1091), FALSE);
    EXPECT_FALSE(ClickControl(*PageOf(1), 1091));
    EXPECT_FALSE(SetControl(*PageOf(1), 1086, 3));
    EXPECT_EQ(object->block->GetInt(edited::kKind), 1);
    EXPECT_TRUE(ReadControl(*PageOf(1), 1086)->enabled);
    for (const int button : {1086, 1087, 1090}) EnableWindow(GetDlgItem(PageOf(1), button), FALSE);
    EXPECT_FALSE(ReadControl(*PageOf(1), 1086)->enabled);
}

TEST_F(PanelControls, PickingAsksTheValidator) {
    EXPECT_TRUE(ClickControl(*PageOf(1), 1121));
    EXPECT_FALSE(ClickNode(plain));
    edited::GuestValidator().welcome = plain;
    EXPECT_TRUE(ClickNode(plain));
    EXPECT_EQ(object->block->GetINode(edited::kGuest), plain);
}

TEST_F(PanelControls, DeletingTheNodeEndsItsPicking) {
    EXPECT_TRUE(ClickControl(*PageOf(1), 1121));
    GetCOREInterface()->DeleteNode(node);
    EXPECT_EQ(GetCOREInterface()->GetCurPickMode(), nullptr);
    EXPECT_FALSE(ClickNode(plain));
}

TEST_F(PanelControls, APageWithoutParametersOrTemplateHasNoControls) {
    HWND page = AddPage(
        nullptr, MAKEINTRESOURCEW(115), [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return 0; }, L"About", 0, 0, 4000);
    EXPECT_TRUE(ReadControls(*page).empty());
    EXPECT_EQ(ReadPanel().size(), 3u);
    DeletePage(page);
}

TEST_F(PanelControls, ANodeWhoseControllerHasNoPagesShowsNone) {
    EXPECT_TRUE(OpenMotionPanel(*node));
    EXPECT_TRUE(ReadPanel().empty());
    EXPECT_EQ(object->ended, 1);
    OpenPanel(*node);
    EXPECT_EQ(ReadPanel().size(), 2u);
}

TEST_F(PanelControls, TheListenerHearsOfEachChangeOnce) {
    int heard = 0;
    SetPanelListener([&heard] { ++heard; });
    object->block->SetValue(edited::kGravity, 0, 5.0f);
    EXPECT_EQ(heard, 1);
    SetPanelListener(nullptr);
    object->block->SetValue(edited::kGravity, 0, 6.0f);
    EXPECT_EQ(heard, 1);
}

TEST_F(PanelControls, ClicksGrowWithTheNumber) {
    PanelControl spinner;
    const struct {
        double value, click;
    } kClicks[] = {{0.0, 0.01}, {0.3, 0.01}, {5.0, 0.1}, {-70.0, 1.0}, {980.0, 10.0}, {2500000.0, 100000.0}};
    for (const auto& [value, click] : kClicks) {
        spinner.value = value;
        EXPECT_DOUBLE_EQ(ClickOf(spinner), click) << value;
    }
    spinner.editType = EDITTYPE_INT;
    EXPECT_EQ(ClickOf(spinner), 1.0);
    spinner.editType = EDITTYPE_TIME;
    EXPECT_EQ(ClickOf(spinner), 160.0);
    spinner.scale = 20.0f;
    EXPECT_EQ(ClickOf(spinner), 20.0);
}

}  // namespace
}  // namespace tavrik_host
