#include "host/car_model_gltf.h"

#include <fmt/format.h>

#include <vector>

#include "host/car_looks_gltf.h"
#include "host/gltf_accessor.h"
#include "host/gltf_container.h"
#include "host/read_file.h"
#include "host/tiny_gltf.h"

namespace tavrik {
namespace {

// Cars have hundreds of nodes, sometimes thousands; walks over their parents stay quick up to here.
constexpr std::size_t kMostNodes = 20'000;

bool ReadSideFile(std::vector<unsigned char>* out, std::string* fault, const std::string& file, void*) {
    std::string bytes, problem;
    if (!ReadWholeFile(file, bytes, problem)) {
        if (fault != nullptr) *fault += problem + '\n';
        return false;
    }
    out->assign(bytes.begin(), bytes.end());
    return true;
}

bool SideFileExists(const std::string& file, void*) {
    std::error_code error;
    return std::filesystem::is_regular_file(file, error);
}

std::string KeepPath(const std::string& file, void*) { return file; }

std::string FirstLine(const std::string& text) {
    std::string line = text.substr(0, text.find('\n'));
    while (!line.empty() && (line.back() == '.' || line.back() == ' ')) line.pop_back();
    return line.empty() ? "no reason given" : line.substr(0, 200);
}

bool Parse(const std::filesystem::path& file, std::string_view bytes, tinygltf::Model& model, std::string& problem) {
    GltfContainer container;
    if (!SplitGltf(bytes, container, problem)) return false;
    tinygltf::TinyGLTF parser;
    parser.SetFsCallbacks({&SideFileExists, &KeepPath, &ReadSideFile, nullptr, nullptr});
    parser.SetImageLoader(&KeepImageBytes, nullptr);
    std::string fault, warning;
    const std::string folder = file.has_parent_path() ? file.parent_path().string() : ".";
    const unsigned length = unsigned(bytes.size());
    const auto* const raw = reinterpret_cast<const unsigned char*>(bytes.data());
    const bool parsed = container.isBinary ? parser.LoadBinaryFromMemory(&model, &fault, &warning, raw, length, folder)
                                           : parser.LoadASCIIFromString(&model, &fault, &warning, bytes.data(), length, folder);
    if (!parsed) problem = fmt::format("this is not a readable glTF file ({}).", FirstLine(fault));
    return parsed;
}

/// Extensions that change how a surface looks but not where it is.
bool IsHarmless(std::string_view extension) {
    for (const std::string_view prefix : {"KHR_materials_", "KHR_texture_", "EXT_texture_", "MSFT_texture_", "KHR_lights_"}) {
        if (extension.starts_with(prefix)) return true;
    }
    return extension == "KHR_mesh_quantization";
}

bool LocalFrame(const tinygltf::Node& node, DMatrix3& frame, std::string& problem) {
    const auto fits = [](const std::vector<double>& numbers, std::size_t size) {
        return numbers.empty() || numbers.size() == size;
    };
    if (!fits(node.matrix, 16) || !fits(node.translation, 3) || !fits(node.rotation, 4) || !fits(node.scale, 3)) {
        problem = fmt::format("the placement of node \"{}\" has the wrong number of numbers.", node.name);
        return false;
    }
    if (!node.matrix.empty()) {
        const std::vector<double>& m = node.matrix;
        frame = {{{m[0], m[1], m[2]}, {m[4], m[5], m[6]}, {m[8], m[9], m[10]}, {m[12], m[13], m[14]}}};
        return true;
    }
    frame = IdentityDMatrix3();
    if (!node.rotation.empty()) {
        const double x = node.rotation[0], y = node.rotation[1], z = node.rotation[2], w = node.rotation[3];
        frame.row[0] = {1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)};
        frame.row[1] = {2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)};
        frame.row[2] = {2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)};
    }
    for (std::size_t r = 0; r < 3 && !node.scale.empty(); ++r) frame.row[r] = frame.row[r] * node.scale[r];
    if (!node.translation.empty()) frame.row[3] = {node.translation[0], node.translation[1], node.translation[2]};
    return true;
}

class CarGatherer {
 public:
    CarGatherer(const tinygltf::Model& gltf, std::size_t mostTriangles, CarModel& car, CarLooks& looks, std::string& problem)
        : gltf_(gltf),
          mostTriangles_(mostTriangles),
          car_(car),
          looks_(looks),
          problem_(problem),
          seen_(gltf.nodes.size(), false) {}

    bool Run() {
        if (gltf_.nodes.size() > kMostNodes) {
            problem_ = fmt::format("it has {} nodes, but a car model may have {} at most.", gltf_.nodes.size(), kMostNodes);
            return false;
        }
        struct Visit {
            int node, parent;
        };
        std::vector<Visit> open;
        for (const int root : Roots()) open.push_back({root, -1});
        while (!open.empty()) {
            const Visit visit = open.back();
            open.pop_back();
            if (!AddNode(visit.node, visit.parent)) return false;
            const int part = int(car_.parts.size()) - 1;
            const std::vector<int>& children = gltf_.nodes[std::size_t(visit.node)].children;
            for (auto child = children.rbegin(); child != children.rend(); ++child) open.push_back({*child, part});
        }
        return true;
    }

