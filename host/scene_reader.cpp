#include "host/scene_reader.h"

#include <assimp/config.h>
#include <assimp/importerdesc.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <fmt/format.h>

#include <algorithm>
#include <assimp/Importer.hpp>
#include <cctype>
#include <cstdint>
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

/// Leaves the importer with the one loader for `extension`: it would try every other on a file that its own refuses, and most
/// of those were never meant for files from strangers.
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

/// Whether a PLY file's head has an end, for which the importer would look for ever. A short file deserves a quick answer.
bool HasWholeHead(const std::string& extension, std::string_view bytes) {
    return extension != "ply" || bytes.find("end_header") != std::string_view::npos;
}

/// What stands between the scene that the importer hands over and the file's own axes and unit.
struct FileHabit {
    UpAxis up = UpAxis::Z;
    double metresPerUnit = 1.0;
    DMatrix3 undo = IdentityDMatrix3();  // applied after the root's frame
};

/// The importer stands 3DS and COLLADA scenes on their Y axis, and brings COLLADA to metres, both in the root's frame. FBX it
/// only describes.
FileHabit HabitOf(const std::string& extension, const aiScene& scene, const GroundImport& import) {
    FileHabit habit;
    if (extension == "3ds") {
        habit.undo = {{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}, {0, 0, 0}}};  // (x, z, -y) back to (x, y, z)
    } else if (extension == "dae") {
        habit.up = UpAxis::Y;
        // A unit that the user tells is that of the file's own numbers, so the one that the file tells is taken out again.
        const double metres = Length(ToFrame(scene.mRootNode->mTransformation).row[0]);
        if (import.metresPerUnit > 0.0 && metres > 0.0) {
            for (int r = 0; r < 3; ++r) habit.undo.row[r] = habit.undo.row[r] / metres;
        }
    } else if (extension == "fbx") {
        habit.up = UpAxis::Y;
        double centimetres = 1.0;
        if (scene.mMetaData != nullptr) {
            float single = 1.0f;
            if (!scene.mMetaData->Get("UnitScaleFactor", centimetres) && scene.mMetaData->Get("UnitScaleFactor", single)) {
                centimetres = double(single);
            }
            std::int32_t upAxis = 1;
            if (scene.mMetaData->Get("UpAxis", upAxis) && upAxis == 2) habit.up = UpAxis::Z;
        }
        habit.metresPerUnit = centimetres > 0.0 ? centimetres * 0.01 : 0.01;
    }
    return habit;
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
        if (index >= scene_.mNumMeshes || scene_.mMeshes[index] == nullptr) {
            problem_ = fmt::format("mesh {} is used, but there are {}; export it again.", index, scene_.mNumMeshes);
            return false;
        }
        const aiMesh& part = *scene_.mMeshes[index];
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
        for (unsigned i = 0; i < part.mNumFaces; ++i) {
            const aiFace& face = part.mFaces[i];
            if (face.mNumIndices != 3) continue;  // points and lines
            MeshFace corners;
            for (unsigned c = 0; c < 3; ++c) {
                if (face.mIndices[c] >= part.mNumVertices) {
                    problem_ = fmt::format("face {} uses vertex {}, but there are {} (counted from 0); export it again.", i + 1,
                                           face.mIndices[c], part.mNumVertices);
                    return false;
                }
                corners.v[c] = first + face.mIndices[c];
            }
            mesh_.faces.push_back(corners);
        }
        return true;
    }

    const aiScene& scene_;
    const std::size_t mostTriangles_;
    FileMesh& mesh_;
    std::string& problem_;
};

