#pragma once
/// Meshes and animation keys out of an opened glTF file.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/gltf_document.h"
#include "host/sdk/line_shape.h"
#include "host/sdk/max.h"
#include "solver/double_maths.h"

namespace tavrik_host {

/// Triangles as a file draws them.
struct MeshRecord {
    std::vector<Point3> verts;  // scene units, Z up
    std::vector<Face> faces;
};

/// Whether a mesh of a file is made of lines: then it is a spline, and not the mesh that it is called.
bool IsMadeOfLines(const Json& mesh);

/// Reads the numbers of one file. Refuses (`SceneFault`) what is damaged.
class GltfNumbers {
 public:
    explicit GltfNumbers(const GltfFile& gltf);
    ~GltfNumbers();

    /// The triangles, strips and fans of a mesh; lines and points are passed over.
    MeshRecord ReadMesh(std::size_t mesh, double metresPerUnit);
    /// The lines of a mesh, strips and loops one by one, single ones joined where one begins with the vertex that the last one
    /// ended with; all else is passed over.
    std::vector<ShapeLine> ReadLines(std::size_t mesh, double metresPerUnit);
    /// The numbers of a SCALAR (1), VEC3 (3) or VEC4 (4) accessor, finite.
    std::vector<double> Read(std::size_t accessor, int components);

 private:
    struct Model;
    void AddPrimitive(const Json& primitive, const std::string& what, double unitsPerMetre,
                      std::map<std::size_t, std::uint32_t>& known, MeshRecord& mesh);
    std::vector<Point3> ReadPoints(std::size_t accessor, const std::string& what, double unitsPerMetre);
    /// Which of the primitive's `count` vertices it draws, in order.
    std::vector<std::uint32_t> ReadCorners(const Json& primitive, const std::string& what, std::size_t count);

    const GltfFile& gltf_;
    std::unique_ptr<Model> model_;
    std::size_t drawn_ = 0;  // vertices and corners so far
};

}  // namespace tavrik_host
