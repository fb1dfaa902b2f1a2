/// Other people's car models through the program: rigged, looked at and driven, and what was recorded is read back.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <numbers>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "host/car_placement.h"
#include "host/glb_writer.h"
#include "host/plugin_file.h"
#include "host/rig_objects.h"
#include "host/run_samples.h"
#include "host/scene_file.h"
#include "host/scene_rig.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"
#include "rig/parameter_tables.h"
#include "solver/double_maths.h"
#include "surface/surface_tree.h"
#include "tests/cli/program.h"
#include "tests/host/temp_folder.h"
#include "tests/support/test_random.h"

namespace tavrik::test {
namespace {

// Pulling away, a turn to the right, and a stop.
constexpr const char* kARightTurn =
    "0, 0, 0.4, 0, 0, 0\n"
    "3, 0.5, 0.3, 0, 0, 0\n"
    "5, 0, 0.3, 0, 0, 0\n"
    "7, 0, 0, 0.6, 0, 0\n";

/// Ten seconds over a ground that somebody else made, by keys: pulling away, to the left at second 3, to the right at second 6,
/// and rolling on from second 8.
struct Ride {
    const char *ground, *start;
    double throttle;       // seconds of each half second for which its key is down
    double steer;          // seconds for which each of the other two is
    double leastDistance;  // m
};
constexpr const char *kHill = "medium/bump.obj", *kHillStart = "-18,-18,45";  // 64 m wide and 3 m high: up, and over its flank
constexpr const char *kTown = "medium/town_geometry.glb", *kTownStart = "-120,-120,90";  // by the houses, on a plain of 2 km
constexpr double kLeft = 3.0, kRight = 6.0, kRideSeconds = 10.0;

std::string KeysOf(const Ride& ride) {
    std::vector<std::pair<double, std::string>> keys = {{0.0, "key-down W"},    {1.5, "key-up W"},
                                                        {kLeft, "key-down A"},  {kLeft + ride.steer, "key-up A"},
                                                        {kRight, "key-down D"}, {kRight + ride.steer, "key-up D"}};
    for (double end = 2.0; end < 8.25; end += 0.5) {
        keys.emplace_back(end - ride.throttle, "key-down W");
        keys.emplace_back(end, "key-up W");
    }
    std::stable_sort(keys.begin(), keys.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::string text;
    for (const auto& [seconds, key] : keys) text += std::to_string(seconds) + ", " + key + "\n";
    return text;
}

// A truck and its trailer, put together from the parts of one file.
constexpr const char* kTruckFile = "cars/truck_and_trailer/meshes.glb";
constexpr const char* kTruckPlaces = R"({"vehicles": [
        {"name": "Cab", "hitch": [0, 0.7046, -0.9601], "parts": [
            {"name": "TruckCab", "at": [-0.0017, 0.2229, -0.0955]},
            {"name": "Wheel", "at": [-0.5754, 0.2237, 1.0087]}, {"name": "Wheel", "at": [0.572, 0.2237, 1.0087]},
            {"name": "Wheel", "at": [-0.5754, 0.2237, -0.8789]}, {"name": "Wheel", "at": [0.572, 0.2237, -0.8789]}]},
        {"name": "Trailer", "tongue": [0, 0.7046, -0.9601], "parts": [
            {"name": "TruckTrailer", "at": [-0.0017, 0.6379, -2.7812]},
            {"name": "Wheel", "at": [-0.5754, 0.2352, -3.382]}, {"name": "Wheel", "at": [0.572, 0.2352, -3.382]},
            {"name": "Wheel", "at": [-0.5754, 0.2352, -4.314]}, {"name": "Wheel", "at": [0.572, 0.2352, -4.314]}]}]})";

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

