#pragma once
/// A check sum over a whole scene file, so that a damaged copy is noticed before anybody drives on it.

#include <string>
#include <string_view>

namespace tavrik_host {

/// Stands in our extension's root, in binary files only: text is there to be edited.
inline constexpr const char* kSealKey = "fileCrc32";
/// In its place while the sum is made.
inline constexpr const char* kNoSeal = "00000000";

/// Puts the sum into a .glb whose extension begins with `kSealKey`, `kNoSeal`.
void SealScene(std::string& glb);

/// Refuses (`SceneFault`) a file that isn't as it was sealed. One that has no seal, or that another program has written anew,
/// is taken as it is.
void CheckSeal(std::string_view glb);

}  // namespace tavrik_host
