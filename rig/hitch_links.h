#pragma once

#include "rig/scene_node.h"

namespace tavrik {

/// Ties the hitch slots of all rigs in the scene to their partners and unties all others: each hitch whose connection is set to
/// the slot of the node that it names. Both ends must be locked; one without a locked partner stays untied.
///
/// A slot is taken by the number in its node's control, whatever the kind of component there and however many slots the rig
/// uses; numbers that no rig has a slot for tie nothing.
void LinkHitches(SceneNode& root);

}  // namespace tavrik
