// The command panel of each object: pages, buttons, and what they do.

#include <cstring>

#include "host/sdk/desktop.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {
namespace {

using tavrik_host::PanelWindow;

constexpr const char* kNoChassis = "Can't find Chassis Object.";

class PluginPanels : public PluginScene {
 public:
    static PanelWindow* About() {
        for (PanelWindow* page : tavrik_host::Pages()) {
            if (page->dialog == 115) return page;
        }
        return nullptr;
    }
    static bool IsEnabled(MapID map, int control) {
        return IsWindowEnabled(GetDlgItem(tavrik_host::PageOf(map), control)) != FALSE;
    }
    static std::wstring TextOf(MapID map, int control) { return GetDlgItem(tavrik_host::PageOf(map), control)->text; }

    INode& master = AddNode(kMasterClass, Matrix3(TRUE));
};

// ------------------------------------------------------------------------------------------------------------- a master's
// pages

TEST_F(PluginPanels, AMasterOpensFivePagesAndTheAboutPageLast) {
    tavrik_host::OpenPanel(master);
    std::vector<int> dialogs, titles;
    for (const PanelWindow* page : tavrik_host::Pages()) {
        dialogs.push_back(page->dialog);
        titles.push_back(page->titleString);
    }
    EXPECT_EQ(dialogs, (std::vector<int>{130, 131, 132, 124, 142, 115}));
    EXPECT_EQ(titles, (std::vector<int>{23, 4, 31, 32, 11, 0}));
}

TEST_F(PluginPanels, TheAboutPageNamesTheVersion) {
    tavrik_host::OpenPanel(master);
    PanelWindow* const about = About();
    ASSERT_NE(about, nullptr);
    EXPECT_EQ(about->text, L"About");
    EXPECT_EQ(about->category, 4000);
    EXPECT_TRUE(about->registered);
    const std::wstring text = GetDlgItem(about, 1108)->text;
    EXPECT_EQ(text.substr(0, text.find_first_of(L"\r\n")), L"Tavrik 3.64");
    EXPECT_EQ(GetWindowLongPtrW(about, GWLP_USERDATA), reinterpret_cast<std::intptr_t>(master.GetObjectRef()));
}

TEST_F(PluginPanels, TheAboutPageGoesWithTheOthersAndComesBack) {
    tavrik_host::OpenPanel(master);
    tavrik_host::ClosePanel();
    EXPECT_TRUE(tavrik_host::Pages().empty());
    tavrik_host::OpenPanel(master);
    EXPECT_NE(About(), nullptr);
    EXPECT_EQ(tavrik_host::Pages().size(), 6u);
}

TEST_F(PluginPanels, AnotherMastersPagesTakeThePlaceOfTheFirsts) {
    INode& other = AddNode(kMasterClass, At(1000, 0, 0));
    tavrik_host::OpenPanel(master);
    tavrik_host::OpenPanel(other);
    EXPECT_EQ(tavrik_host::Pages().size(), 6u);
    EXPECT_EQ(GetWindowLongPtrW(About(), GWLP_USERDATA), reinterpret_cast<std::intptr_t>(other.GetObjectRef()));
    EXPECT_EQ(tavrik_host::PageOf(kCarSetup)->map->GetParamBlock(), &BlockOf(other));
}

TEST_F(PluginPanels, OtherObjectsOpenOnePage) {
    const struct {
        Class_ID id;
        int dialog;
    } kPages[] = {{kChassisClass, 129}, {kSuspensionClass, 126}, {kWheelClass, 125}, {kSphereClass, 139},
                  {kHitchClass, 136},   {kTongueClass, 137},     {kPushClass, 138},  {kStartClass, 133}};
    for (const auto& [id, dialog] : kPages) {
        tavrik_host::OpenPanel(AddNode(id, Matrix3(TRUE)));
        ASSERT_EQ(tavrik_host::Pages().size(), 1u) << dialog;
        EXPECT_EQ(tavrik_host::Pages()[0]->dialog, dialog);
        EXPECT_EQ(tavrik_host::Pages()[0]->titleString, 4);
    }
    tavrik_host::ClosePanel();
    EXPECT_TRUE(tavrik_host::Pages().empty());
}

TEST_F(PluginPanels, EveryProcedureLetsTheHostGoOn) {
    tavrik_host::OpenPanel(master);
    for (PanelWindow* page : tavrik_host::Pages()) {
        EXPECT_EQ(SendMessageW(page, WM_COMMAND, MAKEWPARAM(9999, BN_CLICKED), 0), 0) << page->dialog;
        EXPECT_EQ(SendMessageW(page, 0x0400, 1, 2), 0) << page->dialog;
    }
}

// ------------------------------------------------------------------------------------------------------------ a master's
// buttons

TEST_F(PluginPanels, LockingWithoutAChassisSaysSo) {
    Press(master, kCarSetup, kLock);
    EXPECT_EQ(windows.messages, std::vector<std::string>{kNoChassis});
}

TEST_F(PluginPanels, ResettingTheAnimationWithoutAChassisSaysNothing) {
    Press(master, kAnimation, kResetAnimation);
    EXPECT_TRUE(windows.messages.empty());
    EXPECT_TRUE(SameBytes(RecordingOf(master), std::string(4, '\0')));
}

TEST_F(PluginPanels, UnlockingAnUnlockedCarDoesNothing) {
    for (int i = 0; i < 3; ++i) Press(master, kCarSetup, kUnlock);
    EXPECT_TRUE(windows.messages.empty());
    EXPECT_TRUE(SameBytes(RecordingOf(master), std::string(4, '\0')));
}

TEST_F(PluginPanels, DrivingAnUnlockedCarSaysWhatIsMissing) {
    Press(master, kDriving, kDrive);
    EXPECT_EQ(windows.messages, std::vector<std::string>{"You didn't setup the Car.\nDo Car Setup."});
    EXPECT_FALSE(windows.IsOpen());
}

TEST_F(PluginPanels, DrivingWithoutAGroundSaysWhatIsMissing) {
    const Car car = AddCar({2000, 0, 0});
    Press(*car.master, kCarSetup, kLock);
    Press(*car.master, kDriving, kDrive);
    EXPECT_EQ(windows.messages,
              std::vector<std::string>{"You didn't select \"Surface Object\" or\n didn't press \"Update Surface\" button."});
    EXPECT_FALSE(windows.IsOpen());
}

TEST_F(PluginPanels, DrivingTakesAGroundOverThatWasOnlyPicked) {
    const Car car = AddCar({2000, 0, 0});
    Press(*car.master, kCarSetup, kLock);
    Set(*car.master, kSurfaceNode, &AddGround());
    Press(*car.master, kDriving, kDrive);
    EXPECT_TRUE(windows.messages.empty());
    EXPECT_TRUE(windows.IsOpen());
}

TEST_F(PluginPanels, UpdatingAGroundThatIsNoMeshLeavesItMissing) {
    const Car car = AddCar({2000, 0, 0});
    Press(*car.master, kCarSetup, kLock);
    Set(*car.master, kSurfaceNode, car.wheels[0]);
    Press(*car.master, kParameters, kUpdateSurface);
    Press(*car.master, kDriving, kDrive);
    EXPECT_EQ(windows.messages.size(), 1u);
    EXPECT_FALSE(windows.IsOpen());
}

TEST_F(PluginPanels, OnlyABikeIsBalanced) {
    tavrik_host::OpenPanel(master);
    EXPECT_FALSE(IsEnabled(kDriving, 1095));
    EXPECT_FALSE(IsEnabled(kDriving, 1125));
    EXPECT_TRUE(IsEnabled(kDriving, 1094));  // the edit field is left alone

    Set(master, 16, 1);
    Press(master, kDriving, 1124);
    EXPECT_TRUE(IsEnabled(kDriving, 1095));
    EXPECT_TRUE(IsEnabled(kDriving, 1125));

    Set(master, 16, 0);
    Press(master, kDriving, 1124);
    EXPECT_FALSE(IsEnabled(kDriving, 1095));
    EXPECT_FALSE(IsEnabled(kDriving, 1125));
}

TEST_F(PluginPanels, ABikesPageOpensWithItsBalance) {
    Set(master, 16, 1);
    tavrik_host::OpenPanel(master);
    EXPECT_TRUE(IsEnabled(kDriving, 1095));
    EXPECT_TRUE(IsEnabled(kDriving, 1125));
}

// ------------------------------------------------------------------------------------------------------------- suspension,
// push

TEST_F(PluginPanels, ASuspensionOffersFourDampers) {
    tavrik_host::OpenPanel(AddNode(kSuspensionClass, Matrix3(TRUE)));
    const PanelWindow* const combo = GetDlgItem(tavrik_host::PageOf(0), 1110);
    EXPECT_EQ(combo->items, (std::vector<std::wstring>{L"Sport Car Damper", L"General Car Damper", L"Off-road Car Damper",
                                                       L"Heavy Track Damper"}));
    EXPECT_EQ(combo->selected, -1);
}

TEST_F(PluginPanels, ADamperSetsStiffnessesAndNoLengths) {
    INode& node = AddNode(kSuspensionClass, Matrix3(TRUE));
    Set(node, 0, 33.0f);
    Set(node, 4, 6.0f);
    Set(node, 5, -7.0f);
    tavrik_host::OpenPanel(node);
    const float kPresets[][4] = {
        {2, 50000, 5000, 100000}, {1, 50000, 5000, 100000}, {0.5f, 50000, 5000, 100000}, {2, 50000, 5000, 150000}};
    for (const int choice : {3, 0, 3, 1, 3, 2}) {
        tavrik_host::ChooseItem(*tavrik_host::PageOf(0), 1110, choice);
        EXPECT_EQ(FloatOf(node, 1), kPresets[choice][0]) << choice;
        EXPECT_EQ(FloatOf(node, 2), kPresets[choice][1]) << choice;
        EXPECT_EQ(FloatOf(node, 3), kPresets[choice][2]) << choice;
        EXPECT_EQ(FloatOf(node, 10), kPresets[choice][3]) << choice;
    }
    EXPECT_EQ(FloatOf(node, 0), 33.0f);
    EXPECT_EQ(FloatOf(node, 4), 6.0f);
    EXPECT_EQ(FloatOf(node, 5), -7.0f);
}

TEST_F(PluginPanels, APushShowsWhatItsKindReads) {
    INode& node = AddNode(kPushClass, Matrix3(TRUE));
    const auto expect = [](bool single) {
        for (const int control : {1131, 1132, 1100, 1133}) EXPECT_EQ(IsEnabled(0, control), single) << control;
        for (const int control : {1102, 1135}) EXPECT_EQ(IsEnabled(0, control), !single) << control;
    };
    tavrik_host::OpenPanel(node);
    expect(true);
    Set(node, 1, 1);
    Press(node, 0, 1123);
    expect(false);
    Set(node, 1, 0);
    Press(node, 0, 1122);
    expect(true);
}

// -----------------------------------------------------------------------------------------------------------------------
// bindings

const struct {
    ParamID id;
    int value;
} kFreshBindings[] = {{18, 87},   {19, 65},    {20, 68},   {22, 83},  {23, 32}, {21, 33}, {24, 16}, {25, 32768},
                      {26, 8192}, {27, 16384}, {28, 4096}, {29, 512}, {32, 1},  {33, 0},  {30, 0},  {31, 1}};

TEST_F(PluginPanels, BindingsStartFreshWithoutAFile) {
    Set(master, kKeyThrottle, 70);
    tavrik_host::OpenPanel(master);
    for (const auto& [id, value] : kFreshBindings) EXPECT_EQ(IntOf(master, id), value) << id;
    EXPECT_FALSE(controls.exists);
}

TEST_F(PluginPanels, SavedBindingsComeBackWhereverPagesOpen) {
    tavrik_host::OpenPanel(master);
    Set(master, kKeyThrottle, 48);
    Set(master, 29, 256);
    Set(master, 33, 2);
    Press(master, kControllers, 1022);
    ASSERT_EQ(controls.bytes.size(), 64u);
    INode& other = AddNode(kMasterClass, Matrix3(TRUE));
    EXPECT_EQ(IntOf(other, kKeyThrottle), 87);
    tavrik_host::OpenPanel(other);
    EXPECT_EQ(IntOf(other, kKeyThrottle), 48);
    EXPECT_EQ(IntOf(other, 29), 256);
    EXPECT_EQ(IntOf(other, 33), 2);
    EXPECT_EQ(TextOf(kControllers, 2000), L"UNK");  // a digit drives, but has no name
    EXPECT_EQ(TextOf(kControllers, 1024), L"LB");
}

TEST_F(PluginPanels, TheFileHoldsBindingsInItsOwnOrder) {
    Press(master, kControllers, 1022);
    const std::int32_t kWanted[] = {87, 65, 68, 83, 32, 33, 16, 32768, 8192, 16384, 4096, 512, 1, 0, 0, 1};
    ASSERT_EQ(controls.bytes.size(), sizeof kWanted);
    EXPECT_EQ(std::memcmp(controls.bytes.data(), kWanted, sizeof kWanted), 0);
}

TEST_F(PluginPanels, BindingsThatWereNotSavedAreGoneWhenPagesOpenAgain) {
    Press(master, kControllers, 1022);
    Set(master, kKeyThrottle, 48);
    tavrik_host::ClosePanel();
    EXPECT_EQ(IntOf(master, kKeyThrottle), 48);
    tavrik_host::OpenPanel(master);
    EXPECT_EQ(IntOf(master, kKeyThrottle), 87);
}

TEST_F(PluginPanels, AFileOfLessThanOneNumberGivesZeroes) {
    controls.exists = true;
    controls.bytes.assign(3, std::byte{0x55});
    tavrik_host::OpenPanel(master);
    for (const auto& [id, value] : kFreshBindings) EXPECT_EQ(IntOf(master, id), 0) << id << " was " << value;
}

TEST_F(PluginPanels, AResetBringsFreshBindingsAndLeavesTheFile) {
    tavrik_host::OpenPanel(master);
    Set(master, kKeyThrottle, 48);
    Press(master, kControllers, 1025);
    EXPECT_EQ(IntOf(master, kKeyThrottle), 87);
    EXPECT_EQ(TextOf(kControllers, 2000), L"W");
    EXPECT_FALSE(controls.exists);
}

TEST_F(PluginPanels, ButtonsShowTheNamesOfTheirKeys) {
    tavrik_host::OpenPanel(master);
    const struct {
        int control;
        const wchar_t* text;
    } kTexts[] = {{2000, L"W"},  {1010, L"A"}, {1011, L"D"}, {1018, L"S"}, {1020, L"SP"}, {1012, L"PUP"},
                  {1023, L"SH"}, {1016, L"Y"}, {1017, L"B"}, {1019, L"X"}, {1021, L"A"},  {1024, L"RB"}};
    for (const auto& [control, text] : kTexts) EXPECT_EQ(TextOf(kControllers, control), text) << control;
}

TEST_F(PluginPanels, AKeyIsBoundByPressingIt) {
    Press(master, kControllers, 2000);
    ASSERT_TRUE(windows.IsOpen());
    KeyUp('K');
    EXPECT_FALSE(windows.IsOpen());
    EXPECT_EQ(IntOf(master, kKeyThrottle), 'K');
    EXPECT_EQ(TextOf(kControllers, 2000), L"K");
}

TEST_F(PluginPanels, ATakenKeyKeepsThePromptOpen) {
    Press(master, kControllers, 2000);
    for (const int taken : {68, 87}) {  // another action's, and its own
        KeyUp(taken);
        EXPECT_TRUE(windows.IsOpen());
        EXPECT_EQ(IntOf(master, kKeyThrottle), 87);
    }
    KeyUp(13);  // the key that starts runs may be bound
    EXPECT_EQ(IntOf(master, kKeyThrottle), 13);
}

TEST_F(PluginPanels, EscapeEndsABindingAndCantBeBound) {
    Press(master, kControllers, 1010);
    KeyUp(27);
    EXPECT_FALSE(windows.IsOpen());
    EXPECT_EQ(IntOf(master, 19), 65);
}

TEST_F(PluginPanels, ClosingThePagesEndsABinding) {
    Press(master, kControllers, 1010);
    tavrik_host::ClosePanel();
    EXPECT_FALSE(windows.IsOpen());
    EXPECT_EQ(IntOf(master, 19), 65);
}

TEST_F(PluginPanels, DeletingTheMasterEndsABinding) {
    Press(master, kControllers, 1010);
    GetCOREInterface()->DeleteNode(&master);
    EXPECT_FALSE(windows.IsOpen());
    KeyUp('K');
    EXPECT_TRUE(tavrik_host::Pages().empty());
}

TEST_F(PluginPanels, APadsButtonIsBoundOnceOneAloneIsDown) {
    pad.plugged = true;
    Press(master, kControllers, 1016);
    windows.Send(0x0113, 1, 0);
    EXPECT_TRUE(windows.IsOpen());
    pad.state.wButtons = 0x300;
    windows.Send(0x0113, 1, 0);
    EXPECT_TRUE(windows.IsOpen());
    pad.state.wButtons = 0x100;
    windows.Send(0x0113, 1, 0);
    EXPECT_FALSE(windows.IsOpen());
    EXPECT_EQ(IntOf(master, 25), 256);
    EXPECT_EQ(TextOf(kControllers, 1016), L"LB");
}

TEST_F(PluginPanels, CombosOfferTheirChoices) {
    tavrik_host::OpenPanel(master);
    const auto items = [](int control) { return GetDlgItem(tavrik_host::PageOf(kControllers), control)->items; };
    using Items = std::vector<std::wstring>;
    EXPECT_EQ(items(1137), (Items{L"Multimedia API", L"X-Input"}));
    EXPECT_EQ(items(1138), (Items{L"Auto", L"0", L"1", L"2", L"3"}));
    EXPECT_EQ(items(1139), (Items{L"Left Stick", L"Right Stick", L"D-Pad"}));
    EXPECT_EQ(items(1140), (Items{L"Left Stick", L"Right Stick", L"Left Trigger", L"Right Trigger"}));
}

TEST_F(PluginPanels, ChoosingTheJoystickDisablesWhatOnlyPadsHave) {
    tavrik_host::OpenPanel(master);
    for (const int control : {1138, 1139, 1140, 1141, 1142, 1143}) EXPECT_TRUE(IsEnabled(kControllers, control)) << control;
    tavrik_host::ChooseItem(*tavrik_host::PageOf(kControllers), 1137, 0);
    EXPECT_EQ(IntOf(master, 32), 0);
    for (const int control : {1138, 1139, 1140, 1141, 1142, 1143}) EXPECT_FALSE(IsEnabled(kControllers, control)) << control;
}

TEST_F(PluginPanels, ChoicesOfPortAndAxesAreKept) {
    tavrik_host::OpenPanel(master);
    PanelWindow& page = *tavrik_host::PageOf(kControllers);
    tavrik_host::ChooseItem(page, 1138, 3);
    tavrik_host::ChooseItem(page, 1139, 2);
    tavrik_host::ChooseItem(page, 1140, 3);
    EXPECT_EQ(IntOf(master, 33), 3);
    EXPECT_EQ(IntOf(master, 30), 2);
    EXPECT_EQ(IntOf(master, 31), 3);
}

}  // namespace
}  // namespace plugin_test
