#include "drive/target_driver.h"

#include <cmath>
#include <cstdint>

#include "drive/rollout.h"

namespace tavrik {
namespace {

constexpr int kMostSteps = 50;  // candidates to each side of the middle
constexpr std::size_t kCandidates = 2 * kMostSteps + 1;
constexpr float kCandidateStep = 0.02f;
constexpr float kTicksToSecond = 4800.0f;
constexpr float kCorrection = 0.1f;  // of the lock, at most, per call
constexpr double kWorst = 1e30;      // a candidate has to cost less

/// What both drivers know of the car, at the host's present time. Everything else of it is the solver's.
struct CarState {
    Matrix3 frame;
    float L, W;   // of the chassis
    float steer;  // radians
    float speed;  // forwards, unit/s
    float A;      // lock, radians
};

bool ReadCar(DriveSession& session, TimeValue t, CarState& car) {
    const CarRig* const rig = session.rig;
    if (rig == nullptr || !rig->motion.valid) return false;
    car.frame = rig->GetTM(ComponentType::Chassis, 0, t);
    car.steer = rig->GetSteer(t);
    car.L = float(rig->chassisParams.Length);
    car.W = float(rig->chassisParams.Width);
    car.speed = Dot(car.frame.row[1], rig->GetVelocity(t));
    car.A = LargestSteering(session.input);
    return true;
}

/// The tick of a sample of the target. Ticks wrap, as the host's do.
TimeValue SampleTick(TimeValue t, int i, std::int32_t forecast) {
    const std::int32_t ahead = std::int32_t(std::uint32_t(i) * std::uint32_t(forecast)) / kRolloutSteps;
    return TimeValue(std::uint32_t(t) + std::uint32_t(ahead));
}

/// Candidates crowd around straight ahead: there a road needs the finest choice.
float Crowded(int k) {
    const float c = float(k) * kCandidateStep;
    return c * c * c;
}

/// Steering is tried within K to both sides: the faster the car, the narrower.
void TrySteering(const CarState& car, float D, float K, Candidate (&candidates)[kCandidates]) {
    for (int k = -kMostSteps; k <= kMostSteps; ++k) candidates[k + kMostSteps] = {car.steer + K * Crowded(k), D};
}

/// The first of the cheapest, counted from the middle; 0 where none compares, so that the present value stays.
template <typename Cost>
int Best(const Cost (&costs)[kCandidates]) {
    Cost best = Cost(kWorst);
    int kBest = 0;
    for (int k = -kMostSteps; k <= kMostSteps; ++k) {
        const Cost cost = costs[k + kMostSteps];
        if (!(best > cost)) continue;
        best = cost;
        kBest = k;
    }
    return kBest;
}

float WithinLock(float angle, float A) {
    if (angle < -A) angle = -A;
    if (angle > A) angle = A;
    return angle;
}

}  // namespace

void DriveToTarget(DriveSession& session, const TargetPositions* target) {
    const TimeValue t = session.core().GetTime();
    CarState car;
    if (target == nullptr || !ReadCar(session, t, car)) return;
    Point3 targets[kTargetSamples];
    for (int i = 0; i < kTargetSamples; ++i) targets[i] = target->PositionAt(SampleTick(t, i, session.forecast));

    const float D = car.speed * float(session.forecast) / kTicksToSecond;
    // A car at rest divides by zero here: then no candidate's cost is a number, and the steering stays as it is while the
    // search for speed gets the car moving.
    const float K = car.W * car.L / (D * D);
    Candidate candidates[kCandidates];
    float costs[kCandidates];
    TrySteering(car, D, K, candidates);
    RolloutsToTarget(targets, car.frame, candidates, car.L, costs);
    // Scored with the gain K, applied with a tenth of the lock: the search gives the direction and a measure of how much.
    session.input.steerTarget = WithinLock(car.steer + Crowded(Best(costs)) * car.A * kCorrection, car.A);

    // The speed is sought with the steering as it stands, half a chassis length about the way of the present speed.
    for (int k = -kMostSteps; k <= kMostSteps; ++k) {
        candidates[k + kMostSteps] = {car.steer, D + car.L * (float(k) * kCandidateStep) * 0.5f};
    }
    RolloutsToTarget(targets, car.frame, candidates, car.L, costs);
    session.input.throttle = float(Best(costs)) * kCandidateStep * 5.0f;
}

void DriveAlongPath(DriveSession& session) {
    CarState car;
    if (!ReadCar(session, session.core().GetTime(), car)) return;
    float D = std::fabs(car.speed) * float(session.forecast) / kTicksToSecond;
    // Never looks less than two lengths ahead, which a standing car needs too.
    if (2.0f * car.L > D) D = 2.0f * car.L;
    const float K = car.W * car.L / (D * D);
    Candidate candidates[kCandidates];
    double costs[kCandidates];
    TrySteering(car, D, K, candidates);
    RolloutsAlongPath(session.path, car.frame, candidates, car.L, costs);
    session.input.steerTarget = WithinLock(car.steer + Crowded(Best(costs)) * kCorrection * car.A, car.A);
}

}  // namespace tavrik
