#include "rig/rig_doctor.h"

#include <gtest/gtest.h>

#include <limits>

#include "rig/parameter_tables.h"
#include "rig/recorded_motion.h"
#include "tests/rig/plain_scene.h"

namespace tavrik::test {
namespace {

constexpr float kRadius = 30.0f, kWidth = 10.0f;

/// One corner of a car: travel down, the axle outwards.
Matrix3 Corner(float side, float x, float y, float z) { return {{{0, 0, -1}, {0, side, 0}, {side, 0, 0}, {x, y, z}}}; }

/// A car that stands on level ground at height 0, and whatever else a test puts beside it.
class Doctor : public ::testing::Test {
 protected:
    Doctor() {
        ground = &scene.Add("Ground", ObjectClass::Other, {0, 0, 0});
        car = AddCar("", 0);
    }

    struct Car {
        PlainNode *master, *chassis, *sphere;
        std::vector<PlainNode*> wheels, arms;
    };

    Car AddCar(const std::string& suffix, float y) {
        Car made{};
        made.master = &scene.AddMaster("Car" + suffix, {0, y, 30}, {200, 300, 100});
        made.chassis = &scene.Add("Body" + suffix, ObjectClass::Chassis, {0, y, 35});
        made.sphere = &scene.Add("Ball" + suffix, ObjectClass::Sphere, {0, y, 80});
        made.sphere->floats[SphereParam::Radius] = {20};
        for (int i = 0; i < 4; ++i) {
            const float side = i % 2 == 0 ? 1.0f : -1.0f;
            const Matrix3 place = Corner(side, side * 80, y + (i < 2 ? 130.0f : -130.0f), kRadius);
            PlainNode& wheel = scene.Add("Wheel" + suffix + std::to_string(i), ObjectClass::Wheel, {0, 0, 0});
            wheel.floats[WheelParam::Radius] = {kRadius};
            wheel.floats[WheelParam::Width] = {kWidth};
            wheel.own = place;
            PlainNode& arm = scene.Add("Arm" + suffix + std::to_string(i), ObjectClass::Suspension, {0, 0, 0});
            arm.own = place;
            arm.ints[i < 2 ? SuspensionParam::Steering : SuspensionParam::Drive] = 1;
            made.wheels.push_back(&wheel);
            made.arms.push_back(&arm);
        }
        CarFacts facts{made.master, {}, {}};
        facts.ground.state = GroundFacts::State::Whole;
        facts.ground.node = ground;
        facts.ground.sides = [this](const DPoint3& at) {
            GroundSides sides;
            if (at.x > groundEnd) return sides;
            (at.z >= groundHeight ? sides.below : sides.above) = groundHeight;
            return sides;
        };
        cars.push_back(facts);
        return made;
    }

    std::vector<Finding> Look() {
        return ExamineScene({scene.Root(), cars, wheelMeshes, 160,
                             [](const SceneNode& node) { return static_cast<const PlainNode&>(node).name; }});
    }
    /// The one thing that there is to find.
    Finding Only(FindingKind kind, Severity severity) {
        const std::vector<Finding> findings = Look();
        EXPECT_EQ(findings.size(), 1u);
        for (const Finding& finding : findings) {
            EXPECT_EQ(finding.kind, kind) << finding.sentence;
            EXPECT_EQ(finding.severity, severity) << finding.sentence;
        }
        EXPECT_EQ(StopsDrive(findings), severity == Severity::Error);
        return findings.empty() ? Finding{severity, kind, nullptr, nullptr, 0.0, 0.0, {}} : findings.front();
    }
    int Count(FindingKind kind) {
        int count = 0;
        for (const Finding& finding : Look()) count += finding.kind == kind ? 1 : 0;
        return count;
    }
    void MoveCar(const Point3& by) {
        for (PlainNode& node : scene.Nodes()) node.own.row[3] = node.own.row[3] + by;
    }
    void Lock(Car& which) { ASSERT_EQ(AssembleIn(scene, *which.master).result, AssemblyResult::Locked); }
    /// A second car behind, tied by hitch and tongue, locked as the drive of the first needs it.
    void AddTrailer() {
        trailer = AddCar("B", -1000);
        hitch = &scene.Add("Hook", ObjectClass::Hitch, {0, -290, 35});
        tongue = &scene.Add("Bar", ObjectClass::Tongue, {0, -710, 35});
        hitch->nodes[HitchParam::Connection_Node] = tongue;
        PlainNode& start = scene.Add("StartB", ObjectClass::Start, {0, -580, 35});
        trailer.master->nodes[MasterParam::Start_Node] = &start;
        std::string problem;
        ASSERT_EQ(Assemble(*trailer.master->rig, scene.Root(), *trailer.master, {200, 300, 100}, &start, problem),
                  AssemblyResult::Locked);
    }

