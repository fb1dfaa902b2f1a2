#include "host/car_model_scene.h"

#include <assimp/config.h>
#include <assimp/importerdesc.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <fmt/format.h>

#include <algorithm>
#include <assimp/Importer.hpp>
#include <cctype>
#include <cmath>
#include <cstring>
#include <exception>
#include <set>
#include <sstream>
#include <vector>

#include "host/child_process.h"

namespace tavrik {
namespace {

std::string LowerExtension(const std::filesystem::path& file) {
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    return extension.empty() ? extension : extension.substr(1);
}

/// Leaves the importer with the one loader for `extension`: it would try every other on a file that its own refuses.
void KeepOneLoader(Assimp::Importer& importer, const std::string& extension) {
    std::vector<Assimp::BaseImporter*> others;
    for (std::size_t i = 0; i < importer.GetImporterCount(); ++i) {
        std::istringstream extensions(importer.GetImporterInfo(i)->mFileExtensions);
        bool wanted = false;
        for (std::string one; extensions >> one;) wanted = wanted || one == extension;
        if (!wanted) others.push_back(importer.GetImporter(i));
    }
    for (Assimp::BaseImporter* other : others) importer.UnregisterLoader(other);
}

DMatrix3 ToFrame(const aiMatrix4x4& m) {
    return {{{double(m.a1), double(m.b1), double(m.c1)},
             {double(m.a2), double(m.b2), double(m.c2)},
             {double(m.a3), double(m.b3), double(m.c3)},
             {double(m.a4), double(m.b4), double(m.c4)}}};
}

/// Names of nodes that an animation takes round.
std::set<std::string> TurnedNodes(const aiScene& scene) {
    std::set<std::string> names;
    for (unsigned a = 0; a < scene.mNumAnimations; ++a) {
        for (unsigned c = 0; c < scene.mAnimations[a]->mNumChannels; ++c) {
            const aiNodeAnim& channel = *scene.mAnimations[a]->mChannels[c];
            for (unsigned k = 1; k < channel.mNumRotationKeys; ++k) {
                const aiQuaternion &p = channel.mRotationKeys[0].mValue, &q = channel.mRotationKeys[k].mValue;
                const double cosine = double(p.x * q.x + p.y * q.y + p.z * q.z + p.w * q.w);
                if (std::abs(cosine) < 0.5) names.insert(channel.mNodeName.C_Str());
            }
        }
    }
    return names;
}

class SceneCarGatherer {
 public:
    SceneCarGatherer(const aiScene& scene, std::size_t mostTriangles, CarModel& car, CarLooks& looks, std::string& problem)
        : scene_(scene),
          mostTriangles_(mostTriangles),
          car_(car),
          looks_(looks),
          problem_(problem),
          turned_(TurnedNodes(scene)) {}

    bool Run(const DMatrix3& afterRoot) {
        struct Visit {
            const aiNode* node;
            int parent;
        };
        AddMaterials();
        std::vector<Visit> open{{scene_.mRootNode, -1}};
        while (!open.empty()) {
            const Visit visit = open.back();
            open.pop_back();
            ModelPart part;
            part.name = visit.node->mName.C_Str();
            part.parent = visit.parent;
            part.spins = turned_.contains(part.name);
            part.frame = Compose(ToFrame(visit.node->mTransformation),
                                 visit.parent < 0 ? afterRoot : car_.parts[std::size_t(visit.parent)].frame);
            looks_.parts.emplace_back();
            if (visit.node->mNumMeshes == 1) part.mesh = int(visit.node->mMeshes[0]);
            for (unsigned i = 0; i < visit.node->mNumMeshes; ++i) {
                if (!AddMesh(visit.node->mMeshes[i], part)) return false;
            }
            car_.parts.push_back(std::move(part));
            const int index = int(car_.parts.size()) - 1;
            for (unsigned i = visit.node->mNumChildren; i-- > 0;) open.push_back({visit.node->mChildren[i], index});
        }
        return true;
    }

