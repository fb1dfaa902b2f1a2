/// Cars that drive themselves, through the program: lines are laid into scenes and followed, and so are nodes that move.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tests/cli/program.h"
#include "tests/host/temp_folder.h"
#include "tests/support/test_random.h"

namespace tavrik::test {
namespace {

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

/// The number behind some words, or NaN.
double NumberAfter(const std::string& text, const std::string& words) {
    const std::size_t at = text.find(words);
    return at == std::string::npos ? std::nan("") : std::atof(text.c_str() + at + words.size());
}

// An oval, 240 m around: straights of 50 m and halves of circles.
std::string Oval() {
    std::ostringstream rows;
    rows << "x,y\n";
    for (int i = 0; i < 10; ++i) rows << 0 << ',' << i * 5 << '\n';
    for (int i = 0; i < 14; ++i) {
        const double angle = i * 3.141592653589793 / 14;
        rows << 22.5 - 22.5 * std::cos(angle) << ',' << 50 + 22.5 * std::sin(angle) << '\n';
    }
    for (int i = 0; i < 10; ++i) rows << 45 << ',' << 50 - i * 5 << '\n';
    for (int i = 0; i < 14; ++i) {
        const double angle = i * 3.141592653589793 / 14;
        rows << 22.5 + 22.5 * std::cos(angle) << ',' << -22.5 * std::sin(angle) << '\n';
    }
    return rows.str();
}

class Follow : public testing::Test {
 protected:
    std::string Expect(const std::vector<std::string>& arguments) const {
        const ProgramResult result = RunTavrik(folder.path(), arguments);
        EXPECT_EQ(result.status, 0) << result.error;
        return result.out;
    }
    /// One sentence on the error output, and the scene as it was.
    std::string ExpectRefused(const std::vector<std::string>& arguments) const {
        const std::string before = FileBytes(folder / "scene.glb");
        const ProgramResult result = RunTavrik(folder.path(), arguments);
        EXPECT_EQ(result.status, 1) << result.out;
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
        EXPECT_EQ(FileBytes(folder / "scene.glb"), before);
        return result.error;
    }
    void MakePlane() const {
        Expect({"ground", "plane", "--triangles", "200", "--out", "ground.obj"});
        Expect({"new", "--ground", "ground.obj", "--out", "scene.glb"});
    }
    void MakeOval() const {
        MakePlane();
        folder.Write("oval.csv", Oval());
        Expect({"path", "import", "oval.csv", "--into", "scene.glb"});
    }
    /// Speeds at and after a second, km/h.
    std::vector<double> SpeedsAfter(double seconds) const { return ColumnAfter(seconds, 7); }
    /// A column of the telemetry, 0 being the seconds, at and after a second.
    std::vector<double> ColumnAfter(double seconds, std::size_t column) const {
        std::istringstream rows(FileBytes(folder / "run.csv"));
        std::string row;
        std::getline(rows, row);
        std::vector<double> readings;
        while (std::getline(rows, row)) {
            std::istringstream cells(row);
            std::string cell;
            std::vector<double> values;
            while (values.size() < 8 && std::getline(cells, cell, ',')) values.push_back(std::atof(cell.c_str()));
            if (values.size() == 8 && values[0] >= seconds) readings.push_back(values[column]);
        }
        return readings;
    }

