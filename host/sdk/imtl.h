#pragma once
/// Texture maps, and the points that they are asked about.

#include "box3.h"
#include "color.h"
#include "ref.h"

class INode;
class Texmap;
class LightDesc;
class RenderGlobalContext;

/// In whose axes a point or a vector is meant.
enum RefFrame { REF_CAMERA = 0, REF_WORLD, REF_OBJECT };

/// A point on a surface as a map sees it. What a render gives is in the camera's axes until it is taken elsewhere.
class ShadeContext {
 public:
    int mode = 0;
    BOOL doMaps = TRUE, filterMaps = FALSE, shadow = TRUE, backFace = FALSE;
    int mtlNum = 0;
    Color ambientLight;
    int nLights = 0, rayLevel = 0, xshadeID = 0;
    RenderGlobalContext* globContext = nullptr;
    LightDesc* atmosSkipLight = nullptr;

    virtual ~ShadeContext() = default;
    virtual BOOL InMtlEditor() = 0;
    virtual int Antialias() { return 0; }
    virtual int ProjType() { return 0; }
    virtual LightDesc* Light(int n) = 0;
    virtual TimeValue CurTime() = 0;
    virtual int NodeID() { return -1; }
    virtual INode* Node() { return nullptr; }
    virtual int FaceNumber() = 0;
    virtual Point3 Normal() = 0;
    virtual Point3 OrigNormal() { return Normal(); }
    virtual Point3 GNormal() = 0;
    virtual float Curve() { return 0.0f; }
    virtual Point3 V() = 0;
    virtual void SetView(Point3 v) = 0;
    virtual Point3 OrigView() { return V(); }
    virtual Point3 ReflectVector() = 0;
    virtual Point3 RefractVector(float ior) = 0;
    virtual Point3 CamPos() = 0;
    virtual Point3 P() = 0;
    virtual Point3 DP() = 0;
    virtual Point3 PObj() = 0;
    virtual Point3 DPObj() = 0;
    virtual Box3 ObjectBox() = 0;
    virtual Point3 PObjRelBox() = 0;
    virtual Point3 DPObjRelBox() = 0;
    virtual void ScreenUV(Point2& uv, Point2& duv) = 0;
    virtual IPoint2 ScreenCoord() = 0;
    virtual Point3 UVW(int channel = 0) = 0;
    virtual Point3 DUVW(int channel = 0) = 0;
    /// How the point moves with each of the three coordinates of a channel.
    virtual void DPdUVW(Point3 dP[3], int channel = 0) = 0;
    virtual void GetBGColor(Color& bgcol, Color& transp, BOOL fogBG = TRUE) = 0;
    virtual AColor EvalEnvironMap(Texmap* /*map*/, Point3 /*view*/) { return {}; }
    virtual Point3 PointTo(const Point3& p, RefFrame ito) = 0;
    virtual Point3 PointFrom(const Point3& p, RefFrame ifrom) = 0;
    virtual Point3 VectorTo(const Point3& p, RefFrame ito) = 0;
    virtual Point3 VectorFrom(const Point3& p, RefFrame ifrom) = 0;
    /// Without the scale of the axes, as directions of surfaces are taken over.
    virtual Point3 VectorFromNoScale(const Point3& p, RefFrame ifrom) { return VectorFrom(p, ifrom); }
};

/// Something that has maps in slots.
class ISubMap {
 public:
    virtual ~ISubMap() = default;
    virtual int NumSubTexmaps() { return 0; }
    virtual Texmap* GetSubTexmap(int) { return nullptr; }
    virtual void SetSubTexmap(int, Texmap*) {}
};

/// A page of the material editor.
class ParamDlg {
 public:
    virtual ~ParamDlg() = default;
    virtual Class_ID ClassID() = 0;
    virtual void SetThing(ReferenceTarget* thing) = 0;
    virtual ReferenceTarget* GetThing() = 0;
    virtual void SetTime(TimeValue t) = 0;
    virtual void ReloadDialog() = 0;
    virtual void ActivateDlg(BOOL on) = 0;
    virtual void DeleteThis() = 0;
};

/// One that parameter blocks made.
class IAutoMParamDlg : public ParamDlg {};

/// The material editor.
class IMtlParams {
 public:
    virtual ~IMtlParams() = default;
    virtual void MtlChanged() = 0;
    virtual TimeValue GetTime() = 0;
};

/// What can stand in the material editor.
class MtlBase : public ReferenceTarget, public ISubMap {
 public:
    MtlBase() = default;
    /// Takes over the name alone: who refers to whom isn't copied.
    MtlBase& operator=(const MtlBase& other) {
        name_ = other.name_;
        return *this;
    }
    MSTR GetName() { return name_; }
    void SetName(MSTR name) { name_ = std::move(name); }

    /// Makes ready for time `t`, on the main thread and before anything is asked.
    virtual void Update(TimeValue t, Interval& valid) = 0;
    virtual void Reset() = 0;
    virtual Interval Validity(TimeValue t) = 0;
    virtual ParamDlg* CreateParamDlg(HWND hwMtlEdit, IMtlParams* imp) = 0;

 private:
    MSTR name_;
};

/// A texture map. What it answers about a point may be asked by many threads at once.
class Texmap : public MtlBase {
 public:
    SClass_ID SuperClassID() override { return TEXMAP_CLASS_ID; }
    virtual AColor EvalColor(ShadeContext& sc) = 0;
    virtual float EvalMono(ShadeContext& sc) {
        const AColor c = EvalColor(sc);
        return (c.r + c.g + c.b) / 3.0f;
    }
    virtual Point3 EvalNormalPerturb(ShadeContext& sc) = 0;
    virtual void GetUVTransform(Matrix3& uvtrans) { uvtrans.IdentityMatrix(); }
    /// Reads what the map keeps in files of its own.
    virtual void LoadMapFiles(TimeValue) {}
};
