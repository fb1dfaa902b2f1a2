#pragma once
/// A scene in memory: nodes with parameters, children and places, and controls that follow the playback rule. It counts every
/// change that somebody makes to it.

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "rig/assembly.h"

namespace tavrik::test {

class PlainScene;

class PlainNode final : public SceneNode {
 public:
    PlainNode(PlainScene& scene, std::string nodeName, ObjectClass objectClass, const Matrix3& place);

    ObjectClass Class() const override { return objectClass_; }
    float GetFloat(std::int32_t param, std::int32_t entry) const override;
    std::int32_t GetInt(std::int32_t param) const override;
    SceneNode* GetNode(std::int32_t param) const override;
    CarRig* Rig() const override { return rig.get(); }
    Matrix3 GetObjectTM() const override;
    std::int32_t NumberOfChildren() const override { return std::int32_t(children.size()); }
    SceneNode& GetChildNode(std::int32_t i) const override { return *children[std::size_t(i)]; }
    std::uint32_t GetHandle() const override { return handle; }
    bool HasControl() const override { return hasControl; }
    ControlValues GetControl() const override;
    void InstallControl() override;
    void SetControl(const ControlValues& values) override;
    void ClearControlMaster() override;

    /// Where the node is shown at `tick`: where its recording has it, or its own controller.
    Matrix3 ShownAt(TimeValue tick) const;
    /// A move by hand, which a locked node doesn't follow.
    void Move(const Matrix3& place);
    /// The object goes; the node stays.
    void DeleteObject() { objectClass_ = ObjectClass::None; }

    std::string name;
    Matrix3 own;  // what the controller below ours answers, in world space
    std::map<std::int32_t, std::vector<float>> floats;
    std::map<std::int32_t, std::int32_t> ints;
    std::map<std::int32_t, SceneNode*> nodes;
    std::vector<PlainNode*> children;
    std::shared_ptr<CarRig> rig;  // of a master; instances share it
    std::uint32_t handle = 0;
    bool hasControl = false;
    bool refusesMasters = false;  // as if the master depended on this node
    ControlValues control;

 private:
    PlainScene& scene_;
    ObjectClass objectClass_;
};

/// Owns its nodes in the order in which they were added; all of them stay where they are.
class PlainScene {
 public:
    PlainScene();

    /// A node below `parent`, or below the root, with an object of this class and the parameters of a new one.
    PlainNode& Add(std::string_view name, ObjectClass objectClass, const Point3& place, PlainNode* parent = nullptr);
    /// A master with its rig, and half sizes of its box.
    PlainNode& AddMaster(std::string_view name, const Point3& place, const Point3& boxSize);
    /// A second node with the object, the parameters, the place and the control of another.
    PlainNode& Copy(const PlainNode& node);

    PlainNode* Find(std::string_view name);
    PlainNode& Root() { return nodes_.front(); }
    std::deque<PlainNode>& Nodes() { return nodes_; }

    int changes = 0;               // to controls
    std::vector<std::string> log;  // one line a change: "install Wheel", "set Wheel", "clear Wheel"

 private:
    std::deque<PlainNode> nodes_;
};

/// Assembles with the box that the master's parameters tell.
struct Assembled {
    AssemblyResult result;
    std::string problem;
};
Assembled AssembleIn(PlainScene& scene, PlainNode& master, SceneNode* startNode = nullptr);

/// The identity, moved to `place`.
Matrix3 At(const Point3& place);

}  // namespace tavrik::test
