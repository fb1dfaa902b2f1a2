#pragma once
/// Who moves a node that carries one of our controls: the recording of its master's car, or the controller that it had before.
/// The same answer lets a change of its place through or drops it. Locking and unlocking are only states of the recording, so
/// no control is ever taken off.

#include <cstdint>

#include "rig/car_rig.h"
#include "rig/scene_node.h"

namespace tavrik {

/// Whether the recording moves the node, and changes to its place are dropped.
///
/// @param masterClass  of the object of the node that the control names; `None` where it names none or that has no object
/// @param rig          of that object; may be null
/// @param objectType   of the control, as `index` is
bool FollowsRecording(ObjectClass masterClass, const CarRig* rig, std::int32_t objectType, std::int32_t index);

/// The same from a control's values.
/// @return the rig that answers for the node; null if the node's own controller does
const CarRig* FollowedRig(const ControlValues& values);

/// Where a component is at `tick`, for whatever a control may hold. For a component that is there, this is `CarRig::GetTM`, bit
/// for bit. A number that no component has, or a kind that no assembly makes, rides with the chassis; the same goes for what
/// the recording doesn't know. Beside a car that could not be put together again, wheels and suspensions still follow it.
/// Without a recording it is the identity.
Matrix3 AnswerTM(const CarRig& rig, std::int32_t objectType, std::int32_t index, TimeValue tick);

/// The kind of component that nodes of a class become: chassis, suspension, wheel, hitch (tongues too) or sphere. Every other
/// class counts as a chassis; the locked test doesn't look at it.
ComponentType ComponentTypeOf(ObjectClass objectClass);

/// Whether a node is drawn as locked, so that an artist sees what can't be moved by hand.
///
/// @param hasControl  whether the node's transform controller is one of ours
/// @param rig         of the object of the node that the control names; null where there is none
bool IsLocked(bool hasControl, const CarRig* rig, ComponentType objectType, std::int32_t index);
bool IsLocked(const SceneNode& node);

}  // namespace tavrik
