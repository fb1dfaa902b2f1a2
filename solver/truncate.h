#pragma once

#include <cstdint>
#include <limits>

namespace tavrik {

/// `value` towards zero. Out of range it saturates and a NaN gives 0, so that the answer never depends on the processor.
constexpr std::int32_t TruncateToInt(double value) {
    using Int = std::numeric_limits<std::int32_t>;
    if (value != value) return 0;
    if (value <= double(Int::min())) return Int::min();
    if (value >= double(Int::max())) return Int::max();
    return std::int32_t(value);
}

}  // namespace tavrik
