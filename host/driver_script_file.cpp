#include "host/driver_script_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <utility>

#include "host/read_file.h"
#include "host/script_text.h"

namespace tavrik {
namespace {

struct Column {
    std::string_view name;
    double low, high;
    bool isSwitch;
};

constexpr double kLongest = 1e9;  // seconds; ticks run out long before
constexpr Column kColumns[] = {
    {"seconds", 0.0, kLongest, false}, {"steering", -1.0, 1.0, false}, {"throttle", 0.0, 1.0, false},
    {"brake", 0.0, 1.0, false},        {"hand brake", 0.0, 1.0, true}, {"reverse", 0.0, 1.0, true},
};
constexpr std::size_t kColumnCount = std::size(kColumns);

bool ParseCell(std::string_view cell, const Column& column, double& value, std::string& fault) {
    std::string_view digits = cell;
    if (digits.size() > 1 && digits.front() == '+' && digits[1] != '-') digits.remove_prefix(1);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error == std::errc::invalid_argument || end != digits.data() + digits.size() || std::isnan(value)) {
        fault = fmt::format("{} is {}, not a number", column.name, cell.empty() ? "empty" : Quoted(cell));
        return false;
    }
    if (column.isSwitch && value != 0.0 && value != 1.0) {
        fault = fmt::format("{} is {}, but can only be 0 or 1", column.name, cell);
        return false;
    }
    if (error != std::errc() || !(value >= column.low && value <= column.high)) {
        fault = column.high == kLongest
                    ? fmt::format("{} is {}, but has to be 0 or later", column.name, Quoted(cell))
                    : fmt::format("{} is {}, but goes from {} to {} only", column.name, Quoted(cell), column.low, column.high);
        return false;
    }
    return true;
}

bool ParseRow(std::string_view line, DriverRow& row, std::string& fault) {
    const std::size_t count = std::size_t(std::count(line.begin(), line.end(), ',')) + 1;
    if (count != kColumnCount) {
        fault = fmt::format("it has {} columns instead of {} (seconds, steering, throttle, brake, hand brake, reverse)", count,
                            kColumnCount);
        return false;
    }
    double values[kColumnCount] = {};
    for (std::size_t i = 0; i < kColumnCount; ++i) {
        const std::size_t comma = line.find(',');
        if (!ParseCell(Trim(line.substr(0, comma)), kColumns[i], values[i], fault)) return false;
        line.remove_prefix(comma == std::string_view::npos ? line.size() : comma + 1);
    }
    row = {values[0], float(values[1]), float(values[2]), float(values[3]), values[4] != 0.0, values[5] != 0.0};
    return true;
}

}  // namespace

bool ReadDriverScriptText(const std::string& name, std::string_view text, DriverScript& script, std::string& problem) {
    DriverScript result;
    const auto add = [&](std::string_view line, std::string& fault) {
        DriverRow row;
        if (!ParseRow(line, row, fault)) return;
        if (!result.rows.empty() && row.seconds <= result.rows.back().seconds) {
            fault = fmt::format("its time, {} s, does not come after the {} s of the row before", row.seconds,
                                result.rows.back().seconds);
        }
        result.rows.push_back(row);
    };
    if (!ForEachRow(name, text, add, problem)) return false;
    if (result.rows.empty()) {
        problem =
            fmt::format("{}: it holds no row for the driver (seconds, steering, throttle, brake, hand brake, reverse).", name);
        return false;
    }
    script = std::move(result);
    return true;
}

bool ReadDriverScript(const std::filesystem::path& file, DriverScript& script, std::string& problem) {
    std::string text;
    return ReadWholeFile(file, text, problem) && ReadDriverScriptText(file.string(), text, script, problem);
}

}  // namespace tavrik
