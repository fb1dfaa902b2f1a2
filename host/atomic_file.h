#pragma once
/// Files that appear whole or not at all: a crash or a full disk leaves what stood there before.

#include <filesystem>
#include <string>
#include <string_view>

namespace tavrik {

/// Bytes on their way into a file. `Stage` puts them beside the target and on the disk, `Commit` gives them its name. What is
/// never committed vanishes with the object, so a command that writes three files stages all of them before it commits one.
class PendingFile {
 public:
    PendingFile() = default;
    ~PendingFile() { Discard(); }
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;
    PendingFile(PendingFile&& other) noexcept;
    PendingFile& operator=(PendingFile&& other) noexcept;

    /// Writes `bytes` to a new file beside `target` and flushes it to disk. An existing target keeps its permissions; a link is
    /// followed, so that what it points to is replaced and not the link.
    ///
    /// @param problem  on false: one sentence that names `target` and the fault; nothing is left beside it
    bool Stage(const std::filesystem::path& target, std::string_view bytes, std::string& problem);

    /// Renames the staged file to its target. @return false with `problem` set when the target can't be replaced
    bool Commit(std::string& problem);

    /// Removes what was staged and not committed.
    void Discard();

 private:
    std::filesystem::path asked_;   // as the caller named the target, for messages
    std::filesystem::path target_;  // where its links lead
    std::filesystem::path staged_;  // empty: nothing is staged
};

/// Writes `bytes` to `target` in one go. @param problem  on false: one sentence that names file and fault
bool WriteFileAtomically(const std::filesystem::path& target, std::string_view bytes, std::string& problem);

/// Whether `WriteFileAtomically` can make a file beside `target` now: tries it with an empty one and leaves nothing behind. Ask
/// before hours of work whose result goes there.
bool CanWriteFile(const std::filesystem::path& target, std::string& problem);

}  // namespace tavrik
