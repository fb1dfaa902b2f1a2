#include "host/drive_scene.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/mesh_import.h"
#include "rig/stock_car.h"
#include "solver/rigid_body.h"
#include "tests/host/driven_car.h"
#include "tests/support/test_random.h"

namespace tavrik::test {
namespace {

/// A scene taken apart again.
struct OpenedScene {
    nlohmann::json json;
    std::string binary;

    std::vector<float> Numbers(std::size_t accessorIndex) const {
        const auto& accessor = json["accessors"][accessorIndex];
        const auto& view = json["bufferViews"][accessor["bufferView"].get<std::size_t>()];
        const std::string type = accessor["type"];
        const std::size_t width = type == "SCALAR" ? 1 : type == "VEC3" ? 3 : 4;
        std::vector<float> numbers(accessor["count"].get<std::size_t>() * width);
        std::memcpy(numbers.data(), binary.data() + view["byteOffset"].get<std::size_t>(), numbers.size() * 4);
        return numbers;
    }
    std::size_t Node(const std::string& name) const {
        for (std::size_t i = 0; i < json["nodes"].size(); ++i) {
            if (json["nodes"][i]["name"] == name) return i;
        }
        ADD_FAILURE() << "no node " << name;
        return 0;
    }
    /// Keys of one node: "translation", "rotation", or "time" for the seconds of the first.
    std::vector<float> Keys(const std::string& name, const std::string& path) const {
        const auto& animation = json["animations"][0];
        for (const auto& channel : animation["channels"]) {
            if (channel["target"]["node"] != Node(name) || (path != "time" && channel["target"]["path"] != path)) continue;
            const auto& sampler = animation["samplers"][channel["sampler"].get<std::size_t>()];
            return Numbers(sampler[path == "time" ? "input" : "output"]);
        }
        ADD_FAILURE() << "no keys for " << path << " of " << name;
        return {};
    }
};

OpenedScene Open(const std::string& glb) {
    OpenedScene scene;
    const auto number = [&](std::size_t at) {
        std::uint32_t value;
        std::memcpy(&value, glb.data() + at, 4);
        return std::size_t(value);
    };
    EXPECT_EQ(glb.substr(0, 4), "glTF");
    EXPECT_EQ(number(8), glb.size());
    const std::size_t text = number(12);
    scene.json = nlohmann::json::parse(glb.substr(20, text));
    scene.binary = glb.substr(20 + text + 8);
    EXPECT_EQ(scene.binary.size(), number(20 + text));
    return scene;
}

OpenedScene Make(const CarRig& rig, const DriveSceneOptions& options = {KeyChoice::EverySample, 160, kDrivenFrames, 1e-5}) {
    std::string glb, problem;
    EXPECT_TRUE(MakeDriveScene(rig, DrivenGround(), options, glb, problem)) << problem;
    return Open(glb);
}

TEST(DriveScene, HasGroundBodyAndAllWheels) {
    const OpenedScene scene = Make(DrivenCar());
    std::vector<std::string> names;
    for (const auto& node : scene.json["nodes"]) names.push_back(node["name"]);
    const std::vector<std::string> expected = {
        "ground", "body", "wheel_front_left", "wheel_front_right", "wheel_rear_left", "wheel_rear_right"};
    EXPECT_EQ(names, expected);
    EXPECT_EQ(scene.json["asset"]["generator"], "Tavrik");
}

TEST(DriveScene, KeysEverySampleAtItsTrueTime) {
    const CarRig& car = DrivenCar();
    const std::vector<float> seconds = Make(car).Keys("body", "time");
    ASSERT_EQ(seconds.size(), std::size_t(car.motion.frames) - 1);
    EXPECT_EQ(seconds[0], 0.0f);
    for (std::size_t i = 0; i < seconds.size(); ++i) {
        ASSERT_EQ(seconds[i], float(double(car.motion.times[i + 1] - car.motion.times[1]) / 4800.0));
    }
}

TEST(DriveScene, KeysEveryFrameWhenAskedTo) {
    const std::vector<float> seconds =
        Make(DrivenCar(), {KeyChoice::EveryFrame, 160, kDrivenFrames, 1e-5}).Keys("wheel_rear_left", "time");
    ASSERT_EQ(seconds.size(), std::size_t(kDrivenFrames));
    for (std::size_t i = 0; i < seconds.size(); ++i) ASSERT_EQ(seconds[i], float(double(i) / 30.0));
}

TEST(DriveScene, WritesMetresWithYUp) {
    const CarRig& car = DrivenCar();
    const std::vector<float> keys = Make(car).Keys("body", "translation");
    const DPoint3& p = car.motion.chassis.back().frame.row[3];
    EXPECT_EQ(keys[keys.size() - 3], float(p.x * 0.01));
    EXPECT_EQ(keys[keys.size() - 2], float(p.z * 0.01));
    EXPECT_EQ(keys[keys.size() - 1], float(-p.y * 0.01));
}

TEST(DriveScene, WritesUnitQuaternionsThatNeverJump) {
    const OpenedScene scene = Make(DrivenCar());
    for (const char* name : {"body", "wheel_front_left", "wheel_rear_right"}) {
        const std::vector<float> keys = scene.Keys(name, "rotation");
        for (std::size_t i = 0; i < keys.size(); i += 4) {
            double length = 0, cosine = 0;
            for (std::size_t k = i; k < i + 4; ++k) {
                length += double(keys[k]) * double(keys[k]);
                if (i > 0) cosine += double(keys[k]) * double(keys[k - 4]);
            }
            ASSERT_NEAR(length, 1.0, 1e-6);
            if (i > 0) {
                ASSERT_GT(cosine, 0.9) << name << " key " << i / 4;
            }
        }
    }
}

TEST(DriveScene, TellsFrameRateAndRange) {
    const auto extras = Make(DrivenCar()).json["scenes"][0]["extras"];
    EXPECT_EQ(extras["frameRate"], 30.0);
    EXPECT_EQ(extras["firstFrame"], 0);
    EXPECT_EQ(extras["lastFrame"], kDrivenFrames);
}

TEST(DriveScene, IsTheSameBytesEachTime) {
    std::string first, second, problem;
    ASSERT_TRUE(MakeDriveScene(DrivenCar(), DrivenGround(), {}, first, problem));
    ASSERT_TRUE(MakeDriveScene(DrivenCar(), DrivenGround(), {}, second, problem));
    EXPECT_TRUE(first == second);
}

TEST(DriveScene, RefusesNumbersThatAreNotFinite) {
    const auto rig = std::make_unique<CarRig>();
    MakeStockCar(*rig, IdentityDMatrix3());
    rig->chassisBody.frame.row[3].x = std::numeric_limits<double>::quiet_NaN();
    rig->Store(0);
    std::string glb = "untouched", problem;
    EXPECT_FALSE(MakeDriveScene(*rig, DrivenGround(), {}, glb, problem));
    EXPECT_NE(problem.find("not finite"), std::string::npos) << problem;
    rig->wheelBodies[1].frame.row[0] = {0, 0, 0};
    rig->Store(32);
    EXPECT_FALSE(MakeDriveScene(*rig, DrivenGround(), {}, glb, problem));
    EXPECT_NE(problem.find("wheel_front_right"), std::string::npos) << problem;
}

TEST(DriveScene, RefusesACarThatWasNotDriven) {
    const auto rig = std::make_unique<CarRig>();
    std::string glb, problem;
    EXPECT_FALSE(MakeDriveScene(*rig, DrivenGround(), {}, glb, problem));
    MakeStockCar(*rig, IdentityDMatrix3());
    EXPECT_FALSE(MakeDriveScene(*rig, DrivenGround(), {}, glb, problem));
}

TEST(GroundScene, ComesBackAsTheSameGround) {
    std::string glb, problem;
    ASSERT_TRUE(MakeGroundScene(DrivenGround(), 1e-5, glb, problem)) << problem;
    TriangleMesh ground;
    ASSERT_TRUE(ReadGroundBytes("a.glb", glb, {}, ground, problem)) << problem;
    ASSERT_EQ(ground.faces.size(), DrivenGround().faces.size());
    for (std::size_t i = 0; i < ground.verts.size(); ++i) {
        // Metres in single precision round once more: one step in 24 bits, 0.001 cm at 100 m.
        ASSERT_NEAR(double(ground.verts[i].x), double(DrivenGround().verts[i].x), 1e-3);
        ASSERT_NEAR(double(ground.verts[i].z), double(DrivenGround().verts[i].z), 1e-3);
    }
}

DMatrix3 FrameOf(const Turn& q) {
    return {{{1 - 2 * (q.y * q.y + q.z * q.z), 2 * (q.x * q.y + q.z * q.w), 2 * (q.x * q.z - q.y * q.w)},
             {2 * (q.x * q.y - q.z * q.w), 1 - 2 * (q.x * q.x + q.z * q.z), 2 * (q.y * q.z + q.x * q.w)},
             {2 * (q.x * q.z + q.y * q.w), 2 * (q.y * q.z - q.x * q.w), 1 - 2 * (q.x * q.x + q.y * q.y)},
             {0, 0, 0}}};
}

TEST(NearestTurn, GivesBackEveryRotation) {
    TestRandom random(TestSeed(7));
    for (int i = 0; i < TestRounds(2'000); ++i) {
        const DMatrix3 m = random.Turn();
        Turn turn;
        ASSERT_TRUE(NearestTurn(m, turn));
        const DMatrix3 back = FrameOf(turn);
        for (int r = 0; r < 3; ++r) ASSERT_LT(Length(back.row[r] - m.row[r]), 1e-12) << Digits(m.row[r]);
    }
}

TEST(NearestTurn, TakesHalfTurnsAboutEveryAxis) {
    for (const DMatrix3& m :
         {DMatrix3{{{1, 0, 0}, {0, -1, 0}, {0, 0, -1}, {0, 0, 0}}}, DMatrix3{{{-1, 0, 0}, {0, 1, 0}, {0, 0, -1}, {0, 0, 0}}},
          DMatrix3{{{-1, 0, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, 0}}}}) {
        Turn turn;
        ASSERT_TRUE(NearestTurn(m, turn));
        for (int r = 0; r < 3; ++r) EXPECT_LT(Length(FrameOf(turn).row[r] - m.row[r]), 1e-12);
    }
}

TEST(NearestTurn, IsAsCloseAsAnyOtherRotation) {
    TestRandom random(TestSeed(8));
    const auto distance = [](const DMatrix3& a, const DMatrix3& b) {
        double sum = 0;
        for (int r = 0; r < 3; ++r) sum += Dot(a.row[r] - b.row[r], a.row[r] - b.row[r]);
        return sum;
    };
    for (int i = 0; i < TestRounds(500); ++i) {
        DMatrix3 m = random.Turn();
        for (int r = 0; r < 3; ++r) m.row[r] += random.Vector(0.05);
        Turn turn;
        ASSERT_TRUE(NearestTurn(m, turn));
        const double best = distance(FrameOf(turn), m);
        for (int k = 0; k < 20; ++k) {
            Turn other = {turn.x + random.Between(-0.01, 0.01), turn.y + random.Between(-0.01, 0.01),
                          turn.z + random.Between(-0.01, 0.01), turn.w + random.Between(-0.01, 0.01)};
            const double length = std::sqrt(other.x * other.x + other.y * other.y + other.z * other.z + other.w * other.w);
            other = {other.x / length, other.y / length, other.z / length, other.w / length};
            ASSERT_GE(distance(FrameOf(other), m), best - 1e-12);
        }
    }
}

TEST(NearestTurn, SeesALeftHandedFrameAsAMirroredZAxis) {
    Turn turn;
    ASSERT_TRUE(NearestTurn({{{1, 0, 0}, {0, 1, 0}, {0, 0, -1}, {0, 0, 0}}}, turn));
    EXPECT_NEAR(turn.w, 1.0, 1e-12);
}

TEST(NearestTurn, RefusesRowsThatSpanNoSpace) {
    Turn turn;
    EXPECT_FALSE(NearestTurn({{{1, 0, 0}, {1, 0, 0}, {0, 0, 1}, {0, 0, 0}}}, turn));
    EXPECT_FALSE(NearestTurn({{{std::nan(""), 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}}}, turn));
}

}  // namespace
}  // namespace tavrik::test
