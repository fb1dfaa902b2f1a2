#include "cli/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
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
    begun_ = std::chrono::steady_clock::now();
    if (isTerminal_) Draw(fmt::format("{:<18}", job_));
}

bool Progress::IsDue() {
    if (!isTerminal_) return false;
    const auto now = std::chrono::steady_clock::now();
    if (now - lastDrawn_ < std::chrono::milliseconds(100)) return false;
    lastDrawn_ = now;
    return true;
}

void Progress::DrawBar(double part, std::string_view behind) {
    constexpr std::size_t kWidth = 40;
    const std::size_t full = std::size_t(part * double(kWidth));
    Draw(fmt::format("{:<18}[{}{}] {:3.0f} %{}", job_, std::string(full, '#'), std::string(kWidth - full, '.'), part * 100.0,
                     behind));
}

void Progress::Show(double part) {
    if (IsDue()) DrawBar(part, "");
}

void Progress::ShowTimeLeft(double part) {
    if (!IsDue()) return;
    const double gone = std::chrono::duration<double>(lastDrawn_ - begun_).count();
    constexpr double kLongest = 359'999.0;  // seconds; more is anybody's guess
    const int left = int(std::min(kLongest, part > 0.0 ? gone * (1.0 - part) / part : kLongest));
    // Of the first moments nothing can be told.
    DrawBar(part, gone < 0.5 ? "" : fmt::format("  {}:{:02}:{:02} left", left / 3600, left / 60 % 60, left % 60));
}

void Progress::Clear() {
    if (!isShown_) return;
    fmt::print(stderr, "\r\x1b[K");
    std::fflush(stderr);
    isShown_ = false;
}

}  // namespace tavrik
