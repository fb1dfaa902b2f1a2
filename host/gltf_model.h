#pragma once
/// A parsed glTF file, and its nodes and surfaces one by one: what readers of grounds and of car models have in common.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/tiny_gltf.h"
#include "solver/double_maths.h"

namespace tavrik {

/// Parses a file, binary or text, and refuses one that requires an extension which moves or packs its surfaces.
///
/// @param file       its folder is where buffers in files of their own are looked for
/// @param loadImage  is handed every image that the parser comes by
/// @param problem    on false: what is wrong, without the file's name
bool ParseGltf(const std::filesystem::path& file, std::string_view bytes, tinygltf::LoadImageDataFunction loadImage,
               tinygltf::Model& model, std::string& problem);

/// Whether each list of numbers that places a node is whole or not there at all, those included that a matrix overrules.
/// @param problem  on false: a sentence that names the node
bool HasWholePlacement(const tinygltf::Node& node, std::string& problem);

/// Where a node stands in its parent's space, in double precision: glTF's numbers are single, but chains of nodes multiply
/// them. A matrix overrules the other numbers, which then may be anything.
/// @param problem  on false: a sentence that names the node
bool LocalFrame(const tinygltf::Node& node, DMatrix3& frame, std::string& problem);

/// What a walk over nodes calls. `place` comes in as the parent's number and goes out as the node's own, whatever the caller
/// counts by. @return false to end the walk, with `problem` of the walk set
using VisitGltfNode = std::function<bool(const tinygltf::Node& node, int number, int& place)>;

/// Visits the nodes of the scene that the file shows, or of its first, each before its children and these in the file's order;
/// without any scene, those of all that hang below no other. The nodes at the top have -1 for a parent's place.
///
/// @param noun     "mesh" or "model", which the user is told to export again
/// @param problem  on false: what is wrong, a node that is none or is met twice
bool WalkGltfNodes(const tinygltf::Model& model, const char* noun, const VisitGltfNode& visit, std::string& problem);

/// A primitive of triangles, a strip or a fan, its numbers read.
struct GltfSurface {
    const tinygltf::Primitive& primitive;
    std::vector<DPoint3> points;         // in the node's space
    std::vector<std::uint32_t> corners;  // each a point's number (checked), in the order of the mode
};
using VisitGltfSurface = std::function<bool(const GltfSurface& surface)>;

/// Visits the surfaces of a mesh; points, lines, and primitives without positions are passed over.
///
/// @param mesh     a number, not negative
/// @param most     points, and corners, that the caller can take of one surface
/// @param problem  on false, unless `visit` set it: what is wrong
bool VisitGltfSurfaces(const tinygltf::Model& model, int mesh, std::size_t most, const VisitGltfSurface& visit,
                       std::string& problem);

/// Calls `add` with the places of three corners for each triangle that `count` corners make.
/// @param mode  of a primitive: triangles, a strip or a fan; negative, as of one that names none: triangles
template <typename Add>
void ForEachGltfTriangle(int mode, std::size_t count, Add add) {
    if (mode < 0 || mode == TINYGLTF_MODE_TRIANGLES) {
        for (std::size_t i = 0; i + 2 < count; i += 3) add(i, i + 1, i + 2);
    } else if (mode == TINYGLTF_MODE_TRIANGLE_STRIP) {
        for (std::size_t i = 0; i + 2 < count; ++i) add(i, i + 1 + i % 2, i + 2 - i % 2);
    } else {
        for (std::size_t i = 1; i + 1 < count; ++i) add(i, i + 1, 0);
    }
}

}  // namespace tavrik
