#pragma once
/// Single-precision points, pixel points and colours.

#include <cmath>

#include "maxtypes.h"

class Point3 {
 public:
    float x, y, z;
    Point3() = default;  // uninitialised
    Point3(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}
    float& operator[](int i) { return i == 0 ? x : i == 1 ? y : z; }
    float operator[](int i) const { return i == 0 ? x : i == 1 ? y : z; }
    Point3 operator-() const { return {-x, -y, -z}; }
    Point3 operator+(const Point3& b) const { return {x + b.x, y + b.y, z + b.z}; }
    Point3 operator-(const Point3& b) const { return {x - b.x, y - b.y, z - b.z}; }
    Point3 operator*(float s) const { return {x * s, y * s, z * s}; }
    Point3 operator/(float s) const { return {x / s, y / s, z / s}; }
    Point3& operator+=(const Point3& b) { return *this = *this + b; }
    Point3& operator-=(const Point3& b) { return *this = *this - b; }
    bool operator==(const Point3& b) const { return x == b.x && y == b.y && z == b.z; }
};

inline float DotProd(const Point3& a, const Point3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Point3 CrossProd(const Point3& a, const Point3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline float LengthSquared(const Point3& a) { return DotProd(a, a); }
inline float Length(const Point3& a) { return std::sqrt(DotProd(a, a)); }
inline Point3 Normalize(const Point3& a) {
    const float length = Length(a);
    return length > 0.0f ? a / length : a;
}

class Point2 {
 public:
    float x, y;
    Point2() = default;  // uninitialised
    Point2(float x_, float y_) : x(x_), y(y_) {}
};

class IPoint2 {
 public:
    int x, y;
    IPoint2() = default;  // uninitialised
    IPoint2(int x_, int y_) : x(x_), y(y_) {}
    bool operator==(const IPoint2& b) const { return x == b.x && y == b.y; }
};

// The host has classes of these names too. They stand here so that a file that mixes them up with others doesn't compile.
class DPoint3 {
 public:
    double x, y, z;
};
class DMatrix3 {
 public:
    DPoint3 rows[4];
};
