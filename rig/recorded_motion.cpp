#include "rig/recorded_motion.h"

#include <cassert>
#include <cstddef>
#include <type_traits>

namespace tavrik {
namespace {

// Room grows by the same number of frames each time: a run is short against memory, and steady growth is easy to foresee.
constexpr std::int32_t kGrowthFrames = 500;

MotionSample SampleOf(const RigidBody& body) {
    MotionSample sample;
    CopyRecordedState(sample, body);
    return sample;
}

}  // namespace

void RecordedMotion::Init(std::int32_t units, const RigidBody& chassisBody, std::span<const RigidBody> wheelBodies) {
    assert(units >= 0 && units <= kMaxComponents && wheelBodies.size() >= std::size_t(units));
    Release();
    unitCount = units;
    capacity = kGrowthFrames;
    ForEachArray(*this, [this](auto& values) { values.GrowRoom(std::size_t(capacity)); });

    chassis.push_back(SampleOf(chassisBody));
    steer.push_back({});
    for (std::int32_t u = 0; u < unitCount; ++u) {
        wheels[u].push_back(SampleOf(wheelBodies[std::size_t(u)]));
        buffers[u].push_back(0.0);
    }
    times.push_back(kBeforeAllTime);
    frames = 1;
    valid = 1;
}

void RecordedMotion::Release() {
    if (!valid) return;
    // Fresh arrays, not cleared ones: an unlocked car gives its memory back.
    ForEachArray(*this, [](auto& values) { values = std::remove_reference_t<decltype(values)>(); });
    frames = 0;
    capacity = 0;
    unitCount = 0;
    valid = 0;
}

std::int32_t RecordedMotion::Store(TimeValue tick, const RigidBody& chassisBody, std::span<const RigidBody> wheelBodies,
                                   std::span<const double> bufferPosition, const SteerSample& steerPair) {
    assert(valid);
    if (frames == capacity) {
        // Room for all arrays first: once it is there nothing below can fail, so they never differ in length.
        const std::int32_t grown = capacity + kGrowthFrames;
        ForEachArray(*this, [grown](auto& values) { values.GrowRoom(std::size_t(grown)); });
        capacity = grown;
    }
    steer.push_back(steerPair);
    chassis.push_back(SampleOf(chassisBody));
    for (std::int32_t u = 0; u < unitCount; ++u) {
        wheels[u].push_back(SampleOf(wheelBodies[std::size_t(u)]));
        buffers[u].push_back(bufferPosition[std::size_t(u)]);
    }
    times.push_back(tick);
    return ++frames;
}

std::int32_t RecordedMotion::Rewind(TimeValue tick, RigidBody& chassisBody, std::span<RigidBody> wheelBodies,
                                    std::span<double> bufferPosition, SteerSample& steerPair) {
    assert(valid);
    const std::int32_t i = FindFrame(tick);
    const std::size_t at = std::size_t(i);
    steerPair = steer[at];
    CopyRecordedState(chassisBody, chassis[at]);
    for (std::int32_t u = 0; u < unitCount; ++u) {
        CopyRecordedState(wheelBodies[std::size_t(u)], wheels[u][at]);
        bufferPosition[std::size_t(u)] = buffers[u][at];
    }
    frames = i + 1;
    ForEachArray(*this, [this](auto& values) { values.SetFrames(std::size_t(frames)); });
    return frames;
}

std::int32_t RecordedMotion::FindFrame(TimeValue tick) const {
    assert(valid);
    const std::int32_t last = frames - 1;
    if (tick >= times[std::size_t(last)]) return last;
    std::int32_t low = 0, high = last;
    while (high - low >= 2) {
        const std::int32_t middle = (low + high) / 2;
        (times[std::size_t(middle)] <= tick ? low : high) = middle;
    }
    return low;
}

FramePosition LocateTick(const RecordedMotion& motion, TimeValue tick) {
    const std::int32_t i = motion.FindFrame(tick);
    if (i == motion.frames - 1) return {i, i, 0.0f};
    const TimeValue from = motion.times[std::size_t(i)], to = motion.times[std::size_t(i) + 1];
    return {i, i + 1, float(TicksBetween(from, tick)) / float(TicksBetween(from, to))};
}

}  // namespace tavrik
