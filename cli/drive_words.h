#pragma once
/// The words that say where to drive, who drives and for how long; several commands take them.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>

#include "cli/prepared_drive.h"

namespace tavrik {

/// Words as they were typed, before anything is made of them.
struct DriveWords {
    std::string ground, up, unit, input, start;
    double seconds = 20.0, fps = 30.0;
    std::uint64_t seed = 1;
};

/// The options that name a ground. @param orElse  what is driven on without one, for the help
void AddGroundWords(CLI::App& app, DriveWords& words, const std::string& orElse);

/// @param startOption  the name under which the command takes the start, such as "--at"
/// @param orElse       what is driven on without a ground, for the help
void AddDriveWords(CLI::App& app, DriveWords& words, const std::string& startOption, const std::string& orElse);

bool SameFile(const std::filesystem::path& a, const std::filesystem::path& b);

/// @param problem  on false: what is wrong with the words, without a full stop
bool MakeDriveOptions(const DriveWords& words, std::string_view startOption, DriveOptions& options, std::string& problem);

template <typename Value>
std::string NamesOf(const std::map<std::string, Value>& choices) {
    std::string names;
    for (const auto& [name, value] : choices) names += (names.empty() ? "" : ", ") + name;
    return names;
}

/// Looks a word up among its choices.
template <typename Value>
bool Choose(const std::map<std::string, Value>& choices, const std::string& word, std::string_view option, Value& value,
            std::string& problem) {
    const auto found = choices.find(word);
    if (found == choices.end()) {
        problem = fmt::format("{} takes one of {}, not \"{}\"", option, NamesOf(choices), word);
        return false;
    }
    value = found->second;
    return true;
}

}  // namespace tavrik