 private:
    /// The nodes of the scene that the file shows, or of its first; without any scene, all that hang below no other.
    std::vector<int> Roots() const {
        std::vector<int> roots;
        if (!gltf_.scenes.empty()) {
            const int shown = gltf_.defaultScene;
            const bool known = shown >= 0 && std::size_t(shown) < gltf_.scenes.size();
            const std::vector<int>& nodes = gltf_.scenes[known ? std::size_t(shown) : 0].nodes;
            return {nodes.rbegin(), nodes.rend()};
        }
        std::vector<bool> isChild(gltf_.nodes.size(), false);
        for (const tinygltf::Node& node : gltf_.nodes) {
            for (const int child : node.children) {
                if (child >= 0 && std::size_t(child) < isChild.size()) isChild[std::size_t(child)] = true;
            }
        }
        for (std::size_t i = isChild.size(); i-- > 0;) {
            if (!isChild[i]) roots.push_back(int(i));
        }
        return roots;
    }

    bool AddNode(int index, int parent) {
        if (index < 0 || std::size_t(index) >= gltf_.nodes.size()) {
            problem_ = fmt::format("node {} is used, but there are {}; export the model again.", index, gltf_.nodes.size());
            return false;
        }
        if (seen_[std::size_t(index)]) {
            problem_ = fmt::format("node {} hangs below two others or below itself; export the model again.", index);
            return false;
        }
        seen_[std::size_t(index)] = true;
        const tinygltf::Node& node = gltf_.nodes[std::size_t(index)];
        ModelPart part;
        part.name = node.name;
        part.parent = parent;
        if (!LocalFrame(node, part.frame, problem_)) return false;
        if (parent >= 0) part.frame = Compose(part.frame, car_.parts[std::size_t(parent)].frame);
        part.mesh = node.mesh;
        part.spins = IsTurned(index);
        looks_.parts.emplace_back();
        if (node.mesh >= 0 && !AddMesh(node.mesh, part)) return false;
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

    bool AddMesh(int index, ModelPart& part) {
        if (std::size_t(index) >= gltf_.meshes.size()) {
            problem_ = fmt::format("mesh {} is used, but there are {}; export it again.", index, gltf_.meshes.size());
            return false;
        }
        for (const tinygltf::Primitive& primitive : gltf_.meshes[std::size_t(index)].primitives) {
            const int mode = primitive.mode < 0 ? TINYGLTF_MODE_TRIANGLES : primitive.mode;
            const bool isSurface =
                mode == TINYGLTF_MODE_TRIANGLES || mode == TINYGLTF_MODE_TRIANGLE_STRIP || mode == TINYGLTF_MODE_TRIANGLE_FAN;
            if (isSurface && !AddPrimitive(primitive, mode, index, part)) return false;
        }
        return true;
    }

    bool AddPrimitive(const tinygltf::Primitive& primitive, int mode, int meshIndex, ModelPart& part) {
        const auto position = primitive.attributes.find("POSITION");
        if (position == primitive.attributes.end()) return true;
        const std::size_t most = mostTriangles_ * 3;
        std::vector<DPoint3> points;
        std::vector<std::uint32_t> corners;
        if (!ReadVectors(gltf_, position->second, most, points, problem_)) return false;
        if (primitive.indices >= 0) {
            if (!ReadIndices(gltf_, primitive.indices, most, corners, problem_)) return false;
        } else {
            for (std::size_t i = 0; i < points.size(); ++i) corners.push_back(std::uint32_t(i));
        }
        for (const std::uint32_t corner : corners) {
            if (corner < points.size()) continue;
            problem_ = fmt::format("mesh {} uses vertex {}, but there are {} (counted from 0); export it again.", meshIndex,
                                   corner, points.size());
            return false;
        }
        corners_ += corners.size();
        points_ += points.size();
        if (corners_ > most || points_ > most) {
            problem_ = fmt::format("its nodes add up to more than the {} triangles that a car model may have.", mostTriangles_);
            return false;
        }
        const std::uint32_t first = std::uint32_t(part.vertices.size());
        const std::size_t firstFace = part.faces.size();
        part.vertices.insert(part.vertices.end(), points.begin(), points.end());
        const auto add = [&](std::size_t a, std::size_t b, std::size_t c) {
            part.faces.push_back({{first + corners[a], first + corners[b], first + corners[c]}});
        };
        if (mode == TINYGLTF_MODE_TRIANGLES) {
            for (std::size_t i = 0; i + 2 < corners.size(); i += 3) add(i, i + 1, i + 2);
        } else if (mode == TINYGLTF_MODE_TRIANGLE_STRIP) {
            for (std::size_t i = 0; i + 2 < corners.size(); ++i) add(i, i + 1 + i % 2, i + 2 - i % 2);
        } else {
            for (std::size_t i = 1; i + 1 < corners.size(); ++i) add(i, i + 1, 0);
        }
        return ReadGltfLooks(gltf_, primitive, points.size(), first, part.faces.size() - firstFace, looks_.parts.back(),
                             problem_);
    }

    const tinygltf::Model& gltf_;
    const std::size_t mostTriangles_;
    CarModel& car_;
    CarLooks& looks_;
    std::string& problem_;
    std::vector<bool> seen_;
    std::size_t corners_ = 0, points_ = 0;
};

}  // namespace

bool ReadGltfCar(const std::filesystem::path& file, std::string_view bytes, const CarImport& import, CarModel& model,
                 CarLooks& looks, std::string& problem) {
    tinygltf::Model gltf;
    if (!Parse(file, bytes, gltf, problem)) return false;
    for (const std::string& extension : gltf.extensionsRequired) {
        if (IsHarmless(extension)) continue;
        problem = fmt::format("it can't be read without the extension {}; export it without that.", extension);
        return false;
    }
    model.usualForward = {0, 0, 1};  // glTF says that the front of a thing looks along +Z
    ReadGltfMaterials(file, gltf, looks);
    return CarGatherer(gltf, import.mostTriangles, model, looks, problem).Run();
}

}  // namespace tavrik
