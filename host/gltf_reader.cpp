#include "host/gltf_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "host/gltf_accessor.h"
#include "host/gltf_container.h"
#include "host/read_file.h"

#define TINYGLTF_IMPLEMENTATION
#include "host/tiny_gltf.h"

namespace tavrik {
namespace {

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

bool PassOverImage(tinygltf::Image*, const int, std::string*, std::string*, int, int, const unsigned char*, int, void*) {
    return true;
}

/// The first line of what the parser says, without the full stop that ours brings along.
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
    parser.SetImageLoader(&PassOverImage, nullptr);
    std::string fault, warning;
    const std::string folder = file.has_parent_path() ? file.parent_path().string() : ".";
    const unsigned length = unsigned(bytes.size());
    const bool parsed = container.isBinary
                            ? parser.LoadBinaryFromMemory(&model, &fault, &warning,
                                                          reinterpret_cast<const unsigned char*>(bytes.data()), length, folder)
                            : parser.LoadASCIIFromString(&model, &fault, &warning, bytes.data(), length, folder);
    if (!parsed) problem = fmt::format("this is not a readable glTF file ({}).", FirstLine(fault));
    return parsed;
}

/// Extensions that change how a surface looks but not where it is.
bool IsHarmless(std::string_view extension) {
    for (const std::string_view prefix : {"KHR_materials_", "KHR_texture_", "EXT_texture_", "MSFT_texture_", "KHR_lights_"}) {
        if (extension.starts_with(prefix)) return true;
    }
    return extension == "KHR_mesh_quantization";  // just allows more component types, and those are read
}

/// Where a node stands, in double precision: glTF's numbers are single, but chains of nodes multiply them.
bool LocalFrame(const tinygltf::Node& node, DMatrix3& frame, std::string& problem) {
    if (!node.matrix.empty()) {
        const std::vector<double>& m = node.matrix;
        if (m.size() != 16) {
            problem = fmt::format("the matrix of node \"{}\" has {} numbers instead of 16.", node.name, m.size());
            return false;
        }
        frame = {{{m[0], m[1], m[2]}, {m[4], m[5], m[6]}, {m[8], m[9], m[10]}, {m[12], m[13], m[14]}}};
        return true;
    }
    const auto fits = [](const std::vector<double>& numbers, std::size_t size) {
        return numbers.empty() || numbers.size() == size;
    };
    if (!fits(node.translation, 3) || !fits(node.rotation, 4) || !fits(node.scale, 3)) {
        problem = fmt::format("the placement of node \"{}\" has the wrong number of numbers.", node.name);
        return false;
    }
    frame = IdentityDMatrix3();
    if (!node.rotation.empty()) {
        const double x = node.rotation[0], y = node.rotation[1], z = node.rotation[2], w = node.rotation[3];
        frame.row[0] = {1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)};
        frame.row[1] = {2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)};
        frame.row[2] = {2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)};
    }
    if (!node.scale.empty()) {
        for (std::size_t r = 0; r < 3; ++r) frame.row[r] = frame.row[r] * node.scale[r];
    }
    if (!node.translation.empty()) frame.row[3] = {node.translation[0], node.translation[1], node.translation[2]};
    return true;
}

/// Walks the nodes of a scene and gathers their triangles.
class SceneGatherer {
 public:
    SceneGatherer(const tinygltf::Model& model, std::size_t mostTriangles, FileMesh& mesh, std::string& problem)
        : model_(model), mostTriangles_(mostTriangles), mesh_(mesh), problem_(problem), seen_(model.nodes.size(), false) {}

    bool Run() {
        struct Visit {
            int node;
            DMatrix3 parent;
        };
        std::vector<Visit> open;
        for (const int root : Roots()) open.push_back({root, IdentityDMatrix3()});
        while (!open.empty()) {
            const Visit visit = open.back();
            open.pop_back();
            if (visit.node < 0 || std::size_t(visit.node) >= model_.nodes.size()) {
                problem_ =
                    fmt::format("node {} is used, but there are {}; export the mesh again.", visit.node, model_.nodes.size());
                return false;
            }
            if (seen_[std::size_t(visit.node)]) {
                problem_ = fmt::format("node {} hangs below two others or below itself; export the mesh again.", visit.node);
                return false;
            }
            seen_[std::size_t(visit.node)] = true;
            const tinygltf::Node& node = model_.nodes[std::size_t(visit.node)];
            DMatrix3 local;
            if (!LocalFrame(node, local, problem_)) return false;
            const DMatrix3 world = Compose(local, visit.parent);
            if (node.mesh >= 0 && !AddMesh(node.mesh, world)) return false;
            // Backwards onto the stack, so that children come out in the file's order.
            for (auto child = node.children.rbegin(); child != node.children.rend(); ++child) open.push_back({*child, world});
        }
        return true;
    }

