#pragma once

#include <cstdint>

namespace tavrik {

/// How strongly tracks show.
struct TrackParams {
    float generalIntensity = 0.0f;  // of every touch of a tyre
    float brakeIntensity = 1.0f;    // of a tyre that slides
    std::int32_t samples = 20;      // places at which a tyre is tried, per wheel radius of way; 1 at least
    float baseBump = 1.0f;          // how deep the tyre itself presses in
    float patternBump = 2.0f;       // and its tread
};

}  // namespace tavrik
