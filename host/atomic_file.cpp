#include "host/atomic_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <system_error>
#include <utility>

namespace tavrik {
namespace {

std::string ErrorText(int error) {
    switch (error) {
        case ENOSPC:
        case EDQUOT:
            return "the disk is full";
        case EACCES:
        case EPERM:
        case EROFS:
            return "no permission to write there";
        case ENAMETOOLONG:
            return "the name is too long";
        default:
            return std::generic_category().message(error);
    }
}

/// Where the links of `asked` lead; refuses what a rename would destroy or can't reach.
bool ResolveTarget(const std::filesystem::path& asked, std::filesystem::path& target, std::string& problem) {
    const std::string name = asked.string();
    if (asked.filename().empty() || asked.filename() == "." || asked.filename() == "..") {
        problem = fmt::format("{}: this names a folder, not a file to write.", name.empty() ? "(no name)" : name);
        return false;
    }
    std::error_code error;
    target = asked;
    if (std::filesystem::is_symlink(std::filesystem::symlink_status(asked, error))) {
        target = std::filesystem::weakly_canonical(asked, error);
        if (error) {
            problem = fmt::format("{}: can't be written, its link leads nowhere ({}).", name, error.message());
            return false;
        }
    }
    const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
    const std::filesystem::file_status folderStatus = std::filesystem::status(folder, error);
    if (folderStatus.type() == std::filesystem::file_type::not_found) {
        problem = fmt::format("{}: can't be written, there is no folder {}.", name, folder.string());
        return false;
    }
    if (std::filesystem::exists(folderStatus) && !std::filesystem::is_directory(folderStatus)) {
        problem = fmt::format("{}: can't be written, {} is a file, not a folder.", name, folder.string());
        return false;
    }
    const std::filesystem::file_status status = std::filesystem::status(target, error);
    if (std::filesystem::is_directory(status)) {
        problem = fmt::format("{}: can't be written, a folder of that name stands there.", name);
        return false;
    }
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        problem = fmt::format("{}: can't be written, this is a device or a pipe, not a file on disk.", name);
        return false;
    }
    if (std::filesystem::exists(status) && ::access(target.c_str(), W_OK) != 0) {
        problem = fmt::format("{}: can't be replaced, the file is write-protected.", name);
        return false;
    }
    return true;
}

/// Writes all of `bytes` and waits until they are on the disk. @return 0, or the error
int WriteAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        // Some systems refuse to write 2 GB or more at once.
        const ssize_t written = ::write(descriptor, bytes.data(), std::min<std::size_t>(bytes.size(), std::size_t(1) << 30));
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        bytes.remove_prefix(std::size_t(written));
    }
    return ::fsync(descriptor) == 0 ? 0 : errno;
}

/// Flushes a folder's list of names. Not every file system can, and the file itself is safe by then: no error is of use.
void FlushFolder(const std::filesystem::path& folder) {
    const int descriptor = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    ::fsync(descriptor);
    ::close(descriptor);
}

/// Creates a file beside `target` under a name that nobody has. @return its descriptor, or -1 with errno set
int CreateBeside(const std::filesystem::path& target, std::filesystem::path& created) {
    constexpr int kAttempts = 1000;
    // Short, so that a target whose own name just fits in the file system can still be written.
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        created = target.parent_path() / fmt::format(".tavrik-{}-{}", ::getpid(), attempt);
        const int descriptor = ::open(created.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor >= 0 || errno != EEXIST) return descriptor;
    }
    return -1;
}

}  // namespace

PendingFile::PendingFile(PendingFile&& other) noexcept { *this = std::move(other); }

PendingFile& PendingFile::operator=(PendingFile&& other) noexcept {
    if (this == &other) return *this;
    Discard();
    asked_ = std::move(other.asked_);
    target_ = std::move(other.target_);
    staged_ = std::exchange(other.staged_, {});
    return *this;
}

bool PendingFile::Stage(const std::filesystem::path& target, std::string_view bytes, std::string& problem) {
    Discard();
    asked_ = target;
    if (!ResolveTarget(target, target_, problem)) return false;
    std::filesystem::path created;
    const int descriptor = CreateBeside(target_, created);
    if (descriptor < 0) {
        problem = fmt::format("{}: can't be written, {}.", target.string(), ErrorText(errno));
        return false;
    }
    staged_ = created;
    struct stat old;
    if (::stat(target_.c_str(), &old) == 0) ::fchmod(descriptor, old.st_mode & 0777);
    int error = WriteAll(descriptor, bytes);
    if (::close(descriptor) != 0 && error == 0) error = errno;
    if (error == 0) return true;
    problem = fmt::format("{}: can't be written, {}.", target.string(), ErrorText(error));
    Discard();
    return false;
}

bool PendingFile::Commit(std::string& problem) {
    if (staged_.empty()) return true;
    if (::rename(staged_.c_str(), target_.c_str()) != 0) {
        problem = fmt::format("{}: can't be replaced, {}.", asked_.string(), ErrorText(errno));
        Discard();
        return false;
    }
    staged_.clear();
    FlushFolder(target_.parent_path());
    return true;
}

void PendingFile::Discard() {
    if (!staged_.empty()) ::unlink(staged_.c_str());
    staged_.clear();
}

bool WriteFileAtomically(const std::filesystem::path& target, std::string_view bytes, std::string& problem) {
    PendingFile file;
    return file.Stage(target, bytes, problem) && file.Commit(problem);
}

bool CanWriteFile(const std::filesystem::path& target, std::string& problem) {
    PendingFile file;
    return file.Stage(target, {}, problem);
}

}  // namespace tavrik
