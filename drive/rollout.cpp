#include "drive/rollout.h"

#include <algorithm>
#include <cassert>

#include "drive/bicycle_step.h"
#include "surface/float4.h"

namespace tavrik {
namespace {

constexpr float kStepOfWay = 0.02f;  // one of fifty
constexpr int kStepsPerLook = 10;    // from one look at the road to the next

/// A car that keeps its steering repeats the same motion relative to itself: one step, made once, is compounded.
Matrix3 StepOf(const Matrix3& frame, const Matrix3& inverse, float angle, float distance, float length) {
    Matrix3 stepped = frame;
    BicycleStep(stepped, length, angle, distance * kStepOfWay);
    return stepped * inverse;
}

void AddLook(const PathField& path, const Point3& position, double& cost) {
    const float f = float(path.FieldAt(position));
    if (f > 0.0f) cost += 1.0 / double(f);
}

// ---- Four candidates side by side

struct Point4 {
    Float4 x, y, z;
};

Point4 FromFour(const Point3& a, const Point3& b, const Point3& c, const Point3& d) {
    return {Float4From(a.x, b.x, c.x, d.x), Float4From(a.y, b.y, c.y, d.y), Float4From(a.z, b.z, c.z, d.z)};
}

/// Each lane does what the product of two frames does, in its order.
struct Frame4 {
    Point4 row[4];

    Point4 TransformVector(const Point4& v) const {
        return {row[0].x * v.x + row[1].x * v.y + row[2].x * v.z, row[0].y * v.x + row[1].y * v.y + row[2].y * v.z,
                row[0].z * v.x + row[1].z * v.y + row[2].z * v.z};
    }
    Point4 TransformPoint(const Point4& p) const {
        const Point4 v = TransformVector(p);
        return {v.x + row[3].x, v.y + row[3].y, v.z + row[3].z};
    }
};

Frame4 operator*(const Frame4& a, const Frame4& b) {
    return {
        {b.TransformVector(a.row[0]), b.TransformVector(a.row[1]), b.TransformVector(a.row[2]), b.TransformPoint(a.row[3])}};
}

constexpr std::size_t kLanes = 4;

/// The step of four candidates, and where each of them stands.
struct Rollout4 {
    Frame4 delta, frame;

    Rollout4(const Matrix3& start, const Matrix3& inverse, std::span<const Candidate> candidates, float length) {
        Matrix3 steps[kLanes];
        for (std::size_t i = 0; i < kLanes; ++i) {
            const Candidate& candidate = candidates[std::min(i, candidates.size() - 1)];  // the last group may be short
            steps[i] = StepOf(start, inverse, candidate.angle, candidate.distance, length);
        }
        for (int r = 0; r < 4; ++r) {
            delta.row[r] = FromFour(steps[0].row[r], steps[1].row[r], steps[2].row[r], steps[3].row[r]);
            frame.row[r] = FromFour(start.row[r], start.row[r], start.row[r], start.row[r]);
        }
    }
    void Step() { frame = delta * frame; }
};

}  // namespace

float RolloutToTarget(const Point3 (&targets)[kTargetSamples], Matrix3& frame, float angle, float distance, float length) {
    const Matrix3 delta = StepOf(frame, Inverse(frame), angle, distance, length);
    float cost = 0.0f;
    for (int i = 0; i < kRolloutSteps; ++i) {
        frame = delta * frame;
        const float x = frame.row[3].x - targets[i].x, y = frame.row[3].y - targets[i].y;
        cost += x * x + y * y;
    }
    return cost;
}

double RolloutAlongPath(const PathField& path, Matrix3& frame, float angle, float distance, float length) {
    const Matrix3 delta = StepOf(frame, Inverse(frame), angle, distance, length);
    double cost = 0.0;
    for (int i = 0; i < kRolloutSteps; ++i) {
        frame = delta * frame;
        if (i % kStepsPerLook == 0) AddLook(path, frame.row[3], cost);
    }
    return cost;
}

void RolloutsToTarget(const Point3 (&targets)[kTargetSamples], const Matrix3& frame, std::span<const Candidate> candidates,
                      float length, std::span<float> costs) {
    assert(costs.size() == candidates.size());
    const Matrix3 inverse = Inverse(frame);
    for (std::size_t first = 0; first < candidates.size(); first += kLanes) {
        Rollout4 rollout(frame, inverse, candidates.subspan(first), length);
        Float4 cost = Broadcast(0.0f);
        for (int i = 0; i < kRolloutSteps; ++i) {
            rollout.Step();
            const Point4& position = rollout.frame.row[3];
            const Float4 x = position.x - Broadcast(targets[i].x), y = position.y - Broadcast(targets[i].y);
            cost = cost + (x * x + y * y);
        }
        alignas(16) float lanes[kLanes];
        Store(cost, lanes);
        for (std::size_t i = first; i < std::min(first + kLanes, costs.size()); ++i) costs[i] = lanes[i - first];
    }
}

void RolloutsAlongPath(const PathField& path, const Matrix3& frame, std::span<const Candidate> candidates, float length,
                       std::span<double> costs) {
    assert(costs.size() == candidates.size());
    const Matrix3 inverse = Inverse(frame);
    for (std::size_t first = 0; first < candidates.size(); first += kLanes) {
        Rollout4 rollout(frame, inverse, candidates.subspan(first), length);
        const std::size_t used = std::min(kLanes, candidates.size() - first);
        std::fill_n(costs.begin() + std::ptrdiff_t(first), used, 0.0);
        // Nothing looks at the steps after the last look.
        for (int i = 0; i <= kRolloutSteps - kStepsPerLook; ++i) {
            rollout.Step();
            if (i % kStepsPerLook != 0) continue;
            alignas(16) float x[kLanes], y[kLanes], z[kLanes];
            const Point4& position = rollout.frame.row[3];
            Store(position.x, x);
            Store(position.y, y);
            Store(position.z, z);
            for (std::size_t lane = 0; lane < used; ++lane) AddLook(path, {x[lane], y[lane], z[lane]}, costs[first + lane]);
        }
    }
}

}  // namespace tavrik
