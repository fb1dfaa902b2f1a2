#include "host/scene_rig.h"

#include <fmt/format.h>

#include "host/rig_objects.h"
#include "host/scene_nodes.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"
#include "rig/assembly.h"
#include "rig/parameter_tables.h"
#include "rig/recording_bytes.h"

namespace tavrik_host {
namespace {

constexpr USHORT kRecordingChunk = 20;

}  // namespace

bool ReadRecording(INode& master, tavrik::RecordedMotion& motion, std::string& problem) {
    for (const Chunk& chunk : SaveChunks(*master.GetObjectRef())) {
        if (chunk.id == kRecordingChunk) return LoadRecording(chunk.bytes, motion, problem);
    }
    motion.Release();
    return true;
}

bool ReadRig(INode& master, tavrik::CarRig& rig, std::string& problem) {
    if (!ReadRecording(master, rig.motion, problem)) return false;
    const std::string name = ToUtf8(master.GetName());
    if (!rig.motion.valid) {
        problem = fmt::format("{} has no recording: its car is not locked.", name);
        return false;
    }
    SceneView view;
    view.SetRig(master, rig);
    if (Reattach(rig, view.Root(), view.Of(master))) return true;
    problem = fmt::format("the nodes that are locked to {} don't form a whole car any more.", name);
    return false;
}

tavrik::TriangleMesh ReadMesh(INode& node) {
    tavrik::TriangleMesh triangles;
    if (node.GetObjectRef() == nullptr) return triangles;
    Object* object = node.GetObjectRef()->Eval(0).obj;
    if (object == nullptr || object->CanConvertToType(triObjectClassID) == 0) return triangles;
    auto* tri = static_cast<TriObject*>(object->ConvertToType(0, triObjectClassID));
    const Matrix3 place = node.GetObjectTM(0);
    const Mesh& mesh = tri->GetMesh();
    for (int i = 0; i < mesh.numVerts; ++i) {
        const Point3 p = mesh.verts[i] * place;
        triangles.verts.push_back({p.x, p.y, p.z});
    }
    for (int i = 0; i < mesh.numFaces; ++i) {
        const Face& face = mesh.faces[i];
        triangles.faces.push_back({{face.v[0], face.v[1], face.v[2]}});
    }
    if (tri != object) tri->MaybeAutoDelete();
    return triangles;
}

tavrik::TriangleMesh ReadSurface(INode& master) {
    INode* node = NodeParam(master, tavrik::MasterParam::Surface_Node);
    return node == nullptr ? tavrik::TriangleMesh() : ReadMesh(*node);
}

}  // namespace tavrik_host
