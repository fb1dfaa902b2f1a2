#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "cli/command_line.h"
#include "cli/gizmo_words.h"
#include "cli/opened_scene.h"
#include "cli/progress.h"
#include "host/atomic_file.h"
#include "host/png_file.h"
#include "host/rig_objects.h"
#include "host/sdk/standin.h"
#include "host/sdk/view_picking.h"
#include "host/wide_text.h"

namespace tavrik_cli {
namespace {

using tavrik::ObjectClass;

struct Kind {
    std::string_view word;
    ObjectClass objectClass;
};
constexpr Kind kKinds[] = {
    {"master", ObjectClass::Tavrik}, {"chassis", ObjectClass::Chassis}, {"suspension", ObjectClass::Suspension},
    {"wheel", ObjectClass::Wheel},   {"sphere", ObjectClass::Sphere},   {"hitch", ObjectClass::Hitch},
    {"tongue", ObjectClass::Tongue}, {"push", ObjectClass::Push},       {"start", ObjectClass::Start},
};

/// All nodes of a name.
std::vector<INode*> NodesNamed(const std::string& name) {
    std::vector<INode*> nodes;
    for (INode* const node : tavrik_host::AllNodes()) {
        if (tavrik_host::ToUtf8(node->GetName()) == name) nodes.push_back(node);
    }
    return nodes;
}

bool IsRigObject(INode& node) {
    const ObjectClass kind = tavrik_host::ClassOf(node);
    return kind != ObjectClass::None && kind != ObjectClass::Other;
}

/// Adds what a word of --only means.
bool AddOnly(const std::string& word, std::vector<INode*>& nodes, std::string& problem) {
    std::vector<INode*> found = NodesNamed(word);
    if (found.empty()) {
        const auto kind = std::ranges::find(kKinds, std::string_view(word), &Kind::word);
        if (kind != std::end(kKinds)) found = tavrik_host::NodesOf(kind->objectClass);
        if (found.empty()) {
            problem = kind != std::end(kKinds) ? fmt::format("there is no {} in it.", word)
                                               : fmt::format("there is no node \"{}\" in it.", word);
            return false;
        }
    } else if (!IsRigObject(*found.front())) {
        problem = fmt::format("the node \"{}\" is no part of a rig, so that it has no lines to draw.", word);
        return false;
    }
    for (INode* const node : found) {
        if (std::ranges::find(nodes, node) == nodes.end()) nodes.push_back(node);
    }
    return true;
}

bool ChooseNodes(const tavrik::GizmoOrder& order, std::vector<INode*>& nodes, std::string& problem) {
    std::vector<INode*> selected;
    for (const std::string& name : order.select) {
        const std::vector<INode*> named = NodesNamed(name);
        if (named.empty()) {
            problem = fmt::format("there is no node \"{}\" in it.", name);
            return false;
        }
        selected.insert(selected.end(), named.begin(), named.end());
    }
    for (const std::string& word : order.only) {
        if (!AddOnly(word, nodes, problem)) return false;
    }
    if (std::ranges::none_of(tavrik_host::AllNodes(), [](INode* node) { return IsRigObject(*node); })) {
        problem = "there is no rig in it to draw; make a scene with a car with \"tavrik new\".";
        return false;
    }
    tavrik_host::SelectNodes(selected);
    return true;
}

bool Draw(const tavrik::GizmoOrder& order, tavrik::Progress& progress, std::vector<std::string>& notes, std::string& problem) {
    tavrik::CanvasFonts fonts;
    if (!tavrik::CanWriteFile(order.out, problem) || !LoadCanvasFonts(fonts, problem)) return false;
    progress.Begin("Reading scene");
    tavrik_host::SceneDocument document;
    if (!OpenScene(order.scene, document, problem)) return false;
    tavrik_host::GizmoWish wish;
    if (!ChooseNodes(order, wish.nodes, problem)) {
        problem = fmt::format("{}: {}", order.scene.string(), problem);
        return false;
    }
    wish.views = order.views;
    wish.width = order.width;
    wish.height = order.height;
    wish.threads = order.threads;
    const Interval range = GetCOREInterface()->GetAnimRange();
    const TimeValue tick = order.hasFrame ? order.frame * GetTicksPerFrame() : range.Start();
    progress.Begin("Drawing");
    const tavrik_host::RenderModel model = TakeRenderModel(document, {});
    notes = model.notes;
    return WritePngFile(order.out, TakeGizmoPicture(model, tick, wish, fonts), problem);
}

}  // namespace
}  // namespace tavrik_cli

int tavrik::RunGizmo(const GizmoOrder& order) {
    tavrik_cli::SceneDesktop desktop;
    Progress progress;
    std::vector<std::string> notes;
    std::string problem;
    const bool done = tavrik_cli::Draw(order, progress, notes, problem);
    progress.Clear();
    if (!done) return tavrik_cli::Fail(problem);
    for (const std::string& note : notes) fmt::print("Note      {}\n", note);
    fmt::print("Written   {}: the rig of {}, {} {}\n", order.out.string(), order.scene.string(), order.views.size(),
               order.views.size() == 1 ? "view" : "views");
    return kExitOk;
}
