#include "tracks/track_query.h"

#include <cassert>
#include <cmath>

#include "solver/truncate.h"
#include "tracks/track_trail.h"

namespace tavrik {
namespace {

/// One touch of the tyre, `i` places along the way of `n`.
void AddTouch(const TrackSegment& segment, float i, float n, const Point3& local, const TyreTouch& touch, const Point3& point,
              const TrackParams& params, TrackSum& sum) {
    sum.value += touch.weight * params.generalIntensity / float(params.samples);
    // Where this piece of rubber will be a tenth of a place later: one that rolls stays nearly where it is, one that slides
    // doesn't. Only what it slides along its own skin counts.
    const Matrix3 later = ForwardFrameAt(segment, (i + 0.1f) / n);
    Point3 slip = TransformPoint(local, later) - point;
    const Point3 normal = TransformVector(touch.normal, later);
    slip = slip - normal * Dot(slip, normal);
    sum.value += touch.weight * params.brakeIntensity * Length(slip) / segment.Radius * 10.0f;
    const Point3 relief = TransformVector(touch.gradient, later) * params.patternBump;
    sum.bump = sum.bump + (relief - normal * params.baseBump) * (1.0f / float(params.samples));
}

bool IsFinite(const Point3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

}  // namespace

void TrackAccumulate(const TrackSegment& segment, const Matrix3* inverseFrames, const float* patternMap, const Point3& point,
                     TimeValue tick, const TrackParams& params, TrackSum& sum) {
    assert(params.samples >= 1);
    if (tick < segment.endTime) return;
    const TyreShape tyre = {segment.Radius, segment.Width, segment.sideFlag, patternMap};
    const std::int32_t n = TruncateToInt(double(Length(segment.way) / segment.Radius * float(params.samples) + 1.0f));
    TyreTouch touch;
    for (std::int32_t i = 0; i < n; ++i) {
        const float u = float(i) / float(n);
        const Point3 local = TransformPoint(point, InverseFrameAt(segment, inverseFrames, u));
        if (TyreContact(local, tyre, touch)) AddTouch(segment, float(i), float(n), local, touch, point, params, sum);
        // Nobody gets here before the end of the stretch; should that rule ever change, a wheel still leaves no mark ahead.
        if (float(segment.startTime) * (1.0f - u) + float(segment.endTime) * u > float(tick)) break;
    }
}

void TrackTrail::Query(float& value, Point3& bump, const Point3& point, TimeValue tick, const TrackParams& params,
                       std::span<const SharedTread> treads) const {
    assert(built != 0);
    TrackSum sum;
    if (IsFinite(point)) {
        for (const std::uint32_t number : LeafAt(point)) {
            const TrackSegment& segment = segments[number];
            if (tick < segment.endTime || !MayTouch(segment, point)) continue;
            const float* const tread =
                segment.wheel < treads.size() && treads[segment.wheel] != nullptr ? treads[segment.wheel]->data() : nullptr;
            TrackAccumulate(segment, StoredFrames(segment), tread, point, tick, params, sum);
        }
    }
    value = std::exp(-sum.value);
    bump = sum.bump;
}

}  // namespace tavrik
