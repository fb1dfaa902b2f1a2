#include "plugin/surface_capture.h"

#include <string>

#include "plugin/convert.h"
#include "plugin/desktop.h"
#include "plugin/wide_text.h"

namespace tavrik_plugin {
namespace {

tavrik::TriangleMesh MeshOf(const Mesh& mesh, const Matrix3& tm) {
    tavrik::TriangleMesh result;
    result.verts.reserve(std::size_t(mesh.getNumVerts()));
    result.faces.reserve(std::size_t(mesh.getNumFaces()));
    for (int i = 0; i < mesh.getNumVerts(); ++i) result.verts.push_back(FromHost(mesh.verts[i] * tm));
    for (int i = 0; i < mesh.getNumFaces(); ++i) {
        const DWORD* const v = mesh.faces[i].v;
        result.faces.push_back({{std::uint32_t(v[0]), std::uint32_t(v[1]), std::uint32_t(v[2])}});
    }
    return result;
}

}  // namespace

void CaptureSurface(INode* node, tavrik::SurfaceTree& tree) {
    Object* const reference = node != nullptr ? node->GetObjectRef() : nullptr;
    Object* const object = reference != nullptr ? reference->Eval(0).obj : nullptr;
    if (object == nullptr || object->CanConvertToType(triObjectClassID) == 0) return;
    auto* const mesh = static_cast<TriObject*>(object->ConvertToType(0, triObjectClassID));
    if (mesh == nullptr) return;
    const tavrik::TriangleMesh ground = MeshOf(mesh->GetMesh(), node->GetObjectTM(0));
    if (mesh != object) mesh->MaybeAutoDelete();  // made for us alone
    std::string problem;
    if (!tree.Build(ground, {}, problem)) Complain(Narrow(node->GetName()) + " can't be the ground: " + problem + ".");
}

}  // namespace tavrik_plugin