/// A model of boxes and wheels, in metres, Y up, looking along +Z.
class ModelFile {
 public:
    void AddBox(const std::string& name, const DPoint3& centre, const DPoint3& half) {
        std::vector<float> points;
        for (int i = 0; i < 8; ++i) {
            for (const double v :
                 {(i & 1) != 0 ? half.x : -half.x, (i & 2) != 0 ? half.y : -half.y, (i & 4) != 0 ? half.z : -half.z})
                points.push_back(float(v));
        }
        Add(name, points,
            {0, 2, 1, 1, 2, 3, 4, 5, 6, 5, 7, 6, 0, 1, 4, 1, 5, 4, 2, 6, 3, 3, 6, 7, 0, 4, 2, 2, 4, 6, 1, 3, 5, 3, 7, 5},
            centre);
    }
    void AddWheel(const std::string& name, const DPoint3& centre, double radius, double scaleX = 1.0) {
        constexpr std::uint32_t kCorners = 24;
        std::vector<float> points;
        std::vector<std::uint32_t> corners;
        for (std::uint32_t i = 0; i < kCorners; ++i) {
            const double angle = 2.0 * std::numbers::pi * i / kCorners;
            for (const double x : {-0.1, 0.1}) {
                points.insert(points.end(), {float(x), float(radius * std::cos(angle)), float(radius * std::sin(angle))});
            }
            const std::uint32_t a = 2 * i, b = 2 * ((i + 1) % kCorners);
            for (const std::uint32_t c : {a, a + 1, b, a + 1, b + 1, b}) corners.push_back(c);
            if (i > 1) {
                for (const std::uint32_t c : {0u, a - 2, a, 1u, a + 1, a - 1}) corners.push_back(c);
            }
        }
        Add(name, points, corners, centre, scaleX);
    }
    void AddEmpty(const std::string& name) { glb_.Add("nodes", {{"name", name}}); }
    /// A car with its wheels at their corners.
    void AddCar(double scaleX = 1.0) {
        AddBox("body", {0, 0.8, 0}, {0.9, 0.5, 2.2});
        for (const double z : {1.35, -1.35}) {
            const std::string end = z > 0 ? "front" : "back";
            AddWheel("wheel_" + end + "_left", {0.78, 0.32, z}, 0.32, scaleX);
            AddWheel("wheel_" + end + "_right", {-0.78, 0.32, z}, 0.32);
        }
    }
    std::string Bytes() {
        std::string bytes, problem;
        nlohmann::ordered_json roots = nlohmann::ordered_json::array();
        for (std::size_t i = 0; i < glb_.json["nodes"].size(); ++i) roots.push_back(i);
        glb_.json["scene"] = 0;
        glb_.Add("scenes", {{"nodes", roots}});
        EXPECT_TRUE(glb_.Finish(bytes, problem)) << problem;
        return bytes;
    }

 private:
    void Add(const std::string& name, const std::vector<float>& points, const std::vector<std::uint32_t>& corners,
             const DPoint3& at, double scaleX = 1.0) {
        const int positions = glb_.AddFloats(points, 3, GlbWriter::Use::Vertices, true);
        const int indices = glb_.AddIndices(corners);
        nlohmann::ordered_json primitive = {{"attributes", {{"POSITION", positions}}}, {"indices", indices}};
        const int mesh = glb_.Add("meshes", {{"primitives", nlohmann::ordered_json::array({primitive})}});
        glb_.Add("nodes", {{"name", name}, {"mesh", mesh}, {"translation", {at.x, at.y, at.z}}, {"scale", {scaleX, 1.0, 1.0}}});
    }

    GlbWriter glb_;
};

/// One vehicle's run.
struct Driven {
    std::unique_ptr<CarRig> rig = std::make_unique<CarRig>();
    RunSamples run;

    const RunReading& Reading(double seconds) const {
        return run.readings[std::size_t(rig->motion.FindFrame(TimeValue(seconds * kTicksPerSecond))) - 1];
    }
    double LeastUpright() const {
        double least = 1.0;
        for (std::int32_t f = 0; f < rig->motion.frames; ++f) {
            least = std::min(least, rig->motion.chassis[std::size_t(f)].frame.row[2].z);
        }
        return least;
    }
};

class Rig : public testing::Test {
 protected:
    void SetUp() override {
        ::setenv("TAVRIK_PLUGIN", TAVRIK_PLUGIN_FILE, 1);
        Expect({"ground", "plane", "--triangles", "200", "--out", "plane.obj"});
    }
    void TearDown() override { tavrik_host::ResetScene(); }

