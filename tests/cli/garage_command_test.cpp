/// The garage through the program: every scene is made, looked at and driven, and what was recorded is read back.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "host/plugin_file.h"
#include "host/rig_objects.h"
#include "host/run_samples.h"
#include "host/scene_file.h"
#include "host/scene_rig.h"
#include "host/sdk/standin.h"
#include "tests/cli/program.h"
#include "tests/drive/drive_on_hills.h"
#include "tests/host/temp_folder.h"

namespace tavrik::test {
namespace {

// Ten seconds and more of pulling away, both turns, and a stop.
constexpr const char* kRoundTheBlock =
    "0, 0, 0.6, 0, 0, 0\n"
    "3, 0.5, 0.6, 0, 0, 0\n"
    "5, -0.5, 0.6, 0, 0, 0\n"
    "7.5, 0, 0.6, 0, 0, 0\n"
    "9, 0, 0, 0.5, 0, 0\n";
constexpr const char* kHandsOff = "0, 0, 0, 0, 0, 0\n";
constexpr const char* kTrains[] = {"trailer", "two-trailers"};

/// One vehicle's run.
struct Driven {
    std::unique_ptr<CarRig> rig;
    RunSamples run;

    const MotionSample& At(double seconds) const { return rig->motion.chassis[FrameAt(seconds)]; }
    const RunReading& Reading(double seconds) const { return run.readings[FrameAt(seconds) - 1]; }
    std::size_t FrameAt(double seconds) const {
        return std::size_t(rig->motion.FindFrame(TimeValue(seconds * kTicksPerSecond)));
    }
    std::size_t Frames() const { return std::size_t(rig->motion.frames); }
    /// How upright it stays: the least Z of its Z axis.
    double LeastUpright() const {
        double least = 1.0;
        for (std::size_t f = 0; f < Frames(); ++f) least = std::min(least, rig->motion.chassis[f].frame.row[2].z);
        return least;
    }
};

class Garage : public testing::Test {
 protected:
    void SetUp() override { ::setenv("TAVRIK_PLUGIN", TAVRIK_PLUGIN_FILE, 1); }
    void TearDown() override { tavrik_host::ResetScene(); }

    std::string Expect(const std::vector<std::string>& arguments) const {
        const ProgramResult result = RunTavrik(folder.path(), arguments);
        EXPECT_EQ(result.status, 0) << result.error;
        return result.out;
    }
    /// @param more  further options
    void Make(const std::string& name, const std::vector<std::string>& more = {}) const {
        std::vector<std::string> words = {"garage", "make", name, "--out", "scene.glb"};
        words.insert(words.end(), more.begin(), more.end());
        Expect(words);
    }
    /// Drives the first vehicle of the scene and reads all of them, in their order.
    /// @param hands  empty: the car drives itself
    std::vector<Driven> Drive(const std::string& hands, double seconds) const {
        std::vector<std::string> words = {"drive", "scene.glb", "--seconds", std::to_string(seconds)};
        if (!hands.empty()) {
            folder.Write("hands.csv", hands);
            words.insert(words.end(), {"--input", "hands.csv"});
        }
        if (Expect({"info", "scene.glb"}).find("Tow car") != std::string::npos) {
            words.insert(words.end(), {"--master", "Tow car"});
        }
        Expect(words);
        return ReadScene();
    }
    std::vector<Driven> ReadScene() const {
        std::string problem;
        tavrik_host::SceneDocument document;
        std::vector<Driven> vehicles;
        EXPECT_TRUE(tavrik_host::LoadTavrikPlugin(problem) && tavrik_host::LoadScene(folder / "scene.glb", document, problem))
            << problem;
        for (INode* master : tavrik_host::NodesOf(ObjectClass::Tavrik)) {
            Driven& driven = vehicles.emplace_back();
            driven.rig = std::make_unique<CarRig>();
            EXPECT_TRUE(tavrik_host::ReadRig(*master, *driven.rig, problem)) << problem;
            driven.run = TakeRunSamples(*driven.rig);
        }
        return vehicles;
    }

