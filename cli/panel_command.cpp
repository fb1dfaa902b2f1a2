#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/opened_scene.h"
#include "host/atomic_file.h"
#include "host/panel_text.h"
#include "host/panel_words.h"
#include "host/sdk/panel_controls.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"

namespace tavrik_cli {
namespace {

std::string NameOf(INode& node) { return tavrik_host::ToUtf8(node.GetName()); }

/// The open panel, closed at the end: what happens on it may need the desktop.
class OpenedPanel {
 public:
    OpenedPanel() = default;
    ~OpenedPanel() { tavrik_host::ClosePanel(); }
    OpenedPanel(const OpenedPanel&) = delete;
    OpenedPanel& operator=(const OpenedPanel&) = delete;
};

bool FindNode(const tavrik::PanelOrder& order, INode*& node, std::string& problem) {
    std::vector<INode*> all = tavrik_host::AllNodes();
    std::erase_if(all, [&](INode* one) { return NameOf(*one) != order.node; });
    if (all.size() == 1) {
        node = all.front();
        return true;
    }
    problem = all.empty() ? fmt::format("{}: there is no node \"{}\" in it; \"tavrik info\" tells which there are.",
                                        order.scene.string(), order.node)
                          : fmt::format("{}: {} nodes in it are called \"{}\"; rename them apart.", order.scene.string(),
                                        all.size(), order.node);
    return false;
}

bool Open(const tavrik::PanelOrder& order, INode& node, std::string& problem) {
    if (order.motion) {
        tavrik_host::OpenMotionPanel(node);
    } else {
        tavrik_host::OpenPanel(node);
    }
    if (!tavrik_host::Pages().empty()) return true;
    problem = fmt::format(
        "{}: \"{}\" has no panel; {}.", order.scene.string(), order.node,
        order.motion ? "only nodes that are locked to a car have one for their motion" : "only a car and its parts have one");
    return false;
}

bool SetAll(const tavrik::PanelOrder& order, SceneDesktop& desktop, std::string& told, std::string& problem) {
    for (const std::string& words : order.sets) {
        std::string line;
        if (!tavrik_host::SetByWords(words, line, problem)) return false;
        problem = desktop.TakeMessage();
        if (!problem.empty()) return false;
        if (desktop.windows.IsOpen()) {
            problem = fmt::format(
                "\"{}\" opens a window that takes keys, and there is none here; use \"tavrik drive\" or "
                "\"tavrik controls\" for that.",
                words);
            return false;
        }
        told += line + "\n";
    }
    return true;
}

void Print(const tavrik::PanelOrder& order, INode& node) {
    const std::vector<tavrik_host::PanelPage> panel = tavrik_host::ReadPanel();
    if (!order.json) {
        fmt::print("Panel     {}\n\n{}", NameOf(node), tavrik_host::PanelText(panel));
        return;
    }
    const nlohmann::ordered_json json = {{"node", NameOf(node)}, {"pages", tavrik_host::PanelJson(panel)}};
    fmt::print("{}\n", json.dump(2));
}

bool Panel(const tavrik::PanelOrder& order, SceneDesktop& desktop, std::string& problem) {
    const std::filesystem::path& out = order.out.empty() ? order.scene : order.out;
    tavrik_host::SceneDocument document;
    INode* node = nullptr;
    std::string told;
    if ((!order.sets.empty() && !tavrik::CanWriteFile(out, problem)) || !OpenScene(order.scene, document, problem) ||
        !FindNode(order, node, problem)) {
        return false;
    }
    {
        const OpenedPanel opened;
        if (!Open(order, *node, problem) || !SetAll(order, desktop, told, problem)) return false;
        if (order.sets.empty()) {
            Print(order, *node);
            return true;
        }
        if (!SaveScene(order.scene, out, document, {}, problem)) return false;
        if (order.json) {
            Print(order, *node);
        } else {
            fmt::print("{}", told);
        }
    }
    return true;
}

}  // namespace
}  // namespace tavrik_cli

int tavrik::RunPanel(const PanelOrder& order) {
    tavrik_cli::SceneDesktop desktop;
    std::string problem;
    return tavrik_cli::Panel(order, desktop, problem) ? kExitOk : tavrik_cli::Fail(problem);
}
