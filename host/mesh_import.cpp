#include "host/mesh_import.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <exception>
#include <new>
#include <utility>
#include <vector>

#include "host/gltf_reader.h"
#include "host/obj_reader.h"
#include "host/read_file.h"
#include "host/scene_reader.h"

namespace tavrik {
namespace {

/// All readers look alike: `problem` comes back without the file's name, which is set before it in one place.
using MeshReader = bool (*)(const std::filesystem::path& file, std::string_view bytes, const GroundImport& import,
                            FileMesh& mesh, std::string& problem);

struct MeshFormat {
    std::string_view extension;
    MeshReader read;
};

constexpr MeshFormat kFormats[] = {
    {".obj", &ReadObj},   {".glb", &ReadGltf},  {".gltf", &ReadGltf}, {".fbx", &ReadScene},
    {".ply", &ReadScene}, {".stl", &ReadScene}, {".dae", &ReadScene}, {".3ds", &ReadScene},
};

/// Beyond this, single precision steps by more than half a metre and no car could drive. Mostly it is a wrong unit.
constexpr double kFarthest = 1e9;  // scene units: 10 000 km

const MeshFormat* FindFormat(const std::filesystem::path& file) {
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    const auto* found = std::find_if(std::begin(kFormats), std::end(kFormats),
                                     [&](const MeshFormat& format) { return format.extension == extension; });
    return found == std::end(kFormats) ? nullptr : found;
}

bool CheckIndices(const FileMesh& mesh, std::string& problem) {
    for (std::size_t i = 0; i < mesh.faces.size(); ++i) {
        for (const std::uint32_t v : mesh.faces[i].v) {
            if (v < mesh.verts.size()) continue;
            problem = fmt::format("triangle {} uses vertex {}, but there are {}; export the mesh again.", i + 1,
                                  std::size_t(v) + 1, mesh.verts.size());
            return false;
        }
    }
    return true;
}

/// Turns the file's coordinates into the scene's. The one place where a ground's axes and unit change.
bool ToScene(const FileMesh& mesh, const GroundImport& import, std::vector<Point3>& verts, std::string& problem) {
    const UpAxis up = import.up == UpAxis::FromFile ? mesh.up : import.up;
    const double metres = import.metresPerUnit > 0.0 ? import.metresPerUnit : mesh.metresPerUnit;
    const double scale = metres * 100.0;
    verts.reserve(mesh.verts.size());
    for (const DPoint3& v : mesh.verts) {
        if (!std::isfinite(v.x) || !std::isfinite(v.y) || !std::isfinite(v.z)) {
            problem = fmt::format("the coordinates of vertex {} are not finite numbers ({}, {}, {}); export the mesh again.",
                                  verts.size() + 1, v.x, v.y, v.z);
            return false;
        }
        const DPoint3 p = (up == UpAxis::Y ? DPoint3{v.x, -v.z, v.y} : v) * scale;
        if (!(std::abs(p.x) <= kFarthest && std::abs(p.y) <= kFarthest && std::abs(p.z) <= kFarthest)) {
            problem = fmt::format(
                "vertex {} at ({}, {}, {}) lies more than 10000 km from the origin when one unit is {} m; check the unit.",
                verts.size() + 1, v.x, v.y, v.z, metres);
            return false;
        }
        verts.push_back(ToPoint3(p));
    }
    return true;
}

bool ReadAndConvert(const MeshFormat& format, const std::filesystem::path& file, std::string_view bytes,
                    const GroundImport& import, TriangleMesh& ground, std::string& problem) {
    FileMesh mesh;
    if (!format.read(file, bytes, import, mesh, problem)) return false;
    if (mesh.faces.empty()) {
        problem = "it holds no triangles to drive on.";
        return false;
    }
    if (mesh.faces.size() > import.mostTriangles) {
        problem =
            fmt::format("it holds {} triangles, but a ground may have {} at most.", mesh.faces.size(), import.mostTriangles);
        return false;
    }
    TriangleMesh result;
    if (!CheckIndices(mesh, problem) || !ToScene(mesh, import, result.verts, problem)) return false;
    result.faces = std::move(mesh.faces);
    ground = std::move(result);
    return true;
}

}  // namespace

bool ReadGroundBytes(const std::filesystem::path& file, std::string_view bytes, const GroundImport& import,
                     TriangleMesh& ground, std::string& problem) {
    const std::string name = file.string();
    const MeshFormat* format = FindFormat(file);
    std::string fault;
    bool read = false;
    if (format == nullptr) {
        fault = fmt::format("its extension names no known mesh format; known are {}.", KnownMeshExtensions());
    } else if (bytes.empty()) {
        fault = "the file is empty.";
    } else {
        // The libraries that parse the formats throw on some kinds of damage, and on counts that no memory can hold.
        try {
            read = ReadAndConvert(*format, file, bytes, import, ground, fault);
        } catch (const std::bad_alloc&) {
            fault = "it asks for more memory than this machine has.";
        } catch (const std::exception& error) {
            fault = fmt::format("it is damaged ({}).", error.what());
        }
    }
    if (!read) problem = fmt::format("{}: {}", name, fault);
    return read;
}

bool ReadGround(const std::filesystem::path& file, const GroundImport& import, TriangleMesh& ground, std::string& problem) {
    std::string bytes;
    return ReadWholeFile(file, bytes, problem) && ReadGroundBytes(file, bytes, import, ground, problem);
}

std::string KnownMeshExtensions() {
    std::string list;
    for (const MeshFormat& format : kFormats) {
        if (!list.empty()) list += ", ";
        list += format.extension;
    }
    return list;
}

}  // namespace tavrik
