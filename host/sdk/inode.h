#pragma once

#include "control.h"
#include "object.h"

/// A place in the scene: an object, a parent, and a controller that moves it.
class INode : public ReferenceTarget {
 public:
    virtual const MCHAR* GetName() = 0;
    virtual void SetName(const MCHAR* name) = 0;
    virtual Object* GetObjectRef() = 0;
    virtual ObjectState EvalWorldState(TimeValue t, BOOL evalHidden = TRUE) = 0;
    virtual Matrix3 GetNodeTM(TimeValue t, Interval* valid = nullptr) = 0;
    /// Sets the frame through the node's controller, which may refuse.
    virtual void SetNodeTM(TimeValue t, Matrix3& tm) = 0;
    virtual Matrix3 GetObjectTM(TimeValue t, Interval* valid = nullptr) = 0;
    virtual int NumberOfChildren() = 0;
    virtual INode* GetChildNode(int i) = 0;
    virtual INode* GetParentNode() = 0;
    /// Puts `node` under this one, keeping its place in the world where `keepPos` says so.
    /// @return 0, with nothing changed, when the node would come to depend on itself
    virtual int AttachChild(INode* node, int keepPos = 1) = 0;
    virtual int Selected() = 0;
    virtual DWORD GetWireColor() = 0;
    virtual void SetWireColor(DWORD color) = 0;
    virtual Control* GetTMController() = 0;
    virtual BOOL SetTMController(Control* control) = 0;
    virtual ULONG GetHandle() = 0;
    virtual int IsRootNode() = 0;
};
