#include "host/car_model_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <exception>
#include <locale>
#include <map>
#include <new>
#include <sstream>
#include <string_view>
#include <utility>

#include "host/car_model_gltf.h"
#include "host/car_model_scene.h"
#include "host/obj_reader.h"
#include "host/read_file.h"
#include "host/side_path.h"

namespace tavrik {
namespace {

struct ObjGroup {
    std::string name;
    std::size_t triangles = 0;
};

/// The word behind a directive, without the blanks around it.
std::string Rest(std::string_view line, std::size_t from) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t", from), line.size()));
    return std::string(line.substr(0, line.find_last_not_of(" \t") + 1));
}

struct ObjOutline {
    std::vector<ObjGroup> groups;     // and objects, with how many triangles follow each
    std::vector<ObjGroup> materials;  // likewise
    std::vector<std::string> libraries;
};

ObjOutline OutlineOf(std::string_view text) {
    ObjOutline outline{{{}}, {{}}, {}};
    std::vector<ObjGroup>&groups = outline.groups, &materials = outline.materials;
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
            if (groups.back().triangles > 0) groups.emplace_back();
            groups.back().name = Rest(line, 1);
        } else if (line.starts_with("usemtl ")) {
            if (materials.back().triangles > 0) materials.emplace_back();
            materials.back().name = Rest(line, 7);
        } else if (line.starts_with("mtllib ")) {
            outline.libraries.push_back(Rest(line, 7));
        } else if (isDirective('f')) {
            std::size_t corners = 0;
            for (std::size_t i = 2; i <= line.size(); ++i) {
                const bool wasText = line[i - 1] != ' ' && line[i - 1] != '\t';
                const bool endsHere = i == line.size() || line[i] == ' ' || line[i] == '\t';
                corners += wasText && endsHere ? 1 : 0;
            }
            groups.back().triangles += corners > 2 ? corners - 2 : 0;
            materials.back().triangles += corners > 2 ? corners - 2 : 0;
        }
    }
    return outline;
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

/// The colours that an OBJ's libraries give. What is missing there stays plain.
void ReadColors(const std::filesystem::path& file, const ObjOutline& outline, std::map<std::string, int>& numbers,
                CarLooks& looks) {
    for (const std::string& library : outline.libraries) {
        std::filesystem::path path;
        std::string bytes, problem;
        if (!FindSideFile(file, library, path) || !ReadWholeFile(path, bytes, problem)) {
            looks.missed.push_back(fmt::format("{}: its materials in \"{}\" can't be read, so plain colours stand in.",
                                               file.string(), library.substr(0, 120)));
            continue;
        }
        std::istringstream lines(bytes);
        for (std::string line; std::getline(lines, line);) {
            std::istringstream words(line);
            words.imbue(std::locale::classic());
            std::string word;
            float red = 0, green = 0, blue = 0;
            words >> word;
            if (word == "newmtl") {
                while (!line.empty() && line.back() == '\r') line.pop_back();
                const std::string name = Rest(line, line.find("newmtl") + 6);
                numbers[name] = int(looks.materials.size());
                looks.materials.push_back({PlainMaterial()});
                looks.materials.back().material.name = MaterialName(name);
            } else if (word == "Kd" && !looks.materials.empty() && words >> red >> green >> blue) {
                looks.materials.back().material.red = std::clamp(red, 0.0f, 1.0f);
                looks.materials.back().material.green = std::clamp(green, 0.0f, 1.0f);
                looks.materials.back().material.blue = std::clamp(blue, 0.0f, 1.0f);
            }
        }
    }
}

/// The material of each face of an OBJ.
std::vector<int> ObjMaterials(const std::filesystem::path& file, const ObjOutline& outline, CarLooks& looks) {
    std::map<std::string, int> numbers;
    ReadColors(file, outline, numbers, looks);
    std::vector<int> materials;
    for (const ObjGroup& run : outline.materials) {
        const auto found = numbers.find(run.name);
        materials.insert(materials.end(), run.triangles, found == numbers.end() ? -1 : found->second);
    }
    return materials;
}

