#include "tests/solver/solver_scene.h"

#include <cmath>
#include <cstring>

#include "rig/stock_car.h"
#include "solver/world_step.h"

namespace tavrik::test {
namespace {

SurfaceTree BuildTree(const TriangleMesh& mesh) {
    SurfaceTree tree;
    tree.Build(mesh);
    return tree;
}

/// Names the first of `count` doubles that differ in their bits.
template <typename T>
bool Differs(std::string& text, const std::string& name, const T& a, const T& b) {
    static_assert(sizeof(T) % sizeof(double) == 0);
    if (std::memcmp(&a, &b, sizeof(T)) == 0) return false;
    double left[sizeof(T) / sizeof(double)], right[sizeof(T) / sizeof(double)];
    std::memcpy(left, &a, sizeof(T));
    std::memcpy(right, &b, sizeof(T));
    for (std::size_t i = 0; i < sizeof(T) / sizeof(double); ++i) {
        if (std::memcmp(&left[i], &right[i], sizeof(double)) == 0) continue;
        text = name + "[" + std::to_string(i) + "]: " + Digits(left[i]) + " against " + Digits(right[i]);
        return true;
    }
    return false;
}

bool BodiesDiffer(std::string& text, const std::string& name, const RigidBody& a, const RigidBody& b) {
    return Differs(text, name + ".frame", a.frame, b.frame) || Differs(text, name + ".momentum", a.momentum, b.momentum) ||
           Differs(text, name + ".angularMomentum", a.angularMomentum, b.angularMomentum) ||
           Differs(text, name + ".velocity", a.velocity, b.velocity) ||
           Differs(text, name + ".angularVelocity", a.angularVelocity, b.angularVelocity);
}

bool IsFinite(const DPoint3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }
bool IsFinite(const RigidBody& body) {
    for (const DPoint3& row : body.frame.row) {
        if (!IsFinite(row)) return false;
    }
    return IsFinite(body.momentum) && IsFinite(body.angularMomentum) && IsFinite(body.velocity) &&
           IsFinite(body.angularVelocity);
}

}  // namespace

TriangleMesh GridMesh(double half, int cells, const std::function<double(double, double)>& height) {
    TriangleMesh mesh;
    for (int j = 0; j <= cells; ++j) {
        for (int i = 0; i <= cells; ++i) {
            const double x = -half + 2.0 * half * i / cells, y = -half + 2.0 * half * j / cells;
            mesh.verts.push_back({float(x), float(y), float(height(x, y))});
        }
    }
    const std::uint32_t row = std::uint32_t(cells) + 1;
    for (std::uint32_t j = 0; j + 1 < row; ++j) {
        for (std::uint32_t i = 0; i + 1 < row; ++i) {
            const std::uint32_t v = j * row + i;
            mesh.faces.push_back({{v, v + 1, v + row + 1}});
            mesh.faces.push_back({{v, v + row + 1, v + row}});
        }
    }
    return mesh;
}

const SurfaceTree& FlatGround() {
    static const SurfaceTree tree = BuildTree(GridMesh(20'000.0, 7, [](double, double) { return 0.0; }));
    return tree;
}

const SurfaceTree& Hills() {
    static const SurfaceTree tree = BuildTree(GridMesh(
        6'000.0, 100, [](double x, double y) { return 25.0 * std::sin(x / 310.0) + 20.0 * std::cos(y / 270.0 + x / 900.0); }));
    return tree;
}

const SurfaceTree& Kerb() {
    // Two sheets and the wall between them.
    static const SurfaceTree tree = [] {
        const float far = 20'000.0f, edge = 400.0f, high = 15.0f;
        TriangleMesh mesh;
        mesh.verts = {{-far, -far, 0.0f}, {edge, -far, 0.0f}, {edge, far, 0.0f}, {-far, far, 0.0f},
                      {edge, -far, high}, {far, -far, high},  {far, far, high},  {edge, far, high}};
        mesh.faces = {{{0, 1, 2}}, {{0, 2, 3}}, {{4, 5, 6}}, {{4, 6, 7}}, {{1, 4, 7}}, {{1, 7, 2}}};
        return BuildTree(mesh);
    }();
    return tree;
}

const SurfaceTree& NoGround() {
    static const SurfaceTree tree = BuildTree(GridMesh(10.0, 1, [](double, double) { return -1e7; }));
    return tree;
}

CarWorld& EmptyWorld() {
    static CarWorld world;
    world.carCount = world.jointCount = world.pushCount = 0;
    world.random.Feed({});
    world.random.Seed(1);
    return world;
}

DMatrix3 FrameAt(const DPoint3& place) {
    DMatrix3 frame = IdentityDMatrix3();
    frame.row[3] = place;
    return frame;
}

DMatrix3 UnitFrameAt(double side, const DPoint3& place) {
    return {{{0.0, 0.0, -1.0}, {0.0, side, 0.0}, {side, 0.0, 0.0}, place}};
}

DriveInput StockInput() {
    DriveInput input;
    input.rudderSensitivity = 30.0f;
    input.rudderAngle = 38.0f;
    input.throttleSensitivity = 2000.0f;
    input.brakeSensitivity = 2000.0f;
    input.balanceForce = 2.0f;
    input.maxDriftSpeed = 277.77777f;  // 10 km/h
    return input;
}

void DriveAlone(CarRig& rig, const SurfaceTree& ground, const DriveInput& input, double seconds) {
    CarWorld& world = EmptyWorld();
    world.rigs[0] = &rig;
    world.carCount = 1;
    const int steps = int(std::lround(seconds / kDt));
    for (int i = 0; i < steps; ++i) WorldStep(world, i * kDt, kDt, ground, kGravity, input);
}

void SettleStockCar(CarRig& rig, const SurfaceTree& ground, double x, double y) {
    MakeStockCar(rig, FrameAt({x, y, StockCarStandingHeight()}));
    DriveAlone(rig, ground, StockInput(), 1.0);
}

void MakeBareCar(CarRig& rig, const DPoint3& place) {
    rig.unitCount = rig.sphereCount = rig.hitchCount = 0;
    rig.chassisParams.Width = 100.0;
    rig.chassisParams.Length = 200.0;
    rig.chassisParams.Height = 50.0;
    rig.chassisParams.Mass = 1000.0;
    rig.chassisParams.Solidity = 1e6;
    ResetBody(rig.chassisBody, FrameAt(place));
    rig.steerValue = rig.steerSpare = 0.0;
}

void MakeRandomCar(CarRig& rig, TestRandom& random, const DPoint3& place) {
    ChassisParams& chassis = rig.chassisParams;
    chassis.Length = random.Between(120.0, 260.0);
    chassis.Width = random.Between(50.0, 100.0);
    chassis.Height = random.Between(10.0, 60.0);
    chassis.Mass = random.Between(600.0, 1500.0);
    chassis.Solidity = random.Between(1e5, 4e6);
    chassis.RotationCenterShift = random.Between(-1.0, 0.3);

    DMatrix3 frame = IdentityDMatrix3();
    RotateX(frame, random.Between(-0.3, 0.3));
    RotateY(frame, random.Between(-0.3, 0.3));
    RotateZ(frame, random.Between(-3.0, 3.0));
    frame.row[3] = place;
    ResetBody(rig.chassisBody, frame);
    rig.chassisBody.momentum = random.Vector(500.0) * chassis.Mass;
    rig.chassisBody.angularMomentum = random.Vector(1e7);

    const bool tidy = random.Int(0, 2) != 0;
    rig.unitCount = random.Int(0, 6);
    for (int i = 0; i < rig.unitCount; ++i) {
        SuspensionUnit& unit = rig.units[i];
        unit.Radius = random.Between(20.0, 40.0);
        unit.Width = random.Between(4.0, 14.0);
        unit.Mass = random.Between(15.0, 40.0);
        unit.Length = random.Between(15.0, 50.0);
        unit.Wheel_Shift = random.Between(-6.0, 10.0);
        unit.Shift = random.Between(0.0, 15.0);
        unit.Top_Stop = random.Between(2.0, 12.0);
        unit.Bottom_Stop = random.Between(-12.0, 3.0);  // the stops may even overlap
        unit.Ruggedness = random.Between(5'000.0, 40'000.0);
        unit.Damping = random.Between(500.0, 4'000.0);
        unit.Buffer_Ruggedness = random.Between(20'000.0, 200'000.0);
        unit.wheelRuggedness = random.Between(50'000.0, 400'000.0);
        unit.wheelDamping = std::sqrt(unit.wheelRuggedness) * 10.0;
        unit.Grip = random.Between(0.0, 1.5);
        unit.Suspension_Type = random.Int(0, 2);  // whatever isn't a wishbone is telescopic
        unit.Steering = random.Int(0, 1);
        unit.Drive = random.Int(0, 1);
        unit.Handbrake = random.Int(0, 1);
        const double side = i % 2 == 0 ? -1.0 : 1.0;
        const DPoint3 at = {side * random.Between(20.0, 60.0), random.Between(-150.0, 150.0), random.Between(-30.0, 0.0)};
        unit.frame = tidy ? UnitFrameAt(side, at) : random.Turn();
        unit.frame.row[3] = at;
        PlaceWheel(unit, rig.chassisBody, rig.wheelBodies[i], rig.bufferPosition[i]);
        rig.wheelBodies[i].momentum = rig.chassisBody.momentum * (unit.Mass / chassis.Mass);
    }
    rig.sphereCount = random.Int(0, 4);
    for (int i = 0; i < rig.sphereCount; ++i) {
        CollisionSphere& sphere = rig.spheres[i];
        sphere.frame = random.Turn();
        sphere.frame.row[3] = random.Vector(100.0);
        sphere.Radius = random.Between(10.0, 60.0);
        sphere.Ruggedness = random.Between(1e5, 1e6);
        sphere.damping = std::sqrt(sphere.Ruggedness) * 20.0;
        sphere.Grip = random.Between(0.0, 1.0);
    }
    rig.hitchCount = 2;
    for (int i = 0; i < rig.hitchCount; ++i) {
        rig.hitches[i].frame = random.Turn();
        rig.hitches[i].frame.row[3] = {0.0, i == 0 ? -chassis.Length : chassis.Length, 0.0};
        rig.hitches[i].partner = nullptr;
        rig.hitches[i].ownerRig = nullptr;
    }
    rig.steerValue = random.Between(-0.4, 0.4);
    rig.steerSpare = random.Unit();
}

std::string FirstDifference(const CarRig& a, const CarRig& b) {
    std::string text;
    if (BodiesDiffer(text, "chassis", a.chassisBody, b.chassisBody)) return text;
    if (Differs(text, "steerValue", a.steerValue, b.steerValue)) return text;
    if (Differs(text, "steerSpare", a.steerSpare, b.steerSpare)) return text;
    for (int i = 0; i < a.unitCount; ++i) {
        if (BodiesDiffer(text, "wheel " + std::to_string(i), a.wheelBodies[i], b.wheelBodies[i])) return text;
        if (Differs(text, "buffer " + std::to_string(i), a.bufferPosition[i], b.bufferPosition[i])) return text;
    }
    return text;
}

bool IsFinite(const CarRig& rig) {
    if (!IsFinite(rig.chassisBody) || !std::isfinite(rig.steerValue)) return false;
    for (int i = 0; i < rig.unitCount; ++i) {
        if (!IsFinite(rig.wheelBodies[i]) || !std::isfinite(rig.bufferPosition[i])) return false;
    }
    return true;
}

void CopyState(CarRig& to, const CarRig& from) {
    CopyRecordedState(to.chassisBody, from.chassisBody);
    for (int i = 0; i < from.unitCount; ++i) {
        CopyRecordedState(to.wheelBodies[i], from.wheelBodies[i]);
        to.bufferPosition[i] = from.bufferPosition[i];
    }
    to.steerValue = from.steerValue;
    to.steerSpare = from.steerSpare;
}

double Speed(const CarRig& rig) { return Length(rig.chassisBody.velocity); }

}  // namespace tavrik::test
