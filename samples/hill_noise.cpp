#include "samples/hill_noise.h"

#include <cmath>

namespace tavrik {
namespace {

/// A number in [0, 1) for a point of the lattice, the same on every machine: a mixer of integers (Steele, Lea and Flood, "Fast
/// Splittable Pseudorandom Number Generators", 2014).
double LatticeValue(std::int64_t x, std::int64_t y, std::uint64_t seed) {
    std::uint64_t bits = seed + 0x9e3779b97f4a7c15u * std::uint64_t(x) + 0xc2b2ae3d27d4eb4fu * std::uint64_t(y);
    bits = (bits ^ (bits >> 30)) * 0xbf58476d1ce4e5b9u;
    bits = (bits ^ (bits >> 27)) * 0x94d049bb133111ebu;
    bits ^= bits >> 31;
    return double(bits >> 40) * 0x1p-24;
}

}  // namespace

double HillNoise(double x, double y, double metres, std::uint64_t seed) {
    const double u = x / metres, v = y / metres;
    const double column = std::floor(u), row = std::floor(v);
    const std::int64_t i = std::int64_t(column), j = std::int64_t(row);
    const double s = Fade(u - column), t = Fade(v - row);
    const double south = LatticeValue(i, j, seed) * (1 - s) + LatticeValue(i + 1, j, seed) * s;
    const double north = LatticeValue(i, j + 1, seed) * (1 - s) + LatticeValue(i + 1, j + 1, seed) * s;
    return (south * (1 - t) + north * t) * 2.0 - 1.0;
}

}  // namespace tavrik
