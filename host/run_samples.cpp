#include "host/run_samples.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <set>

#include "solver/wheel.h"

namespace tavrik {
namespace {

constexpr double kDegrees = 180.0 / std::numbers::pi;

RunReading ReadChassis(const CarRig& rig, std::size_t frame) {
    const RecordedMotion& motion = rig.motion;
    const MotionSample& chassis = motion.chassis[frame];
    const DPoint3 right = Normalize(chassis.frame.row[0]);
    const DPoint3 forward = Normalize(chassis.frame.row[1]);
    const DPoint3 up = Normalize(chassis.frame.row[2]);
    RunReading reading{};
    reading.tick = motion.times[frame];
    reading.seconds = double(TicksBetween(motion.times[1], reading.tick)) / kTicksPerSecond;
    reading.position = chassis.frame.row[3];
    reading.heading = std::atan2(forward.x, forward.y) * kDegrees;
    reading.pitch = std::asin(std::clamp(forward.z, -1.0, 1.0)) * kDegrees;
    reading.roll = std::atan2(-right.z, up.z) * kDegrees;
    reading.speed = Dot(chassis.momentum, forward) / rig.chassisParams.Mass;
    reading.steering = motion.steer[frame].steerValue * kDegrees;
    return reading;
}

/// How far the hub stands along the unit's travel axis from where the unit is fixed to the body.
double Travel(const SuspensionUnit& unit, const DMatrix3& chassis, const DMatrix3& wheel) {
    //   arm = unit - hub,  travel = arm . x     x is row 0 of the unit, which points down in a standing car
    const DMatrix3 unitFrame = Compose(unit.frame, chassis);
    const DPoint3 hub = TransformPoint({0.0, 0.0, -unit.Wheel_Shift}, wheel);
    return Dot(unitFrame.row[3] - hub, unitFrame.row[0]);
}

double Spin(const CarRig& rig, const SuspensionUnit& unit, std::size_t frame, const MotionSample& wheel) {
    RigidBody body;
    CopyRecordedState(body, wheel);
    UpdateVelocities(body, WheelInertia(unit, body));
    RigidBody chassis;
    CopyRecordedState(chassis, rig.motion.chassis[frame]);
    const DPoint3 halfExtents = {rig.chassisParams.Width, rig.chassisParams.Length, rig.chassisParams.Height};
    UpdateVelocities(chassis, CornerInertia(halfExtents, rig.chassisParams.Mass, chassis.frame));
    // A wheel that rolls forward turns about the car's left, wherever its own axle points.
    const DPoint3 axle = Normalize(wheel.frame.row[2]);
    const double forward = Dot(axle, chassis.frame.row[0]) > 0.0 ? -1.0 : 1.0;
    return Dot(body.angularVelocity - chassis.angularVelocity, axle) * forward;
}

}  // namespace

std::vector<std::string> WheelNames(const CarRig& rig) {
    std::vector<std::string> names;
    std::set<std::string> seen;
    for (int i = 0; i < rig.unitCount; ++i) {
        const DPoint3& at = rig.units[i].frame.row[3];
        names.push_back(std::string(at.y > 0.0 ? "front_" : "rear_") + (at.x < 0.0 ? "left" : "right"));
        seen.insert(names.back());
    }
    if (seen.size() == names.size()) return names;
    for (std::size_t i = 0; i < names.size(); ++i) names[i] = std::to_string(i + 1);
    return names;
}

RunSamples TakeRunSamples(const CarRig& rig) {
    assert(rig.motion.valid);
    RunSamples run;
    run.wheelNames = WheelNames(rig);
    const std::size_t frames = std::size_t(rig.motion.frames);
    run.readings.reserve(frames);
    run.wheels.reserve(frames * run.wheelNames.size());
    for (std::size_t frame = 1; frame < frames; ++frame) {
        run.readings.push_back(ReadChassis(rig, frame));
        for (std::size_t i = 0; i < run.wheelNames.size(); ++i) {
            const MotionSample& wheel = rig.motion.wheels[i][frame];
            run.wheels.push_back(
                {Travel(rig.units[i], rig.motion.chassis[frame].frame, wheel.frame), Spin(rig, rig.units[i], frame, wheel)});
        }
    }
    return run;
}

double DistanceInMetres(const RunSamples& run, double kilometresPerUnit) {
    double units = 0.0;
    for (std::size_t i = 1; i < run.readings.size(); ++i) {
        units += Length(run.readings[i].position - run.readings[i - 1].position);
    }
    return units * kilometresPerUnit * 1000.0;
}

double TopSpeed(const RunSamples& run, double kilometresPerUnit) {
    double top = 0.0;
    for (const RunReading& reading : run.readings) top = std::max(top, std::abs(reading.speed));
    return top * kilometresPerUnit * 3600.0;
}

}  // namespace tavrik
