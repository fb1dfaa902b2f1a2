#include "drive/damper_model.h"

#include <algorithm>
#include <cmath>

namespace tavrik {
namespace {

constexpr int kSubsteps = 100;
constexpr int kSubstepsToARecord = 10;

void Record(DamperModel& model) {
    std::copy_backward(model.history.begin(), model.history.end() - 1, model.history.end());
    model.history[0] = model.bodyHeight;
}

}  // namespace

double RoadHeight(std::span<const RoadBump> bumps, double x) {
    double sum = 0.0;
    for (const RoadBump& bump : bumps) {
        //   height = (1 - v^2)^2 * amplitude     v runs from 0 at the top to 1 at the foot
        const double d = std::abs(bump.position - x);
        if (d > 0.05) continue;
        const double v = d * 20.0;
        sum += (1.0 - 2.0 * (v * v) + v * v * v * v) * bump.amplitude;
    }
    return sum;
}

LiveBumps::LiveBumps(std::span<const RoadBump> bumps) {
    for (const RoadBump& bump : bumps)
        if (bump.position < kFreeBump) entries[count++] = bump;
}

void MoveRoad(std::span<RoadBump> bumps, double dt) {
    for (RoadBump& bump : bumps)
        if (bump.position < kFreeBump) bump.position += dt;
}

bool AddBump(std::span<RoadBump> bumps, double position, double amplitude) {
    const auto entry = std::ranges::find_if(bumps, [](const RoadBump& bump) { return bump.position >= kFreeBump; });
    if (entry == bumps.end()) return false;
    *entry = {position, amplitude};
    return true;
}

void SpawnBumps(std::span<RoadBump> bumps, const DamperSettings& settings, double dt, RandomStream& random) {
    // A bump comes into being somewhere in the stretch of road that this pass brings in.
    if (double(settings.knollRate) * dt > random.Rand01()) AddBump(bumps, -2.0 - dt * random.Rand01(), 1.0);
    if (double(settings.holeRate) * dt > random.Rand01()) AddBump(bumps, -2.0 - dt * random.Rand01(), -1.0);
}

void Simulate(DamperModel& model, const DamperSettings& settings, double dt) {
    const LiveBumps live(model.bumps);
    const double s = dt * 0.01;
    const double shift = double(settings.damperShift / settings.sizeScale);
    const double weight = double(settings.gravity / settings.sizeScale);
    const double dampingFactor = double(std::sqrt(settings.rigidityFactor));
    const auto factor = double(settings.rigidityFactor);
    for (int i = 0; i < kSubsteps; ++i) {
        // The road moves towards positive x: what will be under the wheel is still at negative x.
        const double road = live.Height(-s * double(i));
        // The damper is in series with the buffer: the oil gives way at the speed that the buffer's force makes it.
        const double buffer = (road - (model.bodyHeight + model.damperTravel)) * double(settings.bufferRigidity);
        model.damperTravel += buffer / double(settings.oilDamping) * s * dampingFactor;
        // The spring works beside both, and the mass rides on them: the velocity goes first, then the height by the new
        // velocity.
        const double spring = (road + shift - model.bodyHeight) * double(settings.springRigidity);
        model.bodyVelocity += ((buffer + spring) * factor / double(settings.mass) - weight) * s;
        model.bodyHeight += model.bodyVelocity * s;
        if (i % kSubstepsToARecord == 0) Record(model);
    }
}

void StandStep(DamperModel& model, const DamperSettings& settings, RandomStream& random) {
    MoveRoad(model.bumps, kStandStep);
    SpawnBumps(model.bumps, settings, kStandStep, random);
    Simulate(model, settings, kStandStep);
}

}  // namespace tavrik
