#pragma once

#include "host/sdk/imtl.h"
#include "host/sdk/max.h"

namespace tavrik_host {

/// A point of a surface as this renderer asks maps about it. Its camera's axes are the world's, so that a map which takes a
/// point to the world gets it as it is. The surface's coordinates run along X and Y of its object, a unit to a unit: bumps need
/// no picture to lie there.
class ShadePoint final : public ShadeContext {
 public:
    /// @param normal  across the surface, world, length 1
    ShadePoint(TimeValue tick, INode* node, const Matrix3& place) : tick_(tick), node_(node), place_(place) {
        for (int i = 0; i < 3; ++i) axes_[i] = Normalize(place.GetRow(i));
    }
    void MoveTo(const Point3& point, const Point3& normal) {
        point_ = point;
        normal_ = normal;
    }

    BOOL InMtlEditor() override { return FALSE; }
    LightDesc* Light(int) override { return nullptr; }
    TimeValue CurTime() override { return tick_; }
    INode* Node() override { return node_; }
    int FaceNumber() override { return 0; }
    Point3 Normal() override { return normal_; }
    Point3 GNormal() override { return normal_; }
    Point3 V() override { return -normal_; }
    void SetView(Point3) override {}
    Point3 ReflectVector() override { return normal_; }
    Point3 RefractVector(float) override { return -normal_; }
    Point3 CamPos() override { return {0, 0, 0}; }
    Point3 P() override { return point_; }
    Point3 DP() override { return {0, 0, 0}; }
    Point3 PObj() override { return PointTo(point_, REF_OBJECT); }
    Point3 DPObj() override { return {0, 0, 0}; }
    Box3 ObjectBox() override { return {}; }
    Point3 PObjRelBox() override { return {0, 0, 0}; }
    Point3 DPObjRelBox() override { return {0, 0, 0}; }
    void ScreenUV(Point2& uv, Point2& duv) override { uv = duv = Point2(0.0f, 0.0f); }
    IPoint2 ScreenCoord() override { return {0, 0}; }
    Point3 UVW(int) override { return PObj(); }
    Point3 DUVW(int) override { return {0, 0, 0}; }
    void DPdUVW(Point3 dP[3], int) override {
        for (int i = 0; i < 2; ++i) dP[i] = AlongSurface(axes_[i]);
        dP[2] = axes_[2];
    }
    void GetBGColor(Color&, Color&, BOOL) override {}
    Point3 PointTo(const Point3& p, RefFrame to) override { return to == REF_OBJECT ? p * Inverse(place_) : p; }
    Point3 PointFrom(const Point3& p, RefFrame from) override { return from == REF_OBJECT ? p * place_ : p; }
    Point3 VectorTo(const Point3& p, RefFrame to) override { return to == REF_OBJECT ? Inverse(place_).VectorTransform(p) : p; }
    Point3 VectorFrom(const Point3& p, RefFrame from) override { return from == REF_OBJECT ? place_.VectorTransform(p) : p; }
    Point3 VectorFromNoScale(const Point3& p, RefFrame from) override {
        return from == REF_OBJECT ? axes_[0] * p.x + axes_[1] * p.y + axes_[2] * p.z : p;
    }

 private:
    /// What is left of an axis within the surface.
    Point3 AlongSurface(const Point3& axis) const { return axis - normal_ * DotProd(axis, normal_); }

    TimeValue tick_;
    INode* node_;
    const Matrix3& place_;
    Point3 axes_[3];
    Point3 point_{0, 0, 0}, normal_{0, 0, 1};
};

}  // namespace tavrik_host