    std::string Expect(const std::vector<std::string>& arguments) const {
        const ProgramResult result = RunTavrik(folder.path(), arguments);
        EXPECT_EQ(result.status, 0) << result.error;
        return result.out;
    }
    /// Rigs a model onto the plane. @param more  further options
    std::string Make(const std::string& model, const std::vector<std::string>& more = {}) const {
        std::vector<std::string> words = {"rig", model, "--ground", "plane.obj", "--out", "scene.glb"};
        words.insert(words.end(), more.begin(), more.end());
        return Expect(words);
    }
    void WriteCar() const {
        ModelFile car;
        car.AddCar();
        folder.Write("car.glb", car.Bytes());
    }
    /// Loads the scene for a look at its nodes.
    void Load() const {
        std::string problem;
        tavrik_host::SceneDocument document;
        ASSERT_TRUE(tavrik_host::LoadTavrikPlugin(problem) && tavrik_host::LoadScene(folder / "scene.glb", document, problem))
            << problem;
    }
    /// Drives the first vehicle of the scene and reads all of them.
    std::vector<Driven> Drive(double seconds, const std::string& master = "", const std::string& hands = kARightTurn) const {
        folder.Write("hands.csv", hands);
        std::vector<std::string> words = {"drive", "scene.glb", "--input", "hands.csv", "--seconds", std::to_string(seconds)};
        if (!master.empty()) words.insert(words.end(), {"--master", master});
        const std::string told = Expect(words);
        EXPECT_FALSE(Has(told, "Note")) << told;
        Load();
        std::vector<Driven> vehicles;
        std::string problem;
        for (INode* node : tavrik_host::NodesOf(ObjectClass::Tavrik)) {
            Driven& driven = vehicles.emplace_back();
            EXPECT_TRUE(tavrik_host::ReadRig(*node, *driven.rig, problem)) << problem;
            driven.run = TakeRunSamples(*driven.rig);
        }
        return vehicles;
    }
    /// Rigs a model onto the ride's ground and has a look at the scene.
    void MakeOn(const Ride& ride, const std::string& model, const std::vector<std::string>& more = {}) const {
        const std::filesystem::path ground = std::filesystem::path(DataFolder()) / "ground" / ride.ground;
        std::vector<std::string> words = {"rig", model, "--ground", ground.string(), "--at", ride.start, "--out", "scene.glb"};
        words.insert(words.end(), more.begin(), more.end());
        Expect(words);
        const std::string told = Expect({"check", "scene.glb"});
        EXPECT_FALSE(Has(told, "Error")) << told;
    }
    void ExpectSettles(const std::vector<std::string>& more = {}) const {
        std::vector<std::string> words = {"settle", "scene.glb"};
        words.insert(words.end(), more.begin(), more.end());
        const std::string told = Expect(words);
        EXPECT_TRUE(Has(told, "Settled   ")) << told;
        EXPECT_FALSE(Has(Expect({"check", "scene.glb"}), "Error"));
    }
    /// The vehicle stayed above its ground and on its wheels, and got somewhere.
    /// @param surface  the ground, which it never left
    static void ExpectStayedUpright(const Driven& vehicle, const SurfaceTree& surface, double leastUpright,
                                    double leastDistance) {
        EXPECT_GT(vehicle.LeastUpright(), leastUpright);
        double way = 0.0, standing = 0.0;
        const std::vector<RunReading>& readings = vehicle.run.readings;
        ASSERT_GT(readings.back().seconds, kRideSeconds - 0.1);
        for (std::size_t i = 0; i < readings.size(); ++i) {
            const DPoint3& p = readings[i].position;
            double ground = 0.0;
            ASSERT_TRUE(GroundBelow(surface, p.x, p.y, ground)) << "ran off at second " << readings[i].seconds;
            if (i == 0) standing = p.z - ground;
            ASSERT_GT(p.z - ground, 0.5 * standing) << "second " << readings[i].seconds;
            ASSERT_LT(p.z - ground, 2.0 * standing) << "second " << readings[i].seconds;
            if (i > 0) way += Length(p - readings[i - 1].position);
        }
        EXPECT_GT(way, leastDistance * 100.0);
        EXPECT_LT(way, leastDistance * 300.0);
    }
    /// Rides a scene that is rigged, and has its film looked at by other people's tools.
    void ExpectGoodRide(const Ride& ride, double leastUpright, double leastTurn, const std::string& master = "") const {
        const std::vector<Driven> vehicles = Drive(kRideSeconds, master, KeysOf(ride));
        SurfaceTree surface;
        ASSERT_TRUE(surface.Build(tavrik_host::ReadSurface(*tavrik_host::NodesOf(ObjectClass::Tavrik).front())));
        for (const Driven& vehicle : vehicles) ExpectStayedUpright(vehicle, surface, leastUpright, ride.leastDistance);
        const Driven& driven = vehicles.front();
        EXPECT_LT(driven.Reading(kLeft + 2.0).heading, driven.Reading(kLeft).heading - leastTurn);
        EXPECT_GT(driven.Reading(kRight + 2.0).heading, driven.Reading(kRight).heading + leastTurn);
        Expect({"bake", "scene.glb", "--out", "film.glb"});
        ExpectValid("film.glb");
    }
    /// Skips what is left of a test where the validator isn't installed.
    void ExpectValid(const std::string& file) const {
        const std::string tools = TAVRIK_TOOLS_FOLDER;
        if (!std::filesystem::exists(tools + "/node_modules") || std::system("command -v node >/dev/null") != 0) {
            GTEST_SKIP() << "run npm ci in " << tools << " first";
        }
        const std::string command = "node '" + tools + "/validate_gltf.mjs' '" + (folder / file).string() + "' >'" +
                                    (folder / "verdict.txt").string() + "' 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0) << FileBytes(folder / "verdict.txt");
    }
    /// A model that can't be rigged: one sentence that tells `fault` and names the model, and nothing is written.
    void ExpectRefused(const std::string& fault, std::vector<std::string> words) const {
        const std::string before = folder.List();
        words.insert(words.begin(), "rig");
        words.insert(words.end(), {"--out", "scene.glb"});
        const ProgramResult result = RunTavrik(folder.path(), words);
        EXPECT_EQ(result.status, 1) << result.out;
        EXPECT_TRUE(Has(result.error, fault)) << result.error;
        EXPECT_TRUE(Has(result.error, words[1])) << result.error;
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(folder.List(), before);
    }
    void ExpectModelRefused(const std::string& fault, ModelFile& model, const std::vector<std::string>& more = {}) const {
        folder.Write("bad.glb", model.Bytes());
        std::vector<std::string> words = {"bad.glb"};
        words.insert(words.end(), more.begin(), more.end());
        ExpectRefused(fault, words);
    }

