#pragma once

#include <string>
#include <vector>

namespace tavrik::test {

struct ProgramResult {
    int status = -1;  // of the exit; 128 and more: ended by a signal
    std::string out, error;
};

/// Runs the built program in `folder` with its output in pipes.
ProgramResult RunTavrik(const std::string& folder, const std::vector<std::string>& arguments);

/// As above, with the error output on a terminal; `error` is what the terminal shows.
ProgramResult RunTavrikOnTerminal(const std::string& folder, const std::vector<std::string>& arguments);

}  // namespace tavrik::test
