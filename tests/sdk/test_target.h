#pragma once
/// Things for tests of the scene: targets that note what they hear, and an object to hang on nodes.

#include <functional>
#include <vector>

#include "host/sdk/max.h"

namespace tavrik_host::test {

/// Refers to up to four others.
class TestTarget : public ReferenceTarget {
 public:
    static inline int living = 0;
    struct Heard {
        RefTargetHandle from;
        RefMessage message;
        bool operator==(const Heard&) const = default;
    };

    TestTarget() { ++living; }
    ~TestTarget() override { --living; }
    TestTarget* At(int i) const { return static_cast<TestTarget*>(targets[i]); }
    /// Tells the dependents of a change.
    void Change() { NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE); }
    int Count(RefMessage message) const;

    std::vector<Heard> heard;
    std::function<RefResult(RefTargetHandle, RefMessage)> answer;  // to what it hears; none: REF_SUCCEED
    RefTargetHandle targets[4] = {};

    SClass_ID SuperClassID() override { return 0x7e57; }
    Class_ID ClassID() override { return {0x7e57, 1}; }
    int NumRefs() override { return 4; }
    RefTargetHandle GetReference(int i) override { return targets[i]; }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle hTarget, PartID&, RefMessage message, BOOL) override;
    /// Clones what it refers to at 0 and 1; 2 and 3 are links.
    RefTargetHandle Clone(RemapDir& remap) override;

 protected:
    void SetReference(int i, RefTargetHandle target) override { targets[i] = target; }
};

/// An object that refers to a node.
class TestObject final : public HelperObject {
 public:
    static inline int living = 0;
    TestObject() { ++living; }
    ~TestObject() override { --living; }
    INode* Node() const { return static_cast<INode*>(node_); }

    Class_ID ClassID() override { return {0x7e57, 2}; }
    CreateMouseCallBack* GetCreateMouseCallBack() override { return nullptr; }
    ObjectState Eval(TimeValue) override { return ObjectState(this); }
    void InitNodeName(MSTR& s) override { s = L"Test"; }
    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int) override { return node_; }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage, BOOL) override { return REF_SUCCEED; }
    RefTargetHandle Clone(RemapDir& remap) override;

 protected:
    void SetReference(int, RefTargetHandle target) override { node_ = target; }

 private:
    RefTargetHandle node_ = nullptr;
};

/// Bit for bit, signs of zeroes included.
bool SameBits(const Matrix3& a, const Matrix3& b);

}  // namespace tavrik_host::test
