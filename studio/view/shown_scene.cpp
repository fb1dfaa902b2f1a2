#include "studio/view/shown_scene.h"

#include <algorithm>
#include <map>

#include "host/rig_objects.h"
#include "host/sdk/standin.h"
#include "rig/parameter_tables.h"

namespace tavrik_studio {
namespace {

using tavrik_host::AllNodes;
using tavrik_host::RenderPart;
using tavrik_host::RenderThing;

/// What cars drive on, and so what tyre tracks lie on.
std::vector<INode*> Grounds() {
    std::vector<INode*> grounds;
    for (INode* const master : tavrik_host::NodesOf(tavrik::ObjectClass::Tavrik)) {
        if (INode* const ground = tavrik_host::NodeParam(*master, tavrik::MasterParam::Surface_Node)) grounds.push_back(ground);
    }
    return grounds;
}

void AddCorners(const Box3& box, const Matrix3& place, std::vector<Point3>& points) {
    if (box.IsEmpty() != 0) return;
    const Point3 low = box.Min(), high = box.Max();
    for (int i = 0; i < 8; ++i) {
        const Point3 corner((i & 1) != 0 ? high.x : low.x, (i & 2) != 0 ? high.y : low.y, (i & 4) != 0 ? high.z : low.z);
        points.push_back(corner * place);
    }
}

}  // namespace

ShownScene::ShownScene(Editor& editor) : editor_(editor) {
    connect(&editor, &Editor::SceneReplaced, this, [this] {
        isModelStale_ = isReplaced_ = true;
        MarkView();
    });
    connect(&editor, &Editor::NodesChanged, this, [this] {
        isModelStale_ = true;
        MarkView();
    });
    connect(&editor, &Editor::ViewChanged, this, &ShownScene::MarkView);
    connect(&editor, &Editor::SelectionChanged, this, &ShownScene::MarkView);
}

std::shared_ptr<ShownScene> ShownScene::Of(Editor& editor) {
    static std::map<Editor*, std::weak_ptr<ShownScene>> shown;
    std::shared_ptr<ShownScene> scene = shown[&editor].lock();
    if (scene == nullptr) {
        std::erase_if(shown, [](const auto& entry) { return entry.second.expired(); });
        scene = std::make_shared<ShownScene>(editor);
        shown[&editor] = scene;
    }
    return scene;
}

void ShownScene::MarkView() {
    isViewStale_ = true;
    emit Changed();
}

void ShownScene::ForgetNode(INode* node) {
    if (std::ranges::any_of(model_.things, [node](const RenderThing& thing) { return thing.node == node; })) {
        model_.things.clear();
        isModelStale_ = true;
    }
    isViewStale_ = true;
}

std::vector<ShownScene::Identity> ShownScene::Identities() {
    std::vector<Identity> identities;
    for (INode* const node : AllNodes()) {
        Object* const object = node->GetObjectRef();
        auto* const tri = object == nullptr ? nullptr : dynamic_cast<TriObject*>(object->Eval(0).obj);
        if (tri == nullptr) continue;
        identities.push_back({node->GetHandle(), &tri->GetMesh(), tri->GetMesh().numVerts, tri->GetMesh().numFaces});
    }
    return identities;
}

bool ShownScene::IsSameModel() const { return !isReplaced_ && !model_.things.empty() && identities_ == Identities(); }

void ShownScene::TakeModel() {
    isModelStale_ = false;
    const std::vector<INode*> grounds = Grounds();
    if (IsSameModel()) {
        for (RenderThing& thing : model_.things) {
            thing.takesTracks = std::ranges::find(grounds, thing.node) != grounds.end();
        }
        return;
    }
    isReplaced_ = false;
    identities_ = Identities();
    model_ = TakeRenderModel(editor_.Document(), grounds);
    for (const std::string& note : model_.notes) notes_.append(QString::fromStdString(note));
    boxes_.assign(model_.shapes.size(), Box3());
    for (std::size_t i = 0; i < model_.shapes.size(); ++i) {
        for (const RenderPart& part : model_.shapes[i].parts) {
            for (const Point3& p : part.points) boxes_[i] += p;
        }
    }
    ++modelRevision_;
}

void ShownScene::TakeLines() {
    tavrik_host::LineView view{tavrik_host::ViewCamera{}};
    nodes_.clear();
    for (INode* const node : AllNodes()) {
        const std::size_t before = view.Window().Lines().size();
        view.DrawNode(editor_.Time(), *node);
        const std::size_t count = view.Window().Lines().size() - before;
        if (count != 0) nodes_.push_back({node->GetHandle(), before, count, node->Selected() != 0});
    }
    lines_ = view.Window().Lines();
    ++lineRevision_;
}

void ShownScene::Update() {
    if (isModelStale_) TakeModel();
    if (!isViewStale_) return;
    isViewStale_ = false;
    places_.clear();
    chosen_.clear();
    for (const RenderThing& thing : model_.things) {
        places_.push_back(thing.node->GetObjectTM(editor_.Time()));
        chosen_.push_back(thing.node->Selected() != 0 ? 1 : 0);
    }
    TakeLines();
}

bool ShownScene::IsMesh(INode& node) const {
    return std::ranges::any_of(model_.things, [&node](const RenderThing& thing) { return thing.node == &node; });
}

bool ShownScene::IsGround(INode& node) const {
    return std::ranges::any_of(model_.things,
                               [&node](const RenderThing& thing) { return thing.node == &node && thing.takesTracks; });
}

std::vector<Point3> ShownScene::PointsOf(INode& node) const {
    std::vector<Point3> points;
    for (std::size_t i = 0; i < model_.things.size(); ++i) {
        if (model_.things[i].node == &node) AddCorners(boxes_[model_.things[i].shape], places_[i], points);
    }
    for (const NodeLines& lines : nodes_) {
        if (lines.node != node.GetHandle()) continue;
        for (std::size_t i = lines.first; i < lines.first + lines.count; ++i) {
            points.push_back(lines_[i].from);
            points.push_back(lines_[i].to);
        }
    }
    if (points.empty()) points.push_back(node.GetNodeTM(editor_.Time()).GetTrans());
    return points;
}

std::vector<Point3> ShownScene::AllPoints() const {
    std::vector<Point3> points;
    for (std::size_t i = 0; i < model_.things.size(); ++i) AddCorners(boxes_[model_.things[i].shape], places_[i], points);
    for (const tavrik_host::ViewLine& line : lines_) {
        points.push_back(line.from);
        points.push_back(line.to);
    }
    return points;
}

QStringList ShownScene::TakeNotes() {
    QStringList notes = notes_;
    notes_.clear();
    notes.removeDuplicates();
    return notes;
}

}  // namespace tavrik_studio
