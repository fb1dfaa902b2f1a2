#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tavrik::test {

/// A folder of a test's own that vanishes with it.
class TempFolder {
 public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }
    /// Puts a file there. @return its path
    std::filesystem::path Write(std::string_view name, std::string_view bytes) const;
    /// Names of all that is there, hidden files too, in order and with blanks between.
    std::string List() const;

 private:
    std::filesystem::path path_;
};

std::string FileBytes(const std::filesystem::path& file);

}  // namespace tavrik::test
