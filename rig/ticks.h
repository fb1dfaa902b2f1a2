#pragma once
/// The host's time: 32-bit ticks, 4800 to the second.

#include <cstdint>
#include <limits>

namespace tavrik {

using TimeValue = std::int32_t;

constexpr int kTicksPerSecond = 4800;

/// The time of a recording's first frame, before every tick that a scene can show.
constexpr TimeValue kBeforeAllTime = std::numeric_limits<TimeValue>::min();

/// Ticks from `from` to `to`. Frame 0 carries the most negative tick, so the difference wraps, and is meant to.
constexpr std::int32_t TicksBetween(TimeValue from, TimeValue to) {
    return std::int32_t(std::uint32_t(to) - std::uint32_t(from));
}

}  // namespace tavrik
