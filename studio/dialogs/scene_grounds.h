#pragma once
/// Grounds of the open scene: which nodes can be driven on, and new ones put into it.

#include <QString>
#include <filesystem>
#include <string>
#include <vector>

#include "host/mesh_import.h"
#include "host/sdk/max.h"
#include "samples/sample_ground.h"
#include "studio/model/editor.h"
#include "surface/triangle_mesh.h"

namespace tavrik_studio {

/// Nodes with a mesh of their own that are no part of a car.
std::vector<INode*> GroundNodes();
/// What a new car would most likely drive on: the selected ground, the one that all masters have picked, or the only one there
/// is. Null where that isn't clear.
INode* UsualGround(const Editor& editor);
/// "ground", for messages and lists.
QString NameOf(INode& node);

/// How large a mesh is, metres.
struct MeshSize {
    double width = 0.0, length = 0.0, height = 0.0;  // along X, Y and Z
    std::size_t triangles = 0;
};
MeshSize SizeOf(const tavrik::TriangleMesh& mesh);
/// "124.5 × 98 m, 3.2 m high, 20,000 triangles".
QString SizeText(const MeshSize& size);

/// Adds a ground and selects it, as one step. Where there is one master and it has no ground, it gets this one.
/// @param name     of the node
/// @param problem  on null: one sentence; the scene stays as it was
INode* AddGround(Editor& editor, const QString& what, const tavrik::TriangleMesh& mesh, const QString& name, QString& problem);

}  // namespace tavrik_studio
