#pragma once
/// The words of `tavrik ground`.

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>

#include "cli/command_line.h"
#include "cli/line_words.h"

namespace tavrik {

/// Words as they were typed.
struct GroundWords {
    std::string kind, out, line;
    double size = 300.0;
    int triangles = 20'000;
    std::uint64_t seed = 1;
    RoadGround road;
    LineWords wishes;
};

void AddGroundOptions(CLI::App& app, GroundWords& words);

/// @param problem  on false: what is wrong with the words, without a full stop
bool MakeGroundOrder(const CLI::App& app, const GroundWords& words, GroundOrder& order, std::string& problem);

}  // namespace tavrik
