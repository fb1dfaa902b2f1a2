#pragma once

#include <filesystem>
#include <string>

#include "drive/file_store.h"

namespace tavrik {

/// The file of key bindings in the user's configuration folder.
class ControlsFile final : public FileStore {
 public:
    /// `Norvane/TavrikControls.cfg` under `$XDG_CONFIG_HOME`, or under `.config` in the home folder.
    ControlsFile();
    explicit ControlsFile(std::filesystem::path file) : file_(std::move(file)) {}

    const std::filesystem::path& Path() const { return file_; }
    /// What kept the last Read or Write from its work, in one sentence that names the file; empty after one that went well.
    const std::string& Problem() const { return problem_; }

    /// Anything but a plain file is refused unread: a folder, a pipe that would be waited on, a device.
    FileState Read(std::size_t limit, std::vector<std::byte>& bytes) override;
    /// Makes the folder where it isn't there.
    bool Write(std::span<const std::byte> bytes) override;

 private:
    std::filesystem::path file_;
    std::string problem_;
};

}  // namespace tavrik
