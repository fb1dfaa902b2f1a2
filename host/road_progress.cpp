#include "host/road_progress.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tavrik {
namespace {

// A car makes less than this from sample to sample, and no hairpin comes back as soon.
constexpr double kMetresAround = 15.0;
constexpr double kFar = std::numeric_limits<double>::infinity();

double Flat(const DPoint3& v) { return std::sqrt(v.x * v.x + v.y * v.y); }

}  // namespace

RoadProgress::RoadProgress(FollowedLine line, double metresPerUnit)
    : line_(std::move(line)), lookAround_(kMetresAround / metresPerUnit) {
    for (std::size_t i = 0; i < Pieces(); ++i) {
        starts_.push_back(length_);
        length_ += Flat(line_.points[(i + 1) % line_.points.size()] - line_.points[i]);
    }
}

RoadProgress::Spot RoadProgress::SpotOn(std::size_t piece, const DPoint3& place) const {
    const DPoint3 &a = line_.points[piece], &b = line_.points[(piece + 1) % line_.points.size()];
    const DPoint3 way = b - a, to = place - a;
    const double length = Flat(way);
    const double t = length > 0.0 ? std::clamp((to.x * way.x + to.y * way.y) / (length * length), 0.0, 1.0) : 0.0;
    return {starts_[piece] + t * length, Flat(to - way * t)};
}

double RoadProgress::StepTo(double along) const {
    double step = along - along_;
    if (line_.closed && step > length_ / 2.0) step -= length_;
    if (line_.closed && step < -length_ / 2.0) step += length_;
    return step;
}

bool RoadProgress::FindNearest(const DPoint3& place, std::size_t first, std::size_t count, double most, Spot& spot) {
    spot.distance = kFar;
    std::size_t nearest = piece_;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t piece = (first + i) % Pieces();
        const Spot here = SpotOn(piece, place);
        if (!(here.distance < spot.distance) || std::abs(StepTo(here.along)) > most) continue;
        spot = here;
        nearest = piece;
    }
    piece_ = nearest;
    return spot.distance < kFar;
}

void RoadProgress::Add(const DPoint3& place, double seconds) {
    Spot spot{};
    if (count_ == 0) {
        FindNearest(place, 0, Pieces(), kFar, spot);
        along_ = spot.along;
    } else {
        const auto piecesWithin = [this](int step) {
            std::size_t count = 0;
            double way = 0.0;
            for (std::size_t piece = piece_; count < Pieces() && way < lookAround_; ++count) {
                if (!line_.closed && piece == (step < 0 ? 0 : Pieces() - 1)) break;
                piece = (piece + Pieces() + std::size_t(step)) % Pieces();
                way += Flat(line_.points[(piece + 1) % line_.points.size()] - line_.points[piece]);
            }
            return count;
        };
        const std::size_t back = piecesWithin(-1), ahead = piecesWithin(1);
        const std::size_t first = (piece_ + Pieces() - back) % Pieces(), count = std::min(back + ahead + 1, Pieces());
        // A car that was thrown farther is looked for on all of those pieces.
        if (!FindNearest(place, first, count, lookAround_, spot)) FindNearest(place, first, count, kFar, spot);
    }
    const double step = StepTo(spot.along);
    along_ = spot.along;
    way_ += step;
    const bool done = line_.closed ? way_ >= length_ * double(passed_.size() + 1) : passed_.empty() && along_ >= length_;
    if (done) passed_.push_back(seconds);
    if (spot.distance > largest_) {
        largest_ = spot.distance;
        largestAt_ = seconds;
    }
    sum_ += spot.distance;
    ++count_;
}

}  // namespace tavrik
