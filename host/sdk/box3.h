#pragma once

#include "matrix3.h"

/// A box along the axes.
class Box3 {
 public:
    Point3 pmin, pmax;
    Box3() { Init(); }
    Box3(const Point3& a, const Point3& b) : pmin(a), pmax(b) {}
    /// Makes the box empty.
    void Init() {
        pmin = Point3(1e30f, 1e30f, 1e30f);
        pmax = Point3(-1e30f, -1e30f, -1e30f);
    }
    int IsEmpty() const { return pmin.x > pmax.x ? 1 : 0; }
    Point3 Min() const { return pmin; }
    Point3 Max() const { return pmax; }
    Point3 Center() const { return (pmin + pmax) * 0.5f; }
    Point3 Width() const { return pmax - pmin; }
    Box3& operator+=(const Point3& p) {
        pmin = Point3(p.x < pmin.x ? p.x : pmin.x, p.y < pmin.y ? p.y : pmin.y, p.z < pmin.z ? p.z : pmin.z);
        pmax = Point3(p.x > pmax.x ? p.x : pmax.x, p.y > pmax.y ? p.y : pmax.y, p.z > pmax.z ? p.z : pmax.z);
        return *this;
    }
};
