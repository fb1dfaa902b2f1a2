#pragma once
/// A scene opened by a command that has no screen.

#include <filesystem>
#include <string>

#include "cli/drive_summary.h"
#include "drive/null_canvas.h"
#include "drive/virtual_desktop.h"
#include "host/controls_file.h"
#include "host/scene_file.h"
#include "host/sdk/max.h"

namespace tavrik_cli {

/// The surroundings of the host while a command runs: a window that nobody sees, a gamepad that a script may plug in, the
/// user's own bindings.
class SceneDesktop {
 public:
    SceneDesktop();
    ~SceneDesktop();
    SceneDesktop(const SceneDesktop&) = delete;
    SceneDesktop& operator=(const SceneDesktop&) = delete;

    /// The first thing that a message box or a complaint has said since the last call, as one line; empty if nothing was.
    std::string TakeMessage();

    tavrik::NullCanvas canvas;
    tavrik::VirtualWindows windows{canvas};
    tavrik::VirtualPad pad;
    tavrik::ControlsFile controls;
};

/// Loads the plug-in and the scene. @param problem  on false: one sentence that names file and fault
bool OpenScene(const std::filesystem::path& file, tavrik_host::SceneDocument& document, std::string& problem);

/// The master object of this name, or the only one where the name is empty.
/// @param problem  on false: one sentence that names the file and the masters there are
bool ChooseMaster(const std::filesystem::path& file, const std::string& name, INode*& master, std::string& problem);

/// Makes the scene's file and puts it in place. @param problem  on false: one sentence that names file and fault
bool SaveScene(const std::filesystem::path& file, const tavrik_host::SceneDocument& document, std::string& problem);

/// Writes a scene that was read from `scene`, and other files along with it: all of them or none. Where `out` is that scene,
/// what it was stays beside it, with ".bak" behind its name.
bool SaveScene(const std::filesystem::path& scene, const std::filesystem::path& out, const tavrik_host::SceneDocument& document,
               tavrik::Results others, std::string& problem);

/// Tells the user what went wrong. @return the exit status
int Fail(const std::string& problem);

}  // namespace tavrik_cli
