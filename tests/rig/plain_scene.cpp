#include "tests/rig/plain_scene.h"

#include <cassert>

#include "rig/class_identities.h"
#include "rig/node_values.h"
#include "rig/parameter_tables.h"
#include "rig/playback_rule.h"

namespace tavrik::test {

PlainNode::PlainNode(PlainScene& scene, std::string nodeName, ObjectClass objectClass, const Matrix3& place)
    : name(std::move(nodeName)), own(place), scene_(scene), objectClass_(objectClass) {
    const ClassIdentity* const identity = FindClass(objectClass);
    if (identity == nullptr) return;
    for (const ParamRow& row : FindParamTable(identity->objectClass)->rows) {
        if (row.type == ParamType::Int || row.type == ParamType::Bool) ints[row.id] = std::int32_t(row.defaultValue);
        if (row.type == ParamType::Float || row.type == ParamType::World || row.type == ParamType::WorldTable) {
            floats[row.id].assign(std::size_t(row.entries), float(row.defaultValue));
        }
    }
}

float PlainNode::GetFloat(std::int32_t param, std::int32_t entry) const { return floats.at(param).at(std::size_t(entry)); }
std::int32_t PlainNode::GetInt(std::int32_t param) const { return ints.at(param); }
SceneNode* PlainNode::GetNode(std::int32_t param) const {
    const auto found = nodes.find(param);
    return found != nodes.end() ? found->second : nullptr;
}
Matrix3 PlainNode::GetObjectTM() const { return ShownAt(0); }

Matrix3 PlainNode::ShownAt(TimeValue tick) const {
    const CarRig* const followed = hasControl ? FollowedRig(control) : nullptr;
    return followed != nullptr ? AnswerTM(*followed, control.Object_Type, control.Axle_Num, tick) : own;
}

void PlainNode::Move(const Matrix3& place) {
    if (!hasControl || FollowedRig(control) == nullptr) own = place;
}

ControlValues PlainNode::GetControl() const {
    assert(hasControl);
    return control;
}

void PlainNode::InstallControl() {
    assert(!hasControl);
    hasControl = true;
    scene_.log.push_back("install " + name);
    ++scene_.changes;
}

void PlainNode::SetControl(const ControlValues& values) {
    assert(hasControl);
    control = values;
    if (refusesMasters) control.Tavrik_Node = nullptr;
    scene_.log.push_back("set " + name);
    ++scene_.changes;
}

void PlainNode::ClearControlMaster() {
    assert(hasControl);
    control.Tavrik_Node = nullptr;
    scene_.log.push_back("clear " + name);
    ++scene_.changes;
}

PlainScene::PlainScene() { nodes_.emplace_back(*this, "Root", ObjectClass::None, IdentityMatrix3()); }

PlainNode& PlainScene::Add(std::string_view name, ObjectClass objectClass, const Point3& place, PlainNode* parent) {
    PlainNode& node = nodes_.emplace_back(*this, std::string(name), objectClass, At(place));
    node.handle = std::uint32_t(nodes_.size() * 7);
    (parent != nullptr ? *parent : Root()).children.push_back(&node);
    return node;
}

PlainNode& PlainScene::AddMaster(std::string_view name, const Point3& place, const Point3& boxSize) {
    PlainNode& node = Add(name, ObjectClass::Tavrik, place);
    node.rig = std::make_unique<CarRig>();
    node.floats[MasterParam::Dummy_Size] = {boxSize.x, boxSize.y, boxSize.z};
    return node;
}

PlainNode& PlainScene::Copy(const PlainNode& node) {
    PlainNode& copy = Add(node.name + " copy", node.Class(), {0, 0, 0});
    copy.own = node.own;
    copy.floats = node.floats;
    copy.ints = node.ints;
    copy.nodes = node.nodes;
    copy.hasControl = node.hasControl;
    copy.control = node.control;
    return copy;
}

PlainNode* PlainScene::Find(std::string_view name) {
    for (PlainNode& node : nodes_) {
        if (node.name == name) return &node;
    }
    return nullptr;
}

Assembled AssembleIn(PlainScene& scene, PlainNode& master, SceneNode* startNode) {
    Assembled answer;
    answer.result = Assemble(*master.rig, scene.Root(), master, ReadBoxSize(master), startNode, answer.problem);
    return answer;
}

Matrix3 At(const Point3& place) {
    Matrix3 m = IdentityMatrix3();
    m.row[3] = place;
    return m;
}

}  // namespace tavrik::test