    TempFolder folder;
};

// -------------------------------------------------------------------------------------------------------------------- a road

TEST_F(Follow, ALineIsFollowedForALap) {
    MakeOval();
    const std::string out = Expect({"drive", "scene.glb", "--follow", "oval", "--cruise", "35", "--laps", "1"});
    EXPECT_TRUE(Has(out, "oval: a closed line, 24")) << out;
    EXPECT_NEAR(NumberAfter(out, "Lap       1 in "), 241.0 / (35 / 3.6), 5.0) << out;
    EXPECT_LT(NumberAfter(out, "Off line  "), 1.0) << out;
}

TEST_F(Follow, WhatWasFollowedStaysSet) {
    MakeOval();
    Expect({"drive", "scene.glb", "--follow", "oval", "--seconds", "0.5"});
    EXPECT_TRUE(Has(Expect({"drive", "scene.glb", "--seconds", "0.5"}), "Follows   oval"));
    // Rows take the wheel, and the artist's way stays.
    folder.Write("rows.csv", "0,0,1,0,0,0\n");
    EXPECT_FALSE(Has(Expect({"drive", "scene.glb", "--input", "rows.csv", "--seconds", "0.5"}), "Follows"));
    EXPECT_TRUE(Has(Expect({"drive", "scene.glb", "--seconds", "0.5"}), "Follows   oval"));
}

TEST_F(Follow, TheCruiseHoldsItsSpeed) {
    MakeOval();
    for (const int speed : {20, 38}) {
        Expect({"drive", "scene.glb", "--follow", "oval", "--cruise", std::to_string(speed), "--seconds", "25", "--telemetry",
                "run.csv"});
        const std::vector<double> speeds = SpeedsAfter(10.0);
        ASSERT_GT(speeds.size(), 1000u);
        for (const double kmh : speeds) ASSERT_NEAR(kmh, speed, 0.05 * speed);
    }
}

TEST_F(Follow, TheSameDriveGivesTheSameScene) {
    MakeOval();
    for (const char* out : {"a.glb", "b.glb"}) {
        Expect({"drive", "scene.glb", "--follow", "oval", "--cruise", "30", "--seconds", "8", "--out", out});
    }
    EXPECT_EQ(FileBytes(folder / "a.glb"), FileBytes(folder / "b.glb"));
}

TEST_F(Follow, EventsHaveThePedalsWhileTheLineSteers) {
    MakeOval();
    folder.Write("hands.txt", "0, key-down W\n3, key-up W\n");
    Expect({"drive", "scene.glb", "--follow", "oval", "--input", "hands.txt", "--seconds", "14", "--telemetry", "run.csv"});
    const std::vector<double> early = SpeedsAfter(2.9), late = SpeedsAfter(13.0);
    EXPECT_GT(early.front(), 20.0);
    EXPECT_LT(late.front(), early.front() - 3.0);
    EXPECT_FALSE(Has(FileBytes(folder / "run.csv"), "nan"));
}

TEST_F(Follow, SpeedKeysPressThePedalsAtTheirTimes) {
    MakeOval();
    folder.Write("keys.txt", "1, throttle\n4, none\n6, brake\n");
    Expect({"drive", "scene.glb", "--follow", "oval", "--speed-keys", "keys.txt", "--seconds", "12", "--telemetry", "run.csv"});
    const auto at = [this](double seconds) { return SpeedsAfter(seconds).front(); };
    EXPECT_LT(at(0.95), 1.0);
    EXPECT_GT(at(4.0), 15.0);
    EXPECT_GT(at(4.0) - at(6.0), 0.2);                        // rolls
    EXPECT_GT(at(6.0) - at(7.0), 2.0 * (at(5.0) - at(6.0)));  // brakes
    EXPECT_NEAR(at(11.9), 0.0, 1.0);
}

TEST_F(Follow, SpeedKeysPressThePedalsAtTheirPlaces) {
    MakeOval();
    folder.Write("keys.txt", "0 s, throttle\n30 m, none\n60 m, brake\n");
    const std::string out = Expect(
        {"drive", "scene.glb", "--follow", "oval", "--speed-keys", "keys.txt", "--seconds", "30", "--telemetry", "run.csv"});
    EXPECT_FALSE(Has(out, "Note")) << out;
    // The oval begins with a straight of 50 m along y.
    const std::vector<double> speeds = SpeedsAfter(0.0), places = ColumnAfter(0.0, 2);
    const auto fastest = std::size_t(std::max_element(speeds.begin(), speeds.end()) - speeds.begin());
    EXPECT_NEAR(places[fastest] / 100.0, 30.0, 1.5);
    EXPECT_NEAR(speeds.back(), 0.0, 1.0);
}

TEST_F(Follow, SpeedKeysMayBeAScriptOfPedalEvents) {
    MakeOval();
    folder.Write("events.txt", "0, key-down W\n3, key-up W\n5, key-down S\n");
    folder.Write("keys.txt", "0, throttle\n3, none\n5, brake\n");
    Expect({"drive", "scene.glb", "--follow", "oval", "--input", "events.txt", "--seconds", "7", "--out", "a.glb"});
    Expect({"drive", "scene.glb", "--follow", "oval", "--speed-keys", "events.txt", "--seconds", "7", "--out", "b.glb"});
    Expect({"drive", "scene.glb", "--follow", "oval", "--speed-keys", "keys.txt", "--seconds", "7", "--out", "c.glb"});
    EXPECT_EQ(FileBytes(folder / "a.glb"), FileBytes(folder / "b.glb"));
    EXPECT_EQ(FileBytes(folder / "a.glb"), FileBytes(folder / "c.glb"));
}

TEST_F(Follow, SpeedKeysThatDidNotComeAreTold) {
    MakeOval();
    folder.Write("keys.txt", "0, throttle\n900 m, none\n950 m, brake\n");
    const std::string out = Expect({"drive", "scene.glb", "--follow", "oval", "--speed-keys", "keys.txt", "--seconds", "2"});
    EXPECT_TRUE(Has(out, "before the last 2 rows of the speed keys came")) << out;
}

TEST_F(Follow, ARunThatEndsWithItsLapLeavesNoEmptyTime) {
    MakeOval();
    const std::string out = Expect({"drive", "scene.glb", "--follow", "oval", "--cruise", "36", "--laps", "1"});
    const double lap = NumberAfter(out, "Lap       1 in ");
    const std::string info = Expect({"info", "scene.glb"});
    EXPECT_NEAR(NumberAfter(info, "0.00 to "), std::max(20.0, lap), 0.1) << info;
}

TEST_F(Follow, ALapThatTakesTooLongIsSaid) {
    MakeOval();
    const std::string out = Expect({"drive", "scene.glb", "--follow", "oval", "--laps", "1", "--seconds", "5"});
    EXPECT_TRUE(Has(out, "0 of 1 lap")) << out;
}

TEST_F(Follow, AnOpenLineIsPassedOnce) {
    MakePlane();
    folder.Write("way.csv", "0,0\n0,40\n5,80\n");
    Expect({"path", "import", "way.csv", "--into", "scene.glb"});
    const std::string out = Expect({"drive", "scene.glb", "--follow", "way", "--laps", "1"});
    EXPECT_TRUE(Has(out, "Passed    1 in ")) << out;
    EXPECT_TRUE(Has(ExpectRefused({"drive", "scene.glb", "--follow", "way", "--laps", "2"}), "open line"));
}

// --------------------------------------------------------------------------------------------------------------- a timetable

TEST_F(Follow, AMovingNodeIsFollowed) {
    Expect({"garage", "make", "chase", "--out", "scene.glb"});
    const std::string out = Expect({"drive", "scene.glb", "--follow", "target", "--seconds", "25"});
    EXPECT_TRUE(Has(out, "Follows   target")) << out;
    EXPECT_LT(NumberAfter(out, "m at most, "), 2.0) << out;  // at the end; the garage's tests look at a whole minute
    EXPECT_TRUE(Has(ExpectRefused({"drive", "scene.glb", "--follow", "target", "--cruise", "30"}), "gives the speed"));
    EXPECT_TRUE(Has(ExpectRefused({"drive", "scene.glb", "--laps", "1"}), "gives the speed"));
    EXPECT_TRUE(Has(ExpectRefused({"drive", "scene.glb", "--speed-keys", "keys.txt"}), "gives the speed"));
}

// ----------------------------------------------------------------------------------------------------------------- bad input

TEST_F(Follow, ANodeThatIsNotThereNamesThoseThatAre) {
    MakeOval();
    EXPECT_TRUE(Has(ExpectRefused({"drive", "scene.glb", "--follow", "ovel"}), "there is \"oval\"."));
    EXPECT_TRUE(Has(ExpectRefused({"drive", "scene.glb", "--follow", "ground"}), "neither lines nor motion"));
    EXPECT_TRUE(Has(ExpectRefused({"drive", "scene.glb", "--follow", "Stock car"}), "part of the car"));
}

TEST_F(Follow, ACarsOwnChassisLeadsNowhere) {
    MakeOval();
    Expect({"drive", "scene.glb", "--seconds", "1"});
    const std::string problem = ExpectRefused({"drive", "scene.glb", "--follow", "nobody"});
    EXPECT_TRUE(Has(problem, "there is \"oval\".")) << problem;  // not chassis, wheels or body, which move now
}

TEST_F(Follow, ASceneWithNothingToFollowSaysSo) {
    MakePlane();
    EXPECT_TRUE(Has(ExpectRefused({"drive", "scene.glb", "--follow", "road"}), "path import"));
    EXPECT_TRUE(Has(ExpectRefused({"drive", "scene.glb", "--laps", "1"}), "nothing set to follow"));
}

TEST_F(Follow, RowsOfADriverAreNoHandsBesideALine) {
    MakeOval();
    folder.Write("rows.csv", "0,0,1,0,0,0\n");
    EXPECT_TRUE(Has(ExpectRefused({"drive", "scene.glb", "--follow", "oval", "--input", "rows.csv"}), "takes events"));
}

TEST_F(Follow, SpeedKeysWithOtherKeysThanPedalsAreRefused) {
    MakeOval();
    folder.Write("keys.txt", "0, key-down W\n2, key-down A\n");
    const std::string problem = ExpectRefused({"drive", "scene.glb", "--follow", "oval", "--speed-keys", "keys.txt"});
    EXPECT_TRUE(Has(problem, "keys.txt: line 2: key \"A\" is no pedal's")) << problem;
    EXPECT_TRUE(Has(ExpectRefused({"drive", "scene.glb", "--follow", "oval", "--speed-keys", "none.txt"}), "none.txt"));
}

TEST_F(Follow, ASceneWithoutACarIsRefused) {
    Expect({"ground", "plane", "--triangles", "2", "--out", "scene.glb"});
    folder.Write("oval.csv", Oval());
    EXPECT_TRUE(Has(ExpectRefused({"drive", "scene.glb", "--follow", "oval"}), "no car"));
    EXPECT_TRUE(Has(ExpectRefused({"path", "import", "oval.csv", "--into", "scene.glb"}), "no car"));
}

TEST_F(Follow, WrongWordsAreWrongUsage) {
    MakePlane();
    for (const std::vector<std::string>& words : {std::vector<std::string>{"drive", "scene.glb", "--cruise", "0"},
                                                  {"drive", "scene.glb", "--cruise", "nan"},
                                                  {"drive", "scene.glb", "--laps", "0"},
                                                  {"drive", "scene.glb", "--rudder", "0"},
                                                  {"drive", "scene.glb", "--follow", ""},
                                                  {"drive", "scene.glb", "--follow", "a", "--cruise", "9", "--input", "x"},
                                                  {"drive", "scene.glb", "--cruise", "9", "--speed-keys", "x"},
                                                  {"drive", "scene.glb", "--input", "y", "--speed-keys", "x"},
                                                  {"drive", "scene.glb", "--speed-keys", ""},
                                                  {"drive", "scene.glb", "--speed-keys", "x", "--out", "x"},
                                                  {"drive", "scene.glb", "--speed-keys", "x.csv", "--telemetry", "x.csv"},
                                                  {"drive", "--ground", "ground.obj", "--speed-keys", "x"},
                                                  {"drive", "--ground", "ground.obj", "--follow", "a"},
                                                  {"path"},
                                                  {"path", "import", "a.csv"},
                                                  {"path", "import", "a.csv", "--into", "a.csv"},
                                                  {"path", "import", "a.csv", "--into", "scene.glb", "--open", "--closed"},
                                                  {"path", "import", "a.csv", "--into", "scene.glb", "--scale", "0"},
                                                  {"path", "import", "a.csv", "--into", "scene.glb", "--at", "3"},
                                                  {"ground", "road", "--out", "g.obj"},
                                                  {"ground", "road", "a.csv", "--out", "g.obj", "--width", "0"},
                                                  {"ground", "road", "a.csv", "--out", "g.obj", "--size", "50"},
                                                  {"ground", "plane", "a.csv", "--out", "g.obj"},
                                                  {"ground", "plane", "--out", "g.obj", "--bank", "5"}}) {
        EXPECT_EQ(RunTavrik(folder.path(), words).status, 2) << words[0] << ' ' << words.back();
    }
}

TEST_F(Follow, BadLinesAreRefused) {
    MakePlane();
    const std::pair<const char*, const char*> lines[] = {{"", "no point"},
                                                         {"nan,nan\n1,1\n", "line 1"},
                                                         {"1,1\n", "one point"},
                                                         {"1,1\n1,1\n", "one spot"},
                                                         {"0,0\n0,400\n", "leaves the ground at x 0.0 m, y 15"}};
    for (const auto& [text, part] : lines) {
        folder.Write("bad.csv", text);
        const std::string problem = ExpectRefused({"path", "import", "bad.csv", "--into", "scene.glb"});
        EXPECT_TRUE(Has(problem, part)) << problem;
    }
    EXPECT_TRUE(Has(ExpectRefused({"path", "import", "none.csv", "--into", "scene.glb"}), "none.csv"));
}

TEST_F(Follow, ASecondLineOfTheSameNameIsRefused) {
    MakeOval();
    EXPECT_TRUE(Has(ExpectRefused({"path", "import", "oval.csv", "--into", "scene.glb"}), "--name"));
    EXPECT_TRUE(
        Has(Expect({"path", "import", "oval.csv", "--into", "scene.glb", "--name", "inner", "--scale", "0.5"}), "inner"));
}

TEST_F(Follow, AnImportKeepsTheSceneAsItWas) {
    MakePlane();
    const std::string before = FileBytes(folder / "scene.glb");
    folder.Write("oval.csv", Oval());
    Expect({"path", "import", "oval.csv", "--into", "scene.glb"});
    EXPECT_EQ(FileBytes(folder / "scene.glb.bak"), before);
    Expect({"path", "import", "oval.csv", "--into", "scene.glb", "--name", "b", "--out", "other.glb"});
    EXPECT_TRUE(std::filesystem::exists(folder / "other.glb"));
}

// --------------------------------------------------------------------------------------------------------------- real tracks

struct Track {
    const char* name;
    double metres;  // 0: an open path
};

class RealTracks : public Follow {
 protected:
    static std::string FileOf(const char* name) { return (std::filesystem::path(DataFolder()) / "tracks" / name).string(); }
    void Make(const char* name) const {
        const std::string made = Expect({"ground", "road", FileOf(name), "--out", "ground.obj", "--width", "12"});
        std::string start = made.substr(made.find("--at ") + 5);
        start.resize(start.find(' '));
        Expect({"new", "--ground", "ground.obj", "--at", start, "--out", "scene.glb"});
    }
};

TEST_F(RealTracks, EveryLineCanBeImported) {
    const Track tracks[] = {{"centre_lines/BrandsHatch.csv", 3905},  {"centre_lines/Norisring.csv", 2296},
                            {"centre_lines/Oschersleben.csv", 3692}, {"centre_lines/Spielberg.csv", 4315},
                            {"race_lines/Norisring.csv", 2260},      {"race_lines/Spielberg.csv", 4285},
                            {"paths/ISO_double_lane_change.txt", 0}, {"paths/curve.txt", 0}};
    if (!std::filesystem::exists(FileOf(tracks[0].name))) GTEST_SKIP() << "no real tracks here";
    for (const Track& track : tracks) {
        Make(track.name);
        const std::string out = Expect({"path", "import", FileOf(track.name), "--into", "scene.glb", "--name", "line"});
        EXPECT_TRUE(Has(out, track.metres > 0 ? "line: closed, " : "line: open, ")) << out;
        if (track.metres > 0) {
            EXPECT_NEAR(NumberAfter(out, "closed, "), track.metres, 1.0) << out;
        }
    }
}

// A lap under the sanitizers takes several times as long, so there each track is driven for its first seconds only.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TAVRIK_SLOW_BUILD
#endif
#endif
#if defined(TAVRIK_SLOW_BUILD) || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kWholeLaps = false;
#else
constexpr bool kWholeLaps = true;
#endif

struct Lap {
    const char* name;
    const char* file;
    double seconds, offLine;  // measured at 40 km/h: the lap, and the farthest from the line, metres
};
void PrintTo(const Lap& lap, std::ostream* out) { *out << lap.file; }

class RealLaps : public RealTracks, public testing::WithParamInterface<Lap> {};

TEST_P(RealLaps, StayNearTheLine) {
    const auto& [name, file, seconds, offLine] = GetParam();
    if (!std::filesystem::exists(FileOf(file))) GTEST_SKIP() << "no real tracks here";
    Make(file);
    Expect({"path", "import", FileOf(file), "--into", "scene.glb", "--name", "line"});
    std::vector<std::string> drive = {"drive", "scene.glb", "--follow", "line",   "--cruise",
                                      "40",    "--rudder",  "60",       "--laps", "1"};
    if (!kWholeLaps) drive.insert(drive.end(), {"--seconds", "40"});
    const std::string out = Expect(drive);
    EXPECT_LT(NumberAfter(out, "Off line  "), offLine + 0.3) << out;
    if (kWholeLaps) {
        EXPECT_NEAR(NumberAfter(out, "Lap       1 in "), seconds, 2.0) << out;
    }
}

INSTANTIATE_TEST_SUITE_P(At40Kmh, RealLaps,
                         testing::Values(Lap{"NorisringCentre", "centre_lines/Norisring.csv", 209.9, 2.30},
                                         Lap{"NorisringRace", "race_lines/Norisring.csv", 205.8, 0.83},
                                         Lap{"OscherslebenCentre", "centre_lines/Oschersleben.csv", 335.1, 0.43},
                                         Lap{"BrandsHatchCentre", "centre_lines/BrandsHatch.csv", 354.3, 0.43},
                                         Lap{"SpielbergRace", "race_lines/Spielberg.csv", 388.6, 0.56},
                                         Lap{"SpielbergCentre", "centre_lines/Spielberg.csv", 392.0, 2.08}),
                         [](const testing::TestParamInfo<Lap>& lap) { return std::string(lap.param.name); });

}  // namespace
}  // namespace tavrik::test
