#include "host/render/render_camera.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "host/rig_objects.h"
#include "host/scene_json.h"
#include "host/sdk/iparamb2.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"
#include "rig/parameter_tables.h"

namespace tavrik_host {
namespace {

using tavrik::ObjectClass;

constexpr float kDegree = 0.017453293f;

/// How far the wheels reach out from the chassis.
float CarRadius(INode& master, INode& chassis) {
    float radius = 0.0f;
    const Point3 middle = chassis.GetNodeTM(0).GetTrans();
    for (INode* const wheel : NodesOf(ObjectClass::Wheel)) {
        if (MasterOf(*wheel) != &master) continue;
        const float reach = Length(wheel->GetNodeTM(0).GetTrans() - middle);
        radius = std::max(radius, reach + FloatParam(*wheel, tavrik::WheelParam::Radius));
    }
    return radius;
}

/// Axes that look along a direction with Z up.
void LookAlong(const Point3& direction, RenderCamera& camera) {
    camera.ahead = Normalize(direction);
    const Point3 side = CrossProd(camera.ahead, Point3(0, 0, 1));
    camera.right = LengthSquared(side) > 1e-8f ? Normalize(side) : Point3(1, 0, 0);
    camera.up = CrossProd(camera.right, camera.ahead);
}

/// Where a car heads at a tick, seen from above: of its last second, most of all of the end of it. So a camera behind it swings
/// round gently when the car does so at once.
Point3 SteadyHeading(INode& chassis, TimeValue tick) {
    constexpr int kSteps = 24;
    constexpr TimeValue kStep = 240;  // a twentieth of a second
    constexpr float kMemory = 7.0f;   // steps
    Point3 sum(0, 0, 0);
    for (int i = 0; i < kSteps; ++i) {
        Point3 ahead = chassis.GetNodeTM(tick - i * kStep).GetRow(1);
        ahead.z = 0.0f;
        sum += Normalize(ahead) * std::exp(-float(i) / kMemory);
    }
    sum.z = 0.0f;
    return LengthSquared(sum) > 1e-6f ? Normalize(sum) : Point3(0, 1, 0);
}

/// The car's height without the shaking of its springs.
float SteadyHeight(INode& chassis, TimeValue tick) {
    constexpr int kReach = 8;
    constexpr TimeValue kStep = 320;
    float sum = 0.0f, weights = 0.0f;
    for (int i = -kReach; i <= kReach; ++i) {
        const float weight = 1.0f - std::abs(float(i)) / float(kReach + 1);
        sum += chassis.GetNodeTM(tick + i * kStep).GetTrans().z * weight;
        weights += weight;
    }
    return sum / weights;
}

/// A camera never dives into the ground that it flies over.
void KeepAbove(const RayFrame& frame, float clearance, Point3& eye) {
    constexpr float kSearch = 50.0f;  // clearances
    RayHit below;
    if (!frame.Meets({eye + Point3(0, 0, kSearch * clearance), Point3(0, 0, -1), 0.0f, 2 * kSearch * clearance}, below)) return;
    eye.z = std::max(eye.z, below.point.z + clearance);
}

Box3 BoundOf(const RayFrame& frame, const RenderModel& model) {
    Box3 bound;
    for (std::size_t i = 0; i < model.things.size(); ++i) {
        for (const RenderPart& part : model.shapes[model.things[i].shape].parts) {
            for (const Point3& p : part.points) bound += p * frame.PlaceOf(i);
        }
    }
    return bound;
}

float LensOf(const Json& json, const char* key, float otherwise) {
    const Json* const value = Find(json, key);
    return value != nullptr && value->is_number() && *value > 0 ? value->get<float>() : otherwise;
}

}  // namespace

Ray RenderCamera::Through(float x, float y) const {
    const float across = (2.0f * x - 1.0f) * halfHeight * aspect, above = (1.0f - 2.0f * y) * halfHeight;
    if (isFlat) return {eye + right * across + up * above, ahead};
    return {eye, Normalize(ahead + right * across + up * above)};
}

INode* ChassisOf(INode& master) {
    INode* nearest = nullptr;
    float best = 0.0f;
    for (INode* const chassis : NodesOf(ObjectClass::Chassis)) {
        INode* const owner = MasterOf(*chassis);
        if (owner == &master) return chassis;
        const float distance = Length(chassis->GetNodeTM(0).GetTrans() - master.GetNodeTM(0).GetTrans());
        if (owner != nullptr || (nearest != nullptr && distance >= best)) continue;
        nearest = chassis;
        best = distance;
    }
    return nearest;
}

bool CameraMan::Prepare(const SceneDocument& document, const CameraWish& wish, INode* master, float aspect,
                        std::string& problem) {
    wish_ = wish;
    unitsPerMetre_ = float(1.0 / MetresPerUnit());
    chassis_ = master == nullptr ? nullptr : ChassisOf(*master);
    carRadius_ = 2.0f * unitsPerMetre_;
    if (chassis_ != nullptr) {
        if (const float radius = CarRadius(*master, *chassis_); radius > 0.0f) carRadius_ = radius;
    }
    lens_ = {};
    lens_.aspect = aspect;
    lens_.halfHeight = std::tan(0.5f * wish.lens * kDegree);
    if (wish.kind == CameraWish::Kind::Node) return PrepareNode(document, problem);
    return true;
}

bool CameraMan::PrepareNode(const SceneDocument& document, std::string& problem) {
    std::string names;
    for (const auto& [handle, parts] : document.nodeParts) {
        const Json* const number = Find(parts, "camera");
        INode* const node = GetCOREInterface()->GetINodeByHandle(handle);
        const Json* const cameras = Find(document.json, "cameras");
        if (number == nullptr || node == nullptr || cameras == nullptr || !number->is_number_integer() || *number < 0 ||
            number->get<std::size_t>() >= cameras->size()) {
            continue;
        }
        const std::string name = ToUtf8(node->GetName());
        names += fmt::format("{}\"{}\"", names.empty() ? "" : ", ", name);
        if (name != wish_.node || node_ != nullptr) continue;
        node_ = node;
        const Json& camera = (*cameras)[number->get<std::size_t>()];
        if (const Json* flat = Find(camera, "orthographic"); flat != nullptr) {
            lens_.isFlat = true;
            lens_.halfHeight = LensOf(*flat, "ymag", 1.0f) * unitsPerMetre_;
        } else if (const Json* lens = Find(camera, "perspective"); lens != nullptr) {
            lens_.halfHeight = std::tan(0.5f * std::min(LensOf(*lens, "yfov", 0.7f), 3.0f));
        }
    }
    if (node_ != nullptr) return true;
    problem = fmt::format("there is no camera \"{}\" in it; there is {}.", wish_.node,
                          names.empty() ? "follow and top" : "follow, top, " + names);
    return false;
}

RenderCamera CameraMan::At(TimeValue tick, const RayFrame& frame, const RenderModel& model) const {
    if (node_ != nullptr) {
        RenderCamera camera = lens_;
        const Matrix3 place = node_->GetNodeTM(tick);
        // A file's camera looks down its Z axis with Y up; here that is along Y with Z up.
        camera.eye = place.GetTrans();
        camera.ahead = Normalize(place.GetRow(1));
        camera.right = Normalize(CrossProd(camera.ahead, place.GetRow(2)));
        camera.up = CrossProd(camera.right, camera.ahead);
        return camera;
    }
    if (chassis_ != nullptr && wish_.kind == CameraWish::Kind::Follow) return FollowAt(tick, frame);
    return TopAt(tick, frame, model);
}

RenderCamera CameraMan::FollowAt(TimeValue tick, const RayFrame& frame) const {
    RenderCamera camera = lens_;
    Point3 middle = chassis_->GetNodeTM(tick).GetTrans();
    Point3 ahead = SteadyHeading(*chassis_, tick);
    if (wish_.eye) {  // somebody looks at something close: there the camera turns with the car
        ahead = chassis_->GetNodeTM(tick).GetRow(1);
        ahead.z = 0.0f;
        ahead = LengthSquared(ahead) > 1e-6f ? Normalize(ahead) : Point3(0, 1, 0);
    } else {
        middle.z = SteadyHeight(*chassis_, tick);
    }
    const Point3 right = CrossProd(ahead, Point3(0, 0, 1)), up(0, 0, 1);
    const auto fromCar = [&](const Point3& metres) {
        return middle + (right * metres.x + ahead * metres.y + up * metres.z) * unitsPerMetre_;
    };
    // In radii of the car, so that a lorry fits as a kart does.
    camera.eye = wish_.eye ? fromCar(*wish_.eye) : middle + (right * 0.8f + ahead * -3.5f + up * 1.0f) * carRadius_;
    KeepAbove(frame, wish_.eye ? 0.05f * unitsPerMetre_ : 0.4f * carRadius_, camera.eye);
    const Point3 target = wish_.look ? fromCar(*wish_.look) : middle + (ahead * 0.5f + up * 0.12f) * carRadius_;
    LookAlong(target - camera.eye, camera);
    return camera;
}

RenderCamera CameraMan::TopAt(TimeValue tick, const RayFrame& frame, const RenderModel& model) const {
    RenderCamera camera = lens_;
    camera.isFlat = true;
    camera.ahead = Point3(0, 0, -1);
    camera.right = Point3(1, 0, 0);
    camera.up = Point3(0, 1, 0);
    const Box3 bound = BoundOf(frame, model);
    if (bound.IsEmpty() != 0) return camera;
    camera.eye = chassis_ != nullptr ? chassis_->GetNodeTM(tick).GetTrans() : bound.Center();
    camera.eye.z = bound.Max().z + unitsPerMetre_;
    const Point3 size = bound.Width();
    camera.halfHeight = chassis_ != nullptr ? 0.5f * wish_.span * unitsPerMetre_
                                            : 0.52f * std::max({size.y, size.x / camera.aspect, 1e-3f * unitsPerMetre_});
    return camera;
}

}  // namespace tavrik_host