    TempFolder folder;
};

/// Every drawn mesh but the ground with the class of what it hangs under.
struct Hung {
    INode* mesh;
    ObjectClass under;
};
std::vector<Hung> HungMeshes() {
    std::vector<Hung> hung;
    for (INode* node : tavrik_host::AllNodes()) {
        const std::string name = tavrik_host::ToUtf8(node->GetName());
        if (name == "ground" || tavrik_host::ReadMesh(*node).faces.empty()) continue;
        INode* parent = node->GetParentNode();
        hung.push_back({node, parent == nullptr ? ObjectClass::None : tavrik_host::ClassOf(*parent)});
    }
    return hung;
}

// ---------------------------------------------------------------------------------------------------------- everyone's models

struct DataCar {
    const char* file;
    std::size_t wheels, wheelMeshes;
    double height;  // of the lowest to the highest drawn point, cm
    bool bike = false;
};
std::ostream& operator<<(std::ostream& out, const DataCar& car) { return out << car.file; }

class RiggedModel : public Rig, public testing::WithParamInterface<DataCar> {
 protected:
    void SetUp() override {
        model = std::filesystem::path(DataFolder()) / "cars" / GetParam().file;
        if (!std::filesystem::exists(model)) GTEST_SKIP() << "no real input data at " << DataFolder();
        Rig::SetUp();
    }
    std::filesystem::path model;
};

