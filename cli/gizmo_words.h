#pragma once
/// The words of the command that draws a rig.

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "host/render/gizmo_picture.h"

namespace tavrik {

/// `tavrik gizmo`
struct GizmoOrder {
    std::filesystem::path scene, out;
    std::vector<tavrik_host::RigView> views;  // at least one
    int width = 1280, height = 960, threads = 0;
    int frame = 0;
    bool hasFrame = false;                  // the user gave it; else the first of the timeline
    std::vector<std::string> select, only;  // names of nodes; of `only` kinds too. No `only`: everything
};

/// Words as they were typed, beside those that stand in the order at once.
struct GizmoWords {
    std::string views, size = "1280x960";
    GizmoOrder order;
};

void AddGizmoOptions(CLI::App& app, GizmoWords& words);
/// @param problem  on false: what is wrong with the words, without a full stop
bool MakeGizmoOrder(const CLI::App& app, const GizmoWords& words, GizmoOrder& order, std::string& problem);

/// Carries the order out. @return the exit status
int RunGizmo(const GizmoOrder& order);

}  // namespace tavrik
