#include "studio/window/edit_commands.h"

#include <QCoreApplication>

#include "host/sdk/standin.h"

namespace tavrik_studio {
namespace {

QString Tr(const char* text) { return QCoreApplication::translate("EditCommands", text); }

QString WithWhat(const QString& word, const QString& what) { return what.isEmpty() ? word : word + ' ' + what; }

}  // namespace

void AddEditCommands(Editor& editor, Commands& commands, const std::function<void()>& stopRun) {
    const auto hasSelection = [&editor] { return !editor.Selection().empty(); };
    QAction& undo = commands.Add(
        "edit.undo", Tr("&Undo"), QKeySequence::Undo,
        [&editor, stopRun] {
            stopRun();
            editor.Undo();
        },
        [&editor] { return editor.CanUndo(); });
    QAction& redo = commands.Add(
        "edit.redo", Tr("&Redo"), QKeySequence::Redo,
        [&editor, stopRun] {
            stopRun();
            editor.Redo();
        },
        [&editor] { return editor.CanRedo(); });
    commands.Add(
        "edit.delete", Tr("&Delete"), QKeySequence::Delete,
        [&editor, stopRun] {
            stopRun();
            DeleteNodes(editor, editor.Selection());
        },
        hasSelection);
    commands.Add(
        "edit.duplicate", Tr("D&uplicate"), QKeySequence("Ctrl+D"),
        [&editor, stopRun] {
            stopRun();
            DuplicateNodes(editor, editor.Selection());
        },
        hasSelection);
    commands.Add("edit.select_all", Tr("Select &All"), QKeySequence::SelectAll, [&editor] {
        editor.Select(tavrik_host::AllNodes());
        editor.Touch();
    });
    commands.Add(
        "edit.select_none", Tr("Select &Nothing"), QKeySequence("Ctrl+Shift+A"),
        [&editor] {
            editor.Select(nullptr);
            editor.Touch();
        },
        hasSelection);
    // On buttons they stay short.
    undo.setIconText(Tr("Undo"));
    redo.setIconText(Tr("Redo"));
    QObject::connect(&editor, &Editor::StateChanged, &commands, [&] {
        undo.setText(WithWhat(Tr("&Undo"), editor.UndoText()));
        redo.setText(WithWhat(Tr("&Redo"), editor.RedoText()));
        commands.Refresh();
    });
    QObject::connect(&editor, &Editor::SelectionChanged, &commands, [&commands] { commands.Refresh(); });
}

void DeleteNodes(Editor& editor, const std::vector<INode*>& nodes) {
    if (nodes.empty()) return;
    Change change(editor, Tr("Delete"));
    editor.Select(nullptr);
    for (INode* const node : nodes) GetCOREInterface()->DeleteNode(node);
    change.Keep();
    editor.TouchNodes();
}

void DuplicateNodes(Editor& editor, const std::vector<INode*>& nodes) {
    if (nodes.empty()) return;
    Change change(editor, Tr("Duplicate"));
    const std::vector<INode*> copies = tavrik_host::CloneNodes(nodes);
    auto& parts = editor.Document().nodeParts;
    for (std::size_t i = 0; i < copies.size(); ++i) {
        const auto looks = parts.find(nodes[i]->GetHandle());
        if (looks != parts.end()) parts[copies[i]->GetHandle()] = nlohmann::ordered_json(looks->second);
    }
    change.Keep();
    editor.Select(copies);
    editor.TouchNodes();
}

}  // namespace tavrik_studio
