#include "host/rig_scene.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "host/car_shape.h"
#include "host/rig_objects.h"
#include "host/wide_text.h"
#include "rig/parameter_tables.h"
#include "rig/stock_car.h"

namespace tavrik_host {
namespace {

using tavrik::DMatrix3;
using tavrik::DPoint3;
using tavrik::MasterParam;
using tavrik::ObjectClass;

constexpr double kBoxMargin = 1.1;  // parts on the faces of a box are outside of it

/// Half the size of a box about the chassis that holds the origins of all parts.
DPoint3 BoxAround(const tavrik::CarPlan& plan) {
    DPoint3 half{double(plan.chassis.Width), double(plan.chassis.Length), double(plan.chassis.Height)};
    const auto include = [&half](const DPoint3& p) {
        half = {std::max(half.x, std::abs(p.x)), std::max(half.y, std::abs(p.y)), std::max(half.z, std::abs(p.z))};
    };
    for (const tavrik::PlannedUnit& unit : plan.units) include(RestFrame(unit).row[3]);
    for (const tavrik::PlannedSphere& sphere : plan.spheres) include(sphere.centre);
    for (const tavrik::PlannedCoupling& coupling : plan.couplings) include(coupling.place);
    return half * kBoxMargin;
}

class MasterParams final : public tavrik::ParamBlock {
 public:
    explicit MasterParams(INode& master) : master_(master) {}
    float GetFloat(std::int32_t id) const override { return FloatParam(master_, id); }
    std::int32_t GetInt(std::int32_t id) const override { return IntParam(master_, id); }
    void SetFloat(std::int32_t id, float value) override { SetParam(master_, id, value); }
    void SetInt(std::int32_t id, std::int32_t value) override { SetParam(master_, id, value); }

 private:
    INode& master_;
};

Matrix3 At(const DMatrix3& inChassis, const DMatrix3& frame) { return SceneFrame(Compose(inChassis, frame)); }

void AddMeshBelow(SceneDocument& document, const std::vector<tavrik::ShapePart>& parts, const std::string& name,
                  INode& parent) {
    if (!parts.empty()) AddMeshNode(document, parts, name, &parent);
}

void AddUnits(SceneDocument& document, const tavrik::CarPlan& plan, const CarDress& dress, const DMatrix3& frame,
              RigNodes& nodes) {
    for (std::size_t i = 0; i < plan.units.size(); ++i) {
        const tavrik::PlannedUnit& unit = plan.units[i];
        const Matrix3 rest = At(RestFrame(unit), frame);
        const std::string label = i < dress.labels.size() ? dress.labels[i] : "";
        const std::wstring wheelName = FromUtf8("Wheel " + label), suspensionName = FromUtf8("Suspension " + label);
        INode& wheel = AddRigNode(ObjectClass::Wheel, rest, label.empty() ? nullptr : wheelName.c_str());
        SetValues(wheel, unit.wheel);
        INode& suspension = AddRigNode(ObjectClass::Suspension, rest, label.empty() ? nullptr : suspensionName.c_str());
        SetValues(suspension, unit.suspension);
        if (i < dress.wheels.size()) AddMeshBelow(document, dress.wheels[i], "tyre", wheel);
        nodes.wheels.push_back(&wheel);
        nodes.suspensions.push_back(&suspension);
    }
}

void AddPieces(SceneDocument& document, const CarDress& dress, const RigNodes& nodes) {
    for (const DressPiece& piece : dress.pieces) {
        INode& parent = piece.wheel < 0 ? *nodes.chassis : *nodes.wheels[std::size_t(piece.wheel)];
        AddMeshBelow(document, piece.shapes, piece.name, parent);
    }
}

void AddSpheres(const tavrik::CarPlan& plan, const DMatrix3& frame, RigNodes& nodes) {
    for (const tavrik::PlannedSphere& sphere : plan.spheres) {
        DMatrix3 place = tavrik::IdentityDMatrix3();
        place.row[3] = sphere.centre;
        INode& node = AddRigNode(ObjectClass::Sphere, At(place, frame));
        SetValues(node, sphere.values);
        nodes.spheres.push_back(&node);
    }
}

void AddCouplings(const tavrik::CarPlan& plan, const DMatrix3& frame, RigNodes& nodes) {
    for (const tavrik::PlannedCoupling& coupling : plan.couplings) {
        DMatrix3 place = tavrik::IdentityDMatrix3();
        place.row[3] = coupling.place;
        INode& node = AddRigNode(coupling.isHitch ? ObjectClass::Hitch : ObjectClass::Tongue, At(place, frame));
        if (coupling.isHitch) {
            SetParam(node, tavrik::HitchParam::Radius, coupling.Radius);
            SetParam(node, tavrik::HitchParam::Ruggedness, coupling.Ruggedness);
        } else {
            SetParam(node, tavrik::TongueParam::Radius, coupling.Radius);
        }
        nodes.couplings.push_back(&node);
    }
}

}  // namespace

RigNodes AddPlannedCar(SceneDocument& document, const tavrik::CarPlan& plan, const CarDress& dress, const DMatrix3& frame,
                       INode* surface) {
    RigNodes nodes;
    const Matrix3 place = SceneFrame(frame);
    nodes.master = &AddRigNode(ObjectClass::Tavrik, place, FromUtf8(dress.name).c_str());
    const DPoint3 box = BoxAround(plan);
    SetParam(*nodes.master, MasterParam::Dummy_Size, float(box.x), 0);
    SetParam(*nodes.master, MasterParam::Dummy_Size, float(box.y), 1);
    SetParam(*nodes.master, MasterParam::Dummy_Size, float(box.z), 2);
    MasterParams params(*nodes.master);
    WriteDriveSettings(dress.settings, params);

    nodes.chassis = &AddRigNode(ObjectClass::Chassis, place);
    SetValues(*nodes.chassis, plan.chassis);
    AddMeshBelow(document, dress.body, "body", *nodes.chassis);
    AddUnits(document, plan, dress, frame, nodes);
    AddPieces(document, dress, nodes);
    AddSpheres(plan, frame, nodes);
    AddCouplings(plan, frame, nodes);

    nodes.start = &AddRigNode(ObjectClass::Start, place);
    SetParam(*nodes.start, tavrik::StartParam::Size, plan.chassis.Length);
    SetParam(*nodes.master, MasterParam::Start_Node, nodes.start);
    SetParam(*nodes.master, MasterParam::Surface_Node, surface);
    return nodes;
}

CarDress StockCarDress() {
    // Shapes are cut to the measure of a rig, and that of a whole car is too large for the stack.
    const auto rig = std::make_unique<tavrik::CarRig>();
    tavrik::MakeStockCar(*rig, tavrik::IdentityDMatrix3());
    CarDress dress;
    dress.name = "Stock car";
    dress.settings = tavrik::StockCarSettings();
    dress.body = BodyShape(*rig).parts;
    for (int i = 0; i < rig->unitCount; ++i) dress.wheels.push_back(WheelShape(rig->units[i]).parts);
    return dress;
}

}  // namespace tavrik_host
