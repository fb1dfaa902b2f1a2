#pragma once
/// A scene as assembly sees it: a tree of nodes, each with an object of some class, a place, and perhaps a control that the
/// assembly has put on it. Whoever has a scene supplies the nodes; assembly always reads it at time 0.

#include <cstdint>

#include "rig/recorded_motion.h"
#include "solver/single_maths.h"

namespace tavrik {

struct CarRig;

/// What kind of object a node carries, as far as a car cares.
enum class ObjectClass : std::uint8_t {
    None,   // no object at all
    Other,  // an object that has no part in a rig
    Tavrik,
    Chassis,
    Suspension,
    Wheel,
    Sphere,
    Hitch,
    Tongue,
    Push,
    Start,
};

class SceneNode;

/// What a control tells of the component that it moves.
struct ControlValues {
    SceneNode* Tavrik_Node = nullptr;  // of the master; null: the control has let go
    std::int32_t Object_Type = 0;      // a `ComponentType`
    std::int32_t Axle_Num = 0;
    Matrix3 Slot_Position = IdentityMatrix3();  // in chassis space
};

/// One node. A node is one address as long as a view of the scene lives, so nodes are compared by address.
class SceneNode {
 public:
    virtual ~SceneNode() = default;

    /// Of the node's object.
    virtual ObjectClass Class() const = 0;
    /// Parameters of the object at time 0, by number. The object must have the parameter.
    virtual float GetFloat(std::int32_t param, std::int32_t entry = 0) const = 0;
    virtual std::int32_t GetInt(std::int32_t param) const = 0;
    virtual SceneNode* GetNode(std::int32_t param) const = 0;
    /// The rig that a master object owns; null for every other node.
    virtual CarRig* Rig() const = 0;

    /// World frame of the object at time 0, single precision as the scene is.
    virtual Matrix3 GetObjectTM() const = 0;
    virtual std::int32_t NumberOfChildren() const = 0;
    virtual SceneNode& GetChildNode(std::int32_t i) const = 0;
    /// Survives saving and loading.
    virtual std::uint32_t GetHandle() const = 0;

    /// Whether the node's transform controller is one of ours.
    virtual bool HasControl() const = 0;
    /// The values of that control; it must be there.
    virtual ControlValues GetControl() const = 0;
    /// Puts a control on the node that wraps a copy of the controller it has. The node must have none of ours.
    virtual void InstallControl() = 0;
    /// Sets the values of the control in the order of the record. The scene may refuse a master that would come to depend on
    /// itself; the control then stays without one.
    virtual void SetControl(const ControlValues& values) = 0;
    /// Lets go of the master.
    virtual void ClearControlMaster() = 0;
};

}  // namespace tavrik
