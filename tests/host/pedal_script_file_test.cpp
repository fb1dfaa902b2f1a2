#include "host/pedal_script_file.h"

#include <gtest/gtest.h>

namespace tavrik {
namespace {

constexpr PedalBindings kBindings{.throttle = 'W', .brake = 'S', .handBrake = 32};

PedalScript Read(std::string_view text) {
    PedalScript script;
    std::string problem;
    EXPECT_TRUE(ReadPedalScriptText("keys.txt", text, kBindings, script, problem)) << problem;
    return script;
}

std::string Refused(std::string_view text) {
    PedalScript script;
    script.rows.resize(3);
    std::string problem;
    EXPECT_FALSE(ReadPedalScriptText("keys.txt", text, kBindings, script, problem)) << text;
    EXPECT_TRUE(problem.starts_with("keys.txt: ") && problem.ends_with('.')) << problem;
    EXPECT_EQ(script.rows.size(), 3u) << "a refused script leaves the old one alone";
    return problem;
}

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

constexpr HeldPedals kNone{}, kThrottle{.throttle = true}, kBrake{.brake = true};

TEST(PedalScriptFile, ARowHoldsItsPedalsAndLetsTheOthersGo) {
    const PedalScript script = Read("3, throttle\n9, brake hand-brake\n12, none\n");
    ASSERT_EQ(script.rows.size(), 3u);
    EXPECT_EQ(script.rows[0].at, 3.0);
    EXPECT_EQ(script.rows[0].held, kThrottle);
    EXPECT_EQ(script.rows[1].held, (HeldPedals{.brake = true, .handBrake = true}));
    EXPECT_EQ(script.rows[2].held, kNone);
}

TEST(PedalScriptFile, TimesAreSecondsAndDistancesAreMetres) {
    const PedalScript script =
        Read("# when, pedals\nwhen,pedals\n1,throttle\n2 s,none\n2.5s,brake\n\n30 m,throttle # on\n45m,none\r\n");
    ASSERT_EQ(script.rows.size(), 5u);
    const std::pair<bool, double> expected[] = {{false, 1.0}, {false, 2.0}, {false, 2.5}, {true, 30.0}, {true, 45.0}};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(script.rows[i].byMetres, expected[i].first) << i;
        EXPECT_EQ(script.rows[i].at, expected[i].second) << i;
    }
}

TEST(PedalScriptFile, KeyEventsPressAndReleaseTheBoundPedals) {
    const PedalScript script = Read("0, key-down W\n4, key-down S\n5, key-up w\n6, key-down SPACE\n");
    ASSERT_EQ(script.rows.size(), 4u);
    EXPECT_EQ(script.rows[1].held, (HeldPedals{.throttle = true, .brake = true}));
    EXPECT_EQ(script.rows[2].held, kBrake);
    EXPECT_EQ(script.rows[3].held, (HeldPedals{.brake = true, .handBrake = true}));
}

TEST(PedalScriptFile, KeysThatAreNoPedalsAreRefused) {
    const std::string problem = Refused("0, throttle\n1, key-down A\n");
    EXPECT_TRUE(Has(problem, "line 2")) << problem;
    EXPECT_TRUE(Has(problem, "throttle (W), brake (S) and hand brake (SP) only")) << problem;
    EXPECT_TRUE(Has(problem, "--input")) << problem;
    EXPECT_TRUE(Has(Refused("1, key-down WW"), "there is no key"));
    EXPECT_TRUE(Has(Refused("1, key-down"), "one key"));
    EXPECT_TRUE(Has(Refused("1, key-up W S"), "one key"));
}

TEST(PedalScriptFile, WhatIsNoPedalIsRefused) {
    for (const char* text : {"1, left", "1, throttle left", "1, none brake", "1, throttle none", "1,", "1, mouse 3 4",
                             "1, pad RT 1", "0,0,1,0,0,0"}) {
        EXPECT_TRUE(Has(Refused(text), "is no pedal")) << text;
    }
    EXPECT_TRUE(Has(Refused("3 throttle"), "no comma"));
}

TEST(PedalScriptFile, WhatIsNoTimeAndNoDistanceIsRefused) {
    for (const char* when : {"nan", "-1", "1e99", "inf m", "3 km", "", "3 3"}) {
        EXPECT_TRUE(Has(Refused("0, none\n" + std::string(when) + ", brake"), "seconds or metres")) << when;
    }
}

TEST(PedalScriptFile, TimesAndDistancesAscendEachForItself) {
    EXPECT_EQ(Read("5, throttle\n2 m, none\n6, brake\n2 m, none\n").rows.size(), 4u);
    EXPECT_TRUE(Has(Refused("5, throttle\n4.5, none"), "4.5 s lie before the 5 s"));
    EXPECT_TRUE(Has(Refused("5 m, throttle\n4 s, brake\n3 m, none"), "3 m lie before the 5 m"));
}

TEST(PedalScriptFile, AnEmptyScriptIsRefused) {
    EXPECT_TRUE(Has(Refused(""), "holds no row"));
    EXPECT_TRUE(Has(Refused("# nothing\nwhen,pedals\n"), "holds no row"));
}

TEST(PedalPlayer, HoldsEachRowFromItsTimeToTheNext) {
    PedalPlayer player(Read("1, throttle\n2, brake\n"));
    EXPECT_EQ(player.HoldAt(0.99, 0.0), kNone);
    EXPECT_EQ(player.HoldAt(1.0, 0.0), kThrottle);
    EXPECT_EQ(player.HoldAt(1.99, 0.0), kThrottle);
    EXPECT_EQ(player.HoldAt(5.0, 0.0), kBrake);
    EXPECT_EQ(player.Left(), 0u);
    EXPECT_FALSE(player.ByMetres());
}

TEST(PedalPlayer, ARowWaitsForTheOneAboveIt) {
    PedalPlayer player(Read("0, throttle\n100 m, none\n3, brake\n"));
    EXPECT_TRUE(player.ByMetres());
    EXPECT_EQ(player.HoldAt(4.0, 60.0), kThrottle);
    EXPECT_EQ(player.Left(), 2u);
    EXPECT_EQ(player.HoldAt(6.0, 100.0), kBrake);
}

TEST(PedalPlayer, ACarThatSlidesBackTakesNoRowBack) {
    PedalPlayer player(Read("0, throttle\n10 m, brake\n"));
    EXPECT_EQ(player.HoldAt(1.0, 10.5), kBrake);
    EXPECT_EQ(player.HoldAt(2.0, 9.0), kBrake);
}

}  // namespace
}  // namespace tavrik
