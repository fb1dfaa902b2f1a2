#pragma once

#include <functional>
#include <string>

namespace tavrik {

enum class ChildEnd { Answered, Crashed, TooSlow, NotStarted };

/// Runs `work` in a copy of this process and hands over the bytes that it answers. For libraries that crash, hang or end the
/// program on damaged files: whatever happens there happens to the copy. Its output goes nowhere.
///
/// @param work     sees everything as it is now; what it changes is lost, and it must not wait for other threads, for the copy
///                 has none
/// @param seconds  on the wall's clock; a copy that takes longer is ended
/// @param answer   set where the result is `Answered`
ChildEnd RunInChild(const std::function<std::string()>& work, double seconds, std::string& answer);

}  // namespace tavrik
