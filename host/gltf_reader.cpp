#include "host/gltf_reader.h"

#include <fmt/format.h>

#include <cstdint>
#include <vector>

#include "host/gltf_model.h"

namespace tavrik {
namespace {

bool PassOverImage(tinygltf::Image*, const int, std::string*, std::string*, int, int, const unsigned char*, int, void*) {
    return true;
}

/// Walks the nodes of a scene and gathers their triangles.
class SceneGatherer {
 public:
    SceneGatherer(const tinygltf::Model& model, std::size_t mostTriangles, FileMesh& mesh, std::string& problem)
        : model_(model), mostTriangles_(mostTriangles), mesh_(mesh), problem_(problem) {}

    bool Run() {
        const auto visit = [this](const tinygltf::Node& node, int, int& place) { return AddNode(node, place); };
        return WalkGltfNodes(model_, "mesh", visit, problem_);
    }

 private:
    /// @param place  in: the parent's frame among those so far, or -1; out: the node's
    bool AddNode(const tinygltf::Node& node, int& place) {
        DMatrix3 local;
        if (!LocalFrame(node, local, problem_)) return false;
        const DMatrix3 world = Compose(local, place < 0 ? IdentityDMatrix3() : frames_[std::size_t(place)]);
        place = int(frames_.size());
        frames_.push_back(world);
        if (node.mesh < 0) return true;
        const auto add = [&](const GltfSurface& surface) { return AddSurface(surface, world); };
        return VisitGltfSurfaces(model_, node.mesh, mostTriangles_ * 3, add, problem_);
    }

    bool AddSurface(const GltfSurface& surface, const DMatrix3& world) {
        const std::vector<DPoint3>& points = surface.points;
        const std::vector<std::uint32_t>& corners = surface.corners;
        const std::size_t most = mostTriangles_ * 3;
        if (mesh_.verts.size() + points.size() > most || mesh_.faces.size() + corners.size() > most) {
            problem_ = fmt::format("its nodes add up to more than the {} triangles that a ground may have.", mostTriangles_);
            return false;
        }
        const std::uint32_t first = std::uint32_t(mesh_.verts.size());
        for (const DPoint3& p : points) mesh_.verts.push_back(TransformPoint(p, world));
        ForEachGltfTriangle(surface.primitive.mode, corners.size(), [&](std::size_t a, std::size_t b, std::size_t c) {
            mesh_.faces.push_back({{first + corners[a], first + corners[b], first + corners[c]}});
        });
        return true;
    }

    const tinygltf::Model& model_;
    const std::size_t mostTriangles_;
    FileMesh& mesh_;
    std::string& problem_;
    std::vector<DMatrix3> frames_;  // in the world, of the nodes that have been visited
};

}  // namespace

bool ReadGltf(const std::filesystem::path& file, std::string_view bytes, const GroundImport& import, FileMesh& mesh,
              std::string& problem) {
    mesh.up = UpAxis::Y;
    mesh.metresPerUnit = 1.0;
    tinygltf::Model model;
    return ParseGltf(file, bytes, &PassOverImage, model, problem) &&
           SceneGatherer(model, import.mostTriangles, mesh, problem).Run();
}

}  // namespace tavrik
