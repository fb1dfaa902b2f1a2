#pragma once
/// What all nine helpers have in common: one block of parameters, strings, boxes, and being dragged into the scene.

#include <iparamm2.h>

#include <vector>

#include "plugin/classes.h"
#include "plugin/gizmo_lines.h"
#include "plugin/rig_owner.h"
#include "plugin/sdk_year.h"

namespace tavrik_plugin {

class RigHelper;

/// The two clicks that make an object: the first says where, the second how large.
class RigCreateCallBack final : public CreateMouseCallBack {
 public:
    /// The object that is being made; the host asks it for the callback first.
    void SetObject(RigHelper* object) { object_ = object; }
    void Forget(const RigHelper* object) {
        if (object_ == object) object_ = nullptr;
    }
    int proc(ViewExp* vpt, int msg, int point, int flags, IPoint2 m, Matrix3& mat) override;

 private:
    void FirstPoint(ViewExp& vpt, IPoint2 m, Matrix3& mat);
    int SecondPoint(ViewExp& vpt, int msg, IPoint2 m, Matrix3& mat);

    RigHelper* object_ = nullptr;
    IPoint2 firstPixel_{0, 0};
    Point3 first_{0, 0, 0};  // snapped, in the construction plane
};

/// What the objects of one class share. The host edits and makes only one of them at a time.
struct ClassStatics {
    Interface* ip = nullptr;  // while one of them is being edited
    RigCreateCallBack create;
};

class RigHelper : public RigOwner {
 public:
    ~RigHelper() override;
    RigHelper(const RigHelper&) = delete;
    RigHelper& operator=(const RigHelper&) = delete;

    IParamBlock2* Block() const { return pblock_; }

    // -------------------------------------------------------------------------------------------------------- each class's own

    /// Fills the cached values from the block. All but the master's box are read at time 0, whatever `t` says.
    virtual void ReadValues(TimeValue t) = 0;
    /// The points that a box around the object must hold, in its own axes, from the cached values.
    virtual std::vector<Point3> Extent() const = 0;
    /// The object's drawing in its own axes, from the cached values.
    virtual tavrik::GizmoLines Lines() const = 0;
    /// Writes the sizes that a drag gives.
    /// @param d  from the first point to where the mouse is
    /// @return whether a click there makes an object; without, the size would be nothing
    virtual bool Drag(const Point3& d) = 0;
    /// Whether the object lies on its side until the mouse moves.
    virtual bool LiesAtFirstPoint() const { return false; }
    /// Whether the object shows by its colour that it can't be moved by hand.
    virtual bool ShowsLock() const { return true; }
    /// Of the class's rollout, or null. Stays the object's class's own.
    virtual ParamMap2UserDlgProc* DialogProc() { return nullptr; }

    // ---------------------------------------------------------------------------------------------------- the host's questions

    void DeleteThis() override { delete this; }
    void TAVRIK_GET_CLASS_NAME(s) override;
    SClass_ID SuperClassID() override { return HELPER_CLASS_ID; }
    Class_ID ClassID() override { return class_.ClassID(); }
    void BeginEditParams(IObjParam* ip, ULONG flags, Animatable* prev) override;
    void EndEditParams(IObjParam* ip, ULONG flags, Animatable* next) override;
    int NumSubs() override { return 1; }
    Animatable* SubAnim(int) override { return pblock_; }
    MSTR TAVRIK_SUB_ANIM_NAME override;
    int NumParamBlocks() override { return 1; }
    IParamBlock2* GetParamBlock(int) override { return pblock_; }
    IParamBlock2* GetParamBlockByID(BlockID id) override;

    RefResult NotifyRefChanged(const Interval& changeInt, RefTargetHandle hTarget, PartID& partID, RefMessage message,
                               BOOL propagate) override;
    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int) override { return pblock_; }
    RefTargetHandle Clone(RemapDir& remap) override;

    const MCHAR* TAVRIK_GET_OBJECT_NAME override;
    CreateMouseCallBack* GetCreateMouseCallBack() override;
    // Drawn as it is set now, whatever was cached: a view may ask before anyone has asked for the object's validity. A mouse
    // that is on a line has hit, whatever its flags would rather have left out.
    int Display(TimeValue t, INode* inode, ViewExp* vpt, int flags) override;
    using RigOwner::HitTest;
    int HitTest(TimeValue t, INode* inode, int type, int crossing, int flags, IPoint2* p, ViewExp* vpt) override;
    // Boxes are read anew: a host that has not drawn the object yet hasn't asked for its validity either. The box that a node
    // calls local is turned and moved with the node, as the world's is; views of old rigs are tuned to that.
    void GetWorldBoundBox(TimeValue t, INode* inode, ViewExp* vpt, Box3& box) override;
    void GetLocalBoundBox(TimeValue t, INode* inode, ViewExp* vpt, Box3& box) override;
    void GetDeformBBox(TimeValue t, Box3& box, Matrix3* tm, BOOL useSel) override;

    void InitNodeName(MSTR& s) override;
    ObjectState Eval(TimeValue) override { return ObjectState(this); }
    int CanConvertToType(Class_ID) override { return 0; }
    Object* ConvertToType(TimeValue, Class_ID) override { return nullptr; }
    void GetCollapseTypes(Tab<Class_ID>&, Tab<MSTR*>&) override {}
    Interval ObjectValidity(TimeValue t) override;

 protected:
    /// White while the node is selected, else blue while it is locked, else the node's own.
    virtual Color LineColor(INode& node) const;
    /// Draws the object. The window has the object's transform and colour.
    virtual void Draw(GraphicsWindow& gw, TimeValue t, INode& node) const;

    /// @param objectClass  such as "WheelObject"
    RigHelper(std::string_view objectClass, ClassStatics& statics) : class_(ClassNamed(objectClass)), statics_(statics) {}

    /// To be called at the end of each constructor, once controls are attached: the block comes with it.
    void MakeBlock() { class_.MakeAutoParamBlocks(this); }
    void SetReference(int, RefTargetHandle target) override { pblock_ = static_cast<IParamBlock2*>(target); }
    RigClassDesc& TheClass() { return class_; }

    IParamBlock2* pblock_ = nullptr;

 private:
    RigClassDesc& class_;
    ClassStatics& statics_;
};

/// The eight corners of a box.
std::vector<Point3> BoxCorners(const Point3& low, const Point3& high);
/// The same around the origin.
std::vector<Point3> BoxCorners(float x, float y, float z);

}  // namespace tavrik_plugin
