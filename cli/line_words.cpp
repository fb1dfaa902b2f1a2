#include "cli/line_words.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <system_error>

namespace tavrik {
namespace {

bool ParsePoint(std::string_view words, RoadPoint& point) {
    const std::size_t comma = words.find(',');
    const auto parse = [](std::string_view word, double& value) {
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
        return error == std::errc() && end == word.data() + word.size() && std::isfinite(value);
    };
    return comma != std::string_view::npos && parse(words.substr(0, comma), point.x) && parse(words.substr(comma + 1), point.y);
}

}  // namespace

void AddLineWords(CLI::App& app, LineWords& words) {
    app.add_option("--at", words.at, "Where the line's first point goes, metres; else as the file says")->type_name("X,Y");
    app.add_option("--scale", words.scale, "Metres to a unit of the line's file, default 1")->type_name("F");
    app.add_flag("--closed", words.closed, "Its last point leads back to its first; else so where its ends are close");
    app.add_flag("--open", words.open, "It ends at its last point");
}

bool MakeLineWishes(const LineWords& words, LineWishes& wishes, std::string& problem) {
    if (words.closed && words.open) {
        problem = "--closed and --open exclude each other";
        return false;
    }
    if (words.closed || words.open) wishes.closed = words.closed;
    if (!words.at.empty() && !ParsePoint(words.at, wishes.at.emplace())) {
        problem = fmt::format("--at takes x,y as two numbers with a comma between, not \"{}\"", words.at);
        return false;
    }
    wishes.scale = words.scale;
    if (words.scale >= 1e-6 && words.scale <= 1e6) return true;
    problem = fmt::format("--scale takes a number from 0.000001 to 1000000, not {}", words.scale);
    return false;
}

std::string StartOf(const RoadLine& line) {
    // Whole degrees would put a car a third of a metre off its way after 20 m; minus zero looks like a mistake.
    const auto rounded = [](double value) { return std::round(value * 100.0) / 100.0 + 0.0; };
    return fmt::format("--at {},{},{}", rounded(line.points[0].x), rounded(line.points[0].y), rounded(HeadingAtStart(line)));
}

}  // namespace tavrik
