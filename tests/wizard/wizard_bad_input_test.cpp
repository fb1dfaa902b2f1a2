#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/test_random.h"
#include "tests/wizard/model_cars.h"

namespace tavrik::test {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(PlanRigRefuses, AnEmptyModel) { EXPECT_NE(Refusal({}).find("no triangles"), std::string::npos); }

TEST(PlanRigRefuses, AModelWithoutWheels) {
    CarModel model;
    model.parts.push_back(BoxPart("house", {0, 0, 2}, {4, 5, 2}));
    EXPECT_NE(Refusal(model).find("looks like a wheel"), std::string::npos);
}

TEST(PlanRigRefuses, ABoxThatIsCalledAWheel) {
    CarModel model;
    model.parts.push_back(BoxPart("body", {0, 0, 2}, {1, 2, 1}));
    model.parts.push_back(BoxPart("wheel_L", {-1, 0, 0.3}, {0.1, 0.3, 0.3}));
    model.parts.push_back(BoxPart("wheel_R", {1, 0, 0.3}, {0.1, 0.3, 0.3}));
    EXPECT_NE(Refusal(model).find("looks like a wheel"), std::string::npos);
}

TEST(PlanRigRefuses, AWheelByItself) {
    CarModel model = Saloon();
    model.parts.resize(2);
    EXPECT_NE(Refusal(model).find("only one part"), std::string::npos);
}

TEST(PlanRigRefuses, WheelsWithoutABody) {
    CarModel model = Saloon();
    model.parts.erase(model.parts.begin());
    EXPECT_NE(Refusal(model).find("no body"), std::string::npos);
}

TEST(PlanRigRefuses, WheelsInsideEachOther) {
    CarModel model = Saloon();
    model.parts[3].frame.row[3] = model.parts[1].frame.row[3] - DPoint3{0, 0.3, 0};
    const std::string problem = Refusal(model);
    EXPECT_NE(problem.find("inside each other"), std::string::npos) << problem;
    EXPECT_NE(problem.find("wheel_FL"), std::string::npos) << problem;
}

TEST(PlanRigRefuses, AMirroredWheelOrBody) {
    for (const std::size_t i : {0u, 2u}) {
        CarModel model = Saloon();
        model.parts[i].frame.row[0] = -model.parts[i].frame.row[0];
        const std::string problem = Refusal(model);
        EXPECT_NE(problem.find("mirrored"), std::string::npos) << problem;
        EXPECT_NE(problem.find(model.parts[i].name), std::string::npos) << problem;
    }
}

TEST(PlanRigTakes, AWheelTurnedAroundByTwoNegativeScales) {
    CarModel model = Saloon();
    model.parts[2].frame.row[0] = -model.parts[2].frame.row[0];
    model.parts[2].frame.row[1] = -model.parts[2].frame.row[1];
    EXPECT_EQ(Planned(model).plan.units.size(), 4u);
}

TEST(PlanRigRefuses, APartThatIsScaledToNothing) {
    CarModel model = Saloon();
    model.parts[0].frame.row[1] = {0, 0, 0};
    EXPECT_NE(Refusal(model).find("scaled to nothing"), std::string::npos);
}

TEST(PlanRigRefuses, NumbersThatAreNotFinite) {
    CarModel model = Saloon();
    model.parts[1].vertices[3].y = kNaN;
    EXPECT_NE(Refusal(model).find("vertex 4 of part \"wheel_FL\""), std::string::npos);
    model = Saloon();
    model.parts[0].frame.row[2].x = std::numeric_limits<double>::infinity();
    EXPECT_NE(Refusal(model).find("\"body\""), std::string::npos);
    model = Saloon();
    model.metresPerUnit = kNaN;
    EXPECT_NE(Refusal(model).find("unit"), std::string::npos);
}

TEST(PlanRigRefuses, FacesAndParentsThatAreNotThere) {
    CarModel model = Saloon();
    model.parts[0].faces[5].v[1] = 999;
    EXPECT_NE(Refusal(model).find("uses vertex 1000"), std::string::npos);
    model = Saloon();
    model.parts[1].parent = 7;
    EXPECT_NE(Refusal(model).find("hangs below"), std::string::npos);
    model = Saloon();
    model.parts[1].parent = 2;
    model.parts[2].parent = 1;
    EXPECT_NE(Refusal(model).find("hangs below"), std::string::npos);
}

TEST(PlanRigRefuses, OptionsThatCantBe) {
    WizardOptions options;
    options.mass = -3.0;
    EXPECT_NE(Refusal(Saloon(), options).find("mass"), std::string::npos);
    options = {};
    options.unit = kNaN;
    EXPECT_NE(Refusal(Saloon(), options).find("unit"), std::string::npos);
    options = {};
    options.forward = DPoint3{0, 0, 1};
    EXPECT_NE(Refusal(Saloon(), options).find("forward"), std::string::npos);
    options = {};
    options.forward = DPoint3{1, 0, 0};
    EXPECT_NE(Refusal(Saloon(), options).find("along the axles"), std::string::npos);
    options = {};
    options.steeredAxles = {3};
    EXPECT_NE(Refusal(Saloon(), options).find("no axle 3"), std::string::npos);
    options = {};
    options.wheelNames = {"hoof*"};
    EXPECT_NE(Refusal(Saloon(), options).find("\"hoof*\""), std::string::npos);
    options = {};
    options.bodyNames = {"shell"};
    EXPECT_NE(Refusal(Saloon(), options).find("\"shell\""), std::string::npos);
    options = {};
    options.root = "garage";
    EXPECT_NE(Refusal(Saloon(), options).find("\"garage\""), std::string::npos);
    options = {};
    options.places = {{"garage", 0, 0, 0, 0}};
    EXPECT_NE(Refusal(Saloon(), options).find("\"garage\""), std::string::npos);
}

TEST(PlanRigRefuses, SizesThatNoNumberHolds) {
    for (const double scale : {1e-200, 1e200}) {
        WizardOptions options;
        options.unit = 1.0;
        EXPECT_FALSE(Refusal(Moved(Saloon(), 0.0, {}, scale, /*tellUnit=*/false), options).empty()) << scale;
    }
}

/// Heaps of random triangles, some called wheels: a plan or a sentence, never a crash and never half a plan.
TEST(PlanRig, SurvivesAnyHeapOfTriangles) {
    TestRandom random(TestSeed(11));
    const char* const names[] = {"", "wheel", "body", "wheels_front", "rim L", "x"};
    int planned = 0, refused = 0;
    for (int round = 0; round < TestRounds(300); ++round) {
        CarModel model = random.Int(0, 2) == 0 ? CarModel() : Saloon(random.Int(0, 1) == 0);
        for (int p = random.Int(0, 5); p-- > 0;) {
            ModelPart part = random.Int(0, 1) == 0
                                 ? WheelPart("", random.Vector(3.0), random.Between(0.01, 1.0), random.Between(0.001, 2.0),
                                             random.Int(3, 12))
                                 : BoxPart("", random.Vector(3.0), {random.Unit(), random.Unit(), random.Unit()});
            part.name = names[random.Int(0, 5)];
            part.spins = random.Int(0, 4) == 0;
            part.parent = random.Int(-1, int(model.parts.size()) - 1);
            if (random.Int(0, 1) == 0) {
                const DPoint3 at = part.frame.row[3];
                part.frame = random.Turn();
                part.frame.row[3] = at;
            }
            for (DPoint3& v : part.vertices) v += random.Vector(random.Int(0, 2) == 0 ? 0.1 : 0.0);
            model.parts.push_back(part);
        }
        WizardResult result;
        std::string problem;
        if (PlanRig(model, {}, result, problem)) {
            ++planned;
            ASSERT_EQ(result.parts.size(), model.parts.size());
            ASSERT_EQ(result.wheels.size(), result.plan.units.size());
            for (const RiggedWheel& wheel : result.wheels) ASSERT_GT(wheel.load, 0.0);
        } else {
            ++refused;
            ASSERT_TRUE(problem.ends_with('.')) << problem;
        }
    }
    EXPECT_GT(planned, 20);
    EXPECT_GT(refused, 20);
}

}  // namespace
}  // namespace tavrik::test
