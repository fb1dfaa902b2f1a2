#pragma once
/// Single-precision frames: rows 0..2 are the images of the axes, row 3 the translation; vectors are rows.

#include <cmath>
#include <limits>

#include "point3.h"

constexpr DWORD POS_IDENT = 1, ROT_IDENT = 2, SCL_IDENT = 4, MAT_IDENT = 7;

class Matrix3 {
 public:
    /// Holds nothing that may be read. It is filled with NaNs, so that whoever reads it all the same sees it.
    Matrix3() : flags_(0) {
        for (Point3& row : rows_) row = Point3(kUnset, kUnset, kUnset);
    }
    /// @param identity  TRUE for the identity, FALSE for zeroes
    explicit Matrix3(BOOL identity) : Matrix3() {
        if (identity != FALSE) {
            IdentityMatrix();
        } else {
            Zero();
        }
    }

    Point3 GetRow(int i) const { return rows_[i]; }
    /// A written row makes no promise of being the identity's any more.
    void SetRow(int i, const Point3& row) {
        rows_[i] = row;
        flags_ &= i == 3 ? ~POS_IDENT : ~(ROT_IDENT | SCL_IDENT);
    }
    Point3 GetTrans() const { return rows_[3]; }
    void SetTrans(const Point3& p) { SetRow(3, p); }
    void IdentityMatrix() {
        rows_[0] = Point3(1, 0, 0);
        rows_[1] = Point3(0, 1, 0);
        rows_[2] = Point3(0, 0, 1);
        rows_[3] = Point3(0, 0, 0);
        flags_ = MAT_IDENT;
    }
    void Zero() {
        for (Point3& row : rows_) row = Point3(0, 0, 0);
        flags_ = 0;
    }
    void NoTrans() {
        rows_[3] = Point3(0, 0, 0);
        flags_ |= POS_IDENT;
    }
    DWORD GetIdentFlags() const { return flags_; }
    void SetIdentFlags(DWORD flags) { flags_ = flags; }
    void ClearIdentFlag(DWORD flag) { flags_ &= ~flag; }

    /// Turns about Y by `angle` radians, after what the frame does already.
    void RotateY(float angle);
    void Invert();
    /// `b` after this one.
    Matrix3 operator*(const Matrix3& b) const;
    Matrix3& operator*=(const Matrix3& b) { return *this = *this * b; }
    Point3 PointTransform(const Point3& p) const { return VectorTransform(p) + rows_[3]; }
    Point3 VectorTransform(const Point3& v) const {
        return {v.x * rows_[0].x + v.y * rows_[1].x + v.z * rows_[2].x, v.x * rows_[0].y + v.y * rows_[1].y + v.z * rows_[2].y,
                v.x * rows_[0].z + v.y * rows_[1].z + v.z * rows_[2].z};
    }
    bool operator==(const Matrix3& b) const {
        return rows_[0] == b.rows_[0] && rows_[1] == b.rows_[1] && rows_[2] == b.rows_[2] && rows_[3] == b.rows_[3];
    }

 private:
    static constexpr float kUnset = std::numeric_limits<float>::quiet_NaN();
    Point3 rows_[4];
    DWORD flags_;  // promises about the rows; nothing here relies on them
};

inline Point3 operator*(const Point3& p, const Matrix3& m) { return m.PointTransform(p); }
inline Point3 operator*(const Matrix3& m, const Point3& p) { return m.PointTransform(p); }
inline Matrix3 Inverse(const Matrix3& m) {
    Matrix3 result = m;
    result.Invert();
    return result;
}
