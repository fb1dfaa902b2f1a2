#pragma once
/// The plug-in's objects from a program's side: made, recognised, and set by the numbers of their parameters.

#include <vector>

#include "host/sdk/max.h"
#include "rig/class_identities.h"
#include "rig/component_values.h"

namespace tavrik_host {

/// What a node carries.
tavrik::ObjectClass ClassOf(INode& node);

/// Whether a node's controller is the plug-in's, and so may follow a recording.
bool HasTavrikControl(INode& node);

/// The master object whose recording a node follows, or null.
INode* MasterOf(INode& node);

/// All nodes with an object of a class, each before its children.
std::vector<INode*> NodesOf(tavrik::ObjectClass objectClass);

/// A new object on a new node under `parent` (null: the root) at a place in the world. The plug-in must be loaded (asserted).
/// @param name  null: the object's own stem and a number
INode& AddRigNode(tavrik::ObjectClass objectClass, const Matrix3& place, const wchar_t* name = nullptr,
                  INode* parent = nullptr);

// The object must have the parameter (asserted).
void SetParam(INode& node, std::int32_t param, float value, int entry = 0);
void SetParam(INode& node, std::int32_t param, std::int32_t value);
void SetParam(INode& node, std::int32_t param, INode* value);
float FloatParam(INode& node, std::int32_t param, int entry = 0);
std::int32_t IntParam(INode& node, std::int32_t param);
INode* NodeParam(INode& node, std::int32_t param);

void SetValues(INode& node, const tavrik::ChassisValues& values);
void SetValues(INode& node, const tavrik::SuspensionValues& values);
void SetValues(INode& node, const tavrik::WheelValues& values);
void SetValues(INode& node, const tavrik::SphereValues& values);

/// A frame rounded to the scene's precision, and the way back.
Matrix3 SceneFrame(const tavrik::DMatrix3& frame);
tavrik::DMatrix3 RigFrame(const Matrix3& frame);

}  // namespace tavrik_host
