#pragma once
/// The parameters of a node's object as records, read by number at time 0.

#include "rig/component_values.h"
#include "rig/scene_node.h"

namespace tavrik {

// Each takes a node whose object is of that class.
ChassisValues ReadChassisValues(const SceneNode& chassis);
SuspensionValues ReadSuspensionValues(const SceneNode& suspension);
WheelValues ReadWheelValues(const SceneNode& wheel);
SphereValues ReadSphereValues(const SceneNode& sphere);

/// Half the size of a master's box along its three axes, scene units.
Point3 ReadBoxSize(const SceneNode& master);

}  // namespace tavrik
