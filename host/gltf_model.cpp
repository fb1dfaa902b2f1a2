#define TINYGLTF_IMPLEMENTATION
#include "host/gltf_model.h"

#include <fmt/format.h>

#include <system_error>

#include "host/gltf_accessor.h"
#include "host/gltf_container.h"
#include "host/gltf_extensions.h"
#include "host/read_file.h"

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

/// The first line of what the parser says, without the full stop that ours brings along.
std::string FirstLine(const std::string& text) {
    std::string line = text.substr(0, text.find('\n'));
    while (!line.empty() && (line.back() == '.' || line.back() == ' ')) line.pop_back();
    return line.empty() ? "no reason given" : line.substr(0, 200);
}

bool Fits(const std::vector<double>& numbers, std::size_t size) { return numbers.empty() || numbers.size() == size; }

/// The nodes at the top, the last one first.
std::vector<int> Roots(const tinygltf::Model& model) {
    if (!model.scenes.empty()) {
        const int shown = model.defaultScene;
        const bool known = shown >= 0 && std::size_t(shown) < model.scenes.size();
        const std::vector<int>& nodes = model.scenes[known ? std::size_t(shown) : 0].nodes;
        return {nodes.rbegin(), nodes.rend()};
    }
    std::vector<bool> isChild(model.nodes.size(), false);
    for (const tinygltf::Node& node : model.nodes) {
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

bool IsSurface(const tinygltf::Primitive& primitive) {
    // A primitive that names no mode is made of triangles.
    return primitive.mode < 0 || primitive.mode == TINYGLTF_MODE_TRIANGLES || primitive.mode == TINYGLTF_MODE_TRIANGLE_STRIP ||
           primitive.mode == TINYGLTF_MODE_TRIANGLE_FAN;
}

bool ReadSurface(const tinygltf::Model& model, int mesh, int positions, std::size_t most, GltfSurface& surface,
                 std::string& problem) {
    if (!ReadVectors(model, positions, most, surface.points, problem)) return false;
    if (surface.primitive.indices >= 0) {
        if (!ReadIndices(model, surface.primitive.indices, most, surface.corners, problem)) return false;
    } else {
        surface.corners.resize(surface.points.size());
        for (std::size_t i = 0; i < surface.corners.size(); ++i) surface.corners[i] = std::uint32_t(i);
    }
    for (const std::uint32_t corner : surface.corners) {
        if (corner < surface.points.size()) continue;
        problem = fmt::format("mesh {} uses vertex {}, but there are {} (counted from 0); export it again.", mesh, corner,
                              surface.points.size());
        return false;
    }
    return true;
}

}  // namespace

bool ParseGltf(const std::filesystem::path& file, std::string_view bytes, tinygltf::LoadImageDataFunction loadImage,
               tinygltf::Model& model, std::string& problem) {
    GltfContainer container;
    if (!SplitGltf(bytes, container, problem)) return false;
    tinygltf::TinyGLTF parser;
    parser.SetFsCallbacks({&SideFileExists, &KeepPath, &ReadSideFile, nullptr, nullptr});
    parser.SetImageLoader(loadImage, nullptr);
    std::string fault, warning;
    const std::string folder = file.has_parent_path() ? file.parent_path().string() : ".";
    const unsigned length = unsigned(bytes.size());
    const auto* const raw = reinterpret_cast<const unsigned char*>(bytes.data());
    const bool parsed = container.isBinary ? parser.LoadBinaryFromMemory(&model, &fault, &warning, raw, length, folder)
                                           : parser.LoadASCIIFromString(&model, &fault, &warning, bytes.data(), length, folder);
    if (!parsed) {
        problem = fmt::format("this is not a readable glTF file ({}).", FirstLine(fault));
        return false;
    }
    for (const std::string& extension : model.extensionsRequired) {
        if (IsHarmlessExtension(extension)) continue;
        problem = fmt::format("it can't be read without the extension {}; export it without that.", extension);
        return false;
    }
    return true;
}

bool HasWholePlacement(const tinygltf::Node& node, std::string& problem) {
    if (Fits(node.matrix, 16) && Fits(node.translation, 3) && Fits(node.rotation, 4) && Fits(node.scale, 3)) return true;
    problem = fmt::format("the placement of node \"{}\" has the wrong number of numbers.", node.name);
    return false;
}

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
    if (!HasWholePlacement(node, problem)) return false;
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

bool WalkGltfNodes(const tinygltf::Model& model, const char* noun, const VisitGltfNode& visit, std::string& problem) {
    struct Stop {
        int node, parent;
    };
    std::vector<bool> seen(model.nodes.size(), false);
    std::vector<Stop> open;
    for (const int root : Roots(model)) open.push_back({root, -1});
    while (!open.empty()) {
        const Stop stop = open.back();
        open.pop_back();
        if (stop.node < 0 || std::size_t(stop.node) >= model.nodes.size()) {
            problem =
                fmt::format("node {} is used, but there are {}; export the {} again.", stop.node, model.nodes.size(), noun);
            return false;
        }
        if (seen[std::size_t(stop.node)]) {
            problem = fmt::format("node {} hangs below two others or below itself; export the {} again.", stop.node, noun);
            return false;
        }
        seen[std::size_t(stop.node)] = true;
        const tinygltf::Node& node = model.nodes[std::size_t(stop.node)];
        int place = stop.parent;
        if (!visit(node, stop.node, place)) return false;
        // Backwards onto the stack, so that children come out in the file's order.
        for (auto child = node.children.rbegin(); child != node.children.rend(); ++child) open.push_back({*child, place});
    }
    return true;
}

bool VisitGltfSurfaces(const tinygltf::Model& model, int mesh, std::size_t most, const VisitGltfSurface& visit,
                       std::string& problem) {
    if (std::size_t(mesh) >= model.meshes.size()) {
        problem = fmt::format("mesh {} is used, but there are {}; export it again.", mesh, model.meshes.size());
        return false;
    }
    for (const tinygltf::Primitive& primitive : model.meshes[std::size_t(mesh)].primitives) {
        if (!IsSurface(primitive)) continue;
        const auto position = primitive.attributes.find("POSITION");
        if (position == primitive.attributes.end()) continue;  // nothing to draw, and so nothing to drive on
        GltfSurface surface{primitive, {}, {}};
        if (!ReadSurface(model, mesh, position->second, most, surface, problem) || !visit(surface)) return false;
    }
    return true;
}

}  // namespace tavrik
