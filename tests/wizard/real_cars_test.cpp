/// Car models that others made, from file to plan.

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>

#include "host/car_model_reader.h"
#include "solver/world_step.h"
#include "tests/solver/solver_scene.h"
#include "tests/wizard/model_cars.h"

namespace tavrik::test {
namespace {

struct RealCar {
    const char* file;
    std::size_t wheels;
    double radius;    // model units
    DPoint3 forward;  // once Z is up: a file's (x, y, z) is (x, -z, y)
    bool bike = false;
    std::size_t splits = 0;
    WizardOptions options = {};
};

std::vector<PartPlace> TruckPlaces(const std::string& body, const DPoint3& at, std::initializer_list<double> axles,
                                   double height) {
    // Of the scene that the parts come from, with Y up there.
    std::vector<PartPlace> places{{body, at.x, -at.z, at.y, 0.0}};
    for (const double axle : axles) {
        for (const double side : {-0.5737, 0.5737})
            places.push_back({"Wheel", at.x + side, -(at.z + axle), at.y + height, 0.0});
    }
    return places;
}

std::vector<RealCar> RealCars() {
    WizardOptions cab, trailer;
    cab.places = TruckPlaces("TruckCab", {-0.0017, 0.2229, -0.0955}, {1.1042, -0.7834}, 0.0008);
    trailer.places = TruckPlaces("TruckTrailer", {-0.0017, 0.6379, -2.7812}, {-1.5328, -0.6008}, -0.4027);
    trailer.steeredAxles = trailer.drivenAxles = std::vector<int>{};
    return {
        {"kenney_starter/vehicle-truck-yellow.glb", 4, 0.3, {0, -1, 0}},
        {"kenney_starter/vehicle-motorcycle.glb", 2, 0.3, {0, -1, 0}, true},
        {"kenney_toykit/vehicle-racer.glb", 4, 0.125, {0, 1, 0}},
        {"milk_truck/CesiumMilkTruck.glb", 4, 0.428, {0, -1, 0}, false, 2},
        {"sedan/sedan_assembled.glb", 4, 0.339, {1, 0, 0}},
        {"truck_and_trailer/meshes.glb", 4, 0.228, {0, -1, 0}, false, 0, cab},
        {"truck_and_trailer/meshes.glb", 4, 0.228, {0, -1, 0}, false, 0, trailer},
    };
}

class RealCarPlan : public testing::TestWithParam<RealCar> {
 protected:
    void SetUp() override {
        const std::filesystem::path file = std::filesystem::path(DataFolder()) / "cars" / GetParam().file;
        if (!std::filesystem::exists(file)) GTEST_SKIP() << "no real input data at " << DataFolder();
        std::string problem;
        ASSERT_TRUE(ReadCarModel(file, {}, model, problem)) << problem;
        ASSERT_TRUE(PlanRig(model, GetParam().options, result, problem)) << problem;
    }
    CarModel model;
    WizardResult result;
};

TEST_P(RealCarPlan, HasTheWheelsThatItsMakerDrew) {
    ASSERT_EQ(result.wheels.size(), GetParam().wheels);
    for (const RiggedWheel& wheel : result.wheels) EXPECT_NEAR(wheel.radius / GetParam().radius, 1.0, 0.1) << wheel.label;
    EXPECT_EQ(result.splits.size(), GetParam().splits);
    EXPECT_EQ(result.advice.bikeDrive, GetParam().bike);
    EXPECT_GT(Dot(result.frame.row[1], GetParam().forward), 0.999) << ValueOf(result, "forward");
}

TEST_P(RealCarPlan, HasAWheelsSizeOnceItIsScaled) {
    for (const PlannedUnit& unit : result.plan.units) {
        EXPECT_GE(unit.wheel.Radius, 25.0f);
        EXPECT_LE(unit.wheel.Radius, 60.0f);
        EXPECT_LE(unit.wheel.Width, unit.wheel.Radius * 0.51f);
    }
}

TEST_P(RealCarPlan, StandsAtItsDrawnHeight) {
    CarWorld& world = EmptyWorld();
    auto rig = std::make_unique<CarRig>();
    MakePlannedCar(result.plan, FrameAt({0, 0, result.plan.standingHeight}), *rig);
    world.rigs[0] = rig.get();
    world.carCount = 1;
    DriveInput input = StockInput();
    input.bikeDrive = result.advice.bikeDrive ? 1 : 0;
    // A bike that nobody drives falls over in the end.
    const int steps = result.advice.bikeDrive ? 4500 : 4 * 4500;
    double height = 0.0;
    for (int i = 0; i < steps; ++i) {
        WorldStep(world, i * kDt, kDt, FlatGround(), kGravity, input);
        if (i >= steps - 2250) height += rig->chassisBody.frame.row[3].z / 2250;
    }
    ASSERT_TRUE(IsFinite(*rig));
    double ground = 1e300;
    for (const RiggedWheel& wheel : result.wheels) ground = std::min(ground, wheel.centre.z - wheel.radius);
    EXPECT_NEAR(height, (result.frame.row[3].z - ground) * result.scale * 100.0, 1.0);
    EXPECT_GT(rig->chassisBody.frame.row[2].z, 0.999);
}

INSTANTIATE_TEST_SUITE_P(Cars, RealCarPlan, testing::ValuesIn(RealCars()), [](const testing::TestParamInfo<RealCar>& test) {
    std::string name = std::filesystem::path(test.param.file).stem().string() + "_" + std::to_string(test.index);
    for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    return name;
});

TEST(RealCarPlanOf, PartsWithoutPlacesIsRefused) {
    const std::filesystem::path file = std::filesystem::path(DataFolder()) / "cars/truck_and_trailer/meshes.glb";
    if (!std::filesystem::exists(file)) GTEST_SKIP() << "no real input data at " << DataFolder();
    CarModel model;
    std::string problem;
    ASSERT_TRUE(ReadCarModel(file, {}, model, problem)) << problem;
    WizardResult result;
    EXPECT_FALSE(PlanRig(model, {}, result, problem));
    EXPECT_NE(problem.find("place it several times"), std::string::npos) << problem;
}

TEST(ReadCarModel, KeepsNamesPlacesMeshesAndSpins) {
    const std::filesystem::path folder = std::filesystem::path(DataFolder()) / "cars";
    if (!std::filesystem::exists(folder)) GTEST_SKIP() << "no real input data at " << DataFolder();
    CarModel sedan, truck;
    std::string problem;
    ASSERT_TRUE(ReadCarModel(folder / "sedan/sedan_assembled.glb", {}, sedan, problem)) << problem;
    ASSERT_EQ(sedan.parts.size(), 5u);
    EXPECT_EQ(sedan.parts[0].name, "chassis");
    EXPECT_EQ(sedan.parts[1].parent, 0);
    EXPECT_EQ(sedan.parts[1].mesh, sedan.parts[4].mesh);
    EXPECT_EQ(sedan.parts[1].faces.size(), 9036u);
    EXPECT_LT(Length(sedan.parts[1].frame.row[3] - DPoint3{1.388, 0.7979, 0.1301}), 1e-6);
    ASSERT_TRUE(ReadCarModel(folder / "milk_truck/CesiumMilkTruck.glb", {}, truck, problem)) << problem;
    int spinning = 0;
    for (const ModelPart& part : truck.parts) spinning += part.spins ? 1 : 0;
    EXPECT_EQ(spinning, 2);
}

TEST(ReadCarModel, MakesTheGroupsOfAnObjItsParts) {
    const std::string text =
        "o body\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3 4\ng wheel left\nv 0 0 1\nf 1/1 2/2 5/5\nf 2 3 5\n";
    CarModel model;
    std::string problem;
    ASSERT_TRUE(ReadCarModelBytes("a.obj", text, {}, model, problem)) << problem;
    ASSERT_EQ(model.parts.size(), 2u);
    EXPECT_EQ(model.parts[0].name, "body");
    EXPECT_EQ(model.parts[0].faces.size(), 2u);
    EXPECT_EQ(model.parts[1].name, "wheel left");
    EXPECT_EQ(model.parts[1].faces.size(), 2u);
    EXPECT_EQ(model.parts[1].vertices.size(), 4u);
}

TEST(ReadCarModel, ReadsColladaNodesThroughTheImporter) {
    const std::string text =
        R"(<?xml version="1.0"?><COLLADA xmlns="http://www.collada.org/2005/11/COLLADASchema" version="1.4.1">
<asset><unit meter="0.01"/><up_axis>Z_UP</up_axis></asset><library_geometries><geometry id="g"><mesh>
<source id="p"><float_array id="a" count="9">0 0 0 100 0 0 0 100 0</float_array><technique_common>
<accessor source="#a" count="3" stride="3"><param name="X" type="float"/><param name="Y" type="float"/><param name="Z" type="float"/>
</accessor></technique_common></source><vertices id="v"><input semantic="POSITION" source="#p"/></vertices>
<triangles count="1"><input semantic="VERTEX" source="#v" offset="0"/><p>0 1 2</p></triangles></mesh></geometry></library_geometries>
<library_visual_scenes><visual_scene id="s"><node id="w" name="wheel_L"><translate>0 0 50</translate><instance_geometry url="#g"/>
</node></visual_scene></library_visual_scenes><scene><instance_visual_scene url="#s"/></scene></COLLADA>)";
    CarModel model;
    std::string problem;
    ASSERT_TRUE(ReadCarModelBytes("a.dae", text, {}, model, problem)) << problem;
    bool found = false;
    for (const ModelPart& part : model.parts) {
        if (part.faces.empty()) continue;
        found = true;
        EXPECT_EQ(part.name, "wheel_L");
        EXPECT_LT(Length(TransformPoint(part.vertices[1], part.frame) * model.metresPerUnit - DPoint3{1, 0, 0.5}), 1e-6);
    }
    EXPECT_TRUE(found);
}

TEST(ReadCarModel, RefusesWhatIsNoModelAndLeavesTheOneBefore) {
    CarModel model = Saloon();
    std::string problem;
    for (const char* name : {"a.glb", "a.gltf", "a.obj", "a.fbx", "a.dae", "a.3ds", "a.ply", "a.stl", "a.txt"}) {
        for (const std::string& bytes : {std::string(), std::string("no model at all, just some words\n")}) {
            problem.clear();
            if (ReadCarModelBytes(name, bytes, {}, model, problem)) {
                EXPECT_STREQ(name, "a.stl") << "took words for a model";  // text STL may be empty of triangles
                model = Saloon();
                continue;
            }
            EXPECT_TRUE(problem.starts_with(name)) << problem;
            EXPECT_TRUE(problem.ends_with('.')) << problem;
            EXPECT_EQ(model.parts.size(), 5u);
        }
    }
    EXPECT_FALSE(ReadCarModel("/nowhere/car.glb", {}, model, problem));
    EXPECT_NE(problem.find("/nowhere/car.glb"), std::string::npos);
}

TEST(ReadCarModel, RefusesEveryTruncation) {
    const std::filesystem::path file = std::filesystem::path(DataFolder()) / "cars/kenney_toykit/vehicle-racer.glb";
    std::ifstream stream(file, std::ios::binary);
    if (!stream) GTEST_SKIP() << "no real input data at " << DataFolder();
    const std::string bytes((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    for (std::size_t length = 0; length < bytes.size(); length += 997) {
        CarModel model;
        std::string problem;
        EXPECT_FALSE(ReadCarModelBytes("car.glb", std::string_view(bytes).substr(0, length), {}, model, problem)) << length;
    }
}

}  // namespace
}  // namespace tavrik::test
