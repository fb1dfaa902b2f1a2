#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <vector>

#include "cli/command_line.h"
#include "cli/opened_scene.h"

namespace {

constexpr const char* kStudioName = "tavrik-studio";
// As seen from this program's folder: installed beside it, in a build tree.
constexpr const char* kPlaces[] = {".", "../studio"};

std::filesystem::path FindStudio() {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    for (const char* place : kPlaces) {
        const std::filesystem::path file = (folder / place / kStudioName).lexically_normal();
        if (std::filesystem::exists(file, error)) return file;
    }
    return {};
}

}  // namespace

int tavrik::RunStudio(const StudioOrder& order) {
    const std::filesystem::path studio = FindStudio();
    if (studio.empty()) {
        return tavrik_cli::Fail(
            fmt::format("{}: not found beside this program; build it with TAVRIK_STUDIO=ON, which needs Qt 6.", kStudioName));
    }
    std::vector<std::string> words = order.words;
    std::string name = studio.string();
    std::vector<char*> arguments{name.data()};
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    ::execv(name.c_str(), arguments.data());
    return tavrik_cli::Fail(fmt::format("{}: {}.", name, std::generic_category().message(errno)));
}
