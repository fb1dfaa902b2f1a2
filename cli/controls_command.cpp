#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <optional>
#include <span>
#include <string>

#include "cli/command_line.h"
#include "drive/controls_config.h"
#include "drive/key_names.h"
#include "drive/table_params.h"
#include "host/controls_file.h"

namespace tavrik {
namespace {

bool SameWord(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

/// A key as it is shown: its name, or for one without, its code in a form that can be typed.
std::string ShownKey(std::int32_t code) {
    const std::string_view name = KeyName(code);
    if (name != "UNK") return std::string(name);
    return code >= '0' && code <= '9' ? std::string(1, char(code)) : fmt::format("0x{:X}", code);
}

std::string ShownChoice(const ChoiceRow& row, std::int32_t value) {
    const bool known = value >= 0 && std::size_t(value) < row.choices.size();
    return known ? std::string(row.choices[std::size_t(value)]) : std::to_string(value);
}

void Show(const ParamBlock& params, const ControlsFile& file, FileState state) {
    fmt::print("Keyboard\n");
    for (const BindingRow& row : KeyboardBindings()) {
        fmt::print("  {:<20} {:<12} {}\n", ControlName(row.param), row.label, ShownKey(params.GetInt(row.param)));
    }
    fmt::print("Gamepad\n");
    for (const BindingRow& row : GamepadBindings()) {
        fmt::print("  {:<20} {:<12} {}\n", ControlName(row.param), row.label, ButtonName(params.GetInt(row.param)));
    }
    for (const ChoiceRow& row : ControlChoices()) {
        fmt::print("  {:<20} {:<12} {}\n", ControlName(row.param), row.label, ShownChoice(row, params.GetInt(row.param)));
    }
    fmt::print("{} {}\n", state == FileState::Missing ? "Not saved yet in" : "Saved in", file.Path().string());
}

void ListKeys() {
    std::string names;
    for (std::int32_t code = 1; code <= 255; ++code) {
        if (KeyName(code) != "UNK") names += fmt::format("{} ", KeyName(code));
    }
    fmt::print("{}\nand the digits 0 to 9; any other key by its code, 0x1 to 0xFF.\n", names);
}

/// Gives a row of keys or buttons its new value. @return false with `problem` set when the word is none, or stands elsewhere
bool Bind(const BindingRow& row, std::span<const BindingRow> rows, std::optional<std::int32_t> value, std::string_view device,
          const ControlsOrder& order, ParamBlock& params, std::string& problem) {
    if (!value) {
        problem =
            fmt::format("There is no {} \"{}\"; \"tavrik controls\" shows the names in use, \"tavrik controls keys\" all keys.",
                        device, order.value);
        return false;
    }
    const BindingRow* holder = FindHolder(rows, params, *value);
    if (holder != nullptr && holder->param != row.param) {
        problem = fmt::format("{} is already taken by {}; bind that to something else first.", order.value,
                              ControlName(holder->param));
        return false;
    }
    params.SetInt(row.param, *value);
    return true;
}

bool Pick(const ChoiceRow& row, const ControlsOrder& order, ParamBlock& params, std::string& problem) {
    std::string names;
    for (std::size_t i = 0; i < row.choices.size(); ++i) {
        if (SameWord(row.choices[i], order.value)) {
            params.SetInt(row.param, std::int32_t(i));
            return true;
        }
        names += fmt::format("{}\"{}\"", i == 0 ? "" : ", ", row.choices[i]);
    }
    problem = fmt::format("{} takes one of {}, not \"{}\".", ControlName(row.param), names, order.value);
    return false;
}

bool Set(const ControlsOrder& order, ParamBlock& params, std::string& problem) {
    for (const BindingRow& row : KeyboardBindings()) {
        if (!SameWord(ControlName(row.param), order.name)) continue;
        // Escape ends every run and every capture.
        if (KeyCode(order.value) == 27) {
            problem = "ESC can't be bound: it stops the run.";
            return false;
        }
        return Bind(row, KeyboardBindings(), KeyCode(order.value), "key", order, params, problem);
    }
    for (const BindingRow& row : GamepadBindings()) {
        if (!SameWord(ControlName(row.param), order.name)) continue;
        return Bind(row, GamepadBindings(), ButtonCode(order.value), "button", order, params, problem);
    }
    for (const ChoiceRow& row : ControlChoices()) {
        if (SameWord(ControlName(row.param), order.name)) return Pick(row, order, params, problem);
    }
    problem = fmt::format("There is no control \"{}\"; \"tavrik controls\" shows them.", order.name);
    return false;
}

bool Change(const ControlsOrder& order, ParamBlock& params, ControlsFile& file, std::string& problem) {
    if (order.action == ControlsOrder::Action::Reset) {
        ResetControls(params);
    } else if (!Set(order, params, problem)) {
        return false;
    }
    if (SaveControls(params, file)) return true;
    problem = file.Problem();
    return false;
}

}  // namespace

int RunControls(const ControlsOrder& order) {
    if (order.action == ControlsOrder::Action::ListKeys) {
        ListKeys();
        return kExitOk;
    }
    ControlsFile file;
    TableParams params(*FindParamTable("Tavrik"));
    FileState state = LoadControls(file, params);
    std::string problem = file.Problem();
    bool done = state != FileState::Unreadable;
    if (done && order.action != ControlsOrder::Action::Show) {
        done = Change(order, params, file, problem);
        state = FileState::Read;
    }
    if (!done) {
        fmt::print(stderr, "{}\n", problem);
        return kExitBadInput;
    }
    Show(params, file, state);
    return kExitOk;
}

}  // namespace tavrik
