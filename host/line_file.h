#pragma once
/// Lines of roads and tracks as other people keep them.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "samples/road_line.h"

namespace tavrik {

/// What the user says of a line beside its file.
struct LineWishes {
    std::optional<bool> closed = {};   // none: closed where its ends are nearer than twice the usual way from point to point
    std::optional<RoadPoint> at = {};  // where its first point goes; none: as the file says
    double scale = 1.0;                // metres to a unit of the file
};

/// Farther from the origin than this, metres, single precision moves points by more than a millimetre.
constexpr double kFarthestLinePoint = 10'000.0;
constexpr double kLongestLine = 100'000.0;  // metres

/// Reads a line from text, one of
///
///     rows       x, y and whatever follows, with commas, semicolons or blanks between
///     knots      a first row with two numbers, knots and 9, then that many rows of nine: knot, point before, point behind it,
///     of
///                curves after Bezier
///
/// A heading, blank lines and what follows a `#` are passed over; so are points on the spot of the one before.
///
/// @param name     stands for the file in messages
/// @param problem  on false: one sentence with file, line and fault; `line` then stays as it was
bool ReadLineText(const std::string& name, std::string_view text, const LineWishes& wishes, RoadLine& line,
                  std::string& problem);

/// As above, from a file.
bool ReadLine(const std::filesystem::path& file, const LineWishes& wishes, RoadLine& line, std::string& problem);

}  // namespace tavrik
