#include "rig/recording_bytes.h"

#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>

namespace tavrik {
namespace {

// Entries go into the image as they lie in memory.
static_assert(std::endian::native == std::endian::little);
static_assert(sizeof(MotionSample) == 18 * sizeof(double) && std::is_trivially_copyable_v<MotionSample>);
static_assert(sizeof(SteerSample) == 2 * sizeof(double) && std::is_trivially_copyable_v<SteerSample>);

constexpr std::size_t kFlagBytes = 4, kHeadBytes = kRecordingHeadBytes;
constexpr std::int64_t kFrameBytes = sizeof(TimeValue) + sizeof(SteerSample) + sizeof(MotionSample);
constexpr std::int64_t kUnitFrameBytes = sizeof(MotionSample) + sizeof(double);

/// The fixed beginning of an image that holds a recording, as it lies there.
struct ImageHead {
    std::int32_t valid, unitCount, frames, capacity;
};
static_assert(sizeof(ImageHead) == kHeadBytes);

/// Counts must have been checked, so that this stays far inside 64 bits.
std::int64_t ImageBytes(const ImageHead& head) {
    return std::int64_t(kHeadBytes) + head.capacity * (kFrameBytes + head.unitCount * kUnitFrameBytes);
}

std::string Damaged(const std::string& what) { return "the recording is damaged: " + what + "; take the scene from a backup."; }
std::string WrongLength(std::size_t wanted, std::size_t found) {
    return Damaged("it should have " + std::to_string(wanted) + " bytes, but has " + std::to_string(found));
}
std::string WrongCount(std::int32_t found, const char* what, std::int32_t low, std::int32_t high) {
    return Damaged("it tells of " + std::to_string(found) + " " + what + ", which can be " + std::to_string(low) + " to " +
                   std::to_string(high));
}

/// @return whether a recording can have such counts
bool CheckCounts(const ImageHead& head, std::string& problem) {
    if (head.unitCount < 0 || head.unitCount > kMaxComponents) {
        problem = WrongCount(head.unitCount, "wheels", 0, kMaxComponents);
    } else if (head.capacity < 1) {
        problem = Damaged("it has no room for any frame");
    } else if (head.frames < 1 || head.frames > head.capacity) {
        problem = WrongCount(head.frames, "frames", 1, head.capacity);
    } else {
        return true;
    }
    return false;
}

/// @return whether counts and length fit together, so that every array lies inside the image
bool CheckHead(const ImageHead& head, std::size_t bytes, std::string& problem) {
    if (!CheckCounts(head, problem)) return false;
    if (std::uint64_t(ImageBytes(head)) == bytes) return true;
    problem = WrongLength(std::size_t(ImageBytes(head)), bytes);
    return false;
}

TimeValue TimeOf(std::string_view image, std::int32_t frame) {
    TimeValue time;
    std::memcpy(&time, image.data() + kHeadBytes + std::size_t(frame) * sizeof time, sizeof time);
    return time;
}

/// Everything that looks a tick up relies on this order. Two frames may share a tick: a scene with more samples to a frame than
/// ticks stores such.
bool CheckTimes(const ImageHead& head, std::string_view image, std::string& problem) {
    if (TimeOf(image, 0) != kBeforeAllTime) {
        problem = Damaged("its first frame is not the one before all time");
        return false;
    }
    for (std::int32_t f = 1; f < head.frames; ++f) {
        if (TimeOf(image, f) >= TimeOf(image, f - 1)) continue;
        problem = Damaged("its frame " + std::to_string(f) + " is earlier than the one before");
        return false;
    }
    return true;
}

/// Checks a whole image. @return whether it can have come from a recording, or from there being none (`valid` 0)
bool ReadHead(std::string_view image, ImageHead& head, std::string& problem) {
    if (image.size() < kFlagBytes) {
        problem = WrongLength(kFlagBytes, image.size());
        return false;
    }
    std::memcpy(&head.valid, image.data(), kFlagBytes);
    if (!head.valid) {
        if (image.size() == kFlagBytes) return true;
        problem = WrongLength(kFlagBytes, image.size());
        return false;
    }
    if (image.size() < kHeadBytes) {
        problem = WrongLength(kHeadBytes, image.size());
        return false;
    }
    std::memcpy(&head, image.data(), kHeadBytes);
    return CheckHead(head, image.size(), problem) && CheckTimes(head, image, problem);
}

/// @param image  of checked counts and length
RecordedMotion MotionOf(const ImageHead& head, std::string_view image) {
    RecordedMotion motion;
    motion.valid = head.valid;
    motion.unitCount = head.unitCount;
    motion.frames = head.frames;
    motion.capacity = head.capacity;
    const char* from = image.data() + kHeadBytes;
    ForEachArray(motion, [&](auto& values) {
        values.GrowRoom(std::size_t(head.capacity));
        values.SetFrames(std::size_t(head.frames));
        const std::size_t bytes = values.Room().size_bytes();
        std::memcpy(values.data(), from, bytes);
        from += bytes;
    });
    assert(from == image.data() + image.size());
    return motion;
}

}  // namespace

std::string SaveRecording(const RecordedMotion& motion) {
    const ImageHead head = {motion.valid, motion.unitCount, motion.frames, motion.capacity};
    const char* const headBytes = reinterpret_cast<const char*>(&head);
    if (!motion.valid) return {headBytes, kFlagBytes};

    std::string image;
    image.reserve(std::size_t(ImageBytes(head)));
    image.assign(headBytes, kHeadBytes);
    ForEachArray(motion, [&](const auto& values) {
        // An attempt to grow that ran out of memory may have left more room than all arrays have.
        const auto bytes = std::as_bytes(values.Room().first(std::size_t(motion.capacity)));
        image.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    });
    return image;
}

std::size_t RecordingBytes(std::string_view bytes) {
    std::int32_t valid = 0;
    if (bytes.size() < kFlagBytes) return kFlagBytes;
    std::memcpy(&valid, bytes.data(), sizeof valid);
    if (valid == 0) return kFlagBytes;
    if (bytes.size() < kHeadBytes) return kHeadBytes;
    ImageHead head;
    std::memcpy(&head, bytes.data(), sizeof head);
    std::string unused;
    return CheckCounts(head, unused) ? std::size_t(ImageBytes(head)) : kHeadBytes;
}

bool LoadRecording(std::string_view image, RecordedMotion& motion, std::string& problem) {
    ImageHead head = {};
    if (!ReadHead(image, head, problem)) return false;
    if (!head.valid) {
        motion.Release();
        return true;
    }
    // Made beside the present one, which is released only now: should memory run out, it is still there.
    motion = MotionOf(head, image);
    return true;
}

bool LoadRecordedTimes(std::string_view image, std::vector<TimeValue>& times, std::string& problem) {
    ImageHead head = {};
    if (!ReadHead(image, head, problem)) return false;
    times.resize(head.valid ? std::size_t(head.frames) : 0);
    if (!times.empty()) std::memcpy(times.data(), image.data() + kHeadBytes, times.size() * sizeof(TimeValue));
    return true;
}

}  // namespace tavrik
