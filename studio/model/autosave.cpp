#include "studio/model/autosave.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <string>
#include <system_error>

#include "host/atomic_file.h"
#include "host/read_file.h"
#include "host/scene_file.h"
#include "studio/model/editor.h"

namespace tavrik_studio {
namespace fs = std::filesystem;
namespace {

constexpr std::chrono::seconds kPeriod{30};
constexpr const char* kCopyEnding = ".glb";
constexpr const char* kNoteEnding = ".txt";  // the file that a copy belongs to

bool IsRunning(const std::string& session) {
    const long process = std::strtol(session.c_str(), nullptr, 10);
    return process > 0 && (::kill(pid_t(process), 0) == 0 || errno == EPERM);
}

}  // namespace

Autosave::Autosave(Editor& editor, fs::path folder, QObject* parent)
    : QObject(parent), editor_(editor), folder_(std::move(folder)), saved_(editor.Revision()) {
    timer_.callOnTimeout(this, &Autosave::SaveNow);
    timer_.start(kPeriod);
    connect(&editor_, &Editor::StateChanged, this, [this] {
        if (editor_.IsModified()) return;
        Wait();
        saved_ = editor_.Revision();
        Remove({Copy(), {}});
    });
}

Autosave::~Autosave() {
    Wait();
    Remove({Copy(), {}});
}

fs::path Autosave::UsualFolder() {
    const char* const state = std::getenv("XDG_STATE_HOME");
    const char* const home = std::getenv("HOME");
    const fs::path base =
        state != nullptr && state[0] == '/' ? fs::path(state) : fs::path(home != nullptr ? home : ".") / ".local" / "state";
    return base / "tavrik" / "autosave";
}

std::vector<RescuedScene> Autosave::Rescued(const fs::path& folder) {
    std::vector<std::pair<fs::file_time_type, RescuedScene>> found;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        if (entry.path().extension() != kCopyEnding || IsRunning(entry.path().stem().string())) continue;
        RescuedScene rescued{entry.path(), {}};
        std::string text, problem;
        if (tavrik::ReadWholeFile(fs::path(entry.path()).replace_extension(kNoteEnding), text, problem)) rescued.file = text;
        found.emplace_back(entry.last_write_time(error), std::move(rescued));
    }
    std::ranges::sort(found, [](const auto& a, const auto& b) { return a.first > b.first; });
    std::vector<RescuedScene> scenes;
    for (auto& [when, scene] : found) scenes.push_back(std::move(scene));
    return scenes;
}

void Autosave::Remove(const RescuedScene& rescued) {
    std::error_code error;
    fs::remove(rescued.copy, error);
    fs::remove(fs::path(rescued.copy).replace_extension(kNoteEnding), error);
}

fs::path Autosave::Copy() const { return folder_ / (std::to_string(::getpid()) + kCopyEnding); }

fs::path Autosave::Note() const { return Copy().replace_extension(kNoteEnding); }

void Autosave::SaveNow() {
    if (!editor_.IsModified() || saved_ == editor_.Revision()) return;
    if (writing_.valid() && writing_.wait_for(std::chrono::seconds(0)) != std::future_status::ready) return;
    Wait();
    std::string bytes, problem;
    if (!tavrik_host::MakeSnapshot(editor_.Document(), bytes, problem)) {
        emit Failed(QString::fromStdString(problem));
        return;
    }
    std::error_code error;
    fs::create_directories(folder_, error);
    saved_ = editor_.Revision();
    writing_ = std::async(std::launch::async,
                          [bytes = std::move(bytes), copy = Copy(), note = Note(), belongs = editor_.File().string()] {
                              std::string fault;
                              if (!tavrik::WriteFileAtomically(note, belongs, fault)) return fault;
                              (void)tavrik::WriteFileAtomically(copy, bytes, fault);
                              return fault;
                          });
}

void Autosave::Wait() {
    if (!writing_.valid()) return;
    const std::string fault = writing_.get();
    if (!fault.empty()) emit Failed(QString::fromStdString(fault));
}

}  // namespace tavrik_studio