INSTANTIATE_TEST_SUITE_P(Data, RiggedModel,
                         testing::Values(DataCar{"kenney_starter/vehicle-truck-yellow.glb", 4, 4, 155.0},
                                         DataCar{"kenney_starter/vehicle-motorcycle.glb", 2, 2, 126.6, true},
                                         DataCar{"kenney_toykit/vehicle-racer.glb", 4, 4, 112.5},
                                         DataCar{"milk_truck/CesiumMilkTruck.glb", 4, 4, 258.3},
                                         DataCar{"sedan/sedan_assembled.glb", 4, 4, 166.4}),
                         [](const auto& named) {
                             std::string name = std::filesystem::path(named.param.file).stem().string();
                             std::replace_if(
                                 name.begin(), name.end(), [](char c) { return std::isalnum(c) == 0; }, '_');
                             return name;
                         });

TEST_P(RiggedModel, HasItsMeshesUnderChassisAndWheels) {
    const std::string told = Make(model.string());
    EXPECT_TRUE(Has(told, "forward")) << told;
    EXPECT_FALSE(Has(told, "Note")) << told;
    const std::string info = Expect({"info", "scene.glb"});
    EXPECT_FALSE(Has(info, "Note")) << info;
    Load();
    EXPECT_EQ(tavrik_host::NodesOf(ObjectClass::Wheel).size(), GetParam().wheels);
    EXPECT_EQ(tavrik_host::NodesOf(ObjectClass::Suspension).size(), GetParam().wheels);
    std::size_t onWheels = 0, onChassis = 0;
    for (const Hung& hung : HungMeshes()) {
        onWheels += hung.under == ObjectClass::Wheel ? 1 : 0;
        onChassis += hung.under == ObjectClass::Chassis ? 1 : 0;
        EXPECT_TRUE(hung.under == ObjectClass::Wheel || hung.under == ObjectClass::Chassis);
    }
    EXPECT_EQ(onWheels, GetParam().wheelMeshes);
    EXPECT_GE(onChassis, 1u);
}

TEST_P(RiggedModel, StandsWithItsDrawnTyresOnTheGround) {
    Make(model.string());
    Load();
    double low = 1e300, high = -1e300;
    for (const Hung& hung : HungMeshes()) {
        for (const Point3& p : tavrik_host::ReadMesh(*hung.mesh).verts) {
            low = std::min(low, double(p.z));
            high = std::max(high, double(p.z));
        }
    }
    EXPECT_NEAR(low, 0.0, 1.0);  // tyres sink in by some millimetres
    EXPECT_NEAR(high - low, GetParam().height, 0.2);
}

TEST_P(RiggedModel, HasItsWheelMeshesAboutTheirAxles) {
    Make(model.string());
    Load();
    for (const Hung& hung : HungMeshes()) {
        if (hung.under != ObjectClass::Wheel) continue;
        // Row 2 of the wheel's node is its axle: seen along it, the mesh lies round about the node.
        const DMatrix3 wheel = tavrik_host::RigFrame(hung.mesh->GetParentNode()->GetNodeTM(0));
        const double radius = double(tavrik_host::FloatParam(*hung.mesh->GetParentNode(), WheelParam::Radius));
        DPoint3 low{1e300, 1e300, 1e300}, high{-1e300, -1e300, -1e300};
        for (const Point3& p : tavrik_host::ReadMesh(*hung.mesh).verts) {
            const DPoint3 d = FromPoint3(p) - wheel.row[3];
            const DPoint3 own = {Dot(d, wheel.row[0]), Dot(d, wheel.row[1]), Dot(d, wheel.row[2])};
            low = {std::min(low.x, own.x), std::min(low.y, own.y), std::min(low.z, own.z)};
            high = {std::max(high.x, own.x), std::max(high.y, own.y), std::max(high.z, own.z)};
        }
        EXPECT_NEAR(high.x + low.x, 0.0, 0.05 * radius);
        EXPECT_NEAR(high.y + low.y, 0.0, 0.05 * radius);
        EXPECT_NEAR(high.x, high.y, 0.08 * radius);
        EXPECT_LT(high.z - low.z, 1.6 * radius);
    }
}

