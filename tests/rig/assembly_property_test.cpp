#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "rig/assembly.h"
#include "rig/assembly_report.h"
#include "rig/component_values.h"
#include "rig/node_values.h"
#include "rig/parameter_tables.h"
#include "tests/rig/plain_scene.h"
#include "tests/rig/random_car.h"

namespace tavrik::test {
namespace {

/// A scene of `clusters` places where wheels and suspensions stand close together, some fitting and some not, under random
/// parents; with chassis, hitches and spheres among them, inside the box and out of it.
struct RandomScene {
    PlainScene scene;
    PlainNode* master;

    RandomScene(TestRandom& random, int clusters) {
        master = &scene.AddMaster("Master", {0, 0, 0}, {random.Between(150.0f, 300.0f), random.Between(150.0f, 300.0f), 200});
        master->own = Frame(random, ToPoint3(random.Vector(500.0)));
        const auto add = [&](ObjectClass objectClass, const Matrix3& place) -> PlainNode& {
            PlainNode* const parent =
                random.Int(0, 2) != 0 ? &scene.Nodes()[std::size_t(random.Int(0, int(scene.Nodes().size()) - 1))] : nullptr;
            PlainNode& node = scene.Add("Node" + std::to_string(scene.Nodes().size()), objectClass, {0, 0, 0}, parent);
            node.own = place;
            return node;
        };
        const auto anywhere = [&] { return TransformPoint(ToPoint3(random.Vector(260.0)), master->own); };
        const ObjectClass single[] = {ObjectClass::Chassis, ObjectClass::Hitch, ObjectClass::Tongue, ObjectClass::Sphere,
                                      ObjectClass::None,    ObjectClass::Other, ObjectClass::Push,   ObjectClass::Start};
        for (int c = 0; c < clusters; ++c) {
            const Point3 centre = anywhere();
            const Matrix3 axes = Frame(random, centre);
            for (int i = random.Int(1, 4); i > 0; --i) {
                const bool isWheel = random.Int(0, 1) == 0;
                Matrix3 place = random.Int(0, 3) == 0 ? Frame(random, centre) : axes;
                place.row[3] = centre + ToPoint3(random.Vector(8.0));
                PlainNode& node = add(isWheel ? ObjectClass::Wheel : ObjectClass::Suspension, place);
                if (!isWheel) {
                    node.ints[SuspensionParam::Suspension_Type] = random.Int(0, 1);
                    node.floats[SuspensionParam::Wheel_Shift] = {random.Between(-5.0f, 5.0f)};
                }
            }
            add(single[random.Int(0, 7)], Frame(random, anywhere()));
        }
        for (PlainNode& node : scene.Nodes()) {  // some are left from a lock of another day
            if (random.Int(0, 4) != 0) continue;
            node.hasControl = true;
            node.control.Tavrik_Node = random.Int(0, 1) == 0 ? master : nullptr;
        }
    }

