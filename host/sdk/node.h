#pragma once
/// The nodes of this host.

#include <string>
#include <vector>

#include "host/sdk/max.h"

namespace tavrik_host {

/// What moves a node, what it carries and what it stands on are all references, so that nothing can come to depend on itself by
/// way of the scene. The parent lists its children; it doesn't refer to them.
class HostNode final : public INode {
 public:
    enum Reference { kController, kObject, kParent, kReferences };

    HostNode(ULONG handle, std::wstring name) : handle_(handle), name_(std::move(name)) {}
    /// Its children have been given to another node before.
    ~HostNode() override;

    const MCHAR* GetName() override { return name_.c_str(); }
    void SetName(const MCHAR* name) override;
    Object* GetObjectRef() override { return object_; }
    ObjectState EvalWorldState(TimeValue t, BOOL evalHidden = TRUE) override;
    Matrix3 GetNodeTM(TimeValue t, Interval* valid = nullptr) override;
    void SetNodeTM(TimeValue t, Matrix3& tm) override;
    Matrix3 GetObjectTM(TimeValue t, Interval* valid = nullptr) override { return GetNodeTM(t, valid); }
    int NumberOfChildren() override { return int(children_.size()); }
    INode* GetChildNode(int i) override;
    INode* GetParentNode() override { return parent_; }
    int AttachChild(INode* node, int keepPos = 1) override;
    int Selected() override;
    DWORD GetWireColor() override { return wireColor_; }
    void SetWireColor(DWORD color) override { wireColor_ = color; }
    Control* GetTMController() override { return controller_; }
    BOOL SetTMController(Control* control) override;
    ULONG GetHandle() override { return handle_; }
    int IsRootNode() override { return handle_ == 0 ? 1 : 0; }

    SClass_ID SuperClassID() override { return BASENODE_CLASS_ID; }
    void GetClassName(MSTR& s) override { s = L"Node"; }
    int NumRefs() override { return kReferences; }
    RefTargetHandle GetReference(int i) override;
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage, BOOL) override { return REF_SUCCEED; }
    /// Nodes are cloned as a group, by `CloneNodes`. One outside of it stays what it is.
    RefTargetHandle Clone(RemapDir&) override { return this; }

 protected:
    void SetReference(int i, RefTargetHandle target) override;

 private:
    const ULONG handle_;  // 0: the root
    std::wstring name_;
    Control* controller_ = nullptr;
    Object* object_ = nullptr;
    HostNode* parent_ = nullptr;
    std::vector<HostNode*> children_;
    DWORD wireColor_ = 0x00808080;
};

}  // namespace tavrik_host
