#include "host/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

namespace tavrik {
namespace {

constexpr int kAnswered = 0, kFailed = 1;

void SilenceOutputs() {
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0) return;
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
}

bool WriteAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), std::min<std::size_t>(bytes.size(), std::size_t(1) << 20));
        if (written < 0 && errno != EINTR) return false;
        if (written > 0) bytes.remove_prefix(std::size_t(written));
    }
    return true;
}

/// The copy's whole life. Nothing of the original's is torn down in it: no destructors, no handlers at exit, no core file.
[[noreturn]] void LiveAsChild(const std::function<std::string()>& work, int pipe) {
    const rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    // Handlers that the original may have for crashes are not the copy's.
    for (const int crash : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL}) ::signal(crash, SIG_DFL);
    SilenceOutputs();
    int status = kFailed;
    try {
        if (WriteAll(pipe, work())) status = kAnswered;
    } catch (...) {
    }
    ::_exit(status);
}

/// Reads until the other end closes. @return false when the time was up before
bool ReadUntil(int descriptor, std::chrono::steady_clock::time_point end, std::string& bytes) {
    while (true) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0) return false;
        pollfd waiting{descriptor, POLLIN, 0};
        const int ready = ::poll(&waiting, 1, int(std::min<long long>(left.count(), 1'000'000)));
        if (ready == 0 || (ready < 0 && errno == EINTR)) continue;
        char buffer[1 << 16];
        const ssize_t got = ::read(descriptor, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return true;
        bytes.append(buffer, std::size_t(got));
    }
}

}  // namespace

ChildEnd RunInChild(const std::function<std::string()>& work, double seconds, std::string& answer) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(std::int64_t(seconds * 1000.0));
    int pipe[2];
    if (::pipe2(pipe, O_CLOEXEC) != 0) return ChildEnd::NotStarted;
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pipe[0]);
        LiveAsChild(work, pipe[1]);
    }
    ::close(pipe[1]);
    if (child < 0) {
        ::close(pipe[0]);
        return ChildEnd::NotStarted;
    }
    std::string bytes;
    const bool inTime = ReadUntil(pipe[0], end, bytes);
    ::close(pipe[0]);
    if (!inTime) ::kill(child, SIGKILL);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (!inTime) return ChildEnd::TooSlow;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != kAnswered) return ChildEnd::Crashed;
    answer = std::move(bytes);
    return ChildEnd::Answered;
}

}  // namespace tavrik
