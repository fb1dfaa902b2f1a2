#include "studio/driving/key_map.h"

#include <gtest/gtest.h>

#include <Qt>
#include <set>
#include <string>

#include "drive/controls_config.h"
#include "drive/key_names.h"

namespace tavrik_studio {
namespace {

/// A key of which only the name is known.
std::int32_t ByName(int key, bool keypad = false) { return VirtualKeyOf(0, key, keypad).code; }
/// A key by its place, under a layout that has `key` there. Scan codes as X11 has them.
std::int32_t ByPlace(std::uint32_t scanCode, int key = Qt::Key_unknown) { return VirtualKeyOf(scanCode, key, false).code; }

TEST(KeyMap, LettersAndDigitsAreTheirOwnCodes) {
    EXPECT_EQ(ByName(Qt::Key_W), 87);
    EXPECT_EQ(ByName(Qt::Key_A), 65);
    EXPECT_EQ(ByName(Qt::Key_0), 48);
}

TEST(KeyMap, LettersGoByTheirPlaceUnderOtherLayouts) {
    EXPECT_EQ(ByPlace(25, Qt::Key_Z), 'W');  // French
    EXPECT_EQ(ByPlace(38, Qt::Key_Q), 'A');
    EXPECT_EQ(ByPlace(52, Qt::Key_Y), 'Z');  // German
    EXPECT_EQ(ByPlace(40, 0x0412), 'D');     // Cyrillic
}

TEST(KeyMap, DigitsGoByTheirPlaceWhateverStandsOnThem) {
    EXPECT_EQ(ByPlace(10, Qt::Key_Ampersand), '1');
    EXPECT_EQ(ByPlace(19, Qt::Key_Agrave), '0');
}

TEST(KeyMap, EveryDefaultBindingHasAKey) {
    std::set<std::int32_t> reached;
    for (std::uint32_t scanCode = 1; scanCode < 256; ++scanCode) reached.insert(ByPlace(scanCode));
    reached.insert({ByName(Qt::Key_Space), ByName(Qt::Key_PageUp)});
    for (const tavrik::BindingRow& row : tavrik::KeyboardBindings()) {
        EXPECT_TRUE(reached.contains(tavrik::ResetValue(row.param))) << tavrik::ControlName(row.param);
    }
}

TEST(KeyMap, NamedKeysShowTheirNamesOnTheButtons) {
    const std::pair<int, const char*> keys[] = {
        {Qt::Key_Up, "UP"},      {Qt::Key_Down, "DN"},    {Qt::Key_Left, "LF"},       {Qt::Key_Right, "RT"},
        {Qt::Key_F1, "F1"},      {Qt::Key_F12, "F12"},    {Qt::Key_ScrollLock, "SL"}, {Qt::Key_Backspace, "BS"},
        {Qt::Key_Space, "SP"},   {Qt::Key_Insert, "IN"},  {Qt::Key_Home, "HO"},       {Qt::Key_PageDown, "PDN"},
        {Qt::Key_PageUp, "PUP"}, {Qt::Key_Delete, "DE"},  {Qt::Key_NumLock, "NL"},    {Qt::Key_Return, "EN"},
        {Qt::Key_Enter, "EN"},   {Qt::Key_Tab, "TB"},     {Qt::Key_Backtab, "TB"},    {Qt::Key_CapsLock, "CL"},
        {Qt::Key_Shift, "SH"},   {Qt::Key_Control, "LC"}, {Qt::Key_Alt, "LA"},        {Qt::Key_AltGr, "RA"},
        {Qt::Key_Super_L, "LW"}, {Qt::Key_Super_R, "RW"},
    };
    for (const auto& [key, name] : keys) EXPECT_EQ(tavrik::KeyName(ByName(key)), name);
}

TEST(KeyMap, PairsAreToldApartAndKeepTheirCommonCode) {
    EXPECT_EQ(ByPlace(50), 16);  // the left shift is what bindings call shift
    const VirtualKey rightShift = VirtualKeyOf(62, Qt::Key_Shift, false);
    EXPECT_EQ(rightShift.code, 161);
    EXPECT_EQ(rightShift.general, 16);
    const VirtualKey leftControl = VirtualKeyOf(37, Qt::Key_Control, false),
                     rightControl = VirtualKeyOf(105, Qt::Key_Control, false);
    EXPECT_EQ(leftControl.code, 162);
    EXPECT_EQ(rightControl.code, 163);
    EXPECT_EQ(leftControl.general, 17);
    EXPECT_EQ(rightControl.general, 17);
    EXPECT_EQ(VirtualKeyOf(64, Qt::Key_Alt, false).code, 164);
    EXPECT_EQ(VirtualKeyOf(108, Qt::Key_AltGr, false).code, 165);
    EXPECT_EQ(VirtualKeyOf(108, Qt::Key_AltGr, false).general, 18);
}

TEST(KeyMap, NumberPadGivesDigitsOrTheKeysThatStandUnderThem) {
    for (int digit = 0; digit <= 9; ++digit) {
        EXPECT_EQ(ByName(Qt::Key_0 + digit, true), 96 + digit);
        EXPECT_EQ(tavrik::KeyName(ByName(Qt::Key_0 + digit, true)), "N" + std::to_string(digit));
    }
    EXPECT_EQ(ByName(Qt::Key_Up, true), 38);
    EXPECT_EQ(ByName(Qt::Key_Clear, true), 12);
    EXPECT_EQ(ByName(Qt::Key_Plus, true), 107);
    EXPECT_EQ(ByName(Qt::Key_Minus, true), 109);
    EXPECT_EQ(ByName(Qt::Key_Asterisk, true), 106);
    EXPECT_EQ(ByName(Qt::Key_Slash, true), 111);
    EXPECT_EQ(ByName(Qt::Key_Period, true), 110);
}

TEST(KeyMap, SignsAreKeysToo) {
    EXPECT_EQ(ByPlace(47), 186);
    EXPECT_EQ(ByPlace(34), 219);
    EXPECT_EQ(ByName(Qt::Key_Comma), 188);
    EXPECT_EQ(ByName(Qt::Key_Less), 188);
    EXPECT_EQ(ByPlace(94), 226);
}

TEST(KeyMap, NoTwoPlacesShareACode) {
    std::set<std::int32_t> codes;
    for (std::uint32_t scanCode = 1; scanCode < 256; ++scanCode) {
        const std::int32_t code = ByPlace(scanCode);
        if (code != 0) {
            EXPECT_TRUE(codes.insert(code).second) << scanCode;
        }
    }
    EXPECT_GT(codes.size(), 55u);
}

TEST(KeyMap, UnknownKeysAreNone) {
    EXPECT_EQ(ByPlace(0), 0);
    EXPECT_EQ(ByPlace(8), 0);
    EXPECT_EQ(ByName(Qt::Key_VolumeUp), 0);
}

}  // namespace
}  // namespace tavrik_studio
