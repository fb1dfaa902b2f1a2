#include "host/sdk/matrix3.h"

// Single precision throughout, sums from left to right: the records of the same name that plug-ins calculate with give the same
// bits.

void Matrix3::RotateY(float angle) {
    const float c = std::cos(angle), s = std::sin(angle);
    for (Point3& row : rows_) row = Point3(c * row.x + s * row.z, row.y, c * row.z - s * row.x);
    flags_ &= ~(POS_IDENT | ROT_IDENT);
}

void Matrix3::Invert() {
    const Point3 a = rows_[0], b = rows_[1], c = rows_[2], t = rows_[3];
    //   inverse = cofactors / det,   translation' = -(t * inverse)
    const float det = a.x * (b.y * c.z - b.z * c.y) + b.x * (c.y * a.z - c.z * a.y) + c.x * (a.y * b.z - a.z * b.y);
    Matrix3 result(FALSE);
    result.rows_[0] = Point3((b.y * c.z - b.z * c.y) / det, (c.y * a.z - c.z * a.y) / det, (a.y * b.z - a.z * b.y) / det);
    result.rows_[1] = Point3((b.z * c.x - b.x * c.z) / det, (c.z * a.x - c.x * a.z) / det, (a.z * b.x - a.x * b.z) / det);
    result.rows_[2] = Point3((b.x * c.y - b.y * c.x) / det, (c.x * a.y - c.y * a.x) / det, (a.x * b.y - a.y * b.x) / det);
    result.rows_[3] = -(result.rows_[0] * t.x + result.rows_[1] * t.y + result.rows_[2] * t.z);
    bool finite = std::isfinite(det);  // dividing by anything else would crush every axis to zero
    for (const Point3& row : result.rows_) {
        finite = finite && std::isfinite(row.x) && std::isfinite(row.y) && std::isfinite(row.z);
    }
    if (!finite) {
        IdentityMatrix();  // nothing undoes this frame, and nobody is to carry on with NaNs
        return;
    }
    result.flags_ = flags_;
    *this = result;
}

Matrix3 Matrix3::operator*(const Matrix3& b) const {
    Matrix3 result(FALSE);
    for (int i = 0; i < 3; ++i) result.rows_[i] = b.VectorTransform(rows_[i]);
    result.rows_[3] = b.PointTransform(rows_[3]);
    result.flags_ = flags_ & b.flags_;
    return result;
}
