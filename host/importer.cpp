#include "host/importer.h"

#include <assimp/importerdesc.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <fmt/format.h>

#include <algorithm>
#include <assimp/Importer.hpp>
#include <cctype>
#include <exception>
#include <sstream>

#include "host/child_process.h"

namespace tavrik {
namespace {

std::string LowerExtension(const std::filesystem::path& file) {
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    return extension.empty() ? extension : extension.substr(1);
}

std::string NotReadable(const ImportedFile& file, const std::string& reason) {
    return fmt::format("this is not a readable .{} {}{}.", file.extension, file.noun, reason);
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

/// Whether a PLY file's head has an end, for which the importer would look for ever. A short file deserves a quick answer.
bool HasWholeHead(const ImportedFile& file) {
    return file.extension != "ply" || file.bytes.find("end_header") != std::string_view::npos;
}

// The first byte of what the process with the importer answers. What was found, or the problem, follows.
constexpr char kRead = 'r', kNotRead = 'n';

std::string AnswerOf(const ImportedFile& file, const PackImport& pack) {
    std::string answer(1, kRead), problem;
    try {
        if (pack(answer, problem)) return answer;
    } catch (const std::exception& error) {
        problem = NotReadable(file, fmt::format(" ({})", error.what()));
    }
    return kNotRead + problem;
}

bool TakeAnswer(std::string_view answer, const UnpackImport& unpack, std::string& problem) {
    if (answer.starts_with(kNotRead)) {
        problem = answer.substr(1);
        return false;
    }
    if (answer.starts_with(kRead) && unpack(answer.substr(1))) return true;
    problem = "the process that read it fell silent.";
    return false;
}

}  // namespace

ImportedFile MakeImportedFile(const std::filesystem::path& file, std::string_view bytes, const char* noun) {
    return {LowerExtension(file), bytes, noun};
}

bool ImportInChild(const ImportedFile& file, const PackImport& pack, const UnpackImport& unpack, std::string& problem) {
    if (!HasWholeHead(file)) {
        problem = NotReadable(file, ", its head has no end; copy or export it again");
        return false;
    }
    // The importer reads some ten MB a second. On damaged files it may crash, or never come back.
    constexpr double kLeastSeconds = 10.0, kSecondsPerByte = 2e-6;
    const double seconds = kLeastSeconds + kSecondsPerByte * double(file.bytes.size());
    std::string answer;
    switch (RunInChild([&] { return AnswerOf(file, pack); }, seconds, answer)) {
        case ChildEnd::Answered:
            return TakeAnswer(answer, unpack, problem);
        case ChildEnd::Crashed:
            problem = NotReadable(file, ", its parts contradict each other; export it again");
            return false;
        case ChildEnd::TooSlow:
            problem = NotReadable(file, ", reading it comes to no end; export it again");
            return false;
        case ChildEnd::NotStarted:
            break;
    }
    problem = "there is no room for one more process to read it in.";
    return false;
}

const aiScene* OpenImported(Assimp::Importer& importer, const ImportedFile& file, std::string& problem) {
    KeepOneLoader(importer, file.extension);
    const aiScene* scene =
        importer.ReadFileFromMemory(file.bytes.data(), file.bytes.size(), aiProcess_Triangulate, file.extension.c_str());
    if (scene != nullptr && scene->mRootNode != nullptr) return scene;
    std::string reason = importer.GetErrorString();
    reason = reason.substr(0, std::min<std::size_t>(reason.find('\n'), 200));
    problem = NotReadable(file, fmt::format(" ({})", reason.empty() ? "no reason given" : reason));
    return nullptr;
}

DMatrix3 ToFrame(const aiMatrix4x4& m) {
    return {{{double(m.a1), double(m.b1), double(m.c1)},
             {double(m.a2), double(m.b2), double(m.c2)},
             {double(m.a3), double(m.b3), double(m.c3)},
             {double(m.a4), double(m.b4), double(m.c4)}}};
}

/// The importer stands 3DS and COLLADA scenes on their Y axis, and brings COLLADA to metres, both in the root's frame. FBX it
/// only describes.
FileHabit HabitOf(const std::string& extension, const aiScene& scene) {
    FileHabit habit;
    if (extension == "3ds") {
        habit.undo = {{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}, {0, 0, 0}}};  // (x, z, -y) back to (x, y, z)
    } else if (extension == "dae") {
        habit.up = UpAxis::Y;
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

const aiMesh* FindMesh(const aiScene& scene, unsigned index, std::string& problem) {
    if (index < scene.mNumMeshes && scene.mMeshes[index] != nullptr) return scene.mMeshes[index];
    problem = fmt::format("mesh {} is used, but there are {}; export it again.", index, scene.mNumMeshes);
    return nullptr;
}

bool AppendFaces(const aiMesh& mesh, std::uint32_t first, std::vector<MeshFace>& faces, std::string& problem) {
    for (unsigned i = 0; i < mesh.mNumFaces; ++i) {
        const aiFace& face = mesh.mFaces[i];
        if (face.mNumIndices != 3) continue;  // points and lines
        MeshFace corners;
        for (unsigned c = 0; c < 3; ++c) {
            if (face.mIndices[c] >= mesh.mNumVertices) {
                problem = fmt::format("face {} uses vertex {}, but there are {} (counted from 0); export it again.", i + 1,
                                      face.mIndices[c], mesh.mNumVertices);
                return false;
            }
            corners.v[c] = first + face.mIndices[c];
        }
        faces.push_back(corners);
    }
    return true;
}

}  // namespace tavrik
