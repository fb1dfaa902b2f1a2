#include "cli/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>

namespace tavrik {

Progress::Progress() : isTerminal_(::isatty(STDERR_FILENO) == 1) {}

void Progress::Draw(std::string_view line) {
    // To the line's start, wipe it, write anew.
    fmt::print(stderr, "\r\x1b[K{}", line);
    std::fflush(stderr);
    isShown_ = true;
}

void Progress::Begin(std::string_view job) {
    job_ = job;
    lastDrawn_ = {};
    if (isTerminal_) Draw(fmt::format("{:<18}", job_));
}

void Progress::Show(double part) {
    if (!isTerminal_) return;
    const auto now = std::chrono::steady_clock::now();
    if (now - lastDrawn_ < std::chrono::milliseconds(100)) return;
    lastDrawn_ = now;
    constexpr std::size_t kWidth = 40;
    const std::size_t full = std::size_t(part * double(kWidth));
    Draw(fmt::format("{:<18}[{}{}] {:3.0f} %", job_, std::string(full, '#'), std::string(kWidth - full, '.'), part * 100.0));
}

void Progress::Clear() {
    if (!isShown_) return;
    fmt::print(stderr, "\r\x1b[K");
    std::fflush(stderr);
    isShown_ = false;
}

}  // namespace tavrik