 private:
    /// The nodes of the scene that the file shows, or of its first; without any scene, all that hang below no other.
    std::vector<int> Roots() const {
        if (!model_.scenes.empty()) {
            const int shown = model_.defaultScene;
            const bool known = shown >= 0 && std::size_t(shown) < model_.scenes.size();
            std::vector<int> roots = model_.scenes[known ? std::size_t(shown) : 0].nodes;
            std::reverse(roots.begin(), roots.end());
            return roots;
        }
        std::vector<bool> isChild(model_.nodes.size(), false);
        for (const tinygltf::Node& node : model_.nodes) {
            for (const int child : node.children) {
                if (child >= 0 && std::size_t(child) < isChild.size()) isChild[std::size_t(child)] = true;
            }
        }
        std::vector<int> roots;
        for (std::size_t i = isChild.size(); i-- > 0;) {
            if (!isChild[i]) roots.push_back(int(i));
        }
        return roots;
    }

    bool AddMesh(int index, const DMatrix3& world) {
        if (std::size_t(index) >= model_.meshes.size()) {
            problem_ = fmt::format("mesh {} is used, but there are {}; export it again.", index, model_.meshes.size());
            return false;
        }
        for (const tinygltf::Primitive& primitive : model_.meshes[std::size_t(index)].primitives) {
            // A primitive that names no mode is made of triangles.
            const int mode = primitive.mode < 0 ? TINYGLTF_MODE_TRIANGLES : primitive.mode;
            const bool isSurface =
                mode == TINYGLTF_MODE_TRIANGLES || mode == TINYGLTF_MODE_TRIANGLE_STRIP || mode == TINYGLTF_MODE_TRIANGLE_FAN;
            if (isSurface && !AddPrimitive(primitive, mode, index, world)) return false;
        }
        return true;
    }

    bool AddPrimitive(const tinygltf::Primitive& primitive, int mode, int meshIndex, const DMatrix3& world) {
        const auto position = primitive.attributes.find("POSITION");
        if (position == primitive.attributes.end()) return true;  // nothing to draw, and so nothing to drive on
        const std::size_t most = mostTriangles_ * 3;
        std::vector<DPoint3> points;
        if (!ReadVectors(model_, position->second, most, points, problem_)) return false;
        std::vector<std::uint32_t> corners;
        if (primitive.indices >= 0) {
            if (!ReadIndices(model_, primitive.indices, most, corners, problem_)) return false;
        } else {
            corners.resize(points.size());
            for (std::size_t i = 0; i < corners.size(); ++i) corners[i] = std::uint32_t(i);
        }
        for (const std::uint32_t corner : corners) {
            if (corner < points.size()) continue;
            problem_ = fmt::format("mesh {} uses vertex {}, but there are {} (counted from 0); export it again.", meshIndex,
                                   corner, points.size());
            return false;
        }
        if (mesh_.verts.size() + points.size() > most || mesh_.faces.size() + corners.size() > most) {
            problem_ = fmt::format("its nodes add up to more than the {} triangles that a ground may have.", mostTriangles_);
            return false;
        }
        const std::uint32_t first = std::uint32_t(mesh_.verts.size());
        for (const DPoint3& p : points) mesh_.verts.push_back(TransformPoint(p, world));
        AddFaces(corners, mode, first);
        return true;
    }

    void AddFaces(const std::vector<std::uint32_t>& corners, int mode, std::uint32_t first) {
        const auto add = [&](std::size_t a, std::size_t b, std::size_t c) {
            mesh_.faces.push_back({{first + corners[a], first + corners[b], first + corners[c]}});
        };
        if (mode == TINYGLTF_MODE_TRIANGLES) {
            for (std::size_t i = 0; i + 2 < corners.size(); i += 3) add(i, i + 1, i + 2);
        } else if (mode == TINYGLTF_MODE_TRIANGLE_STRIP) {
            for (std::size_t i = 0; i + 2 < corners.size(); ++i) add(i, i + 1 + i % 2, i + 2 - i % 2);
        } else {
            for (std::size_t i = 1; i + 1 < corners.size(); ++i) add(i, i + 1, 0);
        }
    }

    const tinygltf::Model& model_;
    const std::size_t mostTriangles_;
    FileMesh& mesh_;
    std::string& problem_;
    std::vector<bool> seen_;
};

}  // namespace

bool ReadGltf(const std::filesystem::path& file, std::string_view bytes, const GroundImport& import, FileMesh& mesh,
              std::string& problem) {
    mesh.up = UpAxis::Y;
    mesh.metresPerUnit = 1.0;
    tinygltf::Model model;
    if (!Parse(file, bytes, model, problem)) return false;
    for (const std::string& extension : model.extensionsRequired) {
        if (IsHarmless(extension)) continue;
        problem = fmt::format("it can't be read without the extension {}; export it without that.", extension);
        return false;
    }
    return SceneGatherer(model, import.mostTriangles, mesh, problem).Run();
}

}  // namespace tavrik
