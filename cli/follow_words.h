#pragma once
/// The words of drives that follow a node, and of lines to follow.

#include <CLI/CLI.hpp>
#include <filesystem>
#include <optional>
#include <string>

#include "cli/line_words.h"

namespace tavrik {

/// A car that drives itself.
struct FollowOrder {
    std::string node;                 // empty: the one that the scene has set
    std::optional<double> cruise;     // km/h on a road
    std::filesystem::path speedKeys;  // empty, or the pedals' script on a road
    int laps = 0;                     // 0: as long as the time goes
    std::optional<double> rudder;     // Rudder_Sensitivity, from now on
};

/// `tavrik path import`
struct PathOrder {
    std::filesystem::path line, scene, out;  // no `out`: in place
    LineWishes wishes;
    std::string name;  // empty: as the file is called
};

/// Words as they were typed.
struct FollowWords {
    std::string node, speedKeys;
    double cruise = 40.0, rudder = 30.0;
    int laps = 1;
};

struct PathWords {
    std::string line, scene, out, name;
    LineWords wishes;
};

void AddFollowWords(CLI::App& app, FollowWords& words);
void AddPathOptions(CLI::App& app, PathWords& words);

/// @param order    none where the words don't ask for any of it
/// @param problem  on false: what is wrong with the words, without a full stop
bool MakeFollowOrder(const CLI::App& app, const FollowWords& words, std::optional<FollowOrder>& order, std::string& problem);
bool MakePathOrder(const PathWords& words, PathOrder& order, std::string& problem);

/// Refuses the words of `AddFollowWords` in a drive without a scene.
bool CheckNoFollowing(const CLI::App& app, std::string& problem);

/// Carries the order out. @return the exit status
int RunPath(const PathOrder& order);

}  // namespace tavrik
