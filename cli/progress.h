#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace tavrik {

/// A line on the terminal that shows how far a long job has come. Where the error output is a pipe or a file, nothing is shown.
class Progress {
 public:
    Progress();
    ~Progress() { Clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Names the job at hand, without a measure of its progress.
    void Begin(std::string_view job);
    /// Draws a bar behind the job's name, ten times a second at most. @param part  0..1
    void Show(double part);
    /// Likewise, with the time that is left if all goes on as it has since `Begin`.
    void ShowTimeLeft(double part);
    /// Wipes the line.
    void Clear();

 private:
    void Draw(std::string_view line);
    void DrawBar(double part, std::string_view behind);
    bool IsDue();

    bool isTerminal_;
    std::string job_;
    std::chrono::steady_clock::time_point begun_{}, lastDrawn_{};
    bool isShown_ = false;
};

}  // namespace tavrik
