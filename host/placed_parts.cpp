#include "host/placed_parts.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <system_error>
#include <utility>

#include "host/read_file.h"

namespace tavrik {
namespace {

using Json = nlohmann::ordered_json;

/// What is wrong with the text, caught by `ReadPlacesText`.
struct PlaceFault {
    std::string what;
};

[[noreturn]] void Fault(std::string what) { throw PlaceFault{std::move(what)}; }

double Number(const Json& json, const std::string& what) {
    if (!json.is_number() || !std::isfinite(json.get<double>())) Fault(fmt::format("{} must be a number.", what));
    return json.get<double>();
}

std::string Text(const Json& json, const std::string& what) {
    if (!json.is_string() || json.get<std::string>().empty()) Fault(fmt::format("{} must be a text in quotes.", what));
    return json.get<std::string>();
}

DPoint3 Point(const Json& json, const std::string& what) {
    if (!json.is_array() || json.size() != 3) Fault(fmt::format("{} must be three numbers: [x, y, z].", what));
    return {Number(json[0], what), Number(json[1], what), Number(json[2], what)};
}

std::vector<int> Axles(const Json& json, const std::string& what) {
    std::vector<int> axles;
    if (!json.is_array()) Fault(fmt::format("{} must be a list of axles, such as [2] or [].", what));
    for (const Json& entry : json) {
        if (!entry.is_number_integer()) Fault(fmt::format("{} must be a list of axles, such as [2] or [].", what));
        axles.push_back(int(std::clamp<std::int64_t>(entry.get<std::int64_t>(), -1, 1'000'000)));
    }
    return axles;
}

/// A key as a message shows it: on one line, and not endless.
std::string Shown(const std::string& key) {
    std::string shown = key.substr(0, 60);
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return std::uint8_t(c) < 0x20; }, ' ');
    return shown;
}

PartPlace ReadPart(const Json& json, const std::string& what) {
    PartPlace place;
    if (!json.is_object()) Fault(fmt::format("{} must be an object with \"name\" and \"at\".", what));
    for (const auto& [key, value] : json.items()) {
        const std::string entry = fmt::format("\"{}\" of {}", Shown(key), what);
        if (key == "name") {
            place.name = Text(value, entry);
        } else if (key == "at") {
            const DPoint3 at = Point(value, entry);
            place.x = at.x, place.y = at.y, place.z = at.z;
        } else if (key == "yaw") {
            place.yaw = Number(value, entry);
        } else {
            Fault(fmt::format("{} is not known; there are name, at and yaw.", entry));
        }
    }
    if (place.name.empty() || !json.contains("at")) Fault(fmt::format("{} must have \"name\" and \"at\".", what));
    return place;
}

/// The keys of a vehicle besides "vehicles".
void ReadVehicle(const Json& json, const std::string& what, VehicleWish& wish) {
    WizardOptions& options = wish.options;
    if (!json.is_object()) Fault(fmt::format("{} must be an object with \"parts\".", what));
    for (const auto& [key, value] : json.items()) {
        const std::string entry = fmt::format("\"{}\" of {}", Shown(key), what);
        if (key == "name") {
            wish.name = Text(value, entry);
        } else if (key == "parts") {
            if (!value.is_array() || value.empty()) Fault(fmt::format("{} must be a list of parts.", entry));
            for (std::size_t i = 0; i < value.size(); ++i) {
                options.places.push_back(ReadPart(value[i], fmt::format("part {} of {}", i + 1, what)));
            }
        } else if (key == "hitch") {
            options.hitch = Point(value, entry);
        } else if (key == "tongue") {
            options.tongue = Point(value, entry);
        } else if (key == "steer") {
            options.steeredAxles = Axles(value, entry);
        } else if (key == "drive") {
            options.drivenAxles = Axles(value, entry);
        } else if (key == "handbrake") {
            options.handbrakeAxles = Axles(value, entry);
        } else if (key == "mass") {
            options.mass = Number(value, entry);
        } else if (key == "frequency") {
            options.frequency = Number(value, entry);
        } else if (key == "damping") {
            options.dampingRatio = Number(value, entry);
        } else {
            Fault(
                fmt::format("{} is not known; there are name, parts, hitch, tongue, steer, drive, handbrake, mass, "
                            "frequency and damping.",
                            entry));
        }
    }
    if (options.places.empty()) Fault(fmt::format("{} has no \"parts\".", what));
}

