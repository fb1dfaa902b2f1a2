#pragma once
/// Points for maps to be asked about, and maps to ask.

#include "host/sdk/imtl.h"
#include "host/sdk/max.h"

namespace plugin_test {

/// A point in the world whose coordinates U and V run along X and Y. What a render calls the camera's axes lies `shift` away
/// from the world's.
class WorldPoint final : public ShadeContext {
 public:
    Point3 world{0, 0, 0}, uvw{0, 0, 0}, shift{0, 0, 0};
    TimeValue time = 0;

    BOOL InMtlEditor() override { return FALSE; }
    LightDesc* Light(int) override { return nullptr; }
    TimeValue CurTime() override { return time; }
    int FaceNumber() override { return 0; }
    Point3 Normal() override { return {0, 0, 1}; }
    Point3 GNormal() override { return {0, 0, 1}; }
    Point3 V() override { return {0, 0, -1}; }
    void SetView(Point3) override {}
    Point3 ReflectVector() override { return {0, 0, 1}; }
    Point3 RefractVector(float) override { return {0, 0, -1}; }
    Point3 CamPos() override { return {0, 0, 0}; }
    Point3 P() override { return world - shift; }
    Point3 DP() override { return {0, 0, 0}; }
    Point3 PObj() override { return world; }
    Point3 DPObj() override { return {0, 0, 0}; }
    Box3 ObjectBox() override { return {}; }
    Point3 PObjRelBox() override { return {0, 0, 0}; }
    Point3 DPObjRelBox() override { return {0, 0, 0}; }
    void ScreenUV(Point2& uv, Point2& duv) override { uv = duv = Point2(0.0f, 0.0f); }
    IPoint2 ScreenCoord() override { return {0, 0}; }
    Point3 UVW(int) override { return uvw; }
    Point3 DUVW(int) override { return {0, 0, 0}; }
    void DPdUVW(Point3 dP[3], int) override {
        dP[0] = Point3(2, 0, 0);
        dP[1] = Point3(0, 3, 0);
        dP[2] = Point3(0, 0, 1);
    }
    void GetBGColor(Color&, Color&, BOOL) override {}
    Point3 PointTo(const Point3& p, RefFrame ito) override { return ito == REF_WORLD ? p + shift : p; }
    Point3 PointFrom(const Point3& p, RefFrame ifrom) override { return ifrom == REF_WORLD ? p - shift : p; }
    Point3 VectorTo(const Point3& p, RefFrame) override { return p; }
    Point3 VectorFrom(const Point3& p, RefFrame) override { return p; }
};

/// The editor of materials.
class Editor final : public IMtlParams {
 public:
    void MtlChanged() override {}
    TimeValue GetTime() override { return 0; }
};

/// Holds a thing as materials do, and lets it go at the end.
class Holder final : public ReferenceMaker {
 public:
    explicit Holder(ReferenceTarget* target) { ReplaceReference(0, target); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;
    ~Holder() override { DeleteAllRefsFromMe(); }
    void Drop() { DeleteAllRefsFromMe(); }
    SClass_ID SuperClassID() override { return 0; }
    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int) override { return target_; }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage, BOOL) override { return REF_SUCCEED; }

 protected:
    void SetReference(int, RefTargetHandle target) override { target_ = target; }

 private:
    RefTargetHandle target_ = nullptr;
};

}  // namespace plugin_test
