#include "rig/hitch_links.h"

#include <cstdint>

#include "rig/car_rig.h"
#include "rig/parameter_tables.h"
#include "rig/scene_walk.h"

namespace tavrik {
namespace {

/// The slot that stands for `node`, which learns whose it is; null where the node is no part of a locked rig.
HitchSlot* SlotOf(const SceneNode& node) {
    if (!node.HasControl()) return nullptr;
    const ControlValues control = node.GetControl();
    CarRig* const rig = control.Tavrik_Node != nullptr ? control.Tavrik_Node->Rig() : nullptr;
    const std::int32_t index = control.Axle_Num;
    if (rig == nullptr || index < 0 || !rig->IsAnimated(std::int32_t(ComponentType::Hitch), index)) return nullptr;
    HitchSlot& slot = rig->hitches[index];
    slot.ownerRig = rig;
    return &slot;
}

void Link(const SceneNode& hitch) {
    const SceneNode* const connection = hitch.GetNode(HitchParam::Connection_Node);
    if (connection == nullptr) return;
    HitchSlot* const slot = SlotOf(hitch);
    if (slot == nullptr) return;
    HitchSlot* const partner = SlotOf(*connection);
    if (partner == nullptr) return;
    slot->Ruggedness = partner->Ruggedness = double(hitch.GetFloat(HitchParam::Ruggedness));
    slot->partner = partner;
    partner->partner = slot;
}

}  // namespace

void LinkHitches(SceneNode& root) {
    WalkScene(root, [](const SceneNode& node) {
        if (CarRig* const rig = node.Class() == ObjectClass::Tavrik ? node.Rig() : nullptr) rig->ClearHitchLinks();
        return true;
    });
    WalkScene(root, [](const SceneNode& node) {
        if (node.Class() == ObjectClass::Hitch) Link(node);
        return true;
    });
}

}  // namespace tavrik
