#pragma once
/// Where the time of a run goes.

#include <QString>
#include <chrono>
#include <vector>

namespace tavrik_studio {

class DriveProfile {
 public:
    using Duration = std::chrono::nanoseconds;
    using Time = std::chrono::steady_clock::time_point;

    /// Forgets the run before.
    void Begin(Time now);
    /// @param solver   the tick without what follows
    /// @param display  the drive window's face
    /// @param views    as far as they were drawn, or told to draw, within the tick
    void AddTick(Time now, Duration solver, Duration display, Duration views);
    /// What a view took to draw, after the tick that made it. Views that want to be seen in the report call it.
    void AddViewTime(Duration views);

    int Ticks() const { return int(ticks_.size()); }
    /// Of the run so far; 0 before its second tick.
    double FramesPerSecond() const;
    /// A table for people: means, 95 percent and worst of each, and the frame rate.
    QString Report() const;

 private:
    struct Tick {
        Duration solver, display, views;
    };
    Time start_{}, last_{};
    std::vector<Tick> ticks_;
};

}  // namespace tavrik_studio
