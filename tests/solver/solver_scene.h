#pragma once
/// Grounds, cars and a world for the solver's tests.

#include <cstdint>
#include <functional>
#include <memory>

#include "rig/car_rig.h"
#include "solver/car_world.h"
#include "solver/drive_input.h"
#include "solver/frame_stepping.h"
#include "surface/surface_tree.h"
#include "tests/support/test_random.h"

namespace tavrik::test {

constexpr double kDt = 1.0 / 4500.0;  // one solver step of a default frame, s
constexpr double kGravity = 980.0;    // unit/s^2
constexpr double kWeightSum = 0.9717524751;

/// A square of side 2 * `half` about the origin, `cells` by `cells`, its heights from a function of x and y.
TriangleMesh GridMesh(double half, int cells, const std::function<double(double, double)>& height);

// Each is built once a program.
const SurfaceTree& FlatGround();  // at height 0
const SurfaceTree& Hills();       // within 45 of height 0
const SurfaceTree& Kerb();        // at height 0, and at 15 where x > 400
const SurfaceTree& NoGround();    // a built tree far below everything

/// The one world of the program, empty, with the generator at seed 1.
CarWorld& EmptyWorld();

/// `IdentityDMatrix3` moved to `place`.
DMatrix3 FrameAt(const DPoint3& place);
/// Rows of a unit on the right (side 1) or the left (side -1) of a car: travel down, axle outwards.
DMatrix3 UnitFrameAt(double side, const DPoint3& place);

/// The settings under which the stock car is driven, nothing pressed.
DriveInput StockInput();
/// Puts the stock car at (x, y), at its standing height above `ground`, and lets it settle for a second.
void SettleStockCar(CarRig& rig, const SurfaceTree& ground, double x = 0.0, double y = 0.0);

/// Drives a world that holds just `rig` for `seconds`, in steps of kDt. The generator starts at seed 1 each time.
void DriveAlone(CarRig& rig, const SurfaceTree& ground, const DriveInput& input, double seconds);

/// A body of its own without wheels, 100 x 200 x 50 and of mass 1000, at rest.
void MakeBareCar(CarRig& rig, const DPoint3& place);
/// Up to six wheels on units of every kind, up to four spheres and two hitch slots; its units stand as a car's do, or at
/// random. The same `random` gives the same car.
void MakeRandomCar(CarRig& rig, TestRandom& random, const DPoint3& place);

/// The first bit in which two cars differ, of what a recording keeps and of the velocities, as text; empty where there is none.
std::string FirstDifference(const CarRig& a, const CarRig& b);
/// Whether every number of the car's state is finite.
bool IsFinite(const CarRig& rig);
/// Copies what a recording keeps, and no velocity.
void CopyState(CarRig& to, const CarRig& from);

double Speed(const CarRig& rig);  // of the chassis, unit/s

/// A master with settings as plain fields, which counts what is asked of it.
struct TestMaster : DriveMaster {
    CarWorld* world = nullptr;
    const SurfaceTree* surface = nullptr;
    float gravity = 980.0f;
    std::int32_t frameStep = 5, sampleStep = 30, ticksPerFrame = 160;
    TimeValue rangeEnd = 1'000'000;
    int samples = 0;
    std::function<void()> beforeSample;

    CarWorld& World() override { return *world; }
    const SurfaceTree* Surface() const override { return surface; }
    float Gravity() const override { return gravity; }
    std::int32_t Frame_Step() const override { return frameStep; }
    std::int32_t Sample_Step() const override { return sampleStep; }
    std::int32_t GetTicksPerFrame() const override { return ticksPerFrame; }
    TimeValue AnimRangeEnd() const override { return rangeEnd; }
    void BeforeSample() override {
        ++samples;
        if (beforeSample) beforeSample();
    }
};

/// A push whose frame and size are told by functions of the tick.
struct TestPush : PushSource {
    std::function<Matrix3(TimeValue)> frame = [](TimeValue) { return IdentityMatrix3(); };
    std::function<float(TimeValue)> size = [](TimeValue) { return 0.0f; };

    Matrix3 GetObjectTM(TimeValue tick) const override { return frame(tick); }
    float PushMagnitude(TimeValue tick) const override { return size(tick); }
};

}  // namespace tavrik::test
