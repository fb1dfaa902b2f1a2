#pragma once
/// The words of the commands that work on scenes.

#include <CLI/CLI.hpp>
#include <string>

#include "cli/command_line.h"
#include "cli/drive_words.h"
#include "cli/follow_words.h"

namespace tavrik {

/// Words as they were typed. `drive` takes them besides its own, `new` some of `DriveWords`.
struct SceneWords {
    std::string scene, master, out;
    double from = 0.0;
    double seconds = 3.0;  // of `settle`
    std::string keys = "samples";
    CLI::Option* fromOption = nullptr;
    FollowWords follow;  // of `drive`
};

void AddNewOptions(CLI::App& app, DriveWords& words, SceneWords& files);
/// `list` and `make`.
void AddGarageOptions(CLI::App& app, DriveWords& words, SceneWords& files);
void AddInfoOptions(CLI::App& app, SceneWords& words);
void AddCheckOptions(CLI::App& app, SceneWords& words);
/// Fills the order itself, but for what `MakePanelOrder` checks.
void AddPanelOptions(CLI::App& app, PanelOrder& order);
void AddSettleOptions(CLI::App& app, SceneWords& words);
void AddBakeOptions(CLI::App& app, SceneWords& words);
void AddResetOptions(CLI::App& app, SceneWords& words);
/// The scene, its car, and the second to go on from.
void AddSceneDriveOptions(CLI::App& app, SceneWords& words);

/// @param problem  on false: what is wrong with the words, without a full stop
bool MakeNewOrder(const DriveWords& words, const SceneWords& files, NewOrder& order, std::string& problem);
bool MakeGarageOrder(const CLI::App& app, const DriveWords& words, const SceneWords& files, GarageOrder& order,
                     std::string& problem);
bool MakeInfoOrder(const SceneWords& words, InfoOrder& order, std::string& problem);
bool MakeCheckOrder(const SceneWords& words, CheckOrder& order, std::string& problem);
bool MakePanelOrder(const PanelOrder& words, PanelOrder& order, std::string& problem);
bool MakeSettleOrder(const SceneWords& words, SettleOrder& order, std::string& problem);
bool MakeBakeOrder(const SceneWords& words, BakeOrder& order, std::string& problem);
bool MakeResetOrder(const SceneWords& words, ResetOrder& order, std::string& problem);
/// @param order  with the files that every drive may write set already
bool MakeSceneDriveOrder(const CLI::App& app, const DriveWords& words, const SceneWords& scene, SceneDriveOrder& order,
                         std::string& problem);

}  // namespace tavrik
