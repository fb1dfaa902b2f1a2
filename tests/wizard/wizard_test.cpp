#include "wizard/wizard.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/support/test_random.h"
#include "tests/wizard/model_cars.h"

namespace tavrik::test {
namespace {

double Forward(const WizardResult& result, const DPoint3& wanted) { return Dot(result.frame.row[1], wanted); }

/// Whether two plans are the same up to rounding.
void ExpectSamePlan(const WizardResult& a, const WizardResult& b) {
    ASSERT_EQ(a.plan.units.size(), b.plan.units.size());
    const auto near = [](double x, double y) { EXPECT_NEAR(x, y, 1e-4 * std::max(1.0, std::abs(x))); };
    near(double(a.plan.chassis.Width), double(b.plan.chassis.Width));
    near(double(a.plan.chassis.Length), double(b.plan.chassis.Length));
    near(double(a.plan.chassis.Mass), double(b.plan.chassis.Mass));
    near(a.plan.standingHeight, b.plan.standingHeight);
    for (std::size_t i = 0; i < a.plan.units.size(); ++i) {
        const PlannedUnit &u = a.plan.units[i], &v = b.plan.units[i];
        near(double(u.wheel.Radius), double(v.wheel.Radius));
        near(double(u.wheel.Ruggedness), double(v.wheel.Ruggedness));
        near(double(u.suspension.Ruggedness), double(v.suspension.Ruggedness));
        near(double(u.suspension.Top_Stop), double(v.suspension.Top_Stop));
        EXPECT_EQ(u.suspension.Steering, v.suspension.Steering);
        EXPECT_EQ(u.suspension.Suspension_Type, v.suspension.Suspension_Type);
        for (int r = 0; r < 4; ++r) EXPECT_LT(Length(u.frame.row[r] - v.frame.row[r]), 1e-3) << i << " row " << r;
        EXPECT_EQ(a.wheels[i].label, b.wheels[i].label);
    }
    ASSERT_EQ(a.plan.spheres.size(), b.plan.spheres.size());
    for (std::size_t i = 0; i < a.plan.spheres.size(); ++i) {
        EXPECT_LT(Length(a.plan.spheres[i].centre - b.plan.spheres[i].centre), 0.01) << i;
    }
}

TEST(PlanRig, GivesASaloonFourWheelsInOrder) {
    const WizardResult result = Planned(Saloon());
    ASSERT_EQ(result.wheels.size(), 4u);
    EXPECT_EQ(result.wheels[0].label, "front left");
    EXPECT_EQ(result.wheels[1].label, "front right");
    EXPECT_EQ(result.wheels[2].label, "back left");
    EXPECT_EQ(result.wheels[3].label, "back right");
    for (int i = 1; i <= 4; ++i) {
        EXPECT_EQ(result.parts[std::size_t(i)].role, PartRole::Wheel);
        EXPECT_EQ(result.parts[std::size_t(i)].wheel, i - 1);
        EXPECT_NEAR(double(result.plan.units[std::size_t(i - 1)].wheel.Radius), 32.0, 0.01);
        EXPECT_NEAR(double(result.plan.units[std::size_t(i - 1)].wheel.Width), 10.0, 0.01);
    }
    EXPECT_EQ(result.parts[0].role, PartRole::Body);
    EXPECT_GT(Forward(result, {0, 1, 0}), 0.999);
    EXPECT_EQ(ValueOf(result, "bike"), "no");
    EXPECT_EQ(result.scale, 1.0);
}

TEST(PlanRig, PutsEachWheelWhereItIsDrawn) {
    const WizardResult result = Planned(Saloon());
    for (std::size_t i = 0; i < 4; ++i) {
        const DPoint3 planned = RestFrame(result.plan.units[i]).row[3];
        const DPoint3 d = result.wheels[i].centre - result.frame.row[3];
        const DPoint3 drawn =
            DPoint3{Dot(d, result.frame.row[0]), Dot(d, result.frame.row[1]), Dot(d, result.frame.row[2])} * 100.0;
        EXPECT_LT(Length(planned - drawn), 1e-3) << i;
        // The attachment lies within the body, 88 to each side, and not beyond its middle.
        EXPECT_LT(std::abs(result.plan.units[i].frame.row[3].x), 88.0);
        EXPECT_GT(result.plan.units[i].frame.row[3].x * planned.x, 0.0);
    }
}

TEST(PlanRig, SteersTheFirstAxleAndDrivesTheOthers) {
    const WizardResult result = Planned(Lorry(3));
    ASSERT_EQ(result.plan.units.size(), 6u);
    for (std::size_t i = 0; i < 6; ++i) {
        const SuspensionValues& unit = result.plan.units[i].suspension;
        EXPECT_EQ(unit.Steering, i < 2 ? 1 : 0) << i;
        EXPECT_EQ(unit.Drive, i < 2 ? 0 : 1) << i;
        EXPECT_EQ(unit.Handbrake, i < 2 ? 0 : 1) << i;
        EXPECT_EQ(unit.Suspension_Type, i < 2 ? kWishbone : kTelescopic) << i;
    }
    EXPECT_EQ(result.wheels[2].label, "middle left");
}

TEST(PlanRig, AimsSteeredWheelsAtTheAxlesThatDont) {
    const WizardResult result = Planned(Lorry(3));
    const double aim = double(result.plan.chassis.Rotation_Center_Shift) / 100.0 * double(result.plan.chassis.Length);
    EXPECT_NEAR(aim, (RestFrame(result.plan.units[2]).row[3].y + RestFrame(result.plan.units[4]).row[3].y) / 2.0, 0.01);
}

TEST(PlanRig, SharesTheWeightSoThatItBalances) {
    for (const CarModel& model : {Saloon(), Lorry(2), Lorry(3), Lorry(4), Motorcycle()}) {
        const WizardResult result = Planned(model);
        double sum = 0.0, pitch = 0.0, roll = 0.0;
        for (std::size_t i = 0; i < result.wheels.size(); ++i) {
            const SuspensionValues& unit = result.plan.units[i].suspension;
            EXPECT_NEAR(double(unit.Ruggedness * unit.Shift), result.wheels[i].load * 980.0, result.wheels[i].load);
            EXPECT_GT(result.wheels[i].load, 0.0);
            const DPoint3 hub = RestFrame(result.plan.units[i]).row[3];
            sum += result.wheels[i].load;
            pitch += result.wheels[i].load * hub.y;
            roll += result.wheels[i].load * hub.x;
        }
        EXPECT_NEAR(sum / double(result.plan.chassis.Mass), 1.0, 1e-6);
        EXPECT_NEAR(pitch / sum, 0.0, 1e-3);
        EXPECT_NEAR(roll / sum, 0.0, 1e-3);
    }
}

TEST(PlanRig, GivesEachCornerItsFrequencyAndDamping) {
    const WizardResult result = Planned(Saloon());
    for (const RiggedWheel& wheel : result.wheels) {
        EXPECT_GE(wheel.frequency, 1.2);
        EXPECT_LE(wheel.frequency, 1.6);
        EXPECT_NEAR(wheel.dampingRatio, 0.3, 1e-5);
        EXPECT_NE(ValueOf(result, "spring." + wheel.label).find("Hz"), std::string::npos);
    }
    WizardOptions options;
    options.frequency = 2.2;
    options.dampingRatio = 0.6;
    for (const RiggedWheel& wheel : Planned(Saloon(), options).wheels) {
        EXPECT_NEAR(wheel.frequency, 2.2, 1e-5);
        EXPECT_NEAR(wheel.dampingRatio, 0.6, 1e-5);
    }
}

TEST(PlanRig, FindsWheelsByShapeWhereNamesSayNothing) {
    for (const CarModel& model : {Saloon(false), Moved(Saloon(false), 33.0, {4, 5, 6}, 1.0)}) {
        const WizardResult result = Planned(model);
        EXPECT_EQ(result.wheels.size(), 4u);
        EXPECT_EQ(result.parts[0].role, PartRole::Body);
    }
}

TEST(PlanRig, TellsTheFrontByTheShapeOfTheBody) {
    EXPECT_GT(Forward(Planned(Saloon(false)), {0, 1, 0}), 0.999);
    EXPECT_GT(Forward(Planned(Moved(Saloon(false), 180.0, {}, 1.0)), {0, -1, 0}), 0.999);
}

TEST(PlanRig, TellsTheFrontByNamesAgainstTheShape) {
    CarModel model = Saloon();
    std::swap(model.parts[1].name, model.parts[4].name);
    std::swap(model.parts[2].name, model.parts[3].name);
    EXPECT_GT(Forward(Planned(model), {0, -1, 0}), 0.999);
}

TEST(PlanRig, TellsTheFrontByLeftAndRightAlone) {
    CarModel model = Saloon();
    model.parts[0] = BoxPart("body", {0, 0, 0.8}, {0.8, 2, 0.5});
    for (std::size_t i = 1; i < 5; ++i) {
        model.parts[i].name = i % 2 == 1 ? "wheel_right" : "wheel_left";  // it looks along -Y, then
    }
    EXPECT_GT(Forward(Planned(model), {0, -1, 0}), 0.999);
}

TEST(PlanRig, TellsTheFrontByASteeringWheel) {
    CarModel model = Saloon(false);
    model.parts[0] = BoxPart("shell", {0, 0, 0.8}, {0.8, 2, 0.5});
    model.parts.push_back(WheelPart("steering wheel", {0.3, -0.6, 1.0}, 0.2, 0.03));
    const WizardResult result = Planned(model);
    EXPECT_EQ(result.wheels.size(), 4u);
    EXPECT_GT(Forward(result, {0, -1, 0}), 0.999);
}

TEST(PlanRig, TakesTheFormatsHabitWhereNothingElseTells) {
    CarModel model = Saloon(false);
    model.parts[0] = BoxPart("shell", {0, 0, 0.8}, {0.8, 2, 0.5});
    for (const double sign : {1.0, -1.0}) {
        model.usualForward = {0, sign, 0};
        EXPECT_GT(Forward(Planned(model), {0, sign, 0}), 0.999);
    }
}

TEST(PlanRig, ObeysTheForwardOption) {
    WizardOptions options;
    options.forward = DPoint3{0.1, -1, 0};
    EXPECT_GT(Forward(Planned(Saloon(), options), {0, -1, 0}), 0.999);
}

TEST(PlanRig, TakesSiblingsAndChildrenAlike) {
    CarModel model = Saloon();
    for (std::size_t i = 1; i < 5; ++i) model.parts[i].parent = 0;
    ExpectSamePlan(Planned(Saloon()), Planned(model));
}

TEST(PlanRig, PutsTyreAndRimOnOneWheel) {
    CarModel model = Saloon();
    for (std::size_t i = 1; i < 5; ++i) {
        model.parts.push_back(WheelPart("rim", model.parts[i].frame.row[3], 0.2, 0.08));
        model.parts.push_back(WheelPart("Object_7", model.parts[i].frame.row[3], 0.15, 0.02));  // a disc without a name
    }
    const WizardResult result = Planned(model);
    ASSERT_EQ(result.wheels.size(), 4u);
    EXPECT_NEAR(result.wheels[0].radius, 0.32, 1e-6);
    for (std::size_t i = 5; i < model.parts.size(); ++i) {
        EXPECT_EQ(result.parts[i].role, PartRole::Wheel) << i;
        EXPECT_EQ(result.parts[i].wheel, int((i - 5) / 2)) << i;
    }
}

TEST(PlanRig, TakesNamesFromTheGroupAbove) {
    CarModel model = Saloon(false);
    for (std::size_t i = 1; i < 5; ++i) {
        ModelPart group;
        group.name = i < 3 ? "rear wheel" : "front wheel";
        model.parts[i].parent = int(model.parts.size());
        model.parts.push_back(group);
    }
    const WizardResult result = Planned(model);
    EXPECT_EQ(result.wheels.size(), 4u);
    EXPECT_GT(Forward(result, {0, -1, 0}), 0.999);
}

TEST(PlanRig, TakesOneMeshTurnedAroundForTheOtherSide) {
    CarModel model = Saloon();
    for (std::size_t i = 1; i < 5; ++i) {
        model.parts[i].mesh = 3;
        if (i % 2 == 1) continue;
        model.parts[i].frame.row[0] = -model.parts[i].frame.row[0];
        model.parts[i].frame.row[1] = -model.parts[i].frame.row[1];
    }
    ExpectSamePlan(Planned(Saloon()), Planned(model));
}

TEST(PlanRig, SplitsTwoWheelsInOnePart) {
    for (const bool withRod : {false, true}) {
        CarModel model = Saloon();
        CarModel paired;
        paired.parts.push_back(model.parts[0]);
        for (const std::size_t i : {1u, 3u}) {
            ModelPart axle = model.parts[i];
            axle.name = "Wheels";
            Merge(axle, model.parts[i + 1]);
            if (withRod) Merge(axle, BoxPart("", {0, model.parts[i].frame.row[3].y, 0.32}, {0.7, 0.04, 0.04}));
            paired.parts.push_back(axle);
        }
        const WizardResult result = Planned(paired);
        ASSERT_EQ(result.wheels.size(), 4u) << withRod;
        ASSERT_EQ(result.splits.size(), 2u);
        EXPECT_EQ(result.parts[1].role, PartRole::Split);
        EXPECT_NEAR(result.wheels[0].halfWidth, 0.1, 1e-6);
        EXPECT_NEAR(result.wheels[0].centre.x, -0.76, 1e-6);
        const std::vector<int>& faces = result.splits[0].faceWheels;
        ASSERT_EQ(faces.size(), paired.parts[1].faces.size());
        EXPECT_EQ(faces[0], 0);
        EXPECT_EQ(faces[model.parts[1].faces.size()], 1);
        EXPECT_EQ(std::count(faces.begin(), faces.end(), -1), 0);
        if (!withRod) {
            ExpectSamePlan(Planned(Saloon()), result);
        }
    }
}

TEST(PlanRig, SplitsFourWheelsInOnePart) {
    const CarModel model = Saloon();
    CarModel merged;
    merged.parts.push_back(model.parts[0]);
    merged.parts.push_back(model.parts[1]);
    merged.parts[1].name = "wheels";
    for (std::size_t i = 2; i < 5; ++i) Merge(merged.parts[1], model.parts[i]);
    const WizardResult result = Planned(merged);
    EXPECT_EQ(result.wheels.size(), 4u);
    ExpectSamePlan(Planned(Saloon()), result);
}

TEST(PlanRig, FindsWheelsWithinAModelOfOnePart) {
    CarModel model = Saloon(false);
    for (std::size_t i = 1; i < 5; ++i) Merge(model.parts[0], model.parts[i]);
    model.parts.resize(1);
    const WizardResult result = Planned(model);
    EXPECT_EQ(result.wheels.size(), 4u);
    ASSERT_EQ(result.splits.size(), 1u);
    EXPECT_EQ(result.splits[0].faceWheels[0], -1);  // the body's
    EXPECT_NEAR(result.plan.chassis.Length, 220.0f, 0.01f);
}

TEST(PlanRig, TakesPartsThatAnAnimationTurns) {
    CarModel model = Saloon(false);
    model.parts.push_back(WheelPart("drum", {0.76, 0.0, 0.32}, 0.32, 0.1));  // round, on the ground, but it doesn't turn
    for (std::size_t i = 1; i < 5; ++i) model.parts[i].spins = true;
    const WizardResult result = Planned(model);
    EXPECT_EQ(result.wheels.size(), 4u);
    EXPECT_EQ(result.parts[5].role, PartRole::Body);
}

TEST(PlanRig, LeavesASpareWheelOnTheBody) {
    CarModel model = Saloon();
    model.parts.push_back(WheelPart("wheel_5", {0, -2.3, 0.8}, 0.32, 0.1));
    const WizardResult result = Planned(model);
    EXPECT_EQ(result.wheels.size(), 4u);
    EXPECT_EQ(result.parts[5].role, PartRole::Body);
    EXPECT_EQ(ValueOf(result, "not a wheel"), "\"wheel_5\"");
}

TEST(PlanRig, MakesAMotorcycleABike) {
    for (const bool named : {true, false}) {
        const WizardResult result = Planned(Motorcycle(named));
        ASSERT_EQ(result.wheels.size(), 2u);
        EXPECT_TRUE(result.advice.bikeDrive);
        EXPECT_EQ(ValueOf(result, "bike"), "yes");
        for (const PlannedUnit& unit : result.plan.units) {
            EXPECT_EQ(unit.suspension.Suspension_Type, kTelescopic);
            EXPECT_NEAR(RestFrame(unit).row[3].x, 0.0, 1e-6);
        }
        EXPECT_EQ(result.plan.units[0].suspension.Steering, 1);
        EXPECT_EQ(result.plan.units[1].suspension.Drive, 1);
        if (named) {
            EXPECT_GT(Forward(result, {0, 1, 0}), 0.999);
        }
    }
    WizardOptions options;
    options.bike = false;
    EXPECT_FALSE(Planned(Motorcycle(), options).advice.bikeDrive);
}

TEST(PlanRig, TakesTwinTyresForOneWideWheel) {
    CarModel model = Lorry(2);
    for (const double side : {-1.0, 1.0}) model.parts.push_back(WheelPart("tyre", {side * 0.65, -2.2, 0.5}, 0.5, 0.15));
    const WizardResult result = Planned(model);
    ASSERT_EQ(result.wheels.size(), 4u);
    EXPECT_NEAR(result.wheels[2].halfWidth, 0.325, 1e-6);
    EXPECT_NEAR(result.wheels[2].centre.x, -0.825, 1e-6);
    EXPECT_NEAR(double(result.plan.units[2].wheel.Width), 25.0, 1e-3);  // no tyre's section is more than half its radius
}

TEST(PlanRig, TakesACartWithOneAxle) {
    CarModel model;
    model.parts.push_back(BoxPart("box", {0, 0, 0.8}, {0.8, 1.2, 0.4}));
    for (const double side : {-1.0, 1.0}) model.parts.push_back(WheelPart("wheel", {side, 0.1, 0.3}, 0.3, 0.1));
    const WizardResult result = Planned(model);
    ASSERT_EQ(result.wheels.size(), 2u);
    EXPECT_FALSE(result.advice.bikeDrive);
    EXPECT_EQ(result.plan.units[0].suspension.Steering, 0);
    EXPECT_EQ(result.plan.units[0].suspension.Drive, 0);
    EXPECT_NEAR(result.wheels[0].load / result.wheels[1].load, 1.0, 1e-9);
}

TEST(PlanRig, EnlargesAToyAndSaysSo) {
    CarModel model = Moved(Saloon(), 0.0, {}, 0.3, /*tellUnit=*/false);
    const WizardResult result = Planned(model);
    EXPECT_NEAR(result.wheels[0].radius, 0.096, 1e-9);
    EXPECT_GE(result.wheels[0].radius * result.scale, 0.25);
    EXPECT_LE(result.wheels[0].radius * result.scale, 0.6);
    EXPECT_FALSE(ValueOf(result, "unit").empty());
    WizardOptions options;
    options.unit = 1.0;
    EXPECT_NEAR(double(Planned(model, options).plan.units[0].wheel.Radius), 9.6, 1e-4);
}

TEST(PlanRig, MendsAUnitThatTheFileHasWrong) {
    for (const double slip : {100.0, 1000.0, 0.01}) {
        ExpectSamePlan(Planned(Saloon()), Planned(Moved(Saloon(), 0.0, {}, slip, /*tellUnit=*/false)));
    }
}

TEST(PlanRig, GivesTheSamePlanHoweverTheModelIsTurnedMovedOrScaled) {
    TestRandom random(TestSeed(7));
    for (const CarModel& model : {Saloon(), Saloon(false), Lorry(3), Motorcycle()}) {
        const WizardResult plain = Planned(model);
        for (const double turn : {90.0, 180.0, 270.0, random.Between(0.0, 360.0)}) {
            const double scale = random.Between(0.01, 20.0);
            const DPoint3 by = random.Vector(10.0 * scale);
            SCOPED_TRACE(Digits(turn) + " degrees, scale " + Digits(scale));
            const WizardResult moved = Planned(Moved(model, turn, by, scale));
            ExpectSamePlan(plain, moved);
            DMatrix3 move = IdentityDMatrix3();
            RotateZ(move, turn * 3.14159265358979 / 180.0);
            for (int r = 0; r < 3; ++r) {
                EXPECT_LT(Length(TransformPoint(plain.frame.row[r], move) - moved.frame.row[r]), 1e-6);
            }
            EXPECT_LT(Length(TransformPoint(plain.frame.row[3], move) * scale + by - moved.frame.row[3]), 1e-6 * scale);
        }
    }
}

TEST(PlanRig, BuildsACarFromPlacedParts) {
    CarModel kit;
    kit.parts.push_back(BoxPart("Trailer", {9, 9, 9}, {1, 2, 1}));
    kit.parts.push_back(Saloon().parts[0]);
    kit.parts[1].name = "Cab";
    kit.parts.push_back(WheelPart("Wheel", {0, 0, 0}, 0.32, 0.1));
    WizardOptions options;
    options.places = {{"Cab", 0, 0, 0, 0}};
    for (const double y : {1.35, -1.35}) {
        for (const double side : {-1.0, 1.0}) options.places.push_back({"Wheel", side * 0.76, y, 0.32, side > 0 ? 180.0 : 0.0});
    }
    const WizardResult result = Planned(kit, options);
    EXPECT_EQ(result.parts.size(), 5u);
    for (std::size_t i = 1; i < 5; ++i) EXPECT_EQ(result.parts[i].part, 2);
    ExpectSamePlan(Planned(Saloon()), result);
    options.hitch = DPoint3{0, -2.2, 0.5};
    const WizardResult hitched = Planned(kit, options);
    ASSERT_EQ(hitched.plan.couplings.size(), 1u);
    EXPECT_TRUE(hitched.plan.couplings[0].isHitch);
    EXPECT_NEAR(hitched.plan.couplings[0].place.y, (-2.2 - hitched.frame.row[3].y) * 100.0, 1e-6);
}

TEST(PlanRig, RigsTheCarBelowTheChosenRoot) {
    CarModel model;
    for (const double x : {0.0, 5.0}) {
        ModelPart root;
        root.name = x > 0.0 ? "second" : "first";
        const int parent = int(model.parts.size());
        model.parts.push_back(root);
        for (ModelPart part : Saloon().parts) {
            part.parent = parent;
            part.frame.row[3].x += x;
            model.parts.push_back(part);
        }
    }
    WizardOptions options;
    options.root = "second";
    const WizardResult result = Planned(model, options);
    EXPECT_EQ(result.wheels.size(), 4u);
    EXPECT_NEAR(result.frame.row[3].x, 5.0, 1e-6);
    EXPECT_EQ(result.parts[1].role, PartRole::LeftOut);
    ExpectSamePlan(Planned(Saloon()), result);
}

TEST(PlanRig, ObeysSizesMassesAndAxles) {
    WizardOptions options;
    options.wheelRadius = 0.4;
    options.wheelWidth = 0.3;
    options.mass = 1000.0;
    options.wheelMass = 15.0;
    options.steeredAxles = {1, 2};
    options.drivenAxles = {1};
    options.handbrakeAxles = std::vector<int>{};
    const WizardResult result = Planned(Saloon(), options);
    EXPECT_NEAR(double(result.plan.units[0].wheel.Radius), 40.0, 1e-4);
    EXPECT_NEAR(double(result.plan.units[0].wheel.Width), 15.0, 1e-4);
    EXPECT_NEAR(double(result.plan.units[0].wheel.Mass), 15.0, 1e-4);
    EXPECT_NEAR(double(result.plan.chassis.Mass), 940.0, 1e-3);
    EXPECT_EQ(result.plan.units[3].suspension.Steering, 1);
    EXPECT_EQ(result.plan.units[0].suspension.Drive, 1);
    EXPECT_EQ(result.plan.units[3].suspension.Drive, 0);
    EXPECT_EQ(result.plan.units[3].suspension.Handbrake, 0);
}

TEST(PlanRig, ObeysNamesOfWheelsAndBody) {
    CarModel model = Saloon(false);
    model.parts.push_back(BoxPart("crate", {0, -1, 2}, {0.5, 0.5, 0.5}));
    WizardOptions options;
    options.wheelNames = {"piece 1", "PIECE 2", "*3", "p?ece 4"};
    options.bodyNames = {"piece 0"};
    const WizardResult result = Planned(model, options);
    EXPECT_EQ(result.wheels.size(), 4u);
    EXPECT_EQ(result.parts[5].role, PartRole::LeftOut);
    EXPECT_EQ(ValueOf(result, "left out"), "\"crate\"");
}

TEST(PlanRig, KeepsItsBallsWithinTheBodyAndOffTheGround) {
    const WizardResult result = Planned(Saloon());
    EXPECT_EQ(result.plan.spheres.size(), 8u);
    for (const PlannedSphere& sphere : result.plan.spheres) {
        const double r = double(sphere.values.Radius);
        EXPECT_LE(std::abs(sphere.centre.x) + r, 88.1);
        EXPECT_LE(sphere.centre.y + result.frame.row[3].y * 100.0 + r, 220.1);
        EXPECT_GT(sphere.centre.z - r + result.frame.row[3].z * 100.0, 10.0);
        EXPECT_LT(sphere.centre.z + r + result.frame.row[3].z * 100.0, 140.1);
    }
}

TEST(PlanRig, LeavesRoomBelowAWheelArch) {
    const auto topStop = [](double room) {
        CarModel model = Saloon();
        model.parts.push_back(BoxPart("guards", {0, 0, 0.64 + room + 0.05}, {0.85, 2.0, 0.05}));
        return double(Planned(model).plan.units[0].suspension.Top_Stop);
    };
    EXPECT_NEAR(topStop(0.07), 7.0, 1.0);
    EXPECT_NEAR(topStop(0.5), 9.6, 0.01);
}

}  // namespace
}  // namespace tavrik::test
