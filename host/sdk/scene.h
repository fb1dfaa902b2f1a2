#pragma once
/// The scene behind the host's interface.

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "host/sdk/node.h"

namespace tavrik_host {

/// As a new scene has them.
struct SceneSettings {
    TimeValue time = 0;
    Interval range{0, 100 * 160};
    int ticksPerFrame = 160;
    double metresPerUnit = 0.01;
};

/// Keeps all nodes alive, by a reference to each, until they are deleted from it.
class Scene final : public ReferenceMaker, public SceneSettings {
 public:
    std::vector<INode*> selection;  // in the order in which they were selected
    ULONG nextHandle = 1;
    int redraws = 0;

    Scene();
    HostNode& Root() { return *root_; }
    /// Null for a handle that no node has; 0 is the root's own, and none.
    HostNode* Find(ULONG handle) const;
    /// A node that carries nothing yet, with the default controller, under `parent`.
    /// @param handle  free, or `kAnyHandle`
    /// @return null when the handle is taken
    HostNode* AddNode(const std::wstring& name, INode* parent, ULONG handle);
    /// Nothing happens to the root. Children keep their place in the world, as far as their controllers let them.
    void DeleteNode(INode& node);
    /// `stem` with the first number that makes a name of its own.
    std::wstring UniqueName(const std::wstring& stem);

    SClass_ID SuperClassID() override { return 0; }
    int NumRefs() override { return int(nodes_.size()); }
    RefTargetHandle GetReference(int i) override { return nodes_[std::size_t(i)]; }
    RefResult NotifyRefChanged(const Interval& changeInt, RefTargetHandle hTarget, PartID& partID, RefMessage message,
                               BOOL propagate) override;

 protected:
    void SetReference(int i, RefTargetHandle target) override;

 private:
    std::vector<HostNode*> nodes_;  // null: a free place
    std::size_t firstFree_ = 0;     // no place before it is free
    std::map<ULONG, HostNode*> byHandle_;
    HostNode* root_ = nullptr;
};

/// The one of this process.
Scene& TheScene();

}  // namespace tavrik_host
