#pragma once
/// Names of the pictures of a sequence, such as "frames/%04d.png".

#include <filesystem>
#include <string>

namespace tavrik_host {

class FrameNames {
 public:
    /// @param problem  on false: what is wrong with the pattern, without a full stop
    bool Read(const std::string& pattern, std::string& problem);
    /// Whether each frame has a name of its own.
    bool IsNumbered() const { return isNumbered_; }
    std::filesystem::path Of(int frame) const;

 private:
    std::string before_, after_;
    int digits_ = 0;
    bool isNumbered_ = false;
};

}  // namespace tavrik_host
