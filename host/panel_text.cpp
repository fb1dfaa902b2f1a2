#include "host/panel_text.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/sdk/standin.h"
#include "host/wide_text.h"

namespace tavrik_host {
namespace {

constexpr std::size_t kLabelWidth = 26, kValueWidth = 34;

/// As few digits as tell the number apart from its neighbours.
std::string Digits(double value) {
    const auto single = float(value);
    return double(single) == value ? fmt::format("{}", single) : fmt::format("{}", value);
}
double Short(double value) { return std::stod(Digits(value)); }

std::string NumberText(const PanelControl& spinner) {
    const std::string number = Digits(spinner.value);
    switch (spinner.unit) {
        case UnitKind::Length:
            return fmt::format("{} ({:.6g} m)", number, spinner.value * MetresPerUnit());
        case UnitKind::Time:
            return fmt::format("{} frames ({:.6g} s)", Digits(Short(spinner.value / GetTicksPerFrame())),
                               spinner.value / TIME_TICKSPERSEC);
        case UnitKind::Angle:
            return number + " degrees";
        case UnitKind::Plain:
            return number;
    }
    return number;
}

std::string RadioText(const PanelControl& group) {
    std::string text;
    for (std::size_t i = 0; i < group.buttons.size(); ++i) {
        const char mark = double(i) == group.value ? 'x' : ' ';
        text += fmt::format("{}({}) {}", i == 0 ? "" : "  ", mark, OneLine(group.buttons[i].label));
    }
    return text;
}

std::string ChosenItem(const PanelControl& combo) {
    const auto count = double(combo.items.size());
    return combo.value >= 0.0 && combo.value < count ? OneLine(combo.items[std::size_t(combo.value)]) : "";
}

std::string ComboText(const PanelControl& combo) {
    std::string items;
    for (const std::wstring& item : combo.items) items += (items.empty() ? "" : " | ") + OneLine(item);
    const std::string chosen = ChosenItem(combo);
    return fmt::format("{} ({})", chosen.empty() ? "nothing chosen" : chosen, items);
}

std::string LimitsText(const PanelControl& control) {
    if (control.kind != ControlKind::Spinner || !control.param) return "";
    if (control.unit == UnitKind::Time) {
        const double frame = GetTicksPerFrame();
        return fmt::format("{} to {} frames  ", Digits(Short(control.low / frame)), Digits(Short(control.high / frame)));
    }
    return fmt::format("{} to {}  ", Digits(control.low), Digits(control.high));
}

void AppendControl(const PanelControl& control, std::string& text) {
    const std::string_view indent = control.group.empty() ? "  " : "    ";
    if (control.kind == ControlKind::StaticText) {
        for (std::wstring_view rest = control.text; !rest.empty();) {
            const std::wstring_view line = rest.substr(0, rest.find(L'\n'));
            const std::string shown = OneLine(line);
            text += shown.empty() ? "\n" : fmt::format("{}{}\n", indent, shown);
            rest.remove_prefix(std::min(rest.size(), line.size() + 1));
        }
        return;
    }
    const std::string number = control.id == 0 ? "" : fmt::format("#{}", control.id);
    text += fmt::format("{}{:<{}} {:<{}}  {}{}{}\n", indent, OneLine(control.label), kLabelWidth - indent.size(),
                        ShownValue(control), kValueWidth, LimitsText(control), number, control.enabled ? "" : "  greyed");
}

const char* KindName(ControlKind kind) {
    switch (kind) {
        case ControlKind::StaticText:
            return "static text";
        case ControlKind::EditField:
            return "edit field";
        case ControlKind::Spinner:
            return "spinner";
        case ControlKind::CheckBox:
            return "check box";
        case ControlKind::RadioGroup:
            return "radio group";
        case ControlKind::Button:
            return "button";
        case ControlKind::CheckButton:
            return "check button";
        case ControlKind::PickButton:
            return "pick button";
        case ControlKind::MapButton:
            return "map button";
        case ControlKind::ComboBox:
            return "combo box";
        case ControlKind::Frame:
            return "frame";
        case ControlKind::Bitmap:
            return "bitmap";
    }
    return "";
}

const char* UnitName(UnitKind unit) {
    switch (unit) {
        case UnitKind::Plain:
            return "plain";
        case UnitKind::Length:
            return "length";
        case UnitKind::Time:
            return "time";
        case UnitKind::Angle:
            return "angle";
    }
    return "";
}

nlohmann::ordered_json ValueJson(const PanelControl& control) {
    switch (control.kind) {
        case ControlKind::Spinner:
            return Short(control.value);
        case ControlKind::CheckBox:
            return control.value != 0.0;
        case ControlKind::RadioGroup: {
            const bool isChoice = control.value >= 0.0 && control.value < double(control.buttons.size());
            if (!isChoice) return nullptr;
            return ToUtf8(control.buttons[std::size_t(control.value)].label);
        }
        case ControlKind::ComboBox:
            if (control.value < 0.0) return nullptr;
            return ChosenItem(control);
        case ControlKind::PickButton:
            if (control.node == nullptr) return nullptr;
            return ToUtf8(control.text);
        case ControlKind::MapButton:
            if (control.map == nullptr) return nullptr;
            return ToUtf8(control.text);
        default:
            return ToUtf8(control.text);
    }
}

nlohmann::ordered_json ControlJson(const PanelControl& control) {
    nlohmann::ordered_json json = {{"kind", KindName(control.kind)}};
    if (control.id != 0) json["number"] = control.id;
    if (!control.label.empty()) json["label"] = ToUtf8(control.label);
    if (!control.group.empty()) json["group"] = ToUtf8(control.group);
    json["value"] = ValueJson(control);
    json["enabled"] = control.enabled;
    if (control.param) json["parameter"] = {{"name", ToUtf8(control.paramName)}, {"id", *control.param}};
    if (control.param && control.entry != 0) json["parameter"]["entry"] = control.entry;
    if (control.kind == ControlKind::Spinner) {
        json["edit"] = control.edit;
        json["unit"] = UnitName(control.unit);
        json["low"] = Short(control.low);
        json["high"] = Short(control.high);
        json["click"] = Short(ClickOf(control));
        if (control.isAnimated) json["animated"] = true;
    }
    for (const PanelRadio& button : control.buttons) {
        json["buttons"].push_back({{"number", button.id}, {"label", ToUtf8(button.label)}, {"enabled", button.enabled}});
    }
    for (const std::wstring& item : control.items) json["items"].push_back(ToUtf8(item));
    if (control.checked) json["pressed"] = true;
    return json;
}

}  // namespace

std::string OneLine(std::wstring_view text) {
    std::string line = ToUtf8(text);
    std::erase(line, '\r');
    std::ranges::replace(line, '\n', ' ');
    return line;
}

std::string NameOnly(std::wstring_view label) {
    std::string name = OneLine(label);
    if (name.ends_with(':')) name.pop_back();
    return name;
}

std::string ShownValue(const PanelControl& control) {
    switch (control.kind) {
        case ControlKind::Spinner:
            return NumberText(control) + (control.isAnimated ? " animated" : "");
        case ControlKind::CheckBox:
            return control.value != 0.0 ? "[x]" : "[ ]";
        case ControlKind::RadioGroup:
            return RadioText(control);
        case ControlKind::ComboBox:
            return ComboText(control);
        case ControlKind::Button:
        case ControlKind::CheckButton:
        case ControlKind::PickButton:
        case ControlKind::MapButton:
            return fmt::format("[{}]{}", OneLine(control.text), control.checked ? " pressed" : "");
        default:
            return OneLine(control.text);
    }
}

std::string PanelText(const std::vector<PanelPage>& panel) {
    std::string text;
    for (const PanelPage& page : panel) {
        text += fmt::format("{}{}\n", text.empty() ? "" : "\n", page.title.empty() ? "(no title)" : ToUtf8(page.title));
        std::wstring group;
        for (const PanelControl& control : page.controls) {
            if (control.group != group && !control.group.empty()) text += fmt::format("  {}\n", ToUtf8(control.group));
            group = control.group;
            AppendControl(control, text);
        }
    }
    return text;
}

nlohmann::ordered_json PanelJson(const std::vector<PanelPage>& panel) {
    nlohmann::ordered_json pages = nlohmann::ordered_json::array();
    for (const PanelPage& page : panel) {
        nlohmann::ordered_json controls = nlohmann::ordered_json::array();
        for (const PanelControl& control : page.controls) controls.push_back(ControlJson(control));
        pages.push_back({{"title", ToUtf8(page.title)}, {"dialog", page.window->dialog}, {"controls", std::move(controls)}});
    }
    return pages;
}

}  // namespace tavrik_host
