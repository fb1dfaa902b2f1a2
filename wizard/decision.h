#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavrik {

/// Something that the wizard made up its mind about.
struct Decision {
    std::string key;    // which, such as "forward" or "spring.front left"
    std::string value;  // what, as text
    std::string why;
};

/// A number as a person would write it, with four digits that count.
std::string NumberText(double value);

/// "a, b and c".
std::string ListText(const std::vector<std::string>& items);

}  // namespace tavrik
