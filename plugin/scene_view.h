#pragma once
/// The host's scene as the rig's rules see it.

#include <iparamb2.h>
#include <max.h>

#include <memory>
#include <unordered_map>

#include "rig/scene_node.h"

namespace tavrik_plugin {

class SceneView;

/// What an object is to a car; `None` for no object.
tavrik::ObjectClass ClassOf(Object* object);
/// The car of a master object; null for every other one, and for none.
tavrik::CarRig* RigOf(Object* object);
/// The one parameter block of an object or a control; null where there is none.
IParamBlock2* BlockOf(Animatable* thing);
/// The node's transform controller if it is one of ours, else null.
Control* OurControl(INode& node);

/// An object by itself: its class and its plain parameters. It has no place, no links and no control.
class ObjectView : public tavrik::SceneNode {
 public:
    explicit ObjectView(Object* object) : object_(object) {}

    tavrik::ObjectClass Class() const override { return ClassOf(TheObject()); }
    float GetFloat(std::int32_t param, std::int32_t entry) const override;
    std::int32_t GetInt(std::int32_t param) const override;
    tavrik::CarRig* Rig() const override { return RigOf(TheObject()); }

    SceneNode* GetNode(std::int32_t) const override { return nullptr; }
    tavrik::Matrix3 GetObjectTM() const override { return tavrik::IdentityMatrix3(); }
    std::int32_t NumberOfChildren() const override { return 0; }
    SceneNode& GetChildNode(std::int32_t) const override;  // must not be called
    std::uint32_t GetHandle() const override { return 0; }
    bool HasControl() const override { return false; }
    tavrik::ControlValues GetControl() const override { return {}; }
    void InstallControl() override {}
    void SetControl(const tavrik::ControlValues&) override {}
    void ClearControlMaster() override {}

 protected:
    /// As the node has it now.
    virtual Object* TheObject() const { return object_; }

 private:
    Object* object_;
};

/// One node. Nothing is remembered: each question goes to the host.
class NodeView final : public ObjectView {
 public:
    NodeView(SceneView& view, INode& node) : ObjectView(nullptr), view_(view), node_(node) {}

    SceneNode* GetNode(std::int32_t param) const override;
    tavrik::Matrix3 GetObjectTM() const override;
    std::int32_t NumberOfChildren() const override { return node_.NumberOfChildren(); }
    SceneNode& GetChildNode(std::int32_t i) const override;
    std::uint32_t GetHandle() const override { return node_.GetHandle(); }
    bool HasControl() const override { return OurControl(node_) != nullptr; }
    tavrik::ControlValues GetControl() const override;
    void InstallControl() override;
    void SetControl(const tavrik::ControlValues& values) override;
    void ClearControlMaster() override;

    INode& Host() const { return node_; }

 private:
    Object* TheObject() const override { return node_.GetObjectRef(); }

    SceneView& view_;
    INode& node_;
};

/// A look at the whole scene, good for as long as no node is deleted. Each node is one adapter, made when it is first asked
/// for.
class SceneView {
 public:
    SceneView() = default;
    SceneView(const SceneView&) = delete;
    SceneView& operator=(const SceneView&) = delete;

    /// Of the scene that is open in the host.
    tavrik::SceneNode& Root() { return *Of(GetCOREInterface()->GetRootNode()); }
    /// @return null for null
    NodeView* Of(INode* node);
    /// @param node  one that this view has given out
    static INode& HostNode(const tavrik::SceneNode& node) { return static_cast<const NodeView&>(node).Host(); }

 private:
    std::unordered_map<INode*, std::unique_ptr<NodeView>> nodes_;
};

}  // namespace tavrik_plugin