TEST_P(RiggedModel, DrivesForwardTurnsToTheAskedSideAndStops) {
    Make(model.string(), {"--at", "0,0,0"});
    const std::vector<Driven> vehicles = Drive(10.0);
    ASSERT_EQ(vehicles.size(), 1u);
    const Driven& car = vehicles.front();
    const RunReading &start = car.Reading(0.0), &turning = car.Reading(3.0);
    EXPECT_GT(turning.position.y - start.position.y, 300.0);
    EXPECT_LT(std::abs(turning.position.x - start.position.x), 30.0);
    EXPECT_GT(turning.speed, 200.0);
    EXPECT_GT(car.Reading(6.5).heading, GetParam().bike ? 4.0 : 20.0);
    EXPECT_LT(car.Reading(9.9).speed, 20.0);
    EXPECT_GT(car.LeastUpright(), GetParam().bike ? 0.85 : 0.97);
}

TEST_P(RiggedModel, StaysAtItsHeightWhileNobodyDrives) {
    Make(model.string());
    folder.Write("nobody.csv", "0, 0, 0, 1, 1, 0\n");
    Expect({"drive", "scene.glb", "--input", "nobody.csv", "--seconds", "3"});
    Load();
    Driven car;
    std::string problem;
    ASSERT_TRUE(tavrik_host::ReadRig(*tavrik_host::NodesOf(ObjectClass::Tavrik).front(), *car.rig, problem)) << problem;
    car.run = TakeRunSamples(*car.rig);
    const double seconds = GetParam().bike ? 0.8 : 2.9;  // a bike falls over at rest in the end
    EXPECT_NEAR(car.Reading(seconds).position.z, car.Reading(0.0).position.z, 1.0);
}

TEST_P(RiggedModel, RidesOverTheGroundsOfOthersByKeys) {
    const bool bike = GetParam().bike;
    // A motorcycle leans before it turns, and so wants its keys longer; on the plain everyone is twice as fast.
    for (const Ride& ride :
         {Ride{kHill, kHillStart, 0.2, bike ? 1.0 : 0.5, 40.0}, Ride{kTown, kTownStart, 0.4, bike ? 1.0 : 0.3, 60.0}}) {
        SCOPED_TRACE(ride.ground);
        MakeOn(ride, model.string());
        if (bike) {
            const std::string before = FileBytes(folder / "scene.glb");
            const ProgramResult settled = RunTavrik(folder.path(), {"settle", "scene.glb"});
            EXPECT_EQ(settled.status, 1) << settled.out;
            EXPECT_TRUE(Has(settled.error, "is balanced only while it is driven, so it can't stand by itself"))
                << settled.error;
            EXPECT_EQ(FileBytes(folder / "scene.glb"), before);
        } else {
            ExpectSettles();
        }
        ExpectGoodRide(ride, bike ? 0.85 : 0.95, bike ? 3.0 : 5.0);
    }
}

std::filesystem::path TruckFile() { return std::filesystem::path(DataFolder()) / kTruckFile; }

TEST_F(Rig, ATruckAndItsTrailerRideOverTheGroundsOfOthersByKeys) {
    if (!std::filesystem::exists(TruckFile())) GTEST_SKIP() << "no real input data at " << DataFolder();
    folder.Write("places.json", kTruckPlaces);
    for (const Ride& ride : {Ride{kHill, kHillStart, 0.4, 0.5, 25.0}, Ride{kTown, kTownStart, 0.4, 0.3, 30.0}}) {
        SCOPED_TRACE(ride.ground);
        MakeOn(ride, TruckFile().string(), {"--place", "places.json"});
        ExpectSettles({"--master", "Cab"});
        ExpectGoodRide(ride, 0.95, 5.0, "Cab");
    }
}

