#include "host/scene_meshes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "host/file_mesh.h"
#include "host/scene_axes.h"
#include "host/scene_file.h"
#include "host/scene_json.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"

namespace tavrik_host {
namespace {

using tavrik::DPoint3;
using tavrik::GlbWriter;

/// The file's numbers of a point of ours. False where single precision can't hold one of them.
bool AppendToFile(const DPoint3& p, double scale, std::vector<float>& out) {
    const DPoint3 q = ToFileAxes(p) * scale;
    out.insert(out.end(), {float(q.x), float(q.y), float(q.z)});
    return std::all_of(out.end() - 3, out.end(), [](float v) { return std::isfinite(v); });
}

/// The scene's vertices of a file's numbers, as reading the file gives them.
void AppendToScene(const std::vector<float>& metres, double metresPerUnit, std::vector<Point3>& verts) {
    const double unitsPerMetre = 1.0 / metresPerUnit;
    for (std::size_t i = 0; i < metres.size(); i += 3) {
        const DPoint3 p = FromFileAxes({double(metres[i]), double(metres[i + 1]), double(metres[i + 2])}) * unitsPerMetre;
        verts.push_back(Point3(float(p.x), float(p.y), float(p.z)));
    }
}

int AddOnce(GlbWriter& glb, const char* list, Json json) {
    const Json& known = glb.json[list];
    for (std::size_t i = 0; i < known.size(); ++i) {
        if (known[i] == json) return int(i);
    }
    return glb.Add(list, std::move(json));
}

/// A picture that is there already isn't written again. @return number of its texture
int AddPicture(GlbWriter& glb, const tavrik::ShapePicture& picture) {
    int image = -1;
    const Json images = glb.json.value("images", Json::array());
    for (std::size_t i = 0; i < images.size() && image < 0; ++i) {
        if (!images[i].contains("bufferView") || images[i].value("mimeType", "") != picture.mimeType) continue;
        const Json& view = glb.json["bufferViews"][images[i]["bufferView"].get<std::size_t>()];
        if (glb.ViewBytes(view) == picture.bytes) image = int(i);
    }
    if (image < 0) {
        const int view = glb.AddBytes(picture.bytes);
        image = glb.Add("images", {{"mimeType", picture.mimeType}, {"bufferView", view}});
    }
    constexpr int kNearest = 9728, kLinear = 9729, kNearestOfSmaller = 9984, kLinearOfSmaller = 9987;
    const int sampler = AddOnce(glb, "samplers",
                                {{"magFilter", picture.blurred ? kLinear : kNearest},
                                 {"minFilter", picture.blurred ? kLinearOfSmaller : kNearestOfSmaller}});
    return AddOnce(glb, "textures", {{"sampler", sampler}, {"source", image}});
}

/// Materials that look alike are one. @param picture  null: none
int AddMaterial(GlbWriter& glb, const tavrik::ShapeMaterial& material, const tavrik::ShapePicture* picture) {
    // Seven digits show every single-precision colour; the double behind it would print seventeen.
    const auto number = [](float value) { return std::round(double(value) * 1e6) / 1e6; };
    Json json = {
        {"name", material.name},
        {"pbrMetallicRoughness",
         {{"baseColorFactor", {number(material.red), number(material.green), number(material.blue), number(material.alpha)}},
          {"metallicFactor", number(material.metallic)},
          {"roughnessFactor", number(material.roughness)}}}};
    if (picture != nullptr) json["pbrMetallicRoughness"]["baseColorTexture"] = {{"index", AddPicture(glb, *picture)}};
    if (material.alpha < 1.0f) json["alphaMode"] = "BLEND";
    if (material.doubleSided) json["doubleSided"] = true;
    return AddOnce(glb, "materials", std::move(json));
}

struct FilePart {
    const tavrik::ShapePart* part;
    std::vector<float> positions, normals;
};

}  // namespace

int WriteMesh(GlbWriter& glb, const Mesh& mesh, const std::string& name, double metresPerUnit) {
    if (mesh.numFaces == 0 || mesh.numVerts == 0) return -1;
    std::vector<float> positions;
    std::vector<std::uint32_t> indices;
    for (int i = 0; i < mesh.numVerts; ++i) {
        const Point3& v = mesh.verts[i];
        if (!AppendToFile({double(v.x), double(v.y), double(v.z)}, metresPerUnit, positions)) {
            Refuse(fmt::format("the mesh of node \"{}\" has a vertex that is not finite.", name));
        }
    }
    for (int i = 0; i < mesh.numFaces; ++i) {
        for (const DWORD corner : mesh.faces[i].v) indices.push_back(corner);
    }
    const int position = glb.AddFloats(positions, 3, GlbWriter::Use::Vertices, /*bounds=*/true);
    const int corners = glb.AddIndices(indices);
    Json primitive = {{"attributes", {{"POSITION", position}}}, {"indices", corners}};
    return glb.Add("meshes", {{"primitives", Json::array({std::move(primitive)})}});
}

INode* AddMeshNode(SceneDocument& document, std::span<const tavrik::ShapePart> parts, const std::string& name, INode* parent) {
    std::vector<FilePart> written;
    for (const tavrik::ShapePart& part : parts) {
        if (part.indices.empty() || part.positions.empty()) continue;
        FilePart out{&part, {}, {}};
        for (const tavrik::Point3& p : part.positions) {
            if (!AppendToFile(tavrik::FromPoint3(p), MetresPerUnit(), out.positions)) return nullptr;
        }
        for (const tavrik::Point3& n : part.normals) {
            if (!AppendToFile(tavrik::FromPoint3(n), 1.0, out.normals)) return nullptr;
        }
        written.push_back(std::move(out));
    }
    std::vector<Point3> verts;
    std::vector<Face> faces;
    Json primitives = Json::array();
    GlbWriter glb(std::move(document.json), std::move(document.binary));
    for (const FilePart& out : written) {
        const DWORD first = DWORD(verts.size());
        AppendToScene(out.positions, MetresPerUnit(), verts);
        const std::vector<std::uint32_t>& corners = out.part->indices;
        for (std::size_t i = 0; i + 2 < corners.size(); i += 3) {
            faces.emplace_back().setVerts(first + corners[i], first + corners[i + 1], first + corners[i + 2]);
        }
        Json attributes = {{"POSITION", glb.AddFloats(out.positions, 3, GlbWriter::Use::Vertices, /*bounds=*/true)}};
        if (!out.normals.empty()) attributes["NORMAL"] = glb.AddFloats(out.normals, 3, GlbWriter::Use::Vertices, false);
        const std::vector<float>& spots = out.part->pictureSpots;
        if (!spots.empty()) attributes["TEXCOORD_0"] = glb.AddFloats(spots, 2, GlbWriter::Use::Vertices, false);
        const int indices = glb.AddIndices(corners);
        primitives.push_back({{"attributes", std::move(attributes)},
                              {"indices", indices},
                              {"material", AddMaterial(glb, out.part->material, out.part->picture.get())}});
    }
    const int mesh = primitives.empty() ? -1 : glb.Add("meshes", {{"name", name}, {"primitives", std::move(primitives)}});
    document.json = std::move(glb.json);
    document.binary = glb.TakeBinary();
    TriObject* const object = CreateNewTriObject();
    object->mesh.setNumVerts(int(verts.size()));
    object->mesh.setNumFaces(int(faces.size()));
    std::copy(verts.begin(), verts.end(), object->mesh.verts);
    std::copy(faces.begin(), faces.end(), object->mesh.faces);
    INode* const node = CreateNode(object, FromUtf8(name), parent);
    if (mesh >= 0) document.nodeParts[node->GetHandle()] = {{"mesh", mesh}};
    return node;
}

}  // namespace tavrik_host
