#pragma once

#include <atomic>
#include <functional>

namespace tavrik_host {

/// Does `count` pieces of work, each once and in any order, on several threads, the calling one among them. The pieces write
/// only what is their own.
///
/// @param threads  0: as many as there are cores
/// @param done     told how much is done, 0..1, on the calling thread; may be null
/// @param stop     once it is set, no further piece is begun; may be null
void InParallel(int count, int threads, const std::function<void(double)>& done, const std::function<void(int)>& work,
                const std::atomic<bool>* stop = nullptr);

}  // namespace tavrik_host
