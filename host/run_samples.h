#pragma once
/// A recorded run as people read it: angles, speeds and travels instead of frames and momenta.

#include <string>
#include <vector>

#include "rig/car_rig.h"

namespace tavrik {

struct WheelReading {
    double travel;  // of the suspension, scene units; more is further in, between the unit's stops
    double spin;    // rad/s about the axle relative to the body, rolling forward is positive
};

struct RunReading {
    TimeValue tick;
    double seconds;               // since the first driven sample
    DPoint3 position;             // of the chassis, scene units
    double heading, pitch, roll;  // degrees: clockwise from +Y seen from above; nose up; right side down
    double speed;                 // unit/s along the car, negative backwards
    double steering;              // degrees, right positive
};

/// All driven samples of one car. The recording's first frame, the pose of the assembly, is none of them.
struct RunSamples {
    std::vector<std::string> wheelNames;  // unique; letters, digits, `_`
    std::vector<RunReading> readings;
    std::vector<WheelReading> wheels;  // [readings][wheels]

    const WheelReading& Wheel(std::size_t reading, std::size_t wheel) const {
        return wheels[reading * wheelNames.size() + wheel];
    }
};

/// Reads a run off a locked car. Double precision throughout, as the recording is.
RunSamples TakeRunSamples(const CarRig& rig);

/// Metres of road behind the car at the end: the length of the line through all positions.
/// @param kilometresPerUnit  of the scene's unit
double DistanceInMetres(const RunSamples& run, double kilometresPerUnit);

/// The highest speed forwards or backwards, km/h.
double TopSpeed(const RunSamples& run, double kilometresPerUnit);

/// "front_left" and so on where the car has at most one wheel in each quarter, else "1", "2", ...
std::vector<std::string> WheelNames(const CarRig& rig);

}  // namespace tavrik
