#pragma once
/// A panel that is open, by its pages and numbers.

#include <optional>
#include <string>

#include "host/sdk/panel_controls.h"
#include "tests/plugin/plugin_scene.h"

namespace plugin_test {

using tavrik_host::ControlKind;
using tavrik_host::PageOf;
using tavrik_host::PanelControl;
using tavrik_host::PanelPage;
using tavrik_host::PanelWindow;
using tavrik_host::ReadControl;
using tavrik_host::ReadPanel;
using tavrik_host::UnitKind;

/// Plain letters, line breaks as | and ~.
inline std::string Narrow(const std::wstring& text) {
    std::string narrow;
    for (const wchar_t c : text) narrow += c == L'\n' ? '|' : c == L'\r' ? '~' : char(c);
    return narrow;
}

/// A scene in which a panel is opened.
class PluginPanel : public PluginScene {
 public:
    INode& Open(Class_ID id) {
        INode& node = AddNode(id, Matrix3(TRUE));
        tavrik_host::OpenPanel(node);
        return node;
    }
    static PanelWindow& Page(MapID map = 0) { return *PageOf(map); }
    static PanelControl Control(int id, MapID map = 0) {
        const std::optional<PanelControl> found = ReadControl(Page(map), id);
        EXPECT_TRUE(found) << id;
        return found.value_or(PanelControl());
    }
    static double ValueOf(int id, MapID map = 0) { return Control(id, map).value; }
};

}  // namespace plugin_test
