#include "host/ground_obj.h"

#include <fmt/format.h>

#include <cstddef>
#include <iterator>

namespace tavrik {

std::string GroundObj(const TriangleMesh& mesh) {
    std::string text = "# Ground, metres, Z up\n";
    const auto end = std::back_inserter(text);
    const auto metres = [](float units) { return double(units) / 100.0; };
    for (const Point3& v : mesh.verts) fmt::format_to(end, "v {} {} {}\n", metres(v.x), metres(v.y), metres(v.z));
    for (const MeshFace& face : mesh.faces) {
        fmt::format_to(end, "f {} {} {}\n", std::size_t(face.v[0]) + 1, std::size_t(face.v[1]) + 1, std::size_t(face.v[2]) + 1);
    }
    return text;
}

}  // namespace tavrik
