#pragma once
/// What is done to nodes by menu or key: "edit.*".

#include <functional>
#include <vector>

#include "studio/model/commands.h"
#include "studio/model/editor.h"

namespace tavrik_studio {

/// @param stopRun  ends a run, of which all changes of the scene would be a part
void AddEditCommands(Editor& editor, Commands& commands, const std::function<void()>& stopRun);

/// Deletes nodes as one change; their children go to their parents.
void DeleteNodes(Editor& editor, const std::vector<INode*>& nodes);
/// Duplicates nodes as one change, with their looks, and selects the new ones.
void DuplicateNodes(Editor& editor, const std::vector<INode*>& nodes);

}  // namespace tavrik_studio
