#pragma once
/// The open scene as the studio edits it: its file, its selection, and the way back from every change.

#include <QObject>
#include <QString>
#include <chrono>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/scene_file.h"
#include "host/sdk/max.h"

namespace tavrik_studio {

/// One to a process, as the host has one scene. Nodes are remembered by handle: a way back replaces every one of them.
class Editor final : public QObject {
    Q_OBJECT
 public:
    /// The plug-in must be loaded. The scene begins empty.
    Editor();
    ~Editor() override;

    // The file
    void New();
    /// @param problem  on false: one sentence that names file and fault; the scene stays as it was
    bool Open(const std::filesystem::path& file, QString& problem);
    /// Opens what an earlier session left behind of a scene. It counts as changed.
    /// @param file  where it belongs, or empty
    bool Recover(const std::filesystem::path& rescued, const std::filesystem::path& file, QString& problem);
    bool Save(const std::filesystem::path& file, QString& problem);
    /// Empty for a scene that was never saved.
    const std::filesystem::path& File() const { return file_; }
    bool IsModified() const { return revision_ != savedRevision_; }
    /// Differs after each change, each way back included.
    std::uint64_t Revision() const { return revision_; }
    /// Meshes, materials and pictures of the scene.
    tavrik_host::SceneDocument& Document() { return document_; }

    // The way back
    bool CanUndo() const { return !undo_.empty(); }
    bool CanRedo() const { return !redo_.empty(); }
    /// What would be taken back, such as "Move"; empty for nothing.
    QString UndoText() const;
    QString RedoText() const;
    void Undo();
    void Redo();

    // The selection
    std::vector<INode*> Selection() const;
    /// The node whose panel is open: the one that is selected alone.
    INode* Current() const;
    /// Selects a node alone, and opens its panel. @param node  null: nothing
    void Select(INode* node);
    void Select(const std::vector<INode*>& nodes);

    // The time
    TimeValue Time() const;
    void SetTime(TimeValue tick);

    /// To be called when something has changed that views show, such as a parameter or the time.
    void Touch();
    /// Likewise, when nodes came, went, or got other names.
    void TouchNodes();

 signals:
    /// All nodes are others than before: whoever holds one lets go.
    void SceneReplaced();
    void NodesChanged();
    void ViewChanged();
    void SelectionChanged();
    void TimeChanged();
    /// What can be undone, the file, or whether it is changed.
    void StateChanged();

 private:
    friend class Change;
    struct Snapshot {
        QString what;
        std::shared_ptr<const std::string> bytes;
        std::vector<ULONG> selection;
        TimeValue time = 0;
        QString same;  // see Change
        std::chrono::steady_clock::time_point made{};
    };
    Snapshot Take(const QString& what) const;
    void Restore(const Snapshot& snapshot);
    void Forget();
    void DropOldSnapshots();
    void Replaced();

    tavrik_host::SceneDocument document_;
    std::filesystem::path file_;
    std::deque<Snapshot> undo_, redo_;
    std::uint64_t revision_ = 0, savedRevision_ = 0, lastRevision_ = 0;
    int changes_ = 0;  // that are under way, one inside the other
};

/// A change of the scene. What isn't kept is taken back as this goes out of scope.
///
///     Change change(editor, tr("Delete"));
///     ...
///     change.Keep();
class Change {
 public:
    /// @param what  as a menu entry names it after "Undo". Within another change this one is part of it
    /// @param same  not empty: one step with the last change, where that one had this name too and was made a moment ago. Such
    ///              a change can't be taken back alone, so it must be one that happens whole or not at all
    Change(Editor& editor, const QString& what, const QString& same = {});
    ~Change();
    Change(const Change&) = delete;
    Change& operator=(const Change&) = delete;

    void Keep();
    /// Keeps it where the scene is another one than before; else it was none.
    void KeepIfChanged();

 private:
    Editor& editor_;
    Editor::Snapshot before_;  // of the outermost one
    bool isOutermost_;
    bool joins_ = false;  // the last one
    bool isKept_ = false;
};

}  // namespace tavrik_studio
