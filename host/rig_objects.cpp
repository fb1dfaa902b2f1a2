#include "host/rig_objects.h"

#include <cassert>

#include "host/sdk/iparamb2.h"
#include "host/sdk/standin.h"
#include "rig/parameter_tables.h"

namespace tavrik_host {
namespace {

using tavrik::ObjectClass;

constexpr BlockID kBlock = BlockID(tavrik::kBlockId);

IParamBlock2& BlockOf(INode& node) {
    assert(node.GetObjectRef() != nullptr);
    IParamBlock2* block = node.GetObjectRef()->GetParamBlockByID(kBlock);
    assert(block != nullptr);
    return *block;
}

}  // namespace

ObjectClass ClassOf(INode& node) {
    Object* object = node.GetObjectRef();
    if (object == nullptr) return ObjectClass::None;
    const Class_ID id = object->ClassID();
    return tavrik::ObjectClassOf({id.PartA(), id.PartB()});
}

bool HasTavrikControl(INode& node) {
    Control* control = node.GetTMController();
    if (control == nullptr) return false;
    const tavrik::ClassIdentity* identity = tavrik::FindClass("TavrikControl");
    return control->ClassID() == Class_ID(identity->id.a, identity->id.b);
}

INode* MasterOf(INode& node) {
    if (!HasTavrikControl(node)) return nullptr;
    return node.GetTMController()->GetParamBlockByID(kBlock)->GetINode(tavrik::ControlParam::Tavrik_Node);
}

std::vector<INode*> NodesOf(ObjectClass objectClass) {
    std::vector<INode*> nodes;
    for (INode* node : AllNodes()) {
        if (ClassOf(*node) == objectClass) nodes.push_back(node);
    }
    return nodes;
}

INode& AddRigNode(ObjectClass objectClass, const Matrix3& place, const wchar_t* name, INode* parent) {
    const tavrik::ClassIdentity* identity = tavrik::FindClass(objectClass);
    assert(identity != nullptr);
    auto* object = static_cast<Object*>(CreateInstance(HELPER_CLASS_ID, Class_ID(identity->id.a, identity->id.b)));
    assert(object != nullptr);
    INode* node = GetCOREInterface()->CreateObjectNode(object);
    if (name != nullptr) node->SetName(name);
    if (parent != nullptr) parent->AttachChild(node);
    Matrix3 tm = place;
    node->SetNodeTM(0, tm);
    return *node;
}

void SetParam(INode& node, std::int32_t param, float value, int entry) {
    [[maybe_unused]] const BOOL set = BlockOf(node).SetValue(ParamID(param), 0, value, entry);
    assert(set != FALSE);
}
void SetParam(INode& node, std::int32_t param, std::int32_t value) {
    [[maybe_unused]] const BOOL set = BlockOf(node).SetValue(ParamID(param), 0, value);
    assert(set != FALSE);
}
void SetParam(INode& node, std::int32_t param, INode* value) { BlockOf(node).SetValue(ParamID(param), 0, value); }

float FloatParam(INode& node, std::int32_t param, int entry) { return BlockOf(node).GetFloat(ParamID(param), 0, entry); }
std::int32_t IntParam(INode& node, std::int32_t param) { return BlockOf(node).GetInt(ParamID(param)); }
INode* NodeParam(INode& node, std::int32_t param) { return BlockOf(node).GetINode(ParamID(param)); }

void SetValues(INode& node, const tavrik::ChassisValues& values) {
    using tavrik::ChassisParam;
    SetParam(node, ChassisParam::Width, values.Width);
    SetParam(node, ChassisParam::Length, values.Length);
    SetParam(node, ChassisParam::Height, values.Height);
    SetParam(node, ChassisParam::Mass, values.Mass);
    SetParam(node, ChassisParam::Solidity, values.Solidity);
    SetParam(node, ChassisParam::Rotation_Center_Shift, values.Rotation_Center_Shift);
}

void SetValues(INode& node, const tavrik::SuspensionValues& values) {
    using tavrik::SuspensionParam;
    SetParam(node, SuspensionParam::Suspension_Type, values.Suspension_Type);
    SetParam(node, SuspensionParam::Length, values.Length);
    SetParam(node, SuspensionParam::Wheel_Shift, values.Wheel_Shift);
    SetParam(node, SuspensionParam::Ruggedness_Factor, values.Ruggedness_Factor);
    SetParam(node, SuspensionParam::Ruggedness, values.Ruggedness);
    SetParam(node, SuspensionParam::Damping, values.Damping);
    SetParam(node, SuspensionParam::Shift, values.Shift);
    SetParam(node, SuspensionParam::Buffer_Ruggedness, values.Buffer_Ruggedness);
    SetParam(node, SuspensionParam::Top_Stop, values.Top_Stop);
    SetParam(node, SuspensionParam::Bottom_Stop, values.Bottom_Stop);
    SetParam(node, SuspensionParam::Drive, values.Drive);
    SetParam(node, SuspensionParam::Steering, values.Steering);
    SetParam(node, SuspensionParam::Handbrake, values.Handbrake);
}

void SetValues(INode& node, const tavrik::WheelValues& values) {
    using tavrik::WheelParam;
    SetParam(node, WheelParam::Radius, values.Radius);
    SetParam(node, WheelParam::Width, values.Width);
    SetParam(node, WheelParam::Mass, values.Mass);
    SetParam(node, WheelParam::Ruggedness, values.Ruggedness);
    SetParam(node, WheelParam::Grip, values.Grip);
}

void SetValues(INode& node, const tavrik::SphereValues& values) {
    using tavrik::SphereParam;
    SetParam(node, SphereParam::Radius, values.Radius);
    SetParam(node, SphereParam::Ruggedness, values.Ruggedness);
    SetParam(node, SphereParam::Grip, values.Grip);
}

Matrix3 SceneFrame(const tavrik::DMatrix3& frame) {
    Matrix3 result(TRUE);
    for (int i = 0; i < 4; ++i) {
        const tavrik::DPoint3& row = frame.row[i];
        result.SetRow(i, Point3(float(row.x), float(row.y), float(row.z)));
    }
    return result;
}

tavrik::DMatrix3 RigFrame(const Matrix3& frame) {
    tavrik::DMatrix3 result;
    for (int i = 0; i < 4; ++i) {
        const Point3 row = frame.GetRow(i);
        result.row[i] = {double(row.x), double(row.y), double(row.z)};
    }
    return result;
}

}  // namespace tavrik_host
