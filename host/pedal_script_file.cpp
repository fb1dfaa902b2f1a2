#include "host/pedal_script_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "drive/key_names.h"
#include "host/script_text.h"

namespace tavrik {
namespace {

constexpr double kLongest = 1e9;  // seconds, where ticks ran out long before; and metres

struct Pedal {
    std::string_view name;
    bool HeldPedals::*held;
    std::int32_t PedalBindings::*key;
};
constexpr Pedal kPedals[] = {{"throttle", &HeldPedals::throttle, &PedalBindings::throttle},
                             {"brake", &HeldPedals::brake, &PedalBindings::brake},
                             {"hand-brake", &HeldPedals::handBrake, &PedalBindings::handBrake}};

std::string_view TakeWord(std::string_view& text) {
    text = Trim(text);
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text = Trim(text.substr(word.size()));
    return word;
}

/// "3", "3 s", "3s", "250 m" or "250m"
bool ParseWhen(std::string_view text, PedalRow& row, std::string& fault) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), row.at);
    const std::string_view unit = Trim(text.substr(std::size_t(end - text.data())));
    row.byMetres = unit == "m";
    const bool known = unit.empty() || unit == "s" || unit == "m";
    if (error == std::errc() && known && row.at >= 0.0 && row.at <= kLongest) return true;
    fault = fmt::format("it begins with {}, not with seconds or metres, such as \"3 s\" or \"250 m\"", Quoted(text));
    return false;
}

/// A key of an event: its pedal, or a sentence why it is none.
const Pedal* PedalOfKey(std::string_view name, const PedalBindings& bindings, std::string& fault) {
    const std::optional<std::int32_t> code = KeyCode(name);
    if (!code) {
        fault = fmt::format("there is no key {}; keys are letters, digits and the names that \"tavrik controls keys\" lists",
                            Quoted(name));
        return nullptr;
    }
    const auto pedal =
        std::find_if(std::begin(kPedals), std::end(kPedals), [&](const Pedal& p) { return bindings.*p.key == *code; });
    if (pedal != std::end(kPedals)) return pedal;
    fault = fmt::format(
        "key {} is no pedal's; here are throttle ({}), brake ({}) and hand brake ({}) only, other keys go to --input",
        Quoted(name), KeyName(bindings.throttle), KeyName(bindings.brake), KeyName(bindings.handBrake));
    return nullptr;
}

bool ParseKey(std::string_view event, std::string_view rest, const PedalBindings& bindings, HeldPedals& held,
              std::string& fault) {
    const std::string_view name = TakeWord(rest);
    if (name.empty() || !rest.empty()) {
        fault = fmt::format("{} takes the name of one key", event);
        return false;
    }
    const Pedal* const pedal = PedalOfKey(name, bindings, fault);
    if (pedal == nullptr) return false;
    held.*pedal->held = event == "key-down";
    return true;
}

/// @param held  in: those of the row above
bool ParsePedals(std::string_view text, const PedalBindings& bindings, HeldPedals& held, std::string& fault) {
    std::string_view rest = text;
    std::string_view word = TakeWord(rest);
    if (word == "key-down" || word == "key-up") return ParseKey(word, rest, bindings, held, fault);
    held = {};
    if (word == "none" && rest.empty()) return true;
    for (bool first = true; first || !word.empty(); first = false, word = TakeWord(rest)) {
        const auto pedal = std::find_if(std::begin(kPedals), std::end(kPedals), [&](const Pedal& p) { return p.name == word; });
        if (pedal == std::end(kPedals)) {
            fault = fmt::format(
                "{} is no pedal; there are throttle, brake, hand-brake, or none of them, and key-down or key-up with a key",
                Quoted(word.empty() ? text : word));
            return false;
        }
        held.*pedal->held = true;
    }
    return true;
}

bool ParseRow(std::string_view line, const PedalBindings& bindings, PedalRow& row, std::string& fault) {
    const std::size_t comma = line.find(',');
    if (comma == std::string_view::npos) {
        fault = "it has no comma between its time or distance and the pedals";
        return false;
    }
    return ParseWhen(Trim(line.substr(0, comma)), row, fault) &&
           ParsePedals(Trim(line.substr(comma + 1)), bindings, row.held, fault);
}

}  // namespace

bool ReadPedalScriptText(const std::string& name, std::string_view text, const PedalBindings& bindings, PedalScript& script,
                         std::string& problem) {
    PedalScript result;
    HeldPedals held;
    double last[2] = {0.0, 0.0};  // of seconds and of metres
    const auto add = [&](std::string_view line, std::string& fault) {
        PedalRow row{.held = held};
        if (!ParseRow(line, bindings, row, fault)) return;
        const char* const unit = row.byMetres ? "m" : "s";
        if (row.at < last[row.byMetres]) {
            fault = fmt::format("its {} {} lie before the {} {} of a row above", row.at, unit, last[row.byMetres], unit);
        }
        last[row.byMetres] = row.at;
        held = row.held;
        result.rows.push_back(row);
    };
    if (!ForEachRow(name, text, add, problem)) return false;
    if (result.rows.empty()) {
        problem = fmt::format("{}: it holds no row (seconds or metres, pedals).", name);
        return false;
    }
    script = std::move(result);
    return true;
}

HeldPedals PedalPlayer::HoldAt(double seconds, double metres) {
    for (; next_ < script_.rows.size(); ++next_) {
        const PedalRow& row = script_.rows[next_];
        if (!((row.byMetres ? metres : seconds) >= row.at)) break;
        held_ = row.held;
    }
    return held_;
}

bool PedalPlayer::ByMetres() const {
    return std::any_of(script_.rows.begin(), script_.rows.end(), [](const PedalRow& row) { return row.byMetres; });
}

}  // namespace tavrik
