#include "rig/car_rig.h"

namespace tavrik {

void CarRig::InitMotion() { motion.Init(unitCount, chassisBody, wheelBodies); }

void CarRig::ResetMotion() { motion.Release(); }

bool CarRig::IsAnimated([[maybe_unused]] std::int32_t objectType, std::int32_t index) const {
    return motion.valid && index < kMaxComponents;
}

Matrix3 CarRig::GetTM(ComponentType objectType, std::int32_t index, TimeValue tick) const {
    return motion.Sample(tick, *this, objectType, index);
}
Point3 CarRig::GetVelocity(TimeValue tick) const { return motion.VelocityAt(tick, *this); }
float CarRig::GetSteer(TimeValue tick) const { return motion.SteerAt(tick); }

std::int32_t CarRig::Store(TimeValue tick) {
    return motion.Store(tick, chassisBody, wheelBodies, bufferPosition, {steerValue, steerSpare});
}

std::int32_t CarRig::Rewind(TimeValue tick) {
    SteerSample steerPair;
    const std::int32_t frames = motion.Rewind(tick, chassisBody, wheelBodies, bufferPosition, steerPair);
    steerValue = steerPair.steerValue;
    steerSpare = steerPair.steerSpare;
    return frames;
}

void CarRig::ClearHitchLinks() {
    for (std::int32_t i = 0; i < hitchCount; ++i) {
        hitches[i].partner = nullptr;
        hitches[i].ownerRig = nullptr;
    }
}

}  // namespace tavrik
