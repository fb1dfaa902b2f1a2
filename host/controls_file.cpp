#include "host/controls_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <system_error>

#include "host/atomic_file.h"

namespace tavrik {
namespace {

constexpr const char* kFolder = "Norvane";
constexpr const char* kFile = "TavrikControls.cfg";

std::filesystem::path ConfigurationFolder() {
    const char* configured = std::getenv("XDG_CONFIG_HOME");
    if (configured != nullptr && configured[0] == '/') return configured;  // a relative one counts for nothing
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home != nullptr ? home : ".") / ".config";
}

std::string Because(int error) { return std::generic_category().message(error); }

/// An open file that closes itself.
struct Descriptor {
    int number;
    ~Descriptor() {
        if (number >= 0) ::close(number);
    }
};

bool ReadUpTo(int descriptor, std::size_t limit, std::vector<std::byte>& bytes) {
    bytes.resize(limit);
    std::size_t length = 0;
    while (length < limit) {
        const ssize_t got = ::read(descriptor, bytes.data() + length, limit - length);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return false;
        if (got == 0) break;
        length += std::size_t(got);
    }
    bytes.resize(length);
    return true;
}

}  // namespace

ControlsFile::ControlsFile() : file_(ConfigurationFolder() / kFolder / kFile) {}

FileState ControlsFile::Read(std::size_t limit, std::vector<std::byte>& bytes) {
    problem_.clear();
    // Opened without waiting, and looked at only once it is open: what the name meant a moment ago doesn't count.
    const Descriptor file{::open(file_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY)};
    if (file.number < 0 && (errno == ENOENT || errno == ENOTDIR)) return FileState::Missing;
    struct stat status {};
    if (file.number < 0 || ::fstat(file.number, &status) != 0) {
        problem_ = fmt::format("{}: can't be opened ({}).", file_.string(), Because(errno));
        return FileState::Unreadable;
    }
    if (!S_ISREG(status.st_mode)) {
        problem_ = fmt::format("{}: this is no plain file; move it out of the way.", file_.string());
        return FileState::Unreadable;
    }
    if (!ReadUpTo(file.number, limit, bytes)) {
        problem_ = fmt::format("{}: can't be read ({}).", file_.string(), Because(errno));
        return FileState::Unreadable;
    }
    return FileState::Read;
}

bool ControlsFile::Write(std::span<const std::byte> bytes) {
    problem_.clear();
    std::error_code error;
    std::filesystem::create_directories(file_.parent_path(), error);
    if (error) {
        problem_ = fmt::format("{}: the folder can't be made ({}).", file_.parent_path().string(), error.message());
        return false;
    }
    return WriteFileAtomically(file_, {reinterpret_cast<const char*>(bytes.data()), bytes.size()}, problem_);
}

}  // namespace tavrik
