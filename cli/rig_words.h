#pragma once
/// The words of `tavrik rig`.

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "cli/drive_words.h"
#include "cli/rig_order.h"

namespace tavrik {

/// Words as they were typed.
struct RigWords {
    std::string model, out, name, unit, up, forward, steer, drive, handbrake, root, hitch, tongue;
    std::vector<std::string> wheels, body, places;
    double wheelRadius = 0.0, wheelWidth = 0.0, mass = 0.0, wheelMass = 0.0, frequency = 0.0, damping = 0.0;
    bool bike = false, noBike = false, dryRun = false;
};

/// @param drive  of which ground, start, seconds and frame rate are taken
void AddRigOptions(CLI::App& app, DriveWords& drive, RigWords& words);

/// @param problem  on false: what is wrong with the words, without a full stop
bool MakeRigOrder(const CLI::App& app, const DriveWords& drive, const RigWords& words, RigOrder& order, std::string& problem);

}  // namespace tavrik
