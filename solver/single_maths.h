#pragma once
/// Single-precision vectors, frames and boxes: the precision of the scene, of the ground mesh and of its queries.
/// Vectors are rows and multiply from the left: pWorld = pLocal * frame. World Z is up.

#include <cmath>
#include <cstddef>

namespace tavrik {

/// A point or a vector, in scene units unless told otherwise.
struct Point3 {
    float x, y, z;

    float& operator[](std::size_t axis) { return axis == 0 ? x : axis == 1 ? y : z; }
    float operator[](std::size_t axis) const { return axis == 0 ? x : axis == 1 ? y : z; }
};

inline Point3 operator+(const Point3& a, const Point3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Point3 operator-(const Point3& a, const Point3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Point3 operator-(const Point3& a) { return {-a.x, -a.y, -a.z}; }
inline Point3 operator*(const Point3& a, float s) { return {a.x * s, a.y * s, a.z * s}; }
inline Point3 operator/(const Point3& a, float s) { return {a.x / s, a.y / s, a.z / s}; }

inline float Dot(const Point3& a, const Point3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Point3 Cross(const Point3& a, const Point3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline float LengthSquared(const Point3& a) { return Dot(a, a); }
inline float Length(const Point3& a) { return std::sqrt(Dot(a, a)); }

/// `a` at length 1. The zero vector stays zero, so that no direction ever becomes a NaN.
inline Point3 Normalize(const Point3& a) {
    const float length = Length(a);
    return length > 0.0f ? a / length : a;
}

/// A frame: rows 0..2 are the images of the X, Y and Z axes, row 3 the translation.
struct Matrix3 {
    Point3 row[4];
};

inline Matrix3 IdentityMatrix3() { return {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}}}; }

/// The image of vector `v` under rows 0..2 of `m`; row 3 plays no part.
inline Point3 TransformVector(const Point3& v, const Matrix3& m) { return m.row[0] * v.x + m.row[1] * v.y + m.row[2] * v.z; }

/// The image of point `p` under `m`.
inline Point3 TransformPoint(const Point3& p, const Matrix3& m) { return TransformVector(p, m) + m.row[3]; }

/// The frame that applies `a` first, then `b`.
inline Matrix3 operator*(const Matrix3& a, const Matrix3& b) {
    return {{TransformVector(a.row[0], b), TransformVector(a.row[1], b), TransformVector(a.row[2], b),
             TransformPoint(a.row[3], b)}};
}

/// Looks for the frame that undoes `m`: cofactors over the determinant.
///
/// @param inverse  of `m` on true; on false not changed
/// @return false if `m` has no inverse that single precision could hold: its axes lie in a plane, or it is not made of numbers
inline bool FindInverse(const Matrix3& m, Matrix3& inverse) {
    const Point3 a = m.row[0], b = m.row[1], c = m.row[2], t = m.row[3];
    const float det = a.x * (b.y * c.z - b.z * c.y) + b.x * (c.y * a.z - c.z * a.y) + c.x * (a.y * b.z - a.z * b.y);
    Matrix3 result;
    result.row[0] = {(b.y * c.z - b.z * c.y) / det, (c.y * a.z - c.z * a.y) / det, (a.y * b.z - a.z * b.y) / det};
    result.row[1] = {(b.z * c.x - b.x * c.z) / det, (c.z * a.x - c.x * a.z) / det, (a.z * b.x - a.x * b.z) / det};
    result.row[2] = {(b.x * c.y - b.y * c.x) / det, (c.x * a.y - c.y * a.x) / det, (a.x * b.y - a.y * b.x) / det};
    result.row[3] = -(result.row[0] * t.x + result.row[1] * t.y + result.row[2] * t.z);
    if (!std::isfinite(det)) return false;  // dividing by it would crush everything to zero
    for (const Point3& row : result.row) {
        if (!std::isfinite(row.x) || !std::isfinite(row.y) || !std::isfinite(row.z)) return false;
    }
    inverse = result;
    return true;
}

/// The frame that undoes `m`, or the identity where there is none: whoever has to tell the two apart asks `FindInverse`, and
/// for all others nothing that they compute from it becomes a NaN.
inline Matrix3 Inverse(const Matrix3& m) {
    Matrix3 inverse = IdentityMatrix3();
    FindInverse(m, inverse);
    return inverse;
}

/// An axis-aligned box. Points on its faces belong to it.
struct Box3 {
    Point3 pmin, pmax;

    bool Contains(const Point3& p) const {
        return p.x >= pmin.x && p.x <= pmax.x && p.y >= pmin.y && p.y <= pmax.y && p.z >= pmin.z && p.z <= pmax.z;
    }
    bool Contains(const Box3& b) const { return Contains(b.pmin) && Contains(b.pmax); }
    /// Boxes that only touch intersect.
    bool Intersects(const Box3& b) const {
        return b.pmin.x <= pmax.x && b.pmax.x >= pmin.x && b.pmin.y <= pmax.y && b.pmax.y >= pmin.y && b.pmin.z <= pmax.z &&
               b.pmax.z >= pmin.z;
    }
    Point3 Center() const { return (pmin + pmax) * 0.5f; }
    Point3 Width() const { return pmax - pmin; }
    /// Corner `i`: bit 0 of `i` chooses in X, bit 1 in Y, bit 2 in Z, a set bit taking `pmax`. Higher bits are not looked at.
    Point3 Corner(unsigned i) const {
        return {(i & 1) != 0 ? pmax.x : pmin.x, (i & 2) != 0 ? pmax.y : pmin.y, (i & 4) != 0 ? pmax.z : pmin.z};
    }
    /// Grows the box just far enough to hold `p`.
    void Include(const Point3& p) {
        pmin = {p.x < pmin.x ? p.x : pmin.x, p.y < pmin.y ? p.y : pmin.y, p.z < pmin.z ? p.z : pmin.z};
        pmax = {p.x > pmax.x ? p.x : pmax.x, p.y > pmax.y ? p.y : pmax.y, p.z > pmax.z ? p.z : pmax.z};
    }
};

/// A box that holds nothing: including one point makes it that point.
inline Box3 EmptyBox3() { return {{1e30f, 1e30f, 1e30f}, {-1e30f, -1e30f, -1e30f}}; }

/// The cube of side length `side` about `centre`.
inline Box3 MakeCube(const Point3& centre, float side) {
    const Point3 half = Point3{side, side, side} * 0.5f;
    return {centre - half, centre + half};
}

}  // namespace tavrik
