#pragma once
/// How far along a line a car has come, and how near to it.

#include <cstddef>
#include <vector>

#include "solver/double_maths.h"

namespace tavrik {

/// A line as it lies in the scene. Distances are seen from above: height doesn't count.
struct FollowedLine {
    std::vector<DPoint3> points;  // scene units; at least two
    bool closed = false;
};

class RoadProgress {
 public:
    RoadProgress(FollowedLine line, double metresPerUnit);

    /// The car's next place. The first one may be anywhere, each further one is looked for near the one before: so a car stays
    /// on its own part of a line whose parts pass each other closely.
    void Add(const DPoint3& place, double seconds);

    double length() const { return length_; }
    /// How far the car has come along the line since its first place, all laps together; less where it went backwards.
    double way() const { return way_; }
    /// Seconds at which the line was passed once, twice, ... Of an open line: at which its end was.
    const std::vector<double>& passed() const { return passed_; }
    double largest() const { return largest_; }      // distance from the line, scene units
    double largestAt() const { return largestAt_; }  // second
    double mean() const { return count_ == 0 ? 0.0 : sum_ / double(count_); }

 private:
    struct Spot {
        double along, distance;
    };
    Spot SpotOn(std::size_t piece, const DPoint3& place) const;
    /// How far it is along the line from the last spot to another, the shorter way round.
    double StepTo(double along) const;
    /// Looks at `count` pieces from `first` on, for a spot at most `most` along the line from the last one.
    /// @return false where there is none
    bool FindNearest(const DPoint3& place, std::size_t first, std::size_t count, double most, Spot& spot);
    std::size_t Pieces() const { return line_.points.size() - (line_.closed ? 0 : 1); }

    FollowedLine line_;
    double lookAround_;           // scene units
    std::vector<double> starts_;  // of each piece, along the line
    double length_ = 0.0;
    std::size_t piece_ = 0;
    double along_ = 0.0, way_ = 0.0;  // on the line; of all laps
    std::vector<double> passed_;
    double largest_ = 0.0, largestAt_ = 0.0, sum_ = 0.0;
    std::size_t count_ = 0;
};

}  // namespace tavrik