bool ImportScene(const std::string& extension, std::string_view bytes, const GroundImport& import, FileMesh& mesh,
                 std::string& problem) {
    Assimp::Importer importer;
    KeepOneLoader(importer, extension);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_ANIMATIONS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_TEXTURES, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_MATERIALS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_IGNORE_UP_DIRECTION, import.up != UpAxis::FromFile);
    const aiScene* scene = importer.ReadFileFromMemory(bytes.data(), bytes.size(), aiProcess_Triangulate, extension.c_str());
    if (scene == nullptr || scene->mRootNode == nullptr) {
        std::string reason = importer.GetErrorString();
        reason = reason.substr(0, std::min<std::size_t>(reason.find('\n'), 200));
        problem = fmt::format("this is not a readable .{} mesh ({}).", extension, reason.empty() ? "no reason given" : reason);
        return false;
    }
    const FileHabit habit = HabitOf(extension, *scene, import);
    mesh.up = habit.up;
    mesh.metresPerUnit = habit.metresPerUnit;
    return SceneGatherer(*scene, import.mostTriangles, mesh, problem).Run(habit.undo);
}

/// A mesh, or the problem with it, as bytes from one process to another of the same program.
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

struct AnswerHead {
    std::uint64_t read, verts, faces;
    UpAxis up;
    double metresPerUnit;
};

std::string PackAnswer(bool read, const FileMesh& mesh, const std::string& problem) {
    if (!read) {
        const AnswerHead head{0, 0, 0, UpAxis::Z, 1.0};
        std::string bytes;
        Append(bytes, &head, 1);
        return bytes + problem;
    }
    const AnswerHead head{1, mesh.verts.size(), mesh.faces.size(), mesh.up, mesh.metresPerUnit};
    std::string bytes;
    bytes.reserve(sizeof head + mesh.verts.size() * sizeof(DPoint3) + mesh.faces.size() * sizeof(MeshFace));
    Append(bytes, &head, 1);
    Append(bytes, mesh.verts.data(), mesh.verts.size());
    Append(bytes, mesh.faces.data(), mesh.faces.size());
    return bytes;
}

bool UnpackAnswer(std::string_view bytes, FileMesh& mesh, std::string& problem) {
    AnswerHead head;
    if (!Take(bytes, &head, 1)) return false;
    if (head.read == 0) {
        problem = bytes;
        return false;
    }
    mesh.up = head.up;
    mesh.metresPerUnit = head.metresPerUnit;
    mesh.verts.resize(std::size_t(head.verts));
    mesh.faces.resize(std::size_t(head.faces));
    return Take(bytes, mesh.verts.data(), mesh.verts.size()) && Take(bytes, mesh.faces.data(), mesh.faces.size());
}

}  // namespace

bool ReadScene(const std::filesystem::path& file, std::string_view bytes, const GroundImport& import, FileMesh& mesh,
               std::string& problem) {
    const std::string extension = LowerExtension(file);
    if (!HasWholeHead(extension, bytes)) {
        problem = "this is not a readable .ply mesh, its head has no end; copy or export it again.";
        return false;
    }
    const auto work = [&] {
        FileMesh imported;
        std::string fault;
        bool read = false;
        try {
            read = ImportScene(extension, bytes, import, imported, fault);
        } catch (const std::exception& error) {
            fault = fmt::format("this is not a readable .{} mesh ({}).", extension, error.what());
        }
        return PackAnswer(read, imported, fault);
    };
    // The importer reads some ten MB a second. On damaged files it may crash, or never come back.
    constexpr double kLeastSeconds = 10.0, kSecondsPerByte = 2e-6;
    std::string answer;
    switch (RunInChild(work, kLeastSeconds + kSecondsPerByte * double(bytes.size()), answer)) {
        case ChildEnd::Answered:
            return UnpackAnswer(answer, mesh, problem);
        case ChildEnd::Crashed:
            problem =
                fmt::format("this is not a readable .{} mesh, its parts contradict each other; export it again.", extension);
            return false;
        case ChildEnd::TooSlow:
            problem = fmt::format("this is not a readable .{} mesh, reading it comes to no end; export it again.", extension);
            return false;
        case ChildEnd::NotStarted:
            break;
    }
    problem = "there is no room for one more process to read it in.";
    return false;
}

}  // namespace tavrik
