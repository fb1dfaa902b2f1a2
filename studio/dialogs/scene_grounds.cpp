#include "studio/dialogs/scene_grounds.h"

#include <QCoreApplication>
#include <QLocale>
#include <algorithm>

#include "host/ground_node.h"
#include "host/rig_objects.h"
#include "host/sdk/standin.h"
#include "host/sdk/triobj.h"
#include "host/wide_text.h"
#include "rig/parameter_tables.h"
#include "studio/dialogs/dialog_parts.h"

namespace tavrik_studio {
namespace {

using tavrik::MasterParam;
using tavrik::ObjectClass;

struct GroundTexts {
    Q_DECLARE_TR_FUNCTIONS(GroundTexts)
};

constexpr double kMetresPerCentimetre = 0.01;

bool HasMesh(INode& node) {
    if (node.GetObjectRef() == nullptr) return false;
    Object* const object = node.GetObjectRef()->Eval(0).obj;
    return object != nullptr && object->CanConvertToType(triObjectClassID) != 0;
}

bool IsRigPart(INode& node) {
    const ObjectClass objectClass = tavrik_host::ClassOf(node);
    return objectClass != ObjectClass::None && objectClass != ObjectClass::Other;
}

bool HangsOnCar(INode& node) {
    for (INode* above = node.GetParentNode(); above != nullptr && above->IsRootNode() == 0; above = above->GetParentNode()) {
        if (IsRigPart(*above)) return true;
    }
    return false;
}

}  // namespace

std::vector<INode*> GroundNodes() {
    std::vector<INode*> grounds;
    for (INode* const node : tavrik_host::AllNodes()) {
        if (HasMesh(*node) && !IsRigPart(*node) && !HangsOnCar(*node)) grounds.push_back(node);
    }
    return grounds;
}

INode* UsualGround(const Editor& editor) {
    const std::vector<INode*> grounds = GroundNodes();
    const auto isGround = [&grounds](INode* node) { return std::ranges::find(grounds, node) != grounds.end(); };
    for (INode* const node : editor.Selection()) {
        if (isGround(node)) return node;
    }
    std::vector<INode*> picked;
    for (INode* const master : tavrik_host::NodesOf(ObjectClass::Tavrik)) {
        INode* const ground = tavrik_host::NodeParam(*master, MasterParam::Surface_Node);
        if (ground != nullptr && isGround(ground)) picked.push_back(ground);
    }
    const auto same = [&picked](INode* node) { return node == picked.front(); };
    if (!picked.empty() && std::ranges::all_of(picked, same)) return picked.front();
    return grounds.size() == 1 ? grounds.front() : nullptr;
}

QString NameOf(INode& node) { return QString::fromWCharArray(node.GetName()); }

MeshSize SizeOf(const tavrik::TriangleMesh& mesh) {
    tavrik::Box3 box = tavrik::EmptyBox3();
    for (const tavrik::Point3& v : mesh.verts) box.Include(v);
    if (mesh.verts.empty()) return {};
    const tavrik::Point3 size = box.Width();
    return {double(size.x) * kMetresPerCentimetre, double(size.y) * kMetresPerCentimetre, double(size.z) * kMetresPerCentimetre,
            mesh.faces.size()};
}

QString SizeText(const MeshSize& size) {
    const int digits = std::max(size.width, size.length) < 10.0 ? 3 : 1;
    return GroundTexts::tr("%1 × %2 m, %3 m high, %4 triangles")
        .arg(Number(size.width, digits), Number(size.length, digits), Number(size.height, 2),
             QLocale().toString(qlonglong(size.triangles)));
}

INode* AddGround(Editor& editor, const QString& what, const tavrik::TriangleMesh& mesh, const QString& name, QString& problem) {
    std::string fault;
    Change change(editor, what);
    INode* const node = tavrik_host::AddGroundNode(editor.Document(), mesh, name.toStdString(), fault);
    if (node == nullptr) {
        problem = Text(fault);
        return nullptr;
    }
    node->SetName(tavrik_host::FromUtf8(name.toStdString()).c_str());
    const std::vector<INode*> masters = tavrik_host::NodesOf(ObjectClass::Tavrik);
    if (masters.size() == 1 && tavrik_host::NodeParam(*masters.front(), MasterParam::Surface_Node) == nullptr) {
        tavrik_host::SetParam(*masters.front(), MasterParam::Surface_Node, node);
    }
    editor.Select(node);
    change.Keep();
    editor.TouchNodes();
    return node;
}

}  // namespace tavrik_studio
