#include "rig/assembly_report.h"

#include <gtest/gtest.h>

#include "rig/node_values.h"
#include "rig/parameter_tables.h"
#include "tests/rig/plain_scene.h"
#include "tests/rig/random_car.h"

namespace tavrik::test {
namespace {

class Report : public ::testing::Test {
 protected:
    Report() {
        master = &scene.AddMaster("Master", {0, 0, 0}, {500, 400, 300});
        chassis = &scene.Add("Body", ObjectClass::Chassis, {0, 0, 0});
        wheel = &scene.Add("Wheel", ObjectClass::Wheel, {100, 0, 0});
        arm = &scene.Add("Arm", ObjectClass::Suspension, {103, 4, 0});
    }
    AssemblyReport Look() { return ReportAssembly(*master->rig, scene.Root(), *master, ReadBoxSize(*master)); }
    /// All sentences, one a line.
    std::string Told() {
        std::string lines;
        for (const LeftOut& record : Look().leftOut) {
            lines += LeftOutSentence(record, static_cast<PlainNode*>(record.node)->name,
                                     record.other != nullptr ? static_cast<PlainNode*>(record.other)->name : "") +
                     "\n";
        }
        return lines;
    }

    PlainScene scene;
    PlainNode *master, *chassis, *wheel, *arm;
};

TEST_F(Report, OfAWholeCarListsItsPartsAndPairsAndNothingElse) {
    scene.Add("Teapot", ObjectClass::Other, {900, 0, 0});
    const AssemblyReport report = Look();
    EXPECT_EQ(report.result, AssemblyResult::Locked);
    ASSERT_EQ(report.components.size(), 3u);
    EXPECT_EQ(report.components[0].node, chassis);
    EXPECT_EQ(report.components[1].objectClass, ObjectClass::Wheel);
    EXPECT_EQ(report.components[2].node, arm);
    ASSERT_EQ(report.pairs.size(), 1u);
    EXPECT_EQ(report.pairs[0].wheel, wheel);
    EXPECT_EQ(report.pairs[0].suspension, arm);
    EXPECT_EQ(report.pairs[0].distance, 5.0f);
    EXPECT_EQ(report.pairs[0].width, 15.0f);
    EXPECT_EQ(report.pairs[0].alignment, 1.0f);
    EXPECT_TRUE(report.leftOut.empty());
}

TEST_F(Report, ChangesNeitherSceneNorRig) {
    ASSERT_EQ(AssembleIn(scene, *master).result, AssemblyResult::Locked);
    TestRandom random(TestSeed(71));
    RandomState(random, *master->rig);
    master->rig->Store(100);
    const Matrix3 shown = wheel->ShownAt(100);
    arm->own = At({900, 0, 0});
    scene.log.clear();

    Look();

    EXPECT_TRUE(scene.log.empty());
    EXPECT_EQ(master->rig->motion.frames, 2);
    EXPECT_EQ(master->rig->unitCount, 1);
    EXPECT_TRUE(SameBits(wheel->ShownAt(100), shown));
}

TEST_F(Report, LooksAtAnUnlockedCarWhereverItsRecordingHasDrivenIt) {
    PlainNode& start = scene.Add("Start", ObjectClass::Start, {9000, 0, 0});
    ASSERT_EQ(AssembleIn(scene, *master, &start).result, AssemblyResult::Locked);
    ASSERT_EQ(wheel->ShownAt(0).row[3].x, 9103.0f);
    const AssemblyReport report = Look();
    EXPECT_EQ(report.result, AssemblyResult::Locked);
    EXPECT_EQ(report.pairs.size(), 1u);
    EXPECT_TRUE(report.leftOut.empty());
}

TEST_F(Report, TellsWhichPartsAreHeldAlready) {
    EXPECT_FALSE(Look().components[1].held);
    AssembleIn(scene, *master);
    PlainNode& late = scene.Add("Late", ObjectClass::Sphere, {0, 0, 0});
    const AssemblyReport report = Look();
    EXPECT_TRUE(report.components[1].held);
    EXPECT_EQ(report.components.back().node, &late);
    EXPECT_FALSE(report.components.back().held);
}

TEST_F(Report, TellsOfAMissingChassis) {
    chassis->own = At({0, 0, 300});
    EXPECT_EQ(Look().result, AssemblyResult::NoChassis);
    EXPECT_EQ(
        Told(),
        "There is no chassis inside the box of \"Master\", so there is no car.\n"
        "\"Body\" is outside the master's box: it stands 300 from the master along its Z axis, and must stand nearer than "
        "300.\n");
}

TEST_F(Report, NamesTheAxisThatAPartPassesByMost) {
    scene.Add("Ball", ObjectClass::Sphere, {-510, 450, 0});
    const AssemblyReport report = Look();
    ASSERT_EQ(report.leftOut.size(), 1u);
    EXPECT_EQ(report.leftOut[0].reason, LeftOutReason::OutsideBox);
    EXPECT_EQ(report.leftOut[0].axis, 'Y');
    EXPECT_EQ(report.leftOut[0].found, 450.0f);
    EXPECT_EQ(report.leftOut[0].limit, 400.0f);
}

TEST_F(Report, TellsOfFurtherChassis) {
    scene.Add("Spare", ObjectClass::Chassis, {0, 0, 0});
    EXPECT_EQ(Told(), "The chassis \"Spare\" is left out, since the car has \"Body\" already.\n");
}

TEST_F(Report, TellsHowFarTheNearestSuspensionIs) {
    arm->own = At({115, 0, 0});
    EXPECT_EQ(
        Told(),
        "The wheel \"Wheel\" is left out: the nearest suspension, \"Arm\", is 15 away, and must be nearer than the wheel's "
        "Width of 15.\n"
        "The suspension \"Arm\" is left out: the nearest wheel, \"Wheel\", is 15 away, and must be nearer than its Width of "
        "15.\n");
}

TEST_F(Report, TellsWhichAxesLieApart) {
    arm->own.row[2] = {1, 0, 0};
    scene.Add("Far", ObjectClass::Suspension, {0, 200, 0});
    PlainNode& better = scene.Add("Better", ObjectClass::Suspension, {100, 8, 0});
    better.own.row[2] = {0.8f, 0, 0.6f};
    const AssemblyReport report = Look();
    ASSERT_FALSE(report.leftOut.empty());
    EXPECT_EQ(report.leftOut[0].reason, LeftOutReason::WheelAxisApart);
    EXPECT_EQ(report.leftOut[0].other, &better);
    EXPECT_EQ(report.leftOut[0].found, 0.6f);
    EXPECT_EQ(
        Told().substr(0, Told().find('\n')),
        "The wheel \"Wheel\" is left out: its Z axis and that of the suspension \"Better\" lie too far apart; their product "
        "is 0.6, and must be above 0.8.");
}

TEST_F(Report, TellsOfASuspensionThatNoWheelTook) {
    scene.Add("Second", ObjectClass::Suspension, {100, 6, 0});
    EXPECT_EQ(
        Told(),
        "The suspension \"Second\" is left out: the wheel \"Wheel\" is near enough at 6, but has its axis turned elsewhere "
        "or took another suspension.\n");
}

TEST_F(Report, AsksTheWheelThatReachesASuspensionBeforeANearerOneThatDoesnt) {
    PlainNode& thin = scene.Add("Thin", ObjectClass::Wheel, {200, 0, 0});
    thin.floats[WheelParam::Width] = {1};
    PlainNode& wide = scene.Add("Wide", ObjectClass::Wheel, {220, 0, 0});
    wide.floats[WheelParam::Width] = {50};
    wide.own.row[2] = {1, 0, 0};
    scene.Add("Lost", ObjectClass::Suspension, {205, 0, 0});
    const AssemblyReport report = Look();
    EXPECT_EQ(report.leftOut.back().reason, LeftOutReason::SuspensionPassedOver);
    EXPECT_EQ(report.leftOut.back().other, &wide);
}

TEST_F(Report, TellsOfABoxWithOneKindOnly) {
    arm->own = At({900, 0, 0});
    EXPECT_EQ(Look().leftOut[0].reason, LeftOutReason::NoSuspension);
    EXPECT_TRUE(Told().starts_with("The wheel \"Wheel\" is left out: there is no suspension inside the box.\n"));
    arm->own = At({100, 0, 0});
    wheel->own = At({900, 0, 0});
    EXPECT_EQ(Look().leftOut[0].reason, LeftOutReason::NoWheel);
    EXPECT_TRUE(Told().starts_with("The suspension \"Arm\" is left out: there is no wheel inside the box.\n"));
}

TEST_F(Report, TellsOfWheelsThatShareASuspension) {
    scene.Add("Twin", ObjectClass::Wheel, {104, 0, 0});
    EXPECT_EQ(Look().pairs.size(), 2u);
    EXPECT_EQ(Told(),
              "The wheel \"Twin\" shares the suspension \"Arm\" with another wheel: it drives now, but can't be put together "
              "again after the scene is loaded.\n");
}

TEST_F(Report, TellsOfTooManyParts) {
    for (int i = 0; i < 201; ++i) scene.Add("Ball", ObjectClass::Sphere, {0, 0, 0});
    EXPECT_EQ(Look().result, AssemblyResult::TooMany);
    EXPECT_EQ(
        Told(),
        "\"Master\": There are 201 collision spheres in the master's box, but a car can have only 200 of them; make the box "
        "smaller or take some of them out of it.\n");
}

TEST_F(Report, TellsOfAFlatChassisOrMaster) {
    chassis->own.row[0] = {0, 0, 0};
    EXPECT_EQ(Look().result, AssemblyResult::Flattened);
    EXPECT_EQ(Told(), "The chassis \"Body\" is scaled to nothing along some axis, so no part has a place beside it.\n");
    master->own.row[0] = {0, 0, 0};
    EXPECT_EQ(Look().result, AssemblyResult::Flattened);
    EXPECT_EQ(Told(), "The master \"Master\" is scaled to nothing along some axis, so nothing is inside its box.\n");
}

}  // namespace
}  // namespace tavrik::test
