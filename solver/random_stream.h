#pragma once

#include <cstdint>
#include <span>

namespace tavrik {

/// The uniform generator behind the solver's ray patterns: a hash of (seed, tick, number of the draw). A frame that is driven
/// again after a rewind or a load therefore draws the same numbers again, wherever the run came from.
///
/// The mixing function is that of Guy Steele, Doug Lea and Christine Flood, "Fast splittable pseudorandom number generators",
/// 2014.
class RandomStream {
 public:
    explicit RandomStream(std::uint64_t seed = 1) { Seed(seed); }

    /// Every later stream depends on `seed`. Begins the stream of tick 0.
    void Seed(std::uint64_t seed) {
        seed_ = seed;
        BeginTick(0);
    }
    std::uint64_t CurrentSeed() const { return seed_; }

    /// Begins the stream of `tick`.
    void BeginTick(std::int32_t tick) { state_ = Mix(Mix(seed_) ^ std::uint64_t(std::uint32_t(tick))); }

    /// Puts a known sequence in place of the generator, for tests: its values come in turn, and again from the front. An empty
    /// sequence gives the generator back. The values stay the caller's.
    void Feed(std::span<const double> sequence) {
        fed_ = sequence;
        nextFed_ = 0;
    }

    /// A number in [0, 1) with 24 bits, so that it is exact in single precision too.
    double Rand01() {
        if (!fed_.empty()) [[unlikely]]
            return NextFed();
        state_ += kStride;
        return double(Mix(state_) >> 40) * 0x1p-24;
    }

 private:
    static constexpr std::uint64_t kStride = 0x9E3779B97F4A7C15u;  // 2^64 over the golden ratio, odd

    static constexpr std::uint64_t Mix(std::uint64_t z) {
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }

    double NextFed() {
        const double value = fed_[nextFed_];
        nextFed_ = (nextFed_ + 1) % fed_.size();
        return value;
    }

    std::uint64_t seed_ = 0;
    std::uint64_t state_ = 0;
    std::span<const double> fed_;
    std::size_t nextFed_ = 0;
};

}  // namespace tavrik
