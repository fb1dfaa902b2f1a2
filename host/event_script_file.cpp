#include "host/event_script_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

#include "drive/key_names.h"
#include "host/script_text.h"

namespace tavrik {
namespace {

constexpr double kLongest = 1e9;       // seconds; ticks run out long before
constexpr double kFarPixel = 32767.0;  // what a message can carry
constexpr float kStickReach = 32767.0f, kTriggerReach = 255.0f;

std::vector<std::string_view> Words(std::string_view text) {
    std::vector<std::string_view> words;
    while (!(text = Trim(text)).empty()) {
        const std::size_t end = std::min(text.find_first_of(kBlanks), text.size());
        words.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return words;
}

bool ParseNumber(std::string_view word, double low, double high, double& value) {
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    return error == std::errc() && end == word.data() + word.size() && value >= low && value <= high;
}

struct PadAxis {
    std::string_view name;
    std::int16_t XInputGamepad::*axis;
};
constexpr PadAxis kPadAxes[] = {{"LX", &XInputGamepad::sThumbLX},
                                {"LY", &XInputGamepad::sThumbLY},
                                {"RX", &XInputGamepad::sThumbRX},
                                {"RY", &XInputGamepad::sThumbRY}};
struct PadTrigger {
    std::string_view name;
    std::uint8_t XInputGamepad::*trigger;
};
constexpr PadTrigger kPadTriggers[] = {{"LT", &XInputGamepad::bLeftTrigger}, {"RT", &XInputGamepad::bRightTrigger}};
struct PadButton {
    std::string_view name;
    std::uint16_t bit;
};
// The named buttons of a binding are found by their names; these four are the D-pad.
constexpr PadButton kPadDirections[] = {{"UP", 1}, {"DOWN", 2}, {"LEFT", 4}, {"RIGHT", 8}};

/// The bit of a button, 0 for an unknown name.
std::uint16_t ButtonBit(std::string_view name) {
    for (const PadButton& button : kPadDirections) {
        if (button.name == name) return button.bit;
    }
    const std::optional<std::int32_t> code =
        name.empty() || (name[0] >= '0' && name[0] <= '9') ? std::nullopt : ButtonCode(name);
    return code ? std::uint16_t(*code) : std::uint16_t(0);
}

bool SetPadControl(std::string_view name, std::string_view word, XInputGamepad& pad, std::string& fault) {
    const auto fail = [&](std::string_view range) {
        fault = fmt::format("{} is {}, but goes {}", name, Quoted(word), range);
        return false;
    };
    double value = 0.0;
    for (const PadAxis& axis : kPadAxes) {
        if (axis.name != name) continue;
        if (!ParseNumber(word, -1.0, 1.0, value)) return fail("from -1 to 1");
        pad.*axis.axis = std::int16_t(std::lround(float(value) * kStickReach));
        return true;
    }
    for (const PadTrigger& trigger : kPadTriggers) {
        if (trigger.name != name) continue;
        if (!ParseNumber(word, 0.0, 1.0, value)) return fail("from 0 to 1");
        pad.*trigger.trigger = std::uint8_t(std::lround(float(value) * kTriggerReach));
        return true;
    }
    const std::uint16_t bit = ButtonBit(name);
    if (bit == 0) {
        fault =
            fmt::format("a gamepad has no control {}; it has LX LY RX RY LT RT A B X Y LB RB UP DOWN LEFT RIGHT", Quoted(name));
        return false;
    }
    if (word != "0" && word != "1") return fail("0 or 1");
    pad.wButtons = std::uint16_t(word == "1" ? pad.wButtons | bit : pad.wButtons & ~bit);
    return true;
}

using Arguments = std::vector<std::string_view>;

bool ParseKey(const Arguments& words, DriverEvent& event, std::string& fault) {
    const std::optional<std::int32_t> code = KeyCode(words[1]);
    if (!code) {
        fault = fmt::format("there is no key {}; keys are letters, digits and the names that \"tavrik controls keys\" lists",
                            Quoted(words[1]));
        return false;
    }
    event.code = *code;
    return true;
}

bool ParsePoint(const Arguments& words, DriverEvent& event, std::string& fault) {
    double x = 0.0, y = 0.0;
    if (!ParseNumber(words[1], -kFarPixel, kFarPixel, x) || !ParseNumber(words[2], -kFarPixel, kFarPixel, y)) {
        fault = fmt::format("the mouse can't go to {} {}; it takes two numbers of pixels", Quoted(words[1]), Quoted(words[2]));
        return false;
    }
    event.x = float(x);
    event.y = float(y);
    return true;
}

bool ParseWheel(const Arguments& words, DriverEvent& event, std::string& fault) {
    double delta = 0.0;
    if (!ParseNumber(words[1], -kFarPixel, kFarPixel, delta) || delta != std::floor(delta)) {
        fault = fmt::format("the wheel can't turn by {}; it takes a whole number, 120 a notch", Quoted(words[1]));
        return false;
    }
    event.code = std::int32_t(delta);
    return true;
}

bool ParseScrub(const Arguments& words, DriverEvent& event, std::string& fault) {
    double seconds = 0.0;
    if (!ParseNumber(words[1], 0.0, 1e5, seconds)) {
        fault = fmt::format("the timeline can't go to {}; it takes seconds, 0 or later", Quoted(words[1]));
        return false;
    }
    event.x = float(seconds);
    return true;
}

bool ParsePad(const Arguments& words, DriverEvent& event, std::string& fault) {
    if (words.size() % 2 == 0) {
        fault = "a pad event takes pairs of a control and its value";
        return false;
    }
    for (std::size_t i = 1; i < words.size(); i += 2) {
        if (!SetPadControl(words[i], words[i + 1], event.pad, fault)) return false;
    }
    return true;
}

bool ParseNothing(const Arguments&, DriverEvent&, std::string&) { return true; }

struct EventForm {
    std::string_view name;
    DriverEventKind kind;
    std::size_t least, most;  // words behind the name
    bool (*parse)(const Arguments&, DriverEvent&, std::string&);
};
constexpr std::size_t kAnyNumber = 1000;
constexpr EventForm kForms[] = {
    {"key-down", DriverEventKind::KeyDown, 1, 1, ParseKey},
    {"key-up", DriverEventKind::KeyUp, 1, 1, ParseKey},
    {"mouse", DriverEventKind::MouseMove, 2, 2, ParsePoint},
    {"wheel", DriverEventKind::MouseWheel, 1, 1, ParseWheel},
    {"right-down", DriverEventKind::RightButtonDown, 0, 0, ParseNothing},
    {"right-up", DriverEventKind::RightButtonUp, 0, 0, ParseNothing},
    {"click", DriverEventKind::Click, 0, 0, ParseNothing},
    {"leave", DriverEventKind::LoseFocus, 0, 0, ParseNothing},
    {"scrub", DriverEventKind::Scrub, 1, 1, ParseScrub},
    {"pad", DriverEventKind::PadChange, 2, kAnyNumber, ParsePad},
    {"pad-lost", DriverEventKind::PadLost, 0, 0, ParseNothing},
};

std::string FormNames() {
    std::string names;
    for (const EventForm& form : kForms) names += (names.empty() ? "" : ", ") + std::string(form.name);
    return names;
}

/// @param event  its pad holds the state before this event
bool ParseEvent(std::string_view line, DriverEvent& event, std::string& fault) {
    const std::size_t comma = line.find(',');
    const std::string_view time = Trim(line.substr(0, comma));
    if (!ParseNumber(time, 0.0, kLongest, event.seconds)) {
        fault = fmt::format("its time is {}, not a number of seconds", Quoted(time));
        return false;
    }
    const Arguments words = Words(comma == std::string_view::npos ? std::string_view() : line.substr(comma + 1));
    if (words.empty()) {
        fault = "it names no event behind its time and a comma";
        return false;
    }
    const auto form =
        std::find_if(std::begin(kForms), std::end(kForms), [&](const EventForm& f) { return f.name == words[0]; });
    if (form == std::end(kForms)) {
        fault = fmt::format("there is no event {}; there are {}", Quoted(words[0]), FormNames());
        return false;
    }
    if (words.size() - 1 < form->least || words.size() - 1 > form->most) {
        fault = fmt::format("{} takes {} more words, not {}", form->name, form->least, words.size() - 1);
        return false;
    }
    event.kind = form->kind;
    return form->parse(words, event, fault);
}

}  // namespace

bool LooksLikeEvents(std::string_view text) {
    while (!text.empty()) {
        const std::string_view line = TakeLine(text);
        if (line.empty() || IsHeading(line)) continue;
        const std::size_t comma = line.find(',');
        return comma != std::string_view::npos && IsHeading(Trim(line.substr(comma + 1)));
    }
    return false;
}

bool ReadEventScriptText(const std::string& name, std::string_view text, EventScript& script, std::string& problem) {
    EventScript result;
    XInputGamepad pad{};
    const auto add = [&](std::string_view line, std::string& fault) {
        DriverEvent event;
        event.pad = pad;
        if (!ParseEvent(line, event, fault)) return;
        if (!result.events.empty() && event.seconds < result.events.back().seconds) {
            fault = fmt::format("its time, {} s, lies before the {} s of the event above", event.seconds,
                                result.events.back().seconds);
        }
        pad = event.pad;
        result.events.push_back(event);
    };
    if (!ForEachRow(name, text, add, problem)) return false;
    if (result.events.empty()) {
        problem = fmt::format("{}: it holds no event (seconds, event).", name);
        return false;
    }
    script = std::move(result);
    return true;
}

}  // namespace tavrik
