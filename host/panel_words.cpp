#include "host/panel_words.h"

#include <fmt/format.h>

#include <cctype>
#include <cmath>
#include <optional>
#include <vector>

#include "host/panel_text.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"

namespace tavrik_host {
namespace {

std::string Lower(std::string_view text) {
    std::string lower;
    for (const char c : text) lower += char(std::tolower(static_cast<unsigned char>(c)));
    return lower;
}
bool Same(std::string_view a, std::string_view b) { return Lower(a) == Lower(b); }

struct Found {
    PanelWindow* page;
    std::string title;
    PanelControl control;

    std::string Name() const {
        if (!control.label.empty()) return NameOnly(control.label);
        return control.text.empty() ? ToUtf8(control.paramName) : OneLine(control.text);
    }
    /// What tells it apart from others of its name.
    std::string Place() const { return (control.group.empty() ? title : ToUtf8(control.group)) + "." + Name(); }
};

bool GoesBy(const PanelControl& control, std::string_view name) {
    if (control.kind == ControlKind::StaticText || name.empty()) return false;
    const bool isInscribed = control.label.empty();
    return Same(NameOnly(control.label), name) || Same(OneLine(control.label), name) ||
           (isInscribed && Same(OneLine(control.text), name)) || Same(ToUtf8(control.paramName), name) ||
           name == std::to_string(control.id) || (control.edit != 0 && name == std::to_string(control.edit));
}

/// The controls that `name` may mean.
std::vector<Found> FindByName(std::string_view name) {
    std::vector<Found> found;
    for (const PanelPage& page : ReadPanel()) {
        const std::string title = ToUtf8(page.title);
        for (const PanelControl& control : page.controls) {
            bool isMeant = GoesBy(control, name);
            for (const std::string& place : {title, ToUtf8(control.group), ToUtf8(control.paramName)}) {
                const bool isThere = !place.empty() && name.size() > place.size() && name[place.size()] == '.' &&
                                     Same(name.substr(0, place.size()), place);
                isMeant = isMeant || (isThere && GoesBy(control, name.substr(place.size() + 1)));
            }
            if (isMeant) found.push_back({page.window, title, control});
        }
    }
    return found;
}

bool FindOne(std::string_view name, Found& found, std::string& problem) {
    std::vector<Found> all = FindByName(name);
    if (all.size() == 1) {
        found = all.front();
        return true;
    }
    if (all.empty()) {
        problem = fmt::format("There is no control \"{}\" on this panel; leave --set away to see which there are.", name);
        return false;
    }
    std::string places;
    for (const Found& one : all) places += fmt::format("{}\"{}\"", places.empty() ? "" : ", ", one.Place());
    problem = fmt::format("There are {} controls \"{}\" on this panel; say {}.", all.size(), name, places);
    return false;
}

/// The factor of what is typed behind a number, or none where it can't stand there.
std::optional<double> UnitFactor(const PanelControl& spinner, std::string_view unit) {
    const double metre = 1.0 / MetresPerUnit();
    switch (spinner.unit) {
        case UnitKind::Length:
            if (unit == "m") return metre;
            if (unit == "cm") return metre / 100.0;
            if (unit == "mm") return metre / 1000.0;
            break;
        case UnitKind::Time:
            if (unit.empty() || unit == "frames") return double(GetTicksPerFrame());
            if (unit == "s") return double(TIME_TICKSPERSEC);
            break;
        case UnitKind::Angle:
            if (unit == "degrees") return 1.0;
            break;
        case UnitKind::Plain:
            break;
    }
    return unit.empty() ? std::optional(1.0) : std::nullopt;
}

const char* UnitHint(UnitKind unit) {
    switch (unit) {
        case UnitKind::Length:
            return "a number of scene units, or one with mm, cm or m";
        case UnitKind::Time:
            return "a number of frames, or one with s";
        case UnitKind::Angle:
            return "a number of degrees";
        case UnitKind::Plain:
            return "a number";
    }
    return "";
}

std::optional<double> TypedNumber(const PanelControl& spinner, const std::string& text) {
    std::size_t end = 0;
    double number = 0.0;
    try {
        number = std::stod(text, &end);
    } catch (const std::exception&) {
        return std::nullopt;
    }
    while (end < text.size() && text[end] == ' ') ++end;
    const std::optional<double> factor = UnitFactor(spinner, std::string_view(text).substr(end));
    if (!factor || !std::isfinite(number * *factor)) return std::nullopt;
    return number * *factor;
}

std::optional<double> TypedFlag(std::string_view text) {
    for (const char* yes : {"on", "yes", "true", "1"}) {
        if (Same(text, yes)) return 1.0;
    }
    for (const char* no : {"off", "no", "false", "0"}) {
        if (Same(text, no)) return 0.0;
    }
    return std::nullopt;
}

std::vector<std::string> Choices(const PanelControl& control) {
    std::vector<std::string> choices;
    for (const PanelRadio& button : control.buttons) choices.push_back(OneLine(button.label));
    for (const std::wstring& item : control.items) choices.push_back(OneLine(item));
    return choices;
}

std::optional<double> TypedChoice(const std::vector<std::string>& choices, std::string_view text) {
    for (std::size_t i = 0; i < choices.size(); ++i) {
        if (Same(choices[i], text)) return double(i);
    }
    return std::nullopt;
}

std::string Listed(const std::vector<std::string>& texts) {
    std::string list;
    for (const std::string& text : texts) list += fmt::format("{}\"{}\"", list.empty() ? "" : ", ", text);
    return list;
}

INode* NodeNamed(std::string_view name) {
    for (INode* node : AllNodes()) {
        if (ToUtf8(node->GetName()) == name) return node;
    }
    return nullptr;
}

bool PickByName(const Found& found, const std::string& text, std::string& problem) {
    INode* const node = NodeNamed(text);
    if (node == nullptr && !Same(text, "none")) {
        problem = fmt::format("There is no node \"{}\" for \"{}\"; give the name of one, or none.", text, found.Name());
    } else if (!PickForControl(*found.page, found.control.id, node)) {
        problem = fmt::format("\"{}\" doesn't take \"{}\"; pick a node of another kind.", found.Name(), text);
    }
    return problem.empty();
}

/// What a control would be set to, or none with `problem` set.
std::optional<double> TypedValue(const Found& found, const std::string& text, std::string& problem) {
    const PanelControl& control = found.control;
    std::optional<double> value;
    std::string wanted;
    if (control.kind == ControlKind::Spinner) {
        value = TypedNumber(control, text);
        wanted = UnitHint(control.unit);
    } else if (control.kind == ControlKind::CheckBox) {
        value = TypedFlag(text);
        wanted = "on or off";
    } else {
        value = TypedChoice(Choices(control), text);
        wanted = "one of " + Listed(Choices(control));
    }
    if (!value) problem = fmt::format("\"{}\" takes {}, not \"{}\".", found.Name(), wanted, text);
    return value;
}

bool Press(const Found& found, const std::string& text, std::string& problem) {
    if (!Same(text, "press")) {
        problem = fmt::format("\"{}\" is a button, which takes press, not \"{}\".", found.Name(), text);
        return false;
    }
    return ClickControl(*found.page, found.control.id);
}

bool Apply(const Found& found, const std::string& text, std::string& problem) {
    switch (found.control.kind) {
        case ControlKind::Button:
        case ControlKind::CheckButton:
            return Press(found, text, problem);
        case ControlKind::PickButton:
            return PickByName(found, text, problem);
        case ControlKind::MapButton:
            if (Same(text, "none")) return SetControlMap(*found.page, found.control.id, nullptr);
            problem = fmt::format("\"{}\" shows a map, which can be taken away with none, but not given here.", found.Name());
            return false;
        default: {
            const std::optional<double> value = TypedValue(found, text, problem);
            return value && SetControl(*found.page, found.control.id, *value);
        }
    }
}

std::string Outcome(const Found& found) {
    const std::optional<PanelControl> now = ReadControl(*found.page, found.control.id);
    if (!now || now->kind == ControlKind::Button || now->kind == ControlKind::CheckButton) {
        return fmt::format("Pressed   {}", found.Name());
    }
    return fmt::format("Set       {}: {}", found.Name(), ShownValue(*now));
}

}  // namespace

bool SetByWords(std::string_view words, std::string& told, std::string& problem) {
    const std::size_t at = words.find('=');
    if (at == std::string_view::npos) {
        problem = fmt::format("--set takes CONTROL=VALUE, not \"{}\".", words);
        return false;
    }
    Found found;
    if (!FindOne(words.substr(0, at), found, problem)) return false;
    if (!found.control.enabled) {
        problem = fmt::format("\"{}\" is greyed out as the panel is set now.", found.Name());
        return false;
    }
    if (!Apply(found, std::string(words.substr(at + 1)), problem)) {
        if (problem.empty()) problem = fmt::format("\"{}\" can't be set to \"{}\".", found.Name(), words.substr(at + 1));
        return false;
    }
    told = Outcome(found);
    return true;
}

}  // namespace tavrik_host