TEST_F(Rig, DrawsATruckAndItsTrailerFromPlaces) {
    const std::filesystem::path model = TruckFile();
    if (!std::filesystem::exists(model)) GTEST_SKIP() << "no real input data at " << DataFolder();
    folder.Write("places.json", kTruckPlaces);
    Make(model.string(), {"--place", "places.json"});
    const std::string info = Expect({"info", "scene.glb"});
    EXPECT_TRUE(Has(info, "Car       Cab: locked")) << info;
    EXPECT_TRUE(Has(info, "to Trailer Tongue_001")) << info;
    const std::vector<Driven> train = Drive(8.0, "Cab");
    ASSERT_EQ(train.size(), 2u);
    EXPECT_GT(train[0].Reading(3.0).position.y, 300.0);
    for (const Driven& vehicle : train) {
        EXPECT_EQ(vehicle.rig->unitCount, 4);
        EXPECT_GT(vehicle.LeastUpright(), 0.97);
    }
    EXPECT_GT(train[0].Reading(6.0).heading, 15.0);
    EXPECT_GT(train[1].Reading(6.0).heading, 5.0);
    EXPECT_LT(train[1].Reading(6.0).heading, train[0].Reading(6.0).heading);
}

// -------------------------------------------------------------------------------------------------------------------- options

TEST_F(Rig, ADryRunTellsAndWritesNothing) {
    WriteCar();
    const std::string before = folder.List();
    const std::string told = Expect({"rig", "car.glb", "--dry-run"});
    for (const char* part : {"wheels", "forward", "+z in its file", "mass", "front left", "Hz"})
        EXPECT_TRUE(Has(told, part)) << told;
    EXPECT_FALSE(Has(told, "Written")) << told;
    EXPECT_EQ(folder.List(), before);
}

TEST_F(Rig, OptionsDecideOtherwise) {
    WriteCar();
    const std::string told = Expect({"rig", "car.glb", "--dry-run", "--mass", "900", "--frequency", "2", "--forward", "-z",
                                     "--drive", "1,2", "--steer", "2", "--handbrake", "none", "--unit", "cm", "--no-bike"});
    for (const char* part : {"900 kg", "-z in its file", "1 and 2", "none", "0.01 m"}) EXPECT_TRUE(Has(told, part)) << told;
    EXPECT_TRUE(Has(told, " 2.00 ")) << told;
}

TEST_F(Rig, ThePartsKeepTheirNames) {
    WriteCar();
    Make("car.glb", {"--name", "Boxcar"});
    const std::string info = Expect({"info", "scene.glb"});
    EXPECT_TRUE(Has(info, "Car       Boxcar")) << info;
    EXPECT_TRUE(Has(info, "Wheel front left with Suspension front left")) << info;
    Load();
    std::vector<std::string> names;
    for (const Hung& hung : HungMeshes()) names.push_back(tavrik_host::ToUtf8(hung.mesh->GetName()));
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"body", "wheel_back_left", "wheel_back_right", "wheel_front_left",
                                               "wheel_front_right"}));
}

TEST_F(Rig, PartsGoWhereRowsPutThem) {
    ModelFile kit;
    kit.AddBox("body", {0, 0, 0}, {0.9, 0.5, 2.2});
    kit.AddWheel("wheel", {3, 0, 0}, 0.32);
    folder.Write("kit.glb", kit.Bytes());
    Make("kit.glb", {"--place", "body,0,0.8,0", "--place", "wheel,0.78,0.32,1.35", "--place", "wheel,-0.78,0.32,1.35,180",
                     "--place", "wheel,0.78,0.32,-1.35", "--place", "wheel,-0.78,0.32,-1.35,180"});
    Load();
    EXPECT_EQ(tavrik_host::NodesOf(ObjectClass::Wheel).size(), 4u);
    EXPECT_EQ(HungMeshes().size(), 5u);
}

TEST_F(Rig, WithoutAGroundTheSampleIsDrivenOn) {
    WriteCar();
    Expect({"rig", "car.glb", "--out", "scene.glb"});
    EXPECT_TRUE(Has(Expect({"info", "scene.glb"}), "Surface  ground"));
}

// ------------------------------------------------------------------------------------------------------------------ bad input

TEST_F(Rig, AModelWithoutWheelsIsRefused) {
    ModelFile model;
    model.AddBox("body", {0, 0.8, 0}, {0.9, 0.5, 2.2});
    ExpectModelRefused("looks like a wheel", model);
}

TEST_F(Rig, WheelsInsideEachOtherAreRefused) {
    ModelFile model;
    model.AddCar();
    model.AddWheel("wheel_extra", {0.78, 0.32, 1.2}, 0.32);
    ExpectModelRefused("wheel", model);
}

