#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "host/ground_obj.h"
#include "host/mesh_import.h"

namespace tavrik::test {

/// Reads bytes as ground. What is refused has one sentence for it; what is accepted is sound, and comes back from the file that
/// it is written to.
inline void ReadAnyGround(const char* name, const std::uint8_t* data, std::size_t size) {
    GroundImport import;
    import.mostTriangles = 10'000;
    TriangleMesh ground;
    std::string problem;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (!ReadGroundBytes(name, bytes, import, ground, problem)) {
        if (problem.empty() || !ground.faces.empty()) std::abort();
        return;
    }
    if (ground.faces.empty() || ground.faces.size() > import.mostTriangles) std::abort();
    for (const Point3& v : ground.verts) {
        if (!std::isfinite(v.x) || !std::isfinite(v.y) || !std::isfinite(v.z)) std::abort();
    }
    for (const MeshFace& face : ground.faces) {
        for (const std::uint32_t v : face.v) {
            if (v >= ground.verts.size()) std::abort();
        }
    }
    TriangleMesh again;
    if (!ReadGroundBytes("b.obj", GroundObj(ground), {}, again, problem) || again.faces.size() != ground.faces.size())
        std::abort();
}

}  // namespace tavrik::test
