#pragma once

#include <cstddef>

namespace tavrik {

/// Bytes of memory in this machine; 0 when it can't be told.
std::size_t PhysicalMemory();

}  // namespace tavrik
