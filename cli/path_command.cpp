#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/follow_words.h"
#include "cli/opened_scene.h"
#include "cli/progress.h"
#include "host/rig_objects.h"
#include "host/road_laying.h"
#include "host/scene_rig.h"
#include "host/sdk/line_shape.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"
#include "rig/parameter_tables.h"

namespace tavrik_cli {
namespace {

/// All that cars of the scene drive on, as one mesh.
tavrik::TriangleMesh GroundsOf() {
    std::vector<INode*> nodes;
    tavrik::TriangleMesh grounds;
    for (INode* master : tavrik_host::NodesOf(tavrik::ObjectClass::Tavrik)) {
        INode* node = tavrik_host::NodeParam(*master, tavrik::MasterParam::Surface_Node);
        if (node == nullptr || std::find(nodes.begin(), nodes.end(), node) != nodes.end()) continue;
        nodes.push_back(node);
        const tavrik::TriangleMesh mesh = tavrik_host::ReadMesh(*node);
        const auto first = std::uint32_t(grounds.verts.size());
        grounds.verts.insert(grounds.verts.end(), mesh.verts.begin(), mesh.verts.end());
        for (const tavrik::MeshFace& face : mesh.faces) {
            grounds.faces.push_back({{face.v[0] + first, face.v[1] + first, face.v[2] + first}});
        }
    }
    return grounds;
}

bool IsTaken(const std::string& name) {
    for (INode* node : tavrik_host::AllNodes()) {
        if (tavrik_host::ToUtf8(node->GetName()) == name) return true;
    }
    return false;
}

/// Lays the line as a node of the scene. @return how many points it has there
std::size_t AddLine(const tavrik::PathOrder& order, const tavrik::RoadLine& line, std::string& problem) {
    if (IsTaken(order.name)) {
        problem = fmt::format("{}: there is a node \"{}\" in it already; call the line otherwise with --name.",
                              order.scene.string(), order.name);
        return 0;
    }
    const tavrik::TriangleMesh ground = GroundsOf();
    if (ground.faces.empty()) {
        problem = fmt::format("{}: no car in it has a ground that a line could lie on.", order.scene.string());
        return 0;
    }
    tavrik::SurfaceTree surface;
    std::vector<tavrik::Point3> points;
    if (!surface.Build(ground, {}, problem)) {
        problem = fmt::format("{}: {}.", order.scene.string(), problem);
        return 0;
    }
    if (!LayOnGround(surface, line, tavrik_host::MetresPerUnit(), points, problem)) {
        problem = fmt::format("{}: {} of {}; move it with --at, or give the car a larger ground.", order.line.string(), problem,
                              order.scene.string());
        return 0;
    }
    auto* const shape = new tavrik_host::LineShape;
    tavrik_host::ShapeLine& its = shape->lines.emplace_back();
    its.closed = line.closed;
    for (const tavrik::Point3& p : points) its.points.emplace_back(p.x, p.y, p.z);
    tavrik_host::CreateNode(shape, tavrik_host::FromUtf8(order.name));
    return points.size();
}

bool Import(const tavrik::PathOrder& order, tavrik::Progress& progress, tavrik::RoadLine& line, std::size_t& points,
            std::string& problem) {
    const std::filesystem::path& out = order.out.empty() ? order.scene : order.out;
    tavrik_host::SceneDocument document;
    progress.Begin("Reading scene");
    if (!tavrik::CheckWritable({out}, problem) || !ReadLine(order.line, order.wishes, line, problem) ||
        !OpenScene(order.scene, document, problem)) {
        return false;
    }
    progress.Begin("Laying line");
    points = AddLine(order, line, problem);
    if (points == 0) return false;
    progress.Begin("Writing");
    return SaveScene(order.scene, out, document, {}, problem);
}

}  // namespace
}  // namespace tavrik_cli

int tavrik::RunPath(const PathOrder& order) {
    tavrik_cli::SceneDesktop desktop;
    Progress progress;
    RoadLine line;
    std::size_t points = 0;
    std::string problem;
    const bool done = tavrik_cli::Import(order, progress, line, points, problem);
    progress.Clear();
    if (!done) return tavrik_cli::Fail(problem);
    const std::string out = (order.out.empty() ? order.scene : order.out).string();
    fmt::print("Line      {}: {}, {:.1f} m, {} points on the ground\n", order.name, line.closed ? "closed" : "open",
               LengthOf(line), points);
    fmt::print("Start     {} puts a car at its beginning\n", StartOf(line));
    fmt::print("Written   {}\n", out);
    fmt::print("Drive it  tavrik drive {} --follow \"{}\"{}\n", out, order.name, line.closed ? " --laps 1" : "");
    return kExitOk;
}
