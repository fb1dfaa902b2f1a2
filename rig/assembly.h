#pragma once
/// From loose objects in a master's box to a car, and back to a car from a loaded scene. Only for the thread that owns the
/// scene, and never while a car is being driven.

#include <string>
#include <string_view>

#include "rig/car_rig.h"
#include "rig/scene_walk.h"

namespace tavrik {

enum class AssemblyResult {
    Locked,     // there is a car now
    NoChassis,  // none, and the rig is unlocked; parts outside the box have been let go
    TooMany,    // more parts of one class than a car can have: nothing has changed
    Flattened,  // master or chassis is scaled to nothing along some axis, so that no place is inside or beside it: likewise
};

// What an artist reads who locks an empty box.
constexpr std::string_view kNoChassisText = "Can't find Chassis Object.";

/// Makes a car of the parts in the master's box and locks them: from here on they follow the recording, which holds the
/// assembled pose alone. A wheel that finds no suspension, a suspension that no wheel finds and all chassis but the first are
/// left as they are. Everything outside the box that was locked to this master is let go.
///
/// An older recording is dropped first, since the parts are read where their own controllers put them. Poses of parts are
/// products in single precision, the car stands where the first chassis does, or at `startNode`.
///
/// @param rig        that the master owns
/// @param dummySize  half sizes of the master's box along its own axes, scene units
/// @param startNode  where the chassis is to start, or null
/// @param problem    one sentence for the user if the answer is anything but `Locked`; else empty
AssemblyResult Assemble(CarRig& rig, SceneNode& root, SceneNode& master, const Point3& dummySize, SceneNode* startNode,
                        std::string& problem);

/// Fills the rig from the nodes that are locked to this master in a loaded scene: by the numbers in their controls, wherever
/// the nodes stand now. Bodies and dashpots stay as they are, the recording brings them back.
///
/// @return false, with the rig unchanged, if they aren't a whole car: no chassis, a number missing or beyond what a car can
/// have,
///         or a count that differs from the recording's
bool Reattach(CarRig& rig, SceneNode& root, SceneNode& master);

/// Puts one of our controls on the node, if it has none yet, and makes it follow a component of the master's rig. The scene may
/// refuse the master; the node then goes on following its own controller.
///
/// @param slot  the node's frame in chassis space
void LockNode(SceneNode& node, SceneNode& master, ComponentType objectType, std::int32_t index, const Matrix3& slot);

}  // namespace tavrik
