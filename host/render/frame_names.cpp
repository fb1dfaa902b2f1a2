#include "host/render/frame_names.h"

#include <fmt/format.h>

#include <cstddef>

namespace tavrik_host {

bool FrameNames::Read(const std::string& pattern, std::string& problem) {
    *this = {};
    std::string* part = &before_;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != '%') {
            *part += pattern[i];
            continue;
        }
        if (i + 1 < pattern.size() && pattern[i + 1] == '%') {
            *part += pattern[++i];
            continue;
        }
        // A width of one digit is all that anybody needs; more would be somebody's mistake.
        std::size_t end = i + 1;
        if (end + 1 < pattern.size() && pattern[end] == '0' && pattern[end + 1] >= '1' && pattern[end + 1] <= '9') {
            digits_ = pattern[end + 1] - '0';
            end += 2;
        }
        if (end >= pattern.size() || pattern[end] != 'd' || isNumbered_) {
            problem = fmt::format("a name takes one number, as in frames/%04d.png, not \"{}\"", pattern);
            return false;
        }
        isNumbered_ = true;
        part = &after_;
        i = end;
    }
    const std::filesystem::path name = Of(0);
    if (name.extension() == ".png") return true;
    problem = fmt::format("pictures are PNG and take a name that ends in .png, not \"{}\"", pattern);
    return false;
}

std::filesystem::path FrameNames::Of(int frame) const {
    return isNumbered_ ? fmt::format("{}{:0{}d}{}", before_, frame, digits_, after_) : before_ + after_;
}

}  // namespace tavrik_host
