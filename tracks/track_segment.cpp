#include "tracks/track_segment.h"

#include <algorithm>
#include <cassert>
#include <cmath>

#include "solver/truncate.h"

namespace tavrik {
namespace {

bool IsWithinReach(const Point3& p) {
    // Also false where a number is none.
    return std::abs(p.x) <= kMaxTrackReach && std::abs(p.y) <= kMaxTrackReach && std::abs(p.z) <= kMaxTrackReach;
}

bool IsWithinReach(const Matrix3& m) {
    return IsWithinReach(m.row[0]) && IsWithinReach(m.row[1]) && IsWithinReach(m.row[2]) && IsWithinReach(m.row[3]);
}

/// How far the axes are from being of length 1 and square to each other.
float AxisError(const Matrix3& m) {
    float error = 0.0f;
    for (int i = 0; i < 3; ++i) {
        for (int j = i; j < 3; ++j) {
            error = std::max(error, std::abs(Dot(m.row[i], m.row[j]) - (i == j ? 1.0f : 0.0f)));
        }
    }
    return error;
}

// What makes a way so gentle that bounds can be told from its ends: axes as a wheel has them, no more than a third of a turn
// about the axle, hardly any of the axle itself, and steps short enough for neighbours to be nearly the same.
constexpr float kAxisError = 1e-3f, kLeastCosine = -0.4f, kAxleTurn = 0.1f;
constexpr std::int32_t kLeastSteps = 20;
// Single precision at a place this far out is only good to so much of the distance, after all sums of a frame and its inverse.
constexpr float kRounding = 4e-6f;

/// Bounds for `MayTouch`. Within a gentle way each frame undoes nearly a plain turn about the axle, and what a blend of two
/// neighbours makes of a point lies between what the two make of it. So a point that stays beside the tyre, or outside its
/// circle, for all plain turns along the way, with `slack` for all that isn't plain, is never inside.
void FindReach(TrackSegment& segment) {
    const Matrix3 &a = segment.startFrame, &b = segment.endFrame;
    const float axisError = std::max(AxisError(a), AxisError(b)), axleTurn = Length(b.row[2] - a.row[2]);
    bool gentle = axisError <= kAxisError && axleTurn <= kAxleTurn && segment.steps >= kLeastSteps;
    for (int i = 0; i < 3; ++i) gentle = gentle && Dot(a.row[i], b.row[i]) >= kLeastCosine;
    if (!gentle) return;
    const float way = Length(segment.way);
    const float across = 2.0f * std::sqrt(segment.Radius * segment.Radius + segment.Width * segment.Width);
    const float out = std::max(Length(a.row[3]), Length(b.row[3])) + across + way;
    segment.slack = (across + 2.0f * way) * (6.0f * axleTurn + 24.0f * axisError + 1e-4f) + kRounding * out;
    const float reach = across + way + segment.slack;
    segment.reachSquared = reach * reach;
}

Matrix3 Blend(const Matrix3& a, const Matrix3& b, float weight) {
    const float rest = 1.0f - weight;
    Matrix3 result;
    for (int r = 0; r < 4; ++r) result.row[r] = a.row[r] * rest + b.row[r] * weight;
    return result;
}

/// A place between two frames of the way.
struct WayPlace {
    std::int32_t i;
    float f;
};

WayPlace PlaceAt(const TrackSegment& segment, float u) {
    const float x = u * float(segment.steps);
    const std::int32_t i = std::clamp(TruncateToInt(double(x)), 0, segment.steps - 1);
    return {i, x - float(i)};
}

}  // namespace

SegmentResult Init(TrackSegment& segment, const Matrix3& startFrame, const Matrix3& endFrame, float Radius, float Width,
                   std::uint32_t sideFlag, TimeValue startTime, TimeValue endTime, std::uint32_t wheelHandle) {
    assert(Radius > 0.0f && Width > 0.0f);
    if (!IsWithinReach(startFrame) || !IsWithinReach(endFrame) || !(Radius <= kMaxTrackReach) || !(Width <= kMaxTrackReach)) {
        return SegmentResult::NotFinite;
    }
    segment = {};
    segment.startFrame = startFrame;
    segment.endFrame = endFrame;
    segment.way = endFrame.row[3] - startFrame.row[3];
    const float d = Length(segment.way);
    segment.steps = TruncateToInt(double(d / Radius * 40.0f + 1.0f));
    if (segment.steps > kMaxTrackSteps) return SegmentResult::TooLong;
    segment.Radius = Radius;
    segment.Width = Width;
    segment.startTime = startTime;
    segment.endTime = endTime;
    segment.wheelHandle = wheelHandle;
    segment.sideFlag = sideFlag;
    const Box3 box = {{-Radius, -Radius, -Width}, {Radius, Radius, Width}};
    for (unsigned i = 0; i < 8; ++i) {
        segment.bound.Include(TransformPoint(box.Corner(i), startFrame));
        segment.bound.Include(TransformPoint(box.Corner(i), endFrame));
    }
    FindReach(segment);
    return SegmentResult::Good;
}

Matrix3 ForwardFrame(const TrackSegment& segment, std::int32_t i) {
    Matrix3 frame = Blend(segment.startFrame, segment.endFrame, float(i) / float(segment.steps));
    for (int r = 0; r < 3; ++r) frame.row[r] = Normalize(frame.row[r]);
    return frame;
}

Matrix3 InverseFrame(const TrackSegment& segment, std::int32_t i) { return Inverse(ForwardFrame(segment, i)); }

Matrix3 ForwardFrameAt(const TrackSegment& segment, float u) {
    const WayPlace at = PlaceAt(segment, u);
    return Blend(ForwardFrame(segment, at.i), ForwardFrame(segment, at.i + 1), at.f);
}

Matrix3 InverseFrameAt(const TrackSegment& segment, const Matrix3* inverseFrames, float u) {
    const WayPlace at = PlaceAt(segment, u);
    if (inverseFrames != nullptr) return Blend(inverseFrames[at.i], inverseFrames[at.i + 1], at.f);
    return Blend(InverseFrame(segment, at.i), InverseFrame(segment, at.i + 1), at.f);
}

bool MayTouch(const TrackSegment& segment, const Point3& point) {
    if (segment.reachSquared < 0.0f) return true;
    const Point3 v = point - segment.startFrame.row[3];
    if (LengthSquared(v) > segment.reachSquared) return false;

    // Beside the tyre, all the way along?
    const Point3& axle = segment.startFrame.row[2];
    const float height = Dot(v, axle), climb = Dot(segment.way, axle), side = segment.Width + segment.slack;
    if (std::min(height, height - climb) > side || std::max(height, height - climb) < -side) return false;

    // Outside its circle, all the way along? Seen along the axle, where on the way is the middle nearest?
    const Point3 flat = v - axle * height, flatWay = segment.way - axle * climb;
    const float length = LengthSquared(flatWay);
    const float nearest = length > 0.0f ? std::clamp(Dot(flat, flatWay) / length, 0.0f, 1.0f) : 0.0f;
    const float circle = (segment.Radius + segment.slack) * 1.01f;  // a blend of two turned frames lies a little inside of both
    return LengthSquared(flat - flatWay * nearest) <= circle * circle;
}

}  // namespace tavrik
