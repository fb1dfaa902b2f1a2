#include "cli/drive_words.h"

#include <charconv>
#include <cmath>
#include <system_error>

#include "rig/ticks.h"

namespace tavrik {
namespace {

constexpr double kLongestHours = 10.0;  // some 5 GB of recording
constexpr int kSamplesPerFrame = 5;

const std::map<std::string, double> kMetresOfUnit = {{"m", 1.0}, {"cm", 0.01}, {"mm", 0.001}, {"in", 0.0254}, {"ft", 0.3048}};
const std::map<std::string, UpAxis> kUpAxes = {{"y", UpAxis::Y}, {"z", UpAxis::Z}};

/// "x,y" or "x,y,heading"
bool ParseSpot(std::string_view option, std::string_view words, CarSpot& spot, std::string& problem) {
    double numbers[3] = {0, 0, 0};
    std::size_t count = 0;
    std::string_view rest = words;
    for (bool more = true; more; ++count) {
        const std::size_t comma = rest.find(',');
        const std::string_view word = rest.substr(0, comma);
        double number = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        if (count == 3 || error != std::errc() || end != word.data() + word.size() || !std::isfinite(number)) {
            problem = fmt::format("{} takes x,y,heading as three numbers with commas between, not \"{}\"", option, words);
            return false;
        }
        numbers[count] = number;
        more = comma != std::string_view::npos;
        if (more) rest.remove_prefix(comma + 1);
    }
    if (count < 2) {
        problem = fmt::format("{} takes x,y,heading as three numbers with commas between, not \"{}\"", option, words);
        return false;
    }
    spot = {numbers[0] * 100.0, numbers[1] * 100.0, numbers[2]};
    return true;
}

bool SetTimes(const DriveWords& words, DriveOptions& options, std::string& problem) {
    if (!(words.seconds > 0.0 && words.seconds <= kLongestHours * 3600.0)) {
        problem = fmt::format("--seconds takes a time above 0 and up to {:.0f}, not {}", kLongestHours * 3600.0, words.seconds);
        return false;
    }
    const double ticks = double(kTicksPerSecond) / words.fps;
    if (!(words.fps > 0.0) || ticks != std::floor(ticks) || !(ticks >= kSamplesPerFrame && ticks <= kTicksPerSecond)) {
        problem =
            fmt::format("--fps takes a whole part of {} ticks a second from 1 to {} (24, 25, 30, 48, 50, 60, ...), not {}",
                        kTicksPerSecond, kTicksPerSecond / kSamplesPerFrame, words.fps);
        return false;
    }
    options.seconds = words.seconds;
    options.ticksPerFrame = std::int32_t(ticks);
    return true;
}

}  // namespace

void AddGroundWords(CLI::App& app, DriveWords& words, const std::string& orElse) {
    app.add_option("--ground", words.ground, "Mesh to drive on: " + KnownMeshExtensions() + orElse)->type_name("FILE");
    app.add_option("--up", words.up, "Its up axis, y or z; else as the file tells, or z")->type_name("AXIS");
    app.add_option("--unit", words.unit, "Its unit: m, cm, mm, in, ft; else as the file tells, or m")->type_name("UNIT");
}

void AddDriveWords(CLI::App& app, DriveWords& words, const std::string& startOption, const std::string& orElse) {
    AddGroundWords(app, words, orElse);
    app.add_option("--input", words.input, "Driver: rows or events, see below; else half throttle, straight on")
        ->type_name("FILE");
    app.add_option("--fps", words.fps, "Frames a second, default 30; a whole part of 4800")->type_name("N");
    app.add_option("--seed", words.seed, "Of the random numbers, default 1; the same gives the same bits")->type_name("N");
    app.add_option(startOption, words.start, "Start: metres, Z up; degrees clockwise from +y. Else the middle")
        ->type_name("X,Y,HEADING");
}

bool SameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
    std::error_code error;
    if (std::filesystem::equivalent(a, b, error)) return true;
    // A name without a folder that exists would stay as it was typed.
    const auto whole = [&](const std::filesystem::path& file) {
        return std::filesystem::weakly_canonical(std::filesystem::absolute(file, error), error);
    };
    return whole(a) == whole(b);
}

bool MakeDriveOptions(const DriveWords& words, std::string_view startOption, DriveOptions& options, std::string& problem) {
    options.ground = words.ground;
    options.input = words.input;
    options.seed = words.seed;
    if (!words.up.empty() && !Choose(kUpAxes, words.up, "--up", options.import.up, problem)) return false;
    if (!words.unit.empty() && !Choose(kMetresOfUnit, words.unit, "--unit", options.import.metresPerUnit, problem))
        return false;
    if (!words.start.empty() && !ParseSpot(startOption, words.start, options.start.emplace(), problem)) return false;
    return SetTimes(words, options, problem);
}

}  // namespace tavrik
