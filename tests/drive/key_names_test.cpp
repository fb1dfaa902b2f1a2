#include "drive/key_names.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

namespace tavrik {
namespace {

struct Row {
    std::int32_t code;
    const char* name;
};

// As users know them from the buttons of the rollout.
constexpr Row kNames[] = {
    {38, "UP"},  {40, "DN"},  {37, "LF"},  {39, "RT"},  {112, "F1"}, {113, "F2"},  {114, "F3"},  {115, "F4"},
    {116, "F5"}, {117, "F6"}, {118, "F7"}, {119, "F8"}, {120, "F9"}, {121, "F10"}, {122, "F11"}, {123, "F12"},
    {42, "PS"},  {145, "SL"}, {8, "BS"},   {32, "SP"},  {45, "IN"},  {36, "HO"},   {34, "PDN"},  {33, "PUP"},
    {46, "DE"},  {144, "NL"}, {96, "N0"},  {97, "N1"},  {98, "N2"},  {99, "N3"},   {100, "N4"},  {101, "N5"},
    {102, "N6"}, {103, "N7"}, {104, "N8"}, {105, "N9"}, {13, "EN"},  {16, "SH"},   {161, "RS"},  {9, "TB"},
    {20, "CL"},  {162, "LC"}, {163, "RC"}, {164, "LA"}, {165, "RA"}, {91, "LW"},   {92, "RW"},
};
static_assert(std::size(kNames) == 47);

class EachKeyName : public ::testing::TestWithParam<Row> {};

TEST_P(EachKeyName, IsShownForItsCode) { EXPECT_EQ(KeyName(GetParam().code), GetParam().name); }
TEST_P(EachKeyName, MeansItsCodeWhenTyped) { EXPECT_EQ(KeyCode(GetParam().name), GetParam().code); }

INSTANTIATE_TEST_SUITE_P(KeyNames, EachKeyName, ::testing::ValuesIn(kNames),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(KeyName, LettersAreShownAsThemselves) {
    for (std::int32_t code = 65; code <= 90; ++code) EXPECT_EQ(KeyName(code), std::string(1, char(code)));
}

TEST(KeyName, EverythingElseIsUnknown) {
    std::set<std::int32_t> known;
    for (const Row& row : kNames) known.insert(row.code);
    for (std::int32_t code = 65; code <= 90; ++code) known.insert(code);
    int unknown = 0;
    for (std::int32_t code = -300; code <= 300; ++code) {
        if (known.contains(code)) continue;
        EXPECT_EQ(KeyName(code), "UNK") << code;
        ++unknown;
    }
    EXPECT_EQ(unknown, 601 - 47 - 26);
    EXPECT_EQ(KeyName(std::numeric_limits<std::int32_t>::min()), "UNK");
    EXPECT_EQ(KeyName(std::numeric_limits<std::int32_t>::max()), "UNK");
}

TEST(KeyName, DigitsReadUnknown) { EXPECT_EQ(KeyName(48), "UNK"); }

TEST(KeyCode, UnknownIsTheNameOfNoKey) { EXPECT_EQ(KeyCode("UNK"), std::nullopt); }

TEST(KeyCode, LettersMeanThemselvesInEitherCase) {
    for (std::int32_t code = 65; code <= 90; ++code) {
        EXPECT_EQ(KeyCode(std::string(1, char(code))), code);
        EXPECT_EQ(KeyCode(std::string(1, char(code + 32))), code);
    }
}

TEST(KeyCode, NamesMayBeTypedInLowerCase) {
    EXPECT_EQ(KeyCode("pup"), 33);
    EXPECT_EQ(KeyCode("f12"), 123);
}

TEST(KeyCode, ADigitIsTheKeyThatBearsIt) {
    EXPECT_EQ(KeyCode("0"), 48);
    EXPECT_EQ(KeyCode("9"), 57);
}

TEST(KeyCode, LongNamesAreUnderstood) {
    EXPECT_EQ(KeyCode("SPACE"), 32);
    EXPECT_EQ(KeyCode("Enter"), 13);
    EXPECT_EQ(KeyCode("ESC"), 27);
    EXPECT_EQ(KeyCode("left"), 37);
    EXPECT_EQ(KeyCode("RIGHT"), 39);
    EXPECT_EQ(KeyCode("DOWN"), 40);
    EXPECT_EQ(KeyCode("SHIFT"), 16);
    EXPECT_EQ(KeyCode("PageUp"), 33);
}

TEST(KeyCode, AnyKeyCanBeGivenByItsHexadecimalCode) {
    EXPECT_EQ(KeyCode("0xBC"), 0xBC);
    EXPECT_EQ(KeyCode("0X30"), 48);
    EXPECT_EQ(KeyCode("0x0"), 0);
    EXPECT_EQ(KeyCode("0xff"), 255);
}

TEST(KeyCode, OtherTextsMeanNoKey) {
    for (const char* text : {"", " ", "WW", "W ", "F13", "F0", "N10", ",", "48", "-1", "0x", "0x100", "0x-1", "0xG", "0x1 ",
                             "0x123456789012345678901234567890", "\xC3\x84"}) {
        EXPECT_EQ(KeyCode(text), std::nullopt) << '"' << text << '"';
    }
}

class EachButtonName : public ::testing::TestWithParam<Row> {};

TEST_P(EachButtonName, IsShownForItsBit) { EXPECT_EQ(ButtonName(GetParam().code), GetParam().name); }
TEST_P(EachButtonName, MeansItsBitWhenTyped) { EXPECT_EQ(ButtonCode(GetParam().name), GetParam().code); }

INSTANTIATE_TEST_SUITE_P(ButtonNames, EachButtonName,
                         ::testing::Values(Row{4096, "A"}, Row{8192, "B"}, Row{16384, "X"}, Row{32768, "Y"}, Row{256, "LB"},
                                           Row{512, "RB"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ButtonName, OtherValuesAreDecimalNumbers) {
    EXPECT_EQ(ButtonName(0), "0");
    EXPECT_EQ(ButtonName(1), "1");
    EXPECT_EQ(ButtonName(1024), "1024");
    EXPECT_EQ(ButtonName(4096 + 256), "4352");
}

TEST(ButtonName, TheHighestBitIsANegativeNumber) { EXPECT_EQ(ButtonName(std::int32_t(0x80000000u)), "-2147483648"); }

TEST(ButtonCode, EveryNameThatIsShownFindsItsWayBack) {
    for (int bit = 0; bit < 32; ++bit) {
        const auto value = std::int32_t(1u << bit);
        EXPECT_EQ(ButtonCode(ButtonName(value)), value);
    }
}

TEST(ButtonCode, NamesMayBeTypedInLowerCase) { EXPECT_EQ(ButtonCode("rb"), 512); }

TEST(ButtonCode, OtherTextsMeanNoButton) {
    for (const char* text : {"", "C", "AB", "1x", " 1", "+1", "0x10", "2147483648", "-2147483649", "1.0"}) {
        EXPECT_EQ(ButtonCode(text), std::nullopt) << '"' << text << '"';
    }
}

}  // namespace
}  // namespace tavrik