    TempFolder folder;
};

std::uint64_t HashOf(const std::vector<Driven>& vehicles) {
    std::uint64_t hash = 0;
    for (const Driven& vehicle : vehicles) hash = hash * 31 + HashRecording(vehicle.rig->motion);
    return hash;
}

/// The widest that hitch and tongue ever were apart. The one in front has its hitch last, the one behind its tongue first.
double WidestGap(const Driven& front, const Driven& behind) {
    const DPoint3 hitch = front.rig->hitches[front.rig->hitchCount - 1].frame.row[3];
    const DPoint3 tongue = behind.rig->hitches[0].frame.row[3];
    double widest = 0.0;
    for (std::size_t f = 0; f < front.Frames(); ++f) {
        const DPoint3 a = TransformPoint(hitch, front.rig->motion.chassis[f].frame);
        const DPoint3 b = TransformPoint(tongue, behind.rig->motion.chassis[f].frame);
        widest = std::max(widest, Length(a - b));
    }
    return widest;
}

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

// ---------------------------------------------------------------------------------------------------------------- the command

TEST_F(Garage, ListTellsEverySceneInALine) {
    const std::string list = Expect({"garage", "list"});
    EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 8) << list;
    for (const char* name :
         {"trailer ", "two-trailers ", "motorcycle ", "six-wheeler ", "timed-push ", "animated-push ", "chase ", "lap "}) {
        EXPECT_TRUE(Has(list, name)) << list;
    }
}

TEST_F(Garage, AnUnknownNameIsRefusedInOneSentence) {
    const ProgramResult result = RunTavrik(folder.path(), {"garage", "make", "tank", "--out", "scene.glb"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(Has(result.error, "\"tank\"")) << result.error;
    EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
    EXPECT_EQ(folder.List(), "");
}

TEST_F(Garage, WrongWordsAreWrongUsage) {
    for (const std::vector<std::string>& words : {std::vector<std::string>{"garage"},
                                                  {"garage", "make", "trailer"},
                                                  {"garage", "make", "", "--out", "scene.glb"},
                                                  {"garage", "make", "trailer", "--out", "scene.obj"}}) {
        EXPECT_EQ(RunTavrik(folder.path(), words).status, 2) << words.back();
    }
    EXPECT_EQ(folder.List(), "");
}

TEST_F(Garage, AStartBesideTheGroundIsRefused) {
    const ProgramResult result = RunTavrik(folder.path(), {"garage", "make", "trailer", "--at", "900,0", "--out", "scene.glb"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
    EXPECT_EQ(folder.List(), "");
}

TEST_F(Garage, AGroundFromAFileTakesThePlaceOfItsOwn) {
    Expect({"ground", "plane", "--triangles", "200", "--out", "ground.obj"});
    Make("motorcycle", {"--ground", "ground.obj", "--at", "3,4,0"});
    EXPECT_TRUE(Has(Expect({"info", "scene.glb"}), "Surface  ground: 200 triangles"));
    const std::vector<Driven> vehicles = Drive(kHandsOff, 0.1);
    EXPECT_NEAR(vehicles.front().Reading(0.0).position.x, 300.0, 1.0);
    EXPECT_NEAR(vehicles.front().Reading(0.0).position.y, 400.0, 1.0);
}

TEST_F(Garage, EveryPartBelongsToItsOwnVehicle) {
    Make("two-trailers");
    const std::string info = Expect({"info", "scene.glb"});
    for (const char* part : {"Car       Tow car: locked, not driven yet", "Car       Trailer: locked, not driven yet",
                             "Car       Second trailer: locked", "Hitch    Trailer Hitch_001: to Trailer Tongue_001",
                             "Hitch    Trailer Hitch_002: to Trailer Tongue_002"}) {
        EXPECT_TRUE(Has(info, part)) << info;
    }
    EXPECT_FALSE(Has(info, "Note")) << info;
    const std::vector<Driven> vehicles = ReadScene();
    ASSERT_EQ(vehicles.size(), 3u);
    EXPECT_EQ(vehicles[0].rig->unitCount, 4);
    EXPECT_EQ(vehicles[1].rig->unitCount, 2);
    EXPECT_EQ(vehicles[2].rig->unitCount, 2);
}

TEST_F(Garage, InfoTellsThePushes) {
    Make("timed-push");
    EXPECT_TRUE(Has(Expect({"info", "scene.glb"}), "3 Mn, at 2.00 s for 0.2 s"));
    Make("animated-push");
    EXPECT_TRUE(Has(Expect({"info", "scene.glb"}), "0.6 Mn, animated"));
}

// ------------------------------------------------------------------------------------------------------------------- trailers

TEST_F(Garage, TrailersFollowWithinTheirHitch) {
    for (const char* name : kTrains) {
        Make(name);
        const std::vector<Driven> train = Drive(kRoundTheBlock, 12.0);
        for (std::size_t i = 0; i < train.size(); ++i) {
            EXPECT_GT(train[i].LeastUpright(), 0.97) << name << i;  // measured 0.99
            EXPECT_EQ(train[i].rig->motion.frames, train[0].rig->motion.frames);
            if (i > 0) {
                EXPECT_LT(WidestGap(train[i - 1], train[i]), 1.5) << name << i;  // measured 0.6
            }
        }
        EXPECT_GT(train[0].Reading(9.0).position.y - train[0].Reading(0.0).position.y, 1000.0);
    }
}

TEST_F(Garage, ATrailerTurnsInAfterItsCar) {
    Make("trailer");
    const std::vector<Driven> train = Drive(kRoundTheBlock, 5.0);
    const double car = train[0].Reading(4.5).heading, trailer = train[1].Reading(4.5).heading;
    EXPECT_GT(car, 5.0);
    EXPECT_GT(trailer, 1.0);
    EXPECT_LT(trailer, car - 2.0);
}

TEST_F(Garage, ATrainDrivenAgainIsTheSameTrain) {
    // The car is locked anew while its trailers still hang on it where they started.
    for (const char* name : kTrains) {
        Make(name);
        const std::uint64_t first = HashOf(Drive(kRoundTheBlock, 3.0));
        EXPECT_EQ(HashOf(Drive(kRoundTheBlock, 3.0)), first) << name;
    }
}

TEST_F(Garage, OnASlopeTheTrainStartsOnItsWheels) {
    for (const char* at : {"100,80,30", "-90,120,200", "60,-150,-75"}) {
        Make("two-trailers", {"--at", at});
        const std::vector<Driven> train = Drive("0, 0, 0, 1, 1, 0\n", 1.0);
        for (std::size_t i = 0; i < train.size(); ++i) {
            const double drop = train[i].Reading(0.5).position.z - train[i].Reading(0.0).position.z;
            EXPECT_LT(std::abs(drop), 12.0) << at << i;
            if (i > 0) {
                EXPECT_LT(WidestGap(train[i - 1], train[i]), 1.5) << at << i;
            }
        }
    }
}

// ------------------------------------------------------------------------------------------------------------------- the rest

TEST_F(Garage, TheMotorcycleStaysUprightWhileDriven) {
    Make("motorcycle");
    const std::vector<Driven> vehicles = Drive(kRoundTheBlock, 12.0);
    const Driven& bike = vehicles.front();
    EXPECT_GT(bike.LeastUpright(), 0.85);  // measured lean up to 20 degrees
    EXPECT_GT(bike.Reading(9.0).speed, 800.0);
    EXPECT_LT(bike.Reading(11.9).speed, bike.Reading(9.0).speed * 0.6);  // brakes, and still doesn't fall
}

TEST_F(Garage, TheMotorcycleLeansIntoItsTurns) {
    Make("motorcycle");
    const std::vector<Driven> vehicles = Drive(kRoundTheBlock, 8.0);
    const RunReading &right = vehicles.front().Reading(4.9), &left = vehicles.front().Reading(7.4);
    EXPECT_GT(right.roll, 5.0);
    EXPECT_GT(right.heading, vehicles.front().Reading(4.4).heading);
    EXPECT_LT(left.roll, -5.0);
    EXPECT_LT(left.heading, vehicles.front().Reading(6.9).heading);
}

TEST_F(Garage, TheSixWheelerSteersToTheAskedSide) {
    for (const double side : {1.0, -1.0}) {
        Make("six-wheeler");
        const std::string hands =
            "0, 0, 0.7, 0, 0, 0\n2, " + std::to_string(side * 0.6) + ", 0.6, 0, 0, 0\n8, 0, 0, 0.6, 0, 0\n";
        const std::vector<Driven> vehicles = Drive(hands, 10.5);
        EXPECT_GT(vehicles.front().Reading(5.0).heading * side, 20.0);
        EXPECT_GT(vehicles.front().LeastUpright(), 0.98);
        EXPECT_EQ(vehicles.front().rig->unitCount, 6);
    }
}

TEST_F(Garage, ATimedPushChangesMomentumInItsSpanAndNotBefore) {
    Make("timed-push");
    const std::vector<Driven> vehicles = Drive(kHandsOff, 10.0);
    const Driven& car = vehicles.front();
    const auto sideways = [&](double seconds) { return car.At(seconds).momentum.x; };
    // 3e6 for 0.2 s
    constexpr double kImpulse = 3e6 * 0.2;
    for (double seconds = 0.0; seconds < 1.995; seconds += 0.05) EXPECT_LT(std::abs(sideways(seconds)), kImpulse * 0.02);
    EXPECT_GT(sideways(2.1), kImpulse * 0.2);
    EXPECT_GT(sideways(2.2), sideways(2.1));
    EXPECT_LT(sideways(2.3), sideways(2.2));  // nobody pushes any more, and the tyres hold
    EXPECT_LT(car.Reading(3.0).heading, -10.0);
    EXPECT_GT(car.LeastUpright(), 0.95);
}

TEST_F(Garage, AnAnimatedPushFollowsItsKeys) {
    Make("animated-push");
    const std::vector<Driven> vehicles = Drive(kHandsOff, 10.0);
    const auto gain = [&](double from, double to) {
        return (vehicles.front().At(to).momentum.y - vehicles.front().At(from).momentum.y) / (to - from);
    };
    constexpr double kForce = 0.6e6;
    EXPECT_LT(std::abs(gain(0.0, 1.0)), kForce * 0.02);  // zero percent until the first key
    EXPECT_GT(gain(1.0, 1.5), kForce * 0.05);            // a ramp
    EXPECT_GT(gain(1.5, 2.0), gain(1.0, 1.5) * 1.5);
    EXPECT_GT(gain(2.0, 2.5), gain(1.5, 2.0));
    EXPECT_LT(gain(2.0, 2.5), kForce * 0.98);  // all of it; the tyres take their part
    EXPECT_GT(gain(2.0, 2.5), kForce * 0.6);
    EXPECT_LT(gain(4.5, 5.0), gain(4.0, 4.5));                   // and back
    EXPECT_LT(gain(5.75, 6.25), gain(9.0, 9.9) - kForce * 0.2);  // half of it against the way, besides what rolling takes
    EXPECT_GT(gain(7.5, 8.0), gain(5.75, 6.25));
}

// ---------------------------------------------------------------------------------------------------------------- by itself

TEST_F(Garage, TheChasingCarCatchesUpWithItsBlockAndStaysThere) {
    Make("chase");
    const std::vector<Driven> vehicles = Drive("", 60.0);
    // The block circles 40 m in radius at 40 km/h about a spot beside and before the start.
    constexpr double kRadius = 4000.0, kTurn = 6.283185307179586 * kRadius / (100'000.0 * 40.0 / 3600.0);
    double worst = 0.0;
    for (double seconds = 20.0; seconds < 59.9; seconds += 0.1) {
        const double angle = 6.283185307179586 * seconds / kTurn;
        const DPoint3 car = vehicles.front().Reading(seconds).position;
        const double x = kRadius * (1.0 - std::cos(angle)) - car.x, y = 1500.0 + kRadius * std::sin(angle) - car.y;
        worst = std::max(worst, std::sqrt(x * x + y * y));
    }
    EXPECT_LT(worst, 150.0);
    EXPECT_GT(vehicles.front().LeastUpright(), 0.95);
}

TEST_F(Garage, TheCircuitIsDrivenRoundByItself) {
    Make("lap");
    const std::string out = Expect({"drive", "scene.glb", "--laps", "1", "--cruise", "45"});
    EXPECT_TRUE(Has(out, "Lap       1 in 8")) << out;
    const std::vector<Driven> vehicles = ReadScene();
    EXPECT_GT(vehicles.front().LeastUpright(), 0.95);
}

TEST_F(Garage, TheCircuitNeedsItsRoomOnAnotherGround) {
    Expect({"ground", "plane", "--triangles", "200", "--out", "ground.obj"});
    const ProgramResult result =
        RunTavrik(folder.path(), {"garage", "make", "lap", "--ground", "ground.obj", "--out", "scene.glb"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(Has(result.error, "no room")) << result.error;
    EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
}

// --------------------------------------------------------------------------------------------------------------------- golden

struct GoldenRun {
    const char* name;
    std::uint64_t hash;
};
std::ostream& operator<<(std::ostream& out, const GoldenRun& run) { return out << run.name; }

class GoldenGarage : public Garage, public testing::WithParamInterface<GoldenRun> {};

// Written down once, from a run whose properties the tests above hold. The sines in them are those of glibc 2.36; another C
// library may round one of them otherwise, which is no fault of the solver's.
INSTANTIATE_TEST_SUITE_P(Scenes, GoldenGarage,
                         testing::Values(GoldenRun{"trailer", 0x743f42993a552e33}, GoldenRun{"two-trailers", 0x22c456eb2a2ea67},
                                         GoldenRun{"motorcycle", 0x5527502357d7f7fb},
                                         GoldenRun{"six-wheeler", 0xb80d8601e7fb2334},
                                         GoldenRun{"timed-push", 0x26fe560cbb38bda9},
                                         GoldenRun{"animated-push", 0xa578ddab74539d9b}, GoldenRun{"chase", 0x2d39baeb3af02d0d},
                                         GoldenRun{"lap", 0xf1c6aef950841792}),
                         [](const auto& named) {
                             std::string name = named.param.name;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST_P(GoldenGarage, DriveIsTheSameBitForBit) {
    Make(GetParam().name);
    const std::string name = GetParam().name;
    const std::uint64_t hash = HashOf(Drive(name == "chase" || name == "lap" ? "" : kRoundTheBlock, 12.0));
    EXPECT_EQ(hash, GetParam().hash) << "0x" << std::hex << hash;
}

}  // namespace
}  // namespace tavrik::test