bool ReadObjCar(const std::filesystem::path& file, std::string_view bytes, const CarImport& import, CarModel& model,
                CarLooks& looks, std::string& problem) {
    FileMesh mesh;
    GroundImport ground;
    ground.mostTriangles = import.mostTriangles;
    if (!ReadObj(file, bytes, ground, mesh, problem)) return false;
    const ObjOutline outline = OutlineOf(bytes);
    std::vector<ObjGroup> groups = outline.groups;
    std::size_t sum = 0;
    for (const ObjGroup& group : groups) sum += group.triangles;
    // A polygon that folds back on itself is cut into fewer triangles; then nobody knows which are whose. Many tiny groups
    // would each walk the whole mesh.
    const bool isKnown = sum == mesh.faces.size();
    if (!isKnown || groups.size() > 2000) groups = {{file.stem().string(), mesh.faces.size()}};
    std::vector<int> materials(mesh.faces.size(), -1);
    if (isKnown) materials = ObjMaterials(file, outline, looks);
    std::size_t first = 0;
    for (const ObjGroup& group : groups) {
        if (group.triangles > 0) {
            model.parts.push_back(PartOf(mesh, first, group));
            const auto begin = materials.begin() + std::ptrdiff_t(first);
            looks.parts.emplace_back().materials.assign(begin, begin + std::ptrdiff_t(group.triangles));
        }
        first += group.triangles;
    }
    return true;
}

/// Stands a model that was read with Y up on its Z axis: (x, y, z) becomes (x, -z, y).
void StandUp(CarModel& model) {
    const DMatrix3 turn = {{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}, {0, 0, 0}}};
    for (ModelPart& part : model.parts) part.frame = Compose(part.frame, turn);
    model.usualForward = TransformPoint(model.usualForward, turn);
    model.stoodUp = true;
}

bool ReadAny(const std::filesystem::path& file, std::string_view bytes, const CarImport& import, CarModel& model,
             CarLooks& looks, std::string& problem) {
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
        if (!ReadObjCar(file, bytes, import, model, looks, problem)) return false;
    } else if (extension == ".glb" || extension == ".gltf") {
        up = UpAxis::Y;
        if (!ReadGltfCar(file, bytes, import, model, looks, problem)) return false;
    } else if (!ReadSceneCar(file, bytes, import, model, looks, up, problem)) {
        return false;
    }
    if (import.up != UpAxis::FromFile) up = import.up;
    if (up == UpAxis::Y) StandUp(model);
    return true;
}

bool ReadWithLooks(const std::filesystem::path& file, std::string_view bytes, const CarImport& import, CarModel& model,
                   CarLooks& looks, std::string& problem) {
    CarModel read;
    CarLooks readLooks;
    std::string fault;
    bool isRead = false;
    // The libraries that parse the formats throw on some kinds of damage, and on counts that no memory can hold.
    try {
        isRead = ReadAny(file, bytes, import, read, readLooks, fault);
    } catch (const std::bad_alloc&) {
        fault = "it asks for more memory than this machine has.";
    } catch (const std::exception& error) {
        fault = fmt::format("it is damaged ({}).", error.what());
    }
    if (isRead) {
        model = std::move(read);
        looks = std::move(readLooks);
    } else {
        problem = fmt::format("{}: {}", file.string(), fault);
    }
    return isRead;
}

}  // namespace

bool ReadCarModelBytes(const std::filesystem::path& file, std::string_view bytes, const CarImport& import, CarModel& model,
                       std::string& problem) {
    CarLooks looks;
    return ReadWithLooks(file, bytes, import, model, looks, problem);
}

bool ReadCarModel(const std::filesystem::path& file, const CarImport& import, CarModel& model, CarLooks& looks,
                  std::string& problem) {
    std::string bytes;
    return ReadWholeFile(file, bytes, problem) && ReadWithLooks(file, bytes, import, model, looks, problem);
}

bool ReadCarModel(const std::filesystem::path& file, const CarImport& import, CarModel& model, std::string& problem) {
    CarLooks looks;
    return ReadCarModel(file, import, model, looks, problem);
}

}  // namespace tavrik
