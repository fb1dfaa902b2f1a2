#include "cli/opened_scene.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/command_line.h"
#include "host/atomic_file.h"
#include "host/plugin_file.h"
#include "host/read_file.h"
#include "host/rig_objects.h"
#include "host/sdk/desktop.h"
#include "host/sdk/standin.h"
#include "host/wide_text.h"

namespace tavrik_cli {

SceneDesktop::SceneDesktop() {
    tavrik::Desktop& desktop = tavrik::TheDesktop();
    desktop.windows = &windows;
    desktop.devices = &pad;
    desktop.controls = &controls;
    desktop.stopAtBadNumbers = true;
}

SceneDesktop::~SceneDesktop() {
    tavrik_host::ResetScene();
    tavrik::TheDesktop() = {};
}

std::string SceneDesktop::TakeMessage() {
    std::string message;
    std::swap(message, tavrik::TheDesktop().complaint);
    if (message.empty() && !windows.messages.empty()) message = windows.messages.front();
    windows.messages.clear();
    std::replace(message.begin(), message.end(), '\n', ' ');
    return message;
}

bool OpenScene(const std::filesystem::path& file, tavrik_host::SceneDocument& document, std::string& problem) {
    return tavrik_host::LoadTavrikPlugin(problem) && tavrik_host::LoadScene(file, document, problem);
}

bool ChooseMaster(const std::filesystem::path& file, const std::string& name, INode*& master, std::string& problem) {
    const std::vector<INode*> masters = tavrik_host::NodesOf(tavrik::ObjectClass::Tavrik);
    std::string names;
    for (INode* node : masters) {
        const std::string its = tavrik_host::ToUtf8(node->GetName());
        names += fmt::format("{}\"{}\"", names.empty() ? "" : ", ", its);
        if (its == name || (name.empty() && masters.size() == 1)) {
            master = node;
            return true;
        }
    }
    if (masters.empty()) {
        problem = fmt::format("{}: there is no car in it; make a scene with a car with \"tavrik new\".", file.string());
    } else if (name.empty()) {
        problem = fmt::format("{}: there are several cars in it; choose one with --master: {}.", file.string(), names);
    } else {
        problem = fmt::format("{}: there is no car \"{}\" in it; there is {}.", file.string(), name, names);
    }
    return false;
}

bool SaveScene(const std::filesystem::path& file, const tavrik_host::SceneDocument& document, std::string& problem) {
    return SaveScene({}, file, document, {}, problem);
}

bool SaveScene(const std::filesystem::path& scene, const std::filesystem::path& out, const tavrik_host::SceneDocument& document,
               tavrik::Results others, std::string& problem) {
    std::string bytes;
    if (!MakeSceneFile(document, bytes, problem)) {
        problem = fmt::format("{}: {}", out.string(), problem);
        return false;
    }
    if (!tavrik_host::ToFileForm(out, bytes, problem)) return false;
    std::error_code error;
    if (std::filesystem::equivalent(scene, out, error)) {
        std::filesystem::path kept = scene;
        kept += ".bak";
        others.emplace_back(kept, std::string());
        if (!tavrik::ReadWholeFile(scene, others.back().second, problem)) return false;
    }
    others.emplace_back(out, std::move(bytes));
    return tavrik::WriteResults(others, problem);
}

int Fail(const std::string& problem) {
    fmt::print(stderr, "{}\n", problem);
    return tavrik::kExitBadInput;
}

}  // namespace tavrik_cli
