#pragma once
/// A car driven in an open scene by the buttons that a user presses.

#include <filesystem>
#include <functional>
#include <string>

#include "cli/hands.h"
#include "cli/opened_scene.h"
#include "cli/progress.h"
#include "host/sdk/max.h"

namespace tavrik_cli {

/// One run. Nothing is owned.
struct SceneRun {
    const std::filesystem::path& scene;  // for messages
    SceneDesktop& desktop;
    INode& master;
    const tavrik::Hands& hands;
    bool goesOn = false;  // with the recording at hand; else the car is locked anew, at its start
    TimeValue from = 0;   // the first tick to drive
    int frames = 0;       // to drive; out: that were
    // What the scene has set drives instead of rows, and beside events. It stays set.
    bool byTarget = false;
    std::function<void(int frame)> beforeFrame = {};
    std::function<bool(int frame)> afterFrame = {};  // false: enough is driven
    std::string notice = {};                         // out: what the hands have to tell, or empty
};

/// Drives and records. The animation range is stretched where it ends before the run does; the artist's way of driving stays.
/// @param problem  on false: one sentence, what kept the car from driving
bool DriveInScene(SceneRun& run, tavrik::Progress& progress, std::string& problem);

/// How many whole frames it takes, at least one.
int FramesIn(double seconds);

}  // namespace tavrik_cli
