#pragma once

#include <cstdint>

#include "rig/scene_node.h"
#include "rig/ticks.h"

namespace tavrik {

/// What a push keeps of its object's parameters, single precision as the scene is.
struct PushValues {
    std::int32_t pushType = 0;  // 0: a timed push; else one that follows an animated percentage
    float force = 0.0f;         // mass * unit/s^2
    TimeValue startTick = 0;    // of a timed push
    float lengthTicks = 0.0f;   // of a timed push
};

/// Takes the parameters of a push object at time 0. Start and length keep what they were unless the push is a timed one.
void UpdatePushCache(PushValues& values, const SceneNode& node);

/// How hard the push presses at `tick`, mass * unit/s^2. A timed push acts from its start to its end, both included.
///
/// @param animMult  of an animated push at `tick`, percent of its force; a timed one doesn't look at it
float PushMagnitude(const PushValues& values, TimeValue tick, float animMult);

}  // namespace tavrik
