#pragma once

#include <cstdint>

#include "solver/single_maths.h"

namespace tavrik {

/// One triangle of the ground, ready to be asked whether a point of its plane lies in it. One cache line.
struct alignas(64) SurfaceTriangle {
    Point3 normal;            // unit, (p1 - p0) x (p2 - p0); exactly zero for a triangle without area, which nothing ever hits
    float planeD;             // dot(centroid, normal): a point p lies in the plane when dot(p, normal) is this
    float m[4];               // takes (u, v) to the weights of p1 and p2
    float baseU, baseV;       // p0 in the two axes below
    std::uint32_t axisU;      // the two coordinate axes that are kept when the triangle is projected to 2-D,
    std::uint32_t axisV;      // chosen so that its picture is largest
    std::uint32_t corner[3];  // indices into the vertices of the tree
    std::uint32_t spare;      // zero
};

/// Fills all of `triangle` but its corner indices from the three points.
/// @return false for a triangle without area: its normal and all else that is filled are then zero
bool SetUpTriangle(const Point3& p0, const Point3& p1, const Point3& p2, SurfaceTriangle& triangle);

/// The centre of mass of a triangle's corners.
inline Point3 Centroid(const Point3& p0, const Point3& p1, const Point3& p2) { return (p0 + p1 + p2) * (1.0f / 3.0f); }

/// Whether a point of the triangle's plane, given by its coordinates on `axisU` and `axisV`, lies in the triangle. The edges
/// belong to it.
inline bool HoldsPointOfPlane(const SurfaceTriangle& triangle, float u, float v) {
    //   q = p0 + a (p1 - p0) + b (p2 - p0)     a >= 0, b >= 0, a + b <= 1
    const float* m = triangle.m;
    const float du = u - triangle.baseU, dv = v - triangle.baseV;
    const float a = m[3] * du - m[2] * dv;
    const float b = m[0] * dv - m[1] * du;
    return !(0.0f > a || 0.0f > b || a + b > 1.0f);
}

}  // namespace tavrik
