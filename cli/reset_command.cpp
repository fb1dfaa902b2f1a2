#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/opened_scene.h"
#include "host/atomic_file.h"
#include "host/master_panel.h"
#include "host/rig_objects.h"
#include "host/scene_rig.h"
#include "host/wide_text.h"

namespace tavrik_cli {
namespace {

/// The masters to unlock: one, or all.
bool FindMasters(const tavrik::ResetOrder& order, std::vector<INode*>& masters, std::string& problem) {
    masters = tavrik_host::NodesOf(tavrik::ObjectClass::Tavrik);
    if (order.master.empty() && !masters.empty()) return true;
    INode* master = nullptr;
    if (!ChooseMaster(order.scene, order.master, master, problem)) return false;
    masters = {master};
    return true;
}

/// @param told  what became of each car, a line each
bool Reset(const tavrik::ResetOrder& order, std::string& told, std::string& problem) {
    const std::filesystem::path& out = order.out.empty() ? order.scene : order.out;
    tavrik_host::SceneDocument document;
    std::vector<INode*> masters;
    if (!tavrik::CanWriteFile(out, problem) || !OpenScene(order.scene, document, problem) ||
        !FindMasters(order, masters, problem)) {
        return false;
    }
    auto motion = std::make_unique<tavrik::RecordedMotion>();
    for (INode* master : masters) {
        if (!tavrik_host::ReadRecording(*master, *motion, problem)) return false;
        const std::string name = tavrik_host::ToUtf8(master->GetName());
        if (!motion->valid) {
            told += fmt::format("Unlocked  {} was not locked\n", name);
            continue;
        }
        tavrik_host::MasterPanel(*master).UnlockComponents();
        told += fmt::format("Unlocked  {}, whose recording of {} samples is gone from the scene\n", name, motion->frames - 1);
    }
    return SaveScene(order.scene, out, document, {}, problem);
}

}  // namespace
}  // namespace tavrik_cli

int tavrik::RunReset(const ResetOrder& order) {
    tavrik_cli::SceneDesktop desktop;
    std::string told, problem;
    if (!tavrik_cli::Reset(order, told, problem)) return tavrik_cli::Fail(problem);
    fmt::print("{}", told);
    return kExitOk;
}