 private:
    void AddMaterials() {
        for (unsigned i = 0; i < scene_.mNumMaterials; ++i) {
            ShapeMaterial made = PlainMaterial();
            aiString name;
            aiColor3D color;
            if (scene_.mMaterials[i]->Get(AI_MATKEY_NAME, name) == AI_SUCCESS) made.name = MaterialName(name.C_Str());
            if (scene_.mMaterials[i]->Get(AI_MATKEY_COLOR_DIFFUSE, color) == AI_SUCCESS) {
                const auto part = [](ai_real value) {
                    return std::isfinite(value) ? std::clamp(float(value), 0.0f, 1.0f) : 0.5f;
                };
                made.red = part(color.r);
                made.green = part(color.g);
                made.blue = part(color.b);
            }
            looks_.materials.push_back({std::move(made)});
        }
    }

    bool AddMesh(unsigned index, ModelPart& part) {
        if (index >= scene_.mNumMeshes || scene_.mMeshes[index] == nullptr) {
            problem_ = fmt::format("mesh {} is used, but there are {}; export it again.", index, scene_.mNumMeshes);
            return false;
        }
        const aiMesh& mesh = *scene_.mMeshes[index];
        triangles_ += mesh.mNumFaces;
        points_ += mesh.mNumVertices;
        if (triangles_ > mostTriangles_ || points_ > 3 * mostTriangles_) {
            problem_ = fmt::format("it holds more than the {} triangles that a car model may have.", mostTriangles_);
            return false;
        }
        const std::uint32_t first = std::uint32_t(part.vertices.size());
        for (unsigned i = 0; i < mesh.mNumVertices; ++i) {
            const aiVector3D& v = mesh.mVertices[i];
            part.vertices.push_back({double(v.x), double(v.y), double(v.z)});
        }
        PartLooks& looks = looks_.parts.back();
        looks.normals.resize(first);
        for (unsigned i = 0; i < mesh.mNumVertices && mesh.mNormals != nullptr; ++i) {
            const aiVector3D& n = mesh.mNormals[i];
            looks.normals.push_back({double(n.x), double(n.y), double(n.z)});
        }
        looks.normals.resize(part.vertices.size());
        const bool isKnown = mesh.mMaterialIndex < scene_.mNumMaterials;
        for (unsigned i = 0; i < mesh.mNumFaces; ++i) {
            const aiFace& face = mesh.mFaces[i];
            if (face.mNumIndices != 3) continue;  // points and lines
            MeshFace corners;
            for (unsigned c = 0; c < 3; ++c) {
                if (face.mIndices[c] >= mesh.mNumVertices) {
                    problem_ = fmt::format("face {} uses vertex {}, but there are {} (counted from 0); export it again.", i + 1,
                                           face.mIndices[c], mesh.mNumVertices);
                    return false;
                }
                corners.v[c] = first + face.mIndices[c];
            }
            part.faces.push_back(corners);
            looks.materials.push_back(isKnown ? int(mesh.mMaterialIndex) : -1);
        }
        return true;
    }

