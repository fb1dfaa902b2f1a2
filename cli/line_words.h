#pragma once
/// The words that say what a file's line is to be.

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>

#include "host/line_file.h"

namespace tavrik {

/// Words as they were typed.
struct LineWords {
    std::string at;
    bool closed = false, open = false;
    double scale = 1.0;
};

void AddLineWords(CLI::App& app, LineWords& words);

/// @param problem  on false: what is wrong with the words, without a full stop
bool MakeLineWishes(const LineWords& words, LineWishes& wishes, std::string& problem);

/// How to say on a command line where a line begins and which way it goes.
std::string StartOf(const RoadLine& line);

}  // namespace tavrik