    PlainScene scene;
    std::vector<CarFacts> cars;
    std::vector<WheelMesh> wheelMeshes;
    PlainNode* ground;
    Car car, trailer{};
    PlainNode *hitch = nullptr, *tongue = nullptr;
    double groundHeight = 0.0, groundEnd = 1e9;
};

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST_F(Doctor, FindsNothingWrongWithAHealthyCar) {
    for (const Finding& finding : Look()) ADD_FAILURE() << finding.sentence;
}

TEST_F(Doctor, FindsNothingWrongWithAHealthyTrain) {
    AddTrailer();
    for (const Finding& finding : Look()) ADD_FAILURE() << finding.sentence;
}

TEST_F(Doctor, TellsOfASceneWithoutAMaster) {
    cars.clear();
    PlainScene empty;
    const auto findings = ExamineScene({empty.Root(), {}, {}, 160, [](const SceneNode&) { return std::string(); }});
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(findings[0].kind, FindingKind::NoMaster);
    EXPECT_TRUE(StopsDrive(findings));
}

TEST_F(Doctor, TellsOfMastersThatShareParts) {
    const Car other = AddCar("B", 700);
    other.master->own.row[3].y = 500;
    const std::vector<Finding> findings = Look();
    ASSERT_FALSE(findings.empty());
    EXPECT_EQ(Count(FindingKind::SharedParts), 0);
    other.master->floats[MasterParam::Dummy_Size] = {200, 520, 100};
    EXPECT_EQ(Count(FindingKind::SharedParts), 1);
    const Finding shared = Look().front();
    EXPECT_EQ(shared.other, other.master);
    EXPECT_GT(shared.found, 0.0);
}

TEST_F(Doctor, TellsOfABoxWithoutAChassis) {
    car.master->floats[MasterParam::Dummy_Size] = {200, 300, 3};
    EXPECT_EQ(Count(FindingKind::NoCar), 1);
    EXPECT_TRUE(StopsDrive(Look()));
}

TEST_F(Doctor, TellsOfMorePartsThanACarCanHold) {
    for (int i = 0; i < kMaxComponents; ++i) scene.Add("Ball", ObjectClass::Sphere, {0, 0, 60});
    EXPECT_TRUE(Has(Only(FindingKind::TooManyParts, Severity::Error).sentence, "201 collision spheres"));
}

TEST_F(Doctor, TellsOnceOfAPartInNoBox) {
    AddTrailer();
    PlainNode& lost = scene.Add("Lost", ObjectClass::Sphere, {5000, 0, 60});
    EXPECT_EQ(Only(FindingKind::OutsideBox, Severity::Warning).node, &lost);
}

TEST_F(Doctor, TellsOfAFurtherChassis) {
    scene.Add("Spare", ObjectClass::Chassis, {0, 0, 40});
    EXPECT_EQ(Only(FindingKind::FurtherChassis, Severity::Warning).other, car.chassis);
}

TEST_F(Doctor, TellsOfAWheelWithoutASuspension) {
    car.arms[0]->own.row[3].x += 40;
    EXPECT_EQ(Count(FindingKind::WheelLeftOut), 1);
    EXPECT_EQ(Count(FindingKind::SuspensionLeftOut), 1);
    EXPECT_TRUE(StopsDrive(Look()));
}

TEST_F(Doctor, TellsOfASuspensionWithoutAWheel) {
    PlainNode& arm = scene.Add("Spare arm", ObjectClass::Suspension, {0, 0, 30});
    EXPECT_EQ(Only(FindingKind::SuspensionLeftOut, Severity::Warning).node, &arm);
}

TEST_F(Doctor, TellsOfASharedSuspension) {
    PlainNode& twin = scene.Add("Twin", ObjectClass::Wheel, {0, 0, 0});
    twin.own = car.wheels[3]->own;
    twin.floats = car.wheels[3]->floats;
    EXPECT_EQ(Only(FindingKind::SuspensionShared, Severity::Error).node, &twin);
}

TEST_F(Doctor, TellsOfACarWithoutWheels) {
    for (int i = 0; i < 4; ++i) {
        car.wheels[std::size_t(i)]->DeleteObject();
        car.arms[std::size_t(i)]->DeleteObject();
    }
    EXPECT_EQ(Only(FindingKind::NoUnits, Severity::Error).node, car.master);
}

TEST_F(Doctor, TellsThatNothingIsDriven) {
    for (PlainNode* arm : car.arms) arm->ints[SuspensionParam::Drive] = 0;
    EXPECT_EQ(Only(FindingKind::NothingDriven, Severity::Warning).node, car.master);
}

TEST_F(Doctor, TellsThatNothingIsSteered) {
    for (PlainNode* arm : car.arms) arm->ints[SuspensionParam::Steering] = 0;
    EXPECT_EQ(Only(FindingKind::NothingSteered, Severity::Warning).node, car.master);
}

TEST_F(Doctor, ExpectsNeitherDriveNorSteeringOfATrailer) {
    AddTrailer();
    for (PlainNode* arm : trailer.arms) arm->ints[SuspensionParam::Steering] = arm->ints[SuspensionParam::Drive] = 0;
    EXPECT_TRUE(Look().empty());
}

// ------------------------------------------------------------------------------------------------------------------- places

TEST_F(Doctor, TellsOfAScaledChassis) {
    car.chassis->own.row[1] = {0, 2, 0};
    const Finding finding = Only(FindingKind::ScaledNode, Severity::Error);
    EXPECT_EQ(finding.node, car.chassis);
    EXPECT_EQ(finding.found, 2.0);
}

TEST_F(Doctor, TellsOfAScaledSuspensionAndWarnsOfAScaledWheelAndMaster) {
    car.arms[0]->own.row[1] = {0, 0.5f, 0};
    EXPECT_EQ(Only(FindingKind::ScaledNode, Severity::Error).node, car.arms[0]);
    car.arms[0]->own.row[1] = {0, 1, 0};
    car.wheels[0]->own.row[1] = {0, 0.5f, 0};
    EXPECT_EQ(Only(FindingKind::ScaledNode, Severity::Warning).node, car.wheels[0]);
    car.wheels[0]->own.row[1] = {0, 1, 0};
    car.master->own.row[1] = {0, 1.1f, 0};
    EXPECT_EQ(Only(FindingKind::ScaledNode, Severity::Warning).node, car.master);
}

TEST_F(Doctor, TellsOfAScaledStartAndPush) {
    PlainNode& start = scene.Add("Start", ObjectClass::Start, {0, 0, 35});
    start.own.row[0] = {1.5f, 0, 0};
    EXPECT_EQ(Only(FindingKind::ScaledNode, Severity::Error).node, &start);
    start.own.row[0] = {1, 0, 0};
    PlainNode& push = scene.Add("Push", ObjectClass::Push, {0, 0, 35});
    push.nodes[PushParam::Tavrik] = car.master;
    push.own.row[1] = {0, 3, 0};
    EXPECT_EQ(Only(FindingKind::ScaledNode, Severity::Warning).found, 3.0);
}

TEST_F(Doctor, ForgivesTheRoundingOfFrames) {
    car.chassis->own.row[1] = {0, 1.0002f, 0.0003f};
    EXPECT_TRUE(Look().empty());
}

TEST_F(Doctor, TellsOfAShearedChassis) {
    car.chassis->own.row[1] = {0.6f, 0.8f, 0};
    const Finding finding = Only(FindingKind::ShearedNode, Severity::Error);
    EXPECT_EQ(finding.node, car.chassis);
    EXPECT_NEAR(finding.found, 0.6, 1e-6);
}

TEST_F(Doctor, TellsOfMirroredNodes) {
    car.arms[0]->own.row[1] = -car.arms[0]->own.row[1];
    EXPECT_EQ(Only(FindingKind::MirroredNode, Severity::Error).node, car.arms[0]);
    car.arms[0]->own.row[1] = -car.arms[0]->own.row[1];
    car.wheels[0]->own.row[1] = -car.wheels[0]->own.row[1];
    EXPECT_EQ(Only(FindingKind::MirroredNode, Severity::Warning).node, car.wheels[0]);
}

TEST_F(Doctor, LetsAMirroredMasterBe) {
    car.master->own.row[0] = {-1, 0, 0};
    EXPECT_TRUE(Look().empty());
}

TEST_F(Doctor, TellsOfAWheelWhoseMeshIsOffItsAxle) {
    wheelMeshes.push_back({car.wheels[1], {0, 1.4f, 5}});
    EXPECT_TRUE(Look().empty());
    wheelMeshes.push_back({car.wheels[0], {3, 4, 0}});
    const Finding finding = Only(FindingKind::WheelMeshOff, Severity::Warning);
    EXPECT_EQ(finding.node, car.wheels[0]);
    EXPECT_EQ(finding.found, 5.0);
}

// --------------------------------------------------------------------------------------------------------------- parameters

TEST_F(Doctor, TellsOfAMassOfZero) {
    car.chassis->floats[ChassisParam::Mass] = {0};
    const Finding finding = Only(FindingKind::OutOfRange, Severity::Error);
    EXPECT_EQ(finding.node, car.chassis);
    EXPECT_TRUE(Has(finding.sentence, "Mass of \"Body\" is 0")) << finding.sentence;
}

TEST_F(Doctor, TellsOfANumberThatIsNone) {
    car.arms[0]->floats[SuspensionParam::Shift] = {std::numeric_limits<float>::quiet_NaN()};
    EXPECT_EQ(Only(FindingKind::OutOfRange, Severity::Error).node, car.arms[0]);
}

TEST_F(Doctor, WarnsOfValuesBeyondTheirRange) {
    car.wheels[0]->floats[WheelParam::Grip] = {120};
    const Finding finding = Only(FindingKind::OutOfRange, Severity::Warning);
    EXPECT_EQ(finding.found, 120.0);
    EXPECT_EQ(finding.limit, 100.0);
    car.wheels[0]->floats[WheelParam::Grip] = {1};
    car.master->ints[MasterParam::Frame_Step] = 1;
    EXPECT_EQ(Only(FindingKind::OutOfRange, Severity::Warning).limit, 2.0);
}

TEST_F(Doctor, LetsAloneWhatStartsBeyondItsRange) {
    scene.Add("Start", ObjectClass::Start, {0, 0, 35});  // its Size is 0 until it is dragged
    car.master->ints[MasterParam::CtrlJoyForward] = 65536;
    EXPECT_TRUE(Look().empty());
}

TEST_F(Doctor, TellsOfASpringTooStiffForTheStep) {
    cars[0].strains.push_back({car.wheels[0], "tyre", "Ruggedness", 0.4, 0.5, 2.0});
    EXPECT_TRUE(Look().empty());
    cars[0].strains.back().found = 0.7;
    EXPECT_EQ(Only(FindingKind::TooStiff, Severity::Warning).node, car.wheels[0]);
    cars[0].strains.back().found = 2.5;
    EXPECT_EQ(Only(FindingKind::TooStiff, Severity::Error).found, 2.5);
    cars[0].strains.back().found = std::numeric_limits<double>::quiet_NaN();
    Only(FindingKind::TooStiff, Severity::Error);
}

TEST_F(Doctor, KnowsTheSecondsOfAStep) {
    EXPECT_DOUBLE_EQ(StepSeconds(*car.master, 160), 160.0 / 5 / 30 / 4800);
    car.master->ints[MasterParam::Sample_Step] = 0;
    EXPECT_DOUBLE_EQ(StepSeconds(*car.master, 160), 160.0 / 5 / 4800);
}

// --------------------------------------------------------------------------------------------------------- ground and start

TEST_F(Doctor, TellsOfAGroundThatIsntThere) {
    using State = GroundFacts::State;
    GroundFacts& facts = cars[0].ground;
    facts.state = State::NoMesh;
    EXPECT_EQ(Only(FindingKind::GroundWithoutMesh, Severity::Error).node, ground);
    facts.state = State::Empty;
    EXPECT_EQ(Only(FindingKind::GroundEmpty, Severity::Error).node, ground);
    facts.state = State::Refused;
    facts.problem = "face 3 uses vertex 9, but there are 4";
    EXPECT_TRUE(Has(Only(FindingKind::GroundRefused, Severity::Error).sentence, facts.problem));
    facts = {};
    EXPECT_EQ(Only(FindingKind::NoGroundPicked, Severity::Error).node, car.master);
}

TEST_F(Doctor, WarnsOfDegenerateAndDuplicateFaces) {
    cars[0].ground.degenerate = 1;
    EXPECT_TRUE(Has(Only(FindingKind::DegenerateFaces, Severity::Warning).sentence, "1 face without"));
    cars[0].ground.degenerate = 0;
    cars[0].ground.duplicates = 7;
    EXPECT_EQ(Only(FindingKind::DuplicateFaces, Severity::Warning).found, 7.0);
}

TEST_F(Doctor, TellsOfACarWithNoGroundUnderIt) {
    groundEnd = -1000;
    EXPECT_EQ(Only(FindingKind::NoGroundBelow, Severity::Error).node, car.master);
}

TEST_F(Doctor, WarnsOfWheelsBesideTheGround) {
    groundEnd = 0;
    EXPECT_EQ(Count(FindingKind::NoGroundBelow), 2);
    EXPECT_FALSE(StopsDrive(Look()));
}

TEST_F(Doctor, TellsOfAStartUnderTheGround) {
    groundHeight = 300;
    const Finding finding = Only(FindingKind::WheelBelowGround, Severity::Error);
    EXPECT_EQ(finding.node, car.master);
    EXPECT_NEAR(finding.found, 300.0, 1e-4);
}

TEST_F(Doctor, TellsOfOneWheelInTheGround) {
    car.arms[0]->own.row[3].z -= 6;
    const Finding finding = Only(FindingKind::WheelBelowGround, Severity::Warning);
    EXPECT_EQ(finding.node, car.wheels[0]);
    EXPECT_NEAR(finding.found, 6.0, 1e-4);
    car.arms[0]->own.row[3].z -= 5;
    car.wheels[0]->own.row[3].z -= 5;
    EXPECT_EQ(Only(FindingKind::WheelBelowGround, Severity::Error).limit, double(kWidth));
}

TEST_F(Doctor, LetsTyresSinkInALittle) {
    groundHeight = 2;
    EXPECT_TRUE(Look().empty());
}

TEST_F(Doctor, WarnsOfAStartInTheAir) {
    groundHeight = -10;
    EXPECT_TRUE(Look().empty());
    groundHeight = -50;
    const Finding finding = Only(FindingKind::StartInAir, Severity::Warning);
    EXPECT_EQ(finding.node, car.master);
    EXPECT_NEAR(finding.found, 50.0, 1e-4);
}

TEST_F(Doctor, LooksAtTheCarWhereItsStartIs) {
    groundHeight = 500;
    PlainNode& start = scene.Add("Start", ObjectClass::Start, {0, 0, 535});
    car.master->nodes[MasterParam::Start_Node] = &start;
    EXPECT_TRUE(Look().empty());
    start.own.row[3].z = 600;
    EXPECT_TRUE(Has(Only(FindingKind::StartInAir, Severity::Warning).sentence, "\"Start\""));
}

/// Frames of a car that stands at rest, or falls, for a second.
void Record(CarRig& rig, double fallSpeed) {
    for (int frame = 0; frame <= 10; ++frame) {
        rig.chassisBody.momentum.z = -fallSpeed * frame / 10.0 * rig.chassisParams.Mass;
        for (int i = 0; i < rig.unitCount; ++i) {
            rig.wheelBodies[i].momentum.z = -fallSpeed * frame / 10.0 * rig.units[i].Mass;
        }
        rig.Store(frame * 480);
    }
}

TEST_F(Doctor, TellsOfARecordingUnderItsGround) {
    Lock(car);
    Record(*car.master->rig, 0.0);
    EXPECT_TRUE(Look().empty());
    EXPECT_EQ(car.master->rig->motion.frames, 12);
    groundHeight = 25;
    EXPECT_EQ(Count(FindingKind::GroundMoved), 1);
}

TEST_F(Doctor, TellsOfARecordingThatHangsInTheAir) {
    Lock(car);
    Record(*car.master->rig, 0.0);
    groundHeight = -400;
    EXPECT_EQ(Count(FindingKind::GroundMoved), 1);
}

TEST_F(Doctor, LetsARecordedCarFall) {
    Lock(car);
    Record(*car.master->rig, 980.0 * 0.97);
    groundHeight = -400;
    EXPECT_EQ(Count(FindingKind::GroundMoved), 0);
    EXPECT_EQ(Count(FindingKind::StartInAir), 1);
}

// ---------------------------------------------------------------------------------------------------- couplings and pushes

TEST_F(Doctor, TellsOfAHitchToSomethingElseThanATongue) {
    AddTrailer();
    hitch->nodes[HitchParam::Connection_Node] = trailer.sphere;
    EXPECT_EQ(Only(FindingKind::HitchToNoTongue, Severity::Error).other, trailer.sphere);
}

TEST_F(Doctor, LetsAHookWithNothingOnItBe) {
    scene.Add("Hook", ObjectClass::Hitch, {0, -290, 35});
    EXPECT_TRUE(Look().empty());
}

TEST_F(Doctor, TellsOfATongueThatIsntLocked) {
    AddTrailer();
    trailer.master->rig->ResetMotion();
    EXPECT_EQ(Only(FindingKind::HitchUnlocked, Severity::Error).other, tongue);
}

TEST_F(Doctor, TellsOfAHitchAndTongueOnOneCar) {
    AddTrailer();
    PlainNode& own = scene.Add("Own bar", ObjectClass::Tongue, {0, 290, 35});
    hitch->nodes[HitchParam::Connection_Node] = &own;
    EXPECT_EQ(Only(FindingKind::HitchToItself, Severity::Error).node, hitch);
}

TEST_F(Doctor, WarnsOfATongueFarFromItsHitch) {
    AddTrailer();
    car.master->nodes[MasterParam::Start_Node] = &scene.Add("StartA", ObjectClass::Start, {0, 300, 35});
    const Finding finding = Only(FindingKind::HitchFar, Severity::Warning);
    EXPECT_NEAR(finding.found, 300.0, 1e-3);
    EXPECT_EQ(finding.other, tongue);
}

TEST_F(Doctor, WarnsOfAPushOnNothing) {
    PlainNode& push = scene.Add("Push", ObjectClass::Push, {0, 0, 35});
    EXPECT_EQ(Only(FindingKind::PushNowhere, Severity::Warning).node, &push);
    push.nodes[PushParam::Tavrik] = car.chassis;
    EXPECT_EQ(Only(FindingKind::PushNowhere, Severity::Warning).other, car.chassis);
    push.nodes[PushParam::Tavrik] = car.master;
    EXPECT_TRUE(Look().empty());
}

TEST_F(Doctor, SaysReasonAndRemedyInWholeSentences) {
    cars[0].ground = {};
    car.chassis->floats[ChassisParam::Mass] = {-1};
    car.wheels[0]->own.row[1] = {0, 3, 0};
    scene.Add("Lost", ObjectClass::Sphere, {5000, 0, 60});
    const std::vector<Finding> findings = Look();
    EXPECT_EQ(findings.size(), 4u);
    for (const Finding& finding : findings) {
        EXPECT_TRUE(finding.sentence.ends_with(".")) << finding.sentence;
        EXPECT_EQ(finding.sentence.find('\n'), std::string::npos) << finding.sentence;
        EXPECT_GT(finding.sentence.find(". "), 0u) << finding.sentence;
    }
}

}  // namespace
}  // namespace tavrik::test
