#pragma once
/// The open panel in words: for people to read, and for scripts.

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "host/sdk/panel_controls.h"

namespace tavrik_host {

/// What a control shows: a number with its unit, what is checked or chosen, the name of a node. UTF-8.
std::string ShownValue(const PanelControl& control);

/// Pages with their groups and controls, a line each; what is greyed says so.
std::string PanelText(const std::vector<PanelPage>& panel);
nlohmann::ordered_json PanelJson(const std::vector<PanelPage>& panel);

/// A text on one line.
std::string OneLine(std::wstring_view text);
/// A label without the colon behind it.
std::string NameOnly(std::wstring_view label);

}  // namespace tavrik_host
