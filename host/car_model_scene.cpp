#include "host/car_model_scene.h"

#include <assimp/config.h>
#include <assimp/scene.h>
#include <fmt/format.h>

#include <algorithm>
#include <assimp/Importer.hpp>
#include <cmath>
#include <cstdint>
#include <set>
#include <utility>
#include <vector>

#include "host/importer.h"
#include "host/packed_values.h"

namespace tavrik {
namespace {

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
        const aiMesh* found = FindMesh(scene_, index, problem_);
        if (found == nullptr) return false;
        const aiMesh& mesh = *found;
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
        if (!AppendFaces(mesh, first, part.faces, problem_)) return false;
        looks.materials.resize(part.faces.size(), mesh.mMaterialIndex < scene_.mNumMaterials ? int(mesh.mMaterialIndex) : -1);
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

bool ImportCar(const ImportedFile& file, const CarImport& import, CarModel& model, CarLooks& looks, UpAxis& up,
               std::string& problem) {
    Assimp::Importer importer;
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_TEXTURES, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_USE_COLLADA_NAMES, true);  // instead of identifiers
    importer.SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_IGNORE_UP_DIRECTION, import.up != UpAxis::FromFile);
    const aiScene* scene = OpenImported(importer, file, problem);
    if (scene == nullptr) return false;
    const FileHabit habit = HabitOf(file.extension, *scene);
    model.metresPerUnit = habit.metresPerUnit;
    up = habit.up;
    return SceneCarGatherer(*scene, import.mostTriangles, model, looks, problem).Run(habit.undo);
}

struct ModelHead {
    std::uint64_t parts, materials;
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

void Pack(const CarModel& model, const CarLooks& looks, UpAxis up, std::string& bytes) {
    const ModelHead head{model.parts.size(), looks.materials.size(), model.metresPerUnit, up};
    Append(bytes, &head, 1);
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
}

bool Unpack(std::string_view bytes, CarModel& model, CarLooks& looks, UpAxis& up) {
    ModelHead head;
    if (!Take(bytes, &head, 1)) return false;
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
    const ImportedFile imported = MakeImportedFile(file, bytes, "model");
    const auto pack = [&](std::string& answer, std::string& fault) {
        CarModel found;
        CarLooks itsLooks;
        UpAxis itsUp = UpAxis::Z;
        if (!ImportCar(imported, import, found, itsLooks, itsUp, fault)) return false;
        Pack(found, itsLooks, itsUp, answer);
        return true;
    };
    const auto unpack = [&](std::string_view answer) { return Unpack(answer, model, looks, up); };
    return ImportInChild(imported, pack, unpack, problem);
}

}  // namespace tavrik