void CheckCouplings(const std::vector<VehicleWish>& wishes) {
    for (std::size_t i = 1; i < wishes.size(); ++i) {
        if (!wishes[i - 1].options.hitch) {
            Fault(fmt::format("vehicle {} needs a \"hitch\" for the one behind it.", i));
        }
        if (!wishes[i].options.tongue) Fault(fmt::format("vehicle {} needs a \"tongue\" for the one in front of it.", i + 1));
    }
}

void ReadAll(const Json& json, const WizardOptions& usual, std::vector<VehicleWish>& wishes) {
    if (!json.is_object() || !json.contains("vehicles")) {
        wishes.push_back({"", usual});
        ReadVehicle(json, "the file", wishes.back());
        return;
    }
    const Json& vehicles = json["vehicles"];
    if (json.size() != 1) Fault("beside \"vehicles\" there may be nothing.");
    if (!vehicles.is_array() || vehicles.empty()) Fault("\"vehicles\" must be a list of vehicles.");
    for (std::size_t i = 0; i < vehicles.size(); ++i) {
        wishes.push_back({fmt::format("Vehicle {}", i + 1), usual});
        ReadVehicle(vehicles[i], fmt::format("vehicle {}", i + 1), wishes.back());
    }
    CheckCouplings(wishes);
}

DPoint3 StandUp(const DPoint3& p) { return {p.x, -p.z, p.y}; }

}  // namespace

bool ReadPlacesText(std::string_view text, const WizardOptions& usual, std::vector<VehicleWish>& wishes, std::string& problem) {
    std::vector<VehicleWish> read;
    try {
        ReadAll(Json::parse(text), usual, read);
    } catch (const PlaceFault& fault) {
        problem = fault.what;
        return false;
    } catch (const Json::parse_error& error) {
        problem = fmt::format("this is not JSON; it breaks off at byte {}.", error.byte);
        return false;
    } catch (const Json::exception&) {
        problem = "this is not JSON; a number in it is too large.";
        return false;
    }
    wishes = std::move(read);
    return true;
}

bool ReadPlaces(const std::filesystem::path& file, const WizardOptions& usual, std::vector<VehicleWish>& wishes,
                std::string& problem) {
    std::string text;
    if (!ReadWholeFile(file, text, problem)) return false;
    if (ReadPlacesText(text, usual, wishes, problem)) return true;
    problem = fmt::format("{}: {}", file.string(), problem);
    return false;
}

bool ParsePlace(std::string_view words, PartPlace& place) {
    std::vector<double> numbers;
    const std::size_t first = words.find(',');
    if (first == std::string_view::npos || first == 0) return false;
    place.name = words.substr(0, first);
    for (std::size_t at = first; at < words.size();) {
        const std::size_t end = std::min(words.find(',', at + 1), words.size());
        const std::string_view word = words.substr(at + 1, end - at - 1);
        double number = 0.0;
        const auto [stop, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        if (error != std::errc() || stop != word.data() + word.size() || !std::isfinite(number)) return false;
        numbers.push_back(number);
        at = end;
    }
    if (numbers.size() != 3 && numbers.size() != 4) return false;
    place.x = numbers[0], place.y = numbers[1], place.z = numbers[2];
    place.yaw = numbers.size() == 4 ? numbers[3] : 0.0;
    return true;
}

void StandUpWish(VehicleWish& wish) {
    WizardOptions& options = wish.options;
    for (PartPlace& place : options.places) {
        const DPoint3 at = StandUp({place.x, place.y, place.z});
        place.x = at.x, place.y = at.y, place.z = at.z;
    }
    for (std::optional<DPoint3>* const one : {&options.forward, &options.hitch, &options.tongue}) {
        if (*one) *one = StandUp(**one);
    }
}

}  // namespace tavrik
