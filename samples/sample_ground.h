#pragma once
/// Grounds made by arithmetic, the same bits everywhere: for the first drive, for tests and for benchmarks.

#include <cstdint>

#include "surface/triangle_mesh.h"

namespace tavrik {

enum class SampleGroundKind {
    Plane,   // level at height 0
    Kerb,    // level, with a step of 12 cm across the way 20 m ahead of the middle
    Hills,   // rolling hills, level around the middle
    Course,  // hills with speed bumps, a washboard, a tabletop and a kerb island on the way
};

struct SampleGround {
    SampleGroundKind kind = SampleGroundKind::Course;
    double sizeMetres = 300.0;  // of each side, above 0
    int triangles = 20'000;     // about as many, at least 2; the pieces of the course come on top
    std::uint64_t seed = 1;     // of the hills
};

/// Makes a square ground about the origin: scene units (centimetres), Z up, faces counter-clockwise seen from above. Drivable
/// from the middle on, towards +Y.
TriangleMesh MakeSampleGround(const SampleGround& wanted);

}  // namespace tavrik
