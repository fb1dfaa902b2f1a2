#include "host/car_model_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <exception>
#include <new>
#include <string_view>
#include <utility>

#include "host/car_model_gltf.h"
#include "host/car_model_scene.h"
#include "host/obj_reader.h"
#include "host/read_file.h"

namespace tavrik {
namespace {

struct ObjGroup {
    std::string name;
    std::size_t triangles = 0;
};

/// The groups and objects of an OBJ file with how many triangles follow each.
std::vector<ObjGroup> ObjGroups(std::string_view text) {
    std::vector<ObjGroup> groups{{}};
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        line = line.substr(0, line.find('#'));
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        const auto isDirective = [&](char letter) {
            return line.size() > 1 && line[0] == letter && (line[1] == ' ' || line[1] == '\t');
        };
        if (isDirective('o') || isDirective('g')) {
            line.remove_prefix(std::min(line.find_first_not_of(" \t", 1), line.size()));
            if (groups.back().triangles > 0) groups.emplace_back();
            groups.back().name = line.substr(0, line.find_last_not_of(" \t") + 1);
        } else if (isDirective('f')) {
            std::size_t corners = 0;
            for (std::size_t i = 2; i <= line.size(); ++i) {
                const bool wasText = line[i - 1] != ' ' && line[i - 1] != '\t';
                const bool endsHere = i == line.size() || line[i] == ' ' || line[i] == '\t';
                corners += wasText && endsHere ? 1 : 0;
            }
            groups.back().triangles += corners > 2 ? corners - 2 : 0;
        }
    }
    return groups;
}

/// Moves `faces` of the mesh from `first` on into a part of their own, with the vertices that they use.
ModelPart PartOf(const FileMesh& mesh, std::size_t first, const ObjGroup& group) {
    ModelPart part;
    part.name = group.name;
    constexpr std::uint32_t kNone = 0xffffffff;
    std::vector<std::uint32_t> numbers(mesh.verts.size(), kNone);
    for (std::size_t f = first; f < first + group.triangles; ++f) {
        MeshFace face = mesh.faces[f];
        for (std::uint32_t& v : face.v) {
            if (numbers[v] == kNone) {
                numbers[v] = std::uint32_t(part.vertices.size());
                part.vertices.push_back(mesh.verts[v]);
            }
            v = numbers[v];
        }
        part.faces.push_back(face);
    }
    return part;
}

bool ReadObjCar(const std::filesystem::path& file, std::string_view bytes, const CarImport& import, CarModel& model,
                std::string& problem) {
    FileMesh mesh;
    GroundImport ground;
    ground.mostTriangles = import.mostTriangles;
    if (!ReadObj(file, bytes, ground, mesh, problem)) return false;
    std::vector<ObjGroup> groups = ObjGroups(bytes);
    std::size_t sum = 0;
    for (const ObjGroup& group : groups) sum += group.triangles;
    // A polygon that folds back on itself is cut into fewer triangles; then nobody knows which are whose. Many tiny groups
    // would each walk the whole mesh.
    if (sum != mesh.faces.size() || groups.size() > 2000) groups = {{file.stem().string(), mesh.faces.size()}};
    std::size_t first = 0;
    for (const ObjGroup& group : groups) {
        if (group.triangles > 0) model.parts.push_back(PartOf(mesh, first, group));
        first += group.triangles;
    }
    return true;
}

/// Stands a model that was read with Y up on its Z axis: (x, y, z) becomes (x, -z, y).
void StandUp(CarModel& model) {
    const DMatrix3 turn = {{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}, {0, 0, 0}}};
    for (ModelPart& part : model.parts) part.frame = Compose(part.frame, turn);
    model.usualForward = TransformPoint(model.usualForward, turn);
}

bool ReadAny(const std::filesystem::path& file, std::string_view bytes, const CarImport& import, CarModel& model,
             std::string& problem) {
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    const bool isKnown = extension == ".obj" || extension == ".glb" || extension == ".gltf" || extension == ".fbx" ||
                         extension == ".ply" || extension == ".stl" || extension == ".dae" || extension == ".3ds";
    if (!isKnown) {
        problem = fmt::format("its extension names no known mesh format; known are {}.", KnownMeshExtensions());
        return false;
    }
    if (bytes.empty()) {
        problem = "the file is empty.";
        return false;
    }
    UpAxis up = UpAxis::Z;
    if (extension == ".obj") {
        if (!ReadObjCar(file, bytes, import, model, problem)) return false;
    } else if (extension == ".glb" || extension == ".gltf") {
        up = UpAxis::Y;
        if (!ReadGltfCar(file, bytes, import, model, problem)) return false;
    } else if (!ReadSceneCar(file, bytes, import, model, up, problem)) {
        return false;
    }
    if (import.up != UpAxis::FromFile) up = import.up;
    if (up == UpAxis::Y) StandUp(model);
    return true;
}

}  // namespace

bool ReadCarModelBytes(const std::filesystem::path& file, std::string_view bytes, const CarImport& import, CarModel& model,
                       std::string& problem) {
    CarModel read;
    std::string fault;
    bool isRead = false;
    // The libraries that parse the formats throw on some kinds of damage, and on counts that no memory can hold.
    try {
        isRead = ReadAny(file, bytes, import, read, fault);
    } catch (const std::bad_alloc&) {
        fault = "it asks for more memory than this machine has.";
    } catch (const std::exception& error) {
        fault = fmt::format("it is damaged ({}).", error.what());
    }
    if (isRead) {
        model = std::move(read);
    } else {
        problem = fmt::format("{}: {}", file.string(), fault);
    }
    return isRead;
}

bool ReadCarModel(const std::filesystem::path& file, const CarImport& import, CarModel& model, std::string& problem) {
    std::string bytes;
    return ReadWholeFile(file, bytes, problem) && ReadCarModelBytes(file, bytes, import, model, problem);
}

}  // namespace tavrik