    const aiScene& scene_;
    const std::size_t mostTriangles_;
    CarModel& car_;
    CarLooks& looks_;
    std::string& problem_;
    const std::set<std::string> turned_;
    std::size_t triangles_ = 0, points_ = 0;
};

/// The importer stands 3DS and COLLADA scenes on their Y axis, and brings COLLADA to metres, both in the root's frame. FBX it
/// only describes.
DMatrix3 ReadHabit(const std::string& extension, const aiScene& scene, CarModel& model, UpAxis& up) {
    up = UpAxis::Z;
    model.metresPerUnit = 1.0;
    if (extension == "3ds") return {{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}, {0, 0, 0}}};  // (x, z, -y) back to (x, y, z)
    if (extension == "dae") up = UpAxis::Y;
    if (extension == "fbx") {
        up = UpAxis::Y;
        double centimetres = 1.0;
        if (scene.mMetaData != nullptr) {
            float single = 1.0f;
            if (!scene.mMetaData->Get("UnitScaleFactor", centimetres) && scene.mMetaData->Get("UnitScaleFactor", single)) {
                centimetres = double(single);
            }
            std::int32_t upAxis = 1;
            if (scene.mMetaData->Get("UpAxis", upAxis) && upAxis == 2) up = UpAxis::Z;
        }
        model.metresPerUnit = centimetres > 0.0 ? centimetres * 0.01 : 0.01;
    }
    return IdentityDMatrix3();
}

bool ImportCar(const std::string& extension, std::string_view bytes, const CarImport& import, CarModel& model, CarLooks& looks,
               UpAxis& up, std::string& problem) {
    Assimp::Importer importer;
    KeepOneLoader(importer, extension);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_TEXTURES, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_USE_COLLADA_NAMES, true);  // instead of identifiers
    importer.SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_IGNORE_UP_DIRECTION, import.up != UpAxis::FromFile);
    const aiScene* scene = importer.ReadFileFromMemory(bytes.data(), bytes.size(), aiProcess_Triangulate, extension.c_str());
    if (scene == nullptr || scene->mRootNode == nullptr) {
        std::string reason = importer.GetErrorString();
        reason = reason.substr(0, std::min<std::size_t>(reason.find('\n'), 200));
        problem = fmt::format("this is not a readable .{} model ({}).", extension, reason.empty() ? "no reason given" : reason);
        return false;
    }
    const DMatrix3 undo = ReadHabit(extension, *scene, model, up);
    return SceneCarGatherer(*scene, import.mostTriangles, model, looks, problem).Run(undo);
}

// A model, or the problem with it, as bytes from one process to another of the same program.

template <typename Value>
void Append(std::string& bytes, const Value* values, std::size_t count) {
    if (count > 0) bytes.append(reinterpret_cast<const char*>(values), count * sizeof(Value));
}

template <typename Value>
bool Take(std::string_view& bytes, Value* values, std::size_t count) {
    if (count > bytes.size() / sizeof(Value)) return false;
    if (count > 0) std::memcpy(values, bytes.data(), count * sizeof(Value));
    bytes.remove_prefix(count * sizeof(Value));
    return true;
}

struct ModelHead {
    std::uint64_t read, parts, materials;
    double metresPerUnit;
    UpAxis up;
};
struct PartHead {
    std::uint64_t name, vertices, faces, normals, faceMaterials;
    DMatrix3 frame;
    std::int32_t parent, mesh, spins;
};
struct MaterialHead {
    std::uint64_t name;
    float red, green, blue;
};

std::string Pack(bool read, const CarModel& model, const CarLooks& looks, UpAxis up, const std::string& problem) {
    std::string bytes;
    const ModelHead head{read ? 1u : 0u, model.parts.size(), looks.materials.size(), model.metresPerUnit, up};
    Append(bytes, &head, 1);
    if (!read) return bytes + problem;
    for (const auto& [material, picture] : looks.materials) {
        const MaterialHead materialHead{material.name.size(), material.red, material.green, material.blue};
        Append(bytes, &materialHead, 1);
        bytes += material.name;
    }
    for (std::size_t i = 0; i < model.parts.size(); ++i) {
        const ModelPart& part = model.parts[i];
        const PartLooks& its = looks.parts[i];
        const PartHead partHead{part.name.size(),     part.vertices.size(), part.faces.size(), its.normals.size(),
                                its.materials.size(), part.frame,           part.parent,       part.mesh,
                                part.spins ? 1 : 0};
        Append(bytes, &partHead, 1);
        bytes += part.name;
        Append(bytes, part.vertices.data(), part.vertices.size());
        Append(bytes, part.faces.data(), part.faces.size());
        Append(bytes, its.normals.data(), its.normals.size());
        Append(bytes, its.materials.data(), its.materials.size());
    }
    return bytes;
}

