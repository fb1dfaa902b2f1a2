#include "cli/timeline_words.h"

#include <fmt/format.h>

namespace tavrik_cli {
namespace {

/// The quotient, rounded down whatever the signs.
int FloorDivide(int a, int b) { return a / b - (a % b != 0 && (a < 0) != (b < 0) ? 1 : 0); }

}  // namespace

bool FramesOf(const std::filesystem::path& scene, const std::optional<tavrik::FrameRange>& asked, int& first, int& last,
              std::string& problem) {
    const Interval range = GetCOREInterface()->GetAnimRange();
    const int begin = -FloorDivide(-range.Start(), GetTicksPerFrame()), end = FloorDivide(range.End(), GetTicksPerFrame());
    first = asked ? asked->first : begin;
    last = asked ? asked->last : end;
    if (first >= begin && last <= end && first <= last) return true;
    problem = fmt::format("{}: its timeline has the frames {} to {}, not {} to {}.", scene.string(), begin, end, first, last);
    return false;
}

tavrik_host::TrackLook ToLook(const tavrik::TrackOrder& order) {
    return {order.roll, order.skid, order.samples, order.dent, order.treadDepth};
}

}  // namespace tavrik_cli
