#include "tests/rig/random_car.h"

namespace tavrik::test {
namespace {

RigidBody RandomBody(TestRandom& random) {
    RigidBody body;
    body.frame = RandomFrame(random);
    body.momentum = random.Vector(1e5);
    body.angularMomentum = random.Vector(1e7);
    body.velocity = random.Vector(1e3);
    body.angularVelocity = random.Vector(50.0);
    return body;
}

}  // namespace

DMatrix3 RandomFrame(TestRandom& random) {
    DMatrix3 frame = random.Turn();
    for (int r = 0; r < 3; ++r) frame.row[r] = frame.row[r] * random.Between(1.2, 2.0) + random.Vector(0.1);
    frame.row[3] = random.Vector(1000.0);
    return frame;
}

void RandomState(TestRandom& random, CarRig& rig) {
    rig.chassisBody = RandomBody(random);
    for (std::int32_t u = 0; u < rig.unitCount; ++u) {
        rig.wheelBodies[u] = RandomBody(random);
        rig.bufferPosition[u] = random.Between(-10.0, 10.0);
    }
    rig.steerValue = random.Between(-1.0, 1.0);
    rig.steerSpare = random.Between(-1.0, 1.0);
}

std::unique_ptr<CarRig> RandomCar(TestRandom& random, int units) {
    auto rig = std::make_unique<CarRig>();
    rig->unitCount = units;
    rig->hitchCount = 3;
    rig->sphereCount = 2;
    rig->chassisParams.Mass = random.Between(100.0, 2000.0);
    for (int u = 0; u < units; ++u) {
        SuspensionUnit& unit = rig->units[u];
        unit.Radius = random.Between(20.0, 50.0);
        unit.Width = random.Between(5.0, 15.0);
        unit.frame = RandomFrame(random);
        unit.wheelHandle = std::uint32_t(random.Int(1, 1'000'000));
    }
    for (std::int32_t i = 0; i < rig->hitchCount; ++i) rig->hitches[i].frame = RandomFrame(random);
    for (std::int32_t i = 0; i < rig->sphereCount; ++i) rig->spheres[i].frame = RandomFrame(random);
    RandomState(random, *rig);
    return rig;
}

std::unique_ptr<CarRig> RandomRun(TestRandom& random, int frames, TimeValue firstTick, TimeValue step) {
    auto rig = RandomCar(random);
    rig->InitMotion();
    for (int f = 1; f < frames; ++f) {
        RandomState(random, *rig);
        rig->Store(firstTick + (f - 1) * step);
    }
    return rig;
}

}  // namespace tavrik::test
