#pragma once

#include <vector>

#include "host/gltf_meshes.h"
#include "host/scene_records.h"

namespace tavrik_host {

/// Objects and controllers that stand beside the scene until it is built. They live by the references of this, and go with it
/// unless nodes have taken them over.
class SceneParts final : public ReferenceMaker {
 public:
    SceneParts() = default;
    ~SceneParts() override { DeleteAllRefsFromMe(); }
    SceneParts(const SceneParts&) = delete;
    SceneParts& operator=(const SceneParts&) = delete;

    std::vector<ReferenceTarget*> objects, controllers;  // beside the records' lists

    void Hold(ReferenceTarget* target);

    SClass_ID SuperClassID() override { return 0; }
    int NumRefs() override { return int(held_.size()); }
    RefTargetHandle GetReference(int i) override { return held_[std::size_t(i)]; }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage, BOOL) override { return REF_SUCCEED; }

 protected:
    void SetReference(int i, RefTargetHandle target) override { held_[std::size_t(i)] = target; }

 private:
    std::vector<ReferenceTarget*> held_;
};

/// Makes all that the records list, with values and data, but without links to nodes. Refuses (`SceneFault`) what a plug-in
/// refuses. The scene doesn't change.
void MakeParts(const SceneRecords& records, GltfNumbers& numbers, SceneParts& parts, SceneLoad& load);

/// Puts the parts into a new scene in place of the present one. Records were checked, so nothing is refused any more.
void BuildScene(const SceneRecords& records, SceneParts& parts);

}  // namespace tavrik_host
