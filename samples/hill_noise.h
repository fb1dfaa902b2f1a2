#pragma once
/// Rolling hills without creases, the same bits everywhere.

#include <cstdint>

namespace tavrik {

/// 0 at 0, 1 at 1, with slope and curvature 0 at both ends: hills without creases.
inline double Fade(double t) { return t * t * t * (t * (t * 6.0 - 15.0) + 10.0); }

/// Rolling noise between -1 and 1 with hills about `metres` apart.
double HillNoise(double x, double y, double metres, std::uint64_t seed);

}  // namespace tavrik
