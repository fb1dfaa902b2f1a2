#pragma once

#include <imtl.h>
#include <max.h>

namespace tavrik_plugin {

/// A place to ask a map about where there is no render: all that it has to tell is the place within the map.
class SCTex final : public ShadeContext {
 public:
    Point3 uvw{0.0f, 0.0f, 0.0f};

    BOOL InMtlEditor() override { return FALSE; }
    LightDesc* Light(int) override { return nullptr; }
    TimeValue CurTime() override { return 0; }
    INode* Node() override { return nullptr; }
    int FaceNumber() override { return 0; }
    Point3 Normal() override { return nowhere_; }
    Point3 GNormal() override { return nowhere_; }
    Point3 V() override { return nowhere_; }
    void SetView(Point3) override {}
    Point3 ReflectVector() override { return nowhere_; }
    Point3 RefractVector(float) override { return nowhere_; }
    Point3 CamPos() override { return nowhere_; }
    Point3 P() override { return nowhere_; }
    Point3 DP() override { return nowhere_; }
    Point3 PObj() override { return nowhere_; }
    Point3 DPObj() override { return nowhere_; }
    Box3 ObjectBox() override { return Box3(nowhere_, nowhere_); }
    Point3 PObjRelBox() override { return nowhere_; }
    Point3 DPObjRelBox() override { return nowhere_; }
    void ScreenUV(Point2& uv, Point2& duv) override { uv = duv = Point2(0.0f, 0.0f); }
    IPoint2 ScreenCoord() override { return IPoint2(0, 0); }
    Point3 UVW(int) override { return uvw; }
    Point3 DUVW(int) override { return nowhere_; }
    void DPdUVW(Point3 dP[3], int) override { dP[0] = dP[1] = dP[2] = nowhere_; }
    void GetBGColor(Color& bgcol, Color& transp, BOOL) override { bgcol = transp = Color(0.0f, 0.0f, 0.0f); }
    AColor EvalEnvironMap(Texmap*, Point3) override { return AColor(0.0f, 0.0f, 0.0f, 1.0f); }
    Point3 PointTo(const Point3& p, RefFrame) override { return p; }
    Point3 PointFrom(const Point3& p, RefFrame) override { return p; }
    Point3 VectorTo(const Point3& p, RefFrame) override { return p; }
    Point3 VectorFrom(const Point3& p, RefFrame) override { return p; }

 private:
    const Point3 nowhere_{0.0f, 0.0f, 0.0f};
};

}  // namespace tavrik_plugin
