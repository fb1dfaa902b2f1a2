#include "host/plugin_file.h"

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "host/sdk/standin.h"

namespace tavrik_host {
namespace {

constexpr const char* kPluginName = "tavrik.dlo";
// Of the plug-in, as seen from the program's folder: beside it, in a build tree, installed.
constexpr const char* kPlaces[] = {".", "../plugin", "../lib/tavrik"};

std::filesystem::path ProgramFolder() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

}  // namespace

bool LoadTavrikPlugin(std::string& problem) {
    if (const char* named = std::getenv("TAVRIK_PLUGIN"); named != nullptr && *named != '\0') return LoadPlugin(named, problem);
    const std::filesystem::path folder = ProgramFolder();
    for (const char* place : kPlaces) {
        const std::filesystem::path file = (folder / place / kPluginName).lexically_normal();
        std::error_code error;
        if (std::filesystem::exists(file, error)) return LoadPlugin(file, problem);
    }
    problem = fmt::format("{}: not found beside {} nor in ../plugin or ../lib/tavrik from there; name it in TAVRIK_PLUGIN.",
                          kPluginName, folder.string());
    return false;
}

}  // namespace tavrik_host
