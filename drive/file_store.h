#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tavrik {

enum class FileState {
    Missing,
    Unreadable,  // there, but it can't be opened, or isn't a plain file
    Read,
};

/// One small file of the user's, wherever the system keeps such files.
class FileStore {
 public:
    virtual ~FileStore() = default;
    /// Reads at most `limit` bytes from the front.
    virtual FileState Read(std::size_t limit, std::vector<std::byte>& bytes) = 0;
    /// Puts `bytes` in place of the file in one step, making its folder where needed.
    /// @return false when that fails; the file is then what it was
    virtual bool Write(std::span<const std::byte> bytes) = 0;
};

}  // namespace tavrik