bool Unpack(std::string_view bytes, CarModel& model, CarLooks& looks, UpAxis& up, std::string& problem) {
    problem = "the process that read it fell silent.";
    ModelHead head;
    if (!Take(bytes, &head, 1)) return false;
    if (head.read == 0) {
        problem = bytes;
        return false;
    }
    model.metresPerUnit = head.metresPerUnit;
    up = head.up;
    for (std::uint64_t i = 0; i < head.materials; ++i) {
        MaterialHead materialHead;
        if (!Take(bytes, &materialHead, 1) || materialHead.name > bytes.size()) return false;
        ShapeMaterial material = PlainMaterial();
        material.name = bytes.substr(0, std::size_t(materialHead.name));
        bytes.remove_prefix(std::size_t(materialHead.name));
        material.red = materialHead.red;
        material.green = materialHead.green;
        material.blue = materialHead.blue;
        looks.materials.push_back({std::move(material)});
    }
    for (std::uint64_t i = 0; i < head.parts; ++i) {
        PartHead partHead;
        if (!Take(bytes, &partHead, 1) || partHead.name > bytes.size()) return false;
        ModelPart part;
        part.name = bytes.substr(0, std::size_t(partHead.name));
        bytes.remove_prefix(std::size_t(partHead.name));
        part.frame = partHead.frame;
        part.parent = partHead.parent;
        part.mesh = partHead.mesh;
        part.spins = partHead.spins != 0;
        part.vertices.resize(std::size_t(partHead.vertices));
        part.faces.resize(std::size_t(partHead.faces));
        if (!Take(bytes, part.vertices.data(), part.vertices.size())) return false;
        if (!Take(bytes, part.faces.data(), part.faces.size())) return false;
        PartLooks& its = looks.parts.emplace_back();
        its.normals.resize(std::size_t(partHead.normals));
        its.materials.resize(std::size_t(partHead.faceMaterials));
        if (!Take(bytes, its.normals.data(), its.normals.size())) return false;
        if (!Take(bytes, its.materials.data(), its.materials.size())) return false;
        model.parts.push_back(std::move(part));
    }
    return true;
}

}  // namespace

bool ReadSceneCar(const std::filesystem::path& file, std::string_view bytes, const CarImport& import, CarModel& model,
                  CarLooks& looks, UpAxis& up, std::string& problem) {
    const std::string extension = LowerExtension(file);
    if (extension == "ply" && bytes.find("end_header") == std::string_view::npos) {
        problem = "this is not a readable .ply model, its head has no end; copy or export it again.";
        return false;
    }
    const auto work = [&] {
        CarModel imported;
        CarLooks importedLooks;
        UpAxis importedUp = UpAxis::Z;
        std::string fault;
        bool read = false;
        try {
            read = ImportCar(extension, bytes, import, imported, importedLooks, importedUp, fault);
        } catch (const std::exception& error) {
            fault = fmt::format("this is not a readable .{} model ({}).", extension, error.what());
        }
        return Pack(read, imported, importedLooks, importedUp, fault);
    };
    constexpr double kLeastSeconds = 10.0, kSecondsPerByte = 2e-6;
    std::string answer;
    switch (RunInChild(work, kLeastSeconds + kSecondsPerByte * double(bytes.size()), answer)) {
        case ChildEnd::Answered:
            return Unpack(answer, model, looks, up, problem);
        case ChildEnd::Crashed:
            problem =
                fmt::format("this is not a readable .{} model, its parts contradict each other; export it again.", extension);
            return false;
        case ChildEnd::TooSlow:
            problem = fmt::format("this is not a readable .{} model, reading it comes to no end; export it again.", extension);
            return false;
        case ChildEnd::NotStarted:
            break;
    }
    problem = "there is no room for one more process to read it in.";
    return false;
}

}  // namespace tavrik