TEST_F(Rig, AMirroredWheelIsRefused) {
    ModelFile model;
    model.AddCar(/*scaleX=*/-1.0);
    ExpectModelRefused("mirrored", model);
}

TEST_F(Rig, AModelWithoutTrianglesIsRefused) {
    ModelFile model;
    model.AddEmpty("body");
    ExpectModelRefused("triangles", model);
}

TEST_F(Rig, NamesThatMatchNothingAreRefused) {
    ModelFile wheels, body, root;
    for (ModelFile* model : {&wheels, &body, &root}) model->AddCar();
    ExpectModelRefused("\"tread*\"", wheels, {"--wheels", "tread*"});
    ExpectModelRefused("\"hull\"", body, {"--body", "hull"});
    ExpectModelRefused("\"van\"", root, {"--root", "van"});
}

TEST_F(Rig, FilesThatAreMissingOrNoModelsAreRefused) {
    folder.Write("words.glb", "no model at all");
    ExpectRefused("", {"missing.glb"});
    ExpectRefused("", {"words.glb"});
    folder.Write("car.txt", "no model at all");
    ExpectRefused("extension", {"car.txt"});
}

TEST_F(Rig, BrokenPlacesAreRefused) {
    WriteCar();
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"{\"parts\": [", "not JSON"},
        {"[]", "must be an object"},
        {"4e400", "too large"},
        {"{}", "no \"parts\""},
        {R"({"parts": [{"name": "body"}]})", "\"at\""},
        {R"({"parts": [{"name": "body", "at": [0, 1]}]})", "three numbers"},
        {R"({"parts": [{"name": "body", "at": [0, 1, 2], "pitch": 3}]})", "\"pitch\""},
        {R"({"vehicles": []})", "list of vehicles"},
        {R"({"vehicles": [{"parts": [{"name": "body", "at": [0, 0, 0]}]}, {"parts": [{"name": "body", "at": [0, 0, 0]}]}]})",
         "\"hitch\""}};
    for (const auto& [text, fault] : cases) {
        folder.Write("places.json", text);
        const std::string before = folder.List();
        const ProgramResult result =
            RunTavrik(folder.path(), {"rig", "car.glb", "--place", "places.json", "--out", "scene.glb"});
        EXPECT_EQ(result.status, 1) << text;
        EXPECT_TRUE(Has(result.error, fault)) << text << result.error;
        EXPECT_TRUE(Has(result.error, "places.json")) << result.error;
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
        EXPECT_EQ(folder.List(), before);
    }
}

TEST_F(Rig, AStartBesideTheGroundIsRefused) {
    WriteCar();
    const std::string before = folder.List();
    const ProgramResult result =
        RunTavrik(folder.path(), {"rig", "car.glb", "--ground", "plane.obj", "--at", "900,0,0", "--out", "scene.glb"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(Has(result.error, "plane.obj")) << result.error;
    EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
    EXPECT_EQ(folder.List(), before);
}

TEST_F(Rig, WrongWordsAreWrongUsage) {
    WriteCar();
    const std::string before = folder.List();
    const std::vector<std::vector<std::string>> cases = {{},
                                                         {"car.glb"},
                                                         {"car.glb", "--out", "scene.obj"},
                                                         {"car.glb", "--out", "car.glb"},
                                                         {"car.glb", "--dry-run", "--unit", "furlong"},
                                                         {"car.glb", "--dry-run", "--forward", "ahead"},
                                                         {"car.glb", "--dry-run", "--steer", "0"},
                                                         {"car.glb", "--dry-run", "--place", "wheel,1,2"},
                                                         {"car.glb", "--dry-run", "--hitch", "1,2"},
                                                         {"car.glb", "--dry-run", "--bike", "--no-bike"}};
    for (std::vector<std::string> words : cases) {
        words.insert(words.begin(), "rig");
        const ProgramResult result = RunTavrik(folder.path(), words);
        EXPECT_EQ(result.status, 2) << words.back();
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
    }
    EXPECT_EQ(folder.List(), before);
}

}  // namespace
}  // namespace tavrik::test
