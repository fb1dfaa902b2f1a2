#include "host/ground_node.h"

#include <fmt/format.h>

#include <vector>

#include "host/scene_rig.h"
#include "host/shape.h"

namespace tavrik_host {

INode* AddGroundNode(SceneDocument& document, const tavrik::TriangleMesh& ground, const std::string& name,
                     std::string& problem) {
    const tavrik::ShapePart part = GroundShape(ground);
    INode* node = AddMeshNode(document, {&part, 1}, "ground");
    if (node == nullptr) problem = fmt::format("{}: it has a coordinate that is not finite.", name);
    return node;
}

bool BuildGround(INode& node, const std::string& name, tavrik::SurfaceTree& surface, std::string& problem) {
    if (surface.Build(ReadMesh(node), {}, problem)) return true;
    problem = fmt::format("{}: {}.", name, problem);
    return false;
}

bool FindStart(const tavrik::SurfaceTree& surface, const std::string& name, const tavrik::CarPlan& plan,
               const std::optional<tavrik::CarSpot>& spot, tavrik::DMatrix3& frame, std::string& problem) {
    std::vector<tavrik::DPoint3> wheels;
    for (const tavrik::PlannedUnit& unit : plan.units) wheels.push_back(RestFrame(unit).row[3]);
    if (StandOnGround(surface, spot ? *spot : MiddleOfGround(surface), wheels, plan.standingHeight, frame, problem))
        return true;
    problem = fmt::format("{}: {}.", name, problem);
    return false;
}

}  // namespace tavrik_host
