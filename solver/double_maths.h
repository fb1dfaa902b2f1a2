#pragma once
/// Double-precision vectors and frames of the solver, and the narrowing and widening between them and the scene's.
/// Vectors are rows and multiply from the left: pWorld = pBody * frame.
///
/// Both types are trivial on purpose: a `CarWorld` is more than 100 MB of them, and only memory that nobody has to construct
/// stays untouched. Write `DPoint3 p{};` where zero is meant.

#include <cmath>

#include "solver/single_maths.h"

namespace tavrik {

struct DPoint3 {
    double x, y, z;
};

inline DPoint3 operator+(const DPoint3& a, const DPoint3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline DPoint3 operator-(const DPoint3& a, const DPoint3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline DPoint3 operator-(const DPoint3& a) { return {-a.x, -a.y, -a.z}; }
inline DPoint3 operator*(const DPoint3& a, double s) { return {a.x * s, a.y * s, a.z * s}; }
inline DPoint3 operator/(const DPoint3& a, double s) { return {a.x / s, a.y / s, a.z / s}; }
inline DPoint3& operator+=(DPoint3& a, const DPoint3& b) { return a = a + b; }
inline DPoint3& operator-=(DPoint3& a, const DPoint3& b) { return a = a - b; }

inline double Dot(const DPoint3& a, const DPoint3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline DPoint3 Cross(const DPoint3& a, const DPoint3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double Length(const DPoint3& a) { return std::sqrt(Dot(a, a)); }

/// `a` at length 1. The zero vector stays zero, so that a contact at rest has no direction of sliding, not a NaN.
inline DPoint3 Normalize(const DPoint3& a) {
    const double length = Length(a);
    return length > 0.0 ? a / length : a;
}

inline Point3 ToPoint3(const DPoint3& d) { return {float(d.x), float(d.y), float(d.z)}; }
inline DPoint3 FromPoint3(const Point3& p) { return {double(p.x), double(p.y), double(p.z)}; }

/// A frame: rows 0..2 are the images of the X, Y and Z axes, row 3 the translation. The frame of a body holds its local axes
/// and its position in world coordinates.
struct DMatrix3 {
    DPoint3 row[4];
};

constexpr DMatrix3 IdentityDMatrix3() { return {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}}}; }

inline DMatrix3 FromMatrix3(const Matrix3& m) {
    return {{FromPoint3(m.row[0]), FromPoint3(m.row[1]), FromPoint3(m.row[2]), FromPoint3(m.row[3])}};
}
inline Matrix3 ToMatrix3(const DMatrix3& d) {
    return {{ToPoint3(d.row[0]), ToPoint3(d.row[1]), ToPoint3(d.row[2]), ToPoint3(d.row[3])}};
}

/// The image of `p` under `m`. For a matrix whose row 3 is zero this also transforms vectors.
inline DPoint3 TransformPoint(const DPoint3& p, const DMatrix3& m) {
    return m.row[0] * p.x + m.row[1] * p.y + m.row[2] * p.z + m.row[3];
}

/// The frame that applies `a` first, then `b`.
inline DMatrix3 Compose(const DMatrix3& a, const DMatrix3& b) {
    DMatrix3 result;
    for (int r = 0; r < 3; ++r) result.row[r] = b.row[0] * a.row[r].x + b.row[1] * a.row[r].y + b.row[2] * a.row[r].z;
    result.row[3] = TransformPoint(a.row[3], b);
    return result;
}

/// `m` with row 3 set to zero: its turn and scale about the origin.
inline DMatrix3 WithoutTranslation(DMatrix3 m) {
    m.row[3] = {0.0, 0.0, 0.0};
    return m;
}

/// Inverts `m` in place, by cofactors over the determinant. A singular matrix gives infinities and NaNs; callers own the
/// guarantee that sizes and masses are above zero.
void Inverse(DMatrix3& m);

/// Turn rows 0..2 of `m` about a fixed world axis by `angle` radians. Row 3 stays.
void RotateX(DMatrix3& m, double angle);
void RotateY(DMatrix3& m, double angle);
void RotateZ(DMatrix3& m, double angle);

}  // namespace tavrik
