#pragma once
/// The host's parameter blocks, with what scene files and programs need of them beyond what plug-ins see.

#include <utility>
#include <variant>
#include <vector>

#include "host/sdk/inode.h"
#include "host/sdk/iparamb2.h"
#include "host/sdk/node_watch.h"

namespace tavrik_host {

/// Tick and value; ticks ascending. Values between two keys lie on the line through them; before the first and after the last
/// key its value holds.
using FloatKeys = std::vector<std::pair<TimeValue, float>>;

/// Every block is one of these. Its references are the entries that refer to something, in the order of the table; P_NO_REF
/// entries are none of them.
class ParamBlock final : public IParamBlock2, private NodeWatcher {
 public:
    /// With the defaults of `desc`, which must outlive it. Nobody refers to it yet.
    explicit ParamBlock(ParamBlockDesc2& desc);
    ParamBlock(const ParamBlock&) = delete;
    ParamBlock& operator=(const ParamBlock&) = delete;
    ~ParamBlock() override;

    /// Gives an animatable number keys, or with none makes it a constant again; dependents are told.
    /// @return false, with nothing changed, for any other parameter or entry, for ticks that don't ascend and for values that
    ///         aren't finite
    bool SetKeys(ParamID id, FloatKeys keys, int tabIndex = 0);
    /// Empty for a constant, and for what can't have any.
    const FloatKeys& Keys(ParamID id, int tabIndex = 0) const;

    /// Lets pointers at nodes that were cloned lead to the clones. References are mended by the directory itself, pointers that
    /// aren't references by this, once all clones are made.
    void RemapNodePointers(RemapDir& remap);

    BOOL GetValue(ParamID id, TimeValue t, float& v, Interval& valid, int tabIndex = 0) override;
    BOOL GetValue(ParamID id, TimeValue t, int& v, Interval& valid, int tabIndex = 0) override;
    BOOL GetValue(ParamID id, TimeValue t, Matrix3& v, Interval& valid, int tabIndex = 0) override;
    BOOL GetValue(ParamID id, TimeValue t, INode*& v, Interval& valid, int tabIndex = 0) override;
    BOOL GetValue(ParamID id, TimeValue t, Texmap*& v, Interval& valid, int tabIndex = 0) override;
    BOOL GetValue(ParamID id, TimeValue t, ReferenceTarget*& v, Interval& valid, int tabIndex = 0) override;
    BOOL SetValue(ParamID id, TimeValue t, float v, int tabIndex = 0) override;
    BOOL SetValue(ParamID id, TimeValue t, int v, int tabIndex = 0) override;
    BOOL SetValue(ParamID id, TimeValue t, Matrix3& v, int tabIndex = 0) override;
    BOOL SetValue(ParamID id, TimeValue t, INode* v, int tabIndex = 0) override;
    BOOL SetValue(ParamID id, TimeValue t, Texmap* v, int tabIndex = 0) override;
    BOOL SetValue(ParamID id, TimeValue t, ReferenceTarget* v, int tabIndex = 0) override;
    float GetFloat(ParamID id, TimeValue t = 0, int tabIndex = 0) override;
    int GetInt(ParamID id, TimeValue t = 0, int tabIndex = 0) override;
    INode* GetINode(ParamID id, TimeValue t = 0, int tabIndex = 0) override;
    BlockID ID() override { return desc_.ID; }
    ParamBlockDesc2* GetDesc() override { return &desc_; }
    ReferenceMaker* GetOwner() override;
    IParamMap2* GetMap(MapID map = 0) override;
    int Count(ParamID id) override;

    SClass_ID SuperClassID() override { return PARAMETER_BLOCK2_CLASS_ID; }
    void GetClassName(MSTR& s) override { s = L"ParamBlock2"; }
    int NumRefs() override { return int(referring_.size()); }
    RefTargetHandle GetReference(int i) override;
    /// What a change means is for the dependents to say; they hear of it by propagation.
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage, BOOL) override { return REF_SUCCEED; }
    RefTargetHandle Clone(RemapDir& remap) override;

 protected:
    void SetReference(int i, RefTargetHandle target) override;

 private:
    struct Entry {
        const ParamDef* def;
        std::variant<float, int, Matrix3, ReferenceTarget*> value;
        FloatKeys keys;
        int reference = -1;  // number among the references, or none
    };

    void ForgetNode(INode* node) override;
    /// Null for an unknown number or an entry that isn't there.
    const Entry* Find(ParamID id, int tabIndex) const;
    Entry* Find(ParamID id, int tabIndex);
    template <typename T>
    const T* Constant(ParamID id, int tabIndex) const;
    template <typename T>
    BOOL SetConstant(ParamID id, int tabIndex, const T& v);
    /// @return FALSE, with nothing changed, where this would close a loop
    BOOL Refer(const Entry& entry, ReferenceTarget* target);
    void NotifyChange();

    ParamBlockDesc2& desc_;
    std::vector<Entry> entries_;  // all entries of each parameter, in the order of the table
    std::vector<int> referring_;  // of each reference, its place in `entries_`
};

}  // namespace tavrik_host
