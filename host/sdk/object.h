#pragma once
/// What nodes carry.

#include "box3.h"
#include "ref.h"

class INode;
class Object;
class ViewExp;
class CreateMouseCallBack;
class ModContext;

class ObjectState {
 public:
    Object* obj;
    ObjectState() : obj(nullptr) {}
    explicit ObjectState(Object* object) : obj(object) {}
};

class BaseObject : public ReferenceTarget {
 public:
    virtual const MCHAR* GetObjectName() { return L"Object"; }
    virtual CreateMouseCallBack* GetCreateMouseCallBack() = 0;
    virtual int Display(TimeValue, INode*, ViewExp*, int /*flags*/) { return 0; }
    virtual int HitTest(TimeValue, INode*, int /*type*/, int /*crossing*/, int /*flags*/, IPoint2* /*p*/, ViewExp*) {
        return 0;
    }
    virtual int HitTest(TimeValue, INode*, int /*type*/, int /*crossing*/, int /*flags*/, IPoint2* /*p*/, ViewExp*,
                        ModContext*) {
        return 0;
    }
    virtual void GetWorldBoundBox(TimeValue, INode*, ViewExp*, Box3& box) { box.Init(); }
    virtual void GetLocalBoundBox(TimeValue, INode*, ViewExp*, Box3& box) { box.Init(); }
};

class Object : public BaseObject {
 public:
    virtual ObjectState Eval(TimeValue t) = 0;
    virtual void InitNodeName(MSTR& s) = 0;
    virtual int IsRenderable() = 0;
    virtual int CanConvertToType(Class_ID) { return 0; }
    virtual Object* ConvertToType(TimeValue, Class_ID) { return nullptr; }
    virtual void GetCollapseTypes(Tab<Class_ID>&, Tab<MSTR*>&) {}
    virtual Interval ObjectValidity(TimeValue) { return FOREVER; }
    virtual void GetDeformBBox(TimeValue, Box3& box, Matrix3* /*tm*/ = nullptr, BOOL /*useSel*/ = FALSE) { box.Init(); }
    void SetChannelValidity(int channel, Interval valid);
    Interval ChannelValidity(TimeValue t, int channel) const;

 private:
    Interval topoValid_ = FOREVER, geomValid_ = FOREVER;
};

class HelperObject : public Object {
 public:
    SClass_ID SuperClassID() override { return HELPER_CLASS_ID; }
    int IsRenderable() override { return 0; }
};

class GeomObject : public Object {
 public:
    SClass_ID SuperClassID() override { return GEOMOBJECT_CLASS_ID; }
    int IsRenderable() override { return 1; }
};
