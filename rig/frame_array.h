#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace tavrik {

/// One array of a recording: an entry to each frame, and room behind them for frames to come.
///
/// Room starts as fresh `T`s, and a frame that is forgotten keeps its bits there until another takes its place. A recording is
/// saved with all of its room, so every bit of it has to hang on the run alone.
template <typename T>
class FrameArray {
 public:
    using value_type = T;
    using iterator = T*;
    using const_iterator = const T*;

    FrameArray() = default;
    FrameArray(const FrameArray&) = default;
    FrameArray(FrameArray&& other) noexcept : room_(std::move(other.room_)), size_(std::exchange(other.size_, 0)) {}
    FrameArray& operator=(const FrameArray&) = default;
    FrameArray& operator=(FrameArray&& other) noexcept {
        room_ = std::exchange(other.room_, {});
        size_ = std::exchange(other.size_, 0);
        return *this;
    }
    ~FrameArray() = default;

    std::size_t size() const { return size_; }  // frames
    bool empty() const { return size_ == 0; }
    T* data() { return room_.data(); }
    const T* data() const { return room_.data(); }
    T* begin() { return data(); }
    const T* begin() const { return data(); }
    T* end() { return data() + size_; }
    const T* end() const { return data() + size_; }
    T& operator[](std::size_t frame) {
        assert(frame < size_);
        return room_[frame];
    }
    const T& operator[](std::size_t frame) const {
        assert(frame < size_);
        return room_[frame];
    }
    T& back() { return (*this)[size_ - 1]; }
    const T& back() const { return (*this)[size_ - 1]; }

    /// All entries, those of no frame included.
    std::span<T> Room() { return room_; }
    std::span<const T> Room() const { return room_; }
    /// Makes room for `frames` in all; there is never less room than before. When memory runs out nothing has changed.
    void GrowRoom(std::size_t frames) {
        // A quarter to spare, so that a long run doesn't copy all of itself again and again.
        if (frames > room_.capacity()) room_.reserve(std::max(frames, room_.capacity() + room_.capacity() / 4));
        if (frames > room_.size()) room_.resize(frames);
    }

    /// Appends a frame. There must be room for it (asserted), so nothing can fail.
    void push_back(const T& entry) {
        assert(size_ < room_.size());
        room_[size_++] = entry;
    }
    /// Makes the first `frames` entries of the room the frames, as they stand there.
    void SetFrames(std::size_t frames) {
        assert(frames <= room_.size());
        size_ = frames;
    }

    /// Compares the frames, not the room behind them.
    friend bool operator==(const FrameArray& a, const FrameArray& b) { return std::ranges::equal(a, b); }
    friend bool operator==(const FrameArray& a, const std::vector<T>& b) { return std::ranges::equal(a, b); }

 private:
    std::vector<T> room_;
    std::size_t size_ = 0;
};

}  // namespace tavrik
