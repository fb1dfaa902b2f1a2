#include "studio/model/editor.h"

#include <algorithm>

#include "host/sdk/panels.h"
#include "host/sdk/standin.h"

namespace tavrik_studio {
namespace {

constexpr std::size_t kMostSnapshotBytes = std::size_t(768) << 20;
constexpr std::size_t kMostSnapshots = 200;
constexpr std::chrono::milliseconds kJoinWithin{1500};

std::vector<ULONG> HandlesOf(const std::vector<INode*>& nodes) {
    std::vector<ULONG> handles;
    for (INode* const node : nodes) handles.push_back(node->GetHandle());
    return handles;
}

}  // namespace

Editor::Editor() { tavrik_host::ResetScene(); }

Editor::~Editor() { tavrik_host::ResetScene(); }

void Editor::New() {
    tavrik_host::ResetScene();
    document_ = {};
    file_.clear();
    Forget();
    Replaced();
}

bool Editor::Open(const std::filesystem::path& file, QString& problem) {
    std::string fault;
    if (!tavrik_host::LoadScene(file, document_, fault)) {
        problem = QString::fromStdString(fault);
        return false;
    }
    file_ = file;
    Forget();
    Replaced();
    return true;
}

bool Editor::Recover(const std::filesystem::path& rescued, const std::filesystem::path& file, QString& problem) {
    if (!Open(rescued, problem)) return false;
    file_ = file;
    revision_ = ++lastRevision_;
    emit StateChanged();
    return true;
}

bool Editor::Save(const std::filesystem::path& file, QString& problem) {
    std::string bytes, fault;
    bool done = tavrik_host::MakeSceneFile(document_, bytes, fault);
    if (!done) {
        fault = file.string() + ": " + fault;
    } else {
        done = tavrik_host::WriteSceneFile(file, std::move(bytes), fault);
    }
    if (!done) {
        problem = QString::fromStdString(fault);
        return false;
    }
    file_ = file;
    savedRevision_ = revision_;
    emit StateChanged();
    return true;
}

QString Editor::UndoText() const { return undo_.empty() ? QString() : undo_.back().what; }

QString Editor::RedoText() const { return redo_.empty() ? QString() : redo_.back().what; }

void Editor::Undo() {
    if (undo_.empty()) return;
    const Snapshot back = std::move(undo_.back());
    undo_.pop_back();
    redo_.push_back(Take(back.what));
    Restore(back);
}

void Editor::Redo() {
    if (redo_.empty()) return;
    const Snapshot ahead = std::move(redo_.back());
    redo_.pop_back();
    undo_.push_back(Take(ahead.what));
    Restore(ahead);
}

std::vector<INode*> Editor::Selection() const {
    Interface& host = *GetCOREInterface();
    std::vector<INode*> nodes;
    for (int i = 0; i < host.GetSelNodeCount(); ++i) nodes.push_back(host.GetSelNode(i));
    return nodes;
}

INode* Editor::Current() const { return tavrik_host::PanelNode(); }

void Editor::Select(INode* node) {
    if (node != nullptr && node == Current() && GetCOREInterface()->GetSelNodeCount() == 1) return;
    tavrik_host::ClosePanel();
    if (node == nullptr) {
        GetCOREInterface()->ClearNodeSelection();
    } else {
        tavrik_host::OpenPanel(*node);
    }
    emit SelectionChanged();
}

void Editor::Select(const std::vector<INode*>& nodes) {
    if (nodes.size() < 2) return Select(nodes.empty() ? nullptr : nodes.front());
    tavrik_host::ClosePanel();
    Interface& host = *GetCOREInterface();
    host.ClearNodeSelection();
    for (INode* const node : nodes) host.SelectNode(node, 0);
    emit SelectionChanged();
}

TimeValue Editor::Time() const { return GetCOREInterface()->GetTime(); }

void Editor::SetTime(TimeValue tick) {
    const Interval range = GetCOREInterface()->GetAnimRange();
    tick = std::clamp(tick, range.Start(), range.End());
    if (tick != Time()) GetCOREInterface()->SetTime(tick);
    emit TimeChanged();
    emit ViewChanged();
}

void Editor::Touch() { emit ViewChanged(); }

void Editor::TouchNodes() {
    emit NodesChanged();
    emit ViewChanged();
}

Editor::Snapshot Editor::Take(const QString& what) const {
    std::string bytes, problem;
    // A scene that can't be written can't be kept either; its way back is then empty, and Restore leaves things as they are.
    if (!tavrik_host::MakeSnapshot(document_, bytes, problem)) bytes.clear();
    return {what, std::make_shared<const std::string>(std::move(bytes)), HandlesOf(Selection()), Time(), {}, {}};
}

void Editor::Restore(const Snapshot& snapshot) {
    std::string problem;
    tavrik_host::ClosePanel();
    if (snapshot.bytes->empty() || !tavrik_host::LoadSceneBytes("undo.glb", *snapshot.bytes, document_, problem)) return;
    revision_ = ++lastRevision_;
    Replaced();
    std::vector<INode*> nodes;
    for (const ULONG handle : snapshot.selection) {
        if (INode* const node = GetCOREInterface()->GetINodeByHandle(handle)) nodes.push_back(node);
    }
    Select(nodes);
    SetTime(snapshot.time);
}

void Editor::Forget() {
    undo_.clear();
    redo_.clear();
    savedRevision_ = revision_ = ++lastRevision_;
}

void Editor::DropOldSnapshots() {
    const auto bytes = [&] {
        std::size_t sum = 0;
        for (const Snapshot& snapshot : undo_) sum += snapshot.bytes->size();
        return sum;
    };
    while (undo_.size() > kMostSnapshots || (undo_.size() > 1 && bytes() > kMostSnapshotBytes)) undo_.pop_front();
}

void Editor::Replaced() {
    emit SceneReplaced();
    emit NodesChanged();
    emit SelectionChanged();
    emit TimeChanged();
    emit ViewChanged();
    emit StateChanged();
}

Change::Change(Editor& editor, const QString& what, const QString& same)
    : editor_(editor), isOutermost_(editor.changes_++ == 0) {
    if (!isOutermost_) return;
    const auto now = std::chrono::steady_clock::now();
    joins_ = !same.isEmpty() && editor_.redo_.empty() && !editor_.undo_.empty() && editor_.undo_.back().same == same &&
             now - editor_.undo_.back().made < kJoinWithin;
    if (!joins_) before_ = editor_.Take(what);
    before_.same = same;
}

Change::~Change() {
    --editor_.changes_;
    if (isOutermost_ && !isKept_ && !joins_) editor_.Restore(before_);
}

void Change::Keep() {
    if (isKept_) return;
    isKept_ = true;
    if (!isOutermost_) return;
    if (!joins_) editor_.undo_.push_back(std::move(before_));
    editor_.undo_.back().made = std::chrono::steady_clock::now();
    editor_.redo_.clear();
    editor_.DropOldSnapshots();
    editor_.revision_ = ++editor_.lastRevision_;
    emit editor_.StateChanged();
    emit editor_.ViewChanged();
}

void Change::KeepIfChanged() {
    if (isOutermost_ && !joins_ && *editor_.Take(before_.what).bytes == *before_.bytes) {
        isKept_ = true;
    } else {
        Keep();
    }
}

}  // namespace tavrik_studio
