#pragma once
/// Who refers to whom: things in a scene hold references to targets, hear of their changes, and keep them alive.

#include "interval.h"
#include "maxtypes.h"

class Animatable;
class ReferenceMaker;
class ReferenceTarget;
class IParamBlock2;
class ISave;
class ILoad;
class Interface;
using IObjParam = Interface;
using RefTargetHandle = ReferenceTarget*;
using RefMakerHandle = ReferenceMaker*;

enum RefResult { REF_FAIL, REF_SUCCEED, REF_DONTCARE, REF_STOP, REF_HALT };
enum IOResult { IO_OK, IO_END, IO_ERROR };

using RefMessage = UINT;
constexpr RefMessage REFMSG_LOOPTEST = 0x10, REFMSG_TARGET_DELETED = 0x20, REFMSG_CHANGE = 0x50, REFMSG_CONTROLREF_CHANGE = 258;
constexpr PartID PART_ALL = ~PartID(0);
constexpr SClass_ID NOTIFY_ALL = 0xfffffff0;

/// Everything of which the host makes instances.
class MaxHeapOperators {};
class InterfaceServer : public MaxHeapOperators {
 public:
    virtual ~InterfaceServer() = default;
};

class Animatable : public InterfaceServer {
 public:
    virtual void DeleteThis() { delete this; }
    virtual void GetClassName(MSTR& s) { s = L"Animatable"; }
    virtual Class_ID ClassID() { return {}; }
    virtual SClass_ID SuperClassID() = 0;
    virtual void BeginEditParams(IObjParam*, ULONG /*flags*/, Animatable* /*prev*/ = nullptr) {}
    virtual void EndEditParams(IObjParam*, ULONG /*flags*/, Animatable* /*next*/ = nullptr) {}
    virtual int NumSubs() { return 0; }
    virtual Animatable* SubAnim(int) { return nullptr; }
    virtual MSTR SubAnimName(int) { return L""; }
    virtual int NumParamBlocks() { return 0; }
    virtual IParamBlock2* GetParamBlock(int) { return nullptr; }
    virtual IParamBlock2* GetParamBlockByID(BlockID) { return nullptr; }
};

class ReferenceMaker : public Animatable {
 public:
    ReferenceMaker() = default;
    ReferenceMaker(const ReferenceMaker&) = delete;
    ReferenceMaker& operator=(const ReferenceMaker&) = delete;
    /// Lets go of every target.
    ~ReferenceMaker() override;

    virtual RefResult NotifyRefChanged(const Interval& changeInt, RefTargetHandle hTarget, PartID& partID, RefMessage message,
                                       BOOL propagate) = 0;
    virtual int NumRefs() { return 0; }
    virtual RefTargetHandle GetReference(int) { return nullptr; }

    /// Puts `newTarget` in the place of reference `which`. An old target that loses its last dependent is deleted, unless
    /// `delOld` is FALSE.
    /// @return REF_FAIL, with nothing changed, when the new target depends on this maker already, or is being deleted
    RefResult ReplaceReference(int which, RefTargetHandle newTarget, BOOL delOld = TRUE);
    RefResult DeleteReference(int which) { return ReplaceReference(which, nullptr); }
    void DeleteAllRefsFromMe();

    virtual IOResult Save(ISave*) { return IO_OK; }
    virtual IOResult Load(ILoad*) { return IO_OK; }

 protected:
    /// Only stores; `ReplaceReference` calls it.
    virtual void SetReference(int, RefTargetHandle) {}

 private:
    friend class ReferenceTarget;
    RefTargetHandle Registered(int which) const;
    bool RefersTo(const ReferenceTarget* target) const;
    bool DependsOn(const ReferenceMaker* maker) const;
    void LetGoOfTargets();

    std::vector<RefTargetHandle> targets_;  // by reference number; what the maker stores itself may be gone when it is let go
};

class RemapDir;

class ReferenceTarget : public ReferenceMaker {
 public:
    /// Tells the dependents, who forget this target.
    ~ReferenceTarget() override;

    virtual RefTargetHandle Clone(RemapDir& remap);
    /// To be called at the end of every `Clone`.
    virtual void BaseClone(ReferenceTarget* from, ReferenceTarget* to, RemapDir& remap);

    /// Calls `NotifyRefChanged` of every dependent, and, with `propagate`, of theirs; each hears it once from each target that
    /// it has. A dependent that answers REF_STOP keeps it from its own, REF_HALT from everyone. Dependents may change any
    /// reference meanwhile, or delete this target: whoever doesn't depend any more isn't called.
    RefResult NotifyDependents(const Interval& changeInt, PartID partID, RefMessage message, SClass_ID sclass = NOTIFY_ALL,
                               BOOL propagate = TRUE, RefTargetHandle hTarg = nullptr);
    BOOL HasDependents() const { return dependents_.empty() ? FALSE : TRUE; }
    /// Deletes this target if nobody depends on it.
    RefResult MaybeAutoDelete();
    RefResult DeleteMe();

    /// The makers that refer to this target, one entry a reference.
    const std::vector<ReferenceMaker*>& Dependents() const { return dependents_; }

 private:
    friend class ReferenceMaker;
    /// Tells of the end and clears every reference to this target.
    void LeaveDependents();

    std::vector<ReferenceMaker*> dependents_;
    bool dying_ = false;  // from now on nothing refers to it again, and nobody deletes it a second time
};

/// What became of what while a group of things is cloned.
class RemapDir {
 public:
    virtual ~RemapDir() = default;
    /// The clone of `target`, made at the first request.
    virtual RefTargetHandle CloneRef(RefTargetHandle target) = 0;
    /// The clone of `target` if there is one, else null.
    virtual RefTargetHandle FindMapping(RefTargetHandle target) = 0;
    virtual void AddEntry(RefTargetHandle from, RefTargetHandle to) = 0;
};

/// Keeps links between things that are cloned together; links to anything else go on pointing there. Originals and clones may
/// be deleted before it is.
class DefaultRemapDir final : public RemapDir {
 public:
    explicit DefaultRemapDir(BOOL noBackPatch = FALSE);
    DefaultRemapDir(const DefaultRemapDir&) = delete;
    DefaultRemapDir& operator=(const DefaultRemapDir&) = delete;
    /// Mends the links that were cloned before their target was.
    ~DefaultRemapDir() override;
    RefTargetHandle CloneRef(RefTargetHandle target) override;
    RefTargetHandle FindMapping(RefTargetHandle target) override;
    void AddEntry(RefTargetHandle from, RefTargetHandle to) override;

 private:
    friend class ReferenceTarget;
    void Forget(const ReferenceTarget* target);

    std::vector<std::pair<RefTargetHandle, RefTargetHandle>> entries_;
    BOOL noBackPatch_;
};