    static Matrix3 Frame(TestRandom& random, const Point3& place) {
        Matrix3 frame = ToMatrix3(random.Turn());
        for (int r = 0; r < 3; ++r) frame.row[r] = frame.row[r] * random.Between(0.8f, 1.2f);
        frame.row[3] = place;
        return frame;
    }
};

// ---- the same once more, as plainly as it can be told: recursion, fresh sums, no shared code but records

struct PlainUnit {
    PlainNode *wheel, *suspension;
    Matrix3 slot;
};

struct PlainCar {
    std::vector<PlainNode*> chassis, wheels, suspensions, hitches, spheres, released;
    std::vector<PlainUnit> units;
    std::set<PlainNode*> locked;
    int shared = 0;
};

Matrix3 Times(const Matrix3& a, const Matrix3& b) {
    Matrix3 m{};
    for (int r = 0; r < 4; ++r) {
        for (std::size_t c = 0; c < 3; ++c) {
            float sum = a.row[r].x * b.row[0][c];
            sum += a.row[r].y * b.row[1][c];
            sum += a.row[r].z * b.row[2][c];
            if (r == 3) sum += b.row[3][c];
            m.row[r][c] = sum;
        }
    }
    return m;
}

void PlainGather(PlainCar& car, PlainNode& node, PlainNode& master, const Matrix3& inverse) {
    if (node.Class() != ObjectClass::None) {
        const Point3 p = Times(At(node.own.row[3]), inverse).row[3];
        const std::vector<float>& size = master.floats[MasterParam::Dummy_Size];
        const bool inside = size[0] > std::fabs(p.x) && size[1] > std::fabs(p.y) && size[2] > std::fabs(p.z);
        const ObjectClass is = node.Class();
        if (!inside && node.hasControl && node.control.Tavrik_Node == &master) car.released.push_back(&node);
        if (inside && is == ObjectClass::Chassis) car.chassis.push_back(&node);
        if (inside && is == ObjectClass::Wheel) car.wheels.push_back(&node);
        if (inside && is == ObjectClass::Suspension) car.suspensions.push_back(&node);
        if (inside && is == ObjectClass::Sphere) car.spheres.push_back(&node);
        if (inside && (is == ObjectClass::Hitch || is == ObjectClass::Tongue)) car.hitches.push_back(&node);
    }
    for (PlainNode* child : node.children) PlainGather(car, *child, master, inverse);
}

bool Fits(PlainNode& wheel, const PlainNode& suspension) {
    const Point3 a = wheel.own.row[3], b = suspension.own.row[3];
    const float x = a.x - b.x, y = a.y - b.y, z = a.z - b.z;
    const float width = wheel.floats[WheelParam::Width][0];
    const Point3 u = wheel.own.row[2], v = suspension.own.row[2];
    return width * width > x * x + y * y + z * z && u.x * v.x + u.y * v.y + u.z * v.z > 0.8f;
}

PlainCar PlainAssembly(PlainScene& scene, PlainNode& master) {
    PlainCar car;
    PlainGather(car, scene.Root(), master, Inverse(master.own));
    if (car.chassis.empty()) return car;
    const Matrix3 inverse = Inverse(car.chassis[0]->own);
    car.locked = {car.chassis[0]};
    std::set<PlainNode*> used;
    for (PlainNode* wheel : car.wheels) {
        for (PlainNode* suspension : car.suspensions) {
            if (!Fits(*wheel, *suspension)) continue;
            Matrix3 slot = Times(suspension->own, inverse);
            const float shift = suspension->floats[SuspensionParam::Wheel_Shift][0];
            const float length = suspension->floats[SuspensionParam::Length][0];
            const float back = suspension->ints[SuspensionParam::Suspension_Type] == 0 ? length + shift : shift;
            for (std::size_t c = 0; c < 3; ++c) slot.row[3][c] -= slot.row[2][c] * back;
            car.units.push_back({wheel, suspension, slot});
            car.locked.insert({wheel, suspension});
            car.shared += !used.insert(suspension).second;
            break;
        }
    }
    car.locked.insert(car.hitches.begin(), car.hitches.end());
    car.locked.insert(car.spheres.begin(), car.spheres.end());
    return car;
}

TEST(RandomAssembly, AgreesWithAPlainOne) {
    TestRandom random(TestSeed(60));
    int units = 0, shared = 0, released = 0, looseWheels = 0, withoutChassis = 0;
    for (int round = 0; round < TestRounds(300); ++round) {
        RandomScene random_scene(random, 12);
        PlainScene& scene = random_scene.scene;
        PlainNode& master = *random_scene.master;
        std::set<PlainNode*> heldBefore;
        for (PlainNode& node : scene.Nodes()) {
            if (node.hasControl && node.control.Tavrik_Node == &master) heldBefore.insert(&node);
        }
        const PlainCar car = PlainAssembly(scene, master);

        const AssemblyResult result = AssembleIn(scene, master).result;

        ASSERT_EQ(result, car.chassis.empty() ? AssemblyResult::NoChassis : AssemblyResult::Locked) << round;
        for (PlainNode* node : car.released) ASSERT_EQ(node->control.Tavrik_Node, nullptr) << round << " " << node->name;
        for (PlainNode& node : scene.Nodes()) {
            const bool held = node.hasControl && node.control.Tavrik_Node == &master;
            const bool letGo = std::ranges::count(car.released, &node) > 0;
            ASSERT_EQ(held, car.locked.contains(&node) || (heldBefore.contains(&node) && !letGo)) << round << " " << node.name;
        }
        released += int(car.released.size());
        withoutChassis += car.chassis.empty();
        if (car.chassis.empty()) continue;

        const CarRig& rig = *master.rig;
        ASSERT_EQ(rig.unitCount, std::int32_t(car.units.size())) << round;
        ASSERT_EQ(rig.hitchCount, std::int32_t(car.hitches.size())) << round;
        ASSERT_EQ(rig.sphereCount, std::int32_t(car.spheres.size())) << round;
        const Matrix3 inverse = Inverse(car.chassis[0]->own);
        for (std::size_t k = 0; k < car.units.size(); ++k) {
            const PlainUnit& unit = car.units[k];
            ASSERT_TRUE(SameBits(rig.units[k].frame, FromMatrix3(unit.slot))) << round << " " << k;
            ASSERT_EQ(rig.units[k].wheelHandle, unit.wheel->handle) << round << " " << k;
            ASSERT_EQ(unit.wheel->control.Axle_Num, std::int32_t(k)) << round;
            ASSERT_TRUE(SameBits(unit.wheel->control.Slot_Position, unit.slot)) << round << " " << k;
        }
        for (std::size_t i = 0; i < car.hitches.size(); ++i) {
            ASSERT_TRUE(SameBits(rig.hitches[i].frame, FromMatrix3(Times(car.hitches[i]->own, inverse)))) << round << " " << i;
        }
        for (std::size_t i = 0; i < car.spheres.size(); ++i) {
            ASSERT_TRUE(SameBits(rig.spheres[i].frame, FromMatrix3(Times(car.spheres[i]->own, inverse)))) << round << " " << i;
        }
        units += rig.unitCount;
        shared += car.shared;
        looseWheels += int(car.wheels.size() - car.units.size());
    }
    if (TestRounds(300) < 300) return;
    EXPECT_GT(units, 300);
    EXPECT_GT(shared, 30);
    EXPECT_GT(released, 100);
    EXPECT_GT(looseWheels, 300);
    EXPECT_GT(withoutChassis, 10);
}

TEST(RandomAssembly, AssemblingTwiceGivesTheSameBits) {
    TestRandom random(TestSeed(61));
    int locked = 0;
    for (int round = 0; round < TestRounds(100); ++round) {
        RandomScene random_scene(random, 12);
        PlainScene& scene = random_scene.scene;
        CarRig& rig = *random_scene.master->rig;
        if (AssembleIn(scene, *random_scene.master).result != AssemblyResult::Locked) continue;
        ++locked;
        const auto units = std::vector<SuspensionUnit>(rig.units, rig.units + rig.unitCount);
        const auto wheels = std::vector<RigidBody>(rig.wheelBodies, rig.wheelBodies + rig.unitCount);
        const auto spheres = std::vector<CollisionSphere>(rig.spheres, rig.spheres + rig.sphereCount);
        const RigidBody body = rig.chassisBody;
        std::vector<Matrix3> shown;
        for (PlainNode& node : scene.Nodes()) shown.push_back(node.ShownAt(0));
        for (TimeValue tick = 0; tick < 96; tick += 32) {  // something to forget
            RandomState(random, rig);
            rig.Store(tick);
        }

        ASSERT_EQ(AssembleIn(scene, *random_scene.master).result, AssemblyResult::Locked);

        ASSERT_EQ(rig.unitCount, std::int32_t(units.size()));
        ASSERT_EQ(rig.sphereCount, std::int32_t(spheres.size()));
        ASSERT_TRUE(SameBits(rig.chassisBody, body));
        for (std::size_t i = 0; i < units.size(); ++i) {
            ASSERT_TRUE(SameBits(rig.units[i].frame, units[i].frame)) << round << " " << i;
            ASSERT_EQ(rig.units[i].wheelHandle, units[i].wheelHandle) << round << " " << i;
            ASSERT_TRUE(SameBits(rig.wheelBodies[i], wheels[i])) << round << " " << i;
            ASSERT_EQ(rig.bufferPosition[i], 0.0);
        }
        for (std::size_t i = 0; i < spheres.size(); ++i) ASSERT_TRUE(SameBits(rig.spheres[i], spheres[i])) << round;
        for (std::size_t i = 0; i < shown.size(); ++i) {
            ASSERT_TRUE(SameBits(scene.Nodes()[i].ShownAt(0), shown[i])) << round << " " << i;
        }
    }
    EXPECT_GT(locked, TestRounds(100) / 4);
}

TEST(RandomAssembly, AStartNodeMovesTheCarButNothingInChassisSpace) {
    TestRandom random(TestSeed(62));
    int moved = 0;
    for (int round = 0; round < TestRounds(100); ++round) {
        RandomScene random_scene(random, 12);
        PlainScene& scene = random_scene.scene;
        PlainNode& start = scene.Add("Goal", ObjectClass::Other, {0, 0, 0});
        start.own = ToMatrix3(RandomFrame(random));
        CarRig& rig = *random_scene.master->rig;
        if (AssembleIn(scene, *random_scene.master).result != AssemblyResult::Locked) continue;
        const auto units = std::vector<SuspensionUnit>(rig.units, rig.units + rig.unitCount);
        const auto hitches = std::vector<HitchSlot>(rig.hitches, rig.hitches + rig.hitchCount);
        const auto spheres = std::vector<CollisionSphere>(rig.spheres, rig.spheres + rig.sphereCount);

        ASSERT_EQ(AssembleIn(scene, *random_scene.master, &start).result, AssemblyResult::Locked);

        ASSERT_TRUE(SameBits(rig.chassisBody.frame, FromMatrix3(start.own)));
        for (std::size_t i = 0; i < units.size(); ++i) {
            ASSERT_TRUE(SameBits(rig.units[i].frame, units[i].frame)) << round << " " << i;
            RigidBody wheel;
            double bufferPosition;
            PlaceWheel(rig.units[i], rig.chassisBody, wheel, bufferPosition);
            ASSERT_TRUE(SameBits(rig.wheelBodies[i], wheel)) << round << " " << i;
        }
        for (std::size_t i = 0; i < hitches.size(); ++i) ASSERT_TRUE(SameBits(rig.hitches[i].frame, hitches[i].frame)) << round;
        for (std::size_t i = 0; i < spheres.size(); ++i) ASSERT_TRUE(SameBits(rig.spheres[i].frame, spheres[i].frame)) << round;
        moved += rig.unitCount;
    }
    EXPECT_GT(moved, TestRounds(100) / 4);
}

TEST(RandomAssembly, ReattachesUnlessTwoWheelsShareASuspension) {
    TestRandom random(TestSeed(63));
    int whole = 0, broken = 0;
    for (int round = 0; round < TestRounds(200); ++round) {
        RandomScene random_scene(random, 5);
        PlainScene& scene = random_scene.scene;
        PlainNode& master = *random_scene.master;
        for (PlainNode& node : scene.Nodes()) node.control.Tavrik_Node = nullptr;  // no locks of another day
        const PlainCar car = PlainAssembly(scene, master);
        if (AssembleIn(scene, master).result != AssemblyResult::Locked) continue;
        const auto fresh = std::make_unique<CarRig>();

        ASSERT_EQ(Reattach(*fresh, scene.Root(), master), car.shared == 0) << round;

        (car.shared == 0 ? whole : broken) += 1;
        if (car.shared != 0) continue;
        const CarRig& rig = *master.rig;
        ASSERT_EQ(fresh->unitCount, rig.unitCount);
        for (std::int32_t i = 0; i < rig.unitCount; ++i) {
            ASSERT_TRUE(SameBits(fresh->units[i].frame, rig.units[i].frame)) << round << " " << i;
        }
    }
    if (TestRounds(200) < 200) return;
    EXPECT_GT(whole, 20);
    EXPECT_GT(broken, 5);
}

TEST(RandomAssembly, IsWhatItsReportTold) {
    TestRandom random(TestSeed(64));
    int told = 0;
    for (int round = 0; round < TestRounds(200); ++round) {
        RandomScene random_scene(random, 12);
        PlainScene& scene = random_scene.scene;
        PlainNode& master = *random_scene.master;
        const AssemblyReport report = ReportAssembly(*master.rig, scene.Root(), master, ReadBoxSize(master));
        ASSERT_TRUE(scene.log.empty());
        const PlainCar car = PlainAssembly(scene, master);

        ASSERT_EQ(report.result, AssembleIn(scene, master).result);

        ASSERT_EQ(report.components.size(),
                  car.chassis.size() + car.wheels.size() + car.suspensions.size() + car.hitches.size() + car.spheres.size());
        std::set<SceneNode*> takenWheels, leftOutWheels;
        for (const MatchedPair& pair : report.pairs) takenWheels.insert(pair.wheel);
        for (const LeftOut& record : report.leftOut) {
            if (record.reason == LeftOutReason::NoSuspension || record.reason == LeftOutReason::WheelTooFar ||
                record.reason == LeftOutReason::WheelAxisApart) {
                leftOutWheels.insert(record.node);
            }
        }
        for (PlainNode* wheel : car.wheels) {  // each wheel in the box is told of exactly once
            ASSERT_NE(takenWheels.contains(wheel), leftOutWheels.contains(wheel)) << round << " " << wheel->name;
        }
        told += int(leftOutWheels.size());
        if (report.result != AssemblyResult::Locked) continue;
        ASSERT_EQ(report.pairs.size(), car.units.size()) << round;
        for (std::size_t k = 0; k < car.units.size(); ++k) {
            ASSERT_EQ(report.pairs[k].wheel, car.units[k].wheel) << round;
            ASSERT_EQ(report.pairs[k].suspension, car.units[k].suspension) << round;
        }
    }
    EXPECT_GT(told, TestRounds(200));
}

}  // namespace
}  // namespace tavrik::test
