#include "host/scene_reader.h"

#include <assimp/config.h>
#include <assimp/scene.h>
#include <fmt/format.h>

#include <assimp/Importer.hpp>
#include <cstdint>
#include <vector>

#include "host/importer.h"
#include "host/packed_values.h"

namespace tavrik {
namespace {

/// A unit that the user tells is that of the file's own numbers, so the one that a COLLADA file tells, which the importer has
/// worked in, is taken out again.
void TakeUnitOut(const aiScene& scene, FileHabit& habit) {
    const double metres = Length(ToFrame(scene.mRootNode->mTransformation).row[0]);
    for (int r = 0; r < 3 && metres > 0.0; ++r) habit.undo.row[r] = habit.undo.row[r] / metres;
}

class SceneGatherer {
 public:
    SceneGatherer(const aiScene& scene, std::size_t mostTriangles, FileMesh& mesh, std::string& problem)
        : scene_(scene), mostTriangles_(mostTriangles), mesh_(mesh), problem_(problem) {}

    bool Run(const DMatrix3& afterRoot) {
        struct Visit {
            const aiNode* node;
            DMatrix3 parent;
        };
        std::vector<Visit> open{{scene_.mRootNode, afterRoot}};
        while (!open.empty()) {
            const Visit visit = open.back();
            open.pop_back();
            const DMatrix3 world = Compose(ToFrame(visit.node->mTransformation), visit.parent);
            for (unsigned i = 0; i < visit.node->mNumMeshes; ++i) {
                if (!AddMesh(visit.node->mMeshes[i], world)) return false;
            }
            for (unsigned i = visit.node->mNumChildren; i-- > 0;) open.push_back({visit.node->mChildren[i], world});
        }
        return true;
    }

 private:
    bool AddMesh(unsigned index, const DMatrix3& world) {
        const aiMesh* found = FindMesh(scene_, index, problem_);
        if (found == nullptr) return false;
        const aiMesh& part = *found;
        if (mesh_.verts.size() + part.mNumVertices > 3 * mostTriangles_ ||
            mesh_.faces.size() + part.mNumFaces > mostTriangles_) {
            problem_ = fmt::format("it holds more than the {} triangles that a ground may have.", mostTriangles_);
            return false;
        }
        const std::uint32_t first = std::uint32_t(mesh_.verts.size());
        for (unsigned i = 0; i < part.mNumVertices; ++i) {
            const aiVector3D& v = part.mVertices[i];
            mesh_.verts.push_back(TransformPoint({double(v.x), double(v.y), double(v.z)}, world));
        }
        return AppendFaces(part, first, mesh_.faces, problem_);
    }

    const aiScene& scene_;
    const std::size_t mostTriangles_;
    FileMesh& mesh_;
    std::string& problem_;
};

bool ImportScene(const ImportedFile& file, const GroundImport& import, FileMesh& mesh, std::string& problem) {
    Assimp::Importer importer;
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_ANIMATIONS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_TEXTURES, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_MATERIALS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_IGNORE_UP_DIRECTION, import.up != UpAxis::FromFile);
    const aiScene* scene = OpenImported(importer, file, problem);
    if (scene == nullptr) return false;
    FileHabit habit = HabitOf(file.extension, *scene);
    if (file.extension == "dae" && import.metresPerUnit > 0.0) TakeUnitOut(*scene, habit);
    mesh.up = habit.up;
    mesh.metresPerUnit = habit.metresPerUnit;
    return SceneGatherer(*scene, import.mostTriangles, mesh, problem).Run(habit.undo);
}

struct MeshHead {
    std::uint64_t verts, faces;
    UpAxis up;
    double metresPerUnit;
};

void Pack(const FileMesh& mesh, std::string& bytes) {
    const MeshHead head{mesh.verts.size(), mesh.faces.size(), mesh.up, mesh.metresPerUnit};
    bytes.reserve(bytes.size() + sizeof head + mesh.verts.size() * sizeof(DPoint3) + mesh.faces.size() * sizeof(MeshFace));
    Append(bytes, &head, 1);
    Append(bytes, mesh.verts.data(), mesh.verts.size());
    Append(bytes, mesh.faces.data(), mesh.faces.size());
}

bool Unpack(std::string_view bytes, FileMesh& mesh) {
    MeshHead head;
    if (!Take(bytes, &head, 1)) return false;
    mesh.up = head.up;
    mesh.metresPerUnit = head.metresPerUnit;
    mesh.verts.resize(std::size_t(head.verts));
    mesh.faces.resize(std::size_t(head.faces));
    return Take(bytes, mesh.verts.data(), mesh.verts.size()) && Take(bytes, mesh.faces.data(), mesh.faces.size());
}

}  // namespace

bool ReadScene(const std::filesystem::path& file, std::string_view bytes, const GroundImport& import, FileMesh& mesh,
               std::string& problem) {
    const ImportedFile imported = MakeImportedFile(file, bytes, "mesh");
    const auto pack = [&](std::string& answer, std::string& fault) {
        FileMesh found;
        if (!ImportScene(imported, import, found, fault)) return false;
        Pack(found, answer);
        return true;
    };
    return ImportInChild(
        imported, pack, [&](std::string_view answer) { return Unpack(answer, mesh); }, problem);
}

}  // namespace tavrik
