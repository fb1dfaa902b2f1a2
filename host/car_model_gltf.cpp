#include "host/car_model_gltf.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "host/car_looks_gltf.h"
#include "host/gltf_accessor.h"
#include "host/gltf_model.h"

namespace tavrik {
namespace {

// Cars have hundreds of nodes, sometimes thousands; walks over their parents stay quick up to here.
constexpr std::size_t kMostNodes = 20'000;

class CarGatherer {
 public:
    CarGatherer(const tinygltf::Model& gltf, std::size_t mostTriangles, CarModel& car, CarLooks& looks, std::string& problem)
        : gltf_(gltf), mostTriangles_(mostTriangles), car_(car), looks_(looks), problem_(problem) {}

    bool Run() {
        if (gltf_.nodes.size() > kMostNodes) {
            problem_ = fmt::format("it has {} nodes, but a car model may have {} at most.", gltf_.nodes.size(), kMostNodes);
            return false;
        }
        const auto visit = [this](const tinygltf::Node& node, int number, int& place) {
            if (!AddNode(node, number, place)) return false;
            place = int(car_.parts.size()) - 1;
            return true;
        };
        return WalkGltfNodes(gltf_, "model", visit, problem_);
    }

 private:
    bool AddNode(const tinygltf::Node& node, int number, int parent) {
        ModelPart part;
        part.name = node.name;
        part.parent = parent;
        if (!HasWholePlacement(node, problem_) || !LocalFrame(node, part.frame, problem_)) return false;
        if (parent >= 0) part.frame = Compose(part.frame, car_.parts[std::size_t(parent)].frame);
        part.mesh = node.mesh;
        part.spins = IsTurned(number);
        looks_.parts.emplace_back();
        const auto add = [&](const GltfSurface& surface) { return AddSurface(surface, part); };
        if (node.mesh >= 0 && !VisitGltfSurfaces(gltf_, node.mesh, mostTriangles_ * 3, add, problem_)) return false;
        car_.parts.push_back(std::move(part));
        return true;
    }

    /// Whether an animation takes a node round: its keys reach turns that are far apart.
    bool IsTurned(int node) const {
        for (const tinygltf::Animation& animation : gltf_.animations) {
            for (const tinygltf::AnimationChannel& channel : animation.channels) {
                if (channel.target_node != node || channel.target_path != "rotation") continue;
                if (channel.sampler < 0 || std::size_t(channel.sampler) >= animation.samplers.size()) continue;
                std::vector<double> keys;
                std::string fault;
                const int output = animation.samplers[std::size_t(channel.sampler)].output;
                if (!ReadNumbers(gltf_, output, TINYGLTF_TYPE_VEC4, 1'000'000, keys, fault)) continue;
                for (std::size_t k = 4; k + 3 < keys.size(); k += 4) {
                    double cosine = 0.0;
                    for (std::size_t c = 0; c < 4; ++c) cosine += keys[c] * keys[k + c];
                    if (std::abs(cosine) < 0.5) return true;  // more than 120 degrees: steering and suspension stay below
                }
            }
        }
        return false;
    }

    bool AddSurface(const GltfSurface& surface, ModelPart& part) {
        const std::vector<DPoint3>& points = surface.points;
        const std::vector<std::uint32_t>& corners = surface.corners;
        const std::size_t most = mostTriangles_ * 3;
        corners_ += corners.size();
        points_ += points.size();
        if (corners_ > most || points_ > most) {
            problem_ = fmt::format("its nodes add up to more than the {} triangles that a car model may have.", mostTriangles_);
            return false;
        }
        const std::uint32_t first = std::uint32_t(part.vertices.size());
        const std::size_t firstFace = part.faces.size();
        part.vertices.insert(part.vertices.end(), points.begin(), points.end());
        ForEachGltfTriangle(surface.primitive.mode, corners.size(), [&](std::size_t a, std::size_t b, std::size_t c) {
            part.faces.push_back({{first + corners[a], first + corners[b], first + corners[c]}});
        });
        return ReadGltfLooks(gltf_, surface.primitive, points.size(), first, part.faces.size() - firstFace, looks_.parts.back(),
                             problem_);
    }

    const tinygltf::Model& gltf_;
    const std::size_t mostTriangles_;
    CarModel& car_;
    CarLooks& looks_;
    std::string& problem_;
    std::size_t corners_ = 0, points_ = 0;
};

}  // namespace

bool ReadGltfCar(const std::filesystem::path& file, std::string_view bytes, const CarImport& import, CarModel& model,
                 CarLooks& looks, std::string& problem) {
    tinygltf::Model gltf;
    if (!ParseGltf(file, bytes, &KeepImageBytes, gltf, problem)) return false;
    model.usualForward = {0, 0, 1};  // glTF says that the front of a thing looks along +Z
    ReadGltfMaterials(file, gltf, looks);
    return CarGatherer(gltf, import.mostTriangles, model, looks, problem).Run();
}

}  // namespace tavrik
